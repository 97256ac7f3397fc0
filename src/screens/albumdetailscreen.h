#pragma once

// An album's page: its header as the list gave the album until the whole album is in, then its tracks grouped by
// disc, the selected and the playing row, and what Play, Shuffle, a double click or Return start. When the server
// cannot give the album, the copy on disk stands in without a word; without one the page says what failed.

#include "common/positionallist.h"
#include "common/task.h"
#include "server/records.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

class DownloadStore;
class LibraryStore;
class PlayerController;

struct TrackRowItem {
    Song song;
    QString discHeading; // "Disc 2", or empty when the album shows as one list

    bool operator==(const TrackRowItem &) const = default;
};

class TrackListModel : public PositionalListModel<TrackRowItem>
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by an album page")

public:
    enum Role { SongIdRole = Qt::UserRole, RecordRole, TitleRole, TrackRole, DurationRole, DiscRole };

    using PositionalListModel::PositionalListModel;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
    void setTracks(const QList<Song> &songs);
    [[nodiscard]] int rowOf(const QString &songId) const;
};

class AlbumDetailScreen : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_MOC_INCLUDE("library/librarystore.h")
    Q_MOC_INCLUDE("offline/downloadstore.h")
    Q_MOC_INCLUDE("playback/playercontroller.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY inputsChanged)
    Q_PROPERTY(DownloadStore *downloads MEMBER m_downloads NOTIFY inputsChanged)
    Q_PROPERTY(PlayerController *player READ player WRITE setPlayer NOTIFY inputsChanged)
    // The album as the list or link gave it, usually without its songs.
    Q_PROPERTY(QJsonObject album READ albumRecord WRITE setAlbum NOTIFY albumChanged)
    // The whole album once loaded, else the one given.
    Q_PROPERTY(QJsonObject record READ record NOTIFY loadChanged)
    // "loading", "error" or "tracks".
    Q_PROPERTY(QString state READ state NOTIFY loadChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY loadChanged)
    Q_PROPERTY(QString metadataLine READ metadataLine NOTIFY loadChanged)
    Q_PROPERTY(TrackListModel *tracks READ tracks CONSTANT)
    Q_PROPERTY(QString selectedSongId READ selectedSongId NOTIFY selectionChanged)
    Q_PROPERTY(QString currentSongId READ currentSongId NOTIFY playingChanged)
    Q_PROPERTY(bool isPlaying READ isPlaying NOTIFY playingChanged)
    Q_PROPERTY(bool isLiked READ isLiked NOTIFY likedChanged)

public:
    explicit AlbumDetailScreen(QObject *parent = nullptr);

    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] PlayerController *player() const;
    void setPlayer(PlayerController *player);
    [[nodiscard]] QJsonObject albumRecord() const { return m_album.toJson(); }
    void setAlbum(const QJsonObject &album);
    [[nodiscard]] QJsonObject record() const { return (m_loaded ? *m_loaded : m_album).toJson(); }
    [[nodiscard]] QString state() const;
    [[nodiscard]] const QString &errorMessage() const { return m_errorMessage; }
    [[nodiscard]] QString metadataLine() const;
    [[nodiscard]] TrackListModel *tracks() { return &m_tracks; }
    [[nodiscard]] const QString &selectedSongId() const { return m_selectedSongId; }
    [[nodiscard]] QString currentSongId() const;
    [[nodiscard]] bool isPlaying() const;
    [[nodiscard]] bool isLiked() const;
    // In server order, whatever the grouping shows.
    [[nodiscard]] QList<Song> songs() const;

    void classBegin() override { }
    void componentComplete() override;

    Q_INVOKABLE void select(const QString &songId);
    Q_INVOKABLE void play(const QString &songId);
    Q_INVOKABLE void playAll();
    Q_INVOKABLE void shuffle();
    Q_INVOKABLE void playNext();
    Q_INVOKABLE void playLast();
    // A row's own "Play Next" and "Play Last".
    Q_INVOKABLE void playSongNext(const QString &songId);
    Q_INVOKABLE void playSongLast(const QString &songId);
    Q_INVOKABLE void toggleLike();
    // Up and Down over the rows as shown; gives the row to bring into view, -1 for none.
    Q_INVOKABLE int moveSelection(int delta);
    Q_INVOKABLE void playSelected();

Q_SIGNALS:
    void inputsChanged();
    void albumChanged();
    void loadChanged();
    void selectionChanged();
    void playingChanged();
    void likedChanged();

private:
    void load();
    void setLoaded(std::optional<Album> loaded, QString errorMessage);

    QPointer<LibraryStore> m_library;
    QPointer<DownloadStore> m_downloads;
    QPointer<PlayerController> m_player;
    Album m_album;
    std::optional<Album> m_loaded;
    QString m_errorMessage;
    QString m_selectedSongId;
    TrackListModel m_tracks;
    bool m_complete = false;
    TaskHandle m_load;
};
