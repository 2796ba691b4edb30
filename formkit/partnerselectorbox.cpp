#include "partnerselectorbox.h"

#include "foldedtext_p.h"
#include "partnerlinedelegate_p.h"
#include "partnersindex_p.h"

#include <hostapi/table.h>

#include <QCompleter>
#include <QLineEdit>
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

} // namespace

PartnerSelectorBox::PartnerSelectorBox(QWidget *parent) : ComboBox(parent)
{
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    setItemDelegate(new PartnerLineDelegate(this));
    populate();
    setEditText(QString());
    setStyleSheet(QStringLiteral("QComboBox QAbstractItemView {min-width: %1em;}").arg(PopupWidth));
    connect(this, &QComboBox::editTextChanged, this, &PartnerSelectorBox::edit_changed);
    connect(this, QOverload<int>::of(&QComboBox::activated), this,
            &PartnerSelectorBox::item_activated);
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
    QStandardItemModel *const model = readPartners();
    const QString text = currentText();
    const int caret = lineEdit()->cursorPosition();
    const bool wasChosen = !text.isEmpty() && currentIndex() >= 0 && codeAt(currentIndex()) == text;
    bool isGone = false;
    {
        const QScopedValueRollback<bool> silent(m_silent, true);
        install(model);
        const int row = text.isEmpty() ? -1 : rowOfCode(text, Qt::CaseSensitive);
        isGone = wasChosen && row < 0;
        if (row >= 0) {
            setEditText(text);
            setCurrentIndex(row);
            m_partnerName = m_model->index(row, NameColumn).data().toString();
        } else if (text.isEmpty() || isGone) {
            setCurrentIndex(m_model->rowCount() > 0 ? 0 : -1);
            setEditText(QString());
        } else {
            setCurrentIndex(-1);
            setEditText(text);
        }
        lineEdit()->setCursorPosition(caret);
    }
    if (isGone)
        edit_changed(QString());
}

void PartnerSelectorBox::install(QStandardItemModel *model)
{
    m_rows.clear();
    m_foldedRows.clear();
    for (int row = model->rowCount() - 1; row >= 0; --row) {
        const QString code = model->index(row, CodeColumn).data().toString();
        m_rows.insert(code, row);
        m_foldedRows.insert(FoldedText::folded(code), row);
    }
    QStandardItemModel *const before = m_model;
    m_model = model;
    setModel(model);
    completer()->setModel(model);
    comboBoxValidator()->setModel(model);
    setModelColumn(CodeColumn);
    measureTexts(model);
    delete before;
}

QString PartnerSelectorBox::codeAt(int row) const
{
    return m_model ? m_model->index(row, CodeColumn).data().toString() : QString();
}

int PartnerSelectorBox::rowOfCode(const QString &code, Qt::CaseSensitivity sensitivity) const
{
    return sensitivity == Qt::CaseSensitive ? m_rows.value(code, -1)
                                            : m_foldedRows.value(FoldedText::folded(code), -1);
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
    const QString text = currentText();
    const int caret = lineEdit()->cursorPosition();
    setModelColumn(column);
    setEditText(text);
    lineEdit()->setCursorPosition(caret);
}

void PartnerSelectorBox::setPartner(const QString &code)
{
    if (code == m_partner)
        return;
    m_partner = code;
    const int row = rowOfCode(code, Qt::CaseInsensitive);
    if (row >= 0)
        chooseRow(row);
    else
        setEditText(code);
}

void PartnerSelectorBox::edit_changed(const QString &text)
{
    if (m_silent)
        return;
    const int row = rowOfCode(text, Qt::CaseSensitive);
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

void PartnerSelectorBox::item_activated(int index)
{
    m_partnerName = m_model->index(index, NameColumn).data().toString();
    m_partner = codeAt(index);
    emit changedPartner(m_partner);
    emit changedPartnerName(m_partnerName);
}
