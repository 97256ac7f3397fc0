#pragma once

// Everything fetched from the server for one signed-in session, and the user's edits of it: album lists, the
// home row, artists, all songs, likes, playlists and the detail caches, with the health of the connection.
// Screens read it and call its ensure/loadMore operations; they never talk to the server for lists.
// One store per client, on the main thread.

#include "albumliststate.h"
#include "common/task.h"
#include "connectionfault.h"
#include "server/subsonicclient.h"

#include <QHash>
#include <QObject>
#include <QtQml/qqmlregistration.h>
#include <QSet>

#include <map>

// An artist's albums newest first: a greater year first, an album without one as of year 0, albums of one year in
// the server's order.
[[nodiscard]] QList<Album> inDiscographyOrder(QList<Album> albums);

class LibraryStore : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the app state for each client")
    Q_PROPERTY(int epoch READ epoch NOTIFY epochChanged)
    Q_PROPERTY(int playlistRevision READ playlistRevision NOTIFY playlistRevisionChanged)
    Q_PROPERTY(bool songsLoaded READ songsLoaded NOTIFY songsLoadedChanged)
    Q_PROPERTY(bool artistsLoaded READ artistsLoaded NOTIFY artistsLoadedChanged)
    Q_PROPERTY(bool starredLoaded READ starredLoaded NOTIFY starredLoadedChanged)
    Q_PROPERTY(bool playlistsLoaded READ playlistsLoaded NOTIFY playlistsLoadedChanged)
    Q_PROPERTY(bool isRetrying READ isRetrying NOTIFY isRetryingChanged)

public:
    static constexpr int albumPageSize = 60;
    static constexpr int songPageSize = 500;
    static constexpr int songLimit = 20'000;
    static constexpr int homeRandomCount = 20;

    explicit LibraryStore(SubsonicClient client, QObject *parent = nullptr);
    ~LibraryStore() override;

    [[nodiscard]] const SubsonicClient &client() const { return m_client; }

    // Loading
    [[nodiscard]] AlbumListState albumList(AlbumListType type) const;
    [[nodiscard]] AlbumListState homeRowState(AlbumListType type) const;
    void ensureHomeRow(AlbumListType type);
    void loadMoreAlbums(AlbumListType type);
    void ensureArtistsLoaded();
    void ensureSongsLoaded();
    void ensureStarredLoaded();
    void ensurePlaylistsLoaded();
    void refresh();
    [[nodiscard]] bool hasCachedContent() const;

    // Details, cached until refresh(); failures are thrown to the caller, a cancellation as TaskCancelled.
    QCoro::Task<Album> albumDetail(QString id, CancelToken token = {});
    QCoro::Task<ArtistDetail> artistDetail(QString id, CancelToken token = {});
    QCoro::Task<PlaylistDetail> playlistDetail(QString id, CancelToken token = {});
    QCoro::Task<QList<Song>> artistDiscographySongs(QString id, CancelToken token = {});

    // Likes: the cache changes at once and is put back if the server refuses.
    void toggleStar(const Song &song);
    void toggleStarAlbum(const Album &album);
    void toggleStarArtist(const QString &id);

    // Playlist edits: the server goes first and the caches follow.
    QCoro::Task<std::optional<QString>> createPlaylist(QString name);
    QCoro::Task<> renamePlaylist(QString id, QString name);
    QCoro::Task<bool> deletePlaylist(QString id);
    QCoro::Task<> addSongs(QList<Song> songs, QString playlistId);
    QCoro::Task<> addAlbum(Album album, QString playlistId);
    QCoro::Task<> removeSong(int index, QStringList songIds, QString playlistId);
    QCoro::Task<bool> reorderPlaylist(QString playlistId, QStringList songIds);

    // Connection health
    QCoro::Task<> retryConnection();
    QCoro::Task<> retryLastFailure();

    [[nodiscard]] int epoch() const { return m_epoch; }
    [[nodiscard]] int playlistRevision() const { return m_playlistRevision; }
    [[nodiscard]] const QList<Song> &songs() const { return m_songs; }
    [[nodiscard]] bool songsLoaded() const { return m_songsLoaded; }
    [[nodiscard]] const std::optional<QString> &songsError() const { return m_songsError; }
    [[nodiscard]] const QList<ArtistIndex> &artistIndexes() const { return m_artistIndexes; }
    [[nodiscard]] const QList<Artist> &allArtists() const { return m_allArtists; }
    [[nodiscard]] bool artistsLoaded() const { return m_artistsLoaded; }
    [[nodiscard]] const std::optional<QString> &artistsError() const { return m_artistsError; }
    [[nodiscard]] const QList<Song> &starredSongs() const { return m_starredSongs; }
    [[nodiscard]] const QList<Album> &starredAlbums() const { return m_starredAlbums; }
    [[nodiscard]] const QSet<QString> &starredIds() const { return m_starredIds; }
    [[nodiscard]] const QSet<QString> &starredAlbumIds() const { return m_starredAlbumIds; }
    [[nodiscard]] const QSet<QString> &starredArtistIds() const { return m_starredArtistIds; }
    [[nodiscard]] bool starredLoaded() const { return m_starredLoaded; }
    [[nodiscard]] const std::optional<QString> &starredError() const { return m_starredError; }
    [[nodiscard]] const QList<Playlist> &playlists() const { return m_playlists; }
    [[nodiscard]] bool playlistsLoaded() const { return m_playlistsLoaded; }
    [[nodiscard]] const std::optional<QString> &playlistsError() const { return m_playlistsError; }
    [[nodiscard]] const ServerReachability &reachability() const { return m_reachability; }
    [[nodiscard]] const std::optional<StoreFailure> &lastFailure() const { return m_lastFailure; }
    void setLastFailure(std::optional<StoreFailure> failure);
    [[nodiscard]] bool isRetrying() const { return m_isRetrying; }

