// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "storyform.h"

/// A word of the stories' language, and what README.md tells of it.
template <typename Result> struct StoryWord
{
    const char *name;
    const char *arguments;
    const char *meaning;
    const char *example;
    std::function<Result(const QString &arguments)> function;
};
using StorySteps = QList<StoryWord<void>>;
using StoryAnswers = QList<StoryWord<QString>>;

/// Plays stories on a form.
class StoryPlayer : public StoryForm
{
    Q_OBJECT

public:
    StoryPlayer(TestHost *host, const QString &fileName);

    /// Plays a story and fails the running test at the first line that does not hold.
    void play(const DataRow &story);
    /// Does steps, "press F4 Down; leave".
    void act(const QString &steps, const QString &separator = "; ");
    /// The value of a label of "shows" now: "text", "price.Value".
    QString answer(const QString &label) const;
    /// What an expectation would have to be now: "shows", "text= row=".
    QString compared(const QString &verb, const QString &expectation) const;
    /// The tables of README.md.
    QString manual() const;

private:
    void testModels() const;
    static void compare(const QString &place, const QString &found, const QString &expected);
    void checkChoice() const;

    const StorySteps m_steps;
    const StoryAnswers m_verbs, m_labels;
};
