#include "localnetwork.h"

#include <QHostAddress>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {
bool hasLocalSuffix(const QString &host)
{
    static const QStringList suffixes = {u".local"_s, u".lan"_s, u".home"_s, u".internal"_s, u".home.arpa"_s};
    return std::any_of(suffixes.cbegin(), suffixes.cend(),
                       [&](const QString &suffix) { return host.endsWith(suffix); });
}

bool isLocalIPv6(const QString &host, const QHostAddress &address)
{
    // Only this spelling of loopback counts: the written-out form is not taken as local.
    if (host == u"::1"_s)
        return true;
    const Q_IPV6ADDR bytes = address.toIPv6Address();
    if (bytes[0] == 254 && bytes[1] >= 128 && bytes[1] <= 191)
        return true; // fe80::/10
    return (bytes[0] & 0xFE) == 252; // fc00::/7
}

bool isLocalIPv4(quint32 address)
{
    const auto inRange = [address](quint32 network, int prefix) {
        const quint32 mask = prefix == 0 ? 0 : ~quint32(0) << (32 - prefix);
        return (address & mask) == network;
    };
    return inRange(0x0A000000, 8) || inRange(0x7F000000, 8) || inRange(0xAC100000, 12) || inRange(0xC0A80000, 16)
        || inRange(0xA9FE0000, 16);
}

// QHostAddress also takes the short forms inet_aton allows ("10.1"); only four dotted numbers are an address here.
bool isDottedQuad(const QString &host)
{
    static const QRegularExpression pattern(u"^\\d{1,3}\\.\\d{1,3}\\.\\d{1,3}\\.\\d{1,3}$"_s);
    return pattern.match(host).hasMatch();
}
}

bool isLikelyLocalHost(const std::optional<QString> &host)
{
    if (!host)
        return false;
    const QString text = host->toLower();
    if (text.isEmpty())
        return false;
    if (text == u"localhost"_s)
        return true;
    if (hasLocalSuffix(text))
        return true;
    if (text.contains(u':')) {
        QHostAddress address;
        if (address.setAddress(text) && address.protocol() == QAbstractSocket::IPv6Protocol)
            return isLocalIPv6(text, address);
    }
    if (isDottedQuad(text)) {
        QHostAddress address;
        if (address.setAddress(text) && address.protocol() == QAbstractSocket::IPv4Protocol)
            return isLocalIPv4(address.toIPv4Address());
    }
    return false;
}
