#include "platform/file_path.h"

#include "platform/windows/wide_text.h"

namespace vorn {

std::filesystem::path FilePath(const std::string& path) {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::current_path(error);
    const std::wstring full = (folder / WideFromUtf8(path)).lexically_normal().make_preferred().wstring();
    if (full.starts_with(LR"(\\?\)")) return full;
    return full.starts_with(LR"(\\)") ? LR"(\\?\UNC)" + full.substr(1) : LR"(\\?\)" + full;
}

}  // namespace vorn
