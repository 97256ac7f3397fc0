#pragma once

// What PlayerController needs from an audio back end: a list of at most two items (the song playing and the
// one waiting behind it, so that songs follow without a gap), transport, and notices that name the item they
// are about. Queue rules live in the controller; a back end only plays what it is handed.

#include "loudnesslevelling.h"
#include "server/records.h"

#include <QList>
#include <QObject>
#include <QUrl>

#include <optional>

// Names one item for as long as the engine holds it, and is never reused for another. Opaque to the
// controller; a back end may use its own handle here (mpv's playlist_entry_id).
using EngineItemId = qint64;

// A song made playable: a local file or a signed stream URL.
struct PlayerItem {
    Song song;
    QUrl url;

    bool operator==(const PlayerItem &) const = default;
};

// One place the sound can go, as the back end names it ("name") and as a person would ("description").
struct OutputDevice {
    QString name;
    QString description;

    bool operator==(const OutputDevice &) const = default;
};

class AudioEngine : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // The items in play order; the first is the current one. Never more than two.
    [[nodiscard]] virtual QList<EngineItemId> items() const = 0;

    // Puts `item` right behind `after`, or into the empty list when `after` is none, and answers its id.
    // Answers none when the engine refuses: the list would exceed two items, or `after` is not its last item.
    // The first item of a list starts playing or waits paused, as play() and pause() last said.
    virtual std::optional<EngineItemId> insert(const PlayerItem &item, std::optional<EngineItemId> after) = 0;
    virtual void remove(EngineItemId item) = 0;
    virtual void removeAll() = 0;
    // Drops the current item and makes the second one current. Nothing happens without a second item.
    virtual void advance() = 0;

    virtual void play() = 0;
    virtual void pause() = 0;
    // Exact: no tolerance either side, in seconds from the start of the current item.
    virtual void seek(double seconds) = 0;
    // 0.0 to 1.0, as the user sees it; the back end maps it onto its own curve.
    virtual void setVolume(float volume) = 0;
    // Takes effect at once, the song playing included. A back end that cannot level ignores it.
    virtual void setLoudnessLevelling(LoudnessLevelling levelling) { Q_UNUSED(levelling); }

    // The current item's length in seconds, once the engine knows it.
    [[nodiscard]] virtual std::optional<double> currentDuration() const = 0;

    // The outputs the back end can play to and the one chosen; a back end without a choice offers none.
    [[nodiscard]] virtual QList<OutputDevice> outputDevices() const { return {}; }
    [[nodiscard]] virtual QString outputDevice() const { return {}; }
    virtual void setOutputDevice(const QString &name) { Q_UNUSED(name); }

    [[nodiscard]] std::optional<EngineItemId> currentItem() const
    {
        const QList<EngineItemId> list = items();
        if (list.isEmpty())
            return std::nullopt;
        return list.first();
    }

Q_SIGNALS:
    // Emitted later, never from inside a call above, on the main thread.
    void itemReady(EngineItemId item);
    // The item played to its end by itself. The engine may already have moved on to the second item and
    // dropped this one; a removed or skipped item never ends.
    void itemEnded(EngineItemId item);
    // The position of the current item, about every half second while it plays.
    void positionTicked(double seconds);
    // currentDuration() changed: the current item's length became known, or the item changed.
    void durationChanged();
    void outputDevicesChanged();
};
