#include "network/branches.h"

#include <algorithm>

#include "elements/instance_id.h"
#include "network/branch_walk.h"
#include "network/project_check.h"
#include "network/verdict.h"

namespace vorn {

std::int32_t BranchNb = 0;
std::vector<BranchSx>& BranchTable = *new std::vector<BranchSx>;
std::vector<std::vector<BranchElement>>& BranchElements = *new std::vector<std::vector<BranchElement>>;

namespace {

constexpr int InformationLink = 1;
constexpr int MechanicalLink = 3;

bool IsPageLink(int row) {
    return row >= ProjectCheck.LinkNb;
}

/// True for a row that makes no branch: it carries neither fluid nor power, or a page link stands for it.
bool Untraced(int row) {
    const LinkSxCache& link = LinkRowAt(row);
    if (link.Type == InformationLink || link.Type == MechanicalLink) return true;
    return !IsPageLink(row) && (link.F_Sx == JumpKind || link.S_Sx == JumpKind);
}

/// True for a row that comes from a node or from an end port.
bool Opens(const LinkSxCache& link) {
    return link.F_Sx == NodeKind || (link.F_Sx == ModuleKind && !link.F_Type2);
}

void OpenBranch(int project, const LinkSxCache& link) {
    BranchTable.push_back({.Type = link.Type,
                           .Size = 1,
                           .Front_Sx = link.F_Sx == NodeKind ? NodeEnd : ModulePortEnd,
                           .Front_Nb = link.F_Nb,
                           .FrontPort = link.F_PortNb});
    BranchElements.push_back({ElementBehind(project, link)});
    ++BranchNb;
}

/// A page link opens a branch whatever it carries.
void OpenBranches(int project, RowMarks& consumed) {
    for (int row = 0; row < LinkRowCount(); ++row) {
        const LinkSxCache& link = LinkRowAt(row);
        const auto mark = static_cast<std::size_t>(row);
        if (!link.InUse || !Opens(link) || (consumed[mark] && !IsPageLink(row))) continue;
        OpenBranch(project, link);
        consumed[mark] = true;
    }
}

bool AllClosed() {
    const auto open = std::find_if(BranchTable.begin(), BranchTable.end(),
                                   [](const BranchSx& branch) { return branch.Closed == 0; });
    if (open == BranchTable.end()) return true;
    const auto branch = open - BranchTable.begin();
    const BranchElement& tail = BranchElements[static_cast<std::size_t>(branch)].back();
    Net_ParseMessageSet(BranchOpen, static_cast<int>(branch), tail.Module, tail.Aisle);
    return false;
}

bool AllConsumed(const RowMarks& consumed) {
    for (int row = 0; row < LinkRowCount(); ++row) {
        const LinkSxCache& link = LinkRowAt(row);
        if (!link.InUse || consumed[static_cast<std::size_t>(row)]) continue;
        Net_ParseMessageSet(RowNotConsumed, -1, link.F_Nb, link.F_PortNb);
        return false;
    }
    return true;
}

}  // namespace

bool BranchesTrace(int project) {
    BranchNb = 0;
    BranchTable.clear();
    BranchElements.clear();

    RowMarks consumed(static_cast<std::size_t>(LinkRowCount()));
    for (int row = 0; row < LinkRowCount(); ++row) consumed[static_cast<std::size_t>(row)] = Untraced(row);
    OpenBranches(project, consumed);
    BranchesWalk(project, consumed);
    return AllClosed() && AllConsumed(consumed);
}

}  // namespace vorn
