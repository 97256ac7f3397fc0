#pragma once

// Runs a coroutine to its end inside a test, spinning the event loop, and hands back its value or rethrows what
// it threw. Unlike QCoro::waitFor it gives up after a timeout, so a hang fails the test instead of the run.

#include <QCoroTask>
#include <QTest>

#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>

template<typename T>
T awaitTask(QCoro::Task<T> &&task, int timeoutMs = 10000)
{
    constexpr bool isVoid = std::is_void_v<T>;
    // Shared with the coroutine, which may still end after a timeout has failed the test.
    struct State {
        bool done = false;
        std::optional<std::conditional_t<isVoid, bool, T>> value;
        std::exception_ptr error;
    };
    const auto state = std::make_shared<State>();
    [](QCoro::Task<T> task, std::shared_ptr<State> state) -> QCoro::Task<> {
        try {
            if constexpr (isVoid) {
                co_await std::move(task);
                state->value = true;
            } else {
                state->value = co_await std::move(task);
            }
        } catch (...) {
            state->error = std::current_exception();
        }
        state->done = true;
    }(std::move(task), state);
    if (!QTest::qWaitFor([&] { return state->done; }, timeoutMs))
        throw std::runtime_error("the task did not finish in time");
    if (state->error)
        std::rethrow_exception(state->error);
    if constexpr (!isVoid)
        return std::move(*state->value);
}

// The exception a task threw, for asserting on failures; none when it threw nothing or something else.
template<typename Error, typename T>
std::optional<Error> awaitFailure(QCoro::Task<T> &&task, int timeoutMs = 10000)
{
    try {
        awaitTask(std::move(task), timeoutMs);
    } catch (const Error &error) {
        return error;
    } catch (...) {
    }
    return std::nullopt;
}
