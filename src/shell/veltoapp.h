#pragma once

// The composition root: makes the long-lived parts of the application once, wires them together and hands them
// to the views. Nothing else creates these objects.

#include <QObject>
#include <QSettings>
#include <QUrl>
#include <QVersionNumber>
#include <QtQml/qqmlregistration.h>

#include <memory>

class AppCommands;
class AppState;
class LocationFile;
class MpvAudioEngine;
class MprisService;
class NowPlayingArtwork;
class PlayerController;
class Preferences;
class SleepWatcher;
class Theme;
class UpdaterModel;

class VeltoApp : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made once by main()")
    Q_PROPERTY(AppState *appState READ appState CONSTANT)
    Q_PROPERTY(PlayerController *player READ player CONSTANT)
    Q_PROPERTY(UpdaterModel *updater READ updater CONSTANT)
    Q_PROPERTY(AppCommands *commands READ commands CONSTANT)
    Q_PROPERTY(Preferences *preferences READ preferences CONSTANT)
    Q_PROPERTY(LocationFile *locations READ locations CONSTANT)
    Q_PROPERTY(Theme *theme READ theme CONSTANT)
    Q_MOC_INCLUDE("savedlocation.h")
    Q_MOC_INCLUDE("theme.h")

public:
    struct Setup {
        QUrl updateFeedURL; // empty: no update check
        QVersionNumber version;
    };

    explicit VeltoApp(Setup setup, QObject *parent = nullptr);
    ~VeltoApp() override;

    [[nodiscard]] QSettings *settings() { return &m_settings; }
    [[nodiscard]] AppState *appState() const { return m_appState.get(); }
    [[nodiscard]] PlayerController *player() const { return m_player.get(); }
    [[nodiscard]] UpdaterModel *updater() const { return m_updater.get(); }
    [[nodiscard]] AppCommands *commands() const { return m_commands.get(); }
    [[nodiscard]] Preferences *preferences() const { return m_preferences.get(); }
    [[nodiscard]] LocationFile *locations() const { return m_locations.get(); }
    [[nodiscard]] Theme *theme() const { return m_theme.get(); }

    // The main view's start-up work for the signed-in account: the lists every screen needs, the local
    // network check, and the queue of the last run, restored paused.
    Q_INVOKABLE void mainViewAppeared();
    // The main window's first frame is on screen: time for the work that would have delayed it.
    void windowShown();
    // Writes at once what a restart must find: the keyring's items, the playing session, the volume, the
    // downloads' manifest and the settings. At quit, and when the desktop session asks before it ends.
    void saveState();

Q_SIGNALS:
    // A main view has appeared and will be in the next frame.
    void mainViewStarted();

private:
    QSettings m_settings;
    std::unique_ptr<AppState> m_appState;
    std::unique_ptr<MpvAudioEngine> m_engine;
    std::unique_ptr<PlayerController> m_player;
    std::unique_ptr<MprisService> m_mpris;
    std::unique_ptr<NowPlayingArtwork> m_nowPlayingArtwork;
    std::unique_ptr<SleepWatcher> m_sleepWatcher;
    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<UpdaterModel> m_updater;
    std::unique_ptr<LocationFile> m_locations;
    std::unique_ptr<Theme> m_theme;
    std::unique_ptr<AppCommands> m_commands;
};
