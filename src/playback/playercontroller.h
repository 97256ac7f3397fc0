#pragma once

// Owns what is playing: the queue, the place in it, the order to return to when shuffle goes off, the repeat
// mode and where the queue came from. It keeps the audio engine holding the current song and the next one.
// One instance lives as long as the application; every method runs on the main thread.

#include "audioengine.h"
#include "common/task.h"
#include "playbacksource.h"
#include "playreportqueue.h"
#include "repeatmode.h"
#include "server/records.h"
#include "server/subsonicclient.h"

#include <QList>
#include <QObject>
#include <QtQml/qqmlregistration.h>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <vector>

// Where playAlbum starts the album once its songs are in.
struct AlbumStart {
    qsizetype startingAt = 0;
    bool shuffled = false;
};

// Where playAlbumNext puts the album's songs.
enum class QueuePlacement { Next, Last };

class QSettings;

// Where the controller keeps what outlives a run: the user's settings ("volume", "scrobbleEnabled") and the
// folder of "session.json". Without settings nothing is persisted and reports go out; an empty folder means
// "Velto" under the user's data folder.
struct PlayerStorage {
    QSettings *settings = nullptr;
    QString sessionFolder;
};

class PlayerController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("One per process, made at start")
    Q_PROPERTY(QList<Song> queue READ queue NOTIFY queueChanged)
    Q_PROPERTY(std::optional<qsizetype> currentIndex READ currentIndex NOTIFY currentIndexChanged)
    Q_PROPERTY(std::optional<PlaybackSource> source READ source NOTIFY sourceChanged)
    Q_PROPERTY(bool isPlaying READ isPlaying NOTIFY isPlayingChanged)
    Q_PROPERTY(double currentTime READ currentTime NOTIFY currentTimeChanged)
    Q_PROPERTY(bool isShuffling READ isShuffling NOTIFY isShufflingChanged)
    Q_PROPERTY(RepeatMode repeatMode READ repeatMode WRITE setRepeatMode NOTIFY repeatModeChanged)
    Q_PROPERTY(float volume READ volume WRITE setVolume NOTIFY volumeChanged)
    Q_PROPERTY(std::optional<Song> currentSong READ currentSong NOTIFY currentSongChanged)
    Q_PROPERTY(QList<Song> upNext READ upNext NOTIFY upNextChanged)
    Q_PROPERTY(QList<OutputDevice> outputDevices READ outputDevices NOTIFY outputDevicesChanged)
    Q_PROPERTY(QString outputDevice READ outputDevice WRITE setOutputDevice NOTIFY outputDevicesChanged)

public:
    // Makes the URL a song streams from. The default signs a "stream" request to the server.
    using ItemLocator = std::function<QUrl(const Song &, const SubsonicClient &)>;
    // The downloaded file of a song, if it has one; such a song plays from disk with or without a network.
    using LocalFileLookup = std::function<std::optional<QUrl>(const Song &, const ServerConfig &)>;

    // The engine is not owned and must outlive the controller.
    explicit PlayerController(AudioEngine *engine, PlayerStorage storage = {}, QObject *parent = nullptr);
    ~PlayerController() override;

    void setItemLocator(ItemLocator locator);
    void setLocalFileLookup(LocalFileLookup lookup);

    [[nodiscard]] const QList<Song> &queue() const { return m_queue; }
    [[nodiscard]] std::optional<qsizetype> currentIndex() const { return m_currentIndex; }
    [[nodiscard]] std::optional<PlaybackSource> source() const { return m_source; }
    [[nodiscard]] bool isPlaying() const { return m_isPlaying; }
    [[nodiscard]] double currentTime() const { return m_currentTime; }
    [[nodiscard]] bool isShuffling() const { return m_isShuffling; }
    [[nodiscard]] RepeatMode repeatMode() const { return m_repeatMode; }
    [[nodiscard]] float volume() const { return m_volume; }
    [[nodiscard]] std::optional<Song> currentSong() const;
    [[nodiscard]] QList<Song> upNext() const;
    [[nodiscard]] std::optional<qsizetype> nextIndex() const;
    // The engine's length of the current item, else the song's own, else 0.
    [[nodiscard]] double duration() const;

    [[nodiscard]] QList<OutputDevice> outputDevices() const { return m_engine->outputDevices(); }
    [[nodiscard]] QString outputDevice() const { return m_engine->outputDevice(); }
    [[nodiscard]] QString sessionFilePath() const;

    void setRepeatMode(RepeatMode mode);
    // Stores, sets the engine and writes "volume" 0.4 s after the last change, even for an equal value.
    void setVolume(float volume);
    void setOutputDevice(const QString &name);
    // Writes "volume" now, dropping the pending write.
    void flushVolume();

    // Operations that replace the queue.
    void play(QList<Song> songs, qsizetype startingAt, SubsonicClient client, std::optional<PlaybackSource> source);
    void playShuffled(QList<Song> songs, SubsonicClient client, std::optional<PlaybackSource> source);
    void playAlbum(Album album, SubsonicClient client, AlbumStart start = {});

    // Operations that add to the queue, leaving the current song playing.
    void playAlbumNext(Album album, SubsonicClient client, QueuePlacement placement);
    void playNext(QList<Song> songs, SubsonicClient client);
    void playLast(QList<Song> songs, SubsonicClient client);

    void togglePlayPause();
    void pause();
    void seek(double seconds);
    void next();
    void previous();
    void jumpToUpcoming(qsizetype offset);
    void stop();

    void toggleShuffle();
    void clearUpNext();
    void removeUpcoming(QList<qsizetype> offsets);
    void moveUpcoming(QList<qsizetype> offsets, qsizetype destination);

    // The saved session: written 1 s after a song starts, a pause or a stop, and at once by saveSession()
    // (which the application calls as it quits). One restore per run, into an empty player, always paused.
    void saveSession();
    void restoreSession(SubsonicClient client);
    void clearSavedSession();

    // The machine goes to sleep: pause as the user would. On waking only the engine is paused again, so
    // that it cannot start by itself.
    void systemWillSleep();
    void systemDidWake();

