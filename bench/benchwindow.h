#pragma once

// What the benchmarks that drive the real window share: the saved account they start from, and the timing of
// frames.

#include "fakesubsonicserver.h"
#include "server/appstate.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMutex>
#include <QQuickWindow>
#include <QSettings>

#include <algorithm>
#include <atomic>
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

// Frame times from the start of a frame's preparation on the main thread, where new rows and cells are made, to
// the end of its rendering, without the wait for the display's next refresh.
class FrameTimes
{
public:
    explicit FrameTimes(QQuickWindow *window)
    {
        m_clock.start();
        m_started = QObject::connect(window, &QQuickWindow::afterAnimating, window,
                                     [this] { m_frameStart = m_clock.nsecsElapsed(); }, Qt::DirectConnection);
        m_rendered = QObject::connect(window, &QQuickWindow::afterRendering, window, [this] {
            const qint64 start = m_frameStart.exchange(-1);
            if (start >= 0) {
                QMutexLocker lock(&m_lock);
                m_times.push_back(double(m_clock.nsecsElapsed() - start) / 1e6);
            }
        }, Qt::DirectConnection);
    }
    ~FrameTimes()
    {
        QObject::disconnect(m_started);
        QObject::disconnect(m_rendered);
    }
    [[nodiscard]] std::vector<double> times()
    {
        QMutexLocker lock(&m_lock);
        return m_times;
    }

private:
    QElapsedTimer m_clock;
    std::atomic<qint64> m_frameStart{-1};
    QMutex m_lock;
    std::vector<double> m_times;
    QMetaObject::Connection m_started;
    QMetaObject::Connection m_rendered;
};
