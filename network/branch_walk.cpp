#include "network/branch_walk.h"

#include <array>
#include <bit>
#include <utility>

#include "engine/vorn_core.h"

namespace vorn {

namespace {

constexpr int PortSelector = 5;
constexpr int AisleSelector = 2;
constexpr std::int32_t FirstPlace = 0;
constexpr int WordBits = 64;

/// A set of places that can be gone through in order while others, which lie further on, join it.
struct PlaceSet {
    std::vector<std::uint64_t> words;
    bool any = false;  ///< some place joined

    explicit PlaceSet(std::size_t places) : words(places / WordBits + 1) {}
};

void PlaceJoin(PlaceSet& set, std::int32_t place) {
    set.words[place / WordBits] |= std::uint64_t{1} << (place % WordBits);
    set.any = true;
}

/// Takes the places out in order and runs `run` on each.
template <typename Run>
void PlacesTake(PlaceSet& set, Run run) {
    for (std::size_t word = 0; word < set.words.size(); ++word) {
        while (set.words[word] != 0) {
            const auto place = static_cast<std::int32_t>(word) * WordBits + std::countr_zero(set.words[word]);
            set.words[word] &= set.words[word] - 1;
            run(place);
        }
    }
    set.any = false;
}

struct Walk {
    std::vector<BranchSx>& branches;
    int project;
    OutletRows& outlets;
    std::vector<BranchStep>& steps;
    std::vector<std::int32_t> nextWaiting;  ///< by branch: the one that came before it to wait for its row
    std::array<PlaceSet, 2> visits;         ///< the rows that branches wait for: in this pass, in the next
};

/// The row that branches with this tail wait for, all rows before place `from` having had their turn in this
/// pass: their outlet's first from there on, and if there is none its first of the next pass. Branches that
/// came to the outlet before wait for that very row. `NoPlace` leaves the branches open for good.
std::int32_t PlaceAwait(Walk& walk, const BranchElement& tail, std::int32_t from) {
    const int port = ModuleAisleSx(walk.project, tail.Module, tail.Aisle, AisleSelector).OutPortNb;
    const std::int32_t place = OutletRowFind(walk.outlets, tail.Module, port, from);
    if (place != NoPlace) PlaceJoin(walk.visits[place < from ? 1 : 0], place);
    return place;
}

void BranchWait(Walk& walk, std::int32_t branch, std::int32_t place) {
    if (place == NoPlace) return;
    walk.nextWaiting[branch] = std::exchange(walk.outlets.rows[place].waiting, branch);
}

void BranchClose(BranchSx& branch, const LinkSxCache& link) {
    branch.Post_Sx = link.S_Sx == ModuleKind ? ModulePortEnd : NodeEnd;
    branch.Post_Nb = link.S_Nb;
    branch.PostPort = link.S_PortNb;
    branch.Closed = 1;
}

/// Leads all branches that wait for the row at `place` along it, and consumes it.
void RowVisit(Walk& walk, std::int32_t place) {
    OutletRow& row = walk.outlets.rows[place];
    const LinkSxCache& link = *row.link;
    row.consumed = true;
    std::int32_t branch = std::exchange(row.waiting, NoBranch);
    const bool goesOn = link.S_Sx == ModuleKind && link.S_Type2;
    const BranchElement element = goesOn ? ElementBehind(walk.project, link) : BranchElement();
    const std::int32_t awaited = goesOn ? PlaceAwait(walk, element, place + 1) : NoPlace;
    while (branch != NoBranch) {
        const std::int32_t next = walk.nextWaiting[branch];
        if (goesOn) {
            walk.steps.push_back({branch, element});
            ++walk.branches[branch].Size;
            BranchWait(walk, branch, awaited);
        } else {
            BranchClose(walk.branches[branch], link);
        }
        branch = next;
    }
}

}  // namespace

BranchElement ElementBehind(int project, const LinkSxCache& link) {
    return {link.S_Nb, ModulePortInfo(project, link.S_Nb, link.S_PortNb, PortSelector).AisleNb};
}

void BranchesWalk(std::vector<BranchSx>& branches, int project, OutletRows& outlets,
                  std::vector<BranchStep>& steps) {
    OutletRowsIndex(outlets);
    Walk walk{.branches = branches,
              .project = project,
              .outlets = outlets,
              .steps = steps,
              .nextWaiting = std::vector<std::int32_t>(branches.size(), NoBranch),
              .visits = {PlaceSet(outlets.rows.size()), PlaceSet(outlets.rows.size())}};
    for (std::int32_t branch = 0; branch < static_cast<std::int32_t>(branches.size()); ++branch) {
        BranchWait(walk, branch, PlaceAwait(walk, steps[branch].element, FirstPlace));
    }
    for (int pass = 0; pass < PassLimit && walk.visits[0].any; ++pass) {
        PlacesTake(walk.visits[0], [&walk](std::int32_t place) { RowVisit(walk, place); });
        std::swap(walk.visits[0], walk.visits[1]);
    }
}

}  // namespace vorn
