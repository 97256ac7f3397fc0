#pragma once

// One artist: the heart, Play and Shuffle, and the artist's albums newest first. Playing an artist means
// collecting every album's songs first; while that runs Play and Shuffle wait, so a second press starts nothing,
// and choosing another artist abandons the collection without a sound.

#include "albumlistmodel.h"
#include "common/task.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

class LibraryStore;
class PlayerController;

class ArtistDetailScreen : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_MOC_INCLUDE("library/librarystore.h")
    Q_MOC_INCLUDE("playback/playercontroller.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY inputsChanged)
    Q_PROPERTY(PlayerController *player MEMBER m_player NOTIFY inputsChanged)
    Q_PROPERTY(QJsonObject artist READ artistRecord WRITE setArtist NOTIFY artistChanged)
    Q_PROPERTY(QString name READ name NOTIFY artistChanged)
    Q_PROPERTY(AlbumListModel *albums READ albums CONSTANT)
    // "albums", "loading", or "message" with the texts below.
    Q_PROPERTY(QString state READ state NOTIFY loadChanged)
    Q_PROPERTY(QString messageTitle READ messageTitle NOTIFY loadChanged)
    Q_PROPERTY(QString messageSymbol READ messageSymbol NOTIFY loadChanged)
    Q_PROPERTY(QString messageText READ messageText NOTIFY loadChanged)
    Q_PROPERTY(bool isAssembling READ isAssembling NOTIFY assemblingChanged)
    // Play and Shuffle: not while collecting, nor without albums.
    Q_PROPERTY(bool canPlay READ canPlay NOTIFY assemblingChanged)
    Q_PROPERTY(bool isLiked READ isLiked NOTIFY likedChanged)

public:
    explicit ArtistDetailScreen(QObject *parent = nullptr);

    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] QJsonObject artistRecord() const { return m_artist.toJson(); }
    void setArtist(const QJsonObject &artist);
    [[nodiscard]] const QString &name() const { return m_artist.name; }
    [[nodiscard]] AlbumListModel *albums() { return &m_albums; }
    [[nodiscard]] QString state() const;
    [[nodiscard]] QString messageTitle() const;
    [[nodiscard]] QString messageSymbol() const;
    [[nodiscard]] QString messageText() const;
    [[nodiscard]] bool isAssembling() const { return m_isAssembling; }
    [[nodiscard]] bool canPlay() const { return !m_isAssembling && m_loaded && !m_albums.items().isEmpty(); }
    [[nodiscard]] bool isLiked() const;

    void classBegin() override { }
    void componentComplete() override;

    Q_INVOKABLE void playDiscography(bool shuffled);
    Q_INVOKABLE void toggleLike();

Q_SIGNALS:
    void inputsChanged();
    void artistChanged();
    void loadChanged();
    void assemblingChanged();
    void likedChanged();
    // Another artist's albums are on their way.
    void loadStarted();

private:
    void load();
    void setAssembling(bool value);

    QPointer<LibraryStore> m_library;
    QPointer<PlayerController> m_player;
    Artist m_artist;
    AlbumListModel m_albums;
    bool m_loaded = false;
    QString m_errorMessage;
    bool m_isAssembling = false;
    bool m_complete = false;
    TaskHandle m_load;
    TaskHandle m_assembly;
};
