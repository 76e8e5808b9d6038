#include "destination.h"

#include "transports.h"

#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace delivery {

const QByteArray statusRequests[3] = {
    QByteArrayLiteral("\x10\x04\x01"),
    QByteArrayLiteral("\x10\x04\x02"),
    QByteArrayLiteral("\x10\x04\x04"),
};

std::optional<PrinterStatus> PrinterStatus::fromAnswers(std::uint8_t printer, std::uint8_t offlineCause,
                                                        std::uint8_t paperSensor)
{
    const auto isStatusByte = [](std::uint8_t byte) { return (byte & 0x93) == 0x12; };
    if (!isStatusByte(printer) || !isStatusByte(offlineCause) || !isStatusByte(paperSensor))
        return std::nullopt;
    PrinterStatus status;
    status.drawerOpen = printer & 0x04; // the drawer connector's pin 3 high
    status.offline = printer & 0x08;
    status.coverOpen = offlineCause & 0x04;
    // Either sensor of a pair is enough: printers fit one or both.
    status.paperNearEnd = paperSensor & 0x0c;
    status.paperEnd = (paperSensor & 0x60) || (offlineCause & 0x20);
    return status;
}

QStringList PrinterStatus::facts() const
{
    QStringList lines{offline ? u"offline"_s : u"online"_s};
    const std::pair<bool, QString> others[] = {
        {coverOpen, u"cover open"_s},
        {paperNearEnd, u"paper near end"_s},
        {paperEnd, u"paper end"_s},
        {drawerOpen, u"drawer open"_s},
    };
    for (const auto& [holds, text] : others) {
        if (holds)
            lines.append(text);
    }
    return lines;
}

std::optional<PrinterStatus> Destination::status(Milliseconds)
{
    fail(u"cannot ask its status"_s);
    return std::nullopt;
}

bool Destination::waitForJob(Milliseconds, QString* state)
{
    *state = u"sent"_s;
    return true;
}

namespace {

// "HOST:PORT" with an IPv4 address, a host name or an IPv6 address in
// brackets: what a user means by a network printer.
bool looksLikeHostAndPort(const QString& name)
{
    static const QRegularExpression hostAndPort(u"^(\\[[0-9A-Fa-f:.]+\\]|[A-Za-z0-9.-]+):[0-9]+$"_s);
    return hostAndPort.match(name).hasMatch();
}

bool hasScheme(const QString& name)
{
    static const QRegularExpression scheme(u"^[A-Za-z][A-Za-z0-9+.-]*://"_s);
    return scheme.match(name).hasMatch();
}

// socket://HOST[:PORT][/][?OPTIONS]: what follows the authority is the
// spooler's business and ignored here.
std::unique_ptr<Destination> parseSocket(const QString& name, QString* error)
{
    static const QRegularExpression uri(u"^socket://(\\[([0-9A-Fa-f:.]+)\\]|([^/:?\\[\\]]+))(:([0-9]+))?/?(\\?.*)?$"_s);
    const QRegularExpressionMatch match = uri.match(name);
    if (!match.hasMatch()) {
        *error = "cannot read the network printer '"_L1 + name + "': write socket://HOST:PORT"_L1;
        return nullptr;
    }
    const QString host = match.captured(2).isEmpty() ? match.captured(3) : match.captured(2);
    unsigned port = 9100;
    if (match.hasCaptured(5)) {
        bool ok = false;
        port = match.captured(5).toUInt(&ok);
        if (!ok || port == 0 || port > 65535) {
            *error = "no port "_L1 + match.captured(5) + " in "_L1 + name + " (1 to 65535)"_L1;
            return nullptr;
        }
    }
    return socketDestination(name, host, quint16(port));
}

} // namespace

std::unique_ptr<Destination> makeDestination(const QString& name, QString* error)
{
    if (name == "-"_L1)
        return standardOutput();
    if (name.startsWith("socket://"_L1))
        return parseSocket(name, error);
    if (name.startsWith("cups:"_L1)) {
        const QString queue = name.mid(5);
        if (queue.isEmpty() || queue.contains(u'/')) {
            *error = "cannot read the CUPS queue '"_L1 + name + "': write cups:QUEUE"_L1;
            return nullptr;
        }
        return cupsQueue(name, queue);
    }
    // Anything else is a path; one that is not there and reads as a network
    // address is a slip, which would otherwise become a regular file.
    if (!QFileInfo::exists(name)) {
        if (looksLikeHostAndPort(name)) {
            *error = name + " is no file; a network printer is socket://"_L1 + name;
            return nullptr;
        }
        if (hasScheme(name)) {
            *error = "unknown kind of destination "_L1 + name
                     + "; a network printer is socket://HOST:PORT, a CUPS queue cups:QUEUE"_L1;
            return nullptr;
        }
    }
    return pathDestination(name);
}

} // namespace delivery
