// Identities of module types that the system itself places.

#pragma once

#include <cstdint>

namespace vorn {

/// The cast-iron pipe, and the wire.
inline constexpr std::int64_t PipeOneID = 24032022192805856;
inline constexpr std::int64_t WireOneID = 25032321491014823;

}  // namespace vorn
