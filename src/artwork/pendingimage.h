#pragma once

// The result of one cover fetch, awaited by every caller that asked for the same key while it ran. Main thread
// only: finish() resumes the waiting coroutines one after the other, inside the call.

#include <QImage>

#include <coroutine>
#include <memory>
#include <optional>
#include <vector>

class PendingImage
{
public:
    class Awaiter
    {
    public:
        explicit Awaiter(std::shared_ptr<PendingImage> pending) : m_pending(std::move(pending)) { }

        [[nodiscard]] bool await_ready() const noexcept { return m_pending->m_finished; }
        void await_suspend(std::coroutine_handle<> waiting) { m_pending->m_waiting.push_back(waiting); }
        [[nodiscard]] std::optional<QImage> await_resume() const { return m_pending->m_image; }

    private:
        std::shared_ptr<PendingImage> m_pending;
    };

    [[nodiscard]] bool isFinished() const { return m_finished; }

    void finish(std::optional<QImage> image)
    {
        m_finished = true;
        m_image = std::move(image);
        // A resumed caller may start another wait on this same object; it sees the result at once.
        const std::vector<std::coroutine_handle<>> waiting = std::exchange(m_waiting, {});
        for (std::coroutine_handle<> coroutine : waiting)
            coroutine.resume();
    }

private:
    bool m_finished = false;
    std::optional<QImage> m_image;
    std::vector<std::coroutine_handle<>> m_waiting;
};

[[nodiscard]] inline PendingImage::Awaiter waitFor(std::shared_ptr<PendingImage> pending)
{
    return PendingImage::Awaiter(std::move(pending));
}
