// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPObservers_p.h"

#include "formkit/FtpClient/FTPClient_p.h"

namespace nsFTP {

namespace {

constexpr char SourceName[] = "formkit/FtpClient/FTPClient";

} // namespace

CFTPClient::CNotification::~CNotification()
{
    for (CFTPClient *client : m_Clients)
        client->d->observers.set.erase(this);
}

void CFTPClient::CNotification::OnInternalError(const std::string & /*message*/,
                                                const std::string & /*source*/, int /*line*/)
{
}

void CFTPClient::CNotification::OnBeginReceivingData() {}

void CFTPClient::CNotification::OnBytesReceived(const std::vector<char> & /*buffer*/,
                                                long /*count*/)
{
}

void CFTPClient::CNotification::OnEndReceivingData(long long /*total*/) {}

void CFTPClient::CNotification::OnBytesSent(const std::vector<char> & /*buffer*/, long /*count*/) {}

void CFTPClient::CNotification::OnBeginSendingData(const std::string & /*localName*/,
                                                   const std::string & /*remoteFile*/,
                                                   long long /*localSize*/, long long /*offset*/)
{
}

void CFTPClient::CNotification::OnSendCommand(const CCommand & /*command*/,
                                              const CArg & /*arguments*/)
{
}

void CFTPClient::CNotification::OnResponse(const CReply & /*reply*/) {}

void CFTPClient::CNotification::OnSendExtension(const std::string & /*command*/,
                                                const CArg & /*arguments*/)
{
}

void Observers::report(const std::string &message, ReportAt place) const
{
    tell([&](CNotification &o) { o.OnInternalError(message, SourceName, int(place)); });
}

void Observers::report(const nsSocket::CBlockingSocketException &exception, ReportAt place) const
{
    report(exception.GetErrorMessage(), place);
}

} // namespace nsFTP
