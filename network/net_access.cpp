#include "network/net_access.h"

#include "elements/slot.h"
#include "engine/vorn_core.h"
#include "include/vorn_server.h"
#include "network/branches.h"
#include "network/nets.h"
#include "network/topology_report.h"
#include "network/verdict.h"

namespace vorn {

namespace {

/// The library's analysis. Never destroyed: the host may hold a report while the process ends.
Analysis& TheAnalysis() {
    static Analysis& analysis = *new Analysis;
    return analysis;
}

}  // namespace

void SnapshotLoad(Analysis& analysis, int project) {
    // A copy: the next call of the engine may change its text.
    const std::string midpjtnm = ProjectNameGet(project);
    ProjectInfoGet(midpjtnm.c_str(), analysis.ProjectCheck);
    ProjectInfoJumpLinkPressing(project);
}

bool SnapshotAnalyse(Analysis& analysis, int project) {
    if (!BranchesTrace(analysis, project) || !Net_NodeMatrixMap(analysis)) return false;
    Net_ParseMessageSet(analysis, Complete, -1, -1, -1);
    return true;
}

const std::string& ParseMessageGet() {
    return TheAnalysis().ParseMessage;
}

}  // namespace vorn

bool Net_Access(int project) {
    vorn::Analysis& analysis = vorn::TheAnalysis();
    vorn::SnapshotLoad(analysis, project);
    return vorn::SnapshotAnalyse(analysis, project);
}

const char* Net_InfoToAI(int project) {
    if (!vorn::IsSlot(project)) return nullptr;
    vorn::Analysis& analysis = vorn::TheAnalysis();
    if (analysis.BranchTable.empty()) Net_Access(project);
    vorn::TopologyReport(analysis);
    return analysis.ReportText.c_str();
}
