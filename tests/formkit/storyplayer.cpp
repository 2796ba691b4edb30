// SPDX-License-Identifier: BSD-3-Clause
#include "storyplayer.h"

#include "storyanswers.h"
#include "storysteps.h"

#include <formkit/stockselectorbox_code.h>

#include <QAbstractItemModelTester>
#include <QMetaProperty>

namespace {

// A name may have a star, which stands for any text.
bool isCalled(const QString &name, const QString &word)
{
    const int star = name.indexOf('*');
    return star < 0 ? name == word
                    : word.startsWith(name.left(star)) && word.endsWith(name.mid(star + 1));
}

template <typename Words> auto findWord(const Words &words, const QString &name)
{
    return std::find_if(words.begin(), words.end(),
                        [&](const auto &word) { return isCalled(word.name, name); });
}

template <typename Words> QString table(const char *title, const Words &words)
{
    QString page = QString("\n### %1\n\n| word | meaning | example |\n|---|---|---|\n").arg(title);
    const auto code = [](const QString &text) {
        return '`' + text.trimmed().replace("|", "\\|") + '`';
    };
    for (const auto &word : words)
        page += "| " + code(QString("%1 %2").arg(word.name, word.arguments)) + " | " +
                word.meaning + " | " + code(word.example) + " |\n";
    return page;
}

} // namespace

StoryPlayer::StoryPlayer(TestHost *testHost, const QString &fileName)
    : StoryForm(testHost, fileName)
    , m_steps(storySteps(this))
    , m_verbs(storyVerbs(this))
    , m_labels(storyLabels(this))
{
}

QString StoryPlayer::manual() const
{
    return table("Steps", m_steps) + table("Expectations", m_verbs) +
           table("Labels of `shows`", m_labels);
}

void StoryPlayer::act(const QString &steps, const QString &separator)
{
    for (const QString &step : steps.split(separator)) {
        const auto word = findWord(m_steps, step.section(' ', 0, 0));
        QVERIFY2(word != m_steps.end(), qPrintable("no step " + step));
        word->function(step.section(' ', 1));
    }
}

QString StoryPlayer::answer(const QString &label) const
{
    const QString meant = file.labels.value(label, label);
    return findWord(m_labels, meant)->function(meant);
}

QString StoryPlayer::compared(const QString &verb, const QString &expectation) const
{
    const auto word = findWord(m_verbs, verb);
    return word == m_verbs.end() ? "no such word" : word->function(expectation);
}

void StoryPlayer::testModels() const
{
    for (QAbstractItemModel *const model : {box() ? box()->model() : nullptr, source()}) {
        if (model)
            new QAbstractItemModelTester(
                model, QAbstractItemModelTester::FailureReportingMode::QtTest, model);
    }
}

void StoryPlayer::play(const DataRow &story)
{
    testModels();
    QString place;
    for (int i = 1; i < story.size() && !QTest::currentTestFailed(); ++i) {
        place = QString("%1:%2: ").arg(story.file).arg(story.line + i);
        const QString verb = story[i].section(' ', 0, 0);
        const QString told = story[i].section(' ', 1);
        const QString steps = told.section(" -> ", 0, 0);
        if (verb == "given" || verb == "when")
            act(steps);
        if (verb == "given")
            act("turn");
        else if (verb == "when")
            compare(place + steps, log.mid(1), told.section(" -> ", 1));
        else
            compare(place + verb, compared(verb, told), told);
        if (verb == "given" || verb == "when")
            log.clear();
    }
    QVERIFY2(log.isEmpty(), qPrintable(place + "not told: reports" + log));
    checkChoice();
}

void StoryPlayer::compare(const QString &place, const QString &found, const QString &expected)
{
    QVERIFY2(found == expected,
             qPrintable(place + "\n   expected: " + expected + "\n   found:    " + found));
}

// A selector answers for the row that it shows.
void StoryPlayer::checkChoice() const
{
    const bool isChoice = box() && box()->itemText(box()->currentIndex()) == box()->currentText();
    const QVariant id = isChoice ? box()->currentData(roleOfId(box())) : QVariant();
    if (id.isValid() && !qobject_cast<StockSelectorBox_Code *>(current))
        QCOMPARE(box()->metaObject()->userProperty().read(box()).toString(),
                 id.toString().section(',', -1));
}
