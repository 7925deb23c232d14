#include "platform/executable_path.h"

#include <unistd.h>

#include <array>
#include <climits>

namespace vorn {

std::string ExecutablePath() {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length < 0 || static_cast<std::size_t>(length) == buffer.size()) return {};
    return {buffer.data(), static_cast<std::size_t>(length)};
}

std::filesystem::path ExecutableFile() {
    return ExecutablePath();
}

}  // namespace vorn
