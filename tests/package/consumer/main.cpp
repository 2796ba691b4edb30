// A program outside the tree that uses each library of an installation once.
#include <embeddedhost/embeddedhost.h>
#include <formkit/FtpClient/FTPListParse.h>
#include <formkit/formkit_version.h>
#include <formkit/numbereditor.h>
#include <formkit/properties.h>
#include <hostapi/decimal.h>

#include <QApplication>

namespace {

bool hostApiAdds()
{
    return (decimal(u"10.5") + decimal(u"0.25")).toString() == "10.75";
}

bool formKitBinds()
{
    NumberEditor price;
    price.setProperty("field", "Price");
    Properties hub;
    hub.connectAll(&price);
    hub.setValue("Price", "101.25");
    return price.getValue() == "101.25";
}

bool ftpParses()
{
    nsFTP::CFTPFileStatus status;
    return nsFTP::CFTPListParser().Parse(status, "+i8388621.29609,m824255902,/,\tdev") &&
           status.name == "dev";
}

bool embeddedHostRefuses()
{
    EmbeddedHost host;
    return !host.loadNow("there is no such file") && !host.errorText().isEmpty();
}

} // namespace

static_assert(FORMKIT_VERSION >= FORMKIT_VERSION_CHECK(0, 1, 0), FORMKIT_VERSION_STR);

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const bool works[] = {hostApiAdds(), formKitBinds(), ftpParses(), embeddedHostRefuses()};
    qInfo("HostApi %d, FormKit %d, Ftp %d, EmbeddedHost %d", works[0], works[1], works[2],
          works[3]);
    return works[0] && works[1] && works[2] && works[3] ? 0 : 1;
}
