#pragma once

// The Home screen's rows: which of them show, and how a row's strip pages through its cards.

#include "albumlistmodel.h"

#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>

#include <optional>

class LibraryStore;

namespace StripPaging {
// The card at the strip's leading edge.
[[nodiscard]] int leadingIndex(double offsetX, double containerWidth, double stride, int count);
// The card a page left (-1) or right (+1) brings to the leading edge; none when nothing would move.
[[nodiscard]] std::optional<int> target(double offsetX, double containerWidth, double stride, int count, int direction);
[[nodiscard]] bool canScrollLeft(double offsetX);
[[nodiscard]] bool canScrollRight(double offsetX, double containerWidth, double contentWidth);
}

class HomeRow : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("library/librarystore.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY libraryChanged)
    Q_PROPERTY(QString listType READ listType WRITE setListType NOTIFY listTypeChanged)
    // The first cards of the list.
    Q_PROPERTY(AlbumListModel *albums READ albums CONSTANT)
    // "strip", "loading", "error", or "hidden": nothing of the row at all.
    Q_PROPERTY(QString shows READ shows NOTIFY showsChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY showsChanged)

public:
    static constexpr int cardLimit = 20;

    using QObject::QObject;
    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] const QString &listType() const { return m_listType; }
    void setListType(const QString &listType);
    [[nodiscard]] AlbumListModel *albums() { return &m_albums; }
    [[nodiscard]] QString shows() const;
    [[nodiscard]] QString errorMessage() const;

    Q_INVOKABLE void retry();
    // The leading card of a page left or right, or -1 when the strip stays.
    Q_INVOKABLE int pageTarget(double offsetX, double containerWidth, double stride, int direction) const;
    Q_INVOKABLE bool canScrollLeft(double offsetX) const { return StripPaging::canScrollLeft(offsetX); }
    Q_INVOKABLE bool canScrollRight(double offsetX, double containerWidth, double contentWidth) const
    {
        return StripPaging::canScrollRight(offsetX, containerWidth, contentWidth);
    }

Q_SIGNALS:
    void libraryChanged();
    void listTypeChanged();
    void showsChanged();

private:
    [[nodiscard]] std::optional<AlbumListType> type() const;
    void update();

    QPointer<LibraryStore> m_library;
    QString m_listType;
    AlbumListModel m_albums;
    QString m_shows;
    QString m_errorMessage;
};
