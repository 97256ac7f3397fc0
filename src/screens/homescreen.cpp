#include "homescreen.h"

#include "library/cachedcontent.h"
#include "library/librarystore.h"

using namespace Qt::StringLiterals;

QVariantList HomeScreen::rows()
{
    return {QVariantMap{{u"listType"_s, u"recent"_s}, {u"title"_s, tr("Recently Played")}},
            QVariantMap{{u"listType"_s, u"newest"_s}, {u"title"_s, tr("Recently Added")}},
            QVariantMap{{u"listType"_s, u"frequent"_s}, {u"title"_s, tr("Most Played")}},
            QVariantMap{{u"listType"_s, u"random"_s}, {u"title"_s, tr("Random Albums")}}};
}

LibraryStore *HomeScreen::library() const
{
    return m_library;
}

void HomeScreen::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        m_library->disconnect(this);
    m_library = library;
    if (library) {
        connect(library, &LibraryStore::epochChanged, this, &HomeScreen::fill);
        onCachedContentChange(library, this, [this] { updateEmpty(); });
    }
    Q_EMIT libraryChanged();
    updateEmpty();
    fill();
}

void HomeScreen::updateEmpty()
{
    const bool empty = !m_library || !m_library->hasCachedContent();
    if (empty == m_isEmpty)
        return;
    m_isEmpty = empty;
    Q_EMIT isEmptyChanged();
}

void HomeScreen::componentComplete()
{
    m_complete = true;
    fill();
}

void HomeScreen::fill()
{
    if (!m_complete || !m_library)
        return;
    m_library->ensureStarredLoaded();
    for (const QVariant &row : rows()) {
        if (const auto type = albumListTypeFromName(row.toMap().value(u"listType"_s).toString()))
            m_library->ensureHomeRow(*type);
    }
}

FeaturedCarousel::FeaturedCarousel(QObject *parent) : QObject(parent)
{
    m_advance.setInterval(advanceMs);
    connect(&m_advance, &QTimer::timeout, this, &FeaturedCarousel::advance);
    connect(this, &FeaturedCarousel::albumsChanged, this, &FeaturedCarousel::keyChanged);
    connect(this, &FeaturedCarousel::isOnScreenChanged, this, &FeaturedCarousel::keyChanged);
}

void FeaturedCarousel::componentComplete()
{
    load();
}

void FeaturedCarousel::load()
{
    if (!m_library)
        return;
    m_hasLoaded = false;
    m_index = 0;
    m_load.start([this, client = m_library->client()](CancelToken token) -> QCoro::Task<> {
        QList<Album> albums;
        try {
            QCoro::Task<QList<Album>> loading = client.albums(AlbumListType::Random, featureCount, 0, token);
            albums = co_await loading;
        } catch (...) {
            // The carousel has no error of its own: without albums it takes no space.
        }
        if (token.isCancelled())
            co_return;
        setAlbums(std::move(albums));
    });
}

void FeaturedCarousel::setAlbums(QList<Album> albums)
{
    m_albums = std::move(albums);
    m_hasLoaded = true;
    m_index = 0;
    Q_EMIT albumsChanged();
    Q_EMIT indexChanged();
}

void FeaturedCarousel::setOnScreen(bool onScreen)
{
    if (m_isOnScreen == onScreen)
        return;
    m_isOnScreen = onScreen;
    Q_EMIT isOnScreenChanged();
}

void FeaturedCarousel::setIndex(int index)
{
    if (index < 0 || index >= count() || index == m_index)
        return;
    m_index = index;
    Q_EMIT indexChanged();
}

QJsonObject FeaturedCarousel::current() const
{
    return m_index >= 0 && m_index < count() ? m_albums.at(m_index).toJson() : QJsonObject();
}

QString FeaturedCarousel::currentYear() const
{
    return m_index < count() && m_albums.at(m_index).year ? QString::number(*m_albums.at(m_index).year) : QString();
}

void FeaturedCarousel::step(int direction)
{
    if (count() > 0)
        setIndex((m_index + (direction < 0 ? -1 : 1) + count()) % count());
}

void FeaturedCarousel::keyChanged()
{
    const std::pair<int, bool> key{count(), m_isOnScreen};
    if (key == m_advanceKey)
        return;
    m_advanceKey = key;
    m_advance.stop();
    if (m_isOnScreen && count() >= 2)
        m_advance.start();
}

void FeaturedCarousel::advance()
{
    // While the pointer is on the card the period passes without a step: hovering pauses the rhythm.
    if (!m_isHovering && count() > 0)
        setIndex((m_index + 1) % count());
}
