// SPDX-License-Identifier: BSD-3-Clause
// The hub beside the property writes that it has to make in any case.

#include <formkit/lineedit.h>
#include <formkit/properties.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMetaProperty>

#include <memory>
#include <vector>

namespace {

constexpr int NameCount = 1000;
constexpr int EditsPerName = 2;

struct Form
{
    Form()
    {
        for (int i = 0; i < NameCount; ++i) {
            const QString name = QStringLiteral("Name%1").arg(i, 4, 10, QLatin1Char('0'));
            fill[0].insert(name, QStringLiteral("value of field %1").arg(i));
            fill[1].insert(name, QStringLiteral("other value of field %1").arg(i));
            for (int j = 0; j < EditsPerName; ++j)
                edits.push_back(std::make_unique<LineEdit>());
        }
    }

    // Two contents in turn, so that every write changes a text.
    Values fill[2];
    std::vector<std::unique_ptr<LineEdit>> edits;
};

void setValuesThroughTheHub(benchmark::State &state)
{
    Form form;
    Properties hub;
    auto edit = form.edits.begin();
    for (const QString &name : form.fill[0].keys()) {
        for (int j = 0; j < EditsPerName; ++j)
            hub.connectOne(name, (edit++)->get(), "Value");
    }
    int turn = 0;
    for (auto _ : state)
        hub.setValues(form.fill[++turn % 2]);
    state.SetItemsProcessed(state.iterations() * NameCount * EditsPerName);
}
BENCHMARK(setValuesThroughTheHub)->Unit(benchmark::kMicrosecond);

void setValuesByBareWrites(benchmark::State &state)
{
    Form form;
    const QMetaObject &meta = LineEdit::staticMetaObject;
    const QMetaProperty property = meta.property(meta.indexOfProperty("Value"));
    int turn = 0;
    for (auto _ : state) {
        const Values &values = form.fill[++turn % 2];
        auto edit = form.edits.begin();
        for (auto value = values.cbegin(); value != values.cend(); ++value) {
            for (int j = 0; j < EditsPerName; ++j)
                property.write((edit++)->get(), *value);
        }
    }
    state.SetItemsProcessed(state.iterations() * NameCount * EditsPerName);
}
BENCHMARK(setValuesByBareWrites)->Unit(benchmark::kMicrosecond);

// One edit, which the hub writes into all other properties of the name.
void fanOut(benchmark::State &state)
{
    Properties hub;
    std::vector<std::unique_ptr<LineEdit>> edits;
    for (int i = 0; i < state.range(0); ++i) {
        edits.push_back(std::make_unique<LineEdit>());
        hub.connectOne(QStringLiteral("Name"), edits.back().get(), "Value");
    }
    LineEdit &typed = *edits.front();
    const QString texts[] = {QStringLiteral("one text"), QStringLiteral("another text")};
    int turn = 0;
    for (auto _ : state) {
        typed.setText(texts[++turn % 2]);
        Q_EMIT typed.changedValue(typed.text());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(fanOut)->Arg(1)->Arg(100)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
