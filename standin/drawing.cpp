// The operations that write a project's picture and chart into its folder. They come back at once; it is
// drawn while the caller waits.

#include "standin/drawing.h"

#include <functional>
#include <future>
#include <string>
#include <system_error>

#include "engine/vorn_chart_cache.h"
#include "engine/vorn_core.h"
#include "platform/fault_text.h"
#include "platform/file_text.h"
#include "platform/notice.h"
#include "standin/project_folder.h"
#include "standin/trace.h"

namespace standin {

namespace {

using Draw = std::string(const Project& project);

struct LastDrawing {
    std::mutex lock;
    std::future<void> done;
};

// Never destroyed: it may be drawn while the process ends.
LastDrawing& TheLastDrawing() {
    static LastDrawing& last = *new LastDrawing;
    return last;
}

/// Draws a project and writes the drawing. A fault is told on standard error; the old file then stays.
void DrawFile(const std::string& name, const char* ending, Draw* draw) {
    std::string svg;
    {
        const std::lock_guard guard(EngineLock());
        const Project* project = ProjectFind(name);
        if (project == nullptr) return;
        svg = draw(*project);
    }
    const std::string path = ProjectFile(name, ending);
    std::error_code fault;
    if (path.empty()) return;
    if (vorn::FolderMake(ProjectFolder(name), fault) && vorn::FileReplace(path, svg, fault)) return;
    vorn::Notice(vorn::NoticeKind::Fault, "drawing: " + path + ": " + vorn::FaultText(fault));
}

/// Draws on a thread of its own, behind the drawing before; where no thread can be made, here.
void DrawInBackground(const std::string& name, const char* ending, Draw* draw) {
    LastDrawing& last = TheLastDrawing();
    const std::lock_guard guard(last.lock);
    if (last.done.valid()) last.done.wait();
    try {
        last.done = std::async(std::launch::async, DrawFile, name, ending, draw);
    } catch (const std::system_error&) {
        DrawFile(name, ending, draw);
    }
}

std::string Chart(const Project& project) {
    return ChartSvg(project.name, project.temperatures, project.temperatureSteps);
}

}  // namespace

void DrawingFinish() {
    LastDrawing& last = TheLastDrawing();
    const std::lock_guard guard(last.lock);
    if (last.done.valid()) last.done.wait();
}

}  // namespace standin

using namespace standin;

void Pipe_PjtPngSave(int slot) {
    Trace("Pipe_PjtPngSave", slot);
    std::unique_lock guard(EngineLock());
    const Project* project = ProjectFind(slot);
    const std::string name = project == nullptr ? "" : project->name;
    guard.unlock();
    DrawInBackground(name, ".txt", PlantSvg);
}

void Chart_PngSave(const char* name) {
    Trace("Chart_PngSave", name);
    DrawInBackground(name, "_chart.txt", Chart);
}
