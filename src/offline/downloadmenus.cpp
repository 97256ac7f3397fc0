#include "downloadmenus.h"

#include "downloadstore.h"
#include "server/json.h"

using namespace Qt::StringLiterals;

int DownloadMenuEntries::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

QVariant DownloadMenuEntries::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const DownloadMenuEntry &entry = m_entries.at(index.row());
    switch (role) {
    case TextRole: return entry.text;
    case EnabledRole: return entry.isEnabled;
    case DestructiveRole: return entry.isDestructive;
    default: return {};
    }
}

QHash<int, QByteArray> DownloadMenuEntries::roleNames() const
{
    return {{TextRole, "label"}, {EnabledRole, "isEnabled"}, {DestructiveRole, "isDestructive"}};
}

DownloadStore *DownloadMenuEntries::store() const
{
    return m_store;
}

void DownloadMenuEntries::setStore(DownloadStore *store)
{
    if (m_store == store)
        return;
    if (m_store)
        m_store->disconnect(this);
    m_store = store;
    if (store) {
        connect(store, &DownloadStore::manifestChanged, this, &DownloadMenuEntries::update);
        connect(store, &DownloadStore::activeChanged, this, &DownloadMenuEntries::update);
    }
    update();
    Q_EMIT storeChanged();
}

void DownloadMenuEntries::trigger(int row)
{
    if (!m_store || row < 0 || row >= m_entries.size() || !m_entries.at(row).isEnabled)
        return;
    switch (m_entries.at(row).action) {
    case DownloadMenuEntry::Action::Download: download(*m_store); break;
    case DownloadMenuEntry::Action::Remove: m_store->removeDownload(key()); break;
    case DownloadMenuEntry::Action::None: break;
    }
}

void DownloadMenuEntries::update()
{
    QList<DownloadMenuEntry> entries = m_store && !key().isEmpty() ? this->entries(*m_store) : QList<DownloadMenuEntry>();
    if (entries == m_entries)
        return;
    // An open menu keeps its items while only a count in the text moves.
    if (entries.size() == m_entries.size()) {
        m_entries = std::move(entries);
        Q_EMIT dataChanged(index(0), index(int(m_entries.size()) - 1));
        return;
    }
    beginResetModel();
    m_entries = std::move(entries);
    endResetModel();
}

void AlbumDownloadEntries::setAlbum(const QJsonObject &album)
{
    if (m_album == album)
        return;
    m_album = album;
    update();
    Q_EMIT albumChanged();
}

QString AlbumDownloadEntries::key() const
{
    const QString id = m_album.value(u"id"_s).toString();
    return id.isEmpty() ? QString() : albumCollectionKey(id);
}

QList<DownloadMenuEntry> AlbumDownloadEntries::entries(const DownloadStore &store) const
{
    return DownloadControls::albumEntries(store.progress(key()), store.isDownloaded(key()));
}

void AlbumDownloadEntries::download(DownloadStore &store)
{
    try {
        store.downloadAlbum(Album::fromJson(m_album));
    } catch (const Json::DecodeError &) {
        qWarning("Download failed: the album's record is incomplete");
    }
}

PlaylistDownloadEntries::PlaylistDownloadEntries(QObject *parent) : DownloadMenuEntries(parent)
{
    connect(this, &PlaylistDownloadEntries::playlistChanged, this, &PlaylistDownloadEntries::update);
}

void PlaylistDownloadEntries::setPlaylistId(const QString &id)
{
    if (m_playlistId == id)
        return;
    m_playlistId = id;
    Q_EMIT playlistChanged();
}

void PlaylistDownloadEntries::setSongIds(const QStringList &ids)
{
    if (m_songIds == ids)
        return;
    m_songIds = ids;
    Q_EMIT playlistChanged();
}

QString PlaylistDownloadEntries::key() const
{
    return m_playlistId.isEmpty() ? QString() : playlistCollectionKey(m_playlistId);
}

QList<DownloadMenuEntry> PlaylistDownloadEntries::entries(const DownloadStore &store) const
{
    return DownloadControls::playlistEntries(store.progress(key()), store.state(key(), m_songIds),
                                             store.isDownloaded(key()));
}

void PlaylistDownloadEntries::download(DownloadStore &store)
{
    store.downloadPlaylist(m_playlistId, m_name);
}

DownloadBadgeState::DownloadBadgeState(QObject *parent) : QObject(parent)
{
    connect(this, &DownloadBadgeState::inputChanged, this, &DownloadBadgeState::update);
}

DownloadStore *DownloadBadgeState::store() const
{
    return m_store;
}

void DownloadBadgeState::setStore(DownloadStore *store)
{
    if (m_store == store)
        return;
    if (m_store)
        m_store->disconnect(this);
    m_store = store;
    if (store) {
        connect(store, &DownloadStore::manifestChanged, this, &DownloadBadgeState::update);
        connect(store, &DownloadStore::activeChanged, this, &DownloadBadgeState::update);
    }
    Q_EMIT inputChanged();
}

void DownloadBadgeState::update()
{
    DownloadBadge badge;
    if (m_store && !m_key.isEmpty())
        badge = DownloadControls::badge(m_store->isDownloaded(m_key), m_store->progress(m_key),
                                        m_store->state(m_key, m_songIds));
    if (badge == m_badge)
        return;
    m_badge = badge;
    Q_EMIT badgeChanged();
}
