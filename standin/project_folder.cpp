#include "standin/project_folder.h"

#include <algorithm>

#include "standin/project.h"
#include "text/fixed_text.h"

namespace standin {

namespace {

/// The name in upper case, empty for one that no project can bear.
std::string StoredName(std::string_view name) {
    if (name.size() >= ProjectNameBytes) return {};
    if (!std::all_of(name.begin(), name.end(), vorn::IsAsciiLetterOrDigit)) return {};
    std::string upper(name);
    std::transform(upper.begin(), upper.end(), upper.begin(), vorn::AsciiUpper);
    return upper;
}

}  // namespace

std::string ProjectFolder(std::string_view name) {
    const std::string stored = StoredName(name);
    return stored.empty() ? std::string() : "../AlgProject/" + stored + "/";
}

std::string ProjectFile(std::string_view name, std::string_view ending) {
    const std::string folder = ProjectFolder(name);
    return folder.empty() ? std::string() : folder + StoredName(name) + std::string(ending);
}

}  // namespace standin
