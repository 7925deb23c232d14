// The engine's operations on a project's script. It is compiled here to report its faults; a run of the
// project runs it.

#include <string>

#include "engine/vorn_core.h"
#include "standin/project.h"
#include "standin/script/script.h"
#include "standin/trace.h"

using namespace standin;

namespace {

// Never destroyed: other threads may still ask while the process ends. The engine lock guards it.
std::string& LastAnalysis() {
    static std::string& text = *new std::string;
    return text;
}

}  // namespace

void ProjectLuaPreWrite(const char* name, const char* script) {
    Trace("ProjectLuaPreWrite", name, script);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(name);
    if (project == nullptr) return;
    project->script = script;
    project->scriptRevision = NextRevision();
    project->scriptFault.clear();
}

void ProjectLuaAnalysis(const char* name) {
    Trace("ProjectLuaAnalysis", name);
    std::string script;
    bool found = false;
    {
        const std::lock_guard guard(EngineLock());
        if (const Project* project = ProjectFind(name)) {
            script = project->script;
            found = true;
        }
    }
    // Without the lock: a long script need not hold the simulation up.
    std::string analysis = found ? ScriptCheck(script) : std::string();
    const std::lock_guard guard(EngineLock());
    LastAnalysis() = std::move(analysis);
}

const char* LuaAnalysisGet() {
    Trace("LuaAnalysisGet");
    static thread_local std::string text;
    const std::lock_guard guard(EngineLock());
    text = LastAnalysis();
    return text.c_str();
}
