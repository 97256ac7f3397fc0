#pragma once

// Strict reading and writing of the server's JSON records: a required key that is missing or null fails, a key
// of the wrong type fails even when optional, numbers are never coerced, and absent stays apart from empty.

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

namespace Json {

struct DecodeError {
};

[[nodiscard]] QJsonObject asObject(const QJsonValue &value);
[[nodiscard]] QJsonObject requiredObject(const QJsonObject &object, QLatin1StringView key);

[[nodiscard]] QString requiredString(const QJsonObject &object, QLatin1StringView key);
[[nodiscard]] std::optional<QString> optionalString(const QJsonObject &object, QLatin1StringView key);
[[nodiscard]] qint64 requiredInt(const QJsonObject &object, QLatin1StringView key);
[[nodiscard]] std::optional<qint64> optionalInt(const QJsonObject &object, QLatin1StringView key);

template<typename T>
QList<T> decodeArray(const QJsonValue &value)
{
    if (!value.isArray())
        throw DecodeError{};
    const QJsonArray array = value.toArray();
    QList<T> result;
    result.reserve(array.size());
    for (const QJsonValue &element : array)
        result.append(T::fromJson(asObject(element)));
    return result;
}

template<typename T>
QList<T> requiredArray(const QJsonObject &object, QLatin1StringView key)
{
    return decodeArray<T>(object.value(key));
}

template<typename T>
std::optional<QList<T>> optionalArray(const QJsonObject &object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    if (value.isUndefined() || value.isNull())
        return std::nullopt;
    return decodeArray<T>(value);
}

template<typename T>
QJsonArray encodeArray(const QList<T> &values)
{
    QJsonArray array;
    for (const T &value : values)
        array.append(value.toJson());
    return array;
}

inline void putOptional(QJsonObject &object, QLatin1StringView key, const std::optional<QString> &value)
{
    if (value)
        object.insert(key, *value);
}

inline void putOptional(QJsonObject &object, QLatin1StringView key, const std::optional<qint64> &value)
{
    if (value)
        object.insert(key, *value);
}

template<typename T>
void putOptional(QJsonObject &object, QLatin1StringView key, const std::optional<QList<T>> &values)
{
    if (values)
        object.insert(key, encodeArray(*values));
}

}
