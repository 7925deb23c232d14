// The operations that write a project's picture and chart into its folder. Both are written whole before the
// call returns.

#include <cstdio>
#include <string>
#include <string_view>

#include "engine/vorn_chart_cache.h"
#include "engine/vorn_core.h"
#include "platform/file_text.h"
#include "standin/chart.h"
#include "standin/plant_picture.h"
#include "standin/project_folder.h"
#include "standin/trace.h"

using namespace standin;

namespace {

/// Writes a drawing of the project `name`. A failure is told of on standard error; the old file then stays.
void WriteDrawing(const std::string& name, std::string_view ending, const std::string& svg) {
    const std::string path = ProjectFile(name, ending);
    if (path.empty()) return;
    std::error_code fault;
    if (!vorn::FolderMake(ProjectFolder(name), fault) || !vorn::FileReplace(path, svg, fault)) {
        std::fprintf(stderr, "drawing: %s: %s\n", path.c_str(), fault.message().c_str());
    }
}

}  // namespace

void Pipe_PjtPngSave(int slot) {
    Trace("Pipe_PjtPngSave", slot);
    std::string name;
    std::vector<PlantPage> pages;
    {
        const std::lock_guard guard(EngineLock());
        Project* project = ProjectFind(slot);
        if (project == nullptr) return;
        name = project->name;
        pages = PlantPages(*project);
    }
    // Arranged and written without the lock: a large plant need not hold the simulation up.
    for (PlantPage& page : pages) PlantArrange(page);
    WriteDrawing(name, ".txt", PlantSvg(name, pages));
}

void Chart_PngSave(const char* name) {
    Trace("Chart_PngSave", name);
    std::string projectName;
    std::vector<double> temperatures;
    int stepsEach = 1;
    {
        const std::lock_guard guard(EngineLock());
        const Project* project = ProjectFind(name);
        if (project == nullptr) return;
        projectName = project->name;
        temperatures = project->temperatures;
        stepsEach = project->temperatureSteps;
    }
    WriteDrawing(projectName, "_chart.txt", ChartSvg(projectName, temperatures, stepsEach));
}
