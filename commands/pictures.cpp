// PjtPngGet and PjtChartGet: have the engine draw, and give the client the file that it wrote.

#include <algorithm>
#include <string>

#include "commands/handlers.h"
#include "engine/vorn_chart_cache.h"
#include "engine/vorn_core.h"
#include "platform/file_text.h"
#include "platform/sleep.h"
#include "text/project_name.h"

namespace vorn {

namespace {

/// Nothing tells when a file is finished: the wait alone does.
constexpr int DrawingMilliseconds = 2500;

/// The size of a file is a signed 32-bit number; a larger file is none.
constexpr std::size_t FileLimit = 0x7fffffff;

/// What stands in the file after the wait, up to its first zero byte; empty when it cannot be read.
std::string DrawnText(int pjtnb, const char* ending) {
    SleepMilliseconds(DrawingMilliseconds);
    std::string path = ProjectFolderPath(ProjectNameGet(pjtnb));
    path = path + ProjectNameGet(pjtnb) + ending;
    std::string content;
    std::error_code fault;
    if (!FileRead(path, FileLimit, content, fault)) return {};
    content.resize(std::min(content.find('\0'), content.size()));
    return content;
}

}  // namespace

std::string PjtPngGet(const Request& request) {
    Pipe_PjtPngSave(request.pjtnb);
    return DrawnText(request.pjtnb, ".txt");
}

std::string PjtChartGet(const Request& request) {
    Chart_PngSave(ProjectNameGet(request.pjtnb));
    return DrawnText(request.pjtnb, "_chart.txt");
}

}  // namespace vorn
