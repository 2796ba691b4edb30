// SPDX-License-Identifier: BSD-3-Clause
#include "selectorbox.h"

#include "doing_p.h"
#include "editstate_p.h"
#include "modelrefresh_p.h"
#include "rowlistview_p.h"
#include "selectorcompleter_p.h"
#include "selectorproxymodel.h"
#include "waitingkey_p.h"

#include <QCompleter>
#include <QDebug>
#include <QScopedValueRollback>

#include <algorithm>
#include <exception>

namespace {

// How many boxes are reporting now: a report may set another box, which then reports in its turn.
int boxesReporting = 0;

bool isNone(const QVariant &key)
{
    const QString text = key.toString();
    return text.isEmpty() || text == QLatin1String("0");
}

// What identifies a row after a refresh, and what was reported of it; empty for no row.
struct Trace
{
    QVariantList key;
    QVariantList told;
    // The key is none, or other rows have it too.
    bool isAmbiguous = false;
};

// What a refresh restores.
struct Kept
{
    EditState edit;
    bool wasChoice = false;
    bool wasWaiting = false;
    // The row that the edit text named, and the one that was highlighted in the open list.
    Trace row;
    Trace highlighted;
    bool completing = false;
    QString prefix;
};

} // namespace

struct SelectorBox::Private
{
    explicit Private(const List &all) : traits(all), list(all.model)
    {
        placeTurn.setSingleShot(true);
    }

    QVariant data(int row, int role) const { return list->index(row, 0).data(role); }
    QVariantList key(int row) const;
    QVariantList told(int row) const;
    Trace trace(int row) const;
    int rowOf(const Trace &trace) const;

    const List traits;
    // See SelectorBox::list().
    QPointer<SelectorProxyModel> list;
    WaitingKey waiting;
    // Runs through the turn of the event loop in which another exchange or board was set.
    QTimer placeTurn;
    Kept kept;
    bool isRefreshing = false;
    // The list is being filtered for another exchange or board; the box is emptied after that.
    bool isNarrowing = false;
    // What changes now is set by the program, not by the user.
    bool isSetting = false;
    // The edit text is that of the current row.
    bool showsChoice = false;
    // The edit text may name a row that a refresh has brought, which is not reported yet.
    bool mayStandForNewRow = false;
    // What is shown is not reported yet.
    bool owesReport = false;
};

QVariantList SelectorBox::Private::key(int row) const
{
    QVariantList all;
    for (const int role : traits.identity)
        all.append(data(row, role));
    return all;
}

QVariantList SelectorBox::Private::told(int row) const
{
    QVariantList all{data(row, Qt::DisplayRole)};
    for (const int role : traits.reported)
        all.append(data(row, role));
    return all;
}

Trace SelectorBox::Private::trace(int row) const
{
    if (row < 0)
        return {};
    Trace trace{key(row), told(row), isNone(data(row, traits.identity.first()))};
    const QVector<int> rows = list->rowsOfKey(traits.identity.first(), trace.key.first());
    const auto isTwin = [&](int other) { return other != row && key(other) == trace.key; };
    trace.isAmbiguous |= std::any_of(rows.begin(), rows.end(), isTwin);
    return trace;
}

// Of the rows of the key the one of which the same would be reported; if there is none, the only
// row of the key, provided that it was the only one before.
int SelectorBox::Private::rowOf(const Trace &trace) const
{
    if (trace.key.isEmpty())
        return -1;
    QVector<int> rows = list->rowsOfKey(traits.identity.first(), trace.key.first());
    const auto isOther = [&](int row) { return key(row) != trace.key; };
    rows.erase(std::remove_if(rows.begin(), rows.end(), isOther), rows.end());
    const auto isSame = [&](int row) { return told(row) == trace.told; };
    const auto same = std::find_if(rows.begin(), rows.end(), isSame);
    if (same != rows.end())
        return *same;
    return rows.size() == 1 && !trace.isAmbiguous ? rows.first() : -1;
}

