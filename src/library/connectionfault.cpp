#include "connectionfault.h"

#include "server/subsonicerror.h"
#include "server/transporterror.h"

using namespace Qt::StringLiterals;

namespace {
bool meansOffline(QNetworkReply::NetworkError code)
{
    switch (code) {
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::TimeoutError:
    case QNetworkReply::TemporaryNetworkFailureError:
    // How Qt 6 reports "network is unreachable" and "no route to host": a machine off the network.
    case QNetworkReply::UnknownNetworkError:
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyConnectionClosedError:
    case QNetworkReply::ProxyNotFoundError:
    case QNetworkReply::ProxyTimeoutError:
        return true;
    default:
        return false;
    }
}

ConnectionFault fromSubsonic(const SubsonicError &error)
{
    switch (error.kind) {
    case SubsonicError::Kind::Http:
        if (error.status == 401 || error.status == 403)
            return ConnectionFault::unauthorized();
        return ConnectionFault::server(error.description());
    case SubsonicError::Kind::Server:
        // 40: wrong credentials; 50: the user is not authorised.
        if (error.code == 40 || error.code == 50)
            return ConnectionFault::unauthorized();
        return ConnectionFault::server(error.message);
    case SubsonicError::Kind::InvalidResponse:
        break;
    }
    return ConnectionFault::other(error.description());
}
}

ConnectionFault ConnectionFault::from(std::exception_ptr error)
{
    try {
        std::rethrow_exception(error);
    } catch (const SubsonicError &subsonic) {
        return fromSubsonic(subsonic);
    } catch (const TransportError &transport) {
        if (meansOffline(transport.code))
            return offline();
        return other(transport.description());
    } catch (const std::exception &unknown) {
        return other(QString::fromLocal8Bit(unknown.what()));
    } catch (...) {
    }
    return other(u"An unknown error occurred."_s);
}

QString errorDescription(std::exception_ptr error)
{
    try {
        std::rethrow_exception(error);
    } catch (const SubsonicError &subsonic) {
        return subsonic.description();
    } catch (const TransportError &transport) {
        return transport.description();
    } catch (const std::exception &unknown) {
        return QString::fromLocal8Bit(unknown.what());
    } catch (...) {
    }
    return u"An unknown error occurred."_s;
}

QString StoreFailure::message() const
{
    QString reason;
    switch (fault.kind) {
    case ConnectionFault::Kind::Offline:
        reason = u"can't reach your server"_s;
        break;
    case ConnectionFault::Kind::Unauthorized:
        reason = u"your server rejected the saved password"_s;
        break;
    case ConnectionFault::Kind::Server:
    case ConnectionFault::Kind::Other:
        reason = fault.text;
        if (!reason.isEmpty())
            reason[0] = reason[0].toLower();
        break;
    }
    return u"Couldn't "_s + action + u" — "_s + reason;
}
