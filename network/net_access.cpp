#include "network/net_access.h"

#include <string>

#include "engine/vorn_core.h"
#include "include/vorn_server.h"
#include "network/branches.h"
#include "network/nets.h"
#include "network/project_check.h"
#include "network/verdict.h"

namespace vorn {

bool SnapshotAnalyse(int project) {
    if (!BranchesTrace(project) || !Net_NodeMatrixMap(ProjectCheck.NodeNb)) return false;
    Net_ParseMessageSet(Complete, -1, -1, -1);
    return true;
}

}  // namespace vorn

bool Net_Access(int project) {
    // A copy: the next call of the engine may change its text.
    const std::string midpjtnm = ProjectNameGet(project);
    ProjectInfoGet(midpjtnm.c_str(), vorn::ProjectCheck);
    ProjectInfoJumpLinkPressing(project);
    return vorn::SnapshotAnalyse(project);
}
