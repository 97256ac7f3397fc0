#pragma once

// The whole content of "session.json": a window of the queue around the current song, the place in it, and
// the modes in force, tagged with the account it belongs to.

#include "playbacksource.h"
#include "repeatmode.h"
#include "server/records.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>

#include <optional>

struct SessionSnapshot {
    QString serverKey;
    QList<Song> queue;
    qint64 currentIndex = 0;
    double currentTime = 0;
    bool isShuffling = false;
    std::optional<QList<Song>> unshuffledQueue;
    RepeatMode repeatMode = RepeatMode::Off;
    std::optional<PlaybackSource> source;

    // At most this many songs are kept on each side of the current one.
    static constexpr qsizetype windowReach = 500;

    // Throws Json::DecodeError for anything but a well-formed snapshot; only optional keys may be missing.
    static SessionSnapshot fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
    // Strict decoding of the file's bytes; none for anything unreadable.
    [[nodiscard]] static std::optional<SessionSnapshot> decode(const QByteArray &bytes);
    [[nodiscard]] QByteArray encode() const;

    bool operator==(const SessionSnapshot &) const = default;
};

// The JSON form of a source: one key, "album" or "playlist", holding {"id", "name"}.
[[nodiscard]] QJsonObject playbackSourceToJson(const PlaybackSource &source);
[[nodiscard]] PlaybackSource playbackSourceFromJson(const QJsonObject &object);
