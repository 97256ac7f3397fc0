#include "json.h"

#include <cmath>

namespace Json {

namespace {
bool isAbsent(const QJsonValue &value)
{
    return value.isUndefined() || value.isNull();
}

QString toString(const QJsonValue &value)
{
    if (!value.isString())
        throw DecodeError{};
    return value.toString();
}

// JSON has one number type; an integer field takes only numbers with no fractional part, as the server's
// Int fields do. 212.5 fails; so does anything beyond 64 bits.
qint64 toInt(const QJsonValue &value)
{
    if (!value.isDouble())
        throw DecodeError{};
    const double asDouble = value.toDouble();
    if (!std::isfinite(asDouble) || std::trunc(asDouble) != asDouble)
        throw DecodeError{};
    const qint64 asInt = value.toInteger();
    if (static_cast<double>(asInt) != asDouble)
        throw DecodeError{};
    return asInt;
}
}

QJsonObject asObject(const QJsonValue &value)
{
    if (!value.isObject())
        throw DecodeError{};
    return value.toObject();
}

QJsonObject requiredObject(const QJsonObject &object, QLatin1StringView key)
{
    return asObject(object.value(key));
}

QString requiredString(const QJsonObject &object, QLatin1StringView key)
{
    return toString(object.value(key));
}

std::optional<QString> optionalString(const QJsonObject &object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    if (isAbsent(value))
        return std::nullopt;
    return toString(value);
}

qint64 requiredInt(const QJsonObject &object, QLatin1StringView key)
{
    return toInt(object.value(key));
}

std::optional<qint64> optionalInt(const QJsonObject &object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    if (isAbsent(value))
        return std::nullopt;
    return toInt(value);
}

}
