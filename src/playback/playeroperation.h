#pragma once

// Operations change `queue` and `currentIndex` one step at a time. The derived `currentSong` and `upNext` are
// told of once, when the outermost operation ends, and only when they differ from before it began, so nobody
// sees the half-done state between two steps. Every entry point of PlayerController that may change either
// field opens one.

#include "playercontroller.h"

class PlayerController::Operation
{
public:
    explicit Operation(PlayerController &owner);
    ~Operation();
    Operation(const Operation &) = delete;
    Operation &operator=(const Operation &) = delete;

    // For an edit of the queue in place that certainly changes what comes next: the queue from before is let
    // go, since keeping it would force a copy of the whole queue.
    void queueEditedInPlace();
    // A song started from its beginning or a restored place. When it is the song that was current before,
    // nothing says "current song changed", so the jump of the position is told as a seek instead.
    void trackBegan() { m_trackBegan = true; }

private:
    PlayerController &m_owner;
    bool m_outermost;
    std::optional<Song> m_songBefore;
    // Shares the queue's data, so taking it costs nothing while the queue is only ever replaced.
    QList<Song> m_queueBefore;
    std::optional<qsizetype> m_indexBefore;
    bool m_editedInPlace = false;
    bool m_trackBegan = false;
};
