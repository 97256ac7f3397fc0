#pragma once

// A failure below HTTP: the host could not be found or reached, the connection dropped, the request timed out.
// Its text is Velto's own, never Qt's, whose error strings quote the request URL with its credentials.

#include <QNetworkReply>
#include <QString>

#include <exception>

struct TransportError : std::exception {
    explicit TransportError(QNetworkReply::NetworkError code) : code(code) { }

    QNetworkReply::NetworkError code;

    [[nodiscard]] QString description() const;
    [[nodiscard]] const char *what() const noexcept override { return "TransportError"; }
    bool operator==(const TransportError &other) const { return code == other.code; }
};
