#pragma once

// The one door to the server: signs every URL, fetches it, unwraps the answer's envelope and hands back a typed
// record or throws SubsonicError (the server said no, or said nonsense) or TransportError (it could not be
// reached). A cheap value: copies share the process-wide network manager and hold no other state.

#include "common/task.h"
#include "json.h"
#include "records.h"
#include "serverconfig.h"
#include "subsonicerror.h"

#include <QCoroTask>
#include <QList>
#include <QUrl>

#include <optional>
#include <utility>

class QNetworkAccessManager;

using QueryItem = std::pair<QString, QString>;

struct StarTarget {
    enum class Kind { Song, Album, Artist };
    Kind kind = Kind::Song;
    QString id;
};

enum class ScrobbleKind { NowPlaying, Played };

// What an "ok" answer said besides its payload.
struct ResponseEnvelope {
    QJsonObject body; // the object inside "subsonic-response"
    QString apiVersion;
};

class SubsonicClient
{
public:
    // The client takes the shared network manager unless a test hands it another.
    explicit SubsonicClient(ServerConfig config, QNetworkAccessManager *network = nullptr);

    [[nodiscard]] const ServerConfig &config() const { return m_config; }
    [[nodiscard]] QNetworkAccessManager *network() const { return m_network; }

    [[nodiscard]] QUrl url(const QString &endpoint, const QList<QueryItem> &params = {}) const;
    [[nodiscard]] static QString makeSalt(int length);
    [[nodiscard]] static QString token(const QString &password, const QString &salt);

    // Unwraps one answer, throwing SubsonicError. Payload::fromJson reads the envelope's inner object.
    template<typename Payload>
    static Payload decodePayload(const QByteArray &body)
    {
        return decodePayload<Payload>(decodeEnvelope(body));
    }
    template<typename Payload>
    static Payload decodePayload(const ResponseEnvelope &envelope);
    static ResponseEnvelope decodeEnvelope(const QByteArray &body);

    // Fetches and unwraps an answer: the building block of every operation below.
    QCoro::Task<ResponseEnvelope> requestEnvelope(QString endpoint, QList<QueryItem> params,
                                                  CancelToken token = {}) const;

    QCoro::Task<> ping(CancelToken token = {}) const;
    QCoro::Task<Album> album(QString id, CancelToken token = {}) const;
    QCoro::Task<ArtistDetail> artist(QString id, CancelToken token = {}) const;
    QCoro::Task<PlaylistDetail> playlist(QString id, CancelToken token = {}) const;
    QCoro::Task<QList<Album>> albums(AlbumListType type, int size, int offset, CancelToken token = {}) const;
    QCoro::Task<QList<Song>> songs(int size, int offset, CancelToken token = {}) const;
    QCoro::Task<std::optional<QList<ArtistIndex>>> artists(CancelToken token = {}) const;
    QCoro::Task<SearchResult> starred(CancelToken token = {}) const;

    struct SearchCounts {
        int artists = 0;
        int albums = 0;
        int songs = 0;
        int songOffset = 0;
    };
    QCoro::Task<SearchResult> search(QString query, SearchCounts counts, CancelToken token = {}) const;

    QCoro::Task<> star(StarTarget target, CancelToken token = {}) const;
    QCoro::Task<> unstar(StarTarget target, CancelToken token = {}) const;
    // `playedAt`, in milliseconds since 1970, tells when a play was heard; without it the server takes now.
    QCoro::Task<> scrobble(QString songId, ScrobbleKind kind, std::optional<qint64> playedAt = std::nullopt,
                           CancelToken token = {}) const;

    QCoro::Task<std::optional<QList<Playlist>>> playlists(CancelToken token = {}) const;
    // Servers older than API 1.14.0 answer an empty "ok" without the new playlist: then the result is empty.
    QCoro::Task<std::optional<PlaylistDetail>> createPlaylist(QString name, CancelToken token = {}) const;
    QCoro::Task<> updatePlaylist(QString id, std::optional<QString> name, QStringList addSongIds,
                                 QList<int> removeIndexes, CancelToken token = {}) const;
    QCoro::Task<> replacePlaylistSongs(QString id, QStringList songIds, CancelToken token = {}) const;
    QCoro::Task<> deletePlaylist(QString id, CancelToken token = {}) const;

    [[nodiscard]] QUrl coverArtURL(const QString &id, std::optional<int> size = std::nullopt) const;
    [[nodiscard]] QUrl streamURL(const QString &songId) const;
    [[nodiscard]] QUrl downloadURL(const QString &songId) const;

    // The most an API answer may buffer; anything larger is not a Subsonic answer.
    static constexpr qint64 maxAnswerBytes = 32 * 1024 * 1024;
    // The longest query sent in the URL; a longer one goes as a form in the body of a POST.
    static constexpr qsizetype maxQueryBytes = 4000;

private:
    // A GET of `url`, or with `form` a POST of it, which follows a few redirects itself.
    QCoro::Task<QByteArray> fetch(QUrl url, CancelToken token, std::optional<QByteArray> form = std::nullopt,
                                  int redirectsLeft = 3) const;

    ServerConfig m_config;
    QNetworkAccessManager *m_network;
};

template<typename Payload>
Payload SubsonicClient::decodePayload(const ResponseEnvelope &envelope)
{
    try {
        return Payload::fromJson(envelope.body);
    } catch (const Json::DecodeError &) {
        throw SubsonicError::invalidResponse();
    }
}
