#include "homerows.h"

#include "library/librarystore.h"

using namespace Qt::StringLiterals;

namespace StripPaging {
int leadingIndex(double offsetX, double containerWidth, double stride, int count)
{
    if (containerWidth <= 0 || count <= 0)
        return 0;
    return std::clamp(int(offsetX / stride), 0, count - 1);
}

std::optional<int> target(double offsetX, double containerWidth, double stride, int count, int direction)
{
    const int leading = leadingIndex(offsetX, containerWidth, stride, count);
    const int perPage = std::max(int(containerWidth / stride), 1);
    int next = std::min(leading + direction * perPage, count - 1);
    if (next < 0) {
        if (leading == 0)
            return std::nullopt;
        next = 0;
    }
    if (next == leading)
        return std::nullopt;
    return next;
}

bool canScrollLeft(double offsetX)
{
    return offsetX > 1;
}

bool canScrollRight(double offsetX, double containerWidth, double contentWidth)
{
    return containerWidth > 0 && offsetX + containerWidth < contentWidth - 1;
}
}

LibraryStore *HomeRow::library() const
{
    return m_library;
}

void HomeRow::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        m_library->disconnect(this);
    m_library = library;
    if (library) {
        connect(library, &LibraryStore::albumListChanged, this, [this](AlbumListType changed) {
            if (type() == changed)
                update();
        });
        connect(library, &LibraryStore::homeRandomChanged, this, &HomeRow::update);
        connect(library, &LibraryStore::reachabilityChanged, this, &HomeRow::update);
    }
    Q_EMIT libraryChanged();
    update();
}

void HomeRow::setListType(const QString &listType)
{
    if (m_listType == listType)
        return;
    m_listType = listType;
    Q_EMIT listTypeChanged();
    update();
}

std::optional<AlbumListType> HomeRow::type() const
{
    return albumListTypeFromName(m_listType);
}

QString HomeRow::shows() const
{
    return m_shows.isEmpty() ? u"hidden"_s : m_shows;
}

QString HomeRow::errorMessage() const
{
    return m_errorMessage;
}

void HomeRow::update()
{
    if (!m_library || !type())
        return;
    const AlbumListState state = m_library->homeRowState(*type());
    m_albums.setAlbums(state.albums.mid(0, cardLimit));
    QString shows;
    if (!state.albums.isEmpty())
        shows = u"strip"_s;
    else if (!m_library->reachability().isOk())
        shows = u"hidden"_s; // the standing banner speaks for it
    else if (state.errorMessage)
        shows = u"error"_s;
    else if (state.isLoading)
        shows = u"loading"_s;
    else
        shows = u"hidden"_s;
    const QString error = state.errorMessage.value_or(QString());
    if (shows == m_shows && error == m_errorMessage)
        return;
    m_shows = shows;
    m_errorMessage = error;
    Q_EMIT showsChanged();
}

void HomeRow::retry()
{
    if (m_library && type())
        m_library->ensureHomeRow(*type());
}

int HomeRow::pageTarget(double offsetX, double containerWidth, double stride, int direction) const
{
    const int count = m_library && type() ? int(m_library->homeRowState(*type()).albums.size()) : 0;
    return StripPaging::target(offsetX, containerWidth, stride, count, direction).value_or(-1);
}
