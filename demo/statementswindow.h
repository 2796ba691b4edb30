// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "statementsworker.h"

#include <QThread>
#include <QWidget>

#include <memory>

namespace Ui {
class StatementsWindow;
}

/// Fetches statements from an FTP server. The order form can be used meanwhile.
class StatementsWindow : public QWidget
{
    Q_OBJECT

public:
    explicit StatementsWindow(QWidget *parent = nullptr);
    /// Cancels what is under way and waits for its end, at most for one time-out of the client.
    ~StatementsWindow() override;

    /// Fills in the fields and connects.
    void open(const StatementsServer &server);
    /// Fetches the chosen file without asking for a name.
    void downloadTo(const QString &localFile);

Q_SIGNALS:
    /// For the worker's thread.
    void openRequested(const StatementsServer &server);
    void downloadRequested(const Statement &statement, const QString &localFile);
    /// The list or the download has ended, well or not.
    void finished();

private:
    enum Phase { Idle, Connecting, Downloading };

    StatementsServer enteredServer() const;
    void showStatements(const QVector<Statement> &statements);
    void showProgress(qint64 received, qint64 total, qint64 elapsed);
    void askAndDownload();
    void enter(Phase phase, const QString &text);
    void leave(const QString &text);

    std::unique_ptr<Ui::StatementsWindow> m_ui;
    QThread m_thread;
    StatementsWorker *m_worker;
    QVector<Statement> m_statements;
};
