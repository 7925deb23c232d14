#include "network/branch_walk.h"

#include <bit>
#include <cstdint>
#include <utility>
#include <vector>

#include "elements/instance_id.h"
#include "engine/vorn_core.h"
#include "network/project_check.h"

namespace vorn {

namespace {

constexpr int PortSelector = 5;
constexpr int AisleSelector = 2;
constexpr int FirstRow = 0;
constexpr auto NoBranch = static_cast<std::size_t>(-1);

/// A set of rows that can be gone through in order while others, which lie further on, join it.
struct RowSet {
    std::vector<std::uint64_t> words{};
    bool any = false;  ///< some row joined
};

constexpr int WordBits = 64;

void Join(RowSet& set, int row) {
    set.words[static_cast<std::size_t>(row / WordBits)] |= std::uint64_t{1} << (row % WordBits);
    set.any = true;
}

/// Takes the rows out in order and runs `run` on each.
template <typename Run>
void TakeAll(RowSet& set, Run run) {
    for (std::size_t word = 0; word < set.words.size(); ++word) {
        while (set.words[word] != 0) {
            const int row = static_cast<int>(word) * WordBits + std::countr_zero(set.words[word]);
            set.words[word] &= set.words[word] - 1;
            run(row);
        }
    }
    set.any = false;
}

/// Only rows that find branches are visited, in the order of the passes. The branches at an outlet await its
/// first row that is not consumed and lies behind the row that led them there; if there is none, its first
/// such row of the next pass. Branches that come to others at an outlet find them awaiting that very row.
struct Walk {
    int project;
    RowMarks& consumed;
    OutletRows outlets;
    std::vector<std::size_t> standing;      ///< by outlet's group: the branch that came last to it
    std::vector<std::size_t> nextStanding;  ///< by branch: the one that came to the outlet before it
    RowSet visits;                          ///< of this pass
    RowSet nextVisits;
};

/// Plans the visit for the branches at an outlet that have been there since before row `from` had its turn.
void Await(Walk& walk, std::size_t group, int from) {
    const std::size_t place = OutletRowFrom(walk.outlets, group, from);
    if (place != NoPlace) {
        Join(walk.visits, walk.outlets.rows[place].row);
        return;
    }
    const std::size_t again = OutletRowFrom(walk.outlets, group, FirstRow);
    if (again != NoPlace) Join(walk.nextVisits, walk.outlets.rows[again].row);
}

std::size_t OutletOf(const Walk& walk, const BranchElement& tail) {
    const AisleSxCache aisle = ModuleAisleSx(walk.project, tail.Module, tail.Aisle, AisleSelector);
    return OutletGroupFind(walk.outlets, tail.Module, aisle.OutPortNb);
}

/// Lets a branch come to an outlet. Where no row leaves it, the branch stays open for good.
void Stand(Walk& walk, std::size_t branch, std::size_t group, int from) {
    if (group == NoPlace) return;
    walk.nextStanding[branch] = std::exchange(walk.standing[group], branch);
    if (walk.nextStanding[branch] == NoBranch) Await(walk, group, from);
}

void Close(BranchSx& branch, const LinkSxCache& link) {
    branch.Post_Sx = link.S_Sx == ModuleKind ? ModulePortEnd : NodeEnd;
    branch.Post_Nb = link.S_Nb;
    branch.PostPort = link.S_PortNb;
    branch.Closed = 1;
}

/// Leads all branches that stand at the row's outlet along the row, which then is consumed.
void Visit(Walk& walk, int row) {
    const std::size_t place = walk.outlets.placeOf[static_cast<std::size_t>(row)];
    const LinkSxCache& link = walk.outlets.rows[place].link;
    walk.consumed[static_cast<std::size_t>(row)] = true;
    OutletRowConsume(walk.outlets, place);

    std::size_t branch = std::exchange(walk.standing[walk.outlets.rows[place].group], NoBranch);
    const bool goesOn = link.S_Sx == ModuleKind && link.S_Type2;
    const BranchElement element = goesOn ? ElementBehind(walk.project, link) : BranchElement();
    const std::size_t outlet = goesOn ? OutletOf(walk, element) : NoPlace;
    while (branch != NoBranch) {
        const std::size_t next = walk.nextStanding[branch];
        if (goesOn) {
            BranchElements[branch].push_back(element);
            ++BranchTable[branch].Size;
            Stand(walk, branch, outlet, row + 1);
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
    Walk walk{.project = project,
              .consumed = consumed,
              .outlets = OutletRowsGather(consumed),
              .standing = {},
              .nextStanding = std::vector<std::size_t>(BranchTable.size(), NoBranch),
              .visits = {std::vector<std::uint64_t>(consumed.size() / WordBits + 1)},
              .nextVisits = {std::vector<std::uint64_t>(consumed.size() / WordBits + 1)}};
    walk.standing.assign(walk.outlets.rows.size(), NoBranch);
    for (std::size_t branch = 0; branch < BranchTable.size(); ++branch) {
        Stand(walk, branch, OutletOf(walk, BranchElements[branch].back()), FirstRow);
    }
    for (int pass = 0; pass < PassLimit && walk.visits.any; ++pass) {
        TakeAll(walk.visits, [&walk](int row) { Visit(walk, row); });
        std::swap(walk.visits, walk.nextVisits);
    }
}

}  // namespace vorn