SelectorBox::SelectorBox(const List &list, QWidget *parent)
    : ComboBox(parent), d(std::make_unique<Private>(list))
{
    SelectorProxyModel *const model = d->list;
    model->setParent(this);
    if (list.inSourceOrder)
        model->sort(-1);
    auto *const rows = new RowListView;
    rows->setModelColumn(list.column);
    setView(rows);
    // Between these two connections QComboBox makes its own, which shows the current row's text
    // when data change.
    connect(model, &QAbstractItemModel::dataChanged, this, &SelectorBox::beginDataChange);
    setModel(model);
    connect(model, &QAbstractItemModel::dataChanged, this, &SelectorBox::endDataChange);
    replaceCompleter();
    comboBoxValidator()->setModel(model);
    setCurrentIndex(-1);

    chooseWhenLeft();
    // Connected after QComboBox, its view and its completer, so that these have handled the reset
    // when endRefresh() is called.
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, &SelectorBox::beginRefresh);
    connect(model, &QAbstractItemModel::modelReset, this, &SelectorBox::endRefresh);
    connect(&d->waiting, &WaitingKey::turnEnded, this, &SelectorBox::endTurn);
}

SelectorBox::~SelectorBox() = default;

SelectorProxyModel *SelectorBox::list() const
{
    return d->list;
}

QCompleter *SelectorBox::makeCompleter()
{
    if (!d->list || d->list != model())
        return ComboBox::makeCompleter();
    return new SelectorCompleter(d->list, !d->traits.inSourceOrder, this);
}

QAbstractItemView *SelectorBox::completions() const
{
    const QCompleter *const typeAhead = completer();
    const bool hasList = typeAhead && typeAhead->completionMode() != QCompleter::InlineCompletion;
    return hasList ? typeAhead->popup() : nullptr;
}

void SelectorBox::setListSource(QAbstractItemModel *model)
{
    QAbstractItemModel *const before = d->list ? d->list->sourceModel() : model;
    if (before == model)
        return;
    d->list->setSourceModel(model);
    connect(model, &QAbstractItemModel::modelReset, this, [this, model] {
        const ModelRefresh *const refresh = ModelRefresh::of(model);
        if (const PreparedRows *const prepared = refresh ? refresh->prepared() : nullptr)
            measureTexts(prepared->longestTexts);
        else
            measureTexts(model);
        tryPlace();
    });
    measureTexts(model);
    delete before;
    tryPlace();
}

void SelectorBox::startReporting()
{
    if (lineEdit())
        setEditText(QString());
    connect(this, &QComboBox::editTextChanged, this, &SelectorBox::textChanged);
    connect(this, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &SelectorBox::indexChanged);
    connect(this, QOverload<int>::of(&QComboBox::activated), this, &SelectorBox::rowActivated);
}

// What is shown and reported

void SelectorBox::textChanged(const QString &text)
{
    if (d->isRefreshing)
        return;
    // While the list is open QComboBox shows the text of the list's column.
    if (modelColumn() != 0 && currentIndex() >= 0 && text == itemText(currentIndex()))
        showQuietly(currentIndex(), textOfRow(currentIndex()));
    noteChoice();
    report(currentText());
}

void SelectorBox::indexChanged()
{
    if (d->isRefreshing)
        return;
    noteChoice();
    if ((d->showsChoice && d->mayStandForNewRow) || !lineEdit())
        report(currentText());
}

void SelectorBox::rowActivated(int row)
{
    d->mayStandForNewRow = false;
    d->owesReport = false;
    d->waiting.drop();
    showMark();
    const QScopedValueRollback<int> reporting(boxesReporting, boxesReporting + 1);
    item_activated(row);
}

void SelectorBox::report(const QString &text)
{
    if (d->isRefreshing)
        return;
    d->mayStandForNewRow = false;
    // Whoever is called by this report may set the box as a user does.
    const QScopedValueRollback<bool> setting(d->isSetting, d->isSetting);
    if (!std::exchange(d->isSetting, false))
        d->waiting.drop();
    showMark();
    d->owesReport = d->waiting.isOfThisTurn() && isWaiting();
    if (d->owesReport)
        return;
    const QScopedValueRollback<int> reporting(boxesReporting, boxesReporting + 1);
    edit_changed(text);
}

void SelectorBox::edit_changed(const QString &text)
{
    const int row = rowOfText(text, d->traits.typing);
    if (row >= 0)
        item_activated(row);
    else
        reportNone(text);
    reportText(text);
}

void SelectorBox::reportText(const QString &) {}

void SelectorBox::noteChoice()
{
    d->showsChoice = isCurrentText(currentText(), Qt::CaseSensitive);
}

void SelectorBox::showQuietly(int row, const QString &text)
{
    const QScopedValueRollback<bool> refreshing(d->isRefreshing, true);
    setCurrentIndex(row);
    if (lineEdit())
        setEditText(text);
    noteChoice();
}

