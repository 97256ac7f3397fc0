#pragma once

// How asynchronous work runs in Velto.
//
// Work is a QCoro coroutine started on the main thread. The object that may have to cancel it owns a
// TaskHandle; the coroutine receives a CancelToken by value. Cancelling sets the token's flag and aborts the
// network reply in flight, which finishes that reply at once, so the coroutine resumes inside cancel().
//
// Rules for every coroutine that captures `this`:
//   - right after each co_await, test `token.isCancelled()` and return without touching `this` if it is set;
//   - the owner declares its TaskHandle members after everything the coroutine reads, so the handles are
//     destroyed (and cancel) first;
//   - replies are released with deleteLater(), never delete, since they may still be delivering signals.
// A coroutine that is suspended on something other than a tracked reply resumes later and sees the flag.

#include <QCoroTask>
#include <QPointer>

#include <functional>
#include <memory>

class QNetworkReply;

class CancelToken
{
public:
    // A token that is never cancelled, for callers with nothing to cancel.
    CancelToken() = default;

    [[nodiscard]] static CancelToken create();

    [[nodiscard]] bool isCancelled() const;
    void cancel() const;

    // The reply that cancel() aborts; one at a time.
    void track(QNetworkReply *reply) const;
    void untrack(QNetworkReply *reply) const;

private:
    struct State {
        bool cancelled = false;
        QPointer<QNetworkReply> reply;
    };
    std::shared_ptr<State> m_state;
};

// Thrown by operations that notice their token was cancelled, so a cancelled request never reads as a
// failure of the server.
struct TaskCancelled {
};

class TaskHandle
{
public:
    TaskHandle() = default;
    TaskHandle(const TaskHandle &) = delete;
    TaskHandle &operator=(const TaskHandle &) = delete;
    ~TaskHandle() { cancel(); }

    // Cancels the running task, if any, and starts `work` with a fresh token. Exceptions that escape the
    // coroutine are dropped: stores catch what they start and decide what a failure means themselves.
    void start(std::function<QCoro::Task<>(CancelToken)> work);
    void cancel();
    [[nodiscard]] bool isRunning() const;

private:
    CancelToken m_token;
    std::shared_ptr<bool> m_running;
};
