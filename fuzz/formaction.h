#pragma once

#include <QString>
#include <QVector>

#include <random>

// One thing that a user or a program does to a form, written as a line: a verb, what it acts on,
// and a text in quotes ("type price '12.5'").
struct FormAction
{
    QString verb;
    QString target;
    QString text;

    // A line that is none gives an action without a verb.
    static FormAction fromLine(const QString &line);
    QString toLine() const;
    static FormAction random(std::mt19937 &random);
    // Actions that do less, or the same with a simpler text.
    QVector<FormAction> simpler() const;
};
