#include "partnerselectorbox.h"

#include "doing_p.h"
#include "editstate_p.h"
#include "foldedtext_p.h"
#include "partnerlinedelegate_p.h"
#include "partnersindex_p.h"
#include "rowlistview_p.h"

#include <hostapi/table.h>

#include <QCompleter>
#include <QScopedValueRollback>
#include <QStandardItemModel>

#include <memory>

namespace {

constexpr int PopupWidth = 40; // em

QString displayLine(const QString &code, const QString &name)
{
    const QString blanks(qMax(0, PartnerSelectorBox::CodeColumnWidth - code.size()),
                         QLatin1Char(' '));
    return QStringLiteral("%1%2%3").arg(code, blanks, name);
}

// QCompleter prepares its list anew for each model, and neither lets go of the delegate made for
// the last one nor of its own connection to the list: an hour of refreshes would pile them up.
void setCompletionModel(QCompleter *completer, QAbstractItemModel *model)
{
    QAbstractItemView *const list = completer->popup();
    QAbstractItemDelegate *const former = list->itemDelegate();
    QObject::disconnect(completer, nullptr, list, nullptr);
    completer->setModel(model);
    if (former->parent() == list)
        delete former;
}

} // namespace

PartnerSelectorBox::PartnerSelectorBox(QWidget *parent) : ComboBox(parent)
{
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    auto *const list = new RowListView;
    list->setModelColumn(LineColumn);
    setView(list);
    setItemDelegate(new PartnerLineDelegate(this));
    completer()->setPopup(new RowListView);
    chooseWhenLeft();
    populate();
    setEditText(QString());
    setStyleSheet(QStringLiteral("QComboBox QAbstractItemView {min-width: %1em;}").arg(PopupWidth));
    connect(this, &QComboBox::editTextChanged, this, &PartnerSelectorBox::edit_changed);
    connect(this, QOverload<int>::of(&QComboBox::activated), this,
            &PartnerSelectorBox::item_activated);
    connect(this, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &PartnerSelectorBox::noteIndex);
}

bool PartnerSelectorBox::isRiskAddress() const
{
    const QVariant property = parent() ? parent()->property("RiskAddress") : QVariant();
    return property.canConvert<bool>() && property.toBool();
}

QStandardItemModel *PartnerSelectorBox::readPartners()
{
    PartnersIndex partners;
    partners.build();
    const TableLock lock(partners.table());
    auto model = std::make_unique<QStandardItemModel>(this);
    const bool clientsOnly = isRiskAddress();
    for (const Record &record : partners) {
        const QString code = record.field(partners.codeColumn()).toString();
        const QString clientCode = record.field(partners.clientCodeColumn()).toString();
        if (code.trimmed().isEmpty() || (clientsOnly && clientCode.trimmed().isEmpty()))
            continue;
        const QString name = record.field(partners.nameColumn()).toString();
        model->appendRow({new QStandardItem(code), new QStandardItem(displayLine(code, name)),
                          new QStandardItem(name)});
    }
    return model.release();
}

void PartnerSelectorBox::populate()
{
    const Doing ofHost(Doing::Program);
    QStandardItemModel *const model = readPartners();
    const QString listCode = codeAt(view()->currentIndex().row());
    const QString listName = nameAt(view()->currentIndex().row());
    const EditState edit(lineEdit());
    const QString text = edit.text();
    const bool wasListed = !text.isEmpty() && m_rows.contains(text);
    const bool wasChosen = wasListed && currentIndex() >= 0 && codeAt(currentIndex()) == text;
    const bool isCompleting = completer() && completer()->popup()->isVisible();
    const QString prefix = isCompleting ? completer()->completionPrefix() : QString();
    {
        const QScopedValueRollback<bool> silent(m_silent, true);
        install(model);
        const bool isEmptied = text.isEmpty() || (wasChosen && !m_rows.contains(text));
        if (isEmptied)
            setCurrentIndex(m_model->rowCount() > 0 ? 0 : -1);
        else
            setCurrentIndex(wasListed ? rowOfPartner(text, m_partnerName) : -1);
        setEditText(isEmptied ? QString() : text);
        edit.restoreCaret(lineEdit());
    }
    if (view()->isVisible())
        view()->setCurrentIndex(m_model->index(rowOfPartner(listCode, listName), LineColumn));
    if (isCompleting) {
        completer()->setCompletionPrefix(prefix);
        completer()->complete();
    }
    if (wasListed && !m_rows.contains(text))
        edit_changed(currentText());
    else
        m_partnerName = nameAt(rowOfPartner(m_partner, m_partnerName));
    m_unreported = !wasListed && m_rows.contains(text);
}

