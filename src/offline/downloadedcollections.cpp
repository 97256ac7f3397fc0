#include "downloadedcollections.h"

#include "artwork/collectioncovers.h"
#include "common/plurals.h"

#include <QCollator>
#include <QCoreApplication>
#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

QString fileSizeText(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

QVariantMap cellData(const DownloadedCollectionRow &row)
{
    const QString songs = inflected(QCoreApplication::translate("DownloadsScreen", "%n song(s)", nullptr, row.songCount),
                                    row.songCount);
    return {{u"key"_s, row.collection.key},
            {u"name"_s, row.collection.name},
            {u"caption"_s, songs + u" · "_s + fileSizeText(row.bytes)},
            {u"sizeText"_s, fileSizeText(row.bytes)},
            {u"covers"_s, row.covers},
            {u"canOpen"_s, row.canOpen}};
}

namespace {
DownloadedCollectionRow rowOf(const DownloadCollection &collection, const QHash<QString, CollectionContents> &contents)
{
    const CollectionContents held = contents.value(collection.key);
    return {.collection = collection,
            .songCount = int(held.songs.size()),
            .bytes = held.bytes,
            .covers = albumCovers(held.songs),
            .canOpen = !collection.key.startsWith(u"album:"_s) || !held.songs.isEmpty()};
}
}

namespace DownloadedCollections {
QList<DownloadedCollectionRow> byName(const DownloadManifest &manifest,
                                      const QHash<QString, CollectionContents> &contents, const QString &prefix)
{
    QList<DownloadedCollectionRow> rows;
    for (const DownloadCollection &collection : manifest.collections) {
        if (collection.key.startsWith(prefix))
            rows.append(rowOf(collection, contents));
    }
    // The C locale compares code points, which puts "10" before "2"; natural order matters more here than the
    // letter of that locale.
    QCollator collator(QLocale().language() == QLocale::C ? QLocale(QLocale::English) : QLocale());
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::sort(rows.begin(), rows.end(), [&collator](const DownloadedCollectionRow &a, const DownloadedCollectionRow &b) {
        const int order = collator.compare(a.collection.name, b.collection.name);
        return order != 0 ? order < 0 : a.collection.key < b.collection.key;
    });
    return rows;
}

QList<DownloadedCollectionRow> bySize(const DownloadManifest &manifest, const QHash<QString, CollectionContents> &contents)
{
    QList<DownloadedCollectionRow> rows;
    for (const DownloadCollection &collection : manifest.collections)
        rows.append(rowOf(collection, contents));
    // Name and key break ties only so that the order stays put from one change to the next.
    std::sort(rows.begin(), rows.end(), [](const DownloadedCollectionRow &a, const DownloadedCollectionRow &b) {
        if (a.bytes != b.bytes)
            return a.bytes > b.bytes;
        return std::tie(a.collection.name, a.collection.key) < std::tie(b.collection.name, b.collection.key);
    });
    return rows;
}
}

int DownloadedCollectionsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant DownloadedCollectionsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const DownloadedCollectionRow &row = m_rows.at(index.row());
    switch (role) {
    case KeyRole: return row.collection.key;
    case NameRole: return row.collection.name;
    case SizeRole: return fileSizeText(row.bytes);
    default: return {};
    }
}

QHash<int, QByteArray> DownloadedCollectionsModel::roleNames() const
{
    return {{KeyRole, "key"}, {NameRole, "name"}, {SizeRole, "sizeText"}};
}

void DownloadedCollectionsModel::apply(const QList<DownloadedCollectionRow> &rows)
{
    if (m_rows.isEmpty() && !rows.isEmpty()) {
        beginInsertRows({}, 0, int(rows.size()) - 1);
        m_rows = rows;
        endInsertRows();
        return;
    }
    QSet<QString> kept;
    for (const DownloadedCollectionRow &row : rows)
        kept.insert(row.collection.key);
    for (int i = int(m_rows.size()) - 1; i >= 0; --i) {
        if (!kept.contains(m_rows.at(i).collection.key)) {
            beginRemoveRows({}, i, i);
            m_rows.removeAt(i);
            endRemoveRows();
        }
    }
    for (int i = 0; i < rows.size(); ++i) {
        const QString &key = rows.at(i).collection.key;
        if (i < m_rows.size() && m_rows.at(i).collection.key == key) {
            if (m_rows.at(i) != rows.at(i)) {
                m_rows[i] = rows.at(i);
                Q_EMIT dataChanged(index(i), index(i));
            }
            continue;
        }
        const auto later = std::find_if(m_rows.cbegin() + i, m_rows.cend(),
                                        [&key](const DownloadedCollectionRow &row) { return row.collection.key == key; });
        if (later == m_rows.cend()) {
            beginInsertRows({}, i, i);
            m_rows.insert(i, rows.at(i));
            endInsertRows();
            continue;
        }
        // A renamed collection changes its place.
        const int from = int(later - m_rows.cbegin());
        beginMoveRows({}, from, from, {}, i);
        m_rows.move(from, i);
        endMoveRows();
        m_rows[i] = rows.at(i);
        Q_EMIT dataChanged(index(i), index(i));
    }
}
