#include "searchdropdown.h"

#include "server/appstate.h"

#include <QTextBoundaryFinder>

using namespace Qt::StringLiterals;

namespace {
constexpr double minimumWidth = 380;
constexpr double gap = 6;
constexpr double bottomMargin = 12;
constexpr double leftMargin = 10;
constexpr double minimumHeight = 40;

// What a reader counts as characters: "é" written as e and an accent is one, so is an emoji.
qsizetype characterCount(const QString &text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() > 0)
        ++count;
    return count;
}

QString trimmedOfBlanks(const QString &text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    const auto blank = [](QChar c) { return c == u' ' || c == u'\t'; };
    while (start < end && blank(text.at(start)))
        ++start;
    while (end > start && blank(text.at(end - 1)))
        --end;
    return text.mid(start, end - start);
}
}

QRectF searchDropdownGeometry(const QRectF &field, const QSizeF &window, double contentHeight)
{
    const double width = std::max(field.width(), minimumWidth);
    const double top = field.bottom() + gap;
    const double available = window.height() - bottomMargin - top;
    const double height = std::max(std::min(available, contentHeight), minimumHeight);
    const double x = std::max(field.right() - width, leftMargin);
    return {x, top, width, height};
}

SearchDropdownController::SearchDropdownController(QObject *parent) : QObject(parent)
{
    m_debounce.setSingleShot(true);
    m_debounce.setInterval(debounceMs);
    connect(&m_debounce, &QTimer::timeout, this, [this] { search(m_pendingQuery); });
    connect(this, &SearchDropdownController::appStateChanged, this, &SearchDropdownController::dismiss);
}

void SearchDropdownController::handle(const QString &query)
{
    m_debounce.stop();
    m_fetch.cancel();
    const QString trimmed = trimmedOfBlanks(query);
    if (characterCount(trimmed) < minimumQueryLength) {
        dismiss();
        return;
    }
    if (!m_appState || !m_appState->client())
        return;
    m_pendingQuery = trimmed;
    m_debounce.start();
}

void SearchDropdownController::search(QString query)
{
    if (!m_appState || !m_appState->client())
        return;
    m_fetch.start([this, client = *m_appState->client(), query](CancelToken token) -> QCoro::Task<> {
        const SubsonicClient::SearchCounts counts{.artists = 5, .albums = 7, .songs = 10, .songOffset = 0};
        QCoro::Task<SearchResult> searching = client.search(query, counts, token);
        const SearchResult result = co_await searching;
        // Signed out while the answer came: nothing opens without an account.
        if (token.isCancelled() || !m_appState || !m_appState->client())
            co_return;
        m_model.update(result, query);
        setOpen(true);
    });
}

void SearchDropdownController::dismiss()
{
    m_debounce.stop();
    m_fetch.cancel();
    setOpen(false);
}

bool SearchDropdownController::keyPressed(int key)
{
    if (!m_isOpen)
        return false;
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        activate(m_model.highlighted());
        return true;
    case Qt::Key_Escape:
        dismiss();
        return false;
    case Qt::Key_Down:
        m_model.moveHighlight(1);
        return true;
    case Qt::Key_Up:
        m_model.moveHighlight(-1);
        return true;
    default:
        return false;
    }
}

void SearchDropdownController::activate(int rowId)
{
    const SearchSuggestionsModel::Row *row = m_model.row(rowId);
    if (!row)
        return;
    const SearchSuggestion suggestion = row->pick;
    dismiss();
    pick(suggestion);
}

void SearchDropdownController::highlight(int rowId)
{
    if (m_model.row(rowId))
        m_model.setHighlighted(rowId);
}

QRectF SearchDropdownController::geometry(const QRectF &field, const QSizeF &window) const
{
    return searchDropdownGeometry(field, window, m_model.contentHeight());
}

void SearchDropdownController::pick(const SearchSuggestion &suggestion)
{
    if (const auto *artist = std::get_if<Artist>(&suggestion)) {
        Q_EMIT openArtist(artist->toJson());
    } else if (const auto *album = std::get_if<Album>(&suggestion)) {
        Q_EMIT openAlbum(album->toJson());
    } else if (const auto &song = std::get<Song>(suggestion); song.albumId) {
        Album album;
        album.id = *song.albumId;
        album.name = song.album.value_or(song.title);
        album.artist = song.artist;
        album.artistId = song.artistId;
        album.coverArt = song.coverArt;
        Q_EMIT openAlbum(album.toJson());
    }
    Q_EMIT picked();
}

void SearchDropdownController::setOpen(bool open)
{
    if (m_isOpen == open)
        return;
    m_isOpen = open;
    Q_EMIT isOpenChanged();
}
