#pragma once

// A grid of albums: one paged album list of the library, asked for page by page as its last cell appears, or the
// liked albums, which come whole. With no album yet it says why: loading, a failure, or nothing there.

#include "albumlistmodel.h"

#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

#include <optional>

class LibraryStore;

class AlbumGridScreen : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_MOC_INCLUDE("library/librarystore.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY libraryChanged)
    // An album list's name ("newest", "frequent", ...), or "liked" for the liked albums.
    Q_PROPERTY(QString listType READ listType WRITE setListType NOTIFY listTypeChanged)
    Q_PROPERTY(AlbumListModel *albums READ albums CONSTANT)
    // "grid", "loading", or "message" with the texts below.
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)
    Q_PROPERTY(QString messageTitle READ messageTitle NOTIFY stateChanged)
    Q_PROPERTY(QString messageSymbol READ messageSymbol NOTIFY stateChanged)
    Q_PROPERTY(QString messageText READ messageText NOTIFY stateChanged)

public:
    explicit AlbumGridScreen(QObject *parent = nullptr);

    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] const QString &listType() const { return m_listType; }
    void setListType(const QString &listType);
    [[nodiscard]] AlbumListModel *albums() { return &m_albums; }
    [[nodiscard]] QString state() const;
    [[nodiscard]] QString messageTitle() const;
    [[nodiscard]] QString messageSymbol() const;
    [[nodiscard]] QString messageText() const;

    void classBegin() override { }
    void componentComplete() override;
    // A cell came on screen; the last one asks for the next page.
    Q_INVOKABLE void cellShown(int index);

Q_SIGNALS:
    void libraryChanged();
    void listTypeChanged();
    void stateChanged();

private:
    [[nodiscard]] bool isLiked() const;
    [[nodiscard]] std::optional<AlbumListType> type() const;
    void start();
    void update();

    QPointer<LibraryStore> m_library;
    QString m_listType;
    AlbumListModel m_albums;
    bool m_complete = false;
    QString m_state;
};
