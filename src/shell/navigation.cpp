#include "navigation.h"

#include "common/observable.h"
#include "library/librarystore.h"
#include "playback/playercontroller.h"
#include "server/appstate.h"
#include "server/json.h"

using namespace Qt::StringLiterals;

int NavigationStack::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

QVariant NavigationStack::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const NavigationEntry &entry = m_entries[index.row()];
    if (const auto *album = std::get_if<Album>(&entry)) {
        switch (role) {
        case KindRole: return u"album"_s;
        case TitleRole: return album->name;
        case IdRole: return album->id;
        case RecordRole: return album->toJson();
        }
    } else if (const auto *artist = std::get_if<Artist>(&entry)) {
        switch (role) {
        case KindRole: return u"artist"_s;
        case TitleRole: return artist->name;
        case IdRole: return artist->id;
        case RecordRole: return artist->toJson();
        }
    } else {
        const auto &grid = std::get<AlbumGridDestination>(entry);
        switch (role) {
        case KindRole: return u"grid"_s;
        case TitleRole: return grid.title;
        case IdRole: return albumListTypeName(grid.listType);
        case RecordRole: return QJsonObject();
        }
    }
    return {};
}

QHash<int, QByteArray> NavigationStack::roleNames() const
{
    return {{KindRole, "kind"}, {TitleRole, "title"}, {IdRole, "entryId"}, {RecordRole, "record"}};
}

void NavigationStack::push(NavigationEntry entry)
{
    beginInsertRows({}, int(m_entries.size()), int(m_entries.size()));
    m_entries.append(std::move(entry));
    endInsertRows();
}

void NavigationStack::truncate(qsizetype depth)
{
    if (depth >= m_entries.size())
        return;
    beginRemoveRows({}, int(depth), int(m_entries.size()) - 1);
    m_entries.resize(depth);
    endRemoveRows();
}

Navigation::Navigation(QObject *parent)
    : QObject(parent)
{
}

AppState *Navigation::appState() const
{
    return m_appState;
}

void Navigation::setAppState(AppState *appState)
{
    if (m_appState == appState)
        return;
    if (m_appState && m_appState->library())
        disconnect(m_appState->library(), nullptr, this, nullptr);
    m_appState = appState;
    if (appState && appState->library())
        connect(appState->library(), &LibraryStore::playlistsChanged, this, &Navigation::rootTitleChanged);
    Q_EMIT appStateChanged();
}

void Navigation::restore()
{
    const auto &client = m_appState ? m_appState->client() : std::nullopt;
    const std::optional<SavedLocation> saved =
        client && m_locations ? m_locations->restorable(client->config()) : std::nullopt;
    m_stack.truncate(0);
    m_coveredAccents.clear();
    m_selection = saved ? saved->selection : SidebarSelection::item(SidebarItem::Home);
    for (const NavigationEntry &entry : saved ? saved->path : QList<NavigationEntry>())
        m_stack.push(entry);
    Q_EMIT selectionChanged();
    Q_EMIT rootTitleChanged();
    Q_EMIT depthChanged();
}

QString Navigation::selectionKey() const
{
    if (const QString *id = m_selection.playlistId())
        return u"playlist:"_s + *id;
    return u"item:"_s + QLatin1StringView(sidebarItemInfo(*m_selection.sidebarItem()).id);
}

QString Navigation::rootKind() const
{
    if (m_selection.playlistId())
        return u"playlist"_s;
    return QLatin1StringView(sidebarItemInfo(*m_selection.sidebarItem()).id);
}

QString Navigation::rootTitle() const
{
    if (const QString *id = m_selection.playlistId()) {
        if (m_appState && m_appState->library()) {
            for (const Playlist &playlist : m_appState->library()->playlists()) {
                if (playlist.id == *id)
                    return playlist.name;
            }
        }
        return u"Playlist"_s;
    }
    return QLatin1StringView(sidebarItemInfo(*m_selection.sidebarItem()).title);
}

QString Navigation::playlistId() const
{
    const QString *id = m_selection.playlistId();
    return id ? *id : QString();
}

void Navigation::setSearchText(const QString &text)
{
    assignField(this, m_searchText, text, &Navigation::searchTextChanged);
}

