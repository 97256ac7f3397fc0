#pragma once

// What the two small menus that many screens share say and do: the "Like"/"Unlike" item of a song, and the
// "Add to Playlist" submenu of some songs or of an album. Records come from QML in their JSON form.

#include <QCoroTask>
#include <QJsonArray>
#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

class LibraryStore;

class LikeAction : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("librarystore.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY libraryChanged)
    Q_PROPERTY(QJsonObject song READ song WRITE setSong NOTIFY songChanged)
    Q_PROPERTY(QString text READ text NOTIFY textChanged)

public:
    using QObject::QObject;

    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] const QJsonObject &song() const { return m_song; }
    void setSong(const QJsonObject &song);
    // "Unlike" for a liked song, else "Like".
    [[nodiscard]] QString text() const;
    Q_INVOKABLE void toggle();

Q_SIGNALS:
    void libraryChanged();
    void songChanged();
    void textChanged();

private:
    QPointer<LibraryStore> m_library;
    QJsonObject m_song;
};

class AddToPlaylistAction : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("librarystore.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY libraryChanged)
    // One of the two: the songs to add, or the album whose songs are added.
    Q_PROPERTY(QJsonArray songs MEMBER m_songs NOTIFY contentChanged)
    Q_PROPERTY(QJsonObject album MEMBER m_album NOTIFY contentChanged)
    // The store's playlists in order, each {"id", "name"}.
    Q_PROPERTY(QVariantList playlists READ playlists NOTIFY playlistsChanged)

public:
    using QObject::QObject;

    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] QVariantList playlists() const;
    // Runs on its own: no notice of success, and a failure reaches the banner.
    Q_INVOKABLE void add(const QString &playlistId);
    // Makes a playlist of the trimmed name and adds to it; a name of blanks does nothing.
    Q_INVOKABLE void addToNewPlaylist(const QString &name);

Q_SIGNALS:
    void libraryChanged();
    void contentChanged();
    void playlistsChanged();

private:
    QCoro::Task<> addToNew(QString name);

    QPointer<LibraryStore> m_library;
    QJsonArray m_songs;
    QJsonObject m_album;
};
