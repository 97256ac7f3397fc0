#pragma once

// A destination whose own screen is still to come: it shows its title, and the full-page fault when the server
// can't be used and nothing of the library has been seen yet.

#include <QObject>
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

public:
    using QObject::QObject;

    [[nodiscard]] LibraryStore *library() const;
    void setLibrary(LibraryStore *library);
    [[nodiscard]] bool isEmpty() const { return m_isEmpty; }

Q_SIGNALS:
    void libraryChanged();
    void isEmptyChanged();

private:
    void update();

    QPointer<LibraryStore> m_library;
    bool m_isEmpty = true;
};
