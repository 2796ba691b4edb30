// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QSet>
#include <QString>

/// Lets equal texts share their memory. It suits columns with few different texts, such as the base
/// codes of derivatives; in a column of distinct texts it soon stops looking.
class StringPool
{
public:
    QString share(const QString &text);

private:
    bool m_gaveUp = false;
    qint64 m_hits = 0;
    QSet<QString> m_texts;
};