void SelectorBox::clearChoice()
{
    if (QAbstractItemView *const completed = completions())
        completed->hide();
    const bool isUnseen = currentText().isEmpty() && (d->showsChoice || d->owesReport);
    const QScopedValueRollback<bool> setting(d->isSetting, true);
    setCurrentIndex(-1);
    if (isUnseen)
        report(QString());
}

void SelectorBox::choose(int row)
{
    const QScopedValueRollback<bool> setting(d->isSetting, true);
    const QString before = currentText();
    const bool isOther = row != rowOfText(before, d->traits.typing);
    chooseRow(row);
    // QComboBox emits nothing for another row of the same text.
    if (isOther && currentText() == before && lineEdit())
        report(before);
}

void SelectorBox::showMark()
{
    mark(isWaiting() ? tr("%1 is not in the list yet").arg(d->waiting.key().toString())
                     : QString());
}

void SelectorBox::showPopup()
{
    showColumn(d->traits.column);
    ComboBox::showPopup();
}

void SelectorBox::hidePopup()
{
    showColumn(0);
    ComboBox::hidePopup();
}

// QComboBox would leave the new column's text in the edit field.
void SelectorBox::showColumn(int column)
{
    if (modelColumn() == column)
        return;
    const QScopedValueRollback<bool> refreshing(d->isRefreshing, true);
    const EditState edit(lineEdit());
    setModelColumn(column);
    if (lineEdit())
        setEditText(edit.text());
    edit.restoreCaret(lineEdit());
}

// Keys that are set by the program or another box

void SelectorBox::chooseKey(int role, const QVariant &key)
{
    if (!d->list || key.toString().isEmpty())
        return;
    int row = rowToChoose(role, key);
    if (row < 0 && isNone(key)) {
        dropWaiting();
        // A box that sets none reports that itself.
        if (isSetByBox() && d->showsChoice)
            showQuietly(-1, QString());
        else if (d->owesReport)
            report(currentText());
        return;
    }
    // An id that waits comes before a code that is set with it. And if several rows have a code
    // that another box reports, its id, which follows, says which one is meant.
    const bool isCode = role != d->traits.reported.first();
    const bool isEcho = isCode && isSetByBox();
    const bool isPart = isEcho || (row < 0 && d->waiting.isOfThisTurn());
    if (isCode && isPart && isWaiting() && d->waiting.role() != role)
        return;
    if (isEcho && row != currentIndex() && d->list->rowsOfKey(role, key).size() > 1)
        row = -1;
    d->waiting.set(role, key);
    if (row >= 0)
        choose(row);
    showMark();
}

bool SelectorBox::isWaitingFor(int role) const
{
    return isWaiting() && d->waiting.role() == role;
}

bool SelectorBox::isWaiting() const
{
    return d->waiting.isSet() && !showsWaiting();
}

bool SelectorBox::isIgnored(const QString &name) const
{
    const bool isPart = isSetByBox() || (d->waiting.isOfThisTurn() && rowsOfText(name).count == 0);
    return isPart && isWaiting();
}

void SelectorBox::dropWaiting()
{
    if (isWaiting()) {
        d->owesReport = true;
        mark(QString());
    }
    d->waiting.drop();
}

void SelectorBox::narrow(const std::function<void()> &setFilter)
{
    const bool owedReport = d->owesReport;
    const QVariant late = d->waiting.isOfThisTurn() ? QVariant() : d->waiting.key();
    if (late.isValid())
        dropWaiting();
    try {
        const QScopedValueRollback<bool> narrowing(d->isNarrowing, true);
        setFilter();
    } catch (...) {
        if (late.isValid())
            d->waiting.putBack(late);
        d->owesReport = owedReport;
        showMark();
        throw;
    }
    d->placeTurn.start(0);
    if (!chooseWaiting())
        clearChoice();
}

bool SelectorBox::chooseWaiting()
{
    const int row = waitingRow();
    if (row < 0)
        return false;
    if (!d->waiting.isOfThisTurn())
        d->waiting.drop();
    if (row != currentIndex() || !d->showsChoice)
        choose(row);
    showMark();
    return true;
}

// For what is called by the event loop or within a refresh, which no exception may leave.
template <typename Deed> static void guarded(Deed deed)
{
    const Doing ofHost(Doing::Program);
    try {
        deed();
    } catch (const std::exception &failure) {
        qDebug() << "SelectorBox: the host failed:" << failure.what();
    } catch (...) {
        qDebug() << "SelectorBox: the host failed";
    }
}

