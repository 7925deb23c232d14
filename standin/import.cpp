// The engine's operations that only an import of a project document makes, but for the store and the models.

#include "engine/vorn_core.h"
#include "standin/project.h"
#include "standin/trace.h"
#include "standin/values.h"

using namespace standin;

namespace {

/// The ports of a pipe module.
constexpr int PipeInlet = 0;
constexpr int PipeOutlet = 1;

struct End {
    int kind;
    int number;
    int port;
};

bool NodePortFree(const Node& node, int port) {
    return node.linksAtPort[static_cast<std::size_t>(port)] == 0;
}

/// Lets a node's end have the port that it names, where that is free and on the side, else the lowest free
/// one. False when the side is full.
bool ChooseNodePort(const Node& node, bool upstream, End& end) {
    const int first = upstream ? NodeInletCount : 0;
    const int last = first + NodeInletCount;
    if (end.port >= first && end.port < last && NodePortFree(node, end.port)) return true;
    for (end.port = first; end.port < last; ++end.port) {
        if (NodePortFree(node, end.port)) return true;
    }
    return false;
}

/// False when the end has no port that a link can take. `flag` is the port's.
bool ReadyEnd(Project& project, bool upstream, End& end, bool& flag) {
    if (end.kind == NodeKind) {
        const Node* node = project.nodes.Find(end.number);
        return node != nullptr && ChooseNodePort(*node, upstream, end);
    }
    const PortType* port = end.kind == ModuleKind ? PortFind(project, end.number, end.port) : nullptr;
    if (port == nullptr) return false;
    flag = port->through;
    return project.modules.Find(end.number)->linksAtPort[static_cast<std::size_t>(end.port)] == 0;
}

/// Adds a link between two ends and gives its number, -1 when a port or the table does not allow it.
int Tie(Project& project, int linkType, End upstream, End downstream) {
    LinkSxCache link{.InUse = true, .Type = linkType};
    if (!ReadyEnd(project, true, upstream, link.F_Type2)) return -1;
    if (!ReadyEnd(project, false, downstream, link.S_Type2)) return -1;
    const bool ontoItself = upstream.kind == downstream.kind && upstream.number == downstream.number &&
                            upstream.port == downstream.port;
    const int number = project.links.NextNumber();
    if (ontoItself || number < 0) return -1;
    link.F_Sx = upstream.kind;
    link.F_Nb = upstream.number;
    link.F_PortNb = upstream.port;
    link.S_Sx = downstream.kind;
    link.S_Nb = downstream.number;
    link.S_PortNb = downstream.port;
    LinkAdd(project, number, link);
    return number;
}

/// A document's connection type 2 is a wire; every other connection is a pipe.
int LinkTypeOf(int connectionType) {
    constexpr int Pipe = 0;
    constexpr int Wire = 2;
    return connectionType == Wire ? Wire : Pipe;
}

void TieToRoom(int slot, int module, int room) {
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    if (project == nullptr || project->modules.Find(room) == nullptr) return;
    Module* found = project->modules.Find(module);
    if (found == nullptr) return;
    found->room = room;
    project->structure = NextRevision();
}

}  // namespace

void Pipe_PipeLinkAnalysis(int slot, int pipe, int connectionType, int startKind, int startNumber,
                           int startPort, int endKind, int endNumber, int endPort) {
    Trace("Pipe_PipeLinkAnalysis", slot, pipe, connectionType, startKind, startNumber, startPort, endKind,
          endNumber, endPort);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    if (project == nullptr) return;
    const int type = LinkTypeOf(connectionType);
    const int first = Tie(*project, type, {startKind, startNumber, startPort}, {ModuleKind, pipe, PipeInlet});
    if (first < 0) return;
    // A pipe is tied at both ends or not at all.
    const int second = Tie(*project, type, {ModuleKind, pipe, PipeOutlet}, {endKind, endNumber, endPort});
    if (second < 0) LinkRemove(*project, first);
}

void Pipe_RoomLinkAnalysis(int slot, int module, int room) {
    Trace("Pipe_RoomLinkAnalysis", slot, module, room);
    TieToRoom(slot, module, room);
}

void Pipe_FengKouLinkAnaysis(int slot, int module, int room) {
    Trace("Pipe_FengKouLinkAnaysis", slot, module, room);
    TieToRoom(slot, module, room);
}

int Pipe_ModuleVarRowGet(int slot, int module, const char* item) {
    Trace("Pipe_ModuleVarRowGet", slot, module, item);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    const Module* found = project == nullptr ? nullptr : project->modules.Find(module);
    return found == nullptr ? -1 : ItemRow(ModuleTypeFind(found->type)->items, item);
}
