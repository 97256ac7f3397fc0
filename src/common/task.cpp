#include "task.h"

#include <QNetworkReply>

CancelToken CancelToken::create()
{
    CancelToken token;
    token.m_state = std::make_shared<State>();
    return token;
}

bool CancelToken::isCancelled() const
{
    return m_state && m_state->cancelled;
}

void CancelToken::cancel() const
{
    if (!m_state || m_state->cancelled)
        return;
    m_state->cancelled = true;
    if (QNetworkReply *reply = m_state->reply) {
        m_state->reply = nullptr;
        reply->abort();
    }
}

void CancelToken::track(QNetworkReply *reply) const
{
    if (m_state)
        m_state->reply = reply;
}

void CancelToken::untrack(QNetworkReply *reply) const
{
    if (m_state && m_state->reply == reply)
        m_state->reply = nullptr;
}

namespace {
QCoro::Task<> runDetached(std::function<QCoro::Task<>(CancelToken)> work, CancelToken token,
                          std::shared_ptr<bool> running)
{
    try {
        co_await work(token);
    } catch (...) {
    }
    *running = false;
}
}

void TaskHandle::start(std::function<QCoro::Task<>(CancelToken)> work)
{
    cancel();
    m_token = CancelToken::create();
    m_running = std::make_shared<bool>(true);
    runDetached(std::move(work), m_token, m_running);
}

void TaskHandle::cancel()
{
    m_token.cancel();
}

bool TaskHandle::isRunning() const
{
    return m_running && *m_running;
}
