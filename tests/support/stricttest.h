// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QRegularExpression>
#include <QStringList>
#include <QtTest>

/// The base of every test class: a warning that the running test function did not announce
/// with expectWarning(), and an announced one that did not come, fail that function. A test
/// class with an init() or cleanup() of its own calls these.
class StrictTest : public QObject
{
    Q_OBJECT

public:
    /// Announces one warning of the running test whose whole text matches the pattern.
    static void expectWarning(const QString &pattern);
    /// Every message (any level) logged since the test function began.
    QStringList messages() const;

protected Q_SLOTS:
    /// QTest calls only private slots as tests, and these by name.
    void init();
    void cleanup();
};
