#include "editsequence.h"

void EditSequence::add(Edit edit)
{
    m_state->edits.push_back(std::move(edit));
    if (!m_state->running)
        run(m_state);
}

QCoro::Task<> EditSequence::run(std::shared_ptr<State> state)
{
    state->running = true;
    while (!state->edits.empty()) {
        // Kept in this frame while it runs: the edit's captures live in it.
        const Edit edit = std::move(state->edits.front());
        state->edits.pop_front();
        try {
            co_await edit();
        } catch (...) {
        }
    }
    state->running = false;
}
