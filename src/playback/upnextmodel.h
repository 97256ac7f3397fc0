#pragma once

// The songs after the current one, as the queue popover lists them. A row's identity is its place, since a song
// may stand twice; a change of the queue updates, inserts and removes rows around what stayed the same.

#include <QAbstractListModel>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

#include "server/records.h"

class PlayerController;

class UpNextModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("playback/playercontroller.h")
    Q_PROPERTY(PlayerController *player READ player WRITE setPlayer NOTIFY playerChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role { TitleRole = Qt::UserRole, ArtistRole, DurationRole };

    using QAbstractListModel::QAbstractListModel;
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] PlayerController *player() const;
    void setPlayer(PlayerController *player);
    [[nodiscard]] int count() const { return int(m_songs.size()); }

    Q_INVOKABLE void playNow(int row);
    Q_INVOKABLE void remove(int row);
    // Puts the row at `to`, counted in the list as it is now.
    Q_INVOKABLE void move(int from, int to);
    Q_INVOKABLE void clear();

Q_SIGNALS:
    void playerChanged();
    void countChanged();

private:
    void update();

    QPointer<PlayerController> m_player;
    QList<Song> m_songs;
};
