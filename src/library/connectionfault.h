#pragma once

// The one vocabulary every server failure is turned into before anyone decides what to do with it.

#include <QString>
#include <QUuid>

#include <exception>
#include <functional>
#include <variant>

#include <QCoroTask>

struct ConnectionFault {
    enum class Kind { Server, Other, Offline, Unauthorized };

    Kind kind = Kind::Other;
    QString text; // Server and Other only

    static ConnectionFault server(const QString &text) { return {Kind::Server, text}; }
    static ConnectionFault other(const QString &text) { return {Kind::Other, text}; }
    static ConnectionFault offline() { return {Kind::Offline, {}}; }
    static ConnectionFault unauthorized() { return {Kind::Unauthorized, {}}; }

    // Classifies whatever a request threw. Call from a catch block or with a captured exception.
    static ConnectionFault from(std::exception_ptr error);

    bool operator==(const ConnectionFault &) const = default;
};

// The user-readable words of whatever a request threw.
[[nodiscard]] QString errorDescription(std::exception_ptr error);

// Whether the server answers: ok, or failing with a standing fault.
struct ServerReachability {
    std::optional<ConnectionFault> failure; // absent means ok

    static ServerReachability ok() { return {}; }
    static ServerReachability failing(ConnectionFault fault) { return {std::move(fault)}; }
    [[nodiscard]] bool isOk() const { return !failure.has_value(); }

    bool operator==(const ServerReachability &) const = default;
};

// A failed user action, shown once with an optional way to run it again.
struct StoreFailure {
    QUuid id = QUuid::createUuid();
    QString action; // a verb phrase: "update your likes"
    ConnectionFault fault;
    std::function<QCoro::Task<>()> retry; // empty when the action cannot be run again

    [[nodiscard]] QString message() const;
    bool operator==(const StoreFailure &other) const { return id == other.id; }
};
