#include "downloadstorage.h"

#include "downloadstore.h"

DownloadStore *DownloadStorage::store() const
{
    return m_store;
}

void DownloadStorage::setStore(DownloadStore *store)
{
    if (m_store == store)
        return;
    if (m_store)
        m_store->disconnect(this);
    m_store = store;
    if (store)
        connect(store, &DownloadStore::manifestChanged, this, &DownloadStorage::update);
    update();
    Q_EMIT storeChanged();
}

QString DownloadStorage::usedText() const
{
    return isEmpty() ? tr("None") : fileSizeText(m_totalBytes);
}

QString DownloadStorage::removeAllMessage() const
{
    return tr("Frees %1. Your music stays on the server.").arg(fileSizeText(m_totalBytes));
}

void DownloadStorage::update()
{
    const QString oldUsed = usedText();
    const bool wasEmpty = isEmpty();
    if (m_store) {
        const DownloadManifest &manifest = m_store->manifest();
        m_totalBytes = manifest.totalBytes();
        m_collections.apply(DownloadedCollections::bySize(manifest, manifest.songsByCollection()));
    } else {
        m_totalBytes = 0;
        m_collections.apply({});
    }
    if (usedText() != oldUsed || isEmpty() != wasEmpty)
        Q_EMIT totalChanged();
}

void DownloadStorage::remove(const QString &key)
{
    if (m_store)
        m_store->removeDownload(key);
}

void DownloadStorage::removeAll()
{
    if (m_store)
        m_store->removeAll();
}
