#include "json.h"

#include <QVariant>

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
// Int fields do. 212.5 fails; so does anything beyond 64 bits. The parser keeps integers that fit in 64 bits
// as integers and everything else as a double, and a double at or past ±2^63 may stand for a number just
// outside the range, so only doubles strictly inside it are taken.
qint64 toInt(const QJsonValue &value)
{
    if (!value.isDouble())
        throw DecodeError{};
    const QVariant number = value.toVariant();
    if (number.typeId() == QMetaType::LongLong)
        return number.toLongLong();
    constexpr double limit = 9223372036854775808.0; // 2^63
    const double asDouble = value.toDouble();
    if (!std::isfinite(asDouble) || std::trunc(asDouble) != asDouble || std::abs(asDouble) >= limit)
        throw DecodeError{};
    return static_cast<qint64>(asDouble);
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
