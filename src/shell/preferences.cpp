#include "preferences.h"

#include <QSettings>

using namespace Qt::StringLiterals;

namespace {
const QString scrobbleEnabledKey = u"scrobbleEnabled"_s;
const QString showTotalTimeKey = u"showTotalTime"_s;
const QString artistsSelectedIdKey = u"artistsSelectedID"_s;
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
