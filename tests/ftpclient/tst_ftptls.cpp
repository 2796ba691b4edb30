// SPDX-License-Identifier: BSD-3-Clause
#include "session.h"
#include "support/datafile.h"
#include "support/stricttest.h"

#include <formkit/FtpTls/TlsSocket.h>

#include <QProcess>

using namespace nsFTP;

// What is refused and what works over TLS, with a scripted server.
class FtpTlsTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QCOMPARE(QProcess::execute("sh", {DATA_FOLDER "/certificates", m_folder.path()}), 0);
    }

    void conversations()
    {
        const auto spoken = [this](const QStringList &row) { return conversation(row); };
        QCOMPARE(faultsOf(rowsOf("protected.txt"), spoken), 0);
    }

private:
    CFTPSecurity securityOf(const QStringList &words) const
    {
        CFTPSecurity security;
        if (words[0] == "implicit")
            security.mode = CFTPSecurity::Implicit;
        const bool onlyPin = words.contains("pin") && !words.contains("ca");
        if (words.contains("lost"))
            security.caFile = "/lost.pem";
        else if (!onlyPin && !words.contains("system"))
            security.caFile = m_folder.filePath("ca.pem").toStdString();
        if (words.contains("pin"))
            security.pinnedKey =
                "sha256//" + readFile(m_folder.filePath("pin")).trimmed().toStdString();
        if (words.contains("otherpin"))
            security.pinnedKey = "sha256//0000";
        security.clearData = words.contains("data");
        security.clearControl = words.contains("control");
        return security;
    }

    QString conversation(const QStringList &row) const
    {
        Session session(row[3], row[0].contains("slow") ? 2 : 20,
                        nsSocket::CreateTlsSocketInstance(securityOf(row[1].split(' '))),
                        m_folder.path());
        // "login,<operations>", or operations that log on themselves.
        const bool logsOn = row[2].startsWith("logon");
        long long result = logsOn || session.login() ? 0 : -1;
        const QString operations = logsOn ? row[2] : row[2].section(',', 1);
        if (!operations.isEmpty())
            result = session.perform(operations);
        const QString sent = session.server.commands().join(',');
        const QString errors = session.recorder.errors().join('\n');
        QString outcome = QString::number(result);
        outcome += session.inStep() || !session.client.IsConnected() ? "" : " out of step";
        outcome += session.client.IsConnected() ? "" : " closed";
        bool good =
            outcome == row[4] && session.client.IsConnected() == (session.client.Noop() == 0);
        for (const QString &extra : row.mid(5)) {
            const QString wanted = extra.section(' ', 1);
            good = good && (!extra.startsWith("sends") || sent == wanted) &&
                   (!extra.startsWith("file") || session.read() == wanted.toUtf8()) &&
                   (!extra.startsWith("reports") || errors.contains(QRegularExpression(wanted)));
        }
        return good ? "" : QStringList({outcome, sent, session.read(), errors}).join("; ");
    }

    const QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(FtpTlsTest)
#include "tst_ftptls.moc"
