// SPDX-License-Identifier: BSD-3-Clause
// A program outside the tree that uses each library of an installation once.
#include <embeddedhost/embeddedhost.h>
#include <formkit/FtpClient/FTPListParse.h>
#include <formkit/FtpJobs/ftpjobs.h>
#include <formkit/formkit_version.h>
#include <formkit/numbereditor.h>
#include <formkit/properties.h>
#include <formkit/securityselectorbox.h>
#include <hostapi/decimal.h>
#include <hostapi/exception.h>

#include <QApplication>

bool ownClassesWork();

namespace {

bool formKitBinds()
{
    QWidget form;
    auto *price = new NumberEditor(&form);
    price->setProperty("field", "Price");
    new SecuritySelectorBox(&form);
    Properties hub;
    int changes = 0;
    QObject::connect(&hub, &Properties::hasChanged, &form, [&changes] { ++changes; });
    hub.connectAll(&form);
    hub.setValue("Price", "101.25");
    QCoreApplication::processEvents();
    return price->getValue() == "101.25" && changes == 1;
}

} // namespace

static_assert(FORMKIT_VERSION >= FORMKIT_VERSION_CHECK(0, 1, 0), FORMKIT_VERSION_STR);

int main(int argc, char **argv)
{
    const QApplication app(argc, argv);
    nsFTP::CFTPFileStatus status;
    EmbeddedHost host;
    FtpJobs jobs;
    const int listing = jobs.list();
    bool works = formKitBinds() && ownClassesWork() && !host.loadNow("there is no such file") &&
                 nsFTP::CFTPListParser().Parse(status, "+i7.19,m1700000000,/,\tquotes") &&
                 status.name == "quotes" && jobs.count() == 1 &&
                 jobs.state(listing) != FtpJobs::Unknown;
    try {
        works = decimal(u"a lot") == decimal() && works;
    } catch (const Exception &) {
        return works ? 0 : 1;
    }
    return 1;
}
