#pragma once

// The artist screen: the library's artists in the store's index order, with one always chosen while there are
// any (the last choice, kept across restarts, or the first artist), and its row menu that plays an artist's
// whole discography or likes it. With no artists it says why: loading, a failure, or nothing there.

#include "common/positionallist.h"
#include "common/task.h"
#include "server/records.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QSet>
#include <QtQml/qqmlregistration.h>

class LibraryStore;
class PlayerController;
class Preferences;

struct ArtistRow {
    Artist artist;
    QString section; // the index it stands under: "A", "#"

    bool operator==(const ArtistRow &) const = default;
};

class ArtistListModel : public PositionalListModel<ArtistRow>
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the artist screen")

public:
    enum Role { IdRole = Qt::UserRole, NameRole, CoverArtRole, RecordRole, SectionRole, IsLikedRole };

    using PositionalListModel::PositionalListModel;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
    void setIndexes(const QList<ArtistIndex> &indexes);
    void setLikedIds(const QSet<QString> &ids);
    [[nodiscard]] int rowOf(const QString &id) const;

private:
    QSet<QString> m_likedIds;
};

namespace ArtistRules {
// The stored choice while an artist has it, else the first artist; none without artists.
[[nodiscard]] std::optional<QString> resolvedSelection(const std::optional<QString> &stored,
                                                       const QList<Artist> &artists);
// Collects the artist's songs, newest album first, and plays them from the top or shuffled. Without songs, on a
// failure or once cancelled: nothing, and no word of it.
QCoro::Task<> playDiscography(QPointer<LibraryStore> library, QPointer<PlayerController> player, QString artistId,
                              bool shuffled, CancelToken token);
}

class ArtistsScreen : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_MOC_INCLUDE("library/librarystore.h")
    Q_MOC_INCLUDE("playback/playercontroller.h")
    Q_MOC_INCLUDE("shell/preferences.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY inputsChanged)
    Q_PROPERTY(PlayerController *player MEMBER m_player NOTIFY inputsChanged)
    Q_PROPERTY(Preferences *preferences READ preferences WRITE setPreferences NOTIFY inputsChanged)
    Q_PROPERTY(ArtistListModel *artists READ artists CONSTANT)
    // "list", "loading", or "message" with the texts below.
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)
    Q_PROPERTY(QString messageTitle READ messageTitle NOTIFY stateChanged)
    Q_PROPERTY(QString messageSymbol READ messageSymbol NOTIFY stateChanged)
    Q_PROPERTY(QString messageText READ messageText NOTIFY stateChanged)
    Q_PROPERTY(QString selectedArtistId READ selectedArtistId NOTIFY selectionChanged)
    // The chosen artist's record; empty for none.
    Q_PROPERTY(QJsonObject selectedArtist READ selectedArtist NOTIFY selectionChanged)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectionChanged)

public:
    explicit ArtistsScreen(QObject *parent = nullptr);

    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] Preferences *preferences() const;
    void setPreferences(Preferences *preferences);
    [[nodiscard]] ArtistListModel *artists() { return &m_artists; }
    [[nodiscard]] QString state() const;
    [[nodiscard]] QString messageTitle() const;
    [[nodiscard]] QString messageSymbol() const;
    [[nodiscard]] QString messageText() const;
    [[nodiscard]] QString selectedArtistId() const { return m_selectedId.value_or(QString()); }
    [[nodiscard]] QJsonObject selectedArtist() const;
    [[nodiscard]] int selectedRow() const;

    void classBegin() override { }
    void componentComplete() override;

    // An empty id, a click into the list's blank space, keeps the last choice.
    Q_INVOKABLE void select(const QString &id);
    // Up and Down through the list; gives the row to bring into view, -1 for none.
    Q_INVOKABLE int moveSelection(int delta);
    // The artist's discography, newest album first; nothing at all when it has no songs or cannot be had.
    Q_INVOKABLE void playArtist(const QString &id, bool shuffled);
    Q_INVOKABLE void toggleLike(const QString &id);

Q_SIGNALS:
    void inputsChanged();
    void stateChanged();
    void selectionChanged();

private:
    void start();
    void update();
    void setSelectedId(std::optional<QString> id);

    QPointer<LibraryStore> m_library;
    QPointer<PlayerController> m_player;
    QPointer<Preferences> m_preferences;
    ArtistListModel m_artists;
    std::optional<QString> m_selectedId;
    std::optional<QString> m_lastSelectedId;
    bool m_complete = false;
    QString m_state;
    TaskHandle m_play;
};
