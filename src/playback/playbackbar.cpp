#include "playbackbar.h"

#include "library/librarystore.h"
#include "playercontroller.h"
#include "server/format.h"
#include "shell/preferences.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace {
double clampedFraction(double fraction)
{
    return std::isfinite(fraction) ? std::clamp(fraction, 0.0, 1.0) : 0.0;
}
}

PlaybackBar::PlaybackBar(QObject *parent) : QObject(parent)
{
    m_volumeHide.setSingleShot(true);
    m_volumeHide.setInterval(volumeHoverGraceMs);
    connect(&m_volumeHide, &QTimer::timeout, this, [this] {
        const bool wasRevealed = isVolumeRevealed();
        m_isHoveringVolume = false;
        if (wasRevealed != isVolumeRevealed())
            Q_EMIT volumeRevealedChanged();
    });
}

PlayerController *PlaybackBar::player() const
{
    return m_player;
}

void PlaybackBar::setPlayer(PlayerController *player)
{
    if (m_player == player)
        return;
    if (m_player)
        m_player->disconnect(this);
    m_player = player;
    if (player) {
        connect(player, &PlayerController::currentSongChanged, this, &PlaybackBar::songChanged);
        connect(player, &PlayerController::currentSongChanged, this, &PlaybackBar::likedChanged);
        connect(player, &PlayerController::currentSongChanged, this, &PlaybackBar::cancelScrub);
        connect(player, &PlayerController::currentSongChanged, this, &PlaybackBar::positionChanged);
        connect(player, &PlayerController::sourceChanged, this, &PlaybackBar::songChanged);
        connect(player, &PlayerController::currentTimeChanged, this, &PlaybackBar::positionChanged);
        connect(player, &PlayerController::durationChanged, this, &PlaybackBar::positionChanged);
        connect(player, &PlayerController::isPlayingChanged, this, &PlaybackBar::transportChanged);
        connect(player, &PlayerController::isShufflingChanged, this, &PlaybackBar::transportChanged);
        connect(player, &PlayerController::repeatModeChanged, this, &PlaybackBar::transportChanged);
        connect(player, &PlayerController::volumeChanged, this, &PlaybackBar::volumeChanged);
        connect(player, &PlayerController::outputDevicesChanged, this, &PlaybackBar::outputsChanged);
    }
    Q_EMIT playerChanged();
    Q_EMIT songChanged();
    Q_EMIT likedChanged();
    Q_EMIT transportChanged();
    Q_EMIT positionChanged();
    Q_EMIT volumeChanged();
    Q_EMIT outputsChanged();
}

LibraryStore *PlaybackBar::library() const
{
    return m_library;
}

void PlaybackBar::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        m_library->disconnect(this);
    m_library = library;
    if (library)
        connect(library, &LibraryStore::starredIdsChanged, this, &PlaybackBar::likedChanged);
    Q_EMIT libraryChanged();
    Q_EMIT likedChanged();
}

Preferences *PlaybackBar::preferences() const
{
    return m_preferences;
}

void PlaybackBar::setPreferences(Preferences *preferences)
{
    if (m_preferences == preferences)
        return;
    if (m_preferences)
        m_preferences->disconnect(this);
    m_preferences = preferences;
    if (preferences) {
        connect(preferences, &Preferences::showTotalTimeChanged, this, &PlaybackBar::positionChanged);
        connect(preferences, &Preferences::showTotalTimeChanged, this, &PlaybackBar::trailingHelpChanged);
    }
    Q_EMIT preferencesChanged();
    Q_EMIT positionChanged();
    Q_EMIT trailingHelpChanged();
}

bool PlaybackBar::hasSong() const
{
    return m_player && m_player->currentSong();
}

QString PlaybackBar::title() const
{
    return hasSong() ? m_player->currentSong()->title : tr("Not Playing");
}

QString PlaybackBar::titleLink() const
{
    if (!hasSong())
        return {};
    if (m_player->source() && m_player->source()->kind == PlaybackSource::Kind::Playlist)
        return u"playlist"_s;
    return m_player->currentSong()->albumId ? u"album"_s : QString();
}

