#pragma once

// Edits of one thing on the server, sent one after the other in the order they were made: a removal by index
// must not overtake the order saved just before it, nor two saves cross on the way. The edits go out even when
// their sender has gone.

#include <QCoroTask>

#include <deque>
#include <functional>
#include <memory>

class EditSequence
{
public:
    using Edit = std::function<QCoro::Task<>()>;

    void add(Edit edit);

private:
    struct State {
        std::deque<Edit> edits;
        bool running = false;
    };
    static QCoro::Task<> run(std::shared_ptr<State> state);

    std::shared_ptr<State> m_state = std::make_shared<State>();
};
