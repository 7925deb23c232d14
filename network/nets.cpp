#include "network/nets.h"

#include <algorithm>
#include <span>

#include "network/snapshot.h"
#include "network/verdict.h"

namespace vorn {

namespace {

constexpr std::int32_t NoMatrix = -1;

/// One end of a branch.
struct BranchEnd {
    BranchEndKind kind;
    std::int32_t number;
    std::int32_t port;
};

void EndEnter(std::vector<NodePortSx>& table, const BranchEnd& end, const BranchEnd& peer) {
    if (end.kind != NodeEnd || end.port < 0 || end.port >= PortsPerElement) return;
    if (end.number < 0 || end.number >= static_cast<int>(table.size())) return;
    NodePortSx& ports = table[end.number];
    ports.PortUsed[end.port] = 1;
    ports.PeerSx[end.port] = peer.kind;
    ports.PeerNb[end.port] = peer.number;
}

void BranchesEnter(Analysis& analysis) {
    analysis.NodePortTable.assign(analysis.ProjectCheck.NodeNb, NodePortSx());
    for (const BranchSx& branch : analysis.BranchTable) {
        const BranchEnd front{branch.Front_Sx, branch.Front_Nb, branch.FrontPort};
        const BranchEnd post{branch.Post_Sx, branch.Post_Nb, branch.PostPort};
        EndEnter(analysis.NodePortTable, front, post);
        EndEnter(analysis.NodePortTable, post, front);
    }
}

/// Maps all nodes that can be reached from `lowest` and have no matrix yet, and gives their number. A port
/// table names its neighbours, and a neighbour whose port went to another branch need not name it back: the
/// way counts in the direction in which it is named.
std::int32_t MatrixFlood(const Analysis& analysis, std::int32_t lowest, std::int32_t matrix,
                         std::vector<std::int32_t>& matrixOf) {
    std::vector<std::int32_t> nodes{lowest};
    matrixOf[lowest] = matrix;
    for (std::size_t next = 0; next < nodes.size(); ++next) {
        const NodePortSx& ports = analysis.NodePortTable[nodes[next]];
        for (std::size_t port = 0; port < PortsPerElement; ++port) {
            const std::int32_t peer = ports.PeerNb[port];
            if (ports.PortUsed[port] == 0 || ports.PeerSx[port] != NodeEnd) continue;
            if (!Net_NodeInMatrix(analysis.ProjectCheck, peer) || matrixOf[peer] != NoMatrix) continue;
            matrixOf[peer] = matrix;
            nodes.push_back(peer);
        }
    }
    return static_cast<std::int32_t>(nodes.size());
}

/// Makes the matrices in the order of their lowest nodes. A node that leads into an earlier matrix, but is
/// not named there, does not join it.
void NodesMap(Analysis& analysis) {
    const std::int32_t nodeCount = analysis.ProjectCheck.NodeNb;
    std::vector<std::int32_t> matrixOf(nodeCount, NoMatrix);
    std::vector<std::int32_t> next;  // by matrix: where its next node goes
    analysis.MatrixSize.clear();
    std::int32_t end = 0;
    for (std::int32_t node = 0; node < nodeCount; ++node) {
        if (matrixOf[node] != NoMatrix || !Net_NodeInMatrix(analysis.ProjectCheck, node)) continue;
        next.push_back(end);
        const auto matrix = static_cast<std::int32_t>(analysis.MatrixSize.size());
        analysis.MatrixSize.push_back(MatrixFlood(analysis, node, matrix, matrixOf));
        end += analysis.MatrixSize.back();
    }
    analysis.MatrixNodes.resize(end);
    for (std::int32_t node = 0; node < nodeCount; ++node) {
        if (matrixOf[node] != NoMatrix) analysis.MatrixNodes[next[matrixOf[node]]++] = node;
    }
}

bool HoldsPressure(const NodePortSx& ports) {
    for (std::size_t port = 0; port < PortsPerElement; ++port) {
        if (ports.PortUsed[port] == 1 && ports.PeerSx[port] == ModulePortEnd) return true;
    }
    return false;
}

}  // namespace

bool Net_NodeInMatrix(const ProjectCheckCache& check, int node) {
    const NodeRow* row = NodeRowFind(check, node);
    return row != nullptr && row->InUse && row->Kind != InfoNode && row->Kind < NodeKindCount;
}

bool Net_NodeMatrixMap(Analysis& analysis) {
    BranchesEnter(analysis);
    NodesMap(analysis);
    std::span<const std::int32_t> left = analysis.MatrixNodes;
    for (const std::int32_t size : analysis.MatrixSize) {
        const auto nodes = left.first(size);
        const bool holds = std::any_of(nodes.begin(), nodes.end(), [&analysis](std::int32_t node) {
            return HoldsPressure(analysis.NodePortTable[node]);
        });
        if (!holds) {
            Net_ParseMessageSet(analysis, NetWithoutPressure, -1, nodes.front(), -1);
            return false;
        }
        left = left.subspan(size);
    }
    return true;
}

}  // namespace vorn
