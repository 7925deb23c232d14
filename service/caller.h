// Who asks.

#pragma once

#include <cstdint>
#include <string_view>

namespace vorn {

/// The way in that a request came by.
enum class Front : std::uint8_t { Http, Pipe, Serial, Console };

struct Caller {
    Front front = Front::Http;
    std::string_view peer = {};  ///< the address of an HTTP client; empty where there is none
};

}  // namespace vorn
