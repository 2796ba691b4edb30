// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/FtpJobs/ftpjobs.h>

#include <QWidget>

#include <memory>

namespace Ui {
class StatementsWindow;
}

/// Fetches statements from an FTP server while the order form stays alive.
class StatementsWindow : public QWidget
{
    Q_OBJECT

public:
    explicit StatementsWindow(QWidget *parent = nullptr);
    ~StatementsWindow() override;

    /// Fills the fields and connects.
    void open(const FtpServer &server, const QString &folder);
    /// Fetches the chosen file without asking where to.
    void downloadTo(const QString &localFile);

Q_SIGNALS:
    /// A listing or a download has ended, with or without success.
    void finished();

private:
    FtpServer enteredServer() const;
    void connectToServer();
    void showStatements(const QVector<FtpEntry> &entries);
    void showProgress(const FtpProgress &progress);
    void askAndDownload();
    const FtpEntry *currentStatement() const;
    void enter(int job, const QString &text);
    void leave(const QString &text);

    std::unique_ptr<Ui::StatementsWindow> m_ui;
    FtpJobs m_jobs;
    int m_job = 0; // under way
    QVector<FtpEntry> m_statements;
    QString m_success; // to be told
};
