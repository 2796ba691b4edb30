// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/combobox.h>

#include <functional>
#include <memory>

class SelectorProxyModel;

/// The base of the boxes that select a row of a reference table (docs/selectors.md):
/// - Whatever the size of the table, opening the list, typing and choosing do not take longer. (But
///   some styles measure every row when the list of a box that cannot be edited is opened.)
/// - When the list changes, the choice and a half-typed text stay, and the box reports only what
///   differs afterwards. If the chosen row is gone, the box empties itself and reports that.
/// - Of several rows of a text or key, exact ones come before those in another letter case; among
///   these the current row comes first.
/// - An id or code that a program sets and that is not listed leaves the choice as it is, and waits
///   for its row, with a mark. Exchange, board and key that are set in one turn of the event loop
///   belong together. Typing, choosing, another key, and in a later turn another exchange or board
///   drop what waits; the box then reports what it shows.
/// - When the user leaves it, it chooses the row of the text (see ComboBox::chooseWhenLeft()).
class FORMKIT_EXPORT SelectorBox : public ComboBox
{
    Q_OBJECT

public:
    /// Opening and closing the list report nothing and do not change the edit field.
    void showPopup() override;
    void hidePopup() override;

protected:
    /// How a box describes its list.
    struct List
    {
        SelectorProxyModel *model; ///< the box becomes its owner; its key roles must be set
        QVector<int> identity;     ///< the roles that identify a row, first of all a key role
        /// The roles that the box reports of a row, beside its text: the id first. A key of any
        /// other role counts as a code, and gives way to an id that waits.
        QVector<int> reported;
        /// Whether letter case counts when typed text is looked up.
        Qt::CaseSensitivity typing = Qt::CaseSensitive;
        /// The rows are in the order of the source instead of that of their texts. The display role
        /// must be a key role then.
        bool inSourceOrder = false;
        /// The column that the open list shows; the edit field always has column 0.
        int column = 0;
    };

    /// Shows the rows of `list`. A subclass calls takeSource() and startReporting() in its own
    /// constructor.
    SelectorBox(const List &list, QWidget *parent);
    ~SelectorBox() override;

    /// Makes a model the source of the list and deletes the one before. The box must own the model,
    /// and it must be populated.
    void setListSource(QAbstractItemModel *model);
    /// Becomes the owner of a model, populates it and makes it the source of the list. If
    /// populating throws, the box owns the model but keeps the source before. Null is ignored.
    template <typename Model> void takeSource(Model *model)
    {
        if (!model)
            return;
        model->setParent(this);
        model->populate();
        setListSource(model);
    }
    /// To be called at the end of a subclass's constructor: empties the text and begins to report
    /// changes.
    void startReporting();

    /// Shows no choice and an empty text.
    void clearChoice();
    /// Makes a row the choice and reports it. A key that waits goes on waiting.
    void choose(int row);
    /// Makes a row current and shows a text, without a report.
    void showQuietly(int row, const QString &text);
    /// The data of the row that the edit text names, ignoring letter case; invalid for none.
    QVariant dataOfText(int role) const;
    /// The data of a row's first column.
    QVariant dataOfRow(int row, int role) const;
    /// The row of a key, -1 for none. Only rows of the exchange and board that are set count,
    /// unless another box sets the key (see isSetByBox()).
    int rowOfKey(int role, const QVariant &key) const;

    /// Chooses the row of a key that the program or another box sets; if it is not listed, the key
    /// waits. An empty key does nothing. If another box sets the id "0", this one empties itself.
    void chooseKey(int role, const QVariant &key);
    /// Whether a key of that role waits. It must not be reported as none meanwhile.
    bool isWaitingFor(int role) const;
    /// Whether to ignore a name that is being set while a key waits: if another box sets it, or if
    /// no row has it and the key was set in this turn. It is probably the name of the awaited row,
    /// and comes with it.
    bool isIgnored(const QString &name) const;
    /// Sets another exchange or board, by a function that filters the list. A key that was set in
    /// this turn of the event loop is looked for there; any other choice is gone.
    void narrow(const std::function<void()> &setFilter);
    /// Chooses the row of the key that waits, if it is listed now. True if that is the choice.
    bool chooseWaiting();

    /// Whether a box of the form is reporting, so that what is set now comes from that box and not
    /// from the program. The reporting box tells its id first, then its code. Ignore an empty code
    /// from it if you were set by id: it repeats what the id said, or the box waits for that id.
    static bool isSetByBox();

    /// Looks up an exchange or board again whose id the directory did not know when it was set.
    /// Called after each population, and at the end of each turn in which a key was set.
    virtual void lookUpPlace();
    /// Whether the directory knows the exchange and board that are set.
    virtual bool isPlaceKnown() const;
    /// Whether a row belongs to the exchange and board that are set, provided that these are known.
    virtual bool isInPlace(int row) const;

    /// Reports that the text names no row. An override emits its signals for "none", except for a
    /// role of isWaitingFor(), and calls setCurrentIndex(-1) if the text is empty.
    virtual void reportNone(const QString &text) = 0;
    /// Reports the text itself. Called after the row, or none, has been reported.
    virtual void reportText(const QString &text);

    TextRows rowsOfText(const QString &text) const override;
    QCompleter *makeCompleter() override;

    /// The model of the list; null once a host has destroyed it or called setModel().
    SelectorProxyModel *list() const;

protected Q_SLOTS:
    /// The text has changed, but not by a refresh of the list: reports the row that it names, or
    /// none, and then the text.
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
