#pragma once

// Small things every suite needs: songs named by their ids, and files read and written whole.

#include "server/records.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

// "a b c" gives three songs with ids a, b and c, each 200 seconds long.
inline QList<Song> makeSongs(const QString &ids)
{
    QList<Song> songs;
    for (const QString &id : ids.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        songs.append(Song{.id = id, .title = QStringLiteral("Song ") + id, .duration = 200});
    return songs;
}

inline QStringList idsOf(const QList<Song> &songs)
{
    QStringList ids;
    for (const Song &song : songs)
        ids.append(song.id);
    return ids;
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Writes `bytes` to `path`, making its folder; false when that failed.
inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}
