#pragma once

// Albums and playlists kept on disk for one server account. The store fetches a collection's song list, copies
// the files one after the other, records each finished song in the manifest at once, keeps the covers, and
// answers what the screens ask: how far a download is, what a collection holds, what it looks like offline.
// One store per signed-in client, on the main thread.
//
// A running download holds the store alive until it ends, so a download begun before sign-out still finishes.
// That is also why a run may clean up after its own cancellation: unlike other tasks it cannot outlive `this`.

#include "collectiondownloadstate.h"
#include "common/task.h"
#include "downloadlayout.h"
#include "downloadmanifest.h"
#include "downloadprogress.h"
#include "server/subsonicclient.h"

#include <QFuture>
#include <QHash>
#include <QObject>
#include <QtQml/qqmlregistration.h>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

class QFileInfo;
class QNetworkAccessManager;

class DownloadStore : public QObject, public std::enable_shared_from_this<DownloadStore>
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the app state for each client")
    Q_PROPERTY(qint64 totalBytes READ totalBytes NOTIFY manifestChanged)
    Q_PROPERTY(QList<DownloadCollection> downloadedCollections READ downloadedCollections NOTIFY manifestChanged)
    Q_PROPERTY(QVariantMap progressByKey READ progressByKey NOTIFY activeChanged)
    Q_PROPERTY(QStringList runningKeys READ runningKeys NOTIFY tasksChanged)

public:
    // Covers are kept at this one size; the artwork cache scales them down when it reads them.
    static constexpr int coverPixelSize = 1024;

    // The store of the account's folder: the one still living there, now with this client, or a new one that
    // loads the manifest in the background and then sweeps for covers missed before. Either way the artwork
    // cache is pointed at its cover folder. The store is deleted with deleteLater once the last holder lets go.
    [[nodiscard]] static std::shared_ptr<DownloadStore>
    create(SubsonicClient client, const DownloadLayout &layout = DownloadLayout::standard());
    ~DownloadStore() override;

    [[nodiscard]] const SubsonicClient &client() const { return m_client; }
    [[nodiscard]] const QString &directory() const { return m_directory; }
    // Waits for the manifest's first load if it is still running.
    [[nodiscard]] const DownloadManifest &manifest() const;
    // Running and failed downloads by collection key.
    [[nodiscard]] const QHash<QString, DownloadProgress> &active() const { return m_active; }
    // Whether a download of the collection is under way, its covers included.
    [[nodiscard]] Q_INVOKABLE bool isRunning(const QString &key) const { return m_tasks.contains(key); }
    [[nodiscard]] QStringList runningKeys() const { return m_tasks.keys(); }
    [[nodiscard]] bool isSweepingArtwork() const { return m_artworkTask.isRunning(); }

    // Starting again is also the retry and the resume: songs already on disk are not fetched twice. Nothing
    // happens while the same collection is still running.
    void downloadAlbum(const Album &album);
    Q_INVOKABLE void downloadPlaylist(const QString &id, const QString &name);
    // Cancels the running download of the collection, which then removes what only it held; or, if none runs,
    // removes the held collection at once.
    Q_INVOKABLE void removeDownload(const QString &key);
    // Stops everything and empties the account's folder, files the manifest had lost track of included.
    Q_INVOKABLE void removeAll();

    [[nodiscard]] std::optional<DownloadProgress> progress(const QString &key) const;
    [[nodiscard]] std::optional<DownloadProgress> albumProgress(const QString &albumId) const;
    [[nodiscard]] std::optional<DownloadProgress> playlistProgress(const QString &playlistId) const;
    // `songIds` is the collection as the server shows it now.
    [[nodiscard]] Q_INVOKABLE CollectionDownloadState state(const QString &key, const QStringList &songIds) const;
    [[nodiscard]] Q_INVOKABLE bool isDownloaded(const QString &key) const { return manifest().isDownloaded(key); }
    [[nodiscard]] Q_INVOKABLE qint64 bytesOwnedBy(const QString &key) const { return manifest().bytesOwnedBy(key); }
    [[nodiscard]] qint64 totalBytes() const { return manifest().totalBytes(); }
    // Largest first.
    [[nodiscard]] QList<DownloadCollection> downloadedCollections() const;
    [[nodiscard]] QVariantMap progressByKey() const;
    // What the collection looks like from the disk alone, for when the server cannot give it.
    [[nodiscard]] std::optional<Album> localAlbum(const QString &id) const;
    [[nodiscard]] std::optional<PlaylistDetail> localPlaylist(const QString &id) const;
    [[nodiscard]] static std::optional<QUrl> localFileURL(const Song &song, const ServerConfig &config);
    // Waits for every manifest write still queued, of every store; at quit, so that no finished song is lost.
    static void flushWrites();