void SelectorBox::endTurn()
{
    tryPlace();
    guarded([this] { chooseWaiting(); });
    if (showsWaiting())
        d->waiting.drop();
    const QScopedValueRollback<bool> setting(d->isSetting, true);
    if (d->owesReport)
        guarded([this] { report(currentText()); });
}

// If the directory fails, the key goes on waiting.
void SelectorBox::tryPlace()
{
    guarded([this] { lookUpPlace(); });
}

bool SelectorBox::isSetByBox()
{
    return boxesReporting > 0;
}

void SelectorBox::lookUpPlace() {}

bool SelectorBox::isPlaceKnown() const
{
    return true;
}

bool SelectorBox::isInPlace(int) const
{
    return true;
}

int SelectorBox::waitingRow() const
{
    return d->waiting.isSet() ? rowOfKey(d->waiting.role(), d->waiting.key()) : -1;
}

bool SelectorBox::showsWaiting() const
{
    return d->showsChoice && d->waiting.isSet() &&
           dataOfRow(currentIndex(), d->waiting.role())
                   .toString()
                   .compare(d->waiting.key().toString(), Qt::CaseInsensitive) == 0;
}

// Refreshes

void SelectorBox::beginRefresh()
{
    d->isRefreshing = true;
    Kept &kept = d->kept = Kept();
    kept.edit = EditState(lineEdit());
    kept.wasChoice = d->showsChoice;
    if (const QAbstractItemView *const completed = completions()) {
        kept.completing = completed->isVisible();
        kept.prefix = completer()->completionPrefix();
    }
    // If the source was destroyed, there is nothing left to read.
    if (!d->list->sourceModel())
        return;
    kept.wasWaiting = showsWaiting();
    kept.row =
        d->trace(kept.wasChoice ? currentIndex() : rowOfText(currentText(), d->traits.typing));
    if (view()->isVisible())
        kept.highlighted = d->trace(view()->currentIndex().row());
}

void SelectorBox::endRefresh()
{
    const Doing ofHost(Doing::Program);
    const Kept kept = std::exchange(d->kept, Kept());
    const int same = d->rowOf(kept.row);
    const int come = same >= 0 && kept.wasWaiting ? same : waitingRow();
    const int row = come >= 0 ? come : same;
    const bool isChoice = come >= 0 || kept.wasChoice;
    // QComboBox has made row 0 current by now.
    showQuietly(row, isChoice ? textOfRow(row) : kept.edit.text());
    kept.edit.restoreCaret(lineEdit());
    d->isRefreshing = false;
    if (come >= 0 && !d->waiting.isOfThisTurn())
        d->waiting.drop();
    if (view()->isVisible())
        view()->setCurrentIndex(d->list->index(d->rowOf(kept.highlighted), d->traits.column));
    bringBackCompletions(kept.completing && !(kept.wasChoice && row < 0), kept.prefix);

    const bool stoodForARow = kept.wasChoice || !kept.row.key.isEmpty();
    const bool isSame = row >= 0 && rowOfText(currentText(), d->traits.typing) == row &&
                        d->key(row) == kept.row.key && d->told(row) == kept.row.told;
    d->mayStandForNewRow = !stoodForARow;
    const bool isChanged = (stoodForARow || come >= 0) && !isSame;
    const QScopedValueRollback<bool> setting(d->isSetting, true);
    if (isChanged && d->isNarrowing && come < 0)
        d->owesReport = true;
    else if (isChanged)
        report(currentText());
}

void SelectorBox::bringBackCompletions(bool isWanted, const QString &prefix)
{
    if (isWanted && completer()) {
        completer()->setCompletionPrefix(prefix);
        completer()->complete();
    } else if (QAbstractItemView *const completed = completions()) {
        completed->hide();
    }
}

void SelectorBox::beginDataChange()
{
    d->isRefreshing = true;
    d->kept.edit = EditState(lineEdit());
}

void SelectorBox::endDataChange(const QModelIndex &topLeft, const QModelIndex &bottomRight)
{
    const Doing ofHost(Doing::Program);
    const EditState edit = std::exchange(d->kept, Kept()).edit;
    const bool isTyped = !d->showsChoice && !edit.text().isEmpty();
    // It is not known what a box that cannot be edited showed before.
    const bool isUnseen = isTyped || !lineEdit();
    if (lineEdit())
        setEditText(isTyped ? edit.text() : d->showsChoice ? textOfRow(currentIndex()) : QString());
    edit.restoreCaret(lineEdit());
    d->isRefreshing = false;
    noteChoice();
    const bool isWholeList = topLeft.row() == 0 && bottomRight.row() == d->list->rowCount() - 1;
    if (isWholeList)
        measureTexts(d->list->sourceModel());
    if (isUnseen ? isWholeList : currentText() != edit.text())
        report(currentText());
}