QString PlaybackBar::artist() const
{
    return hasSong() ? m_player->currentSong()->artistName() : QString();
}

bool PlaybackBar::artistIsLink() const
{
    return hasSong() && m_player->currentSong()->artist && m_player->currentSong()->artistId;
}

QString PlaybackBar::album() const
{
    return hasSong() ? m_player->currentSong()->albumName() : QString();
}

bool PlaybackBar::albumIsLink() const
{
    return hasSong() && m_player->currentSong()->album && m_player->currentSong()->albumId;
}

bool PlaybackBar::artworkIsLink() const
{
    return hasSong() && m_player->currentSong()->albumId;
}

QString PlaybackBar::coverArt() const
{
    return hasSong() ? m_player->currentSong()->coverArt.value_or(QString()) : QString();
}

bool PlaybackBar::isLiked() const
{
    return hasSong() && m_library && m_library->starredIds().contains(m_player->currentSong()->id);
}

bool PlaybackBar::isPlaying() const
{
    return m_player && m_player->isPlaying();
}

bool PlaybackBar::isShuffling() const
{
    return m_player && m_player->isShuffling();
}

bool PlaybackBar::isRepeating() const
{
    return m_player && m_player->repeatMode() != RepeatMode::Off;
}

QString PlaybackBar::repeatSymbol() const
{
    return m_player && m_player->repeatMode() == RepeatMode::One ? u"repeat.1"_s : u"repeat"_s;
}

double PlaybackBar::duration() const
{
    const double length = m_player ? m_player->duration() : 0;
    return std::isfinite(length) && length > 0 ? length : 0;
}

double PlaybackBar::shownTime() const
{
    if (m_isScrubbing)
        return m_scrubTime;
    return m_player ? m_player->currentTime() : 0;
}

double PlaybackBar::progress() const
{
    return duration() > 0 ? clampedFraction(shownTime() / duration()) : 0;
}

QString PlaybackBar::elapsedText() const
{
    return Format::time(shownTime());
}

QString PlaybackBar::trailingText() const
{
    if (duration() <= 0)
        return u"--:--"_s;
    if (showsTotalTime())
        return Format::time(duration());
    return u"-"_s + Format::paddedTime(std::max(duration() - shownTime(), 0.0));
}

QString PlaybackBar::positionValueText() const
{
    return tr("%1 of %2").arg(Format::time(shownTime()), Format::time(duration()));
}

QString PlaybackBar::trailingHelp() const
{
    return showsTotalTime() ? tr("Show Time Remaining") : tr("Show Total Time");
}

bool PlaybackBar::showsTotalTime() const
{
    return m_preferences && m_preferences->showTotalTime();
}

double PlaybackBar::volume() const
{
    return m_player ? m_player->volume() : 0;
}

QString PlaybackBar::volumeSymbol() const
{
    if (isMuted())
        return u"speaker.slash.fill"_s;
    if (volume() < 1.0 / 3)
        return u"speaker.fill"_s;
    return volume() < 2.0 / 3 ? u"speaker.wave.2.fill"_s : u"speaker.wave.3.fill"_s;
}

QString PlaybackBar::volumeValueText() const
{
    return tr("%1 percent").arg(std::lround(volume() * 100));
}

QVariantList PlaybackBar::outputs() const
{
    QVariantList list;
    if (!m_player)
        return list;
    for (const OutputDevice &device : m_player->outputDevices()) {
        list.append(QVariantMap{{u"name"_s, device.name},
                                {u"description"_s, device.description.isEmpty() ? device.name : device.description},
                                {u"current"_s, device.name == m_player->outputDevice()}});
    }
    return list;
}

bool PlaybackBar::hasOutputChoice() const
{
    return m_player && m_player->outputDevices().size() > 1;
}

void PlaybackBar::togglePlayPause()
{
    if (hasSong())
        m_player->togglePlayPause();
}

void PlaybackBar::next()
{
    if (hasSong())
        m_player->next();
}

void PlaybackBar::previous()
{
    if (hasSong())
        m_player->previous();
}

void PlaybackBar::toggleShuffle()
{
    if (hasSong())
        m_player->toggleShuffle();
}

