// The half of PlayerController that faces the engine: starting a song, keeping the next one waiting behind
// it, following a song's end, and the transport buttons.

#include "common/observable.h"
#include "playercontroller.h"
#include "playeroperation.h"
#include "scrobblethreshold.h"

#include <cmath>

namespace {
// previous() goes back a song only this early into the current one; later it restarts the current song.
constexpr double restartThresholdSeconds = 3.0;
}

double PlayerController::duration() const
{
    if (const auto length = m_engine->currentDuration(); length && std::isfinite(*length) && *length > 0)
        return *length;
    if (const auto song = currentSong(); song && song->duration)
        return double(*song->duration);
    return 0;
}

void PlayerController::setOutputDevice(const QString &name)
{
    m_engine->setOutputDevice(name);
}

void PlayerController::systemWillSleep()
{
    pause();
    // The machine may not come back: the place is kept now rather than a second from now.
    saveSession();
}

void PlayerController::systemDidWake()
{
    // isPlaying is left alone: the user resumes by hand, and a paused song is paused again harmlessly.
    m_engine->pause();
}

void PlayerController::togglePlayPause()
{
    if (!currentSong())
        return;
    if (m_isPlaying) {
        pause();
        return;
    }
    m_engine->play();
    setIsPlaying(true);
    reportNowPlaying();
}

void PlayerController::pause()
{
    if (!m_isPlaying)
        return;
    m_engine->pause();
    setIsPlaying(false);
    scheduleCheckpoint();
}

void PlayerController::seek(double seconds)
{
    // The user's place wins over the one a restore was still waiting to reach.
    m_pendingSeek.reset();
    m_engine->seek(seconds);
    setCurrentTime(seconds);
    Q_EMIT seeked(seconds);
}

void PlayerController::next()
{
    if (!m_currentIndex)
        return;
    const Operation operation(*this);
    if (*m_currentIndex + 1 < m_queue.size())
        startItem(*m_currentIndex + 1, StartMode::Playing, 0);
    else if (m_repeatMode == RepeatMode::All && !m_queue.isEmpty())
        startItem(0, StartMode::Playing, 0);
    else
        // Repeat-one repeats only a song that ends by itself, never past a skip.
        stop();
}

void PlayerController::previous()
{
    if (!m_currentIndex)
        return;
    const Operation operation(*this);
    if (m_currentTime <= restartThresholdSeconds && *m_currentIndex != 0) {
        startItem(*m_currentIndex - 1, StartMode::Playing, 0);
        return;
    }
    // A paused song stays paused, at its start.
    m_engine->seek(0);
    setCurrentTime(0);
    Q_EMIT seeked(0);
}

void PlayerController::jumpToUpcoming(qsizetype offset)
{
    if (!m_currentIndex)
        return;
    const Operation operation(*this);
    startItem(*m_currentIndex + 1 + offset, StartMode::Playing, 0);
}

void PlayerController::stop()
{
    const Operation operation(*this);
    m_pendingSeek.reset();
    m_engine->removeAll();
    m_currentItemRef.reset();
    m_preloadedSongId.reset();
    setCurrentIndex(std::nullopt);
    setQueue({});
    setSource(std::nullopt);
    setIsPlaying(false);
    setCurrentTime(0);
    scheduleCheckpoint();
}

PlayerItem PlayerController::makePlayerItem(const Song &song) const
{
    // Chosen when the item is built: a download that finishes later does not change an item already queued.
    if (m_localFileLookup) {
        if (std::optional<QUrl> file = m_localFileLookup(song, m_client->config()))
            return PlayerItem{.song = song, .url = std::move(*file)};
    }
    return PlayerItem{.song = song, .url = m_locator(song, *m_client)};
}

void PlayerController::startItem(qsizetype index, StartMode mode, double seekTo)
{
    if (index < 0 || index >= m_queue.size() || !m_client) {
        stop();
        return;
    }
    // A fresh item every time, even for a restart of the same song.
    const PlayerItem item = makePlayerItem(m_queue[index]);
    m_engine->removeAll();
    m_preloadedSongId.reset();
    m_currentItemRef = m_engine->insert(item, std::nullopt);
    m_pendingSeek.reset();
    if (seekTo > 0 && m_currentItemRef)
        m_pendingSeek = PendingSeek{.item = *m_currentItemRef, .seconds = seekTo};
    if (mode == StartMode::Playing)
        m_engine->play();
    else
        m_engine->pause();
    setIsPlaying(mode == StartMode::Playing);
    beganTrack(index, seekTo, mode);
    syncPreload();
}

void PlayerController::beganTrack(qsizetype index, double position, StartMode mode)
{
    m_operation->trackBegan();
    setCurrentIndex(index);
    setCurrentTime(position);
    // A session restored past the threshold was submitted in its earlier run.
    m_didSubmitScrobble = scrobbleThreshold(m_queue[index]) <= position;
    m_didReportNowPlaying = false;
    if (mode == StartMode::Playing)
        reportNowPlaying();
    scheduleCheckpoint();
}

void PlayerController::syncPreload()
{
    if (!m_currentIndex || !m_client || !m_currentItemRef)
        return;
    // With repeat-one the wanted song is the current one again, as a second item of its own.
    const std::optional<qsizetype> next = nextIndex();
    const std::optional<QString> wanted = next ? std::optional(m_queue[*next].id) : std::nullopt;
    const QList<EngineItemId> items = m_engine->items();
    // Compared by id: two copies of a song share one preload.
    if (!wanted && !m_preloadedSongId)
        return;
    if (wanted == m_preloadedSongId && items.size() >= 2)
        return;

    for (qsizetype i = 1; i < items.size(); ++i)
        m_engine->remove(items[i]);
    m_preloadedSongId.reset();
    // Into an empty engine the item would start at once, as if it were the current song.
    const std::optional<EngineItemId> head = m_engine->currentItem();
    if (!wanted || !head)
        return;
    if (m_engine->insert(makePlayerItem(m_queue[*next]), head))
        m_preloadedSongId = wanted;
}

void PlayerController::onItemReady(EngineItemId item)
{
    if (!m_pendingSeek || m_pendingSeek->item != item)
        return;
    const double seconds = m_pendingSeek->seconds;
    m_pendingSeek.reset();
    seek(seconds);
}

void PlayerController::onItemEnded(EngineItemId item)
{
    // A removed or replaced item may still report its end after a skip; only the current one counts.
    if (item != m_currentItemRef)
        return;
    const Operation operation(*this);
    handleTrackEnd();
}

void PlayerController::handleTrackEnd()
{
    const std::optional<qsizetype> next = nextIndex();
    if (!next) {
        // The natural end of the queue: the bar goes back to its empty state.
        stop();
        return;
    }
    if (m_preloadedSongId != m_queue[*next].id) {
        startItem(*next, StartMode::Playing, 0);
        return;
    }
    // The engine may already have moved on to the preloaded item by itself; advancing again would skip it.
    if (m_engine->currentItem() == m_currentItemRef)
        m_engine->advance();
    m_currentItemRef = m_engine->currentItem();
    m_preloadedSongId.reset();
    if (m_isPlaying)
        m_engine->play();
    beganTrack(*next, 0, m_isPlaying ? StartMode::Playing : StartMode::Paused);
    syncPreload();
}

void PlayerController::onPositionTicked(double seconds)
{
    // Until a restored song has been sought to its place, the engine's position is the file's start.
    if (!std::isfinite(seconds) || m_pendingSeek)
        return;
    setCurrentTime(seconds);
    maybeSubmitScrobble();
}
