#pragma once

// Follows logind's PrepareForSleep on the system bus: the player pauses as the machine goes to sleep, and on
// waking its engine is paused again so that it cannot start by itself. No system bus means no notices.

#include <QDBusConnection>
#include <QObject>

class PlayerController;

class SleepWatcher : public QObject
{
    Q_OBJECT

public:
    explicit SleepWatcher(PlayerController *controller, QDBusConnection bus = QDBusConnection::systemBus(),
                          QObject *parent = nullptr);

    [[nodiscard]] bool isWatching() const { return m_watching; }

private Q_SLOTS:
    void prepareForSleep(bool sleeping);

private:
    PlayerController *m_controller;
    bool m_watching = false;
};
