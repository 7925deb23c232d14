// The number of a cache set as clients write it.

#pragma once

#include <string_view>

#include "engine/vorn_records.h"
#include "text/number_text.h"

namespace vorn {

/// Reads a decimal set number; a text without leading digits gives 0. False, with `set` beyond the sets, for
/// a number that is none of theirs.
inline bool CacheSetRead(std::string_view text, int& set) {
    set = IntFromText(text);
    return set >= 0 && set < CacheSetCount;
}

}  // namespace vorn
