#pragma once

// One start of the real application as main() builds it, without the event loop, and the few ways the window
// tests drive it as a user would.

#include "shell/mainwindow.h"
#include "shell/veltoapp.h"

#include <QDir>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

struct RunningApp {
    VeltoApp app{{.updateFeedURL = {}, .version = QVersionNumber(0, 1, 0)}};
    QQmlApplicationEngine engine;
    QQuickWindow *window = nullptr;

    RunningApp() { window = loadMainWindow(engine, app); }

    template<typename T = QQuickItem>
    T *find(const QString &name) const
    {
        return window->findChild<T *>(name);
    }

    void click(QQuickItem *item, Qt::MouseButton button = Qt::LeftButton) const
    {
        const QPoint centre = item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
        QTest::mouseClick(item->window(), button, {}, centre);
    }

    // Types into whatever has the keyboard, as a user who does not click first.
    void type(const QString &text) const
    {
        for (const QChar c : text)
            QTest::sendKeyEvent(QTest::Click, window, Qt::Key_unknown, QString(c), Qt::NoModifier);
    }
};

// Starts anew: the engine and the app of the last start go first, as at a real quit.
inline bool restart(std::unique_ptr<RunningApp> &running)
{
    running.reset();
    running = std::make_unique<RunningApp>();
    if (!running->window)
        return false;
    running->window->requestActivate();
    return QTest::qWaitForWindowActive(running->window);
}

inline bool saveScreenshot(QQuickWindow *window, const QString &name)
{
    const QString folder = QStringLiteral(VELTO_SCREENSHOT_DIR);
    QDir().mkpath(folder);
    QTest::qWait(100);
    return window->grabWindow().save(folder + u'/' + name + QStringLiteral(".png"));
}
