#include "combobox.h"

#include "comboboxmanners_p.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QStyleOptionComboBox>

#include <algorithm>

namespace {

constexpr int MeasuredTexts = 8;
// What QComboBox takes for an empty list.
constexpr int FewestCharacters = 7;

} // namespace

ComboBox::ComboBox(QWidget *parent) : QComboBox(parent)
{
    setEditable(true);
    new ComboBoxManners(this);

    auto *typeAhead = new QCompleter(this);
    typeAhead->setCaseSensitivity(Qt::CaseInsensitive);
    setCompleter(typeAhead);
    typeAhead->setModel(model());

    m_validator = new ComboBoxValidator(lineEdit());
    m_validator->setModel(model());
    setCurrentIndex(-1);
}

void ComboBox::showPopup()
{
    {
        const QSignalBlocker quiet(view());
        if (QItemSelectionModel *const selection = view()->selectionModel())
            selection->clearSelection();
    }
    const QScopedValueRollback<bool> opening(m_opening, true);
    QComboBox::showPopup();
}

void ComboBox::chooseRow(int row)
{
    if (row >= 0)
        setCurrentIndex(row);
}

void ComboBox::chooseWhenLeft()
{
    disconnect(lineEdit(), &QLineEdit::editingFinished, this, nullptr);
    connect(lineEdit(), &QLineEdit::editingFinished, this, &ComboBox::leave);
}

void ComboBox::leave()
{
    // The line edit loses the focus to the list of the box too.
    if (m_opening || view()->isVisible())
        return;
    const QString text = currentText();
    if (text.isEmpty() || (currentIndex() >= 0 && itemText(currentIndex()) == text))
        return;
    const TextRows rows = rowsOfText(text);
    if (rows.count == 1)
        chooseRow(rows.first);
    markUnmatched(rows.count == 0);
}

ComboBox::TextRows ComboBox::rowsOfText(const QString &text) const
{
    TextRows rows{-1, 0};
    for (int row = count() - 1; row >= 0; --row) {
        if (itemText(row).compare(text, Qt::CaseInsensitive) == 0)
            rows = {row, rows.count + 1};
    }
    return rows;
}

void ComboBox::markUnmatched(bool unmatched)
{
    if (unmatched == m_unmatched || !lineEdit())
        return;
    m_unmatched = unmatched;
    lineEdit()->setStyleSheet(unmatched ? QStringLiteral("color: red") : QString());
    lineEdit()->setToolTip(unmatched ? tr("Not in the list") : QString());
}

void ComboBox::measureTexts(const QAbstractItemModel *model)
{
    const auto byLength = [](const QString &a, const QString &b) { return a.size() > b.size(); };
    const int rows = model->rowCount();
    int shortest = 0;
    m_longest.clear();
    for (int row = 0; row < rows; ++row) {
        const QString text = model->index(row, 0).data().toString();
        if (text.size() <= shortest)
            continue;
        m_longest.insert(std::upper_bound(m_longest.begin(), m_longest.end(), text, byLength),
                         text);
        if (m_longest.size() > MeasuredTexts) {
            m_longest.removeLast();
            shortest = m_longest.last().size();
        }
    }
    m_measured = true;
    updateGeometry();
}

QSize ComboBox::sizeHint() const
{
    if (!m_measured)
        return QComboBox::sizeHint();
    QStyleOptionComboBox option;
    initStyleOption(&option);
    int width = fontMetrics().horizontalAdvance(QLatin1Char('x')) * FewestCharacters;
    for (const QString &text : m_longest)
        width = qMax(width, fontMetrics().horizontalAdvance(text));
    const QSize contents(width, qMax(fontMetrics().height(), 14) + 2);
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, contents, this);
}

QSize ComboBox::minimumSizeHint() const
{
    return m_measured ? sizeHint() : QComboBox::minimumSizeHint();
}
