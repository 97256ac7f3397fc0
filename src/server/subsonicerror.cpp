#include "subsonicerror.h"

SubsonicError SubsonicError::http(int status)
{
    SubsonicError error;
    error.kind = Kind::Http;
    error.status = status;
    return error;
}

SubsonicError SubsonicError::server(qint64 code, const QString &message)
{
    SubsonicError error;
    error.kind = Kind::Server;
    error.code = code;
    error.message = message;
    return error;
}

SubsonicError SubsonicError::invalidResponse()
{
    return SubsonicError{};
}

QString SubsonicError::description() const
{
    switch (kind) {
    case Kind::Http:
        return QStringLiteral("The server returned HTTP %1.").arg(status);
    case Kind::Server:
        // Servers word a wrong password in many ways; the user gets one sentence for it.
        if (code == 40)
            return QStringLiteral("Wrong username or password.");
        return message;
    case Kind::InvalidResponse:
        break;
    }
    return QStringLiteral("The server response could not be read. Check that the URL points to a "
                          "Subsonic-compatible server.");
}

bool SubsonicError::operator==(const SubsonicError &other) const
{
    if (kind != other.kind)
        return false;
    switch (kind) {
    case Kind::Http:
        return status == other.status;
    case Kind::Server:
        return code == other.code && message == other.message;
    case Kind::InvalidResponse:
        break;
    }
    return true;
}
