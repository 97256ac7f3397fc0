#pragma once

// The download controls as QML shows them: the entries that a screen's "⋯" menu and context menu take for an
// album or a playlist, and the badge beside its title. Both redraw from the store alone.

#include "downloadcontrols.h"

#include <QAbstractListModel>
#include <QJsonObject>
#include <QPointer>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

class DownloadStore;

class DownloadMenuEntries : public QAbstractListModel
{
    Q_OBJECT
    QML_ANONYMOUS
    Q_MOC_INCLUDE("downloadstore.h")
    Q_PROPERTY(DownloadStore *store READ store WRITE setStore NOTIFY storeChanged)

public:
    enum Role { TextRole = Qt::UserRole, EnabledRole, DestructiveRole };

    using QAbstractListModel::QAbstractListModel;
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] DownloadStore *store() const;
    void setStore(DownloadStore *store);
    Q_INVOKABLE void trigger(int row);

Q_SIGNALS:
    void storeChanged();

protected:
    [[nodiscard]] virtual QString key() const = 0;
    [[nodiscard]] virtual QList<DownloadMenuEntry> entries(const DownloadStore &store) const = 0;
    virtual void download(DownloadStore &store) = 0;
    void update();

private:
    QPointer<DownloadStore> m_store;
    QList<DownloadMenuEntry> m_entries;
};

class AlbumDownloadEntries : public DownloadMenuEntries
{
    Q_OBJECT
    QML_ELEMENT
    // The album's record.
    Q_PROPERTY(QJsonObject album READ album WRITE setAlbum NOTIFY albumChanged)

public:
    using DownloadMenuEntries::DownloadMenuEntries;
    [[nodiscard]] const QJsonObject &album() const { return m_album; }
    void setAlbum(const QJsonObject &album);

Q_SIGNALS:
    void albumChanged();

protected:
    [[nodiscard]] QString key() const override;
    [[nodiscard]] QList<DownloadMenuEntry> entries(const DownloadStore &store) const override;
    void download(DownloadStore &store) override;

private:
    QJsonObject m_album;
};

class PlaylistDownloadEntries : public DownloadMenuEntries
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString playlistId READ playlistId WRITE setPlaylistId NOTIFY playlistChanged)
    Q_PROPERTY(QString name MEMBER m_name NOTIFY playlistChanged)
    // The playlist's songs as the server lists them now.
    Q_PROPERTY(QStringList songIds READ songIds WRITE setSongIds NOTIFY playlistChanged)

public:
    explicit PlaylistDownloadEntries(QObject *parent = nullptr);
    [[nodiscard]] const QString &playlistId() const { return m_playlistId; }
    void setPlaylistId(const QString &id);
    [[nodiscard]] const QStringList &songIds() const { return m_songIds; }
    void setSongIds(const QStringList &ids);

Q_SIGNALS:
    void playlistChanged();

protected:
    [[nodiscard]] QString key() const override;
    [[nodiscard]] QList<DownloadMenuEntry> entries(const DownloadStore &store) const override;
    void download(DownloadStore &store) override;

private:
    QString m_playlistId;
    QString m_name;
    QStringList m_songIds;
};

class DownloadBadgeState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("downloadstore.h")
    Q_PROPERTY(DownloadStore *store READ store WRITE setStore NOTIFY inputChanged)
    // "album:<id>" or "playlist:<id>".
    Q_PROPERTY(QString key MEMBER m_key NOTIFY inputChanged)
    // A playlist's songs as the server lists them now; none for an album.
    Q_PROPERTY(QStringList songIds MEMBER m_songIds NOTIFY inputChanged)
    Q_PROPERTY(Kind kind READ kind NOTIFY badgeChanged)
    Q_PROPERTY(double value READ value NOTIFY badgeChanged)
    Q_PROPERTY(QString symbol READ symbol NOTIFY badgeChanged)
    Q_PROPERTY(QString toolTip READ toolTip NOTIFY badgeChanged)

public:
    enum class Kind { None, Failed, Progress, Partial, Downloaded };
    Q_ENUM(Kind)

    explicit DownloadBadgeState(QObject *parent = nullptr);
    [[nodiscard]] DownloadStore *store() const;
    void setStore(DownloadStore *store);
    [[nodiscard]] Kind kind() const { return Kind(m_badge.kind); }
    [[nodiscard]] double value() const { return m_badge.value; }
    [[nodiscard]] const QString &symbol() const { return m_badge.symbol; }
    [[nodiscard]] const QString &toolTip() const { return m_badge.toolTip; }

Q_SIGNALS:
    void inputChanged();
    void badgeChanged();

private:
    void update();

    QPointer<DownloadStore> m_store;
    QString m_key;
    QStringList m_songIds;
    DownloadBadge m_badge;
};
