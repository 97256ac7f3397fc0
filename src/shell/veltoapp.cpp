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
#include "savedlocation.h"
#include "theme.h"
#include "server/appstate.h"
#include "server/keychain.h"
#include "server/networkaccess.h"
#include "updatermodel.h"

#include <QGuiApplication>

namespace {
// A keyring write still running at quit is given this long; a keyring that hangs must not hold the quit.
constexpr std::chrono::milliseconds keychainGraceMs{5000};
}

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
    m_engine->setLoudnessLevelling(m_preferences->volumeLevelling());
    connect(m_preferences.get(), &Preferences::volumeLevellingChanged, this,
            [this] { m_engine->setLoudnessLevelling(m_preferences->volumeLevelling()); });
    m_updater = std::make_unique<UpdaterModel>(UpdaterModel::Setup{
        .network = sharedNetworkAccess(),
        .settings = &m_settings,
        .feedURL = setup.updateFeedURL,
        .currentVersion = setup.version,
    });
    m_locations = std::make_unique<LocationFile>();
    m_theme = std::make_unique<Theme>();
    m_commands = std::make_unique<AppCommands>(m_appState.get(), m_player.get(), m_locations.get());
    connect(qApp, &QCoreApplication::aboutToQuit, this, &VeltoApp::saveState);
    if (auto *gui = qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        connect(gui, &QGuiApplication::commitDataRequest, this, &VeltoApp::saveState);
}

VeltoApp::~VeltoApp() = default;

void VeltoApp::mainViewAppeared()
{
    const std::optional<SubsonicClient> &client = m_appState->client();
    LibraryStore *library = m_appState->library();
    if (!client || !library)
        return;
    Q_EMIT mainViewStarted();
    library->ensurePlaylistsLoaded();
    library->ensureStarredLoaded();
    if (isLikelyLocalHost(client->config().baseURL.host(QUrl::FullyEncoded)))
        LocalNetworkPrompter::trigger();
    // The queue is back at once; the engine takes it up when libmpv has loaded.
    m_player->restoreSession(*client);
}

// libmpv loads on a worker, at the latest once the first frame is up (a restored queue asks for it earlier), so
// that the outputs are known before anything plays.
void VeltoApp::windowShown()
{
    m_engine->start();
}

// The keyring is waited for first, since that wait runs the event loop; from then on everything is synchronous,
// so that nothing can change after it has been written.
void VeltoApp::saveState()
{
    Keychain::waitForPendingJobs(keychainGraceMs);
    m_player->saveSession();
    m_player->flushVolume();
    DownloadStore::flushWrites();
    m_settings.sync();
}
