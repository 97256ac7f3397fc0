#include "sleepwatcher.h"

#include "playercontroller.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::StringLiterals;

namespace {
const QString service = u"org.freedesktop.login1"_s;
const QString path = u"/org/freedesktop/login1"_s;
const QString manager = u"org.freedesktop.login1.Manager"_s;
}

SleepWatcher::SleepWatcher(PlayerController *controller, QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_controller(controller)
    , m_bus(std::move(bus))
{
    if (!m_bus.isConnected())
        return;
    m_watching = m_bus.connect(service, path, manager, u"PrepareForSleep"_s, this, SLOT(prepareForSleep(bool)));
    if (m_watching)
        takeInhibitor();
}

void SleepWatcher::takeInhibitor()
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, manager, u"Inhibit"_s);
    call << u"sleep"_s << u"Velto"_s << u"Pausing playback"_s << u"delay"_s;
    auto *pending = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *finished) {
        finished->deleteLater();
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *finished;
        if (reply.isValid())
            m_inhibitor = reply.value();
    });
}

void SleepWatcher::prepareForSleep(bool sleeping)
{
    if (sleeping) {
        m_controller->systemWillSleep();
        m_inhibitor = QDBusUnixFileDescriptor();
    } else {
        m_controller->systemDidWake();
        takeInhibitor();
    }
}
