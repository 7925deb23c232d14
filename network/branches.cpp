#include "network/branches.h"

#include <algorithm>

#include "network/branch_walk.h"
#include "network/outlet_rows.h"
#include "network/snapshot.h"
#include "network/verdict.h"

namespace vorn {

namespace {

/// True for a row that makes no branch: it carries neither fluid nor power, or a page link stands for it.
bool IsUntraced(const LinkSxCache& link, bool pageLink) {
    if (link.Type == InformationLink || link.Type == MechanicalLink) return true;
    return !pageLink && (link.F_Sx == JumpKind || link.S_Sx == JumpKind);
}

/// True for a row that comes from a node or from an end port.
bool IsOpening(const LinkSxCache& link) {
    return link.F_Sx == NodeKind || (link.F_Sx == ModuleKind && !link.F_Type2);
}

/// Opens the branches, and gathers the rows that are left for the walk. A page link opens a branch whatever
/// it carries.
void RowsSort(Analysis& analysis, int project, OutletRows& outlets, std::vector<BranchStep>& steps) {
    ForLinkRows(analysis.ProjectCheck, [&](int, const LinkSxCache& link, bool pageLink) {
        const bool untraced = IsUntraced(link, pageLink);
        if (IsOpening(link) && (pageLink || !untraced)) {
            steps.push_back(
                {static_cast<std::int32_t>(analysis.BranchTable.size()), ElementBehind(project, link)});
            analysis.BranchTable.push_back({.Type = link.Type,
                                            .Size = 1,
                                            .Front_Sx = link.F_Sx == NodeKind ? NodeEnd : ModulePortEnd,
                                            .Front_Nb = link.F_Nb,
                                            .FrontPort = link.F_PortNb});
        } else if (!untraced) {
            outlets.rows.push_back({.link = &link});
        }
    });
}

/// Puts the elements of each branch together; they keep their order.
void ElementsLayOut(Analysis& analysis, const std::vector<BranchStep>& steps) {
    std::vector<std::int32_t> next;
    next.reserve(analysis.BranchTable.size());
    std::int32_t end = 0;
    for (const BranchSx& branch : analysis.BranchTable) {
        next.push_back(end);
        end += branch.Size;
    }
    analysis.BranchElements.resize(steps.size());
    for (const BranchStep& step : steps) analysis.BranchElements[next[step.branch]++] = step.element;
}

bool AllClosed(Analysis& analysis) {
    std::int32_t end = 0;
    for (std::size_t number = 0; number < analysis.BranchTable.size(); ++number) {
        const BranchSx& branch = analysis.BranchTable[number];
        end += branch.Size;
        if (branch.Closed == 1) continue;
        const BranchElement& tail = analysis.BranchElements[end - 1];
        Net_ParseMessageSet(analysis, BranchOpen, static_cast<int>(number), tail.Module, tail.Aisle);
        return false;
    }
    return true;
}

bool AllConsumed(Analysis& analysis, const OutletRows& outlets) {
    const auto row = std::find_if(outlets.rows.begin(), outlets.rows.end(),
                                  [](const OutletRow& each) { return !each.consumed; });
    if (row == outlets.rows.end()) return true;
    Net_ParseMessageSet(analysis, RowNotConsumed, -1, row->link->F_Nb, row->link->F_PortNb);
    return false;
}

}  // namespace

bool BranchesTrace(Analysis& analysis, int project) {
    analysis.BranchTable.clear();
    analysis.BranchElements.clear();
    const ProjectCheckCache& check = analysis.ProjectCheck;
    OutletRows outlets{.moduleCount = check.ModuleNb};
    std::vector<BranchStep> steps;
    outlets.rows.reserve(check.LinkNb + check.PageLinkNb);
    steps.reserve(check.LinkNb + check.PageLinkNb);
    RowsSort(analysis, project, outlets, steps);
    BranchesWalk(analysis.BranchTable, project, outlets, steps);
    ElementsLayOut(analysis, steps);
    return AllClosed(analysis) && AllConsumed(analysis, outlets);
}

}  // namespace vorn
