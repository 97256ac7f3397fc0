#include "manifestfile.h"

#include "common/atomicwrite.h"
#include "downloadlayout.h"
#include "server/json.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

DownloadManifest loadManifest(const QString &serverDirectory)
{
    QFile file(DownloadLayout::manifestPath(serverDirectory));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return {};
    try {
        return DownloadManifest::fromJson(document.object());
    } catch (const Json::DecodeError &) {
        return {};
    }
}

bool saveManifest(const DownloadManifest &manifest, const QString &serverDirectory)
{
    const QByteArray bytes = QJsonDocument(manifest.toJson()).toJson(QJsonDocument::Compact);
    if (!QDir().mkpath(serverDirectory))
        return false;
    return writeAtomically(DownloadLayout::manifestPath(serverDirectory), bytes);
}
