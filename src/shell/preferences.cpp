#include "preferences.h"

#include <QSettings>

using namespace Qt::StringLiterals;

namespace {
const QString scrobbleEnabledKey = u"scrobbleEnabled"_s;
const QString showTotalTimeKey = u"showTotalTime"_s;
const QString artistsSelectedIdKey = u"artistsSelectedID"_s;
const QString replayGainKey = u"replayGain"_s;
}

Preferences::Preferences(QSettings *settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
{
}

bool Preferences::scrobbleEnabled() const
{
    return m_settings->value(scrobbleEnabledKey, true).toBool();
}

void Preferences::setScrobbleEnabled(bool enabled)
{
    if (enabled == scrobbleEnabled())
        return;
    m_settings->setValue(scrobbleEnabledKey, enabled);
    Q_EMIT scrobbleEnabledChanged();
}

bool Preferences::showTotalTime() const
{
    return m_settings->value(showTotalTimeKey, false).toBool();
}

void Preferences::setShowTotalTime(bool show)
{
    if (show == showTotalTime())
        return;
    m_settings->setValue(showTotalTimeKey, show);
    Q_EMIT showTotalTimeChanged();
}

QString Preferences::artistsSelectedId() const
{
    return m_settings->value(artistsSelectedIdKey).toString();
}

void Preferences::setArtistsSelectedId(const QString &id)
{
    if (id == artistsSelectedId())
        return;
    m_settings->setValue(artistsSelectedIdKey, id);
    Q_EMIT artistsSelectedIdChanged();
}

LoudnessLevelling Preferences::volumeLevelling() const
{
    return loudnessLevellingFromName(m_settings->value(replayGainKey).toString()).value_or(LoudnessLevelling::ByAlbum);
}

void Preferences::setVolumeLevelling(LoudnessLevelling levelling)
{
    if (levelling == volumeLevelling() && m_settings->contains(replayGainKey))
        return;
    m_settings->setValue(replayGainKey, loudnessLevellingName(levelling));
    Q_EMIT volumeLevellingChanged();
}

void Preferences::setVolumeLevellingIndex(int index)
{
    if (index >= int(LoudnessLevelling::Off) && index <= int(LoudnessLevelling::ByAlbum))
        setVolumeLevelling(LoudnessLevelling(index));
}
