#pragma once

// A playlist's page: its rows in the server's order, which the user reorders by dragging or by keyboard. A move
// shows at once and the whole order is saved 600 ms after the last one, or at once on a drop; a save the server
// refuses brings its order back. When the server can't give the playlist, the downloaded copy stands in, in its
// own order, playable but not editable, until the server answers again.

#include "common/task.h"
#include "editsequence.h"
#include "playlistentries.h"

#include <QJsonArray>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>
#include <QTimer>

class DownloadStore;
class LibraryStore;
class PlayerController;

class PlaylistDetailScreen : public QObject, public QQmlParserStatus
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
    Q_PROPERTY(QString playlistId READ playlistId WRITE setPlaylistId NOTIFY playlistIdChanged)
    Q_PROPERTY(PlaylistEntryModel *entries READ entries CONSTANT)
    // "error", "loading", "empty" or "tracks", the first that applies.
    Q_PROPERTY(QString state READ state NOTIFY loadChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY loadChanged)
    Q_PROPERTY(QString name READ name NOTIFY loadChanged)
    Q_PROPERTY(QString metadataLine READ metadataLine NOTIFY loadChanged)
    Q_PROPERTY(QString deleteTitle READ deleteTitle NOTIFY loadChanged)
    // One cover per album, for the collection's artwork.
    Q_PROPERTY(QStringList covers READ covers NOTIFY loadChanged)
    // The songs as last loaded, for the download controls.
    Q_PROPERTY(QStringList songIds READ loadedSongIds NOTIFY loadChanged)
    // The downloaded copy is shown: no drags, no removal.
    Q_PROPERTY(bool isLocalOrder READ isLocalOrder NOTIFY loadChanged)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectionChanged)
    Q_PROPERTY(bool isPlaying READ isPlaying NOTIFY playingChanged)
    // The format a dragged entry carries; it means something only on this page.
    Q_PROPERTY(QString dragType READ dragType CONSTANT)

public:
    static constexpr int saveDelayMs = 600;

    explicit PlaylistDetailScreen(QObject *parent = nullptr);
    // A move not yet saved is saved now: leaving the page within the delay keeps the new order.
    ~PlaylistDetailScreen() override;

    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] PlayerController *player() const;
    void setPlayer(PlayerController *player);
    [[nodiscard]] const QString &playlistId() const { return m_playlistId; }
    void setPlaylistId(const QString &id);
    [[nodiscard]] PlaylistEntryModel *entries() { return &m_entries; }
    [[nodiscard]] const PlaylistEntryModel *entries() const { return &m_entries; }
    [[nodiscard]] QString state() const;
    [[nodiscard]] const QString &errorMessage() const { return m_errorMessage; }
    [[nodiscard]] QString name() const;
    [[nodiscard]] QString metadataLine() const;
    [[nodiscard]] QString deleteTitle() const;
    [[nodiscard]] const QStringList &covers() const { return m_covers; }
    [[nodiscard]] const QStringList &loadedSongIds() const { return m_loadedSongIds; }
    [[nodiscard]] bool isLocalOrder() const { return m_isLocalOrder; }
    [[nodiscard]] int selectedRow() const;
    [[nodiscard]] bool isPlaying() const;
    [[nodiscard]] static QString dragType();
    [[nodiscard]] bool isSavePending() const { return m_saveTimer.isActive(); }

    void classBegin() override { }
    void componentComplete() override;

    Q_INVOKABLE void select(int row);
    Q_INVOKABLE void play(int row);
    Q_INVOKABLE void playAll();
    Q_INVOKABLE void shuffle();
    Q_INVOKABLE void playNext();
    Q_INVOKABLE void playLast();
    Q_INVOKABLE void playRowNext(int row);
    Q_INVOKABLE void playRowLast(int row);
    // Up and Down without wrapping; gives the row to bring into view, -1 for none.
    Q_INVOKABLE int moveSelection(int delta);
    Q_INVOKABLE void playSelected();

    // A drag: the row it started on, each row it enters (which the dragged row takes the place of), the drop.
    Q_INVOKABLE void beginDrag(int row);
    Q_INVOKABLE void moveDraggedRow(int ontoRow);
    Q_INVOKABLE void drop();
    // The selected row one place up or down, saved as a drag is; gives its new row, -1 when nothing moved.
    Q_INVOKABLE int moveSelectedRow(int delta);

    Q_INVOKABLE void remove(int row);
    // The row of an entry, for a menu that outlives a reload of the rows; -1 when it has gone.
    Q_INVOKABLE int rowOfEntry(const QString &entryId) const;
    Q_INVOKABLE void removeSelected();
    // A name of blanks does nothing.
    Q_INVOKABLE void rename(const QString &name);
    // Tells `deleted` once the server has deleted it.
    Q_INVOKABLE void deletePlaylist();
    // Every song, for "Add to Playlist".
    Q_INVOKABLE QJsonArray songRecords() const;

Q_SIGNALS:
    void inputsChanged();
    void playlistIdChanged();
    void loadChanged();
    void selectionChanged();
    void playingChanged();
    void deleted();

private:
    void load();
    void setLoaded(const PlaylistDetail &detail, bool localOrder);
    void applyEntries(const QList<Song> &songs, bool localOrder);
    void setSelectedId(const QUuid &id);
    void updateCurrent();
    void scheduleSave();
    void persistOrder();
    void saveOrder(const QStringList &songIds);
    void flushPendingSave();

    QPointer<LibraryStore> m_library;
    QPointer<DownloadStore> m_downloads;
    QPointer<PlayerController> m_player;
    QString m_playlistId;
    std::optional<PlaylistDetail> m_detail;
    QString m_errorMessage;
    PlaylistEntryModel m_entries;
    QStringList m_loadedSongIds;
    QStringList m_covers;
    bool m_isLocalOrder = false;
    std::optional<QUuid> m_draggingId;
    // The order the server holds, as far as this page knows: a drop that changed nothing sends nothing.
    QStringList m_savedOrder;
    QStringList m_pendingOrder;
    QTimer m_saveTimer;
    // Saves sent or waiting to be: until they are answered, an order loaded from the server is older than the rows.
    int m_ordersInFlight = 0;
    EditSequence m_edits;
    bool m_complete = false;
    TaskHandle m_load;
};
