#include "sessionsnapshot.h"

#include "server/json.h"

#include <QJsonDocument>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {
bool requiredBool(const QJsonObject &object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    if (!value.isBool())
        throw Json::DecodeError{};
    return value.toBool();
}

double requiredNumber(const QJsonObject &object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    if (!value.isDouble() || !std::isfinite(value.toDouble()))
        throw Json::DecodeError{};
    return value.toDouble();
}
}

QJsonObject playbackSourceToJson(const PlaybackSource &source)
{
    const QJsonObject inner{{"id"_L1, source.id}, {"name"_L1, source.name}};
    const auto key = source.kind == PlaybackSource::Kind::Album ? "album"_L1 : "playlist"_L1;
    return QJsonObject{{key, inner}};
}

PlaybackSource playbackSourceFromJson(const QJsonObject &object)
{
    // Exactly one key: an object naming both an album and a playlist is no source at all.
    if (object.size() != 1)
        throw Json::DecodeError{};
    const QString key = object.begin().key();
    PlaybackSource source;
    if (key == "album"_L1)
        source.kind = PlaybackSource::Kind::Album;
    else if (key == "playlist"_L1)
        source.kind = PlaybackSource::Kind::Playlist;
    else
        throw Json::DecodeError{};
    const QJsonObject inner = Json::asObject(object.begin().value());
    source.id = Json::requiredString(inner, "id"_L1);
    source.name = Json::requiredString(inner, "name"_L1);
    return source;
}

SessionSnapshot SessionSnapshot::fromJson(const QJsonObject &o)
{
    SessionSnapshot snapshot;
    snapshot.serverKey = Json::requiredString(o, "serverKey"_L1);
    snapshot.queue = Json::requiredArray<Song>(o, "queue"_L1);
    snapshot.currentIndex = Json::requiredInt(o, "currentIndex"_L1);
    snapshot.currentTime = requiredNumber(o, "currentTime"_L1);
    snapshot.isShuffling = requiredBool(o, "isShuffling"_L1);
    snapshot.unshuffledQueue = Json::optionalArray<Song>(o, "unshuffledQueue"_L1);
    const auto mode = repeatModeFromName(Json::requiredString(o, "repeatMode"_L1));
    if (!mode)
        throw Json::DecodeError{};
    snapshot.repeatMode = *mode;
    const QJsonValue source = o.value("source"_L1);
    if (!source.isUndefined() && !source.isNull())
        snapshot.source = playbackSourceFromJson(Json::asObject(source));
    return snapshot;
}

QJsonObject SessionSnapshot::toJson() const
{
    QJsonObject o{
        {"serverKey"_L1, serverKey},
        {"queue"_L1, Json::encodeArray(queue)},
        {"currentIndex"_L1, currentIndex},
        {"currentTime"_L1, currentTime},
        {"isShuffling"_L1, isShuffling},
        {"repeatMode"_L1, repeatModeName(repeatMode)},
    };
    Json::putOptional(o, "unshuffledQueue"_L1, unshuffledQueue);
    if (source)
        o.insert("source"_L1, playbackSourceToJson(*source));
    return o;
}

std::optional<SessionSnapshot> SessionSnapshot::decode(const QByteArray &bytes)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    try {
        return fromJson(document.object());
    } catch (const Json::DecodeError &) {
        return std::nullopt;
    }
}

QByteArray SessionSnapshot::encode() const
{
    return QJsonDocument(toJson()).toJson(QJsonDocument::Compact);
}
