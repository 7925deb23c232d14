// The networks seen from the nodes: what hangs at each port of a node, and which nodes make one net.

#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "engine/vorn_records.h"

namespace vorn {

/// The ports of one node: 0 to 7 are its inlets and 8 to 15 its outlets.
struct NodePortSx {
    std::array<std::uint8_t, PortsPerElement> PortUsed{};  ///< 1 where a branch ends at the port
    std::array<std::int32_t, PortsPerElement> PortBranch;  ///< the branch
    std::array<std::uint8_t, PortsPerElement> PeerSx{};    ///< the branch's far end: 0 module port, 1 node
    std::array<std::int32_t, PortsPerElement> PeerNb;      ///< its number
    std::array<std::int32_t, PortsPerElement> PeerPort;    ///< and its port there

    NodePortSx() {
        PortBranch.fill(-1);
        PeerNb.fill(-1);
        PeerPort.fill(-1);
    }
};

/// The nets of the last project whose branches were all complete. A matrix is one net; its number is below
/// `MatrixNb`, and its nodes stand in ascending order.
extern std::vector<NodePortSx>& NodePortTable;    ///< by node row
extern std::vector<std::int32_t>& NodeMatrixRow;  ///< by node row: its position in its matrix, -1 for none
extern std::int32_t MatrixNb;
extern std::vector<std::int32_t>& MatrixSize;
extern std::vector<std::vector<std::int32_t>>& MatrixNodes;

/// Maps the nodes of the snapshot, `nodeCount` rows, into nets by the branches of `BranchTable`, all of them
/// closed. A branch end outside the tables is passed over; of two branches at one port the higher number
/// stands. True when each net has a pressure-holding end, a branch from one of its nodes to a module port;
/// else the verdict is set for the first that has none.
bool Net_NodeMatrixMap(int nodeCount);

/// True for a node row in use whose kind takes part in nets: all but INFO.
bool Net_NodeInMatrix(int node);

}  // namespace vorn
