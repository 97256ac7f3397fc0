#pragma once

// The suggestions under the toolbar's search field: what one search answer shows (artists, albums and songs in
// sections, with one running row id and the height the list needs), and the marked row the keyboard moves.

#include "server/records.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <variant>

using SearchSuggestion = std::variant<Artist, Album, Song>;

class SearchSuggestionsModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the search dropdown")
    Q_PROPERTY(int rowCount READ count NOTIFY resultChanged)
    Q_PROPERTY(double contentHeight READ contentHeight NOTIFY resultChanged)
    Q_PROPERTY(QString query READ query NOTIFY resultChanged)
    Q_PROPERTY(int version READ version NOTIFY resultChanged)
    Q_PROPERTY(int highlighted READ highlighted WRITE setHighlighted NOTIFY highlightedChanged)
    Q_PROPERTY(int scrollTick READ scrollTick NOTIFY scrollTickChanged)

public:
    struct Row {
        int id = 0;
        SearchSuggestion pick;
        std::optional<QString> coverArt;
        QString title;
        std::optional<QString> subtitle;
        bool isRound = false;
        QString section;
    };
    enum Role { IdRole = Qt::UserRole, SectionRole, TitleRole, SubtitleRole, CoverArtRole, IsRoundRole };

    // Heights the list is laid out with: a section's heading, a row, the margin, the most it grows, and the
    // block that says there were no results.
    static constexpr double headingHeight = 42;
    static constexpr double rowHeight = 46;
    static constexpr double margin = 12;
    static constexpr double maxHeight = 620;
    static constexpr double noResultsHeight = 76;

    using QAbstractListModel::QAbstractListModel;
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int count() const { return int(m_rows.size()); }
    [[nodiscard]] double contentHeight() const { return m_contentHeight; }
    [[nodiscard]] const QString &query() const { return m_query; }
    [[nodiscard]] int version() const { return m_version; }
    [[nodiscard]] int highlighted() const { return m_highlighted; }
    void setHighlighted(int id);
    [[nodiscard]] int scrollTick() const { return m_scrollTick; }
    // The headings of the sections shown, in order.
    [[nodiscard]] QStringList sections() const;

    void update(const SearchResult &result, const QString &query);
    [[nodiscard]] const Row *row(int id) const;
    // No wrap-around; a move asks the list to show the marked row even when the mark stays.
    Q_INVOKABLE void moveHighlight(int step);

Q_SIGNALS:
    void resultChanged();
    void highlightedChanged();
    void scrollTickChanged();

private:
    QList<Row> m_rows;
    double m_contentHeight = 0;
    QString m_query;
    int m_version = 0;
    int m_highlighted = 0;
    int m_scrollTick = 0;
};
