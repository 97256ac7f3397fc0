#pragma once

// Whether a server looks as if it sits on the user's own network, and the prompt that such a server may need.

#include <QString>

#include <optional>

// Judged from the host text alone, without a lookup: loopback, link-local and private ranges, and the names
// home routers hand out.
[[nodiscard]] bool isLikelyLocalHost(const std::optional<QString> &host);

class LocalNetworkPrompter
{
public:
    // Linux asks no permission before a program talks to its local network, so there is nothing to prompt.
    static void trigger() { }
};
