// A member of the root object as it was found in the text, so that it need not be written to text again.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "text/json.h"

namespace vorn {

/// Where an object or array was found, as offsets into the text. Both are 0 for a member that is absent or of
/// another kind.
struct JsonSlice {
    std::size_t begin = 0;
    std::size_t end = 0;
    /// The text between is `JsonText` of the value, to the byte. False for each value with a number in it.
    bool compact = false;
    /// There is a number with a fraction or an exponent in it, which may change when it is written and parsed
    /// again.
    bool reals = false;
};

/// As `JsonParseInPlace`. Sets `slice` to where the first member of the root of that name is.
void JsonParseInPlace(char* text, JsonDocument& document, std::string_view member, JsonSlice& slice);

/// The compact JSON text of `value`, which `slice` of the unchanged `text` was parsed to.
std::string JsonTextOf(const JsonValue& value, const JsonSlice& slice, std::string_view text);

}  // namespace vorn
