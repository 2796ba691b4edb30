// SPDX-License-Identifier: BSD-3-Clause
#include <formkit/FtpJobs/ftpjobs.h>

#include <QCoreApplication>
#include <QDebug>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    FtpServer server;
    server.logon = {"ftp.example.org", 21, "joe", "secret"};
    server.retries = 10;
    FtpJobs jobs;
    jobs.setServer(server);

    QObject::connect(&jobs, &FtpJobs::progress, [](int, const FtpProgress &progress) {
        qInfo() << progress.done << "of" << progress.total << "bytes," << progress.secondsLeft
                << "seconds left";
    });
    QObject::connect(&jobs, &FtpJobs::retrying, [](int, const FtpError &error, int milliseconds) {
        qInfo() << error.text << "Trying again in" << milliseconds << "ms";
    });
    QObject::connect(&jobs, &FtpJobs::finished, [&](int, const FtpError &error) {
        qInfo() << (error ? error.text : "Sent.");
        application.exit(error ? 1 : 0);
    });
    jobs.upload("orders.csv", "in/orders.csv");
    return application.exec();
}
