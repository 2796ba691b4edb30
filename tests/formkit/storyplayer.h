// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "storyform.h"

class StoryPlayer;

/// Words of the stories' language; words.txt tells of each.
template <typename Result>
using StoryWords =
    QMap<QString, std::function<Result(StoryPlayer *player, const QString &arguments)>>;
using StorySteps = StoryWords<void>;
using StoryAnswers = StoryWords<QString>;

/// What a hand, the program and the host do.
StorySteps storySteps();
/// What may begin a line of expectations.
StoryAnswers storyVerbs();
/// What "shows" knows besides properties.
StoryAnswers storyLabels();

/// Plays stories on a form.
class StoryPlayer : public StoryForm
{
    Q_OBJECT

public:
    using StoryForm::StoryForm;

    /// Plays a story and fails the running test at the first line that does not hold.
    void play(const DataRow &story);
    /// Does steps, "press F4 Down; leave".
    void act(const QString &steps, const QString &separator = "; ");
    /// The value of a label of "shows" now: "text", "price.Value".
    QString answer(const QString &label);
    /// What an expectation would have to be now: "shows", "text= row=".
    QString compared(const QString &verb, const QString &expectation);
    /// Fails the running test where "shows" does not hold.
    void expect(const QString &shown) { compare("shows", compared("shows", shown), shown); }
    /// The tables of README.md.
    QString manual() const;

private:
    void testModels() const;
    static void compare(const QString &place, const QString &found, const QString &expected);
    void checkChoice() const;

    const StorySteps m_steps = storySteps();
    const StoryAnswers m_verbs = storyVerbs(), m_labels = storyLabels();
};
