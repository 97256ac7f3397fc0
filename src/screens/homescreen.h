#pragma once

// The Home screen: the featured carousel of five random albums of its own, and four rows of the library's lists.
// Home fills only what is empty, so coming back to it reloads nothing.

#include "albumlistmodel.h"
#include "common/task.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QTimer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

class LibraryStore;

class HomeScreen : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_MOC_INCLUDE("library/librarystore.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY libraryChanged)
    // The rows in order, each {"listType", "title"}.
    Q_PROPERTY(QVariantList rows READ rows CONSTANT)
    // Nothing of the library has been seen yet: the full-page fault may stand in.
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY isEmptyChanged)

public:
    using QObject::QObject;
    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] static QVariantList rows();
    [[nodiscard]] bool isEmpty() const { return m_isEmpty; }
    void classBegin() override { }
    void componentComplete() override;

Q_SIGNALS:
    void libraryChanged();
    void isEmptyChanged();

private:
    // Fills the rows that are empty; again after each refresh of the library.
    void fill();
    void updateEmpty();

    QPointer<LibraryStore> m_library;
    bool m_complete = false;
    bool m_isEmpty = true;
};

// Featured albums: its own random five, one shown at a time, stepping on by itself every 8 seconds while Home is
// on screen and the pointer is not on the card. The rhythm restarts only when the number of albums or being on
// screen changes; hovering pauses it, and paging by hand leaves it alone.
class FeaturedCarousel : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_MOC_INCLUDE("library/librarystore.h")
    Q_PROPERTY(LibraryStore *library MEMBER m_library NOTIFY libraryChanged)
    Q_PROPERTY(bool isOnScreen READ isOnScreen WRITE setOnScreen NOTIFY isOnScreenChanged)
    Q_PROPERTY(bool isHovering MEMBER m_isHovering NOTIFY isHoveringChanged)
    Q_PROPERTY(bool hasLoaded READ hasLoaded NOTIFY albumsChanged)
    Q_PROPERTY(int count READ count NOTIFY albumsChanged)
    Q_PROPERTY(int index READ index WRITE setIndex NOTIFY indexChanged)
    // The shown album's record; empty when there is none.
    Q_PROPERTY(QJsonObject current READ current NOTIFY indexChanged)
    // "2007", "Artist · 2007" and the like are composed from these.
    Q_PROPERTY(QString currentYear READ currentYear NOTIFY indexChanged)

public:
    static constexpr int featureCount = 5;
    static constexpr int advanceMs = 8000;

    explicit FeaturedCarousel(QObject *parent = nullptr);
    void classBegin() override { }
    void componentComplete() override;

    [[nodiscard]] bool isOnScreen() const { return m_isOnScreen; }
    void setOnScreen(bool onScreen);
    [[nodiscard]] bool hasLoaded() const { return m_hasLoaded; }
    [[nodiscard]] int count() const { return int(m_albums.size()); }
    [[nodiscard]] int index() const { return m_index; }
    void setIndex(int index);
    [[nodiscard]] QJsonObject current() const;
    [[nodiscard]] QString currentYear() const;
    void setAlbums(QList<Album> albums);

    // One album on, forwards for a positive step, wrapping round.
    Q_INVOKABLE void step(int direction);

Q_SIGNALS:
    void libraryChanged();
    void isOnScreenChanged();
    void isHoveringChanged();
    void albumsChanged();
    void indexChanged();

private:
    void load();
    // Restarts the rhythm when its key, the album count and being on screen, has changed.
    void keyChanged();
    void advance();

    QPointer<LibraryStore> m_library;
    QList<Album> m_albums;
    int m_index = 0;
    bool m_hasLoaded = false;
    bool m_isOnScreen = false;
    bool m_isHovering = false;
    std::pair<int, bool> m_advanceKey{-1, false};
    QTimer m_advance;
    TaskHandle m_load;
};
