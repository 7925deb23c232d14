#include "text/project_name.h"

#include <algorithm>

#include "text/fixed_text.h"

namespace vorn {

bool ProjectNameUpper(std::string_view name, std::string& upper) {
    if (name.size() > ProjectNameLimit || !std::all_of(name.begin(), name.end(), IsAsciiLetterOrDigit))
        return false;
    upper = name;
    std::transform(upper.begin(), upper.end(), upper.begin(), AsciiUpper);
    return true;
}

std::string ProjectFolderPath(std::string_view name) {
    return "../AlgProject/" + std::string(name) + "/";
}

}  // namespace vorn
