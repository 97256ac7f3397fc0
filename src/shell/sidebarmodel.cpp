#include "sidebarmodel.h"

#include "dragtypes.h"
#include "server/json.h"
#include "library/librarystore.h"
#include "navigation.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {
QCoro::Task<> createAndSelect(QPointer<LibraryStore> library, QPointer<Navigation> navigation, QString name)
{
    const std::optional<QString> id = co_await library->createPlaylist(name);
    if (id && navigation)
        navigation->select(SidebarSelection::playlist(*id));
}

QCoro::Task<> deleteAndLeave(QPointer<LibraryStore> library, QPointer<Navigation> navigation, QString id)
{
    const bool deleted = co_await library->deletePlaylist(id);
    if (deleted && navigation)
        navigation->playlistDeleted(id);
}

// One after the other, in the order dropped, so that the playlist keeps that order.
QCoro::Task<> addAlbums(QPointer<LibraryStore> library, QList<Album> albums, QString playlistId)
{
    for (const Album &album : albums) {
        if (!library)
            co_return;
        co_await library->addAlbum(album, playlistId);
    }
}

QList<Album> albumsIn(const QByteArray &data)
{
    const QJsonDocument document = QJsonDocument::fromJson(data);
    const QJsonArray records = document.isArray() ? document.array() : QJsonArray{document.object()};
    QList<Album> albums;
    for (const QJsonValue &record : records) {
        try {
            albums.append(Album::fromJson(Json::asObject(record)));
        } catch (const Json::DecodeError &) {
        }
    }
    return albums;
}
}

SidebarModel::SidebarModel(QObject *parent)
    : QAbstractListModel(parent)
{
    const auto fixed = [this](std::span<const SidebarItem> items, const QString &section) {
        for (const SidebarItem item : items) {
            const SidebarItemInfo &info = sidebarItemInfo(item);
            m_rows.append({u"item"_s, u"item:"_s + QLatin1StringView(info.id), QLatin1StringView(info.title),
                           QLatin1StringView(info.icon), section});
        }
    };
    fixed(sidebarLibraryItems(), QString());
    fixed(sidebarPresetItems(), u"Presets"_s);
    m_fixedRows = m_rows.size();
    m_rows.append({u"newPlaylist"_s, QString(), u"New Playlist"_s, u"plus"_s, u"Playlists"_s});
}

int SidebarModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant SidebarModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row &row = m_rows[index.row()];
    switch (role) {
    case KindRole: return row.kind;
    case KeyRole: return row.key;
    case TitleRole: return row.title;
    case IconRole: return row.icon;
    case SectionRole: return row.section;
    case SelectedRole: return !row.key.isEmpty() && m_navigation && m_navigation->selectionKey() == row.key;
    case PlaylistIdRole: return row.kind == "playlist"_L1 ? row.key.mid(9) : QString();
    }
    return {};
}

QHash<int, QByteArray> SidebarModel::roleNames() const
{
    return {{KindRole, "kind"},       {KeyRole, "key"},           {TitleRole, "title"},          {IconRole, "symbol"},
            {SectionRole, "section"}, {SelectedRole, "selected"}, {PlaylistIdRole, "playlistId"}};
}

void SidebarModel::setNavigation(Navigation *navigation)
{
    if (m_navigation == navigation)
        return;
    if (m_navigation)
        disconnect(m_navigation, nullptr, this, nullptr);
    m_navigation = navigation;
    if (navigation)
        connect(navigation, &Navigation::selectionChanged, this, &SidebarModel::updateSelection);
    updateSelection();
    Q_EMIT navigationChanged();
}

void SidebarModel::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        disconnect(m_library, nullptr, this, nullptr);
    m_library = library;
    if (library)
        connect(library, &LibraryStore::playlistsChanged, this, &SidebarModel::updatePlaylists);
    updatePlaylists();
    Q_EMIT libraryChanged();
}

QString SidebarModel::albumDragType()
{
    return ::albumDragType;
}

QList<SidebarModel::Row> SidebarModel::playlistRows() const
{
    QList<Row> rows;
    for (const Playlist &playlist : m_library ? m_library->playlists() : QList<Playlist>())
        rows.append({u"playlist"_s, u"playlist:"_s + playlist.id, playlist.name, u"music.note.list"_s, u"Playlists"_s});
    return rows;
}

// Rows that stay are updated in place and only the difference in count is inserted or removed, so that a view
// keeps its place and its row items.
void SidebarModel::updatePlaylists()
{
    const QList<Row> wanted = playlistRows();
    const qsizetype held = m_rows.size() - m_fixedRows - 1;
    const qsizetype kept = std::min(held, wanted.size());
    for (qsizetype i = 0; i < kept; ++i)
        m_rows[m_fixedRows + i] = wanted[i];
    if (kept > 0)
        Q_EMIT dataChanged(index(int(m_fixedRows)), index(int(m_fixedRows + kept - 1)));
    if (wanted.size() > held) {
        beginInsertRows({}, int(m_fixedRows + held), int(m_fixedRows + wanted.size() - 1));
        for (qsizetype i = held; i < wanted.size(); ++i)
            m_rows.insert(m_fixedRows + i, wanted[i]);
        endInsertRows();
    } else if (wanted.size() < held) {
        beginRemoveRows({}, int(m_fixedRows + wanted.size()), int(m_fixedRows + held - 1));
        m_rows.remove(m_fixedRows + wanted.size(), held - wanted.size());
        endRemoveRows();
    }
    updateSelectedRow();
}

void SidebarModel::updateSelection()
{
    Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), {SelectedRole});
    updateSelectedRow();
}

void SidebarModel::updateSelectedRow()
{
    int found = -1;
    const QString key = m_navigation ? m_navigation->selectionKey() : QString();
    for (qsizetype row = 0; row < m_rows.size() && !key.isEmpty(); ++row) {
        if (m_rows[row].key == key)
            found = int(row);
    }
    if (found == m_selectedRow)
        return;
    m_selectedRow = found;
    Q_EMIT selectedRowChanged();
}

void SidebarModel::createPlaylist(const QString &name)
{
    const QString trimmed = name.trimmed();
    if (!trimmed.isEmpty() && m_library)
        createAndSelect(m_library, m_navigation, trimmed);
}

void SidebarModel::renamePlaylist(const QString &id, const QString &name)
{
    const QString trimmed = name.trimmed();
    if (!trimmed.isEmpty() && m_library)
        m_library->renamePlaylist(id, trimmed);
}

void SidebarModel::deletePlaylist(const QString &id)
{
    if (m_library)
        deleteAndLeave(m_library, m_navigation, id);
}

bool SidebarModel::dropAlbums(const QString &playlistId, const QString &data)
{
    const QList<Album> albums = albumsIn(data.toUtf8());
    if (albums.isEmpty() || !m_library)
        return false;
    addAlbums(m_library, albums, playlistId);
    return true;
}