Q_SIGNALS:
    void queueChanged();
    void currentIndexChanged();
    void sourceChanged();
    void isPlayingChanged();
    void currentTimeChanged();
    void isShufflingChanged();
    void repeatModeChanged();
    void volumeChanged();
    void currentSongChanged();
    void upNextChanged();
    void outputDevicesChanged();
    // The position jumped: a seek, or a restart of the current song.
    void seeked(double seconds);
    // duration() changed while the song stayed: the engine came to know the length.
    void durationChanged();

private:
    class Operation;
    enum class StartMode { Paused, Playing };
    struct PendingSeek {
        EngineItemId item;
        double seconds;
    };

    void replaceQueue(QList<Song> songs, qsizetype startingAt, SubsonicClient client,
                      std::optional<PlaybackSource> source, std::optional<QList<Song>> unshuffled);
    void startItem(qsizetype index, StartMode mode, double seekTo);
    void beganTrack(qsizetype index, double position, StartMode mode);
    void syncPreload();
    void handleTrackEnd();
    void onItemEnded(EngineItemId item);
    void onItemReady(EngineItemId item);
    [[nodiscard]] PlayerItem makePlayerItem(const Song &song) const;
    void onPositionTicked(double seconds);

    [[nodiscard]] bool scrobbleEnabled() const;
    void reportNowPlaying();
    void maybeSubmitScrobble();
    void sendReport(const Song &song, ScrobbleKind kind);
    void readPersistedVolume();
    void scheduleCheckpoint();

    void fetchAlbum(const Album &album, SubsonicClient client, std::function<void(QList<Song>)> then);
    QCoro::Task<> loadAlbumSongs(Album album, SubsonicClient client, std::function<void(QList<Song>)> then,
                                 CancelToken token);

    void setQueue(QList<Song> queue);
    void editQueueInPlace(const std::function<QList<Song>(QList<Song>)> &edit);
    void setCurrentIndex(std::optional<qsizetype> index);
    void setSource(std::optional<PlaybackSource> source);
    void setIsPlaying(bool playing);
    void setCurrentTime(double seconds);
    void setIsShuffling(bool shuffling);

    AudioEngine *m_engine;
    ItemLocator m_locator;
    std::mt19937_64 m_random;

    std::optional<SubsonicClient> m_client;
    std::optional<EngineItemId> m_currentItemRef;
    std::optional<QString> m_preloadedSongId;
    std::optional<PendingSeek> m_pendingSeek;
    QList<Song> m_queue;
    std::optional<qsizetype> m_currentIndex;
    std::optional<PlaybackSource> m_source;
    bool m_isPlaying = false;
    double m_currentTime = 0;
    bool m_isShuffling = false;
    RepeatMode m_repeatMode = RepeatMode::Off;
    std::optional<QList<Song>> m_unshuffledQueue;
    bool m_didSubmitScrobble = false;
    bool m_didReportNowPlaying = false;
    float m_volume = 1.0F;
    bool m_didAttemptRestore = false;

    QSettings *m_settings;
    QString m_sessionFolder;
    // Beside the session file: plays not yet taken by the server.
    PlayReportQueue m_playReports{m_sessionFolder};
    LocalFileLookup m_localFileLookup;
    // Debounces: the volume write and the session checkpoint. Stopping one is cancelling it.
    QTimer m_volumePersist;
    QTimer m_checkpoint;

    // The outermost operation under way, which tells of the derived fields when it ends.
    Operation *m_operation = nullptr;

    // Album fetches are never cancelled by a later play, so each has its own handle; declared last so that
    // they cancel before anything their coroutines touch goes away.
    std::vector<std::unique_ptr<TaskHandle>> m_albumFetches;
    // Play reports run to their end whatever the player does next; their outcome is never looked at.
    std::vector<std::unique_ptr<TaskHandle>> m_reports;
};
