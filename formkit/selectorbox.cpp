#include "selectorbox.h"

#include "doing_p.h"
#include "editstate_p.h"
#include "rowlistview_p.h"
#include "selectorcompleter_p.h"
#include "selectorproxymodel.h"

#include <QCompleter>

// What a refresh brings back.
struct SelectorBox::Kept
{
    EditState edit;
    bool wasChoice = false;
    // The row that the edit text stood for, and what it was found by.
    QVariantList key;
    QVariantList lookUps;
    // The row that the user was on in the open list.
    QVariantList listKey;
    bool completing = false;
    QString prefix;
};

SelectorBox::SelectorBox(SelectorProxyModel *list, const QVector<int> &keyRoles,
                         Qt::CaseSensitivity typing, QWidget *parent)
    : ComboBox(parent)
    , m_list(list)
    , m_keyRoles(keyRoles)
    , m_typing(typing)
    , m_kept(std::make_unique<Kept>())
{
    m_list->setParent(this);
    setView(new RowListView);
    // QComboBox answers to changed data by showing the current row's, between these two.
    connect(m_list, &QAbstractItemModel::dataChanged, this, &SelectorBox::beginDataChange);
    setModel(m_list);
    connect(m_list, &QAbstractItemModel::dataChanged, this, &SelectorBox::endDataChange);
    delete completer();
    setCompleter(new SelectorCompleter(m_list, this));
    comboBoxValidator()->setModel(m_list);
    setCurrentIndex(-1);

    chooseWhenLeft();
    // After the connections of QComboBox, its view and its completer, so that endRefresh()
    // finds them ready.
    connect(m_list, &QAbstractItemModel::modelAboutToBeReset, this, &SelectorBox::beginRefresh);
    connect(m_list, &QAbstractItemModel::modelReset, this, &SelectorBox::endRefresh);
    connect(this, &QComboBox::editTextChanged, this, &SelectorBox::noteChoice);
    connect(this, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &SelectorBox::noteIndex);
}

SelectorBox::~SelectorBox() = default;

SelectorProxyModel *SelectorBox::list() const
{
    return m_list;
}

void SelectorBox::setListSource(QAbstractItemModel *model)
{
    QAbstractItemModel *const before = m_list ? m_list->sourceModel() : model;
    if (before == model)
        return;
    m_list->setSourceModel(model);
    m_list->sort(0, Qt::AscendingOrder);
    connect(model, &QAbstractItemModel::modelReset, this, [this, model] { measureTexts(model); });
    measureTexts(model);
    delete before;
}

void SelectorBox::startReporting()
{
    setCurrentIndex(-1);
    setEditText(QString());
    connect(this, &QComboBox::editTextChanged, this, &SelectorBox::report);
    connect(this, QOverload<int>::of(&QComboBox::activated), this, &SelectorBox::item_activated);
}

void SelectorBox::report(const QString &text)
{
    if (m_refreshing)
        return;
    m_unreported = false;
    markUnmatched(false);
    edit_changed(text);
}

void SelectorBox::noteChoice()
{
    if (!m_refreshing)
        m_showsChoice = isCurrentText(Qt::CaseSensitive);
}

void SelectorBox::noteIndex()
{
    noteChoice();
    if (m_showsChoice && m_unreported)
        report(currentText());
}

bool SelectorBox::isCurrentText(Qt::CaseSensitivity sensitivity) const
{
    return currentIndex() >= 0 && itemText(currentIndex()).compare(currentText(), sensitivity) == 0;
}

int SelectorBox::rowOfText(Qt::CaseSensitivity sensitivity) const
{
    if (isCurrentText(sensitivity))
        return currentIndex();
    // Only a choice can mean a row without a name.
    if (currentText().isEmpty())
        return -1;
    return m_list ? m_list->rowOfText(currentText(), sensitivity) : -1;
}

QVariant SelectorBox::dataOfText(int role) const
{
    const int row = rowOfText(Qt::CaseInsensitive);
    return row < 0 ? QVariant() : itemData(row, role);
}

void SelectorBox::chooseKey(int role, const QVariant &key)
{
    if (!m_list || key.toString().isEmpty())
        return;
    const int row = m_list->rowsOfKey(role, key).value(0, -1);
    const QString before = currentText();
    const bool isOther = row != currentIndex();
    chooseRow(row);
    // A row of the same name: QComboBox sees no change of the text to tell of.
    if (row >= 0 && isOther && currentText() == before)
        report(before);
}

