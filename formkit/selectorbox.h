#pragma once

#include <formkit/combobox.h>

class SelectorProxyModel;

// What the boxes that select from a reference table have in common. Beside its own list each
// box shows, whatever its size, in time that does not grow with the table, and:
// - A refresh of the list (its model is populated anew, or the filter changes) keeps the
//   choice: the same row by its key stays current, and a half-typed text stays as it is,
//   caret and all; the box reports nothing. Only when the chosen row is gone does the box
//   empty itself and report that.
// - While the current row's text is the edit text, it is that row that the box answers for;
//   otherwise the first row of that text.
// - When the box is left, a text that one row alone has, ignoring case, chooses that row. A
//   text that no row has stays as it is, in red and with a tool tip that says so.
class FORMKIT_EXPORT SelectorBox : public ComboBox
{
    Q_OBJECT

protected:
    // Takes the list over. `keyRoles` tell one row from every other, the first of them being
    // one of the list's key roles.
    SelectorBox(SelectorProxyModel *list, const QVector<int> &keyRoles, QWidget *parent);

    // Takes a model over, populated, as the source of the list; the one before is deleted.
    void setListSource(QAbstractItemModel *model);
    // To be called at the end of a subclass's construction: shows no choice and begins to
    // report what the user does.
    void startReporting();

    // The row that the edit text stands for, -1 for none.
    int rowOfText(Qt::CaseSensitivity sensitivity) const;
    // The data of that row, any letter case; invalid for none.
    QVariant dataOfText(int role) const;
    // Chooses the first row of a key, if there is one.
    void chooseKey(int role, const QVariant &key);

    SelectorProxyModel *list() const { return m_list; }

protected slots:
    // The edit text has changed, by whatever means but a refresh.
    virtual void edit_changed(const QString &text) = 0;
    // The user has chosen a row.
    virtual void item_activated(int index) = 0;

private:
    struct Kept
    {
        QVariantList key;
        QString text;
        int caret = 0;
        int selectionStart = -1;
        int selectionLength = 0;
        bool completing = false;
    };

    void beginRefresh();
    void endRefresh();
    void showKeptRow();
    int rowOfKey(const QVariantList &key) const;
    void report(const QString &text);
    void leave();
    void markUnmatched(bool unmatched);
    bool isCurrentText(const QString &text) const;

    SelectorProxyModel *m_list;
    QVector<int> m_keyRoles;
    Kept m_kept;
    bool m_refreshing = false;
    bool m_unmatched = false;
};
