// SPDX-License-Identifier: BSD-3-Clause
#include <formkit/FtpJobs/ftpjobs.h>

#include <QCoreApplication>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    FtpServer server;
    server.logon = {"ftp.example.org", 21, "joe", "secret"};
    server.sessions = 2;
    FtpJobs jobs;
    jobs.setServer(server);

    QObject::connect(&jobs, &FtpJobs::listed, [&](int, const QVector<FtpEntry> &entries) {
        for (const FtpEntry &entry : entries) {
            if (entry.isFile && !entry.localName().isEmpty())
                jobs.download(entry.path, "statements/" + entry.localName());
        }
    });
    QObject::connect(&jobs, &FtpJobs::finished, [](int, const FtpError &error) {
        if (error)
            qWarning("%s", qPrintable(error.text));
    });
    QObject::connect(&jobs, &FtpJobs::allFinished, &application, &QCoreApplication::quit);
    jobs.list("pub");
    return application.exec();
}
