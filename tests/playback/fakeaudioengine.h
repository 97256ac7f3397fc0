#pragma once

// An audio engine that plays nothing: it keeps the list of items as a real one would, refuses what a real one
// refuses, and records every call in order ("insert b", "remove c", "advance", "play", "seek 0", ...).
// Tests end songs and report readiness by hand.

#include "playback/audioengine.h"

#include <QStringList>

#include <algorithm>

class FakeAudioEngine : public AudioEngine
{
public:
    // How a song's natural end looks: mpv moves to the waiting item by itself before it reports the end; an
    // engine that waits leaves the advance to the controller.
    enum class EndStyle { EngineMovesOn, EngineWaits };

    // The most items the engine takes; 1 makes it refuse every preload.
    int capacity = 2;
    std::optional<double> duration;

    [[nodiscard]] QList<EngineItemId> items() const override
    {
        QList<EngineItemId> ids;
        for (const Entry &entry : m_entries)
            ids.append(entry.id);
        return ids;
    }

    std::optional<EngineItemId> insert(const PlayerItem &item, std::optional<EngineItemId> after) override
    {
        m_calls.append(QStringLiteral("insert ") + item.song.id);
        const bool afterLast = after ? !m_entries.isEmpty() && m_entries.last().id == *after : m_entries.isEmpty();
        if (!afterLast || m_entries.size() >= capacity)
            return std::nullopt;
        m_entries.append(Entry{.id = ++m_lastId, .item = item});
        return m_lastId;
    }

    void remove(EngineItemId item) override
    {
        m_calls.append(QStringLiteral("remove ") + songIdOf(item));
        m_entries.removeIf([item](const Entry &entry) { return entry.id == item; });
    }

    void removeAll() override
    {
        m_calls.append(QStringLiteral("removeAll"));
        m_entries.clear();
    }

    void advance() override
    {
        m_calls.append(QStringLiteral("advance"));
        if (m_entries.size() > 1)
            m_entries.removeFirst();
    }

    void play() override { m_calls.append(QStringLiteral("play")); }
    void pause() override { m_calls.append(QStringLiteral("pause")); }
    void seek(double seconds) override { m_calls.append(QStringLiteral("seek %1").arg(seconds)); }
    void setVolume(float volume) override { m_calls.append(QStringLiteral("volume %1").arg(volume)); }
    [[nodiscard]] std::optional<double> currentDuration() const override { return duration; }

    // The songs of the items, in the engine's order.
    [[nodiscard]] QStringList itemSongIds() const
    {
        QStringList ids;
        for (const Entry &entry : m_entries)
            ids.append(entry.item.song.id);
        return ids;
    }

    [[nodiscard]] const QStringList &calls() const { return m_calls; }
    void clearCalls() { m_calls.clear(); }

    // The current item plays to its end.
    void finishCurrent(EndStyle style)
    {
        const std::optional<EngineItemId> ended = currentItem();
        if (!ended)
            return;
        if (style == EndStyle::EngineMovesOn)
            m_entries.removeFirst();
        Q_EMIT itemEnded(*ended);
    }

private:
    struct Entry {
        EngineItemId id;
        PlayerItem item;
    };

    [[nodiscard]] QString songIdOf(EngineItemId item) const
    {
        const auto it = std::ranges::find(m_entries, item, &Entry::id);
        return it == m_entries.end() ? QStringLiteral("?") : it->item.song.id;
    }

    QList<Entry> m_entries;
    QStringList m_calls;
    EngineItemId m_lastId = 0;
};