void PlaybackBar::cycleRepeat()
{
    if (hasSong())
        m_player->setRepeatMode(nextRepeatMode(m_player->repeatMode()));
}

void PlaybackBar::toggleLike()
{
    if (hasSong() && m_library)
        m_library->toggleStar(*m_player->currentSong());
}

template<typename Change>
void PlaybackBar::changeActivity(Change &&change)
{
    const bool wasActive = isProgressActive();
    change();
    if (wasActive != isProgressActive())
        Q_EMIT progressActiveChanged();
}

void PlaybackBar::scrub(double fraction)
{
    if (!canSeek())
        return;
    changeActivity([&] {
        m_scrubTime = clampedFraction(fraction) * duration();
        m_isScrubbing = true;
    });
    Q_EMIT positionChanged();
}

void PlaybackBar::commit(double fraction)
{
    const bool seeks = canSeek();
    changeActivity([&] {
        m_scrubTime = clampedFraction(fraction) * duration();
        m_isScrubbing = false;
    });
    if (seeks)
        m_player->seek(m_scrubTime);
    Q_EMIT positionChanged();
}

void PlaybackBar::cancelScrub()
{
    if (!m_isScrubbing)
        return;
    changeActivity([&] { m_isScrubbing = false; });
    Q_EMIT positionChanged();
}

void PlaybackBar::stepPosition(int direction)
{
    if (canSeek())
        commit(progress() + (direction > 0 ? keyStep : -keyStep));
}

void PlaybackBar::setHoveringProgress(bool hovering)
{
    changeActivity([&] { m_isHoveringProgress = hovering; });
}

void PlaybackBar::setSeekingByKey(bool seeking)
{
    changeActivity([&] { m_isSeekingByKey = seeking; });
}

void PlaybackBar::toggleTimeDisplay()
{
    if (m_preferences)
        m_preferences->setShowTotalTime(!m_preferences->showTotalTime());
}

void PlaybackBar::toggleMute()
{
    if (!m_player)
        return;
    if (!isMuted()) {
        m_volumeBeforeMute = m_player->volume();
        m_player->setVolume(0);
    } else {
        m_player->setVolume(m_volumeBeforeMute >= 0.001F ? m_volumeBeforeMute : 0.5F);
    }
}

void PlaybackBar::setVolumeFraction(double fraction)
{
    if (m_player)
        m_player->setVolume(float(clampedFraction(fraction)));
}

void PlaybackBar::nudgeVolume(int direction)
{
    setVolumeFraction(volume() + (direction > 0 ? keyStep : -keyStep));
}

void PlaybackBar::setVolumeHovered(bool hovering)
{
    m_volumeHide.stop();
    if (!hovering) {
        m_volumeHide.start();
        return;
    }
    const bool wasRevealed = isVolumeRevealed();
    m_isHoveringVolume = true;
    if (wasRevealed != isVolumeRevealed())
        Q_EMIT volumeRevealedChanged();
}

void PlaybackBar::setAdjustingVolumeByKey(bool adjusting)
{
    const bool wasRevealed = isVolumeRevealed();
    m_isAdjustingVolumeByKey = adjusting;
    if (wasRevealed != isVolumeRevealed())
        Q_EMIT volumeRevealedChanged();
}

void PlaybackBar::chooseOutput(const QString &name)
{
    if (m_player)
        m_player->setOutputDevice(name);
}

void PlaybackBar::openTitle()
{
    if (titleLink() == u"playlist"_s)
        Q_EMIT openPlaylistRequested(m_player->source()->id);
    else if (titleLink() == u"album"_s)
        openAlbum();
}

void PlaybackBar::openArtist()
{
    if (!artistIsLink())
        return;
    const Song song = *m_player->currentSong();
    Artist artist;
    artist.id = *song.artistId;
    artist.name = *song.artist;
    Q_EMIT openArtistRequested(artist.toJson());
}

void PlaybackBar::openAlbum()
{
    if (!hasSong() || !m_player->currentSong()->albumId)
        return;
    const Song song = *m_player->currentSong();
    Album album;
    album.id = *song.albumId;
    album.name = song.albumName();
    Q_EMIT openAlbumRequested(album.toJson());
}
