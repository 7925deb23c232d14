#include "tests/support/network_rows.h"

#include <sstream>

#include "engine/vorn_core.h"
#include "network/branches.h"
#include "network/nets.h"
#include "network/project_check.h"

using namespace vorn;

namespace {

constexpr int PipeType = 0;
constexpr int ExchangerType = 13;

void UseNode(int node, int kind) {
    if (node < 0 || node >= NodeCapacity) return;
    for (; ProjectCheck.NodeNb <= node; ++ProjectCheck.NodeNb) {
        ProjectCheck.NodeSx[ProjectCheck.NodeNb] = NodeRow();
    }
    ProjectCheck.NodeSx[node].InUse = true;
    if (kind >= 0) ProjectCheck.NodeSx[node].Kind = kind;
}

void ReadEnd(std::istream& line, std::int32_t& kind, std::int32_t& number, std::int32_t& port, bool& flag) {
    char letter = 0;
    char dot = 0;
    line >> letter >> number >> dot >> port;
    kind = letter == 'n' ? 2 : letter == 'j' ? 3 : 1;
    flag = letter == 'm';
    if (letter == 'n') UseNode(number, -1);
}

std::string EndText(int kind, int number, int port) {
    if (number < 0) return "-";
    return (kind == NodeEnd ? "n" : "e") + std::to_string(number) + "." + std::to_string(port);
}

}  // namespace

void NetMake() {
    ProjectJsonAdd("NET");
    for (int module = 0; module < NetModules; ++module) {
        ProjectAddModule("NET", module, module < Exchangers ? ExchangerType : PipeType, 0, 0, 0);
    }
    ProjectInfoGet("NET", ProjectCheck);
    ProjectInfoJumpLinkPressing(0);
}

void NetRows(const std::string& lines) {
    ProjectCheck.NodeNb = ProjectCheck.LinkNb = ProjectCheck.PageLinkNb = 0;
    std::istringstream text(lines);
    for (std::string words; std::getline(text, words);) {
        std::istringstream line(words);
        LinkSxCache link{.InUse = line.peek() != '-'};
        if (words.starts_with("info ")) {
            UseNode(std::stoi(words.substr(5)), 1);
            continue;
        }
        const bool page = words.starts_with("page ");
        if (page) line.ignore(5);
        if (std::isdigit(line.peek()) != 0) line >> link.Type >> std::ws;
        if (link.InUse) {
            ReadEnd(line, link.F_Sx, link.F_Nb, link.F_PortNb, link.F_Type2);
            ReadEnd(line, link.S_Sx, link.S_Nb, link.S_PortNb, link.S_Type2);
        }
        (page ? ProjectCheck.PageLinkSx[ProjectCheck.PageLinkNb++]
              : ProjectCheck.LinkSx[ProjectCheck.LinkNb++]) = link;
    }
}

std::string BranchesText() {
    std::string text;
    for (std::size_t number = 0; number < BranchTable.size(); ++number) {
        const BranchSx& branch = BranchTable[number];
        text +=
            std::to_string(branch.Type) + " " + EndText(branch.Front_Sx, branch.Front_Nb, branch.FrontPort);
        for (const BranchElement& element : BranchElements[number]) {
            text += " " + std::to_string(element.Module) + "/" + std::to_string(element.Aisle);
        }
        text += " " + EndText(branch.Post_Sx, branch.Post_Nb, branch.PostPort) + "\n";
    }
    return text;
}

std::string NetsText() {
    std::string text;
    for (const auto& nodes : MatrixNodes) {
        for (int node : nodes) text += std::to_string(node) + " ";
        text += "\n";
    }
    return text;
}
