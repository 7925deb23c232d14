// Small networks for the tests of the analysis: rows, branches and nets told as text.

#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "engine/vorn_core.h"
#include "network/net_access.h"
#include "network/snapshot.h"
#include "network/verdict.h"
#include "standin/levers/levers.h"

namespace vorn {

inline Analysis Net;  ///< what the tests analyse

inline constexpr int Exchangers = 4;  // modules 0 to 3; aisle 0 is port 0 to 1, aisle 1 port 2 to 3
inline constexpr int Modules = 700;   // the others are pipes, with aisle 0 only

class NetworkTest : public testing::Test {
  protected:
    NetworkTest() {
        standin::EngineReset();
        ProjectJsonAdd("NET");
        for (int module = 0; module < Modules; ++module) {
            ProjectAddModule("NET", module, module < Exchangers ? 13 : 0, 0, 0, 0);
        }
        SnapshotLoad(Net, 0);
    }
    ~NetworkTest() override { standin::EngineReset(); }
};

inline bool ReadEnd(std::istream& line, std::int32_t& kind, std::int32_t& number, std::int32_t& port) {
    char letter = 0;
    char dot = 0;
    line >> letter >> number >> dot >> port;
    const bool node = letter == 'n' || letter == 'N' || letter == 'i';
    kind = node ? NodeKind : letter == 'j' || letter == 'J' ? JumpKind : ModuleKind;
    ProjectCheckCache& check = Net.ProjectCheck;
    for (; node && number < NodeCapacity && check.NodeNb <= number; ++check.NodeNb) {
        check.NodeSx[check.NodeNb] = NodeRow();
    }
    if (node && NodeRowFind(check, number) != nullptr)
        check.NodeSx[number] = {.InUse = true, .Kind = letter == 'i' ? InfoNode : FluidNode};
    return letter == 'm' || letter == 'N' || letter == 'J';
}

/// Fills the tables with rows told a line each: `l` link or `p` page link, its type or `-` for a vacant row,
/// and two ends: `n2.8` a node's port, of kind INFO with `i`, `m4.0` a through port, `e4.0` an end port,
/// `j1.0` a jump; `N` and `J` with the flag that only modules should have.
inline void Rows(const std::string& lines) {
    ProjectCheckCache& check = Net.ProjectCheck;
    check.NodeNb = check.LinkNb = check.PageLinkNb = 0;
    std::istringstream text(lines);
    for (char table = 0, type = 0; text >> table >> type;) {
        LinkSxCache link{.InUse = type != '-', .Type = type - '0'};
        link.F_Type2 = ReadEnd(text, link.F_Sx, link.F_Nb, link.F_PortNb);
        link.S_Type2 = ReadEnd(text, link.S_Sx, link.S_Nb, link.S_PortNb);
        (table == 'p' ? check.PageLinkSx[check.PageLinkNb++] : check.LinkSx[check.LinkNb++]) = link;
    }
}

/// The branches, `TYPE FRONT module/aisle ... POST` a line.
inline std::string BranchesText() {
    std::ostringstream text;
    const auto end = [&](int kind, int number, int port) {
        text << (kind == 1 ? " n" : " e") << number << '.' << port;
    };
    auto element = Net.BranchElements.begin();
    for (const BranchSx& branch : Net.BranchTable) {
        text << branch.Type;
        end(branch.Front_Sx, branch.Front_Nb, branch.FrontPort);
        for (int left = branch.Size; left > 0; --left, ++element)
            text << ' ' << element->Module << '/' << element->Aisle;
        if (branch.Closed == 1) end(branch.Post_Sx, branch.Post_Nb, branch.PostPort);
        text << (branch.Closed == 1 ? "\n" : " open\n");
    }
    EXPECT_EQ(element, Net.BranchElements.end());
    return text.str();
}

/// The nets, the nodes of one a line.
inline std::string NetsText() {
    std::string text;
    auto node = Net.MatrixNodes.begin();
    for (int size : Net.MatrixSize) {
        for (; size > 0; --size) text += std::to_string(*node++) + " ";
        text += "\n";
    }
    EXPECT_EQ(node, Net.MatrixNodes.end());
    return text;
}

struct Said {
    Verdict kind = Complete;
    int branch = -1;
    int element = -1;
    int number = -1;
};

inline std::string TextOf(const Said& said) {
    Net_ParseMessageSet(Net, said.kind, said.branch, said.element, said.number);
    return Net.ParseMessage;
}

/// A chain in flow order: a row that opens it and `rows` more, the last to an end port.
inline std::vector<std::string> Chain(int rows) {
    std::vector<std::string> chain{"l0 n0.8 m4.0 "};
    for (int module = 4; module < 4 + rows; ++module) {
        const char* next = module < 3 + rows ? "m" : "e";
        chain.push_back("l0 m" + std::to_string(module) + ".1 " + next + std::to_string(module + 1) + ".0 ");
    }
    return chain;
}

inline std::string Joined(const std::vector<std::string>& rows) {
    std::string text;
    for (const std::string& row : rows) text += row;
    return text;
}

}  // namespace vorn
