#include "mprisplayeradaptor.h"

#include "playercontroller.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {
// MPRIS counts time in microseconds.
qlonglong toMicroseconds(double seconds)
{
    return std::isfinite(seconds) ? qlonglong(std::llround(seconds * 1e6)) : 0;
}
}

MprisPlayerAdaptor::MprisPlayerAdaptor(QObject *object, PlayerController *controller, ArtLocator artLocator)
    : QDBusAbstractAdaptor(object)
    , m_controller(controller)
    , m_artLocator(std::move(artLocator))
{
    connect(controller, &PlayerController::seeked, this,
            [this](double seconds) { Q_EMIT Seeked(toMicroseconds(seconds)); });
}

QString MprisPlayerAdaptor::playbackStatus() const
{
    if (!hasSong())
        return u"Stopped"_s;
    return m_controller->isPlaying() ? u"Playing"_s : u"Paused"_s;
}

QDBusObjectPath MprisPlayerAdaptor::trackId() const
{
    const std::optional<Song> song = m_controller->currentSong();
    if (!song)
        return QDBusObjectPath(u"/org/mpris/MediaPlayer2/TrackList/NoTrack"_s);
    // Song ids may hold any character; hex keeps the path valid.
    return QDBusObjectPath(u"/org/velto/track/t"_s + QString::fromLatin1(song->id.toUtf8().toHex()));
}

QVariantMap MprisPlayerAdaptor::metadata() const
{
    const std::optional<Song> song = m_controller->currentSong();
    if (!song)
        return {};
    QVariantMap map{
        {u"mpris:trackid"_s, QVariant::fromValue(trackId())},
        {u"mpris:length"_s, toMicroseconds(m_controller->duration())},
        {u"xesam:title"_s, song->title},
    };
    if (song->artist)
        map.insert(u"xesam:artist"_s, QStringList{*song->artist});
    if (song->album)
        map.insert(u"xesam:album"_s, *song->album);
    if (m_artLocator) {
        if (const std::optional<QUrl> art = m_artLocator(*song))
            map.insert(u"mpris:artUrl"_s, art->toString());
    }
    return map;
}

double MprisPlayerAdaptor::volume() const
{
    return m_controller->volume();
}

void MprisPlayerAdaptor::setVolume(double volume)
{
    m_controller->setVolume(float(std::clamp(volume, 0.0, 1.0)));
}

QString MprisPlayerAdaptor::loopStatus() const
{
    switch (m_controller->repeatMode()) {
    case RepeatMode::Off: return u"None"_s;
    case RepeatMode::All: return u"Playlist"_s;
    case RepeatMode::One: return u"Track"_s;
    }
    return u"None"_s;
}

void MprisPlayerAdaptor::setLoopStatus(const QString &status)
{
    if (status == u"None"_s)
        m_controller->setRepeatMode(RepeatMode::Off);
    else if (status == u"Playlist"_s)
        m_controller->setRepeatMode(RepeatMode::All);
    else if (status == u"Track"_s)
        m_controller->setRepeatMode(RepeatMode::One);
}

bool MprisPlayerAdaptor::shuffle() const
{
    return m_controller->isShuffling();
}

void MprisPlayerAdaptor::setShuffle(bool shuffle)
{
    // Shuffle has its one operation, a toggle, which needs a queue to reorder.
    if (shuffle != m_controller->isShuffling() && m_controller->currentSong())
        m_controller->toggleShuffle();
}

qlonglong MprisPlayerAdaptor::position() const
{
    return toMicroseconds(m_controller->currentTime());
}

bool MprisPlayerAdaptor::hasSong() const
{
    return m_controller->currentSong().has_value();
}

void MprisPlayerAdaptor::Next()
{
    m_controller->next();
}

void MprisPlayerAdaptor::Previous()
{
    m_controller->previous();
}

void MprisPlayerAdaptor::Pause()
{
    m_controller->pause();
}

void MprisPlayerAdaptor::PlayPause()
{
    m_controller->togglePlayPause();
}

void MprisPlayerAdaptor::Stop()
{
    m_controller->pause();
}

void MprisPlayerAdaptor::Play()
{
    if (!m_controller->isPlaying())
        m_controller->togglePlayPause();
}

void MprisPlayerAdaptor::Seek(qlonglong offset)
{
    if (!hasSong())
        return;
    const double target = std::max(m_controller->currentTime() + double(offset) / 1e6, 0.0);
    const double length = m_controller->duration();
    // Past the end, as MPRIS asks, is the next song.
    if (length > 0 && target > length) {
        m_controller->next();
        return;
    }
    m_controller->seek(target);
}

void MprisPlayerAdaptor::SetPosition(const QDBusObjectPath &track, qlonglong position)
{
    // A request about a song that is no longer current comes too late and is dropped.
    if (!hasSong() || track != trackId() || position < 0)
        return;
    const double seconds = double(position) / 1e6;
    const double length = m_controller->duration();
    if (length > 0 && seconds > length)
        return;
    m_controller->seek(seconds);
}

void MprisPlayerAdaptor::OpenUri(const QString &uri)
{
    Q_UNUSED(uri);
}
