#include "playeroperation.h"

#include <algorithm>

namespace {
qsizetype tailStart(const QList<Song> &queue, std::optional<qsizetype> index)
{
    if (!index || *index < 0)
        return queue.size();
    return std::min(*index + 1, queue.size());
}

bool sameTail(const QList<Song> &before, std::optional<qsizetype> indexBefore, const QList<Song> &after,
              std::optional<qsizetype> indexAfter)
{
    const auto first = before.cbegin() + tailStart(before, indexBefore);
    const auto second = after.cbegin() + tailStart(after, indexAfter);
    if (before.cend() - first != after.cend() - second)
        return false;
    return first == second || std::equal(first, before.cend(), second);
}
}

PlayerController::Operation::Operation(PlayerController &owner)
    : m_owner(owner)
    , m_outermost(owner.m_operation == nullptr)
{
    if (!m_outermost)
        return;
    owner.m_operation = this;
    m_songBefore = owner.currentSong();
    m_queueBefore = owner.m_queue;
    m_indexBefore = owner.m_currentIndex;
}

PlayerController::Operation::~Operation()
{
    if (!m_outermost)
        return;
    m_owner.m_operation = nullptr;
    if (m_owner.currentSong() != m_songBefore)
        Q_EMIT m_owner.currentSongChanged();
    else if (m_trackBegan)
        Q_EMIT m_owner.seeked(m_owner.m_currentTime);
    if (m_editedInPlace || !sameTail(m_queueBefore, m_indexBefore, m_owner.m_queue, m_owner.m_currentIndex))
        Q_EMIT m_owner.upNextChanged();
}

void PlayerController::Operation::queueEditedInPlace()
{
    m_editedInPlace = true;
    m_queueBefore = {};
}
