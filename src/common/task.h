#pragma once

// How asynchronous work runs in Velto.
//
// Work is a QCoro coroutine started on the main thread. The object that may have to cancel it owns a
// TaskHandle; the coroutine receives a CancelToken by value. Cancelling sets the token's flag and aborts the
// network reply in flight. The coroutine does not resume inside cancel(): QCoro hands the aborted reply's end
// to the event loop, so it resumes later, by which time its owner may be gone.
//
// Rules for every coroutine that captures `this`:
//   - right after each co_await, test `token.isCancelled()` and return without touching `this` if it is set;
//   - await only through objects that outlive the owner or live in the coroutine's own frame: copy the
//     SubsonicClient into a local rather than awaiting through a member, and give a network manager that
//     replies still use to deleteLater();
//   - replies are released with deleteLater(), never delete, since they may still be delivering signals.
// Destroying a TaskHandle cancels its task, and that is all it does: the coroutine frame lives on until the
// coroutine has seen the flag and returned.

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

    // Cancels the task of this handle, if any, and starts `work` with a fresh token. Exceptions that escape
    // the coroutine are dropped: stores catch what they start and decide what a failure means themselves.
    void start(std::function<QCoro::Task<>(CancelToken)> work);
    void cancel();
    // From start() until the coroutine has returned, cancelled or not.
    [[nodiscard]] bool isRunning() const;
    // Running and not cancelled: the test for "this work is already under way".
    [[nodiscard]] bool isActive() const { return isRunning() && !m_token.isCancelled(); }

private:
    CancelToken m_token;
    std::shared_ptr<bool> m_running;
};
