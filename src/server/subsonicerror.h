#pragma once

// The failures of the request path: the server's HTTP status, the server's own error, or an answer that cannot
// be read. Transport failures are TransportError.

#include <QString>

#include <exception>

struct SubsonicError : std::exception {
    enum class Kind { Http, Server, InvalidResponse };

    Kind kind = Kind::InvalidResponse;
    int status = 0;  // Http
    qint64 code = 0; // Server
    QString message; // Server

    static SubsonicError http(int status);
    static SubsonicError server(qint64 code, const QString &message);
    static SubsonicError invalidResponse();

    // The words the user reads.
    [[nodiscard]] QString description() const;
    [[nodiscard]] const char *what() const noexcept override { return "SubsonicError"; }
    bool operator==(const SubsonicError &other) const;
};
