#pragma once

#include "formaction.h"

class EmbeddedHost;

// Plays actions on a form and on its model, and compares the two after each.
class FormSequence
{
public:
    // `file` as for BoundForm.
    FormSequence(EmbeddedHost *host, const QString &file) : m_host(host), m_file(file) {}

    // Empty when form and model agreed to the end; else what was wrong, and behind which action.
    QString play(const QVector<FormAction> &actions);
    // The shortest and simplest part found of a failing sequence that still fails.
    QVector<FormAction> shrunk(QVector<FormAction> actions);

    qint64 actionsPlayed() const { return m_played; }

private:
    bool tryReplacing(QVector<FormAction> *actions, int first, int count,
                      const QVector<FormAction> &with);

    EmbeddedHost *m_host;
    QString m_file;
    qint64 m_played = 0;
};