void SelectorBox::clearChoice()
{
    if (completer())
        completer()->popup()->hide();
    const bool wasNameless = m_showsChoice && currentText().isEmpty();
    setCurrentIndex(-1);
    if (wasNameless)
        report(QString());
}

void SelectorBox::beginRefresh()
{
    m_refreshing = true;
    *m_kept = Kept();
    m_kept->edit = EditState(lineEdit());
    m_kept->wasChoice = m_showsChoice;
    if (completer()) {
        m_kept->completing = completer()->popup()->isVisible();
        m_kept->prefix = completer()->completionPrefix();
    }
    // A source that was destroyed has nothing left to read.
    if (!m_list->sourceModel())
        return;
    const int row = m_showsChoice ? currentIndex() : rowOfTypedText();
    m_kept->key = dataOfRow(row, m_keyRoles);
    m_kept->lookUps = dataOfRow(row, m_list->keyRoles());
    if (view()->isVisible())
        m_kept->listKey = dataOfRow(view()->currentIndex().row(), m_keyRoles);
}

void SelectorBox::endRefresh()
{
    const Doing ofHost(Doing::Program);
    const int row = rowOfKey(m_kept->key);
    // QComboBox has shown row 0 meanwhile.
    setCurrentIndex(row);
    if (!m_kept->wasChoice)
        setEditText(m_kept->edit.text());
    m_kept->edit.restoreCaret(lineEdit());
    m_refreshing = false;
    noteChoice();

    if (view()->isVisible())
        view()->setCurrentIndex(m_list->index(rowOfKey(m_kept->listKey), 0));
    const bool isEmptied = m_kept->wasChoice && row < 0;
    if (m_kept->completing && !isEmptied) {
        completer()->setCompletionPrefix(m_kept->prefix);
        completer()->complete();
    } else if (m_kept->completing) {
        completer()->popup()->hide();
    }
    const bool stoodForARow = m_kept->wasChoice || !m_kept->key.isEmpty();
    const bool isSame = row >= 0 && rowOfTypedText() == row &&
                        dataOfRow(row, m_list->keyRoles()) == m_kept->lookUps;
    if (stoodForARow && !isSame)
        report(currentText());
    else
        m_unreported = !stoodForARow;
}

void SelectorBox::beginDataChange()
{
    m_refreshing = true;
    m_kept->edit = EditState(lineEdit());
}

void SelectorBox::endDataChange(const QModelIndex &topLeft, const QModelIndex &bottomRight)
{
    const Doing ofHost(Doing::Program);
    const bool isTyped = !m_showsChoice && !m_kept->edit.text().isEmpty();
    // What a box that cannot be edited showed before is not known.
    const bool isUnseen = isTyped || !lineEdit();
    const QString shown = currentText();
    if (isTyped)
        setEditText(m_kept->edit.text());
    m_kept->edit.restoreCaret(lineEdit());
    m_refreshing = false;
    noteChoice();
    const bool isWholeList = topLeft.row() == 0 && bottomRight.row() == m_list->rowCount() - 1;
    if (isWholeList)
        measureTexts(m_list->sourceModel());
    if (isUnseen ? isWholeList : shown != m_kept->edit.text())
        report(currentText());
}

QVariantList SelectorBox::dataOfRow(int row, const QVector<int> &roles) const
{
    QVariantList all;
    for (const int role : roles) {
        if (row >= 0)
            all.append(itemData(row, role));
    }
    return all;
}

int SelectorBox::rowOfKey(const QVariantList &key) const
{
    if (key.isEmpty())
        return -1;
    const QVector<int> rows = m_list->rowsOfKey(m_keyRoles.first(), key.first());
    for (const int row : rows) {
        if (dataOfRow(row, m_keyRoles) == key)
            return row;
    }
    return -1;
}

ComboBox::TextRows SelectorBox::rowsOfText(const QString &text) const
{
    if (!m_list)
        return ComboBox::rowsOfText(text);
    return {m_list->rowOfText(text, Qt::CaseInsensitive), m_list->countOfText(text)};
}
