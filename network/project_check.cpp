#include "network/project_check.h"

namespace vorn {

// Without a destructor and all zero, so that it costs nothing at load and outlives every thread.
constinit ProjectCheckCache ProjectCheck;

const ModuleRow* ModuleRowFind(int module) {
    return module >= 0 && module < ProjectCheck.ModuleNb ? &ProjectCheck.ModuleSx[module] : nullptr;
}

const NodeRow* NodeRowFind(int node) {
    return node >= 0 && node < ProjectCheck.NodeNb ? &ProjectCheck.NodeSx[node] : nullptr;
}

}  // namespace vorn
