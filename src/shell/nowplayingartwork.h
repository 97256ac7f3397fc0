#pragma once

// The media controls show covers from a file path. This makes sure the current song's cover reaches the disk
// cache, and has the media controls send their metadata again once it is there.

#include "common/task.h"
#include "server/records.h"

#include <QObject>
#include <QUrl>

#include <optional>

class AppState;
class MprisService;
class PlayerController;

class NowPlayingArtwork : public QObject
{
    Q_OBJECT

public:
    NowPlayingArtwork(PlayerController *player, AppState *appState, MprisService *mpris, QObject *parent = nullptr);

    // The cover file the media controls point at, when one is on disk.
    [[nodiscard]] static std::optional<QUrl> artURL(const Song &song);

    static constexpr int pixelSize = 1024;

private:
    void currentSongChanged();
    QCoro::Task<> fetch(QString coverArt, QUrl url, CancelToken token);

    PlayerController *m_player;
    AppState *m_appState;
    MprisService *m_mpris;
    TaskHandle m_fetch;
};
