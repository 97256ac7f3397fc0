#include "veltoapp.h"

#include "appcommands.h"
#include "library/librarystore.h"
#include "offline/downloadstore.h"
#include "localnetwork.h"
#include "nowplayingartwork.h"
#include "offline/downloadlayout.h"
#include "playback/mprisservice.h"
#include "playback/mpvaudioengine.h"
#include "playback/playercontroller.h"
#include "playback/sleepwatcher.h"
#include "preferences.h"
#include "server/appstate.h"
#include "server/networkaccess.h"
#include "updatermodel.h"

#include <QCoreApplication>

VeltoApp::VeltoApp(Setup setup, QObject *parent)
    : QObject(parent)
{
    m_appState = std::make_unique<AppState>(&m_settings);
    m_engine = std::make_unique<MpvAudioEngine>();
    m_player = std::make_unique<PlayerController>(m_engine.get(), PlayerStorage{.settings = &m_settings, .sessionFolder = {}});
    m_player->setLocalFileLookup([layout = DownloadLayout::standard()](const Song &song, const ServerConfig &config) {
        return layout.localFileURL(song, config);
    });
    m_mpris = std::make_unique<MprisService>(m_player.get(), &NowPlayingArtwork::artURL);
    m_nowPlayingArtwork = std::make_unique<NowPlayingArtwork>(m_player.get(), m_appState.get(), m_mpris.get());
    m_sleepWatcher = std::make_unique<SleepWatcher>(m_player.get());
    m_preferences = std::make_unique<Preferences>(&m_settings);
    m_updater = std::make_unique<UpdaterModel>(UpdaterModel::Setup{
        .network = sharedNetworkAccess(),
        .settings = &m_settings,
        .feedURL = setup.updateFeedURL,
        .currentVersion = setup.version,
    });
    m_commands = std::make_unique<AppCommands>(m_appState.get(), m_player.get());
    connect(qApp, &QCoreApplication::aboutToQuit, this, &VeltoApp::aboutToQuit);
}

VeltoApp::~VeltoApp() = default;

void VeltoApp::mainViewAppeared()
{
    const std::optional<SubsonicClient> &client = m_appState->client();
    LibraryStore *library = m_appState->library();
    if (!client || !library)
        return;
    library->ensurePlaylistsLoaded();
    library->ensureStarredLoaded();
    if (isLikelyLocalHost(client->config().baseURL.host(QUrl::FullyEncoded)))
        LocalNetworkPrompter::trigger();
    // Restoring starts the audio engine, which waits for libmpv; windowShown() brings it in without delaying
    // the first frame.
    m_restorePending = true;
    if (m_audioLoaded)
        restorePlayerSession();
}

void VeltoApp::windowShown()
{
    if (m_audioLoadStarted)
        return;
    m_audioLoadStarted = true;
    MpvAudioEngine::loadLibrary().then(this, [this] {
        m_audioLoaded = true;
        m_engine->start();
        if (m_restorePending)
            restorePlayerSession();
    });
}

void VeltoApp::restorePlayerSession()
{
    m_restorePending = false;
    if (const std::optional<SubsonicClient> &client = m_appState->client())
        m_player->restoreSession(*client);
}

// Synchronous on purpose: nothing asynchronous runs once the event loop has stopped.
void VeltoApp::aboutToQuit()
{
    m_player->saveSession();
    m_player->flushVolume();
    DownloadStore::flushWrites();
    m_settings.sync();
}
