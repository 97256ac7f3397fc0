#pragma once

// The sidebar's rows: the library items, the "Presets" section, and the "Playlists" section with the server's
// playlists in the library's order and a "New Playlist" row at its end. It also carries out what the sidebar's
// controls ask: selecting, creating, renaming and deleting playlists, and adding albums dropped on a playlist.

#include <QAbstractListModel>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

class LibraryStore;
class Navigation;

class SidebarModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Navigation *navigation READ navigation WRITE setNavigation NOTIFY navigationChanged)
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY libraryChanged)
    Q_PROPERTY(QString albumDragType READ albumDragType CONSTANT)
    // The row of the selection; -1 when no row shows it (Random Albums, or a playlist not listed yet).
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedRowChanged)

public:
    enum Role { KindRole = Qt::UserRole, KeyRole, TitleRole, IconRole, SectionRole, SelectedRole, PlaylistIdRole };

    explicit SidebarModel(QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] Navigation *navigation() const { return m_navigation; }
    void setNavigation(Navigation *navigation);
    [[nodiscard]] LibraryStore *library() const { return m_library; }
    void setLibrary(LibraryStore *library);
    [[nodiscard]] static QString albumDragType();
    [[nodiscard]] int selectedRow() const { return m_selectedRow; }

    // Each trims the name; a name of blanks does nothing. A created playlist is selected.
    Q_INVOKABLE void createPlaylist(const QString &name);
    Q_INVOKABLE void renamePlaylist(const QString &id, const QString &name);
    // The playlist on screen that goes takes the window back to Home.
    Q_INVOKABLE void deletePlaylist(const QString &id);
    // `data`: the JSON of one album, or of a list of them, as an album is dragged. Each is added in order, its
    // songs fetched when the record has none. True when there was at least one album.
    Q_INVOKABLE bool dropAlbums(const QString &playlistId, const QString &data);

Q_SIGNALS:
    void navigationChanged();
    void libraryChanged();
    void selectedRowChanged();

private:
    struct Row {
        QString kind; // "item", "playlist", "newPlaylist"
        QString key;  // a selection key; empty for the "New Playlist" row
        QString title;
        QString icon;
        QString section;
    };

    void updatePlaylists();
    void updateSelection();
    void updateSelectedRow();
    [[nodiscard]] QList<Row> playlistRows() const;

    QPointer<Navigation> m_navigation;
    QPointer<LibraryStore> m_library;
    QList<Row> m_rows;
    qsizetype m_fixedRows = 0;
    int m_selectedRow = -1;
};
