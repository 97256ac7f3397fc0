#pragma once

// A real Supysonic server for end-to-end tests, started from scripts/demo/supysonic_server.py on a free port of
// 127.0.0.1 with a generated library. It stops with this object, or with the test process (it watches its stdin).

#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QUrl>

class SupysonicFixture
{
public:
    // `workdir` keeps the generated library between runs; each start resets the server's database.
    explicit SupysonicFixture(const QString &workdir);
    ~SupysonicFixture();

    // Starts the server and waits for it; false with the reason in errorText() when it could not.
    bool start();
    [[nodiscard]] QString errorText() const { return m_error; }

    [[nodiscard]] QUrl baseURL() const { return m_baseURL; }
    [[nodiscard]] QString username() const { return QStringLiteral("alice"); }
    [[nodiscard]] QString password() const { return QStringLiteral("sesame-ünï 1"); }
    // What the library holds: albums with their songs, as written by the fixture.
    [[nodiscard]] const QJsonObject &library() const { return m_library; }
    [[nodiscard]] QString libraryPath(const QString &relative) const;

private:
    QString m_workdir;
    QProcess m_process;
    QUrl m_baseURL;
    QJsonObject m_library;
    QString m_error;
};
