// Why the system refused something, for people.

#pragma once

#include <string>
#include <system_error>

namespace vorn {

/// The system's own words, in UTF-8 and without a line's end.
std::string FaultText(const std::error_code& fault);

}  // namespace vorn
