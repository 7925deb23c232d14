// Branches, nets and verdicts of small networks, and the analysis held against plain walks and sweeps.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include "engine/vorn_core.h"
#include "network/branches.h"
#include "network/net_access.h"
#include "network/nets.h"
#include "network/project_check.h"
#include "network/verdict.h"
#include "standin/control.h"
#include "tests/support/network_rows.h"

namespace vorn {

namespace {

class NetworkTest : public testing::Test {
  protected:
    NetworkTest() {
        standin::EngineReset();
        NetMake();
    }
    ~NetworkTest() override { standin::EngineReset(); }
};

struct Said {
    int kind = Complete;
    int branch = -1;
    int element = -1;
    int number = -1;
};

std::string TextOf(const Said& said) {
    Net_ParseMessageSet(said.kind, said.branch, said.element, said.number);
    return ParseMessage;
}

std::string Analysed() {
    const bool complete = SnapshotAnalyse(0);
    std::string verdict = ParseMessage;
    EXPECT_EQ(complete, verdict == TextOf({})) << verdict;
    return verdict;
}

struct NetworkCase {
    const char* about;
    std::string rows;
    std::string branches;
    Said verdict{};
    std::string nets{};
};

const NetworkCase Cases[] = {
    {"nothing", "", "", {}},
    {"the plain chain", "n2.8 m4.0\nm4.1 m7.0\nm7.1 n5.0", "0 n2.8 4/0 7/0 n5.0\n", {2, -1, 2}, "2 5 \n"},
    {"one end port mends the net",
     "n2.8 m4.0\nm4.1 m7.0\nm7.1 n5.0\ne9.1 m8.0\nm8.1 n5.1",
     "0 n2.8 4/0 7/0 n5.0\n0 e9.1 8/0 n5.1\n",
     {},
     "2 5 \n"},
    {"against flow order, vacant rows between",
     "m7.1 e5.0\n-\nm4.1 m7.0\n-\n2 n2.8 m4.0",
     "2 n2.8 4/0 7/0 e5.0\n",
     {},
     "2 \n"},
    {"two aisles of one module",
     "n0.8 m1.2\nn0.9 m1.0\nm1.1 e5.0\nm1.3 e6.0",
     "0 n0.8 1/1 e6.0\n0 n0.9 1/0 e5.0\n",
     {},
     "0 \n"},
    {"one module twice in a branch", "n0.8 m1.0\nm1.1 m1.2\nm1.3 e6.0", "0 n0.8 1/0 1/1 e6.0\n", {}, "0 \n"},
    {"a ring behind a whole branch",
     "e9.0 m8.0\nm8.1 e9.1\nm4.1 m5.0\nm5.1 m4.0",
     "0 e9.0 8/0 e9.1\n",
     {3, -1, 4, 1}},
    {"an outlet into its own inlet, then out",
     "m4.1 m4.0\nn0.8 m4.0\nm4.1 e6.0",
     "0 n0.8 4/0 4/0 e6.0\n",
     {},
     "0 \n"},
    {"two branches with one tail",
     "n0.8 m4.0\nm4.1 m5.0\nm5.1 e6.0\nn1.8 m4.0",
     "0 n0.8 4/0 5/0 e6.0\n0 n1.8 4/0 5/0 e6.0\n",
     {},
     "0 \n1 \n"},
    {"a node to itself", "n3.8 m4.0\nm4.1 n3.0", "0 n3.8 4/0 n3.0\n", {2, -1, 3}, "3 \n"},
    {"an open branch hides a row left over",
     "m6.1 m7.0\nn0.8 m4.0\nm4.1 m5.0",
     "0 n0.8 4/0 5/0 -\n",
     {1, 0, 5, 0}},
    {"a row left over hides a net", "n0.8 m4.0\nm4.1 n1.0\nm6.1 m7.0", "0 n0.8 4/0 n1.0\n", {3, -1, 6, 1}},
    {"a page link left over", "page m6.1 m7.0", "", {3, -1, 6, 1}},
    {"information, mechanics and jumps make no branch",
     "1 n0.8 m4.0\n3 m4.1 n0.0\nj1.0 m5.0\nm5.1 j2.0\n1 m5.1 j2.0\npage 3 m5.1 m6.0",
     "",
     {2, -1, 0},
     "0 \n"},
    {"a page link of any type opens, none of these goes on",
     "page 1 n0.8 m4.0\npage 1 m4.1 e5.0",
     "1 n0.8 4/0 -\n",
     {1, 0, 4, 0}},
    {"a branch over two pages", "n0.8 m4.0\nm5.1 e6.0\npage m4.1 m5.0", "0 n0.8 4/0 5/0 e6.0\n", {}, "0 \n"},
    {"page links open behind link rows",
     "page 3 n0.8 m4.0\nn1.8 m5.0\nm5.1 e6.0\nm4.1 e6.1",
     "0 n1.8 5/0 e6.0\n3 n0.8 4/0 e6.1\n",
     {},
     "0 \n1 \n"},
    {"an information node joins nothing",
     "n0.8 m4.0\nm4.1 n1.0\nn1.8 m5.0\nm5.1 n2.0\ne6.0 m7.0\nm7.1 n0.1\ninfo 1",
     "0 n0.8 4/0 n1.0\n0 n1.8 5/0 n2.0\n0 e6.0 7/0 n0.1\n",
     {2, -1, 2},
     "0 \n2 \n"},
    // Both lead into port 0 of node 1, where the later stands: node 0 leads to node 1 and is not named there.
    {"a doubled port below",
     "n0.8 m4.0\nm4.1 n1.0\ne6.0 m5.0\nm5.1 n1.0",
     "0 n0.8 4/0 n1.0\n0 e6.0 5/0 n1.0\n",
     {},
     "0 1 \n"},
    {"a doubled port above",
     "n1.8 m4.0\nm4.1 n0.0\ne6.0 m5.0\nm5.1 n0.0",
     "0 n1.8 4/0 n0.0\n0 e6.0 5/0 n0.0\n",
     {2, -1, 1},
     "0 \n1 \n"},
    {"ends outside the tables",
     "n-1.8 m4.0\nm4.1 n0.16\nn9999.8 m5.0\nm5.1 n0.-1\nm-7.1 m6.0",
     "0 - 4/0 n0.16\n0 n9999.8 5/0 n0.-1\n",
     {3, -1, -7, 1}},
};

TEST_F(NetworkTest, BranchesNetsAndVerdictsOfSmallTables) {
    for (const NetworkCase& each : Cases) {
        NetRows(each.rows);
        EXPECT_EQ(Analysed(), TextOf(each.verdict)) << each.about;
        EXPECT_EQ(BranchesText(), each.branches) << each.about;
        EXPECT_TRUE(each.nets.empty() || NetsText() == each.nets) << each.about << "\n" << NetsText();
    }
}

TEST_F(NetworkTest, VerdictTexts) {
    NetRows("n3.8 m4.0\n");
    ProjectCheck.NodeSx[3].Kind = 2;
    EXPECT_EQ(TextOf({0}), "解析成功并即将启动\n");
    EXPECT_EQ(TextOf({1, 12, 4, 1}),
              "出错啦,此支路号:12不完整,缺少下游链接。尾部的设备和通路,分别是设备(InstanceID) "
              ":MOD4,通路号:1,设备VornmoduleID:24032022192805856\n");
    EXPECT_EQ(TextOf({2, -1, 3, -1}),
              "出错啦,此节点(InstanceID)所在管网缺少定压装置:NOD3,节点VornmoduleID:3002\n");
    EXPECT_EQ(TextOf({3, -1, 1, 7}),
              "出错啦,此设备(InstanceID):MOD1中,通路号:7所在支路不完整,设备VornmoduleID:26010100000000013\n");
}

/// A chain from node 0 through pipes to an end port: a row that opens and `rows` more, in flow order.
std::vector<std::string> Chain(int rows) {
    std::vector<std::string> chain{"n0.8 m4.0\n"};
    for (int module = 4; module < 4 + rows; ++module) {
        chain.push_back("m" + std::to_string(module) + ".1 " + (module < 3 + rows ? "m" : "e") +
                        std::to_string(module + 1) + ".0\n");
    }
    return chain;
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line;
    return text;
}

TEST_F(NetworkTest, PassesBoundChainsAgainstFlowOrder) {
    struct {
        int rows;
        bool reversed;
        int size;  // of the branch in the end
        bool closed;
    } const cases[] = {
        {600, false, 600, true}, {256, true, 256, true}, {257, true, 257, false}, {300, true, 257, false}};
    for (const auto& each : cases) {
        std::vector<std::string> chain = Chain(each.rows);
        if (each.reversed) std::reverse(chain.begin(), chain.end());
        NetRows(Joined(chain));
        EXPECT_EQ(Analysed(), TextOf(each.closed ? Said{} : Said{1, 0, 260, 0})) << each.rows;
        EXPECT_EQ(BranchTable[0].Size, each.size);
    }
}

// ---- The analysis held against the plain rules ----

/// The walk as the rules tell it, with every row against every branch. Fills the branch table, and gives the
/// verdict.
std::string PlainWalk() {
    struct Table {
        LinkSxCache* rows;
        int count;
        std::vector<bool> marked;
    };
    Table links{ProjectCheck.LinkSx, ProjectCheck.LinkNb,
                std::vector<bool>(std::size_t(ProjectCheck.LinkNb))};
    Table pages{ProjectCheck.PageLinkSx, ProjectCheck.PageLinkNb,
                std::vector<bool>(std::size_t(ProjectCheck.PageLinkNb))};
    const auto each = [](Table& table, auto run) {
        for (std::size_t row = 0; row < std::size_t(table.count); ++row) {
            if (table.rows[row].InUse) run(table.rows[row], row);
        }
    };
    BranchNb = 0;
    BranchTable.clear();
    BranchElements.clear();
    each(links, [&](const LinkSxCache& link, std::size_t row) {
        if (link.Type == 1 || link.Type == 3 || link.F_Sx == 3 || link.S_Sx == 3) links.marked[row] = true;
    });
    each(pages, [&](const LinkSxCache& link, std::size_t row) {
        if (link.Type == 1 || link.Type == 3) pages.marked[row] = true;
    });
    for (Table* table : {&links, &pages}) {
        each(*table, [&](const LinkSxCache& link, std::size_t row) {
            if (table == &links && links.marked[row]) return;
            if (link.F_Sx != 2 && (link.F_Sx != 1 || link.F_Type2)) return;
            const BranchEndKind front = link.F_Sx == 1 ? ModulePortEnd : NodeEnd;
            BranchTable.push_back({.Type = link.Type,
                                   .Size = 1,
                                   .Front_Sx = front,
                                   .Front_Nb = link.F_Nb,
                                   .FrontPort = link.F_PortNb});
            BranchElements.push_back({{link.S_Nb, ModulePortInfo(0, link.S_Nb, link.S_PortNb, 5).AisleNb}});
            ++BranchNb;
            table->marked[row] = true;
        });
    }
    bool found = true;
    for (int pass = 0; pass < 256 && found; ++pass) {
        found = false;
        for (Table* table : {&links, &pages}) {
            each(*table, [&](const LinkSxCache& link, std::size_t row) {
                if (table->marked[row] || link.F_Sx != 1 || !link.F_Type2) return;
                for (std::size_t number = 0; number < BranchTable.size(); ++number) {
                    BranchSx& branch = BranchTable[number];
                    const BranchElement tail = BranchElements[number].back();
                    if (branch.Closed == 1 || tail.Module != link.F_Nb) continue;
                    if (ModuleAisleSx(0, tail.Module, tail.Aisle, 2).OutPortNb != link.F_PortNb) continue;
                    table->marked[row] = found = true;
                    if (link.S_Sx == 1 && link.S_Type2) {
                        BranchElements[number].push_back(
                            {link.S_Nb, ModulePortInfo(0, link.S_Nb, link.S_PortNb, 5).AisleNb});
                        ++branch.Size;
                        continue;
                    }
                    branch.Post_Sx = link.S_Sx == 1 ? ModulePortEnd : NodeEnd;
                    branch.Post_Nb = link.S_Nb;
                    branch.PostPort = link.S_PortNb;
                    branch.Closed = 1;
                }
            });
        }
    }
    for (int number = 0; number < BranchNb; ++number) {
        const BranchElement tail = BranchElements[std::size_t(number)].back();
        if (BranchTable[std::size_t(number)].Closed == 0) return TextOf({1, number, tail.Module, tail.Aisle});
    }
    std::string left;
    for (Table* table : {&links, &pages}) {
        each(*table, [&](const LinkSxCache& link, std::size_t row) {
            if (!table->marked[row] && left.empty()) left = TextOf({3, -1, link.F_Nb, link.F_PortNb});
        });
    }
    return left.empty() ? TextOf({}) : left;
}

/// The nets as the rules tell them, by groups of sweeps over the port tables; the verdict behind them.
std::string PlainSweeps() {
    const int count = ProjectCheck.NodeNb;
    std::vector<std::vector<int>> matrices;
    std::vector<int> matrixOf(std::size_t(count), -1);
    const auto all = std::count_if(ProjectCheck.NodeSx, ProjectCheck.NodeSx + count,
                                   [](const NodeRow& node) { return node.InUse && node.Kind != 1; });
    const auto takesPart = [](int node) {
        return ProjectCheck.NodeSx[node].InUse && ProjectCheck.NodeSx[node].Kind != 1;
    };
    const auto sweep = [&](bool& mayOpen) {
        for (int k = 0; k < count; ++k) {
            if (matrixOf[std::size_t(k)] >= 0 || !takesPart(k)) continue;
            bool hit = false;
            for (int m = 0; m < count; ++m) {
                if (matrixOf[std::size_t(m)] < 0 || !takesPart(m)) continue;
                const NodePortSx& ports = NodePortTable[std::size_t(m)];
                for (std::size_t port = 0; port < 16; ++port) {
                    if (ports.PortUsed[port] != 1 || ports.PeerSx[port] != 1 || ports.PeerNb[port] != k)
                        continue;
                    hit = true;
                    auto& nodes = matrices[std::size_t(matrixOf[std::size_t(m)])];
                    if (std::find(nodes.begin(), nodes.end(), k) != nodes.end()) continue;
                    nodes.push_back(k);
                    matrixOf[std::size_t(k)] = matrixOf[std::size_t(m)];
                }
            }
            if (hit || !mayOpen) continue;
            mayOpen = false;
            matrixOf[std::size_t(k)] = static_cast<int>(matrices.size());
            matrices.push_back({k});
        }
    };
    for (auto group = 0; group < all; ++group) {
        bool mayOpen = true;
        for (auto round = 0; round < all; ++round) sweep(mayOpen);
    }
    std::string text;
    std::string verdict = TextOf({});
    for (auto nodes = matrices.rbegin(); nodes != matrices.rend(); ++nodes) {
        std::sort(nodes->begin(), nodes->end());
        std::string line;
        bool holds = false;
        for (int node : *nodes) {
            line += std::to_string(node) + " ";
            const NodePortSx& ports = NodePortTable[std::size_t(node)];
            for (std::size_t port = 0; port < 16; ++port)
                holds |= ports.PortUsed[port] == 1 && ports.PeerSx[port] == 0;
        }
        text = line + "\n" + text;
        if (!holds) verdict = TextOf({2, -1, nodes->front(), -1});
    }
    return text + verdict;
}

unsigned FromEnvironment(const char* name, unsigned standard) {
    const char* text = std::getenv(name);
    return text == nullptr ? standard : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

/// Random tables of each comparison; more of them, and others, by hand.
const unsigned RandomTables = FromEnvironment("VORN_RANDOM_TABLES", 20000);
const unsigned RandomSeed = FromEnvironment("VORN_RANDOM_SEED", 1);

template <typename Run>
void ForRandomTables(unsigned count, Run run) {
    for (unsigned seed = RandomSeed; seed - RandomSeed < count && !testing::Test::HasFailure(); ++seed) {
        std::mt19937 random(seed);
        run([&random](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); }, seed);
    }
}

template <typename Below>
std::string RandomRows(Below below) {
    const int modules = 1 + below(5);
    const int wild = below(8) == 0 ? 6 : 1000;  // how seldom a number is one that fits nothing
    const auto number = [&](int usual) { return std::to_string(below(wild) == 0 ? below(40) - 3 : usual); };
    const auto end = [&](int firstPort, int others) {
        const int kind = below(10);
        if (kind < others) return "n" + number(below(3)) + "." + number(below(16));
        if (kind == 9 && below(4) == 0) return "j" + number(1) + ".0";
        const char* letter = kind < others + 1 ? "e" : "m";
        const int module = 5 - below(modules);  // exchangers and pipes
        return letter + number(module) + "." + number(firstPort + (module < Exchangers ? 2 * below(2) : 0));
    };
    std::string rows;
    for (int left = 1 + below(16); left > 0; --left) {
        if (below(20) == 0) rows += "-\n";
        if (below(6) == 0) rows += "page ";
        rows += std::to_string(below(8) == 0 ? below(4) : 0) + " ";
        rows += end(1, 3) + " ";
        rows += end(0, 1) + "\n";
    }
    return rows;
}

TEST_F(NetworkTest, WalkAgreesWithPlainWalk) {
    unsigned moved = 0;
    ForRandomTables(RandomTables, [&](auto below, unsigned seed) {
        const std::string rows = RandomRows(below);
        NetRows(rows);
        const std::string verdict = PlainWalk();
        const std::string branches = BranchesText();
        const bool complete = BranchesTrace(0);
        ASSERT_EQ(BranchesText(), branches) << "seed " << seed << "\n" << rows;
        ASSERT_EQ(complete ? TextOf({}) : ParseMessage, verdict) << "seed " << seed << "\n" << rows;
        for (const BranchSx& branch : BranchTable) moved += branch.Size > 2 ? 1 : 0;
    });
    EXPECT_GT(moved, RandomTables / 4);  // the tables hold real chains
}

TEST_F(NetworkTest, WalkAgreesWithPlainWalkAtThePassLimit) {
    ForRandomTables(RandomTables / 1000, [&](auto below, unsigned seed) {
        std::vector<std::string> chain = Chain(460 + below(120));
        for (std::size_t left = chain.size(); left > 1; --left)
            std::swap(chain[left - 1], chain[std::size_t(below(int(left)))]);
        NetRows(Joined(chain));
        PlainWalk();
        const std::string branches = BranchesText();
        BranchesTrace(0);
        ASSERT_EQ(BranchesText(), branches) << "seed " << seed;
    });
}

TEST_F(NetworkTest, NetsAgreeWithPlainSweeps) {
    ForRandomTables(RandomTables, [&](auto below, unsigned seed) {
        ProjectCheck.NodeNb = below(7);
        for (int node = 0; node < ProjectCheck.NodeNb; ++node) {
            ProjectCheck.NodeSx[node] = {.InUse = below(10) > 0, .Kind = below(4)};
        }
        BranchTable.resize(std::size_t(BranchNb = below(9)));
        const int ports = 1 + below(4);  // few ports, so that branches share some
        const auto kind = [&] { return below(6) == 0 ? ModulePortEnd : NodeEnd; };
        for (BranchSx& branch : BranchTable) {
            branch = {.Front_Sx = kind(),
                      .Front_Nb = below(8) - 1,
                      .FrontPort = below(ports) * 5,
                      .Post_Sx = kind(),
                      .Post_Nb = below(8) - 1,
                      .PostPort = below(ports),
                      .Closed = 1};
        }
        const bool complete = Net_NodeMatrixMap(ProjectCheck.NodeNb);
        const std::string outcome = NetsText() + (complete ? TextOf({}) : ParseMessage);
        ASSERT_EQ(outcome, PlainSweeps()) << "seed " << seed;
    });
}

}  // namespace

}  // namespace vorn
