#pragma once

// Gives a window the size it had when it was last closed, and remembers the size it has when it closes.

#include <QObject>
#include <QPointer>
#include <QSize>
#include <QString>

class QSettings;
class QWindow;

class WindowSizeKeeper : public QObject
{
    Q_OBJECT

public:
    WindowSizeKeeper(QWindow *window, QSettings *settings, QString key, QObject *parent = nullptr);
    ~WindowSizeKeeper() override;

private:
    void save();

    QPointer<QWindow> m_window;
    QSettings *m_settings;
    QString m_key;
};
