#include "commands/put_verb.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "commands/run_steps.h"
#include "elements/slot.h"
#include "engine/vorn_core.h"

namespace vorn {

namespace {

std::string RunOpen(int slot, const char* name) {
    const bool running = PjtStartGet(slot);
    if (!running) RunStart(slot);
    PeojectListRef_CliSet(name);
    return running ? "已运行" : "成功运行";
}

/// The engine itself starts a published project that it has read.
std::string RunStored(const char* name) {
    if (ProjectInfoRead(name) != 1) return "找不到项目";
    if (!ProjectRunFabuGet(name)) {
        ProjectInfoRemove(name);
        return "项目未成功发布";
    }
    Pipe_PjtListRef();
    PeojectListRef_CliSet(name);
    return "成功运行";
}

std::string Run(const char* name) {
    const int slot = ProjectNameToID(name);
    return IsSlot(slot) ? RunOpen(slot, name) : RunStored(name);
}

std::string CloseAll() {
    for (int slot = 0; slot < SlotCount; ++slot) {
        PjtStartSet(slot, false);
        ProjectInfoRemove(ProjectNameGet(slot));
    }
    Pipe_PjtListRef();
    return "OK";
}

void Pause(int slot, const char* /*name*/) {
    RunPauseToggle(slot);
}
void Step(int slot, const char* /*name*/) {
    RunStep(slot);
}
void Stop(int slot, const char* /*name*/) {
    RunStop(slot);
}
void Remove(int slot, const char* name) {
    RunStopToClose(slot);
    ProjectInfoRemove(name);
    Pipe_PjtListRef();
}

/// The verbs that need an open project, and answer "OK" then.
struct OpenVerb {
    std::string_view word;
    void (*carryOut)(int slot, const char* name);
};

constexpr OpenVerb OpenVerbs[] = {{"Pause", Pause}, {"Step", Step}, {"Stop", Stop}, {"Remove", Remove}};

}  // namespace

std::string PutVerb(const std::string& name, const std::string& verb) {
    if (verb == "Run") return Run(name.c_str());
    if (verb == "Close") return CloseAll();
    const auto* row = std::find_if(std::begin(OpenVerbs), std::end(OpenVerbs),
                                   [&verb](const OpenVerb& each) { return each.word == verb; });
    if (row != std::end(OpenVerbs)) {
        const int slot = ProjectNameToID(name.c_str());
        if (IsSlot(slot)) {
            row->carryOut(slot, name.c_str());
            return "OK";
        }
    }
    return "找不到项目/不识别命令";
}

}  // namespace vorn
