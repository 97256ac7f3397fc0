#include "json.h"

#include <QVariant>

#include <cmath>
#include <limits>

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
// as integers and everything else as a double, except that a number a little below the range rounds to -2^63
// and is then kept as that integer. So the minimum itself is refused (no field of the server's holds it), and
// of the doubles only those strictly inside the range are taken.
qint64 toInt(const QJsonValue &value)
{
    if (!value.isDouble())
        throw DecodeError{};
    const QVariant number = value.toVariant();
    if (number.typeId() == QMetaType::LongLong) {
        if (number.toLongLong() == std::numeric_limits<qint64>::min())
            throw DecodeError{};
        return number.toLongLong();
    }
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
