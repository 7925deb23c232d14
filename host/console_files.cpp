#include "host/console_files.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string_view>

#include "platform/executable_path.h"

namespace {

struct FileKind {
    std::string_view ending;
    const char* type;
};

constexpr FileKind FileKinds[] = {
    {".html", "text/html; charset=utf-8"}, {".js", "text/javascript; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},   {".svg", "image/svg+xml"},
    {".txt", "text/plain; charset=utf-8"},
};

}  // namespace

std::filesystem::path ConsoleFolder() {
    return vorn::ExecutableFile().parent_path().parent_path() / "share" / "vornserver" / "console";
}

std::map<std::string, ConsoleFile> ConsoleFilesRead(const std::filesystem::path& folder) {
    std::map<std::string, ConsoleFile> files;
    std::error_code fault;
    for (const auto& entry : std::filesystem::directory_iterator(folder, fault)) {
        const std::string name = entry.path().filename().string();
        const auto* kind = std::find_if(std::begin(FileKinds), std::end(FileKinds),
                                        [&](const FileKind& each) { return name.ends_with(each.ending); });
        std::ifstream stream(entry.path(), std::ios::binary);
        if (kind == std::end(FileKinds) || !stream) continue;
        files["/" + name] = {kind->type, {std::istreambuf_iterator<char>(stream), {}}};
    }
    return files;
}
