#include "format.h"

#include <cmath>

namespace Format {

namespace {
const QString unusable = QStringLiteral("--:--");

QString clock(qint64 total, bool padMinutes)
{
    if (total < 0)
        return unusable;
    const qint64 hours = total / 3600;
    const qint64 minutes = total / 60 % 60;
    const qint64 seconds = total % 60;
    if (hours > 0)
        return QString::asprintf("%lld:%02lld:%02lld", hours, minutes, seconds);
    return QString::asprintf(padMinutes ? "%02lld:%02lld" : "%lld:%02lld", minutes, seconds);
}

QString rounded(double seconds, bool padMinutes)
{
    // Beyond this a length in seconds is nonsense, and the conversion to an integer would overflow.
    if (!std::isfinite(seconds) || std::abs(seconds) > 1e15)
        return unusable;
    return clock(static_cast<qint64>(std::round(seconds)), padMinutes);
}
}

QString time(double seconds)
{
    return rounded(seconds, false);
}

QString paddedTime(double seconds)
{
    return rounded(seconds, true);
}

QString paddedDuration(std::optional<qint64> seconds)
{
    if (!seconds)
        return unusable;
    return clock(*seconds, true);
}

}
