#pragma once

// The Downloads screen: every album and playlist on disk in two sections, each sorted by name as a file manager
// would, with what a cell does when it is opened, played or removed. It keeps no download state of its own; it
// walks the manifest once each time the store changes it.

#include "downloadsgrid.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

class DownloadStore;
class PlayerController;

class DownloadsScreen : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("downloadstore.h")
    Q_MOC_INCLUDE("playback/playercontroller.h")
    Q_PROPERTY(DownloadStore *store READ store WRITE setStore NOTIFY storeChanged)
    Q_PROPERTY(PlayerController *player MEMBER m_player NOTIFY playerChanged)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY contentChanged)
    Q_PROPERTY(QString caption READ caption NOTIFY contentChanged)
    // How many cells stand in a row; the view sets it from its width.
    Q_PROPERTY(int columns READ columns WRITE setColumns NOTIFY columnsChanged)
    // "Albums", then "Playlists", each left out when empty.
    Q_PROPERTY(DownloadsGridModel *rows READ rows CONSTANT)

public:
    explicit DownloadsScreen(QObject *parent = nullptr);

    [[nodiscard]] DownloadStore *store() const;
    void setStore(DownloadStore *store);
    [[nodiscard]] bool isEmpty() const { return m_albums.isEmpty() && m_playlists.isEmpty(); }
    // "3 collections · 1.2 GB".
    [[nodiscard]] QString caption() const;
    [[nodiscard]] int columns() const { return m_columns; }
    void setColumns(int columns);
    [[nodiscard]] DownloadsGridModel *rows() { return &m_rows; }

    // A playlist opens as the sidebar's playlist; an album is pushed as it is on disk, if any of it still is.
    Q_INVOKABLE void open(const QString &key);
    Q_INVOKABLE void play(const QString &key);
    Q_INVOKABLE void shuffle(const QString &key);
    Q_INVOKABLE void playNext(const QString &key);
    Q_INVOKABLE void playLast(const QString &key);
    Q_INVOKABLE void remove(const QString &key);

Q_SIGNALS:
    void storeChanged();
    void playerChanged();
    void contentChanged();
    void columnsChanged();
    void openPlaylist(const QString &playlistId);
    // The album's record, as it stands on disk.
    void openAlbum(const QJsonObject &album);

private:
    void update();
    void layOut();
    [[nodiscard]] QList<Song> songs(const QString &key) const;

    QPointer<DownloadStore> m_store;
    QPointer<PlayerController> m_player;
    QList<DownloadedCollectionRow> m_albums;
    QList<DownloadedCollectionRow> m_playlists;
    int m_columns = 4;
    DownloadsGridModel m_rows;
    QHash<QString, CollectionContents> m_contents;
    qint64 m_totalBytes = 0;
};
