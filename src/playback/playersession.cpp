// The part of PlayerController that writes the playback session to "session.json" and reads it back.

#include "common/atomicwrite.h"
#include "common/observable.h"
#include "playercontroller.h"
#include "playeroperation.h"
#include "sessionsnapshot.h"

#include <QDir>
#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

QString PlayerController::sessionFilePath() const
{
    return m_sessionFolder + "/session.json"_L1;
}

void PlayerController::scheduleCheckpoint()
{
    // Restarting the timer is the cancellation of the pending save.
    m_checkpoint.start();
}

void PlayerController::saveSession()
{
    flushVolume();
    m_checkpoint.stop();
    if (!m_currentIndex || !m_client || m_queue.isEmpty()) {
        // An ended queue, or nothing played yet in this run: no session to come back to.
        QFile::remove(sessionFilePath());
        return;
    }
    const qsizetype index = *m_currentIndex;
    const qsizetype start = std::max<qsizetype>(index - SessionSnapshot::windowReach, 0);
    const qsizetype end = std::min<qsizetype>(index + SessionSnapshot::windowReach + 1, m_queue.size());
    const bool whole = end - start >= m_queue.size();
    const SessionSnapshot snapshot{
        .serverKey = serverKey(m_client->config()),
        .queue = m_queue.sliced(start, end - start),
        .currentIndex = index - start,
        .currentTime = m_currentTime,
        // Stays true without the order to return to: turning shuffle off then keeps the order as it is.
        .isShuffling = m_isShuffling,
        .unshuffledQueue = whole ? m_unshuffledQueue : std::nullopt,
        .repeatMode = m_repeatMode,
        .source = m_source,
    };
    QDir().mkpath(m_sessionFolder);
    writeAtomically(sessionFilePath(), snapshot.encode());
}

void PlayerController::restoreSession(SubsonicClient client)
{
    // The account in use at start: plays it could not report last time go out now.
    m_playReports.setClient(client);
    if (m_didAttemptRestore || currentSong())
        return;
    // One attempt per run, even a failed one.
    m_didAttemptRestore = true;
    QFile file(sessionFilePath());
    if (!file.open(QIODevice::ReadOnly))
        return;
    // A corrupt file stays where it is, for the next save to replace.
    const std::optional<SessionSnapshot> snapshot = SessionSnapshot::decode(file.readAll());
    file.close();
    if (!snapshot || snapshot->currentIndex < 0 || snapshot->currentIndex >= snapshot->queue.size())
        return;
    if (serverKey(client.config()) != snapshot->serverKey) {
        // Another account's session is dropped, not kept for later.
        QFile::remove(sessionFilePath());
        return;
    }
    const Operation operation(*this);
    m_client = std::move(client);
    setQueue(snapshot->queue);
    setSource(snapshot->source);
    setIsShuffling(snapshot->isShuffling);
    m_unshuffledQueue = snapshot->unshuffledQueue;
    // Not through setRepeatMode: nothing is loaded yet that a preload could follow.
    assignField(this, m_repeatMode, snapshot->repeatMode, &PlayerController::repeatModeChanged);
    startItem(snapshot->currentIndex, StartMode::Paused, snapshot->currentTime);
}

void PlayerController::clearSavedSession()
{
    QFile::remove(sessionFilePath());
}
