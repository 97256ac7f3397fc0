#include "upnextmodel.h"

#include "playercontroller.h"
#include "server/format.h"

int UpNextModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant UpNextModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Song &song = m_songs.at(index.row());
    switch (role) {
    case TitleRole: return song.title;
    case ArtistRole: return song.artistName();
    case DurationRole: return Format::paddedDuration(song.duration);
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
    const QList<Song> songs = m_player ? m_player->upNext() : QList<Song>();
    const qsizetype oldCount = m_songs.size();
    // What stayed the same at both ends; only the middle changes.
    qsizetype prefix = 0;
    while (prefix < oldCount && prefix < songs.size() && m_songs.at(prefix) == songs.at(prefix))
        ++prefix;
    qsizetype suffix = 0;
    while (suffix < oldCount - prefix && suffix < songs.size() - prefix
           && m_songs.at(oldCount - 1 - suffix) == songs.at(songs.size() - 1 - suffix))
        ++suffix;
    const qsizetype oldMiddle = oldCount - prefix - suffix;
    const qsizetype newMiddle = songs.size() - prefix - suffix;
    const qsizetype replaced = std::min(oldMiddle, newMiddle);
    for (qsizetype i = prefix; i < prefix + replaced; ++i)
        m_songs[i] = songs.at(i);
    if (replaced > 0)
        Q_EMIT dataChanged(index(int(prefix)), index(int(prefix + replaced - 1)));
    if (oldMiddle > newMiddle) {
        beginRemoveRows({}, int(prefix + replaced), int(prefix + oldMiddle - 1));
        m_songs.remove(prefix + replaced, oldMiddle - newMiddle);
        endRemoveRows();
    } else if (newMiddle > oldMiddle) {
        beginInsertRows({}, int(prefix + replaced), int(prefix + newMiddle - 1));
        for (qsizetype i = prefix + replaced; i < prefix + newMiddle; ++i)
            m_songs.insert(i, songs.at(i));
        endInsertRows();
    }
    if (oldCount != m_songs.size())
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
