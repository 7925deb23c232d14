// The engine's operations that place, move and delete elements, name them and answer for their ports.

#include <string>

#include "engine/vorn_core.h"
#include "platform/code_page.h"
#include "standin/control.h"
#include "standin/project.h"
#include "standin/trace.h"

using namespace standin;

int ProjectModuleNbCheck(int slot) {
    Trace("ProjectModuleNbCheck", slot);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    return project == nullptr ? -1 : project->modules.NextNumber();
}

int ProjectNodeNbCheck(int slot) {
    Trace("ProjectNodeNbCheck", slot);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    return project == nullptr ? -1 : project->nodes.NextNumber();
}

int ProjectLinkNbCheck(int slot) {
    Trace("ProjectLinkNbCheck", slot);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    return project == nullptr ? -1 : project->links.NextNumber();
}

bool ProjectAddModule(const char* name, int number, int type, int page, int x, int z) {
    Trace("ProjectAddModule", name, number, type, page, x, z);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(name);
    if (project == nullptr || AdditionRefused()) return false;
    return ModuleAdd(*project, number, type, page, x, z) != nullptr;
}

bool ProjectAddNode(const char* name, int number, int kind, int page, int x, int z) {
    Trace("ProjectAddNode", name, number, kind, page, x, z);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(name);
    if (project == nullptr || AdditionRefused()) return false;
    return NodeAdd(*project, number, kind, page, x, z) != nullptr;
}

void ProjectAddLink(const char* name, int number, LinkSxCache link) {
    Trace("ProjectAddLink", name, number, link);
    const std::lock_guard guard(EngineLock());
    if (Project* project = ProjectFind(name)) LinkAdd(*project, number, link);
}

namespace {

void Move(Project& project, Element* element, int x, int z) {
    if (element == nullptr) return;
    project.shown = NextRevision();
    element->x = x;
    element->z = z;
}

}  // namespace

void ProjectModuleXYSet(const char* name, int number, int x, int z) {
    Trace("ProjectModuleXYSet", name, number, x, z);
    const std::lock_guard guard(EngineLock());
    if (Project* project = ProjectFind(name)) Move(*project, project->modules.Find(number), x, z);
}

void ProjectNodeXYSet(const char* name, int number, int x, int z) {
    Trace("ProjectNodeXYSet", name, number, x, z);
    const std::lock_guard guard(EngineLock());
    if (Project* project = ProjectFind(name)) Move(*project, project->nodes.Find(number), x, z);
}

void Pipe_DeleteModule(int slot, int number) {
    Trace("Pipe_DeleteModule", slot, number);
    const std::lock_guard guard(EngineLock());
    if (Project* project = ProjectFind(slot)) ModuleRemove(*project, number);
}

void Pipe_DeleteNode(int slot, int number) {
    Trace("Pipe_DeleteNode", slot, number);
    const std::lock_guard guard(EngineLock());
    if (Project* project = ProjectFind(slot)) NodeRemove(*project, number);
}

void Pipe_DeleteLink(int slot, int number) {
    Trace("Pipe_DeleteLink", slot, number);
    const std::lock_guard guard(EngineLock());
    if (Project* project = ProjectFind(slot)) LinkRemove(*project, number);
}

int ModuleOneID_ToID(std::int64_t oneId) {
    Trace("ModuleOneID_ToID", oneId);
    return ModuleTypeNumber(oneId);
}

std::int64_t ModuleOneID_Get(int type) {
    Trace("ModuleOneID_Get", type);
    const ModuleType* found = ModuleTypeFind(type);
    return found == nullptr ? 0 : found->oneId;
}

const char* ModuleNameGet(int type) {
    Trace("ModuleNameGet", type);
    const ModuleType* found = ModuleTypeFind(type);
    thread_local std::string name;
    name = found == nullptr ? std::string() : vorn::CodePageFromUtf8(found->name);
    return name.c_str();
}

void ModuleInstanceIDSet(int slot, int number, const char* text) {
    Trace("ModuleInstanceIDSet", slot, number, text);
    const std::lock_guard guard(EngineLock());
    if (Project* project = ProjectFind(slot)) ModuleIdentify(*project, number, text);
}

void NodeInstanceIDSet(int slot, int number, const char* text) {
    Trace("NodeInstanceIDSet", slot, number, text);
    const std::lock_guard guard(EngineLock());
    if (Project* project = ProjectFind(slot)) NodeIdentify(*project, number, text);
}

bool ProjectModulePortInOutGet(int slot, int module, int port) {
    Trace("ProjectModulePortInOutGet", slot, module, port);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    const PortType* found = project == nullptr ? nullptr : PortFind(*project, module, port);
    return found != nullptr && found->outlet;
}

bool ProjectModulePortCanBeLink(int slot, int module, int port) {
    Trace("ProjectModulePortCanBeLink", slot, module, port);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    if (project == nullptr || PortFind(*project, module, port) == nullptr) return true;
    return project->modules.Find(module)->linksAtPort[static_cast<std::size_t>(port)] > 0;
}

bool ProjectNodePortCanBeLink(int slot, int node, int port) {
    Trace("ProjectNodePortCanBeLink", slot, node, port);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    const Node* found = project == nullptr ? nullptr : project->nodes.Find(node);
    if (found == nullptr || port < 0 || port >= PortsPerElement) return true;
    return found->linksAtPort[static_cast<std::size_t>(port)] > 0;
}

bool ProjectModulePortType_2_Get(int slot, int module, int port) {
    Trace("ProjectModulePortType_2_Get", slot, module, port);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    const PortType* found = project == nullptr ? nullptr : PortFind(*project, module, port);
    return found != nullptr && found->through;
}
