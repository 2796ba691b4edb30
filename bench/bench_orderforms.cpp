// SPDX-License-Identifier: BSD-3-Clause
// How long a user waits for the order form of the examples, with formkit and with Qt alone, over
// the same host. Each form and size has a process of its own, which ends after ten minutes at the
// latest.
//
//     bench_orderforms                       10,000, 100,000 and 1,000,000 securities
//     bench_orderforms formkit 1000000       one form, one size

#include "formkitorder.h"
#include "stockorder.h"
#include "terminalhost.h"

#include <QApplication>
#include <QLabel>
#include <QProcess>
#include <QtTest>

#include <cstdio>
#include <ctime>

namespace {

constexpr int Boards = 100;

// Measures processor time, as other work on the machine disturbs it least. Nothing here waits.
class Stopwatch
{
public:
    Stopwatch() { restart(); }
    // Prints the time since the last line.
    void line(const char *what)
    {
        QCoreApplication::processEvents();
        const double seconds = double(std::clock() - m_start) / CLOCKS_PER_SEC;
        std::printf("  %-52s %10.1f ms\n", what, seconds * 1000);
        std::fflush(stdout);
        restart();
    }
    void restart() { m_start = std::clock(); }

private:
    std::clock_t m_start;
};

// The first security of a board.
Values order(const char *board)
{
    Values values;
    values.insert("StockId", "1");
    values.insert("BoardId", board);
    values.insert("SecurityId", board);
    return values;
}

template <typename Form> void measure(int rows)
{
    std::vector<TradingBoard> boards;
    for (int board = 1; board <= Boards; ++board)
        boards.push_back({1, board, QString("B%1").arg(board), QString("Board %1").arg(board)});
    std::vector<Security> securities;
    for (int i = 0; i < rows; ++i) {
        const QString name = QString("Name %1").arg((qint64(i) * 7919) % rows, 7, 10, QChar('0'));
        securities.push_back({1, i % Boards + 1, i + 1, name, name, 1});
    }
    TerminalHost host({{1, "X", "Exchange"}}, boards);
    host.setSecurities(securities);
    host.setSessions({{1, 1}});
    ICore::install(&host);
    {
        Stopwatch watch;
        Form form;
        form.show();
        watch.line("opening the form");
        QApplication::setActiveWindow(&form);
        QWidget *security = nullptr;
        for (const QLabel *label : form.template findChildren<QLabel *>())
            security = label->text() == "&Security" ? label->buddy() : security;
        security->setFocus();
        watch.restart();
        QTest::keyClicks(security, "Na");
        watch.line("two keys in the security, every one listed");
        form.refresh();
        watch.line("a refresh under half a name");
        form.fill(order("7"));
        watch.line("a board and a security set by the program");
        form.fill(order("8"));
        watch.line("another board");
        form.refresh();
        watch.line("a refresh under a choice");
    }
    ICore::install(nullptr);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3) {
        const int rows = arguments.at(2).toInt();
        arguments.at(1) == "formkit" ? measure<FormkitOrder>(rows) : measure<StockOrder>(rows);
        return 0;
    }
    for (const char *rows : {"10000", "100000", "1000000"}) {
        for (const char *side : {"formkit", "stock"}) {
            std::printf("%s, %s securities\n", side, rows);
            std::fflush(stdout);
            QProcess process;
            process.setProcessChannelMode(QProcess::ForwardedOutputChannel);
            process.start(QCoreApplication::applicationFilePath(), {side, rows});
            if (!process.waitForFinished(600000)) {
                process.kill();
                process.waitForFinished();
                std::printf("  ended after ten minutes\n");
            }
        }
    }
    return 0;
}