Q_SIGNALS:
    void epochChanged();
    void playlistRevisionChanged();
    void albumListChanged(AlbumListType type);
    void homeRandomChanged();
    // Pages of all songs are appended, never replaced, so a view can insert rows instead of resetting.
    void songsAppended(qsizetype first, qsizetype count);
    void songsReset();
    void songsLoadedChanged();
    void songsErrorChanged();
    void artistsChanged();
    void artistsLoadedChanged();
    void artistsErrorChanged();
    void starredSongsChanged();
    void starredAlbumsChanged();
    void starredIdsChanged();
    void starredAlbumIdsChanged();
    void starredArtistIdsChanged();
    void starredLoadedChanged();
    void starredErrorChanged();
    void playlistsChanged();
    void playlistsLoadedChanged();
    void playlistsErrorChanged();
    void reachabilityChanged();
    void lastFailureChanged();
    void isRetryingChanged();

private:
    // What one server call of a background load came to: the answer, or the text of its failure.
    template<typename T>
    struct Settled {
        std::optional<T> value;
        QString error;
    };

    // Background loads (libraryloads.cpp)
    // Awaits the call; nothing when the load was cancelled meanwhile, and then the store must not be touched.
    // Otherwise a success marks the server reachable and a failure is judged for reachability.
    template<typename T>
    QCoro::Task<std::optional<Settled<T>>> settle(QCoro::Task<T> request, CancelToken token);
    QCoro::Task<> loadAlbumPage(AlbumListType type, CancelToken token);
    QCoro::Task<> loadHomeRandom(CancelToken token);
    QCoro::Task<> loadArtists(CancelToken token);
    QCoro::Task<> loadSongs(CancelToken token);
    QCoro::Task<> loadStarred(CancelToken token);
    QCoro::Task<> loadPlaylists(CancelToken token);
    QCoro::Task<> reloadPlaylists();
    void ensureHomeRandomLoaded();
    // The failure path every load shares: a standing fault for offline and unauthorized, the text for the screen.
    QString failLoad(std::exception_ptr error);

    // Likes (librarylikes.cpp)
    void applyStar(const Song &song, bool starred);
    void applyAlbumStar(const Album &album, bool starred);
    void applyArtistStar(const QString &id, bool starred);
    // Sends one like or unlike; on failure runs `rollBack` and notes the failure with `retry`.
    static QCoro::Task<> sendLike(QPointer<LibraryStore> store, StarTarget target, bool starred,
                                  std::function<void(LibraryStore *)> rollBack, std::function<QCoro::Task<>()> retry);

    // Playlist edits and retries (libraryplaylists.cpp)
    // Awaits one server request of an edit. A failure is noted with its retry; success marks the server as
    // reachable. True only for a success with the store still there.
    QCoro::Task<bool> sendEdit(QCoro::Task<> request, QString action, std::function<QCoro::Task<>()> retry);
    QCoro::Task<> retryAdd(QList<Song> songs, QString playlistId);
    QCoro::Task<> retryRemove(int index, QStringList before, QString playlistId);

    // Records a failed user action for the banner, and logs it.
    void note(std::exception_ptr error, const QString &action, std::function<QCoro::Task<>()> retry);

    void setEpoch(int value);
    void setReachability(ServerReachability value);
    void setIsRetrying(bool value);
    void setPlaylistRevision(int value);
    void setAlbumList(AlbumListType type, AlbumListState state);
    void setHomeRandom(QList<Album> albums, std::optional<QString> error, bool loaded);
    void setArtists(QList<ArtistIndex> indexes);
    void setArtistsLoaded(bool value);
    void setArtistsError(std::optional<QString> value);
    void setSongsLoaded(bool value);
    void setSongsError(std::optional<QString> value);
    void setStarredSongs(QList<Song> songs);
    void setStarredAlbums(QList<Album> albums);
    void setStarredArtistIds(QSet<QString> ids);
    void setStarredLoaded(bool value);
    void setStarredError(std::optional<QString> value);
    void setPlaylists(QList<Playlist> value);
    void setPlaylistsLoaded(bool value);
    void setPlaylistsError(std::optional<QString> value);

    const SubsonicClient m_client;
    int m_epoch = 0;
    std::map<AlbumListType, AlbumListState> m_albumLists;
    QList<Album> m_homeRandomAlbums;
    std::optional<QString> m_homeRandomError;
    bool m_homeRandomLoaded = false;
    QList<ArtistIndex> m_artistIndexes;
    QList<Artist> m_allArtists;
    bool m_artistsLoaded = false;
    std::optional<QString> m_artistsError;
    QList<Song> m_songs;
    bool m_songsLoaded = false;
    std::optional<QString> m_songsError;
    QList<Song> m_starredSongs;
    bool m_starredLoaded = false;
    std::optional<QString> m_starredError;
    QSet<QString> m_starredIds;
    QList<Album> m_starredAlbums;
    QSet<QString> m_starredAlbumIds;
    QSet<QString> m_starredArtistIds;
    QList<Playlist> m_playlists;
    bool m_playlistsLoaded = false;
    std::optional<QString> m_playlistsError;
    ServerReachability m_reachability;
    std::optional<StoreFailure> m_lastFailure;
    bool m_isRetrying = false;
    int m_playlistRevision = 0;
    QHash<QString, Album> m_albumDetails;
    QHash<QString, ArtistDetail> m_artistDetails;
    QHash<QString, PlaylistDetail> m_playlistDetails;

    // Last, so they are destroyed first: their tasks are cancelled before any field they write goes away.
    std::map<AlbumListType, TaskHandle> m_albumTasks;
    TaskHandle m_homeRandomTask;
    TaskHandle m_artistsTask;
    TaskHandle m_songsTask;
    TaskHandle m_starredTask;
    TaskHandle m_playlistsTask;
};
