// Every request Velto makes to the server, with its parameters in the order the server receives them.
// None of these touches the client after its first suspension: a copy may be gone by then.
// Query lists are built before the co_await: GCC 12 rejects a braced list inside a co_await expression.

#include "payloads.h"
#include "subsonicclient.h"

using namespace Qt::StringLiterals;

namespace {
QString number(qint64 value)
{
    return QString::number(value);
}

QString starParameter(StarTarget::Kind kind)
{
    switch (kind) {
    case StarTarget::Kind::Album:
        return "albumId"_L1;
    case StarTarget::Kind::Artist:
        return "artistId"_L1;
    case StarTarget::Kind::Song:
        break;
    }
    return "id"_L1;
}

// createPlaylist started returning the playlist it made with API 1.14.0.
bool answersCreatedPlaylist(const QString &apiVersion)
{
    const QList<QStringView> parts = QStringView(apiVersion).split(u'.');
    const int major = parts.value(0).toInt();
    const int minor = parts.value(1).toInt();
    return major > 1 || (major == 1 && minor >= 14);
}
}

QCoro::Task<> SubsonicClient::ping(CancelToken token) const
{
    co_await requestEnvelope("ping"_L1, {}, token);
}

QCoro::Task<Album> SubsonicClient::album(QString id, CancelToken token) const
{
    const QList<QueryItem> params{{"id"_L1, id}};

    const auto envelope = co_await requestEnvelope("getAlbum"_L1, params, token);
    co_return decodePayload<Payloads::AlbumPayload>(envelope).album;
}

QCoro::Task<ArtistDetail> SubsonicClient::artist(QString id, CancelToken token) const
{
    const QList<QueryItem> params{{"id"_L1, id}};

    const auto envelope = co_await requestEnvelope("getArtist"_L1, params, token);
    co_return decodePayload<Payloads::ArtistPayload>(envelope).artist;
}

QCoro::Task<PlaylistDetail> SubsonicClient::playlist(QString id, CancelToken token) const
{
    const QList<QueryItem> params{{"id"_L1, id}};

    const auto envelope = co_await requestEnvelope("getPlaylist"_L1, params, token);
    co_return decodePayload<Payloads::PlaylistPayload>(envelope).playlist;
}

QCoro::Task<QList<Album>> SubsonicClient::albums(AlbumListType type, int size, int offset, CancelToken token) const
{
    const QList<QueryItem> params{
        {"type"_L1, albumListTypeName(type)}, {"size"_L1, number(size)}, {"offset"_L1, number(offset)}};
    const auto envelope = co_await requestEnvelope("getAlbumList2"_L1, params, token);
    co_return decodePayload<Payloads::AlbumListPayload>(envelope).album.value_or(QList<Album>());
}

QCoro::Task<QList<Song>> SubsonicClient::songs(int size, int offset, CancelToken token) const
{
    // There is no method listing every song: an empty search query answers with all of them.
    const SearchResult result = co_await search(QString(), {.songs = size, .songOffset = offset}, token);
    co_return result.song.value_or(QList<Song>());
}

QCoro::Task<std::optional<QList<ArtistIndex>>> SubsonicClient::artists(CancelToken token) const
{
    const auto envelope = co_await requestEnvelope("getArtists"_L1, {}, token);
    co_return decodePayload<Payloads::ArtistsPayload>(envelope).index;
}

QCoro::Task<SearchResult> SubsonicClient::starred(CancelToken token) const
{
    const auto envelope = co_await requestEnvelope("getStarred2"_L1, {}, token);
    co_return decodePayload<Payloads::StarredPayload>(envelope).result;
}

QCoro::Task<SearchResult> SubsonicClient::search(QString query, SearchCounts counts, CancelToken token) const
{
    const QList<QueryItem> params{{"query"_L1, query},
                                                    {"artistCount"_L1, number(counts.artists)},
                                                    {"albumCount"_L1, number(counts.albums)},
                                                    {"songCount"_L1, number(counts.songs)},
                                                    {"songOffset"_L1, number(counts.songOffset)}};

    const auto envelope = co_await requestEnvelope("search3"_L1, params, token);
    co_return decodePayload<Payloads::SearchPayload>(envelope).result;
}

