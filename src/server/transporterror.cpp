#include "transporterror.h"

QString TransportError::description() const
{
    switch (code) {
    case QNetworkReply::HostNotFoundError:
        return QStringLiteral("A server with the specified hostname could not be found.");
    case QNetworkReply::ConnectionRefusedError:
        return QStringLiteral("Could not connect to the server.");
    case QNetworkReply::RemoteHostClosedError:
        return QStringLiteral("The network connection was lost.");
    case QNetworkReply::TimeoutError:
    case QNetworkReply::OperationCanceledError:
        return QStringLiteral("The request timed out.");
    case QNetworkReply::TemporaryNetworkFailureError:
        return QStringLiteral("The Internet connection appears to be offline.");
    case QNetworkReply::UnknownNetworkError:
        return QStringLiteral("The network is unreachable.");
    case QNetworkReply::SslHandshakeFailedError:
        return QStringLiteral("An SSL error has occurred and a secure connection to the server cannot be made.");
    case QNetworkReply::TooManyRedirectsError:
        return QStringLiteral("Too many HTTP redirects.");
    case QNetworkReply::InsecureRedirectError:
        return QStringLiteral("The server redirected to an insecure address.");
    case QNetworkReply::ProtocolUnknownError:
        return QStringLiteral("The server address has an unsupported scheme.");
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyConnectionClosedError:
    case QNetworkReply::ProxyNotFoundError:
    case QNetworkReply::ProxyTimeoutError:
    case QNetworkReply::ProxyAuthenticationRequiredError:
        return QStringLiteral("Could not connect to the proxy server.");
    default:
        break;
    }
    return QStringLiteral("An unknown network error occurred.");
}
