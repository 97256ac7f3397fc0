#pragma once

// A table of songs: every song of the library, or the liked ones. The user sorts it by clicking a column's header
// (again to reverse), selects rows with clicks, Ctrl- and Shift-clicks, Ctrl+A or the arrows, and plays: a double
// click or Return queues the whole table as sorted from that row, and the menu plays, queues, likes or adds the
// selection in table order. With nothing in the list it says why: loading, a failure, or nothing there.

#include "songtablemodel.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

class LibraryStore;
class PlayerController;

class SongTableScreen : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_MOC_INCLUDE("library/librarystore.h")
    Q_MOC_INCLUDE("playback/playercontroller.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY inputsChanged)
    Q_PROPERTY(PlayerController *player READ player WRITE setPlayer NOTIFY inputsChanged)
    // True for the liked songs, false for every song of the library.
    Q_PROPERTY(bool likedOnly READ likedOnly WRITE setLikedOnly NOTIFY inputsChanged)
    Q_PROPERTY(SongTableModel *rows READ rows CONSTANT)
    // "table", "loading", or "message" with the texts below.
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)
    Q_PROPERTY(QString messageTitle READ messageTitle NOTIFY stateChanged)
    Q_PROPERTY(QString messageSymbol READ messageSymbol NOTIFY stateChanged)
    Q_PROPERTY(QString messageText READ messageText NOTIFY stateChanged)
    // The store holds no song of this list: the full-page fault may stand in.
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY stateChanged)
    // A new number for each new sort: the table starts again from its top.
    Q_PROPERTY(int tableGeneration READ tableGeneration NOTIFY sortChanged)
    // The headings, left to right.
    Q_PROPERTY(QStringList columnTitles READ columnTitles CONSTANT)
    Q_PROPERTY(int sortColumn READ sortColumn NOTIFY sortChanged)
    Q_PROPERTY(bool sortAscending READ sortAscending NOTIFY sortChanged)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged)
    // The row the keyboard is on, -1 for none.
    Q_PROPERTY(int cursorRow READ cursorRow NOTIFY selectionChanged)

public:
    explicit SongTableScreen(QObject *parent = nullptr);

    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] PlayerController *player() const;
    void setPlayer(PlayerController *player);
    [[nodiscard]] bool likedOnly() const { return m_likedOnly; }
    void setLikedOnly(bool likedOnly);
    [[nodiscard]] SongTableModel *rows() { return &m_rows; }
    [[nodiscard]] const SongTableModel *rows() const { return &m_rows; }
    [[nodiscard]] QString state() const;
    [[nodiscard]] QString messageTitle() const;
    [[nodiscard]] QString messageSymbol() const;
    [[nodiscard]] QString messageText() const;
    [[nodiscard]] bool isEmpty() const;
    [[nodiscard]] int tableGeneration() const { return m_tableGeneration; }
    [[nodiscard]] QStringList columnTitles() const;
    [[nodiscard]] int sortColumn() const { return int(m_rows.sortOrder().constFirst().column); }
    [[nodiscard]] bool sortAscending() const { return m_rows.sortOrder().constFirst().ascending; }
    [[nodiscard]] int selectedCount() const { return int(m_rows.selection().size()); }
    [[nodiscard]] int cursorRow() const;
    // The selected songs in table order.
    [[nodiscard]] QList<Song> selectedSongs() const;

    void classBegin() override { }
    void componentComplete() override;

    // The column goes first in the order, ascending; clicked again while first, it reverses.
    Q_INVOKABLE void clickHeader(int column);
    // A click with the keyboard's modifiers: alone it selects the row, with Ctrl it adds or removes it, with
    // Shift it selects from the last clicked row to it.
    Q_INVOKABLE void clickRow(int row, int modifiers = 0);
    // A right click: a row outside the selection becomes the selection; within it, the menu is for all of it.
    Q_INVOKABLE void pressRowForMenu(int row);
    Q_INVOKABLE void selectAll();
    // Up and Down without wrapping, from nothing Down takes the first row and Up the last; with Shift the
    // selection stretches. Gives the row to bring into view, -1 for none.
    Q_INVOKABLE int moveCursor(int delta, bool extend = false);
    // The whole table as sorted, from that row.
    Q_INVOKABLE void playRow(int row);
    // The same from one of the selected rows: the keyboard's if it is selected.
    Q_INVOKABLE void playSelection();
    Q_INVOKABLE void playSelectionNext();
    Q_INVOKABLE void playSelectionLast();
    // The liked songs' "Unlike": every selected song that is liked, in table order.
    Q_INVOKABLE void unlikeSelection();
    Q_INVOKABLE QJsonArray selectedRecords() const;
    // The one selected song, for its like entry; empty with none or several.
    Q_INVOKABLE QJsonObject singleSelectedRecord() const;

Q_SIGNALS:
    void inputsChanged();
    void stateChanged();
    void sortChanged();
    void selectionChanged();

private:
    void start();
    void update();
    void updateCurrent();
    void select(QSet<QString> ids, const QString &cursor, bool keepAnchor);
    [[nodiscard]] QSet<QString> idsBetween(int from, int to) const;

    QPointer<LibraryStore> m_library;
    QPointer<PlayerController> m_player;
    bool m_likedOnly = false;
    SongTableModel m_rows;
    int m_tableGeneration = 0;
    // Kept by id: a re-sort or a page arriving moves the rows, not what the user picked.
    QString m_cursorId;
    QString m_anchorId;
    bool m_complete = false;
    QString m_state;
};
