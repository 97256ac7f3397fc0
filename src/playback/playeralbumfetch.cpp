// The two operations that take an album and must fetch its songs before the queue can change.

#include "playercontroller.h"
#include "server/transporterror.h"

#include <QDebug>

using namespace Qt::StringLiterals;

void PlayerController::playAlbum(Album album, SubsonicClient client, AlbumStart start)
{
    const auto source = PlaybackSource::album(album.id, album.name);
    fetchAlbum(album, client, [this, client, start, source](QList<Song> songs) {
        if (start.shuffled)
            playShuffled(std::move(songs), client, source);
        else
            play(std::move(songs), start.startingAt, client, source);
    });
}

void PlayerController::playAlbumNext(Album album, SubsonicClient client, QueuePlacement placement)
{
    fetchAlbum(album, client, [this, client, placement](QList<Song> songs) {
        if (placement == QueuePlacement::Last)
            playLast(std::move(songs), client);
        else
            playNext(std::move(songs), client);
    });
}

void PlayerController::fetchAlbum(const Album &album, SubsonicClient client, std::function<void(QList<Song>)> then)
{
    // A later play does not stop an earlier fetch: whichever finishes last decides the queue.
    std::erase_if(m_albumFetches, [](const auto &handle) { return !handle->isRunning(); });
    auto &handle = m_albumFetches.emplace_back(std::make_unique<TaskHandle>());
    handle->start([this, album, client, then](CancelToken token) {
        return loadAlbumSongs(album, client, then, token);
    });
}

QCoro::Task<> PlayerController::loadAlbumSongs(Album album, SubsonicClient client,
                                               std::function<void(QList<Song>)> then, CancelToken token)
{
    QString failure;
    QList<Song> songs;
    try {
        const Album loaded = co_await client.album(album.id, token);
        songs = loaded.song.value_or(QList<Song>());
    } catch (const TaskCancelled &) {
        co_return;
    } catch (const SubsonicError &error) {
        failure = error.description();
    } catch (const TransportError &error) {
        failure = error.description();
    }
    if (token.isCancelled())
        co_return;
    if (!failure.isNull()) {
        // The user sees nothing; the queue stays as it was.
        qWarning().noquote() << "Failed to load album "_L1 + album.id + ": "_L1 + failure;
        co_return;
    }
    then(std::move(songs));
}
