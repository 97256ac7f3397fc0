#include "nowplayingartwork.h"

#include "artwork/artworkfetcher.h"
#include "playback/mprisservice.h"
#include "playback/playercontroller.h"
#include "server/appstate.h"

NowPlayingArtwork::NowPlayingArtwork(PlayerController *player, AppState *appState, MprisService *mpris,
                                     QObject *parent)
    : QObject(parent)
    , m_player(player)
    , m_appState(appState)
    , m_mpris(mpris)
{
    connect(player, &PlayerController::currentSongChanged, this, &NowPlayingArtwork::currentSongChanged);
}

std::optional<QUrl> NowPlayingArtwork::artURL(const Song &song)
{
    if (!song.coverArt)
        return std::nullopt;
    const std::optional<QString> file = ArtworkFetcher::shared().fileFor(*song.coverArt, pixelSize);
    if (!file)
        return std::nullopt;
    return QUrl::fromLocalFile(*file);
}

void NowPlayingArtwork::currentSongChanged()
{
    m_fetch.cancel();
    const std::optional<Song> song = m_player->currentSong();
    const auto &client = m_appState->client();
    if (!song || !song->coverArt || !client || artURL(*song))
        return;
    const QString coverArt = *song->coverArt;
    const QUrl url = client->coverArtURL(coverArt, pixelSize);
    m_fetch.start([this, coverArt, url](CancelToken token) { return fetch(coverArt, url, token); });
}

QCoro::Task<> NowPlayingArtwork::fetch(QString coverArt, QUrl url, CancelToken token)
{
    const std::optional<QImage> image = co_await ArtworkFetcher::shared().image(coverArt, pixelSize, url);
    if (token.isCancelled() || !image)
        co_return;
    m_mpris->refreshMetadata();
}
