#pragma once

// What the benchmarks that drive the real window share: the saved account they start from, and the timing of
// frames.

#include "fakesubsonicserver.h"
#include "server/appstate.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QQuickWindow>
#include <QSettings>

#include <algorithm>
#include <optional>
#include <vector>

// Signs in to `server` as the application does and keeps the account in this run's settings and keyring.
inline std::optional<ServerConfig> signIn(FakeSubsonicServer &server, const QString &password = QStringLiteral("pw"))
{
    QSettings settings;
    AppState appState(&settings);
    bool done = false;
    auto connect = [&]() -> QCoro::Task<> {
        try {
            QCoro::Task<> connecting = appState.connect(server.baseURL().toString(), QStringLiteral("bench"), password);
            co_await connecting;
        } catch (...) {
        }
        done = true;
    };
    connect();
    while (!done)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    settings.sync();
    if (!appState.client())
        return std::nullopt;
    return appState.client()->config();
}

inline double percentile95(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? -1 : values[size_t(double(values.size() - 1) * 0.95)];
}

// Milliseconds from `change` to the next frame the window shows; -1 when none came.
template<typename Change>
double msToNextFrame(QQuickWindow *window, Change &&change)
{
    bool swapped = false;
    const QMetaObject::Connection watch =
        QObject::connect(window, &QQuickWindow::frameSwapped, window, [&swapped] { swapped = true; });
    QElapsedTimer timer;
    timer.start();
    change();
    while (!swapped && timer.elapsed() < 10'000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    QObject::disconnect(watch);
    return swapped ? timer.nsecsElapsed() / 1e6 : -1;
}

// Waits for `condition`, at most `ms`; whether it came.
template<typename Condition>
bool waitFor(Condition &&condition, int ms = 10'000)
{
    QElapsedTimer waited;
    waited.start();
    while (!condition() && waited.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    return condition();
}
