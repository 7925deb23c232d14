#include "network/snapshot.h"

namespace vorn {

const ModuleRow* ModuleRowFind(const ProjectCheckCache& check, int module) {
    return module >= 0 && module < check.ModuleNb ? &check.ModuleSx[module] : nullptr;
}

const NodeRow* NodeRowFind(const ProjectCheckCache& check, int node) {
    return node >= 0 && node < check.NodeNb ? &check.NodeSx[node] : nullptr;
}

}  // namespace vorn
