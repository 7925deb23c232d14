#include "network/branch_walk.h"

#include <algorithm>
#include <compare>
#include <functional>
#include <numeric>
#include <queue>
#include <utility>

#include "elements/instance_id.h"
#include "engine/vorn_core.h"
#include "network/project_check.h"

namespace vorn {

namespace {

constexpr int PortSelector = 5;
constexpr int AisleSelector = 2;
constexpr int BeforeFirstRow = -1;
constexpr auto NoGroup = static_cast<std::size_t>(-1);
constexpr auto NoBranch = static_cast<std::size_t>(-1);

/// A port at which branches leave a module; the numbers are as the rows tell them, and may name nothing.
struct Outlet {
    int module;
    int port;
    auto operator<=>(const Outlet&) const = default;
};

/// A row that leads away from an outlet.
struct WaitingRow {
    Outlet outlet;
    int row;
    auto operator<=>(const WaitingRow&) const = default;
};

/// A row that will find branches when the pass comes to it.
struct Visit {
    int row;
    std::size_t place;  ///< its place among the waiting rows
    std::size_t group;  ///< the place of its outlet's first row
    auto operator<=>(const Visit&) const = default;
};
using Visits = std::priority_queue<Visit, std::vector<Visit>, std::greater<>>;  // the earliest row first

/// Only rows that find branches are visited, in the order of the passes. The branches at an outlet await its
/// first row that is not consumed and lies behind the row that led them there; if there is none, its first
/// such row of the next pass. Branches that come to others at an outlet find them awaiting that very row.
struct Walk {
    int project;
    std::vector<WaitingRow> waiting{};    ///< sorted; those of one outlet are a group
    std::vector<std::size_t> left{};      ///< by place: all rows from here to the place named are consumed
    std::vector<std::size_t> standing{};  ///< by group: the branch that came last to its outlet
    std::vector<std::size_t> nextStanding{};  ///< by branch: the one that came before it
    Visits visits{};                          ///< of this pass
    Visits nextVisits{};
};

std::vector<WaitingRow> WaitingRows(const RowMarks& consumed) {
    std::vector<WaitingRow> waiting;
    for (int row = 0; row < LinkRowCount(); ++row) {
        const LinkSxCache& link = LinkRowAt(row);
        if (!link.InUse || consumed[static_cast<std::size_t>(row)]) continue;
        if (link.F_Sx != ModuleKind || !link.F_Type2) continue;
        waiting.push_back({{link.F_Nb, link.F_PortNb}, row});
    }
    std::sort(waiting.begin(), waiting.end());
    return waiting;
}

std::size_t PlaceOf(const Walk& walk, const WaitingRow& row) {
    const auto place = std::lower_bound(walk.waiting.begin(), walk.waiting.end(), row);
    return static_cast<std::size_t>(place - walk.waiting.begin());
}

bool InGroup(const Walk& walk, std::size_t place, std::size_t group) {
    return place < walk.waiting.size() && walk.waiting[place].outlet == walk.waiting[group].outlet;
}

/// The first place from `place` on whose row is not consumed.
std::size_t FirstLeft(Walk& walk, std::size_t place) {
    std::size_t first = place;
    while (walk.left[first] != first) first = walk.left[first];
    while (walk.left[place] != first) place = std::exchange(walk.left[place], first);
    return first;
}

/// Plans the visit for the branches that stand at the outlet of `group` since the visit of `row`.
void Await(Walk& walk, std::size_t group, int row) {
    const std::size_t behind = FirstLeft(walk, PlaceOf(walk, {walk.waiting[group].outlet, row + 1}));
    if (InGroup(walk, behind, group)) {
        walk.visits.push({walk.waiting[behind].row, behind, group});
        return;
    }
    const std::size_t first = FirstLeft(walk, group);
    if (InGroup(walk, first, group)) walk.nextVisits.push({walk.waiting[first].row, first, group});
}

/// The group of the rows that lead on from `tail`, `NoGroup` when no row does.
std::size_t GroupBehind(const Walk& walk, const BranchElement& tail) {
    const AisleSxCache aisle = ModuleAisleSx(walk.project, tail.Module, tail.Aisle, AisleSelector);
    const Outlet outlet{tail.Module, aisle.OutPortNb};
    const std::size_t group = PlaceOf(walk, {outlet, 0});
    return group < walk.waiting.size() && walk.waiting[group].outlet == outlet ? group : NoGroup;
}

/// Lets a branch stand at an outlet, to which it came by the visit of `row`.
void Stand(Walk& walk, std::size_t branch, std::size_t group, int row) {
    if (group == NoGroup) return;
    const std::size_t before = std::exchange(walk.standing[group], branch);
    walk.nextStanding[branch] = before;
    if (before == NoBranch) Await(walk, group, row);
}

void Close(BranchSx& branch, const LinkSxCache& link) {
    branch.Post_Sx = link.S_Sx == ModuleKind ? ModulePortEnd : NodeEnd;
    branch.Post_Nb = link.S_Nb;
    branch.PostPort = link.S_PortNb;
    branch.Closed = 1;
}

/// Leads all branches that stand at the row's outlet along the row, which then is consumed.
void Serve(Walk& walk, RowMarks& consumed, const Visit& visit) {
    const LinkSxCache& link = LinkRowAt(visit.row);
    consumed[static_cast<std::size_t>(visit.row)] = true;
    walk.left[visit.place] = visit.place + 1;

    std::size_t branch = std::exchange(walk.standing[visit.group], NoBranch);
    const bool goesOn = link.S_Sx == ModuleKind && link.S_Type2;
    const BranchElement element = goesOn ? ElementBehind(walk.project, link) : BranchElement();
    const std::size_t group = goesOn ? GroupBehind(walk, element) : NoGroup;
    while (branch != NoBranch) {
        const std::size_t next = walk.nextStanding[branch];
        if (goesOn) {
            BranchElements[branch].push_back(element);
            ++BranchTable[branch].Size;
            Stand(walk, branch, group, visit.row);
        } else {
            Close(BranchTable[branch], link);
        }
        branch = next;
    }
}

}  // namespace

BranchElement ElementBehind(int project, const LinkSxCache& link) {
    return {link.S_Nb, ModulePortInfo(project, link.S_Nb, link.S_PortNb, PortSelector).AisleNb};
}

void BranchesWalk(int project, RowMarks& consumed) {
    Walk walk{.project = project, .waiting = WaitingRows(consumed)};
    walk.left.resize(walk.waiting.size() + 1);
    std::iota(walk.left.begin(), walk.left.end(), std::size_t{0});
    walk.standing.assign(walk.waiting.size(), NoBranch);
    walk.nextStanding.assign(BranchTable.size(), NoBranch);

    for (std::size_t branch = 0; branch < BranchTable.size(); ++branch) {
        Stand(walk, branch, GroupBehind(walk, BranchElements[branch].back()), BeforeFirstRow);
    }
    for (int pass = 0; pass < PassLimit && !walk.visits.empty(); ++pass) {
        while (!walk.visits.empty()) {
            const Visit visit = walk.visits.top();
            walk.visits.pop();
            Serve(walk, consumed, visit);
        }
        walk.visits.swap(walk.nextVisits);
    }
}

}  // namespace vorn
