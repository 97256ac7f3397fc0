#pragma once

// The menu bar's commands and when each may run: new playlist, refresh, the three playback items and Log Out.
// The menus only bind to these properties and call these operations.

#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqmlregistration.h>

class AppState;
class LocationFile;
class PlayerController;

class AppCommands : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(bool canCreatePlaylist READ canCreatePlaylist NOTIFY canCreatePlaylistChanged)
    Q_PROPERTY(bool canRefresh READ canRefresh NOTIFY canRefreshChanged)
    Q_PROPERTY(bool canControlPlayback READ canControlPlayback NOTIFY canControlPlaybackChanged)
    Q_PROPERTY(QString playPauseTitle READ playPauseTitle NOTIFY playPauseTitleChanged)

public:
    AppCommands(AppState *appState, PlayerController *player, LocationFile *locations, QObject *parent = nullptr);

    [[nodiscard]] bool canCreatePlaylist() const { return !m_newPlaylistPublisher.isNull(); }
    [[nodiscard]] bool canRefresh() const;
    // There is a current song.
    [[nodiscard]] bool canControlPlayback() const;
    [[nodiscard]] QString playPauseTitle() const;

    // The focused main window offers its "New Playlist…" action, and takes it back when it loses focus or closes.
    Q_INVOKABLE void publishNewPlaylist(QObject *window);
    Q_INVOKABLE void withdrawNewPlaylist(QObject *window);

    Q_INVOKABLE void newPlaylist();
    Q_INVOKABLE void refresh();
    Q_INVOKABLE void togglePlayPause();
    Q_INVOKABLE void next();
    Q_INVOKABLE void previous();
    // Stops the player and forgets the saved session and the saved place before the account goes, so nothing of
    // this account plays or comes back at the next sign-in.
    Q_INVOKABLE void logOut();

Q_SIGNALS:
    void canCreatePlaylistChanged();
    void canRefreshChanged();
    void canControlPlaybackChanged();
    void playPauseTitleChanged();
    // For the window that published the action.
    void newPlaylistRequested(QObject *window);

private:
    AppState *m_appState;
    PlayerController *m_player;
    LocationFile *m_locations;
    QPointer<QObject> m_newPlaylistPublisher;
};
