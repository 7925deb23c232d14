// What one HTTP server lets its clients do.

#pragma once

#include <httplib.h>

#include <functional>
#include <string>
#include <string_view>

namespace vorn {

struct HttpRules {
    /// False for a server that takes no bodies: a request that has one is refused with 400.
    bool bodies = true;
    /// All the time that a head, and a body, may take to come, in milliseconds; 0 for no such limit. Between
    /// any two pieces of either pass 5 seconds at most.
    int headMilliseconds = 0;
    int bodyMilliseconds = 0;
    /// Where given, a request for which it returns false is refused with 403 and the text `refusal`.
    std::function<bool(const httplib::Request&)> admits{};
    std::string refusal{};
};

/// True when `header`, the value of a request's `Host`, names a server that listens at `host` and `port`: by
/// that host, as `localhost` or 127.0.0.1, or by any address in numbers where the server listens at all of
/// them. No name of the web is among these but `host`, so that no page can lead a browser here by a name of
/// its own.
bool HostIsOwn(std::string_view header, const std::string& host, int port);

}  // namespace vorn
