// The engine's operations on the list of open projects and on element addresses.

#include <algorithm>
#include <string>
#include <string_view>

#include "engine/vorn_core.h"
#include "standin/control.h"
#include "standin/project.h"
#include "standin/trace.h"
#include "standin/values.h"

using namespace standin;

const char* ProjectNameGet(int slot) {
    Trace("ProjectNameGet", slot);
    const std::lock_guard guard(EngineLock());
    const Project* project = ProjectFind(slot);
    return project == nullptr ? "" : project->name;
}

int ProjectNameToID(const char* name) {
    Trace("ProjectNameToID", name);
    const std::lock_guard guard(EngineLock());
    const Project* project = ProjectFind(name);
    return project == nullptr ? -1 : SlotOf(*project);
}

bool ProjectJsonAdd(const char* name) {
    Trace("ProjectJsonAdd", name);
    const std::lock_guard guard(EngineLock());
    return !AdditionRefused() && ProjectMake(name) != nullptr;
}

void NameParsing_ModNod(const char* name, int& kind, int& slot, int& number) {
    Trace("NameParsing_ModNod", name);
    const std::string_view address(name);
    const std::size_t projectEnd = std::min(address.find('_'), address.size());

    const std::lock_guard guard(EngineLock());
    const Project* project = ProjectFind(address.substr(0, projectEnd));
    if (project == nullptr) return;
    slot = SlotOf(*project);

    constexpr std::string_view Prefixes[] = {"MOD", "NOD", "JMP", "LNK"};
    const std::string_view element = address.substr(std::min(projectEnd + 1, address.size()));
    const auto* prefix = std::find(std::begin(Prefixes), std::end(Prefixes), element.substr(0, 3));
    if (prefix == std::end(Prefixes) || !ElementNumberRead(element.substr(3), number)) return;
    kind = static_cast<int>(prefix - std::begin(Prefixes)) + 1;
}

int Module_FindInstanceID(int slot, const char* text) {
    Trace("Module_FindInstanceID", slot, text);
    const std::lock_guard guard(EngineLock());
    const Project* project = ProjectFind(slot);
    return project == nullptr ? -1 : project->moduleIdentities.Find(text);
}

int Node_FindInstanceID(int slot, const char* text) {
    Trace("Node_FindInstanceID", slot, text);
    const std::lock_guard guard(EngineLock());
    const Project* project = ProjectFind(slot);
    return project == nullptr ? -1 : project->nodeIdentities.Find(text);
}

// The stand-in has no view of its own: the cues to the display side are only traced.

bool GuiRef_Get(int slot) {
    Trace("GuiRef_Get", slot);
    const std::lock_guard guard(EngineLock());
    return ViewBusy();
}

void Pipe_PjtListRef() {
    Trace("Pipe_PjtListRef");
}
void PeojectListRef_CliSet(const char* name) {
    Trace("PeojectListRef_CliSet", name);
}
void Pipe_PjtRef(int slot) {
    Trace("Pipe_PjtRef", slot);
}
void Pipe_PjtVarValueRef(int slot) {
    Trace("Pipe_PjtVarValueRef", slot);
}
