// SPDX-License-Identifier: BSD-3-Clause
#include "selectorbench.h"

#include "processmemory.h"
#include "selectorsubject.h"

#include <embeddedhost/embeddedhost.h>
#include <formkit/securityselectorbox.h>
#include <hostapi/directories.h>
#include <hostapi/securitiessessionfilter.h>
#include <hostapi/table.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include <time.h>

namespace {

using Role = Subject::Role;
using Data = SecuritySelectorModel::Data;

constexpr int TypedCharacters = 14;

// Runs the event loop until layout, painting and zero timers are done.
void settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

std::unique_ptr<Subject> makeShownSubject(const QString &side)
{
    auto subject = makeSubject(side);
    subject->box()->show();
    subject->box()->activateWindow();
    subject->box()->setFocus();
    settle();
    return subject;
}

// Processor time, which other work on the machine disturbs least. Nothing here waits, so on an idle
// machine it is the time that passes.
double processorMilliseconds()
{
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

double millisecondsOf(const std::function<void()> &action)
{
    const double start = processorMilliseconds();
    action();
    settle();
    return processorMilliseconds() - start;
}

SelectorFigure figureOf(std::vector<double> samples)
{
    std::sort(samples.begin(), samples.end());
    return {samples.at(samples.size() / 2), samples.back()};
}

// Repeats the measurement until there are enough samples or they have taken enough time.
SelectorFigure repeat(int enough, const std::function<double(int)> &sample)
{
    constexpr qint64 EnoughMilliseconds = 5000;
    QElapsedTimer timer;
    timer.start();
    std::vector<double> samples;
    for (int i = 0; i < enough && (i == 0 || timer.elapsed() < EnoughMilliseconds); ++i)
        samples.push_back(sample(i));
    return figureOf(samples);
}

void press(int key, const QString &text = QString())
{
    QWidget *const popup = QApplication::activePopupWidget();
    QWidget *target = popup ? popup->focusWidget() : QApplication::focusWidget();
    if (!target)
        target = popup;
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(target, &down);
    QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(target, &up);
}

// Names of securities: the same ones in every database of one seed.
QStringList namesToType(const SecuritySelectorModel &source)
{
    QMap<qint64, QString> byId;
    for (int row = 0; row < source.rowCount(); ++row) {
        const Data &data = source.row(row);
        if (data.secId < 10000 && data.secName.size() == TypedCharacters)
            byId.insert(data.secId, data.secName);
    }
    QStringList names;
    for (int i = 0; i < 5; ++i)
        names << byId.values().value(byId.size() * i / 5);
    return names;
}

// Opens the list and begins a name, as a user has done before the board is changed.
void useOnce(Subject &subject)
{
    subject.box()->showPopup();
    settle();
    subject.box()->hidePopup();
    press(0, QStringLiteral("a"));
    settle();
    subject.box()->completer()->popup()->hide();
    subject.box()->clearEditText();
    settle();
}

SelectorFigure measureTyping(Subject &subject)
{
    const QStringList names = namesToType(*subject.source());
    QLineEdit *const edit = subject.box()->lineEdit();
    std::vector<double> keys;
    repeat(names.size(), [&](int i) {
        edit->clear();
        settle();
        double sum = 0;
        for (const QChar c : names.at(i)) {
            keys.push_back(millisecondsOf([&] { press(0, c); }));
            sum += keys.back();
            if (!subject.box()->completer()->popup()->isVisible())
                throw std::runtime_error("typing: no pop-up is shown");
        }
        subject.box()->completer()->popup()->hide();
        settle();
        return sum;
    });
    return figureOf(keys);
}

// Boards in the order of the rows.
QVector<QPair<QString, QString>> boardsOf(const SecuritySelectorModel &source)
{
    QVector<QPair<QString, QString>> boards;
    for (int row = 0; row < source.rowCount(); ++row) {
        const QPair<QString, QString> board(source.row(row).stockCode, source.row(row).boardCode);
        if (boards.isEmpty() || boards.last() != board)
            boards.append(board);
    }
    return boards;
}

// Goes from each board to the next one, which mostly is of the same exchange.
SelectorFigure measureBoards(Subject &subject)
{
    const auto boards = boardsOf(*subject.source());
    const auto show = [&](int i) {
        const auto &board = boards.at((boards.size() / 2 + i) % boards.size());
        subject.setBoard(board.first, board.second);
    };
    show(0);
    settle();
    return repeat(31, [&](int i) { return millisecondsOf([&] { show(i + 1); }); });
}

SelectorFigure measureNarrowing(Subject &subject)
{
    const auto boards = boardsOf(*subject.source());
    return repeat(15, [&](int i) {
        const auto &board = boards.at(i % boards.size());
        const double time = millisecondsOf([&] { subject.setBoard(board.first, board.second); });
        subject.setBoard(board.first, QString());
        settle();
        return time;
    });
}

SelectorFigure measureClearing(Subject &subject)
{
    const auto board = boardsOf(*subject.source()).last();
    return repeat(15, [&](int) {
        subject.setBoard(board.first, board.second);
        settle();
        const double time = millisecondsOf([&] { subject.setBoard(board.first, QString()); });
        if (subject.box()->count() != subject.source()->rowCount())
            throw std::runtime_error("clearing the board: not every row is shown");
        return time;
    });
}

// Measures the first pop-up of a box: for later ones Qt's list is laid out already.
SelectorFigure measureOpening(const QString &side, double place)
{
    return repeat(7, [&](int) {
        const auto subject = makeShownSubject(side);
        QComboBox *const box = subject->box();
        box->setCurrentIndex(int((box->count() - 1) * place));
        settle();
        const double time = millisecondsOf([&] { box->showPopup(); });
        const QAbstractItemView *const view = box->view();
        if (!view->viewport()->rect().intersects(view->visualRect(view->currentIndex())))
            throw std::runtime_error("opening: the current row is not shown");
        return time;
    });
}

// Types a letter that few names begin with into the open list.
SelectorFigure measureSearching(const QString &side)
{
    return repeat(7, [&](int) {
        const auto subject = makeShownSubject(side);
        subject->box()->setCurrentIndex(0);
        subject->box()->showPopup();
        settle();
        const double time = millisecondsOf([&] { press(Qt::Key_Z, QStringLiteral("z")); });
        const QString found = subject->box()->view()->currentIndex().data().toString();
        if (!found.startsWith('z', Qt::CaseInsensitive))
            throw std::runtime_error("searching: the row is not found");
        return time;
    });
}

SelectorFigure measureChoosing(Subject &subject, Role role)
{
    const SecuritySelectorModel &source = *subject.source();
    QStringList keys;
    for (int i = 0; i < 200; ++i) {
        const int row = int(qint64(source.rowCount()) * ((i * 61) % 200) / 200);
        keys << source.index(row).data(role).toString();
    }
    return repeat(keys.size(), [&](int i) {
        const double time = millisecondsOf([&] { subject.choose(role, keys.at(i)); });
        if (subject.box()->currentData(role).toString() != keys.at(i))
            throw std::runtime_error("choosing: another row is current");
        return time;
    });
}

enum class Texts { SharedWithHost, Own };

// The plain loop that reads the rows into a vector.
std::vector<Data> readRows(Texts texts)
{
    Table *const table = ICore::instance()->table(QStringLiteral("securities"));
    const auto column = [table](const char *name) {
        return table->columnIndex(QLatin1String(name));
    };
    const int stock = column("stock_id");
    const int board = column("board_id");
    const int id = column("sec_id");
    const int name = column("sec_name");
    const int code = column("sec_code");
    const int base = column("base_code");
    const int session = column("sess_id");
    const SecuritiesSessionFilter sessions(table, session, {stock, session}, -1, nullptr);
    const auto text = [texts](const Record &record, int at) {
        QString cell = record.field(at).toString();
        if (texts == Texts::Own)
            cell.detach();
        return cell;
    };

    const TableLock lock(table);
    std::vector<Data> rows;
    rows.reserve(size_t(table->masterIndex()->count()));
    for (const Record &record : *table->masterIndex()) {
        if (!sessions.filter(record))
            continue;
        Data row;
        const int stockId = record.field(stock).toInteger();
        row.stockCode = StockDirectory::i()->codeById(stockId);
        row.boardId = record.field(board).toInteger();
        row.boardCode = BoardDirectory::i()->codeById(stockId, row.boardId);
        row.secId = record.field(id).toInteger64();
        row.secName = text(record, name);
        row.secCode = text(record, code);
        row.baseCode = text(record, base);
        rows.push_back(std::move(row));
    }
    return rows;
}

SelectorFigure measurePopulating(const QString &side)
{
    std::unique_ptr<Subject> subject;
    if (side != QLatin1String("bare"))
        subject = makeSubject(side);
    return repeat(5, [&](int) {
        return millisecondsOf([&] {
            if (subject) {
                subject->source()->populate();
            } else {
                readAndSort();
            }
        });
    });
}

// The peak of memory during the action, minus what was held before it.
SelectorFigure measureMemory(const std::function<void()> &action)
{
    ProcessMemory::resetPeak();
    const double before = ProcessMemory::now();
    action();
    const double peak = ProcessMemory::peak() - before;
    return {peak, peak};
}

SelectorFigure measureMemory(const QString &side, const QString &operation)
{
    if (side == QLatin1String("bare"))
        return measureMemory([&] {
            readRows(operation == QLatin1String("memoryShared") ? Texts::SharedWithHost
                                                                : Texts::Own);
        });
    {
        // Has Qt load what it keeps from the first box on, such as fonts and the style.
        QComboBox any;
        any.setEditable(true);
        any.addItem(QStringLiteral("any"));
        any.show();
        settle();
        any.showPopup();
        settle();
    }
    return measureMemory([&] {
        const auto subject = makeShownSubject(side);
        subject->choose(Role::SecurityIdRole, QStringLiteral("77"));
        subject->box()->showPopup();
        settle();
        if (operation == QLatin1String("memoryRefreshed"))
            subject->source()->populate();
        settle();
    });
}

SelectorFigure measureBox(const QString &side, const QString &operation)
{
    const auto subject = makeShownSubject(side);
    useOnce(*subject);
    if (operation.startsWith(QLatin1String("type")))
        return measureTyping(*subject);
    if (operation == QLatin1String("narrow"))
        return measureNarrowing(*subject);
    if (operation == QLatin1String("board"))
        return measureBoards(*subject);
    if (operation == QLatin1String("clear"))
        return measureClearing(*subject);
    if (operation == QLatin1String("id"))
        return measureChoosing(*subject, Role::SecurityIdRole);
    if (operation == QLatin1String("code"))
        return measureChoosing(*subject, Role::SecurityCodeRole);
    throw std::runtime_error("no such operation");
}

} // namespace

QByteArray SelectorFigure::toLine() const
{
    return "figure " + QByteArray::number(median, 'g', 9) + ' ' +
           QByteArray::number(worst, 'g', 9) + '\n';
}

bool SelectorFigure::fromLine(const QByteArray &line, SelectorFigure *figure)
{
    const QList<QByteArray> words = line.simplified().split(' ');
    if (words.size() != 3 || words.first() != "figure")
        return false;
    *figure = {words.at(1).toDouble(), words.at(2).toDouble()};
    return true;
}

void readAndSort()
{
    std::vector<Data> rows = readRows(Texts::SharedWithHost);
    std::sort(rows.begin(), rows.end());
}

SelectorFigure measureSelector(const QString &side, const QString &operation,
                               const QString &database)
{
    EmbeddedHost host;
    if (!host.loadNow(database))
        throw std::runtime_error(host.errorText().toStdString());
    ICore::install(&host);
    if (operation.startsWith(QLatin1String("memory")))
        return measureMemory(side, operation);
    if (operation == QLatin1String("populate"))
        return measurePopulating(side);
    if (operation == QLatin1String("openFirst"))
        return measureOpening(side, 0);
    if (operation == QLatin1String("openFar"))
        return measureOpening(side, 0.9);
    if (operation == QLatin1String("search"))
        return measureSearching(side);
    return measureBox(side, operation);
}
