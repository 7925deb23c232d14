#include "network/verdict.h"

#include "elements/node_kind.h"
#include "network/snapshot.h"

namespace vorn {

namespace {

std::string ModuleOneIdText(const ProjectCheckCache& check, int module) {
    const ModuleRow* row = ModuleRowFind(check, module);
    return std::to_string(row == nullptr ? 0 : row->VornModuleOneID);
}

std::string NodeIdText(const ProjectCheckCache& check, int node) {
    const NodeRow* row = NodeRowFind(check, node);
    return std::to_string(row == nullptr ? 0 : row->Kind + NodeIdBase);
}

}  // namespace

void Net_ParseMessageSet(Analysis& analysis, Verdict kind, int branch, int element, int number) {
    const std::string elementText = std::to_string(element);
    const std::string numberText = std::to_string(number);
    const ProjectCheckCache& check = analysis.ProjectCheck;
    std::string& ParseMessage = analysis.ParseMessage;
    switch (kind) {
        case BranchOpen:
            ParseMessage = "出错啦,此支路号:" + std::to_string(branch) +
                           "不完整,缺少下游链接。尾部的设备和通路,分别是设备(InstanceID) :MOD" + elementText +
                           ",通路号:" + numberText + ",设备VornmoduleID:" + ModuleOneIdText(check, element) +
                           "\n";
            break;
        case NetWithoutPressure:
            ParseMessage = "出错啦,此节点(InstanceID)所在管网缺少定压装置:NOD" + elementText +
                           ",节点VornmoduleID:" + NodeIdText(check, element) + "\n";
            break;
        case RowNotConsumed:
            ParseMessage = "出错啦,此设备(InstanceID):MOD" + elementText + "中,通路号:" + numberText +
                           "所在支路不完整" + ",设备VornmoduleID:" + ModuleOneIdText(check, element) + "\n";
            break;
        case Complete:
            ParseMessage = "解析成功并即将启动\n";
    }
}

}  // namespace vorn
