#pragma once

// The settings' Downloads section: how much the downloads take, each collection's share, largest first, and the
// removals. Like the screens, it reads the store and keeps nothing of its own.

#include "downloadedcollections.h"

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

class DownloadStore;

class DownloadStorage : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("downloadstore.h")
    Q_PROPERTY(DownloadStore *store READ store WRITE setStore NOTIFY storeChanged)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY totalChanged)
    // The size of every download, or "None".
    Q_PROPERTY(QString usedText READ usedText NOTIFY totalChanged)
    // What "Remove All Downloads" asks before it frees that much.
    Q_PROPERTY(QString removeAllMessage READ removeAllMessage NOTIFY totalChanged)
    Q_PROPERTY(DownloadedCollectionsModel *collections READ collections CONSTANT)

public:
    using QObject::QObject;

    [[nodiscard]] DownloadStore *store() const;
    void setStore(DownloadStore *store);
    [[nodiscard]] bool isEmpty() const { return m_collections.rowCount() == 0; }
    [[nodiscard]] QString usedText() const;
    [[nodiscard]] QString removeAllMessage() const;
    [[nodiscard]] DownloadedCollectionsModel *collections() { return &m_collections; }

    Q_INVOKABLE void remove(const QString &key);
    Q_INVOKABLE void removeAll();

Q_SIGNALS:
    void storeChanged();
    void totalChanged();

private:
    void update();

    QPointer<DownloadStore> m_store;
    DownloadedCollectionsModel m_collections;
    qint64 m_totalBytes = 0;
};
