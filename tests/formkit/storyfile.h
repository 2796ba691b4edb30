// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <support/datafile.h>
#include <support/testhost.h>

/// A file of stories, as README.md explains it: first the form and its host, then the stories.
struct StoryFile
{
    /// Reads stories/NAME.txt.
    explicit StoryFile(const QString &name);

    QList<QStringList> controls;                         ///< class, name, properties
    QMap<QString, QMap<QString, QVariantList>> rows;     ///< by table and nickname
    QMap<QString, QVector<QVariantList>> offeredAtStart; ///< by table
    QVector<SessionId> sessions;
    QMap<QByteArray, QString> reports; ///< what a signal is called, by its name
    QMap<QString, QString> labels;     ///< what is meant, by the name that stories have for it
    QList<DataRow> stories;
};
