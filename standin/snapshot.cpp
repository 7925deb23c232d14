// The engine's operations that serve the network analysis: the snapshot of a project, the connections that
// lead over jumps, and the aisles of its modules.

#include <algorithm>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "engine/vorn_core.h"
#include "standin/project.h"
#include "standin/trace.h"
#include "text/fixed_text.h"

using namespace standin;

namespace {

/// The record filled last. The engine lock guards it.
struct Filled {
    ProjectCheckCache* record = nullptr;
    std::uint64_t shown = 0;     ///< what it shows: `Project::shown`
    std::vector<int> modules{};  ///< rows in use without an identity, for which the caller may enter one
    std::vector<int> nodes{};
    bool pageLinksAwaited = false;
};
Filled filled;

/// A record keeps what it shows in the block that is the engine's, so that one that was made anew in its
/// place is known by the zero there.
std::uint64_t ShownBy(const ProjectCheckCache& check) {
    std::uint64_t shown = 0;
    std::memcpy(&shown, check.EngineOwn, sizeof shown);
    return shown;
}

void ShownSet(ProjectCheckCache& check, std::uint64_t shown) {
    std::memcpy(check.EngineOwn, &shown, sizeof shown);
}

/// Rows of a table, as many as the record has room for.
template <typename Row>
std::int32_t CountOf(const Table<Row>& table, std::int32_t room) {
    return std::min(static_cast<std::int32_t>(table.rows.size()), room);
}

void Fill(ModuleRow& row, const Module& module) {
    row.InUse = module.inUse;
    row.TypeNb = module.type;
    row.PositionX = module.x;
    row.PositionZ = module.z;
    const ModuleType* type = ModuleTypeFind(module.type);
    row.VornModuleOneID = type == nullptr ? 0 : type->oneId;
    vorn::TextCopy(row.ModelID, module.modelId);
    vorn::TextCopy(row.InstanceID, module.instanceId);
}

void Fill(NodeRow& row, const Node& node) {
    row.InUse = node.inUse;
    row.Kind = node.kind;
    row.PositionX = node.x;
    row.PositionZ = node.z;
    vorn::TextCopy(row.InstanceID, node.instanceId);
}

void Fill(LinkSxCache& row, const LinkSxCache& link) {
    row = link;
}

template <typename Row, typename SnapshotRow>
void FillRows(const Table<Row>& table, std::int32_t count, SnapshotRow* rows) {
    for (std::int32_t row = 0; row < count; ++row) Fill(rows[row], table.rows[static_cast<std::size_t>(row)]);
}

template <typename SnapshotRow>
std::vector<int> WithoutIdentity(const SnapshotRow* rows, std::int32_t count) {
    std::vector<int> found;
    for (std::int32_t row = 0; row < count; ++row) {
        if (rows[row].InUse && rows[row].InstanceID[0] == '\0') found.push_back(row);
    }
    return found;
}

/// The record as it was filled, when its project has not changed since. False for any other record.
bool Refill(ProjectCheckCache& check, const Project& project) {
    if (filled.record != &check || filled.shown != project.shown || ShownBy(check) != project.shown)
        return false;
    for (const int row : filled.modules) vorn::TextCopy(check.ModuleSx[row].InstanceID, {});
    for (const int row : filled.nodes) vorn::TextCopy(check.NodeSx[row].InstanceID, {});
    return true;
}

void FillAll(ProjectCheckCache& check, const Project& project) {
    check.ModuleNb = CountOf(project.modules, ModuleCapacity);
    check.NodeNb = CountOf(project.nodes, NodeCapacity);
    check.LinkNb = CountOf(project.links, LinkCapacity);
    FillRows(project.modules, check.ModuleNb, check.ModuleSx);
    FillRows(project.nodes, check.NodeNb, check.NodeSx);
    FillRows(project.links, check.LinkNb, check.LinkSx);
    filled = {.record = &check,
              .shown = project.shown,
              .modules = WithoutIdentity(check.ModuleSx, check.ModuleNb),
              .nodes = WithoutIdentity(check.NodeSx, check.NodeNb),
              .pageLinksAwaited = true};
}

/// The rows that lead out of each jump, in row order.
using JumpOutlets = std::unordered_map<std::int32_t, std::vector<const LinkSxCache*>>;

bool IsPlace(std::int32_t kind) {
    return kind == ModuleKind || kind == NodeKind;
}

JumpOutlets OutletsOf(const ProjectCheckCache& check) {
    JumpOutlets outlets;
    for (std::int32_t row = 0; row < check.LinkNb; ++row) {
        const LinkSxCache& link = check.LinkSx[row];
        if (link.InUse && link.F_Sx == JumpKind) outlets[link.F_Nb].push_back(&link);
    }
    return outlets;
}

/// Where the jumps lead: by jump number, the last jump of a line of jumps of which each leads to the next
/// alone.
using LineEnds = std::unordered_map<std::int32_t, std::int32_t>;

std::int32_t LineEnd(const JumpOutlets& outlets, LineEnds& ends, std::int32_t jump) {
    std::vector<std::int32_t> line;
    // A ring ends where it is met again.
    while (ends.try_emplace(jump, jump).second) {
        line.push_back(jump);
        const auto found = outlets.find(jump);
        if (found == outlets.end() || found->second.size() != 1) break;
        if (found->second[0]->S_Sx != JumpKind) break;
        jump = found->second[0]->S_Nb;
    }
    const std::int32_t end = ends[jump];
    for (const std::int32_t each : line) ends[each] = end;
    return end;
}

/// The rows that lead from a jump, and from the jumps joined to it, to modules and nodes.
std::vector<const LinkSxCache*> WaysOut(const JumpOutlets& outlets, LineEnds& ends, std::int32_t jump) {
    std::vector<const LinkSxCache*> ways;
    std::vector<std::int32_t> jumps{LineEnd(outlets, ends, jump)};
    std::unordered_set<std::int32_t> seen{jumps[0]};
    for (std::size_t next = 0; next < jumps.size(); ++next) {
        const auto found = outlets.find(jumps[next]);
        if (found == outlets.end()) continue;
        for (const LinkSxCache* link : found->second) {
            if (IsPlace(link->S_Sx)) ways.push_back(link);
            if (link->S_Sx != JumpKind) continue;
            const std::int32_t onward = LineEnd(outlets, ends, link->S_Nb);
            if (seen.insert(onward).second) jumps.push_back(onward);
        }
    }
    return ways;
}

/// Joins each row into a jump with each way out of it, as far as there is room.
void MakePageLinks(ProjectCheckCache& check) {
    const JumpOutlets outlets = OutletsOf(check);
    LineEnds ends;
    std::unordered_map<std::int32_t, std::vector<const LinkSxCache*>> waysOut;
    for (std::int32_t row = 0; row < check.LinkNb; ++row) {
        const LinkSxCache& into = check.LinkSx[row];
        if (!into.InUse || !IsPlace(into.F_Sx) || into.S_Sx != JumpKind) continue;
        const auto [ways, isNew] = waysOut.try_emplace(into.S_Nb);
        if (isNew) ways->second = WaysOut(outlets, ends, into.S_Nb);
        for (const LinkSxCache* out : ways->second) {
            if (check.PageLinkNb == PageLinkCapacity) return;
            LinkSxCache& page = check.PageLinkSx[check.PageLinkNb++];
            page = into;
            page.S_Sx = out->S_Sx;
            page.S_Nb = out->S_Nb;
            page.S_PortNb = out->S_PortNb;
            page.S_Type2 = out->S_Type2;
        }
    }
}

}  // namespace

