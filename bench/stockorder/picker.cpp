// SPDX-License-Identifier: BSD-3-Clause
#include "picker.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QListView>
#include <QRegularExpression>
#include <QSignalBlocker>
#include <QWheelEvent>

Picker::Picker(const QString &none, bool freeText) : m_none(none), m_freeText(freeText)
{
    setEditable(true);
    setInsertPolicy(NoInsert);
    setFocusPolicy(Qt::StrongFocus);
    m_shown.setFilterRole(GroupRole);
    m_shown.setSortCaseSensitivity(Qt::CaseInsensitive);
    setModel(&m_shown);
    completer()->setModel(&m_shown);
    completer()->setCompletionMode(QCompleter::PopupCompletion);
    completer()->setCaseSensitivity(Qt::CaseInsensitive);
    // What Qt has for long lists.
    completer()->setModelSorting(QCompleter::CaseInsensitivelySortedModel);
    for (QAbstractItemView *list : {completer()->popup(), view()})
        static_cast<QListView *>(list)->setUniformItemSizes(true);
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(20);
    connect(this, &QComboBox::editTextChanged, this, [this](const QString &text) {
        mark(false);
        if (text.isEmpty())
            setCurrentIndex(-1);
        Q_EMIT picked();
    });
    connect(this, QOverload<int>::of(&QComboBox::activated), this, &Picker::picked);
    // QComboBox would choose the first of several rows that differ only in case.
    disconnect(lineEdit(), &QLineEdit::editingFinished, this, nullptr);
    connect(lineEdit(), &QLineEdit::editingFinished, this, &Picker::leave);
}

void Picker::setRows(QStandardItemModel *rows)
{
    const QString text = currentText();
    const QString chosen = key();
    const int caret = lineEdit()->cursorPosition();
    const bool wasChosen = !m_freeText && chosen != m_none;
    {
        const QSignalBlocker quiet(this);
        rows->setParent(this);
        delete m_shown.sourceModel();
        m_shown.setSourceModel(rows);
        m_shown.sort(0);
        const int row = m_freeText ? rowOf(text, Qt::DisplayRole) : rowOf(chosen, KeyRole);
        setCurrentIndex(wasChosen || m_freeText ? row : -1);
        if (!wasChosen || row >= 0) {
            setEditText(row >= 0 && wasChosen ? itemText(row) : text);
            lineEdit()->setCursorPosition(caret);
            return;
        }
    }
    setCurrentIndex(-1);
    clearEditText();
    Q_EMIT picked();
}

void Picker::narrow(const QString &group)
{
    if (group == m_group)
        return;
    m_group = group;
    {
        const QSignalBlocker quiet(this);
        const QString pattern = QRegularExpression::escape(group);
        m_shown.setFilterRegularExpression(
            group.isEmpty() ? QString() : QRegularExpression::anchoredPattern(pattern));
        setCurrentIndex(-1);
        clearEditText();
    }
    Q_EMIT picked();
}

QString Picker::key() const
{
    if (m_freeText)
        return currentText();
    int row = currentIndex();
    if (row < 0 || itemText(row) != currentText())
        row = currentText().isEmpty() ? -1 : rowOf(currentText(), Qt::DisplayRole);
    return row < 0 ? m_none : itemData(row, KeyRole).toString();
}

void Picker::setKey(const QString &key)
{
    if (m_freeText) {
        setEditText(key);
        return;
    }
    const int row = rowOf(key, KeyRole);
    if (row >= 0)
        setCurrentIndex(row);
}

void Picker::wheelEvent(QWheelEvent *event)
{
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

void Picker::leave()
{
    const QString text = currentText();
    if (text.isEmpty() || view()->isVisible() ||
        (currentIndex() >= 0 && itemText(currentIndex()) == text))
        return;
    const QModelIndexList rows =
        m_shown.match(m_shown.index(0, 0), Qt::DisplayRole, text, 2, Qt::MatchFixedString);
    if (rows.size() == 1)
        setCurrentIndex(rows.first().row());
    mark(rows.isEmpty());
}

void Picker::mark(bool unmatched)
{
    lineEdit()->setStyleSheet(unmatched ? "color: red" : "");
    lineEdit()->setToolTip(unmatched ? tr("Not in the list") : QString());
}

int Picker::rowOf(const QString &value, int role) const
{
    const QModelIndexList rows =
        m_shown.match(m_shown.index(0, 0), role, value, 1, Qt::MatchFixedString);
    return rows.isEmpty() ? -1 : rows.first().row();
}
