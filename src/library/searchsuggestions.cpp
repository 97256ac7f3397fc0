#include "searchsuggestions.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

int SearchSuggestionsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant SearchSuggestionsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case IdRole: return row.id;
    case SectionRole: return row.section;
    case TitleRole: return row.title;
    case SubtitleRole: return row.subtitle.value_or(QString());
    case CoverArtRole: return row.coverArt.value_or(QString());
    case IsRoundRole: return row.isRound;
    default: return {};
    }
}

QHash<int, QByteArray> SearchSuggestionsModel::roleNames() const
{
    return {{IdRole, "rowId"},          {SectionRole, "section"},   {TitleRole, "title"},
            {SubtitleRole, "subtitle"}, {CoverArtRole, "coverArt"}, {IsRoundRole, "isRound"}};
}

void SearchSuggestionsModel::setHighlighted(int id)
{
    if (m_highlighted == id)
        return;
    m_highlighted = id;
    Q_EMIT highlightedChanged();
}

QStringList SearchSuggestionsModel::sections() const
{
    QStringList headings;
    for (const Row &row : m_rows) {
        if (headings.isEmpty() || headings.last() != row.section)
            headings.append(row.section);
    }
    return headings;
}

void SearchSuggestionsModel::update(const SearchResult &result, const QString &query)
{
    QList<Row> rows;
    const auto add = [&rows](const QString &section, const auto &items, auto makeRow) {
        for (const auto &item : items.value_or(std::remove_cvref_t<decltype(*items)>())) {
            Row row = makeRow(item);
            row.id = int(rows.size());
            row.section = section;
            rows.append(row);
        }
    };
    const auto rowOf = [](SearchSuggestion pick, std::optional<QString> coverArt, QString title,
                          std::optional<QString> subtitle, bool isRound) {
        Row row;
        row.pick = std::move(pick);
        row.coverArt = std::move(coverArt);
        row.title = std::move(title);
        row.subtitle = std::move(subtitle);
        row.isRound = isRound;
        return row;
    };
    add(QCoreApplication::translate("SearchSuggestions", "Artists"), result.artist, [&](const Artist &artist) {
        return rowOf(artist, artist.coverArt, artist.name, std::nullopt, true);
    });
    add(QCoreApplication::translate("SearchSuggestions", "Albums"), result.album, [&](const Album &album) {
        return rowOf(album, album.coverArt, album.name, album.artist, false);
    });
    add(QCoreApplication::translate("SearchSuggestions", "Songs"), result.song, [&](const Song &song) {
        return rowOf(song, song.coverArt, song.title, song.artist, false);
    });

    if (!m_rows.isEmpty()) {
        beginRemoveRows({}, 0, count() - 1);
        m_rows.clear();
        endRemoveRows();
    }
    if (!rows.isEmpty()) {
        beginInsertRows({}, 0, int(rows.size()) - 1);
        m_rows = rows;
        endInsertRows();
    }
    m_query = query;
    const qsizetype sectionCount = sections().size();
    m_contentHeight = rows.isEmpty()
        ? noResultsHeight
        : std::min(double(sectionCount) * headingHeight + double(rows.size()) * rowHeight + margin, maxHeight);
    setHighlighted(0);
    ++m_version;
    Q_EMIT resultChanged();
}

const SearchSuggestionsModel::Row *SearchSuggestionsModel::row(int id) const
{
    return id >= 0 && id < count() ? &m_rows.at(id) : nullptr;
}

void SearchSuggestionsModel::moveHighlight(int step)
{
    if (count() < 1)
        return;
    setHighlighted(std::clamp(m_highlighted + step, 0, count() - 1));
    ++m_scrollTick;
    Q_EMIT scrollTickChanged();
}
