#pragma once

// A destination whose own screen is still to come: it shows its title, and the full-page fault when the server
// can't be used and nothing of the library has been seen yet. A playlist's page knows its songs as the server
// lists them now, for its download controls.

#include "common/task.h"

#include <QObject>
#include <QStringList>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

class LibraryStore;

class PlaceholderScreen : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("library/librarystore.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY libraryChanged)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY isEmptyChanged)
    // Empty for any other page.
    Q_PROPERTY(QString playlistId READ playlistId WRITE setPlaylistId NOTIFY playlistIdChanged)
    Q_PROPERTY(QStringList playlistSongIds READ playlistSongIds NOTIFY playlistSongIdsChanged)

public:
    using QObject::QObject;

    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] bool isEmpty() const { return m_isEmpty; }
    [[nodiscard]] const QString &playlistId() const { return m_playlistId; }
    void setPlaylistId(const QString &id);
    [[nodiscard]] const QStringList &playlistSongIds() const { return m_playlistSongIds; }

Q_SIGNALS:
    void libraryChanged();
    void isEmptyChanged();
    void playlistIdChanged();
    void playlistSongIdsChanged();

private:
    void update();
    void loadPlaylist();

    QPointer<LibraryStore> m_library;
    bool m_isEmpty = true;
    QString m_playlistId;
    QStringList m_playlistSongIds;
    TaskHandle m_playlistLoad;
};
