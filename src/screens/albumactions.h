#pragma once

// What a press on an album does where only its record is at hand (a cell of a grid or a strip): play it from the
// top or shuffled, put it next or last, like it, or drag it. Records come from QML in their JSON form.

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

class LibraryStore;
class PlayerController;

class AlbumActions : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("library/librarystore.h")
    Q_MOC_INCLUDE("playback/playercontroller.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY libraryChanged)
    Q_PROPERTY(PlayerController *player MEMBER m_player NOTIFY playerChanged)
    // Grows with each change of the liked albums, for bindings that read isLiked().
    Q_PROPERTY(int likesRevision READ likesRevision NOTIFY likesChanged)
    Q_PROPERTY(QString dragType READ dragType CONSTANT)

public:
    using QObject::QObject;

    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] int likesRevision() const { return m_likesRevision; }
    [[nodiscard]] static QString dragType();

    Q_INVOKABLE bool isLiked(const QString &albumId) const;
    // "Like Album" or "Unlike Album".
    Q_INVOKABLE QString likeText(const QString &albumId) const;
    Q_INVOKABLE void play(const QJsonObject &album);
    Q_INVOKABLE void shuffle(const QJsonObject &album);
    Q_INVOKABLE void playNext(const QJsonObject &album);
    Q_INVOKABLE void playLast(const QJsonObject &album);
    Q_INVOKABLE void toggleLike(const QJsonObject &album);
    // What a drag of the album carries under dragType.
    Q_INVOKABLE QString dragData(const QJsonObject &album) const;

Q_SIGNALS:
    void libraryChanged();
    void playerChanged();
    void likesChanged();

private:
    QPointer<LibraryStore> m_library;
    QPointer<PlayerController> m_player;
    int m_likesRevision = 0;
};
