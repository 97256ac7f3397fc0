#pragma once

// The songs after the current one, as the queue popover lists them. A row's identity is its place, since a song
// may stand twice; a change of the queue updates, inserts and removes rows around what stayed the same.

#include "common/positionallist.h"
#include "server/records.h"

#include <QPointer>
#include <QtQml/qqmlregistration.h>

class PlayerController;

class UpNextModel : public PositionalListModel<Song>
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("playback/playercontroller.h")
    Q_PROPERTY(PlayerController *player READ player WRITE setPlayer NOTIFY playerChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role { TitleRole = Qt::UserRole, ArtistRole, DurationRole };

    using PositionalListModel::PositionalListModel;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] PlayerController *player() const;
    void setPlayer(PlayerController *player);
    [[nodiscard]] int count() const { return rowCount(); }

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
};
