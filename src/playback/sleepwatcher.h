#pragma once

// Follows logind's PrepareForSleep on the system bus: the player pauses as the machine goes to sleep, and on
// waking its engine is paused again so that it cannot start by itself. While awake it holds a logind "delay"
// inhibitor for sleep, released only once the pause has landed, so that suspend cannot cut in before it. No
// system bus means no notices.

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QObject>

class PlayerController;

class SleepWatcher : public QObject
{
    Q_OBJECT

public:
    explicit SleepWatcher(PlayerController *controller, QDBusConnection bus = QDBusConnection::systemBus(),
                          QObject *parent = nullptr);

    [[nodiscard]] bool isWatching() const { return m_watching; }
    [[nodiscard]] bool holdsInhibitor() const { return m_inhibitor.isValid(); }

private Q_SLOTS:
    void prepareForSleep(bool sleeping);

private:
    void takeInhibitor();

    PlayerController *m_controller;
    QDBusConnection m_bus;
    bool m_watching = false;
    // Sleep waits while this descriptor is open (logind gives up after its own delay, 5 s by default).
    QDBusUnixFileDescriptor m_inhibitor;
};
