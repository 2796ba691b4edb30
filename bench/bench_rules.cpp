// SPDX-License-Identifier: BSD-3-Clause
// A key in a form of 200 fields: without rules, with 400, and with all fields marked.

#include <formkit/formrules.h>
#include <formkit/lineedit.h>
#include <formkit/properties.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QFormLayout>

namespace {

constexpr int FieldCount = 200;

enum With { NoRules, Rules, MarkedRules };

void typeKey(benchmark::State &state, With with)
{
    QWidget form;
    auto *const layout = new QFormLayout(&form);
    for (int i = 0; i < FieldCount; ++i) {
        auto *const edit = new LineEdit;
        edit->setProperty("field", QStringLiteral("Field%1").arg(i));
        layout->addRow(QStringLiteral("Field %1").arg(i), edit);
    }
    Properties hub;
    hub.connectAll(&form);
    FormRules *const rules = with == NoRules ? nullptr : new FormRules(&hub, &form);
    for (int i = 0; rules && i < FieldCount; ++i) {
        const QString name = QStringLiteral("Field%1").arg(i);
        rules->require(name);
        rules->range(name, QStringLiteral("1"), QStringLiteral("100"));
    }
    form.show();
    auto *const edit = form.findChild<LineEdit *>();
    if (with == MarkedRules)
        rules->check();
    bool isShort = false;
    for (auto _ : state) {
        isShort = !isShort;
        const QString text = isShort ? QStringLiteral("5") : QStringLiteral("50");
        edit->setText(text);
        Q_EMIT edit->changedValue(text);
        QCoreApplication::processEvents();
    }
}
BENCHMARK_CAPTURE(typeKey, without, NoRules)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(typeKey, with400Rules, Rules)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(typeKey, withAllMarked, MarkedRules)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
