// SPDX-License-Identifier: BSD-3-Clause
// Parsing a million lines of each listing style, beside a loop that only splits the same lines at
// blanks (for EPLF at commas); and a whole List() over loopback with growing numbers of entries.

#include "ftpclient/scriptedserver.h"

#include <benchmark/benchmark.h>
#include <formkit/FtpClient/FTPClient.h>

#include <string_view>

using namespace nsFTP;

namespace {

constexpr int Lines = 1000000;

std::string lineOf(int style, int number)
{
    const std::string n = std::to_string(number);
    switch (style) {
    case 0:
        return "+i77." + n + ",m1049371565,r,s9130,\tfile" + n + ".html";
    case 1:
        return "-rw-r--r--   1 clerk    desk         731 Feb 11 07:42 file" + n + ".html";
    case 2:
        return "-rw-r--r--   1 clerk    desk         731 Feb 11  2009 file" + n + ".html";
    case 3:
        return "FILE" + n + ".TXT;3      4 17-OCT-2001 08:25 [CLERK] (RWED,RWED,RE,RE)";
    default:
        return "05-02-00  01:26PM                  874 file" + n + ".htm";
    }
}

const char *const Styles[] = {"EPLF", "UNIX, time", "UNIX, year", "MultiNet", "MS-DOS"};

std::vector<std::string> linesOf(int style)
{
    std::vector<std::string> lines;
    lines.reserve(Lines);
    for (int i = 0; i < Lines; ++i)
        lines.push_back(lineOf(style, i));
    return lines;
}

void parse(benchmark::State &state)
{
    const std::vector<std::string> lines = linesOf(int(state.range(0)));
    CFTPListParser parser;
    CFTPFileStatus status;
    for (auto _ : state) {
        for (const std::string &line : lines) {
            if (!parser.Parse(status, line))
                state.SkipWithError("a line was not read");
            benchmark::DoNotOptimize(status);
        }
    }
    state.SetLabel(Styles[state.range(0)]);
    state.SetItemsProcessed(state.iterations() * Lines);
}

void split(benchmark::State &state)
{
    const std::vector<std::string> lines = linesOf(int(state.range(0)));
    const char separator = state.range(0) == 0 ? ',' : ' ';
    std::vector<std::string_view> tokens;
    for (auto _ : state) {
        for (const std::string &line : lines) {
            tokens.clear();
            for (size_t at = line.find_first_not_of(separator); at != std::string::npos;) {
                const size_t end = std::min(line.find(separator, at), line.size());
                tokens.emplace_back(line.data() + at, end - at);
                at = line.find_first_not_of(separator, end);
            }
            benchmark::DoNotOptimize(tokens);
        }
    }
    state.SetLabel(Styles[state.range(0)]);
    state.SetItemsProcessed(state.iterations() * Lines);
}

void list(benchmark::State &state)
{
    QByteArray content;
    for (int i = 0; i < int(state.range(0)); ++i)
        content += QByteArray::fromStdString(lineOf(1, i)) + "\r\n";
    const ScriptedServer server({}, false, content);
    CFTPClient client(nsSocket::CreateDefaultBlockingSocketInstance());
    std::vector<std::shared_ptr<CFTPFileStatus>> entries;
    if (!client.Login({"127.0.0.1", server.port()}))
        state.SkipWithError("no logon");
    for (auto _ : state) {
        if (!client.List("", entries, true) || int(entries.size()) != state.range(0))
            state.SkipWithError("no listing");
    }
    state.SetComplexityN(state.range(0));
}

} // namespace

BENCHMARK(split)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);
BENCHMARK(parse)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);
BENCHMARK(list)
    ->RangeMultiplier(2)
    ->Range(25000, 400000)
    ->Arg(200000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Complexity(benchmark::oN);

BENCHMARK_MAIN();
