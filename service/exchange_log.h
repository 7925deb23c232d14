// The log of exchanges: what clients asked and what they were told, on a side for reads and one for writes,
// for the host to fetch. Old text is dropped when nobody does.

#pragma once

#include <string_view>

namespace vorn {

// Each of the four texts counts up to its first zero byte. What there is no memory for is left out of the
// log, without an exception.

/// Adds the first half of an exchange, its header and name, to the side for writes (`if_Set`) or for reads.
/// The dispatcher's lock is held; the side's lock is taken.
void RtnLogRequest(bool if_Set, std::string_view header, std::string_view name);

/// Adds the second half, the messages and the reply, ends the line, and raises the side's news flag. A text
/// that is then over 20000 bytes keeps its last 2000, cut where that falls. The dispatcher's lock is held.
void RtnLogResult(bool if_Set, std::string_view messages, std::string_view reply);

}  // namespace vorn
