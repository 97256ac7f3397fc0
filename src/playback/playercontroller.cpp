#include "playercontroller.h"

#include "common/observable.h"
#include "playeroperation.h"
#include "queuerules.h"

#include <QRandomGenerator>
#include <QStandardPaths>

#include <algorithm>

namespace {
// A slider drag writes once, this long after it stops.
constexpr int volumePersistDelayMs = 400;
// A burst of skips costs one write of the session, at its end.
constexpr int checkpointDelayMs = 1000;

QString defaultSessionFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Velto");
}
}

PlayerController::PlayerController(AudioEngine *engine, PlayerStorage storage, QObject *parent)
    : QObject(parent)
    , m_engine(engine)
    , m_locator([](const Song &song, const SubsonicClient &client) { return client.streamURL(song.id); })
    // Seeds the whole state from the system source, so every order of a long queue can come up.
    , m_random(*QRandomGenerator::system())
    , m_settings(storage.settings)
    , m_sessionFolder(storage.sessionFolder.isEmpty() ? defaultSessionFolder() : storage.sessionFolder)
{
    connect(m_engine, &AudioEngine::itemEnded, this, &PlayerController::onItemEnded);
    connect(m_engine, &AudioEngine::itemReady, this, &PlayerController::onItemReady);
    connect(m_engine, &AudioEngine::positionTicked, this, &PlayerController::onPositionTicked);
    connect(m_engine, &AudioEngine::outputDevicesChanged, this, &PlayerController::outputDevicesChanged);
    connect(m_engine, &AudioEngine::durationChanged, this, &PlayerController::durationChanged);

    m_volumePersist.setSingleShot(true);
    m_volumePersist.setInterval(volumePersistDelayMs);
    connect(&m_volumePersist, &QTimer::timeout, this, &PlayerController::flushVolume);
    m_checkpoint.setSingleShot(true);
    m_checkpoint.setInterval(checkpointDelayMs);
    connect(&m_checkpoint, &QTimer::timeout, this, &PlayerController::saveSession);

    readPersistedVolume();
}

PlayerController::~PlayerController() = default;

void PlayerController::setItemLocator(ItemLocator locator)
{
    m_locator = std::move(locator);
}

void PlayerController::setLocalFileLookup(LocalFileLookup lookup)
{
    m_localFileLookup = std::move(lookup);
}

std::optional<Song> PlayerController::currentSong() const
{
    if (!m_currentIndex || *m_currentIndex < 0 || *m_currentIndex >= m_queue.size())
        return std::nullopt;
    return m_queue[*m_currentIndex];
}

QList<Song> PlayerController::upNext() const
{
    if (!m_currentIndex)
        return {};
    return m_queue.mid(*m_currentIndex + 1);
}

std::optional<qsizetype> PlayerController::nextIndex() const
{
    return QueueRules::nextIndex(m_queue.size(), m_currentIndex, m_repeatMode);
}

void PlayerController::setRepeatMode(RepeatMode mode)
{
    const Operation operation(*this);
    // The song after the current one may now be another, or the same one again.
    if (assignField(this, m_repeatMode, mode, &PlayerController::repeatModeChanged))
        syncPreload();
}

void PlayerController::play(QList<Song> songs, qsizetype startingAt, SubsonicClient client,
                            std::optional<PlaybackSource> source)
{
    replaceQueue(std::move(songs), startingAt, std::move(client), std::move(source), std::nullopt);
}

void PlayerController::playShuffled(QList<Song> songs, SubsonicClient client, std::optional<PlaybackSource> source)
{
    QList<Song> order = QueueRules::shuffled(songs, m_random);
    replaceQueue(std::move(order), 0, std::move(client), std::move(source), std::move(songs));
}

void PlayerController::replaceQueue(QList<Song> songs, qsizetype startingAt, SubsonicClient client,
                                    std::optional<PlaybackSource> source, std::optional<QList<Song>> unshuffled)
{
    // Nothing to play is no reason to stop what plays now.
    if (songs.isEmpty())
        return;
    const Operation operation(*this);
    m_client = std::move(client);
    setSource(std::move(source));
    setIsShuffling(unshuffled.has_value());
    m_unshuffledQueue = std::move(unshuffled);
    const qsizetype last = songs.size() - 1;
    setQueue(std::move(songs));
    startItem(std::clamp<qsizetype>(startingAt, 0, last), StartMode::Playing, 0);
}

void PlayerController::playNext(QList<Song> songs, SubsonicClient client)
{
    if (songs.isEmpty())
        return;
    const Operation operation(*this);
    const std::optional<Song> current = currentSong();
    if (!current) {
        play(std::move(songs), 0, std::move(client), std::nullopt);
        return;
    }
    if (m_unshuffledQueue) {
        // The song may stand twice in the original order; the first copy is the one the user knows.
        const auto at = QueueRules::firstIndexOf(*m_unshuffledQueue, current->id);
        const qsizetype insertAt = at ? *at + 1 : m_unshuffledQueue->size();
        m_unshuffledQueue = QueueRules::inserting(std::move(*m_unshuffledQueue), insertAt, songs);
    }
    const qsizetype insertAt = *m_currentIndex + 1;
    editQueueInPlace([&](QList<Song> queue) { return QueueRules::inserting(std::move(queue), insertAt, songs); });
    syncPreload();
}

