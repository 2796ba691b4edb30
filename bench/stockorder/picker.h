// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QComboBox>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>

/// Selects a row of a table by its text, with type-ahead.
class Picker : public QComboBox
{
    Q_OBJECT

public:
    enum Role { KeyRole = Qt::UserRole + 1, GroupRole };

    /// `none` is the key of no row; `freeText` makes any text its own key.
    explicit Picker(const QString &none, bool freeText = false);

    /// Takes the rows and owns them. The choice stays, or what is half typed.
    void setRows(QStandardItemModel *rows);
    /// Shows the rows of a group (all rows for an empty one), and no choice.
    void narrow(const QString &group);

    /// The key of the row that the text names.
    QString key() const;
    void setKey(const QString &key);

Q_SIGNALS:
    void picked();

protected:
    void wheelEvent(QWheelEvent *event) override;

private:
    void leave();
    void mark(bool unmatched);
    int rowOf(const QString &value, int role) const;

    QSortFilterProxyModel m_shown;
    QString m_group;
    const QString m_none;
    const bool m_freeText;
};
