#pragma once

// Answers for the fake server in the shapes the library store asks for, and small record helpers.

#include "fakesubsonicserver.h"
#include "testdata.h"

#include <QJsonArray>

inline Song song(const QString &id)
{
    return Song{.id = id, .title = QStringLiteral("Song ") + id};
}

inline QJsonObject songJson(const QString &id)
{
    return {{QStringLiteral("id"), id}, {QStringLiteral("title"), QStringLiteral("Song ") + id}};
}

inline QJsonObject albumJson(const QString &id, std::optional<int> year = std::nullopt)
{
    QJsonObject album{{QStringLiteral("id"), id}, {QStringLiteral("name"), QStringLiteral("Album ") + id}};
    if (year)
        album.insert(QStringLiteral("year"), *year);
    return album;
}

inline FakeResponse albumPage(int first, int count)
{
    QJsonArray albums;
    for (int i = first; i < first + count; ++i)
        albums.append(albumJson(QString::number(i)));
    return FakeSubsonicServer::json({{QStringLiteral("albumList2"), QJsonObject{{QStringLiteral("album"), albums}}}});
}

inline FakeResponse songPage(int first, int count)
{
    QJsonArray songs;
    for (int i = first; i < first + count; ++i)
        songs.append(songJson(QString::number(i)));
    return FakeSubsonicServer::json({{QStringLiteral("searchResult3"), QJsonObject{{QStringLiteral("song"), songs}}}});
}

inline QJsonObject playlistsPayload(const QJsonArray &rows)
{
    return {{QStringLiteral("playlists"), QJsonObject{{QStringLiteral("playlist"), rows}}}};
}

inline FakeResponse playlistJson(const QString &id, const QStringList &songIds)
{
    QJsonArray entries;
    for (const QString &songId : songIds)
        entries.append(songJson(songId));
    QJsonObject playlist{{QStringLiteral("id"), id}, {QStringLiteral("name"), QStringLiteral("List")}};
    if (!songIds.isEmpty())
        playlist.insert(QStringLiteral("entry"), entries);
    return FakeSubsonicServer::json({{QStringLiteral("playlist"), playlist}});
}