void Navigation::select(const SidebarSelection &selection)
{
    m_coveredAccents.clear();
    const bool changed = selection != m_selection;
    m_selection = selection;
    const qsizetype before = m_stack.entries().size();
    m_stack.truncate(0);
    setSearchText(QString());
    setWindowAccent(QColor());
    if (changed) {
        Q_EMIT selectionChanged();
        Q_EMIT rootTitleChanged();
    }
    if (before != 0)
        Q_EMIT depthChanged();
    save();
}

void Navigation::selectKey(const QString &key)
{
    if (key.startsWith("playlist:"_L1)) {
        select(SidebarSelection::playlist(key.mid(9)));
    } else if (const auto item = sidebarItemFromId(QStringView(key).mid(5)); item && key.startsWith("item:"_L1)) {
        select(SidebarSelection::item(*item));
    }
}

void Navigation::push(NavigationEntry entry)
{
    setPath(m_stack.entries().size(), std::move(entry));
}

void Navigation::pushGrid(const QString &listType, const QString &title)
{
    if (const std::optional<AlbumListType> type = albumListTypeFromName(listType))
        push(AlbumGridDestination{*type, title});
}

void Navigation::pushAlbum(const QJsonObject &album)
{
    try {
        push(Album::fromJson(album));
    } catch (const Json::DecodeError &) {
    }
}

void Navigation::pushArtist(const QJsonObject &artist)
{
    try {
        push(Artist::fromJson(artist));
    } catch (const Json::DecodeError &) {
    }
}

QString Navigation::gridListType(const QString &kind, const QString &entryId)
{
    if (kind == "grid"_L1)
        return entryId;
    const std::optional<SidebarItem> item = sidebarItemFromId(kind);
    if (item == SidebarItem::LikedAlbums)
        return u"liked"_s;
    if (item && sidebarItemInfo(*item).listType)
        return albumListTypeName(*sidebarItemInfo(*item).listType);
    return {};
}

void Navigation::back()
{
    if (!m_stack.entries().isEmpty())
        setPath(m_stack.entries().size() - 1, std::nullopt);
}

void Navigation::playlistDeleted(const QString &id)
{
    if (m_selection == SidebarSelection::playlist(id))
        select(SidebarSelection::item(SidebarItem::Home));
}

void Navigation::popToRoot()
{
    if (!m_stack.entries().isEmpty())
        setPath(0, std::nullopt);
}

// The accent stack: a push remembers the colour under the depth it covers and starts neutral; a pop brings back
// the colour remembered for the depth it returns to, at once, without the screen reporting it again.
void Navigation::setPath(qsizetype depth, std::optional<NavigationEntry> pushed)
{
    const qsizetype old = m_stack.entries().size();
    if (pushed) {
        m_coveredAccents.removeIf([old](const auto &entry) { return entry.key() >= old; });
        if (m_windowAccent.isValid())
            m_coveredAccents.insert(old, m_windowAccent);
        m_stack.push(std::move(*pushed));
        setWindowAccent(QColor());
    } else {
        m_stack.truncate(depth);
        setWindowAccent(m_coveredAccents.value(depth));
        m_coveredAccents.removeIf([depth](const auto &entry) { return entry.key() >= depth; });
    }
    Q_EMIT depthChanged();
    save();
}

void Navigation::reportAccent(int depth, const QVariant &accent)
{
    // A root still alive under a pushed screen must not repaint the window, nor a screen already popped.
    if ((depth == 0 && !m_stack.entries().isEmpty()) || depth > m_stack.entries().size())
        return;
    setWindowAccent(accent.value<QColor>());
}

void Navigation::reportFullPage(QObject *screen, bool shown)
{
    const bool before = faultShownFullPage();
    if (shown)
        m_fullPages.insert(screen);
    else
        m_fullPages.remove(screen);
    if (before != faultShownFullPage())
        Q_EMIT faultShownFullPageChanged();
}

bool Navigation::spacePressed()
{
    if (!m_player || !m_player->currentSong())
        return false;
    m_player->togglePlayPause();
    return true;
}

void Navigation::setWindowAccent(QColor accent)
{
    assignField(this, m_windowAccent, accent, &Navigation::windowAccentChanged);
}

void Navigation::save()
{
    if (m_locations && m_appState && m_appState->client())
        m_locations->save(m_selection, m_stack.entries(), m_appState->client()->config());
}
