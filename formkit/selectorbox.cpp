#include "selectorbox.h"

#include "rowlistview_p.h"
#include "selectorcompleter_p.h"
#include "selectorproxymodel.h"

#include <QLineEdit>

SelectorBox::SelectorBox(SelectorProxyModel *list, const QVector<int> &keyRoles, QWidget *parent)
    : ComboBox(parent), m_list(list), m_keyRoles(keyRoles)
{
    m_list->setParent(this);
    setView(new RowListView);
    setModel(m_list);
    delete completer();
    setCompleter(new SelectorCompleter(m_list, this));
    comboBoxValidator()->setModel(m_list);
    setCurrentIndex(-1);

    // QComboBox would choose the first of several rows that differ in case alone.
    disconnect(lineEdit(), &QLineEdit::editingFinished, this, nullptr);
    connect(lineEdit(), &QLineEdit::editingFinished, this, &SelectorBox::leave);
    // After the connections of QComboBox, its view and its completer, so that endRefresh()
    // finds them ready.
    connect(m_list, &QAbstractItemModel::modelAboutToBeReset, this, &SelectorBox::beginRefresh);
    connect(m_list, &QAbstractItemModel::modelReset, this, &SelectorBox::endRefresh);
}

void SelectorBox::setListSource(QAbstractItemModel *model)
{
    QAbstractItemModel *const before = m_list->sourceModel();
    if (before == model)
        return;
    model->setParent(this);
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
    markUnmatched(false);
    edit_changed(text);
}

bool SelectorBox::isCurrentText(const QString &text) const
{
    return currentIndex() >= 0 && itemText(currentIndex()) == text;
}

int SelectorBox::rowOfText(Qt::CaseSensitivity sensitivity) const
{
    const QString text = currentText();
    return isCurrentText(text) ? currentIndex() : m_list->rowOfText(text, sensitivity);
}

QVariant SelectorBox::dataOfText(int role) const
{
    const int row = rowOfText(Qt::CaseInsensitive);
    return row < 0 ? QVariant() : itemData(row, role);
}

void SelectorBox::chooseKey(int role, const QVariant &key)
{
    const int row = m_list->rowsOfKey(role, key).value(0, -1);
    const QString before = currentText();
    const bool isOther = row != currentIndex();
    chooseRow(row);
    // A row of the same name: QComboBox sees no change of the text to tell of.
    if (row >= 0 && isOther && currentText() == before)
        report(before);
}

void SelectorBox::beginRefresh()
{
    m_refreshing = true;
    m_kept = Kept();
    m_kept.text = currentText();
    m_kept.caret = lineEdit()->cursorPosition();
    m_kept.selectionStart = lineEdit()->selectionStart();
    m_kept.selectionLength = lineEdit()->selectionLength();
    m_kept.completing = completer()->popup()->isVisible();
    if (isCurrentText(m_kept.text)) {
        for (const int role : qAsConst(m_keyRoles))
            m_kept.key.append(itemData(currentIndex(), role));
    }
}

void SelectorBox::endRefresh()
{
    const bool isGone = !m_kept.key.isEmpty() && rowOfKey(m_kept.key) < 0;
    if (isGone)
        setCurrentIndex(-1);
    else
        showKeptRow();
    m_refreshing = false;
    if (isGone)
        report(QString());
}

// Brings back what stood there: QComboBox has shown row 0 meanwhile.
void SelectorBox::showKeptRow()
{
    setCurrentIndex(m_kept.key.isEmpty() ? -1 : rowOfKey(m_kept.key));
    if (m_kept.key.isEmpty())
        setEditText(m_kept.text);
    if (currentText() == m_kept.text) {
        if (m_kept.selectionStart < 0)
            lineEdit()->setCursorPosition(m_kept.caret);
        else if (m_kept.caret == m_kept.selectionStart)
            lineEdit()->setSelection(m_kept.selectionStart + m_kept.selectionLength,
                                     -m_kept.selectionLength);
        else
            lineEdit()->setSelection(m_kept.selectionStart, m_kept.selectionLength);
    }
    if (m_kept.completing) {
        completer()->setCompletionPrefix(currentText());
        completer()->complete();
    }
}

int SelectorBox::rowOfKey(const QVariantList &key) const
{
    for (const int row : m_list->rowsOfKey(m_keyRoles.first(), key.first())) {
        bool isSame = true;
        for (int i = 1; i < key.size(); ++i)
            isSame = isSame && itemData(row, m_keyRoles.at(i)) == key.at(i);
        if (isSame)
            return row;
    }
    return -1;
}

void SelectorBox::leave()
{
    const QString text = currentText();
    if (text.isEmpty() || isCurrentText(text))
        return;
    const int matches = m_list->countOfText(text);
    if (matches == 1)
        chooseRow(m_list->rowOfText(text, Qt::CaseInsensitive));
    markUnmatched(matches == 0);
}

void SelectorBox::markUnmatched(bool unmatched)
{
    if (unmatched == m_unmatched)
        return;
    m_unmatched = unmatched;
    lineEdit()->setStyleSheet(unmatched ? QStringLiteral("color: red") : QString());
    lineEdit()->setToolTip(unmatched ? tr("Not in the list") : QString());
}
