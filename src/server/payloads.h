#pragma once

// The payload records of the server's answers: each reads its key beside "status" inside "subsonic-response".

#include "json.h"
#include "records.h"

namespace Payloads {

using namespace Qt::StringLiterals;

struct Empty {
    static Empty fromJson(const QJsonObject &) { return {}; }
};

struct AlbumPayload {
    Album album;
    static AlbumPayload fromJson(const QJsonObject &o) { return {Album::fromJson(Json::requiredObject(o, "album"_L1))}; }
};

struct ArtistPayload {
    ArtistDetail artist;
    static ArtistPayload fromJson(const QJsonObject &o)
    {
        return {ArtistDetail::fromJson(Json::requiredObject(o, "artist"_L1))};
    }
};

struct PlaylistPayload {
    PlaylistDetail playlist;
    static PlaylistPayload fromJson(const QJsonObject &o)
    {
        return {PlaylistDetail::fromJson(Json::requiredObject(o, "playlist"_L1))};
    }
};

struct AlbumListPayload {
    std::optional<QList<Album>> album;
    static AlbumListPayload fromJson(const QJsonObject &o)
    {
        return {Json::optionalArray<Album>(Json::requiredObject(o, "albumList2"_L1), "album"_L1)};
    }
};

struct ArtistsPayload {
    std::optional<QList<ArtistIndex>> index;
    static ArtistsPayload fromJson(const QJsonObject &o)
    {
        return {Json::optionalArray<ArtistIndex>(Json::requiredObject(o, "artists"_L1), "index"_L1)};
    }
};

struct PlaylistsPayload {
    std::optional<QList<Playlist>> playlist;
    static PlaylistsPayload fromJson(const QJsonObject &o)
    {
        return {Json::optionalArray<Playlist>(Json::requiredObject(o, "playlists"_L1), "playlist"_L1)};
    }
};

struct SearchPayload {
    SearchResult result;
    static SearchPayload fromJson(const QJsonObject &o)
    {
        return {SearchResult::fromJson(Json::requiredObject(o, "searchResult3"_L1))};
    }
};

struct StarredPayload {
    SearchResult result;
    static StarredPayload fromJson(const QJsonObject &o)
    {
        return {SearchResult::fromJson(Json::requiredObject(o, "starred2"_L1))};
    }
};

}
