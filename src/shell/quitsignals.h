#pragma once

// Turns SIGTERM, SIGINT and SIGHUP into the application's orderly quit, so that a desktop logout, a shutdown, a
// closed terminal or a plain `kill` saves what Quit from the menu saves. The handler only writes a byte to a
// socket, the one thing a signal handler may safely do; the event loop reads it and quits.

#include <QObject>

class QSocketNotifier;

class QuitSignals : public QObject
{
    Q_OBJECT

public:
    // One per process, made by main() once the application object exists.
    explicit QuitSignals(QObject *parent = nullptr);
    ~QuitSignals() override;

private:
    QSocketNotifier *m_notifier = nullptr;
};
