#include "network/nets.h"

#include <algorithm>

#include "elements/node_kind.h"
#include "network/branches.h"
#include "network/project_check.h"
#include "network/verdict.h"

namespace vorn {

std::vector<NodePortSx>& NodePortTable = *new std::vector<NodePortSx>;
std::vector<std::int32_t>& NodeMatrixRow = *new std::vector<std::int32_t>;
std::int32_t MatrixNb = 0;
std::vector<std::int32_t>& MatrixSize = *new std::vector<std::int32_t>;
std::vector<std::vector<std::int32_t>>& MatrixNodes = *new std::vector<std::vector<std::int32_t>>;

namespace {

constexpr int InfoKind = 1;

/// One end of a branch.
struct BranchEnd {
    BranchEndKind kind;
    std::int32_t number;
    std::int32_t port;
};

NodePortSx& PortsOf(int node) {
    return NodePortTable[static_cast<std::size_t>(node)];
}

void EnterEnd(int branch, const BranchEnd& end, const BranchEnd& peer) {
    if (end.kind != NodeEnd || end.port < 0 || end.port >= PortsPerElement) return;
    if (end.number < 0 || end.number >= static_cast<int>(NodePortTable.size())) return;
    const auto port = static_cast<std::size_t>(end.port);
    NodePortSx& ports = PortsOf(end.number);
    ports.PortUsed[port] = 1;
    ports.PortBranch[port] = branch;
    ports.PeerSx[port] = peer.kind;
    ports.PeerNb[port] = peer.number;
    ports.PeerPort[port] = peer.port;
}

void EnterBranches() {
    for (int number = 0; number < BranchNb; ++number) {
        const BranchSx& branch = BranchTable[static_cast<std::size_t>(number)];
        const BranchEnd front{branch.Front_Sx, branch.Front_Nb, branch.FrontPort};
        const BranchEnd post{branch.Post_Sx, branch.Post_Nb, branch.PostPort};
        EnterEnd(number, front, post);
        EnterEnd(number, post, front);
    }
}

/// Gives the nodes that can be reached from `lowest` and belong to no matrix yet. A port table names its
/// neighbours, and a neighbour whose port went to another branch need not name it back: the way counts in the
/// direction in which it is named.
std::vector<std::int32_t> Flood(std::int32_t lowest, std::vector<bool>& mapped) {
    std::vector<std::int32_t> nodes{lowest};
    mapped[static_cast<std::size_t>(lowest)] = true;
    for (std::size_t next = 0; next < nodes.size(); ++next) {
        const NodePortSx& ports = PortsOf(nodes[next]);
        for (std::size_t port = 0; port < PortsPerElement; ++port) {
            const std::int32_t peer = ports.PeerNb[port];
            if (ports.PortUsed[port] == 0 || ports.PeerSx[port] != NodeEnd) continue;
            if (!Net_NodeInMatrix(peer) || mapped[static_cast<std::size_t>(peer)]) continue;
            mapped[static_cast<std::size_t>(peer)] = true;
            nodes.push_back(peer);
        }
    }
    std::sort(nodes.begin(), nodes.end());
    return nodes;
}

/// Makes the matrices in the order of their lowest nodes. A node that leads into an earlier matrix, but is
/// not named there, does not join it.
void MapNodes(int nodeCount) {
    MatrixNb = 0;
    MatrixSize.clear();
    MatrixNodes.clear();
    std::vector<bool> mapped(static_cast<std::size_t>(nodeCount));
    for (int node = 0; node < nodeCount; ++node) {
        if (!Net_NodeInMatrix(node) || mapped[static_cast<std::size_t>(node)]) continue;
        const std::vector<std::int32_t>& nodes = MatrixNodes.emplace_back(Flood(node, mapped));
        MatrixSize.push_back(static_cast<std::int32_t>(nodes.size()));
        ++MatrixNb;
        for (std::size_t row = 0; row < nodes.size(); ++row) {
            NodeMatrixRow[static_cast<std::size_t>(nodes[row])] = static_cast<std::int32_t>(row);
        }
    }
}

bool HoldsPressure(int node) {
    const NodePortSx& ports = PortsOf(node);
    for (std::size_t port = 0; port < PortsPerElement; ++port) {
        if (ports.PortUsed[port] == 1 && ports.PeerSx[port] == ModulePortEnd) return true;
    }
    return false;
}

}  // namespace

bool Net_NodeInMatrix(int node) {
    const NodeRow* row = NodeRowFind(node);
    if (row == nullptr || row->Kind == InfoKind || row->Kind >= static_cast<int>(NodeTypeTable.size())) {
        return false;
    }
    return row->InUse;
}

bool Net_NodeMatrixMap(int nodeCount) {
    NodePortTable.assign(static_cast<std::size_t>(nodeCount), NodePortSx());
    NodeMatrixRow.assign(static_cast<std::size_t>(nodeCount), -1);
    EnterBranches();
    MapNodes(nodeCount);
    for (const std::vector<std::int32_t>& nodes : MatrixNodes) {
        if (std::any_of(nodes.begin(), nodes.end(), HoldsPressure)) continue;
        Net_ParseMessageSet(NetWithoutPressure, -1, nodes.front(), -1);
        return false;
    }
    return true;
}

}  // namespace vorn
