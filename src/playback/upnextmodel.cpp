#include "upnextmodel.h"

#include "playercontroller.h"
#include "server/format.h"

QVariant UpNextModel::data(const QModelIndex &index, int role) const
{
    const Song *song = itemAt(index);
    if (!song)
        return {};
    switch (role) {
    case TitleRole: return song->title;
    case ArtistRole: return song->artistName();
    case DurationRole: return Format::paddedDuration(song->duration);
    default: return {};
    }
}

QHash<int, QByteArray> UpNextModel::roleNames() const
{
    return {{TitleRole, "title"}, {ArtistRole, "artist"}, {DurationRole, "durationText"}};
}

PlayerController *UpNextModel::player() const
{
    return m_player;
}

void UpNextModel::setPlayer(PlayerController *player)
{
    if (m_player == player)
        return;
    if (m_player)
        m_player->disconnect(this);
    m_player = player;
    if (player)
        connect(player, &PlayerController::upNextChanged, this, &UpNextModel::update);
    update();
    Q_EMIT playerChanged();
}

void UpNextModel::update()
{
    const int oldCount = count();
    setItems(m_player ? m_player->upNext() : QList<Song>());
    if (count() != oldCount)
        Q_EMIT countChanged();
}

void UpNextModel::playNow(int row)
{
    if (m_player && row >= 0 && row < count())
        m_player->jumpToUpcoming(row);
}

void UpNextModel::remove(int row)
{
    if (m_player && row >= 0 && row < count())
        m_player->removeUpcoming({row});
}

void UpNextModel::move(int from, int to)
{
    if (!m_player || from < 0 || from >= count() || to < 0 || to >= count() || from == to)
        return;
    // The player's destination is a gap in the list as it stands: below the row moved onto, when moving down.
    m_player->moveUpcoming({from}, to > from ? to + 1 : to);
}

void UpNextModel::clear()
{
    if (m_player)
        m_player->clearUpNext();
}
