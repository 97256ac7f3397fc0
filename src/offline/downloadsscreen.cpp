#include "downloadsscreen.h"

#include "common/plurals.h"
#include "downloadstore.h"
#include "playback/playercontroller.h"

using namespace Qt::StringLiterals;

namespace {
const QString albumPrefix = u"album:"_s;
const QString playlistPrefix = u"playlist:"_s;

std::optional<PlaybackSource> sourceOf(const QString &key, const QString &name)
{
    if (key.startsWith(albumPrefix))
        return PlaybackSource::album(key.mid(albumPrefix.size()), name);
    if (key.startsWith(playlistPrefix))
        return PlaybackSource::playlist(key.mid(playlistPrefix.size()), name);
    return std::nullopt;
}
}

DownloadsScreen::DownloadsScreen(QObject *parent) : QObject(parent)
{
}

DownloadStore *DownloadsScreen::store() const
{
    return m_store;
}

void DownloadsScreen::setStore(DownloadStore *store)
{
    if (m_store == store)
        return;
    if (m_store)
        m_store->disconnect(this);
    m_store = store;
    if (store)
        connect(store, &DownloadStore::manifestChanged, this, &DownloadsScreen::update);
    update();
    Q_EMIT storeChanged();
}

QString DownloadsScreen::caption() const
{
    const int count = int(m_albums.size() + m_playlists.size());
    return inflected(tr("%n collection(s)", nullptr, count), count) + u" · "_s + fileSizeText(m_totalBytes);
}

void DownloadsScreen::update()
{
    const QString oldCaption = caption();
    const bool wasEmpty = isEmpty();
    if (m_store) {
        const DownloadManifest &manifest = m_store->manifest();
        m_contents = manifest.songsByCollection();
        m_totalBytes = manifest.totalBytes();
        m_albums = DownloadedCollections::byName(manifest, m_contents, albumPrefix);
        m_playlists = DownloadedCollections::byName(manifest, m_contents, playlistPrefix);
    } else {
        m_contents.clear();
        m_totalBytes = 0;
        m_albums.clear();
        m_playlists.clear();
    }
    layOut();
    if (caption() != oldCaption || isEmpty() != wasEmpty)
        Q_EMIT contentChanged();
}

void DownloadsScreen::setColumns(int columns)
{
    columns = std::max(columns, 1);
    if (m_columns == columns)
        return;
    m_columns = columns;
    layOut();
    Q_EMIT columnsChanged();
}

void DownloadsScreen::layOut()
{
    m_rows.apply(gridRows(tr("Albums"), m_albums, m_columns) + gridRows(tr("Playlists"), m_playlists, m_columns));
}

QList<Song> DownloadsScreen::songs(const QString &key) const
{
    return m_contents.value(key).songs;
}

void DownloadsScreen::open(const QString &key)
{
    if (key.startsWith(playlistPrefix)) {
        Q_EMIT openPlaylist(key.mid(playlistPrefix.size()));
        return;
    }
    if (!m_store || !key.startsWith(albumPrefix))
        return;
    if (const std::optional<Album> album = m_store->localAlbum(key.mid(albumPrefix.size())))
        Q_EMIT openAlbum(album->toJson());
}

void DownloadsScreen::play(const QString &key)
{
    if (m_store && m_player && !songs(key).isEmpty())
        m_player->play(songs(key), 0, m_store->client(), sourceOf(key, m_store->manifest().collections.value(key).name));
}

void DownloadsScreen::shuffle(const QString &key)
{
    if (m_store && m_player && !songs(key).isEmpty())
        m_player->playShuffled(songs(key), m_store->client(),
                               sourceOf(key, m_store->manifest().collections.value(key).name));
}

void DownloadsScreen::playNext(const QString &key)
{
    if (m_store && m_player)
        m_player->playNext(songs(key), m_store->client());
}

void DownloadsScreen::playLast(const QString &key)
{
    if (m_store && m_player)
        m_player->playLast(songs(key), m_store->client());
}

void DownloadsScreen::remove(const QString &key)
{
    if (m_store)
        m_store->removeDownload(key);
}