void PartnerSelectorBox::install(QStandardItemModel *model)
{
    m_rows.clear();
    m_foldedRows.clear();
    for (int row = model->rowCount() - 1; row >= 0; --row) {
        const QString code = model->index(row, CodeColumn).data().toString();
        m_rows.insert(code, row);
        TextRows &rows = m_foldedRows[FoldedText::folded(code)];
        rows = {row, rows.count + 1};
    }
    m_model = model;
    // QComboBox deletes the model before, as it is a child of the box.
    setModel(model);
    if (lineEdit()) {
        setCompletionModel(completer(), model);
        comboBoxValidator()->setModel(model);
    }
    setModelColumn(view()->isVisible() ? LineColumn : CodeColumn);
    measureTexts(model);
}

QString PartnerSelectorBox::codeAt(int row) const
{
    return m_model ? m_model->index(row, CodeColumn).data().toString() : QString();
}

int PartnerSelectorBox::rowOfPartner(const QString &code, const QString &name) const
{
    const int first = m_rows.value(code, -1);
    for (int row = first; row >= 0 && codeAt(row) == code; ++row) {
        if (nameAt(row) == name)
            return row;
    }
    return first;
}

QString PartnerSelectorBox::nameAt(int row) const
{
    return m_model ? m_model->index(row, NameColumn).data().toString() : QString();
}

ComboBox::TextRows PartnerSelectorBox::rowsOfText(const QString &text) const
{
    return m_foldedRows.value(FoldedText::folded(text), {-1, 0});
}

void PartnerSelectorBox::showPopup()
{
    showColumn(LineColumn);
    ComboBox::showPopup();
}

void PartnerSelectorBox::hidePopup()
{
    showColumn(CodeColumn);
    ComboBox::hidePopup();
}

// QComboBox puts the new column's text into the edit field.
void PartnerSelectorBox::showColumn(Column column)
{
    if (modelColumn() == column)
        return;
    const QScopedValueRollback<bool> silent(m_silent, true);
    const EditState edit(lineEdit());
    setModelColumn(column);
    setEditText(edit.text());
    edit.restoreCaret(lineEdit());
}

void PartnerSelectorBox::setPartner(const QString &code)
{
    if (code == m_partner)
        return;
    const int row = rowsOfText(code).first;
    m_partner = row >= 0 ? codeAt(row) : code;
    if (row >= 0)
        chooseRow(row);
    else
        setEditText(code);
}

void PartnerSelectorBox::edit_changed(const QString &text)
{
    if (m_silent)
        return;
    m_unreported = false;
    markUnmatched(false);
    const bool isCurrent = currentIndex() >= 0 && codeAt(currentIndex()) == text;
    const int row = isCurrent ? currentIndex() : m_rows.value(text, -1);
    if (row >= 0) {
        item_activated(row);
        return;
    }
    if (text.isEmpty())
        setCurrentIndex(-1);
    m_partner = text;
    emit changedPartner(m_partner);
    m_partnerName.clear();
    emit changedPartnerName(m_partnerName);
}

// A typed code that a population has brought is chosen: the text, which would tell, stays.
void PartnerSelectorBox::noteIndex(int index)
{
    if (!m_silent && m_unreported && codeAt(index) == currentText())
        item_activated(index);
}

void PartnerSelectorBox::item_activated(int index)
{
    m_unreported = false;
    m_partnerName = nameAt(index);
    m_partner = codeAt(index);
    emit changedPartner(m_partner);
    emit changedPartnerName(m_partnerName);
}
