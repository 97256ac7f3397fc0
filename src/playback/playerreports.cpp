// What PlayerController tells others: plays reported to the server and the persisted volume.

#include "common/observable.h"
#include "playercontroller.h"
#include "scrobblethreshold.h"

#include <QDateTime>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace {
const QString volumeKey = u"volume"_s;
const QString scrobbleEnabledKey = u"scrobbleEnabled"_s;

// The outcome is not looked at: no retry, no message, the flag stays set.
QCoro::Task<> sendNowPlaying(SubsonicClient client, QString songId, CancelToken token)
{
    co_await client.scrobble(std::move(songId), ScrobbleKind::NowPlaying, std::nullopt, token);
}
}

bool PlayerController::scrobbleEnabled() const
{
    if (!m_settings)
        return true;
    // Absent, or anything but a Boolean, means on.
    const QVariant value = m_settings->value(scrobbleEnabledKey);
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    if (value.typeId() == QMetaType::QString && value.toString() == "false"_L1)
        return false;
    return true;
}

void PlayerController::reportNowPlaying()
{
    const std::optional<Song> song = currentSong();
    if (m_didReportNowPlaying || !song || !m_client || !scrobbleEnabled())
        return;
    m_didReportNowPlaying = true;
    sendReport(*song, ScrobbleKind::NowPlaying);
}

void PlayerController::maybeSubmitScrobble()
{
    const std::optional<Song> song = currentSong();
    if (m_didSubmitScrobble || !m_isPlaying || !song || !m_client || !scrobbleEnabled())
        return;
    // The position decides, not the time listened: a seek past the threshold counts at the next tick.
    if (m_currentTime < scrobbleThreshold(*song))
        return;
    m_didSubmitScrobble = true;
    sendReport(*song, ScrobbleKind::Played);
}

void PlayerController::sendReport(const Song &song, ScrobbleKind kind)
{
    // A play heard is kept until the server has it, with the time it began; "now playing" is news only now.
    if (kind == ScrobbleKind::Played) {
        m_playReports.submit(*m_client, song.id,
                             QDateTime::currentMSecsSinceEpoch() - qint64(std::max(m_currentTime, 0.0) * 1000));
        return;
    }
    std::erase_if(m_reports, [](const auto &handle) { return !handle->isRunning(); });
    auto &handle = m_reports.emplace_back(std::make_unique<TaskHandle>());
    handle->start([client = *m_client, id = song.id](CancelToken token) { return sendNowPlaying(client, id, token); });
}

void PlayerController::readPersistedVolume()
{
    float volume = 1.0F;
    if (m_settings) {
        bool isNumber = false;
        const float stored = m_settings->value(volumeKey).toFloat(&isNumber);
        if (isNumber && stored >= 0.0F && stored <= 1.0F)
            volume = stored;
    }
    // Through the setter, so that every launch rewrites the same value once.
    setVolume(volume);
}

void PlayerController::setVolume(float volume)
{
    assignField(this, m_volume, volume, &PlayerController::volumeChanged);
    m_engine->setVolume(volume);
    m_volumePersist.start();
}

void PlayerController::flushVolume()
{
    m_volumePersist.stop();
    if (m_settings)
        m_settings->setValue(volumeKey, m_volume);
}