// Look-ups

QVariant SelectorBox::dataOfRow(int row, int role) const
{
    return model()->index(row, 0, rootModelIndex()).data(role);
}

int SelectorBox::rowOfKey(int role, const QVariant &key) const
{
    if (!d->list)
        return -1;
    QVector<int> rows = d->list->rowsOfKey(role, key);
    const auto isElsewhere = [&](int row) { return !isPlaceKnown() || !isInPlace(row); };
    if (!isSetByBox())
        rows.erase(std::remove_if(rows.begin(), rows.end(), isElsewhere), rows.end());
    return bestOf(rows, role, key);
}

// A row of another exchange or board can be chosen too; but not in the turn in which exchange or
// board are set, nor before they are known: the key may be that of a row that is still to come.
int SelectorBox::rowToChoose(int role, const QVariant &key) const
{
    const int row = rowOfKey(role, key);
    if (row >= 0 || d->placeTurn.isActive() || !isPlaceKnown())
        return row;
    return bestOf(d->list->rowsOfKey(role, key), role, key);
}

int SelectorBox::bestOf(QVector<int> rows, int role, const QVariant &key) const
{
    const QString text = key.toString();
    const auto isExact = [&](int row) { return dataOfRow(row, role).toString() == text; };
    const auto inAnyCase = std::stable_partition(rows.begin(), rows.end(), isExact);
    if (inAnyCase != rows.begin())
        rows.erase(inAnyCase, rows.end());
    return rows.contains(currentIndex()) ? currentIndex() : rows.value(0, -1);
}

bool SelectorBox::isCurrentText(const QString &text, Qt::CaseSensitivity sensitivity) const
{
    return currentIndex() >= 0 && textOfRow(currentIndex()).compare(text, sensitivity) == 0;
}

int SelectorBox::lookUp(const QString &text, Qt::CaseSensitivity sensitivity) const
{
    if (!d->traits.inSourceOrder)
        return d->list->rowOfText(text, sensitivity);
    const QVector<int> rows = d->list->rowsOfKey(Qt::DisplayRole, text);
    const auto row = std::find_if(rows.begin(), rows.end(), [&](int candidate) {
        return textOfRow(candidate).compare(text, sensitivity) == 0;
    });
    return row == rows.end() ? -1 : *row;
}

int SelectorBox::rowOfText(const QString &text, Qt::CaseSensitivity sensitivity) const
{
    if (isCurrentText(text, Qt::CaseSensitive))
        return currentIndex();
    // An empty text names no row; a row without a name counts while it is the current one (above).
    if (text.isEmpty() || !d->list)
        return -1;
    const int exact = lookUp(text, Qt::CaseSensitive);
    if (exact >= 0 || sensitivity == Qt::CaseSensitive)
        return exact;
    return isCurrentText(text, Qt::CaseInsensitive) ? currentIndex()
                                                    : lookUp(text, Qt::CaseInsensitive);
}

QVariant SelectorBox::dataOfText(int role) const
{
    const int row = rowOfText(currentText(), Qt::CaseInsensitive);
    return row < 0 ? QVariant() : dataOfRow(row, role);
}

ComboBox::TextRows SelectorBox::rowsOfText(const QString &text) const
{
    if (!d->list)
        return ComboBox::rowsOfText(text);
    const QVector<int> rows =
        d->traits.inSourceOrder ? d->list->rowsOfKey(Qt::DisplayRole, text) : QVector<int>();
    const int first = lookUp(text, Qt::CaseInsensitive);
    const int count = d->traits.inSourceOrder ? rows.size() : d->list->countOfText(text);
    TextRows exact{-1, 0};
    // It only matters whether there are none, one or more.
    for (int i = 0; i < count && exact.count < 2; ++i) {
        const int row = d->traits.inSourceOrder ? rows.at(i) : first + i;
        if (textOfRow(row) == text)
            exact = {exact.count > 0 ? exact.first : row, exact.count + 1};
    }
    return exact.count > 0 ? exact : TextRows{first, count};
}
