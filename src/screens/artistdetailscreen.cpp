#include "artistdetailscreen.h"

#include "artistsscreen.h"
#include "library/connectionfault.h"
#include "library/librarystore.h"
#include "playback/playercontroller.h"
#include "server/json.h"

using namespace Qt::StringLiterals;

ArtistDetailScreen::ArtistDetailScreen(QObject *parent) : QObject(parent)
{
}

LibraryStore *ArtistDetailScreen::library() const
{
    return m_library;
}

void ArtistDetailScreen::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        m_library->disconnect(this);
    m_library = library;
    if (library)
        connect(library, &LibraryStore::starredArtistIdsChanged, this, &ArtistDetailScreen::likedChanged);
    Q_EMIT inputsChanged();
    Q_EMIT likedChanged();
    load();
}

void ArtistDetailScreen::setArtist(const QJsonObject &artist)
{
    try {
        Artist decoded = Artist::fromJson(artist);
        if (decoded.id == m_artist.id) {
            m_artist = std::move(decoded);
            Q_EMIT artistChanged();
            return;
        }
        m_artist = std::move(decoded);
    } catch (const Json::DecodeError &) {
        return;
    }
    Q_EMIT artistChanged();
    Q_EMIT likedChanged();
    load();
}

void ArtistDetailScreen::componentComplete()
{
    m_complete = true;
    load();
}

// Keyed by the artist: another artist abandons what was under way for the last one.
void ArtistDetailScreen::load()
{
    if (!m_complete || !m_library || m_artist.id.isEmpty())
        return;
    m_assembly.cancel();
    setAssembling(false);
    m_loaded = false;
    m_errorMessage.clear();
    m_albums.setAlbums({});
    Q_EMIT loadStarted();
    Q_EMIT loadChanged();
    Q_EMIT assemblingChanged();
    m_library->ensureStarredLoaded();
    m_load.start([this, library = m_library, id = m_artist.id](CancelToken token) -> QCoro::Task<> {
        try {
            QCoro::Task<ArtistDetail> loading = library->artistDetail(id, token);
            const ArtistDetail detail = co_await loading;
            if (token.isCancelled())
                co_return;
            m_albums.setAlbums(inDiscographyOrder(detail.album.value_or(QList<Album>())));
        } catch (const TaskCancelled &) {
            co_return;
        } catch (...) {
            if (token.isCancelled())
                co_return;
            m_errorMessage = errorDescription(std::current_exception());
        }
        m_loaded = m_errorMessage.isEmpty();
        Q_EMIT loadChanged();
        Q_EMIT assemblingChanged();
    });
}

QString ArtistDetailScreen::state() const
{
    if (m_loaded && !m_albums.items().isEmpty())
        return u"albums"_s;
    return m_loaded || !m_errorMessage.isEmpty() ? u"message"_s : u"loading"_s;
}

QString ArtistDetailScreen::messageTitle() const
{
    return m_errorMessage.isEmpty() ? tr("No Albums") : tr("Couldn’t Load Artist");
}

QString ArtistDetailScreen::messageSymbol() const
{
    return m_errorMessage.isEmpty() ? u"square.stack"_s : u"exclamationmark.triangle"_s;
}

QString ArtistDetailScreen::messageText() const
{
    return m_errorMessage.isEmpty() ? tr("This artist has no albums in your library.") : m_errorMessage;
}

bool ArtistDetailScreen::isLiked() const
{
    return m_library && m_library->starredArtistIds().contains(m_artist.id);
}

void ArtistDetailScreen::playDiscography(bool shuffled)
{
    if (m_isAssembling || !m_library || !m_player)
        return;
    setAssembling(true);
    m_assembly.start([this, library = m_library, player = m_player, id = m_artist.id,
                      shuffled](CancelToken token) -> QCoro::Task<> {
        co_await ArtistRules::playDiscography(library, player, id, shuffled, token);
        // Cancelled: the next artist's start has already put the buttons back.
        if (!token.isCancelled())
            setAssembling(false);
    });
}

void ArtistDetailScreen::toggleLike()
{
    if (m_library && !m_artist.id.isEmpty())
        m_library->toggleStarArtist(m_artist.id);
}

void ArtistDetailScreen::setAssembling(bool value)
{
    if (value == m_isAssembling)
        return;
    m_isAssembling = value;
    Q_EMIT assemblingChanged();
}
