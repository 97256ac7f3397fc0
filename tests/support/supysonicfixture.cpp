#include "supysonicfixture.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

SupysonicFixture::SupysonicFixture(const QString &workdir)
    : m_workdir(workdir)
{
}

SupysonicFixture::~SupysonicFixture()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(5000))
        m_process.kill();
    m_process.waitForFinished(2000);
}

bool SupysonicFixture::start()
{
    QDir().mkpath(m_workdir);
    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    m_process.start(QStringLiteral("/usr/bin/python3"),
                    {QStringLiteral(VELTO_SUPYSONIC_FIXTURE), QStringLiteral("--workdir"), m_workdir});
    // A cold start generates the library with ffmpeg and scans it.
    QByteArray line;
    while (!line.contains('\n')) {
        if (!m_process.waitForReadyRead(120'000)) {
            m_error = QStringLiteral("the fixture did not start: ") + QString::fromUtf8(m_process.readAllStandardError());
            return false;
        }
        line += m_process.readAllStandardOutput();
    }
    if (!line.startsWith("READY ")) {
        m_error = QStringLiteral("unexpected fixture output: ") + QString::fromUtf8(line);
        return false;
    }
    const int port = line.mid(6).trimmed().toInt();
    m_baseURL = QUrl(QStringLiteral("http://127.0.0.1:%1").arg(port));

    QFile description(m_workdir + QStringLiteral("/library.json"));
    if (!description.open(QIODevice::ReadOnly)) {
        m_error = QStringLiteral("library.json is missing");
        return false;
    }
    m_library = QJsonDocument::fromJson(description.readAll()).object();
    return true;
}

QString SupysonicFixture::libraryPath(const QString &relative) const
{
    return m_workdir + QStringLiteral("/library/") + relative;
}
