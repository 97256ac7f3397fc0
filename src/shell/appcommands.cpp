#include "appcommands.h"

#include "savedlocation.h"

#include "library/librarystore.h"
#include "playback/playercontroller.h"
#include "server/appstate.h"

using namespace Qt::StringLiterals;

AppCommands::AppCommands(AppState *appState, PlayerController *player, LocationFile *locations, QObject *parent)
    : QObject(parent)
    , m_appState(appState)
    , m_player(player)
    , m_locations(locations)
{
    connect(appState, &AppState::clientChanged, this, &AppCommands::canRefreshChanged);
    connect(player, &PlayerController::currentSongChanged, this, &AppCommands::canControlPlaybackChanged);
    connect(player, &PlayerController::isPlayingChanged, this, &AppCommands::playPauseTitleChanged);
}

bool AppCommands::canRefresh() const
{
    return m_appState->library() != nullptr;
}

bool AppCommands::canControlPlayback() const
{
    return m_player->currentSong().has_value();
}

QString AppCommands::playPauseTitle() const
{
    return m_player->isPlaying() ? tr("Pause") : tr("Play");
}

void AppCommands::publishNewPlaylist(QObject *window)
{
    if (m_newPlaylistPublisher == window)
        return;
    const bool wasAvailable = canCreatePlaylist();
    m_newPlaylistPublisher = window;
    if (wasAvailable != canCreatePlaylist())
        Q_EMIT canCreatePlaylistChanged();
    if (window) {
        connect(window, &QObject::destroyed, this, &AppCommands::canCreatePlaylistChanged, Qt::UniqueConnection);
    }
}

void AppCommands::withdrawNewPlaylist(QObject *window)
{
    if (window && m_newPlaylistPublisher == window)
        publishNewPlaylist(nullptr);
}

void AppCommands::newPlaylist()
{
    if (canCreatePlaylist())
        Q_EMIT newPlaylistRequested(m_newPlaylistPublisher);
}

void AppCommands::refresh()
{
    if (LibraryStore *library = m_appState->library())
        library->refresh();
}

void AppCommands::togglePlayPause()
{
    if (canControlPlayback())
        m_player->togglePlayPause();
}

void AppCommands::next()
{
    if (canControlPlayback())
        m_player->next();
}

void AppCommands::previous()
{
    if (canControlPlayback())
        m_player->previous();
}

void AppCommands::logOut()
{
    m_player->stop();
    m_player->clearSavedSession();
    m_locations->clear();
    m_appState->logout();
}