Q_SIGNALS:
    void manifestChanged();
    void activeChanged();
    void tasksChanged();

private:
    // What one run of a collection's download carries through its steps.
    struct Run {
        QString owner;
        quint64 id = 0;
        CancelToken token;
    };
    struct RunningDownload {
        std::shared_ptr<TaskHandle> handle;
        quint64 id = 0;
    };
    struct StoredFile {
        QString suffix;
        qint64 bytes = 0;
    };

    DownloadStore(SubsonicClient client, QString directory);
    void startLoading();
    void takeLoadedManifest() const;

    // Runs (downloadrun.cpp)
    using RunBody = std::function<QCoro::Task<>(DownloadStore *, Run)>;
    void startRun(const QString &owner, RunBody body);
    static QCoro::Task<> holdAndRun(std::weak_ptr<DownloadStore> store, RunBody body, Run run);
    QCoro::Task<> runAlbumDownload(Album album, Run run);
    QCoro::Task<> runPlaylistDownload(QString id, QString name, Run run);
    QCoro::Task<> downloadSongs(QList<Song> songs, DownloadCollection collection, Run run);
    QCoro::Task<std::optional<StoredFile>> downloadFile(Song song, CancelToken token);
    void keepStoredFile(DownloadedSong &record, const StoredFile &stored);
    // Whether the run is still the one registered for its collection: removeAll lets go of runs before they end.
    [[nodiscard]] bool isCurrent(const Run &run) const;
    void endRun(const Run &run);
    void abandon(const Run &run);

    // Covers and clean-up (downloadartwork.cpp, downloadpurge.cpp)
    QCoro::Task<> downloadArtwork(QList<Song> songs, CancelToken token);
    static QCoro::Task<> finishLoading(std::weak_ptr<DownloadStore> store, QFuture<DownloadManifest> loading,
                                       CancelToken token);
    void purge(const QString &owner);
    void pruneArtwork();
    static void removePartialFiles(const QString &directory);
    static void removeEntry(const QFileInfo &entry);
    [[nodiscard]] QString songPath(const QString &id, const QString &suffix) const;
    [[nodiscard]] QString artworkDirectory() const;

    // Queues a write of the manifest as it stands. Encoding a manifest of many thousand songs takes about a
    // tenth of a second, so it runs on one worker thread for the whole process, one write after another in
    // the order asked.
    void save();
    // Queues a write and waits for it, for the user's removals.
    void saveNow();
    void setManifest(DownloadManifest manifest);
    void setActive(QHash<QString, DownloadProgress> active);
    void setProgress(const QString &owner, std::optional<DownloadProgress> progress);

    SubsonicClient m_client;
    const QString m_directory;
    QNetworkAccessManager *m_network;
    // Empty until the first load is taken; read through manifest().
    mutable DownloadManifest m_manifest;
    mutable bool m_loaded = false;
    QFuture<DownloadManifest> m_loading;
    QHash<QString, DownloadProgress> m_active;
    quint64 m_lastRunId = 0;
    QFuture<void> m_lastSave;

    // Last, so that they cancel before anything their tasks read goes away.
    QHash<QString, RunningDownload> m_tasks;
    TaskHandle m_artworkTask;
};
