// SPDX-License-Identifier: BSD-3-Clause
#include "storyplayer.h"

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

// The longest of the names that fit.
template <typename Words> auto findWord(const Words &words, const QString &name)
{
    auto found = words.end();
    for (auto word = words.begin(); word != words.end(); ++word) {
        const bool isLonger = found == words.end() || word.key().size() > found.key().size();
        if (isLonger && isCalled(word.key(), name))
            found = word;
    }
    return found;
}

} // namespace

QString StoryPlayer::manual() const
{
    QString page;
    QStringList told;
    const auto code = [](const QString &text) {
        return '`' + text.trimmed().replace("|", "\\|") + '`';
    };
    for (const DataRow &row : rowsOf("stories/words.txt")) {
        if (row.size() == 1) {
            page += "\n### " + row[0] + "\n\n| word | meaning | example |\n|---|---|---|\n";
            continue;
        }
        told << row[0];
        page += QStringList{"| " + code(row[0] + ' ' + row[1]), row[2], code(row[3]) + " |\n"}.join(
            " | ");
    }
    QStringList known = m_steps.keys() + m_verbs.keys() + m_labels.keys();
    known.sort();
    told.sort();
    compare("words.txt", told.join(' '), known.join(' '));
    return page;
}

void StoryPlayer::act(const QString &steps, const QString &separator)
{
    for (const QString &step : steps.split(separator)) {
        const auto word = findWord(m_steps, step.section(' ', 0, 0));
        QVERIFY2(word != m_steps.end(), qPrintable("no step " + step));
        (*word)(this, step.section(' ', 1));
    }
}

QString StoryPlayer::answer(const QString &label)
{
    const QString meant = file.labels.value(label, label);
    return (*findWord(m_labels, meant))(this, meant);
}

QString StoryPlayer::compared(const QString &verb, const QString &expectation)
{
    const auto word = findWord(m_verbs, verb);
    return word == m_verbs.end() ? "no such word" : (*word)(this, expectation);
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
