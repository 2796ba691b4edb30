#pragma once

#include <formkit/combobox.h>

#include <memory>

class SelectorProxyModel;

// What the boxes that select from a reference table have in common. Beside its own list each
// box shows, whatever its size, in time that does not grow with the table (opening it while
// the box cannot be edited excepted: some styles then measure every row), and:
// - A refresh of the list (its model is populated anew, or the filter changes) keeps the
//   choice: the same row by its key stays current, and a half-typed text stays as it is,
//   caret and all; the box reports nothing unless an id or a code of the row has become another
//   one. Only when the chosen row is gone does the box empty itself and report that. When it is
//   a typed text that names the row, the text stays, and the box reports what it stands for now. A
//   row that comes to match a half-typed text is not chosen before the user goes on typing or
//   leaves the box.
// - While the current row's text is the edit text, it is that row that the box answers for;
//   otherwise the first row of that text. A row without a name counts while it is chosen;
//   an empty text as such stands for no row.
// - It chooses when it is left (see ComboBox::chooseWhenLeft()).
class FORMKIT_EXPORT SelectorBox : public ComboBox
{
    Q_OBJECT

protected:
    // Takes the list over. `keyRoles` tell one row from every other, the first of them being
    // one of the list's key roles. `typing` is how typed text is compared with the rows'.
    SelectorBox(SelectorProxyModel *list, const QVector<int> &keyRoles, Qt::CaseSensitivity typing,
                QWidget *parent);
    ~SelectorBox() override;

    // Makes a populated model of the box the source of the list; the one before is deleted.
    void setListSource(QAbstractItemModel *model);
    // To be called at the end of a subclass's construction: shows no choice and begins to
    // report what the user does.
    void startReporting();

    // The row that typed text stands for, -1 for none.
    int rowOfTypedText() const { return rowOfText(m_typing); }
    // Shows no choice and an empty text.
    void clearChoice();
    // The data of the row of the edit text, in any letter case; invalid for none.
    QVariant dataOfText(int role) const;
    // Chooses the first row of a key, if there is one. An empty key is that of no row.
    void chooseKey(int role, const QVariant &key);

    TextRows rowsOfText(const QString &text) const override;

    // The list that is shown; null once the host has set a model past setListSource().
    SelectorProxyModel *list() const;

protected slots:
    // The edit text has changed, by whatever means but a refresh.
    virtual void edit_changed(const QString &text) = 0;
    // The user has chosen a row.
    virtual void item_activated(int index) = 0;

private:
    struct Kept;

    void beginRefresh();
    void endRefresh();
    void beginDataChange();
    void endDataChange(const QModelIndex &topLeft, const QModelIndex &bottomRight);
    void noteChoice();
    void noteIndex();
    QVariantList dataOfRow(int row, const QVector<int> &roles) const;
    int rowOfKey(const QVariantList &key) const;
    int rowOfText(Qt::CaseSensitivity sensitivity) const;
    void report(const QString &text);
    bool isCurrentText(Qt::CaseSensitivity sensitivity) const;

    // Null once the host has set a model past setListSource().
    QPointer<SelectorProxyModel> m_list;
    const QVector<int> m_keyRoles;
    const Qt::CaseSensitivity m_typing;
    std::unique_ptr<Kept> m_kept;
    bool m_refreshing = false;
    // The edit text is that of the current row.
    bool m_showsChoice = false;
    // A refresh may have brought the row that the edit text names.
    bool m_unreported = false;
};