QCoro::Task<> SubsonicClient::star(StarTarget target, CancelToken token) const
{
    const QList<QueryItem> params{{starParameter(target.kind), target.id}};

    co_await requestEnvelope("star"_L1, params, token);
}

QCoro::Task<> SubsonicClient::unstar(StarTarget target, CancelToken token) const
{
    const QList<QueryItem> params{{starParameter(target.kind), target.id}};

    co_await requestEnvelope("unstar"_L1, params, token);
}

QCoro::Task<> SubsonicClient::scrobble(QString songId, ScrobbleKind kind, std::optional<qint64> playedAt,
                                       CancelToken token) const
{
    const QString submission = kind == ScrobbleKind::Played ? "true"_L1 : "false"_L1;
    QList<QueryItem> params{{"id"_L1, songId}, {"submission"_L1, submission}};
    if (playedAt)
        params.append({"time"_L1, number(*playedAt)});

    co_await requestEnvelope("scrobble"_L1, params, token);
}

QCoro::Task<std::optional<QList<Playlist>>> SubsonicClient::playlists(CancelToken token) const
{
    const auto envelope = co_await requestEnvelope("getPlaylists"_L1, {}, token);
    co_return decodePayload<Payloads::PlaylistsPayload>(envelope).playlist;
}

QCoro::Task<std::optional<PlaylistDetail>> SubsonicClient::createPlaylist(QString name, CancelToken token) const
{
    const QList<QueryItem> params{{"name"_L1, name}};

    const auto envelope = co_await requestEnvelope("createPlaylist"_L1, params, token);
    if (!answersCreatedPlaylist(envelope.apiVersion) && !envelope.body.contains("playlist"_L1))
        co_return std::nullopt;
    co_return decodePayload<Payloads::PlaylistPayload>(envelope).playlist;
}

QCoro::Task<> SubsonicClient::updatePlaylist(QString id, std::optional<QString> name, QStringList addSongIds,
                                             QList<int> removeIndexes, CancelToken token) const
{
    QList<QueryItem> params{{"playlistId"_L1, id}};
    if (name)
        params.append({"name"_L1, *name});
    for (const QString &songId : std::as_const(addSongIds))
        params.append({"songIdToAdd"_L1, songId});
    for (int index : std::as_const(removeIndexes))
        params.append({"songIndexToRemove"_L1, number(index)});
    co_await requestEnvelope("updatePlaylist"_L1, params, token);
}

QCoro::Task<> SubsonicClient::replacePlaylistSongs(QString id, QStringList songIds, CancelToken token) const
{
    // createPlaylist with an id replaces the whole contents: the one way to save a new order.
    QList<QueryItem> params{{"playlistId"_L1, id}};
    for (const QString &songId : std::as_const(songIds))
        params.append({"songId"_L1, songId});
    co_await requestEnvelope("createPlaylist"_L1, params, token);
}

QCoro::Task<> SubsonicClient::deletePlaylist(QString id, CancelToken token) const
{
    const QList<QueryItem> params{{"id"_L1, id}};

    co_await requestEnvelope("deletePlaylist"_L1, params, token);
}

QUrl SubsonicClient::coverArtURL(const QString &id, std::optional<int> size) const
{
    QList<QueryItem> params{{"id"_L1, id}};
    if (size)
        params.append({"size"_L1, number(*size)});
    return url("getCoverArt"_L1, params);
}

// The file as it is on the server, not transcoded: it keeps its tags, ReplayGain's among them.
QUrl SubsonicClient::streamURL(const QString &songId) const
{
    return url("stream"_L1, {{"id"_L1, songId}, {"format"_L1, "raw"_L1}});
}

QUrl SubsonicClient::downloadURL(const QString &songId) const
{
    return url("download"_L1, {{"id"_L1, songId}});
}
