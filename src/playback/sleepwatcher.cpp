#include "sleepwatcher.h"

#include "playercontroller.h"

using namespace Qt::StringLiterals;

SleepWatcher::SleepWatcher(PlayerController *controller, QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_controller(controller)
{
    if (!bus.isConnected())
        return;
    m_watching = bus.connect(u"org.freedesktop.login1"_s, u"/org/freedesktop/login1"_s,
                             u"org.freedesktop.login1.Manager"_s, u"PrepareForSleep"_s, this,
                             SLOT(prepareForSleep(bool)));
}

void SleepWatcher::prepareForSleep(bool sleeping)
{
    if (sleeping)
        m_controller->systemWillSleep();
    else
        m_controller->systemDidWake();
}
