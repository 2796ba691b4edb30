// SPDX-License-Identifier: BSD-3-Clause
#include "combobox.h"

#include "comboboxusability_p.h"
#include "errorcolor_p.h"
#include "rowlists_p.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QEvent>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QStyleOptionComboBox>

#include <algorithm>

namespace {

// The width that QComboBox gives an empty list.
constexpr int FewestCharacters = 7;

// Whether Enter chooses a completion. QComboBox emits activated() for that itself.
bool isCompletionLit(const QCompleter *completer)
{
    if (!completer || completer->completionMode() == QCompleter::InlineCompletion)
        return false;
    const QAbstractItemView *const list = completer->popup();
    return list->isVisible() && list->selectionModel() && list->selectionModel()->hasSelection();
}

} // namespace

ComboBox::ComboBox(QWidget *parent) : QComboBox(parent)
{
    setEditable(true);
    new ComboBoxUsability(this);
    furnishLineEdit();
    setCurrentIndex(-1);
}

QCompleter *ComboBox::makeCompleter()
{
    auto *const typeAhead = new QCompleter(this);
    typeAhead->setCaseSensitivity(Qt::CaseInsensitive);
    typeAhead->setModel(model());
    return typeAhead;
}

void ComboBox::replaceCompleter()
{
    delete m_completer;
    m_completer = makeCompleter();
    setCompleter(m_completer);
}

// Gives a new line edit what the first one had.
void ComboBox::furnishLineEdit()
{
    QLineEdit *const edit = lineEdit();
    if (!edit || edit == m_furnished)
        return;
    m_furnished = edit;
    m_validator = new ComboBoxValidator(edit);
    m_validator->setModel(model());
    // QComboBox has given it an inline completer, which is a child of the line edit.
    const QCompleter *const own = edit->completer();
    if (!own || (own->parent() == edit && own->completionMode() == QCompleter::InlineCompletion))
        replaceCompleter();
    if (m_choosesWhenLeft)
        chooseWhenLeft();
    mark(std::exchange(m_mark, QString()));
}

bool ComboBox::event(QEvent *event)
{
    const bool done = QComboBox::event(event);
    // Nothing else tells of a new line edit. While it is added as a child, lineEdit() does not
    // return it yet; when it is polished, it does.
    if (event->type() == QEvent::ChildAdded)
        QMetaObject::invokeMethod(this, &ComboBox::furnishLineEdit, Qt::QueuedConnection);
    else if (event->type() == QEvent::ChildPolished)
        furnishLineEdit();
    else if (event->type() == QEvent::Show)
        m_wasShown = true;
    return done;
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

QString ComboBox::textOfRow(int row) const
{
    const QString text = model()->index(row, 0, rootModelIndex()).data().toString();
    return lineEdit() ? text.left(lineEdit()->maxLength()) : text;
}

void ComboBox::chooseRow(int row)
{
    if (row >= 0)
        setCurrentIndex(row);
}

void ComboBox::chooseWhenLeft()
{
    m_choosesWhenLeft = true;
    // QComboBox's own slot would choose the first of several rows that differ only in case.
    disconnect(lineEdit(), &QLineEdit::editingFinished, this, nullptr);
    connect(lineEdit(), &QLineEdit::editingFinished, this, &ComboBox::leave);
}

void ComboBox::leave()
{
    // Opening the list takes the focus from the line edit, too.
    if (m_opening || view()->isVisible())
        return;
    const QString text = currentText();
    if (isChoiceOrEmpty(text))
        return;
    const TextRows rows = rowsOfText(text);
    const bool completerTells = isCompletionLit(completer());
    if (rows.count == 0 && m_mark.isEmpty())
        mark(tr("Not in the list"));
    if (rows.count != 1)
        return;
    chooseRow(rows.first);
    if (!completerTells) {
        Q_EMIT activated(rows.first);
        Q_EMIT textActivated(currentText());
    }
}

ComboBox::TextRows ComboBox::rowsOfText(const QString &text) const
{
    TextRows exact{-1, 0};
    TextRows inAnyCase{-1, 0};
    for (int row = count() - 1; row >= 0; --row) {
        const QString other = textOfRow(row);
        if (other == text)
            exact = {row, exact.count + 1};
        if (other.compare(text, Qt::CaseInsensitive) == 0)
            inAnyCase = {row, inAnyCase.count + 1};
    }
    return exact.count > 0 ? exact : inAnyCase;
}

bool ComboBox::isChoiceOrEmpty(const QString &text) const
{
    return text.isEmpty() || (currentIndex() >= 0 && textOfRow(currentIndex()) == text);
}

QString ComboBox::fault() const
{
    const bool isNone = m_choosesWhenLeft && !isChoiceOrEmpty(currentText());
    return m_mark.isEmpty() && isNone ? tr("Not in the list") : m_mark;
}

void ComboBox::mark(const QString &why)
{
    QLineEdit *const edit = lineEdit();
    if (why == m_mark)
        return;
    if (m_mark.isEmpty() && edit)
        m_unmarked = QStringList{edit->styleSheet(), edit->toolTip(), edit->placeholderText()};
    m_mark = why;
    if (!edit)
        return;
    const QStringList looks =
        why.isEmpty()
            ? m_unmarked
            : QStringList{QStringLiteral("color: ") + errorColor(edit->palette()).name(), why, why};
    edit->setStyleSheet(looks.value(0));
    edit->setToolTip(looks.value(1));
    edit->setPlaceholderText(looks.value(2));
}

void ComboBox::measureTexts(const QAbstractItemModel *model)
{
    if (m_wasShown)
        return;
    LongestTexts longest;
    const int rows = model->rowCount();
    for (int row = 0; row < rows; ++row)
        longest.add(model->index(row, 0).data().toString());
    measureTexts(longest.texts());
}

void ComboBox::measureTexts(const QStringList &longest)
{
    if (m_wasShown)
        return;
    m_longest = longest;
    m_measured = true;
    updateGeometry();
}

QSize ComboBox::sizeFor(bool ofContents) const
{
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QFontMetrics metrics = fontMetrics();
    const auto widthOf = [&](QLatin1Char character, int count) {
        return metrics.horizontalAdvance(character) * count;
    };
    int width = widthOf(QLatin1Char('X'), minimumContentsLength());
    const bool fitsContents =
        sizeAdjustPolicy() == AdjustToContents || sizeAdjustPolicy() == AdjustToContentsOnFirstShow;
    if (ofContents && fitsContents) {
        int widest = widthOf(QLatin1Char('x'), FewestCharacters);
        for (const QString &text : m_longest)
            widest = qMax(widest, metrics.horizontalAdvance(text));
        width = qMax(width, qMin(widest, widthOf(QLatin1Char('x'), LongestTexts::MostCharacters)));
    }
    const QSize contents(width, qMax(metrics.height(), 14) + 2);
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, contents, this);
}

QSize ComboBox::sizeHint() const
{
    return m_measured ? sizeFor(true) : QComboBox::sizeHint();
}

QSize ComboBox::minimumSizeHint() const
{
    return m_measured ? sizeFor(minimumContentsLength() == 0) : QComboBox::minimumSizeHint();
}
