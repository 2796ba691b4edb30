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

// The boxes that are reporting now, one within the other. What is set meanwhile in another box of
// the form is told by a box, not by the program.
int boxesReporting = 0;

bool isNone(const QVariant &key)
{
    const QString text = key.toString();
    return text.isEmpty() || text == QLatin1String("0");
}

// What a row is found again by after a refresh, and what was told of it; empty for no row.
struct Trace
{
    QVariantList key;
    QVariantList told;
    // The key is none, or that of other rows too: it does not tell the row from another.
    bool isAmbiguous = false;
};

// What a refresh brings back.
struct Kept
{
    EditState edit;
    bool wasChoice = false;
    bool wasWaiting = false;
    // The row that the edit text stood for, and that the user was on in the open list.
    Trace row;
    Trace lit;
    bool completing = false;
    QString prefix;
};

} // namespace

struct SelectorBox::Private
{
    explicit Private(const List &all) : traits(all), list(all.model) {}

    QVariant data(int row, int role) const { return list->index(row, 0).data(role); }
    QVariantList key(int row) const;
    QVariantList told(int row) const;
    Trace trace(int row) const;
    int rowOf(const Trace &trace) const;

    const List traits;
    // Null once the host has set a model past setListSource().
    QPointer<SelectorProxyModel> list;
    WaitingKey waiting;
    Kept kept;
    bool isRefreshing = false;
    // What changes now is set by program, not by hand.
    bool isSetting = false;
    // The edit text is that of the current row.
    bool showsChoice = false;
    // A refresh may have brought the row that the edit text names.
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

// The row of which the same is told; where there is none, the only row of the key, if the key
// told it from others before.
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
    // QComboBox answers to changed data by showing the current row's, between these two.
    connect(model, &QAbstractItemModel::dataChanged, this, &SelectorBox::beginDataChange);
    setModel(model);
    connect(model, &QAbstractItemModel::dataChanged, this, &SelectorBox::endDataChange);
    replaceCompleter();
    comboBoxValidator()->setModel(model);
    setCurrentIndex(-1);

    chooseWhenLeft();
    // After the connections of QComboBox, its view and its completer, so that endRefresh()
    // finds them ready.
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

// What is shown, and what is said of it

void SelectorBox::textChanged(const QString &text)
{
    if (d->isRefreshing)
        return;
    // While the list is open QComboBox shows a row by the column of the list.
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
    // What hears of it may type and choose in its turn.
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
    // A row of the same name: QComboBox sees no change of the text to tell of.
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

// QComboBox puts the new column's text into the edit field.
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

// Keys that are set

void SelectorBox::chooseKey(int role, const QVariant &key)
{
    if (!d->list || key.toString().isEmpty())
        return;
    int row = rowOfKey(role, key);
    if (row < 0 && isNone(key)) {
        dropWaiting();
        // The box that tells of none reports it.
        if (isTold() && d->showsChoice)
            showQuietly(-1, QString());
        else if (d->owesReport)
            report(currentText());
        return;
    }
    // An id says more than a code that comes with it, and several rows may have the code of
    // another box's choice, whose id is still to come.
    const bool isCode = role != d->traits.reported.first();
    const bool isEcho = isCode && isTold();
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
    const bool isPart = isTold() || (d->waiting.isOfThisTurn() && rowsOfText(name).count == 0);
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
        setFilter();
    } catch (...) {
        if (late.isValid())
            d->waiting.putBack(late);
        d->owesReport = owedReport;
        showMark();
        throw;
    }
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

// Called by the event loop and within a refresh, neither of which may let an exception through.
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

// When the directory fails, what waits goes on waiting.
void SelectorBox::tryPlace()
{
    guarded([this] { lookUpPlace(); });
}

bool SelectorBox::isTold()
{
    return boxesReporting > 0;
}

void SelectorBox::lookUpPlace() {}

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
    // A source that was destroyed has nothing left to read.
    if (!d->list->sourceModel())
        return;
    kept.wasWaiting = showsWaiting();
    kept.row =
        d->trace(kept.wasChoice ? currentIndex() : rowOfText(currentText(), d->traits.typing));
    if (view()->isVisible())
        kept.lit = d->trace(view()->currentIndex().row());
}

void SelectorBox::endRefresh()
{
    const Doing ofHost(Doing::Program);
    const Kept kept = std::exchange(d->kept, Kept());
    const int same = d->rowOf(kept.row);
    const int come = same >= 0 && kept.wasWaiting ? same : waitingRow();
    const int row = come >= 0 ? come : same;
    const bool isChoice = come >= 0 || kept.wasChoice;
    // QComboBox has shown row 0 meanwhile.
    showQuietly(row, isChoice ? textOfRow(row) : kept.edit.text());
    kept.edit.restoreCaret(lineEdit());
    d->isRefreshing = false;
    if (come >= 0 && !d->waiting.isOfThisTurn())
        d->waiting.drop();
    if (view()->isVisible())
        view()->setCurrentIndex(d->list->index(d->rowOf(kept.lit), d->traits.column));
    bringBackCompletions(kept.completing && !(kept.wasChoice && row < 0), kept.prefix);

    const bool stoodForARow = kept.wasChoice || !kept.row.key.isEmpty();
    const bool isSame = row >= 0 && rowOfText(currentText(), d->traits.typing) == row &&
                        d->key(row) == kept.row.key && d->told(row) == kept.row.told;
    d->mayStandForNewRow = !stoodForARow;
    const QScopedValueRollback<bool> setting(d->isSetting, true);
    if ((stoodForARow || come >= 0) && !isSame)
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
    // What a box that cannot be edited showed before is not known.
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
    const auto isElsewhere = [&](int row) { return !isTold() && !isInPlace(row); };
    rows.erase(std::remove_if(rows.begin(), rows.end(), isElsewhere), rows.end());
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
    // Only a choice can mean a row without a name.
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
    // Whether it is one or many is all that matters.
    for (int i = 0; i < count && exact.count < 2; ++i) {
        const int row = d->traits.inSourceOrder ? rows.at(i) : first + i;
        if (textOfRow(row) == text)
            exact = {exact.count > 0 ? exact.first : row, exact.count + 1};
    }
    return exact.count > 0 ? exact : TextRows{first, count};
}