void ProjectInfoGet(const char* name, ProjectCheckCache& check) {
    Trace("ProjectInfoGet", name);
    const std::lock_guard guard(EngineLock());
    const Project* project = ProjectFind(name);
    if (project != nullptr && Refill(check, *project)) return;
    filled = {};
    ShownSet(check, 0);
    check.ModuleNb = check.NodeNb = check.LinkNb = check.PageLinkNb = 0;
    if (project != nullptr) FillAll(check, *project);
}

void ProjectInfoJumpLinkPressing(int slot) {
    Trace("ProjectInfoJumpLinkPressing", slot);
    const std::lock_guard guard(EngineLock());
    if (!std::exchange(filled.pageLinksAwaited, false)) return;
    MakePageLinks(*filled.record);
    ShownSet(*filled.record, filled.shown);
}

ModulePortInfoCache ModulePortInfo(int slot, int module, int port, int selector) {
    Trace("ModulePortInfo", slot, module, port, selector);
    const ModuleType* type = PublishedTypeFind(slot, module);
    ModulePortInfoCache info;
    if (type != nullptr && port >= 0 && port < static_cast<int>(type->ports.size())) {
        info.AisleNb = type->ports[port].aisle;
    }
    return info;
}

AisleSxCache ModuleAisleSx(int slot, int module, int aisle, int selector) {
    Trace("ModuleAisleSx", slot, module, aisle, selector);
    const ModuleType* type = PublishedTypeFind(slot, module);
    AisleSxCache info;
    if (type != nullptr && aisle >= 0 && aisle < static_cast<int>(type->aisles.size())) {
        info.OutPortNb = type->aisles[aisle].outlet;
    }
    return info;
}
