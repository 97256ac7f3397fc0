#include "downloadlayout.h"

#include "offlinefilename.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
bool isAsciiAlphanumeric(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9');
}
}

DownloadLayout::DownloadLayout(QString root)
    : m_root(std::move(root))
{
}

DownloadLayout DownloadLayout::standard()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (data.isEmpty())
        qFatal("No user data folder to keep downloads in");
    const QString root = data + "/Velto/Downloads"_L1;
    QDir().mkpath(root);
    return DownloadLayout(root);
}

QString DownloadLayout::directory(const ServerConfig &config) const
{
    return m_root + u'/' + offlineFileName(serverKey(config));
}

std::optional<QUrl> DownloadLayout::localFileURL(const Song &song, const ServerConfig &config) const
{
    const QString dir = directory(config);
    if (song.suffix && !song.suffix->isEmpty()) {
        const QString expected = dir + u'/' + songFileName(song.id, *song.suffix);
        if (QFileInfo(expected).isFile())
            return QUrl::fromLocalFile(expected);
    }
    // Finds files kept under the "audio" fallback, or under a suffix the server has changed since.
    const QString hash = offlineFileName(song.id);
    const QStringList patterns{hash, hash + ".*"_L1};
    const QStringList names = QDir(dir).entryList(patterns, QDir::Files | QDir::Hidden, QDir::Unsorted);
    if (names.isEmpty())
        return std::nullopt;
    return QUrl::fromLocalFile(dir + u'/' + names.first());
}

QString DownloadLayout::artworkDirectory(const QString &serverDirectory)
{
    return serverDirectory + "/artwork"_L1;
}

QString DownloadLayout::manifestPath(const QString &serverDirectory)
{
    return serverDirectory + "/manifest.json"_L1;
}

QString DownloadLayout::songFileName(const QString &songId, const QString &suffix)
{
    return offlineFileName(songId) + u'.' + storedSuffix(suffix);
}

QString DownloadLayout::coverFileName(const QString &coverArt)
{
    return offlineFileName(coverArt);
}

QString DownloadLayout::storedSuffix(const std::optional<QString> &suffix)
{
    const bool usable = suffix && !suffix->isEmpty() && suffix->size() <= maxSuffixLength
        && std::all_of(suffix->cbegin(), suffix->cend(), isAsciiAlphanumeric);
    return usable ? *suffix : u"audio"_s;
}
