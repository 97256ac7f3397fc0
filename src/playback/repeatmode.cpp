#include "repeatmode.h"

using namespace Qt::StringLiterals;

QString repeatModeName(RepeatMode mode)
{
    switch (mode) {
    case RepeatMode::Off:
        return u"off"_s;
    case RepeatMode::All:
        return u"all"_s;
    case RepeatMode::One:
        return u"one"_s;
    }
    Q_UNREACHABLE();
}

std::optional<RepeatMode> repeatModeFromName(QStringView name)
{
    for (const RepeatMode mode : {RepeatMode::Off, RepeatMode::All, RepeatMode::One}) {
        if (name == repeatModeName(mode))
            return mode;
    }
    return std::nullopt;
}

RepeatMode nextRepeatMode(RepeatMode mode)
{
    switch (mode) {
    case RepeatMode::Off:
        return RepeatMode::All;
    case RepeatMode::All:
        return RepeatMode::One;
    case RepeatMode::One:
        return RepeatMode::Off;
    }
    Q_UNREACHABLE();
}
