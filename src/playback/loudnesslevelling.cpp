#include "loudnesslevelling.h"

using namespace Qt::StringLiterals;

QString loudnessLevellingName(LoudnessLevelling levelling)
{
    switch (levelling) {
    case LoudnessLevelling::Off: return u"off"_s;
    case LoudnessLevelling::ByTrack: return u"track"_s;
    case LoudnessLevelling::ByAlbum: return u"album"_s;
    }
    return u"album"_s;
}

std::optional<LoudnessLevelling> loudnessLevellingFromName(const QString &name)
{
    for (const LoudnessLevelling levelling : {LoudnessLevelling::Off, LoudnessLevelling::ByTrack, LoudnessLevelling::ByAlbum}) {
        if (loudnessLevellingName(levelling) == name)
            return levelling;
    }
    return std::nullopt;
}
