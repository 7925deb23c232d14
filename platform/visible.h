// Texts of others, shown to a person.

#pragma once

#include <string>
#include <string_view>

namespace vorn {

/// `text` with everything that a terminal would act on or cannot show (control characters, bytes that are no
/// UTF-8) written as `\x1B`.
std::string Visible(std::string_view text);

}  // namespace vorn
