#include "platform/file_path.h"

namespace vorn {

std::filesystem::path FilePath(const std::string& path) {
    return path;
}

}  // namespace vorn
