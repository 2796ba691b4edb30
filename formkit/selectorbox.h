// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/combobox.h>

#include <functional>
#include <memory>

class SelectorProxyModel;

/// What the boxes that select from a reference table have in common. Beside its own list each
/// box shows, whatever its size, in time that does not grow with the table (opening it while
/// the box cannot be edited excepted: some styles then measure every row), and:
/// - A refresh of the list (its model is populated anew, or the filter changes) keeps the
///   choice, and a half-typed text, caret and all. The box reports only what has become another
///   about the row: an id, a code, its name. When the chosen row is gone the box empties itself
///   and reports that. Of several rows of the key of the choice only one that agrees with it in
///   text, codes and name is the choice. A typed text that named the row stays, and the box
///   reports what it stands for now; a row that comes to match a half-typed text is not chosen
///   before the user goes on typing or leaves the box.
/// - Of several rows of a text or key, those that have it letter for letter come before those
///   in another case, and the current row before the others. A row without a name counts while
///   it is chosen; an empty text as such stands for no row.
/// - It chooses when it is left (see ComboBox::chooseWhenLeft()).
///
/// **What waits.** An id or code that a program sets and that is not listed (other than an
/// empty one and "0") leaves the choice as it is, and waits: the box is marked in red, with a tool
/// tip that names it, and the getters go on reading what is shown. As soon as a population or a
/// filter brings the row it is chosen and reported. What is set in one turn of the event loop
/// belongs together, in whatever order: setting an exchange or board does not drop an id that
/// was set in the same turn, also when that was chosen already, and the box does not report it
/// as "0" in between. In a later turn another exchange or board drops what waits, and so do, at
/// any time, typing, choosing and another id; the box then reports what it shows. An exchange or
/// board set by an id that the host's directory does not know yet counts as none, as ever; but it
/// is looked up again, and until then nothing that waits is taken from the list.
class FORMKIT_EXPORT SelectorBox : public ComboBox
{
    Q_OBJECT

public:
    /// Opening and closing the list reports nothing and leaves the edit field as it is.
    void showPopup() override;
    void hidePopup() override;

protected:
    /// What a box tells of its list.
    struct List
    {
        SelectorProxyModel *model; ///< taken over; its key roles are set
        QVector<int> identity;     ///< roles that tell a row from every other; first a key role
        QVector<int> reported;     ///< roles of what the box reports of a row, beside its text
        Qt::CaseSensitivity typing = Qt::CaseSensitive; ///< how typed text is looked up
        /// The rows are in the order of the source, not of their texts; the display role must
        /// be one of the key roles then.
        bool inSourceOrder = false;
        /// The column that the open list shows; the edit field always has column 0.
        int column = 0;
    };

    /// Takes the model of the list over.
    SelectorBox(const List &list, QWidget *parent);
    ~SelectorBox() override;

    /// Makes a populated model of the box the source of the list; the one before is deleted.
    void setListSource(QAbstractItemModel *model);
    /// Takes a model over, populates it and makes it the source of the list. When populating
    /// throws, the box owns the model but goes on with the one before. Null is ignored.
    template <typename Model> void takeSource(Model *model)
    {
        if (!model)
            return;
        model->setParent(this);
        model->populate();
        setListSource(model);
    }
    /// To be called at the end of a subclass's construction: shows an empty text and begins to
    /// report what the user does.
    void startReporting();

    /// Shows no choice and an empty text.
    void clearChoice();
    /// Makes a row the choice, and reports it. What waits goes on waiting.
    void choose(int row);
    /// Shows a row as current under a text, and reports nothing.
    void showQuietly(int row, const QString &text);
    /// The data of the row of the edit text, in any letter case; invalid for none.
    QVariant dataOfText(int role) const;
    /// The data of a row of the list, whatever column is shown.
    QVariant dataOfRow(int row, int role) const;
    /// The row of a key, -1 for none. For a key that the program has set only rows of the exchange
    /// and board that are set count.
    int rowOfKey(int role, const QVariant &key) const;

    /// Chooses the row of a key that a program sets, or has the key wait for it. An empty key is
    /// that of no row. An id of "0" that another box tells of makes the box show none too.
    void chooseKey(int role, const QVariant &key);
    /// A key of that role waits, and must not be reported as none meanwhile.
    bool isWaitingFor(int role) const;
    /// A name that is set is not to be shown: a key waits whose name it may be, and will come with
    /// it. So it is for a name that no row has in the turn in which the key was set, and for any
    /// that another box reports.
    bool isIgnored(const QString &name) const;
    /// Sets another exchange or board, by a function that narrows the list: what waits or was
    /// chosen in this turn is looked for there; any other choice is gone.
    void narrow(const std::function<void()> &setFilter);
    /// Chooses the row that waits, if it is listed now, and true when it is the choice.
    bool chooseWaiting();

    /// Another box of the form is reporting: what is set now is what that box tells. An empty code
    /// says nothing then about an exchange or board that was set by id: a box that shows none
    /// has told of id "0" before, and one that waits for that id has not. Any other code is that of
    /// the id.
    static bool isTold();

    /// Looks up an exchange or board whose id the directory did not know when it was set.
    /// Called after each population, and at the end of each turn in which something was set.
    virtual void lookUpPlace();
    /// Whether the directory knows the exchange and board that are set.
    virtual bool isPlaceKnown() const;
    /// Whether a listed row is one of the exchange and board that are set, which are known.
    virtual bool isInPlace(int row) const;

    /// The text names no row: reports that, and for an empty text makes no row current.
    virtual void reportNone(const QString &text) = 0;
    /// Reports the text itself, after what it stands for.
    virtual void reportText(const QString &text);

    TextRows rowsOfText(const QString &text) const override;
    QCompleter *makeCompleter() override;

    /// The list that is shown; null once the host has set a model past setListSource().
    SelectorProxyModel *list() const;

protected Q_SLOTS:
    /// The edit text has changed, by whatever means but a refresh: reports the row that it
    /// stands for as a choice of it, or none, and the text.
    virtual void edit_changed(const QString &text);
    /// The user has chosen a row: reports it.
    virtual void item_activated(int index) = 0;

private:
    struct Private;

    void beginRefresh();
    void endRefresh();
    void beginDataChange();
    void endDataChange(const QModelIndex &topLeft, const QModelIndex &bottomRight);
    void textChanged(const QString &text);
    void indexChanged();
    void rowActivated(int row);
    bool isWaiting() const;
    void endTurn();
    void tryPlace();
    void report(const QString &text);
    void dropWaiting();
    void bringBackCompletions(bool isWanted, const QString &prefix);
    void showMark();
    void showColumn(int column);
    void noteChoice();
    int rowToChoose(int role, const QVariant &key) const;
    int bestOf(QVector<int> rows, int role, const QVariant &key) const;
    int waitingRow() const;
    bool showsWaiting() const;
    int lookUp(const QString &text, Qt::CaseSensitivity sensitivity) const;
    int rowOfText(const QString &text, Qt::CaseSensitivity sensitivity) const;
    bool isCurrentText(const QString &text, Qt::CaseSensitivity sensitivity) const;
    QAbstractItemView *completions() const;

    std::unique_ptr<Private> d;
};
