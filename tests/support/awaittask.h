#pragma once

// Runs a coroutine to its end inside a test, spinning the event loop, and hands back its value or rethrows what
// it threw. Unlike QCoro::waitFor it gives up after a timeout, so a hang fails the test instead of the run.

#include <QCoroTask>
#include <QTest>

#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>

namespace detail {
template<typename T>
struct AwaitState {
    bool done = false;
    std::optional<T> value;
    std::exception_ptr error;
};
struct Unit {
};

template<typename T>
QCoro::Task<> capture(QCoro::Task<T> task, std::shared_ptr<AwaitState<T>> state)
{
    try {
        state->value = co_await std::move(task);
    } catch (...) {
        state->error = std::current_exception();
    }
    state->done = true;
}

inline QCoro::Task<> capture(QCoro::Task<> task, std::shared_ptr<AwaitState<Unit>> state)
{
    try {
        co_await std::move(task);
        state->value = Unit{};
    } catch (...) {
        state->error = std::current_exception();
    }
    state->done = true;
}

template<typename T>
std::shared_ptr<AwaitState<T>> run(QCoro::Task<T> &&task, int timeoutMs)
{
    auto state = std::make_shared<AwaitState<T>>();
    capture(std::move(task), state);
    if (!QTest::qWaitFor([&] { return state->done; }, timeoutMs))
        throw std::runtime_error("the task did not finish in time");
    if (state->error)
        std::rethrow_exception(state->error);
    return state;
}
}

template<typename T>
T awaitTask(QCoro::Task<T> &&task, int timeoutMs = 10000)
{
    return std::move(*detail::run<T>(std::move(task), timeoutMs)->value);
}

inline void awaitTask(QCoro::Task<> &&task, int timeoutMs = 10000)
{
    auto state = std::make_shared<detail::AwaitState<detail::Unit>>();
    detail::capture(std::move(task), state);
    if (!QTest::qWaitFor([&] { return state->done; }, timeoutMs))
        throw std::runtime_error("the task did not finish in time");
    if (state->error)
        std::rethrow_exception(state->error);
}

// The exception a task threw, for asserting on failures; fails the test when it threw nothing.
template<typename Error, typename T>
std::optional<Error> awaitFailure(QCoro::Task<T> &&task, int timeoutMs = 10000)
{
    try {
        awaitTask(std::move(task), timeoutMs);
    } catch (const Error &error) {
        return error;
    } catch (...) {
        return std::nullopt;
    }
    return std::nullopt;
}
