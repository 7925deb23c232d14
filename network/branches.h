// Branches: the chains of modules that a project's links make, in flow direction, each between a front end
// and a post end. An end is a node, or a module port at which the chain stops.

#pragma once

#include <cstdint>
#include <vector>

namespace vorn {

/// The kind of a branch's end. A port table tells the kind of a far end in the same way.
enum BranchEndKind : std::uint8_t { ModulePortEnd = 0, NodeEnd = 1 };

/// One branch. Until it is closed its post end is not set.
struct BranchSx {
    std::int32_t Type = 0;  ///< of the row that opened it: 0 pipe, 2 wire; 1 and 3 only from page links
    std::int32_t Size = 0;  ///< modules passed
    BranchEndKind Front_Sx = ModulePortEnd;
    std::int32_t Front_Nb = -1;
    std::int32_t FrontPort = -1;
    BranchEndKind Post_Sx = ModulePortEnd;
    std::int32_t Post_Nb = -1;
    std::int32_t PostPort = -1;
    std::uint8_t Closed = 0;  ///< 1 once the post end is set
};

/// One module passed by a branch, and the aisle through which the branch passes it.
struct BranchElement {
    std::int32_t Module = -1;
    std::int32_t Aisle = -1;
};

/// What the last analysis traced; whose project it was is not kept. A report takes `BranchNb` back to 0,
/// which means that no branches are at hand. The elements of a branch stand in flow order, the last one is
/// its tail.
extern std::int32_t BranchNb;
extern std::vector<BranchSx>& BranchTable;
extern std::vector<std::vector<BranchElement>>& BranchElements;

/// Traces the branches of the loaded snapshot, and asks the engine for the aisles of slot `project`. True
/// when every branch is closed and every row of a pipe or wire belongs to one; else the verdict is set, and
/// the branches stay as far as they were traced.
bool BranchesTrace(int project);

}  // namespace vorn