void PlayerController::playLast(QList<Song> songs, SubsonicClient client)
{
    if (songs.isEmpty())
        return;
    const Operation operation(*this);
    if (!currentSong()) {
        play(std::move(songs), 0, std::move(client), std::nullopt);
        return;
    }
    if (m_unshuffledQueue)
        m_unshuffledQueue->append(songs);
    editQueueInPlace([&](QList<Song> queue) {
        queue.append(songs);
        return queue;
    });
    syncPreload();
}

void PlayerController::toggleShuffle()
{
    const std::optional<Song> current = currentSong();
    if (!current)
        return;
    const Operation operation(*this);
    if (!m_isShuffling) {
        // Songs already played go back into the draw with those still to come.
        m_unshuffledQueue = m_queue;
        setQueue(QueueRules::shuffledAround(m_queue, *m_currentIndex, m_random));
        setCurrentIndex(0);
        setIsShuffling(true);
        syncPreload();
        return;
    }
    if (m_unshuffledQueue && !m_unshuffledQueue->isEmpty()) {
        // With the same song twice in the list, the first copy becomes current wherever the second was playing.
        if (const auto at = QueueRules::firstIndexOf(*m_unshuffledQueue, current->id)) {
            setQueue(std::move(*m_unshuffledQueue));
            setCurrentIndex(at);
        }
    }
    m_unshuffledQueue.reset();
    setIsShuffling(false);
    syncPreload();
}

void PlayerController::clearUpNext()
{
    if (!m_currentIndex)
        return;
    const Operation operation(*this);
    const QList<Song> removed = upNext();
    if (!removed.isEmpty()) {
        const qsizetype kept = *m_currentIndex + 1;
        editQueueInPlace([kept](QList<Song> queue) {
            queue.resize(kept);
            return queue;
        });
        if (m_unshuffledQueue)
            m_unshuffledQueue = QueueRules::mirroringRemoval(removed, std::move(*m_unshuffledQueue));
    }
    syncPreload();
}

void PlayerController::removeUpcoming(QList<qsizetype> offsets)
{
    if (!m_currentIndex)
        return;
    const Operation operation(*this);
    // Offsets outside upNext are skipped, negative ones included: they would reach the current song.
    const qsizetype base = *m_currentIndex + 1;
    QList<qsizetype> indexes;
    for (const qsizetype offset : offsets) {
        if (offset >= 0 && base + offset < m_queue.size())
            indexes.append(base + offset);
    }
    if (!indexes.isEmpty()) {
        QList<Song> removed;
        editQueueInPlace([&](QList<Song> queue) {
            QueueRules::Removal removal = QueueRules::removingIndexes(std::move(queue), std::move(indexes));
            removed = std::move(removal.removed);
            return std::move(removal.kept);
        });
        if (m_unshuffledQueue)
            m_unshuffledQueue = QueueRules::mirroringRemoval(removed, std::move(*m_unshuffledQueue));
    }
    syncPreload();
}

void PlayerController::moveUpcoming(QList<qsizetype> offsets, qsizetype destination)
{
    if (!m_currentIndex)
        return;
    const Operation operation(*this);
    const qsizetype base = std::min(*m_currentIndex + 1, m_queue.size());
    QList<Song> queue = m_queue.first(base);
    queue.append(QueueRules::moving(m_queue.sliced(base), std::move(offsets), destination));
    // The unshuffled order is left alone: a manual reorder of the shuffled order is forgotten when shuffle
    // goes off.
    setQueue(std::move(queue));
    syncPreload();
}

void PlayerController::setQueue(QList<Song> queue)
{
    assignField(this, m_queue, std::move(queue), &PlayerController::queueChanged);
}

void PlayerController::editQueueInPlace(const std::function<QList<Song>(QList<Song>)> &edit)
{
    m_operation->queueEditedInPlace();
    m_queue = edit(std::move(m_queue));
    Q_EMIT queueChanged();
}

void PlayerController::setCurrentIndex(std::optional<qsizetype> index)
{
    assignField(this, m_currentIndex, index, &PlayerController::currentIndexChanged);
}

void PlayerController::setSource(std::optional<PlaybackSource> source)
{
    assignField(this, m_source, std::move(source), &PlayerController::sourceChanged);
}

void PlayerController::setIsPlaying(bool playing)
{
    assignField(this, m_isPlaying, playing, &PlayerController::isPlayingChanged);
}

void PlayerController::setCurrentTime(double seconds)
{
    assignField(this, m_currentTime, seconds, &PlayerController::currentTimeChanged);
}

void PlayerController::setIsShuffling(bool shuffling)
{
    assignField(this, m_isShuffling, shuffling, &PlayerController::isShufflingChanged);
}
