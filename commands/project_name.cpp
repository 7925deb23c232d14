#include "commands/project_name.h"

#include <algorithm>

#include "text/fixed_text.h"

namespace vorn {

namespace {

bool Allowed(char byte) {
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

}  // namespace

bool ProjectNameUpper(std::string_view name, std::string& upper) {
    if (name.size() > ProjectNameLimit || !std::all_of(name.begin(), name.end(), Allowed)) return false;
    upper = name;
    std::transform(upper.begin(), upper.end(), upper.begin(), AsciiUpper);
    return true;
}

}  // namespace vorn
