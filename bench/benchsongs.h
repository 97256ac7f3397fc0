#pragma once

// A song as a server sends it, with every field a real library fills in; numbered so that albums and artists
// repeat the way they do in a real collection.

#include <QJsonObject>
#include <QString>

inline QJsonObject benchSongJson(int i)
{
    return QJsonObject{
        {QStringLiteral("id"), QStringLiteral("song-%1").arg(i)},
        {QStringLiteral("title"), QStringLiteral("A Song Title Number %1").arg(i)},
        {QStringLiteral("album"), QStringLiteral("Some Album %1").arg(i / 12)},
        {QStringLiteral("albumId"), QStringLiteral("album-%1").arg(i / 12)},
        {QStringLiteral("artist"), QStringLiteral("Some Artist %1").arg(i / 40)},
        {QStringLiteral("artistId"), QStringLiteral("artist-%1").arg(i / 40)},
        {QStringLiteral("track"), i % 12 + 1},
        {QStringLiteral("discNumber"), 1},
        {QStringLiteral("year"), 1990 + i % 30},
        {QStringLiteral("duration"), 180 + i % 120},
        {QStringLiteral("contentType"), QStringLiteral("audio/flac")},
        {QStringLiteral("suffix"), QStringLiteral("flac")},
        {QStringLiteral("coverArt"), QStringLiteral("al-%1").arg(i / 12)},
        {QStringLiteral("bitRate"), 1000},
        {QStringLiteral("path"), QStringLiteral("Artist/Album/%1.flac").arg(i)},
    };
}
