// The analysis of a project: the snapshot that it works on and all that it finds there, as one record.
//
// `net_access.cpp` owns the one of the library, which describes the project analysed last; whose project that
// was is not kept. No lock guards it: analyses and reports come one at a time.

#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/vorn_records.h"

namespace vorn {

/// The kind of a branch's end. A port table gives the kind of a far end in the same way.
enum BranchEndKind : std::uint8_t { ModulePortEnd = 0, NodeEnd = 1 };

/// One branch: a chain of modules in flow direction, between a front end and a post end. An end is a node, or
/// a module port at which the chain stops. Until the branch is closed its post end is not set.
struct BranchSx {
    std::int32_t Type = PipeLink;  ///< of the row that opened it; INFO and MECH only from page links
    std::int32_t Size = 0;         ///< modules passed
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

/// What hangs at the ports of one node.
struct NodePortSx {
    std::array<std::uint8_t, PortsPerElement> PortUsed{};  ///< 1 where a branch ends at the port
    std::array<std::uint8_t, PortsPerElement> PeerSx{};    ///< the branch's far end: a `BranchEndKind`
    std::array<std::int32_t, PortsPerElement> PeerNb{};    ///< and its number, where the port is used
};

struct Analysis {
    ProjectCheckCache ProjectCheck;  ///< about 4 MB; a report writes default identities into it

    /// The branches by number. None are at hand while it is empty: a report uses the analysis up.
    std::vector<BranchSx> BranchTable;
    /// The modules of branch 0, then those of branch 1, and so on: `Size` of each, in flow order, the tail
    /// last.
    std::vector<BranchElement> BranchElements;

    // The nets of the last project whose branches were all complete. A matrix is one net.
    std::vector<NodePortSx> NodePortTable;  ///< by node row
    std::vector<std::int32_t> MatrixSize;   ///< by matrix: how many nodes it has
    std::vector<std::int32_t> MatrixNodes;  ///< the nodes of matrix 0, then of matrix 1, ascending in each

    std::string
        ParseMessage;        ///< the last verdict, UTF-8 with a line feed at its end; empty before the first
    std::string ReportText;  ///< the last report, which the host holds by its pointer
};

}  // namespace vorn
