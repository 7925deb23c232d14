// Branches, nets and verdicts of small networks, and of random ones held against the rules as they are told.

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>
#include <utility>

#include "network/branches.h"
#include "network/nets.h"
#include "tests/support/network_rows.h"

namespace vorn {

namespace {

/// What is expected of rows: the branches and, where the analysis came to them, the nets; and the verdict.
const struct {
    const char* about;
    const char* rows;
    const char* outcome;
    Said verdict{};
} Cases[] = {
    {"nothing", "", ""},
    {"a chain",
     "l0 n2.8 m4.0 l0 m4.1 m7.0 l0 m7.1 n5.0",
     "0 n2.8 4/0 7/0 n5.0\n2 5 \n",
     {NetWithoutPressure, -1, 2}},
    {"one end port mends the net", "l0 n2.8 m4.0 l0 m4.1 n5.0 l0 e9.1 m8.0 l0 m8.1 n5.1",
     "0 n2.8 4/0 n5.0\n0 e9.1 8/0 n5.1\n2 5 \n"},
    {"a ring",
     "l0 e9.0 m8.0 l0 m8.1 e9.1 l0 m4.1 m5.0 l0 m5.1 m4.0",
     "0 e9.0 8/0 e9.1\n",
     {RowNotConsumed, -1, 4, 1}},
    {"open hides left over",
     "l0 m6.1 m7.0 l0 n0.8 m4.0 l0 m4.1 m5.0",
     "0 n0.8 4/0 5/0 open\n",
     {BranchOpen, 0, 5, 0}},
    {"left over hides the net",
     "l0 n0.8 m4.0 l0 m4.1 n1.0 l0 m6.1 m7.0",
     "0 n0.8 4/0 n1.0\n",
     {RowNotConsumed, -1, 6, 1}},
    {"page links open last", "p3 n0.8 m4.0 l0 n1.8 m5.0 l0 m5.1 e6.0 l0 m4.1 e6.1",
     "0 n1.8 5/0 e6.0\n3 n0.8 4/0 e6.1\n0 \n1 \n"},
    {"INFO joins nothing",
     "l0 n0.8 m4.0 l0 m4.1 i1.0 l0 i1.8 m5.0 l0 m5.1 n2.0 l0 e6.0 m7.0 l0 m7.1 n0.1",
     "0 n0.8 4/0 n1.0\n0 n1.8 5/0 n2.0\n0 e6.0 7/0 n0.1\n0 \n2 \n",
     {NetWithoutPressure, -1, 2}},
    {"modules outside the table",
     "l0 n0.8 m-2.0 l0 m9000.-1 n1.0 l0 m-2.-1 m9000.0",
     "0 n0.8 -2/-1 9000/-1 n1.0\n0 1 \n",
     {NetWithoutPressure, -1, 0}},
    // The later branch stands at the doubled port: the other's front is not named there, and leads there.
    {"doubled above", "l0 n0.8 m4.0 l0 m4.1 n1.0 l0 e6.0 m5.0 l0 m5.1 n1.0",
     "0 n0.8 4/0 n1.0\n0 e6.0 5/0 n1.0\n0 1 \n"},
    {"doubled below",
     "l0 n1.8 m4.0 l0 m4.1 n0.0 l0 e6.0 m5.0 l0 m5.1 n0.0",
     "0 n1.8 4/0 n0.0\n0 e6.0 5/0 n0.0\n0 \n1 \n",
     {NetWithoutPressure, -1, 1}},
};

TEST_F(NetworkTest, SmallTables) {
    for (const auto& each : Cases) {
        Rows(each.rows);
        EXPECT_EQ(SnapshotAnalyse(Net, 0), each.verdict.kind == Complete) << each.about;
        EXPECT_EQ(Net.ParseMessage, TextOf(each.verdict)) << each.about;
        const bool mapped = each.verdict.kind == Complete || each.verdict.kind == NetWithoutPressure;
        EXPECT_EQ(BranchesText() + (mapped ? NetsText() : ""), each.outcome) << each.about;
    }
}

TEST_F(NetworkTest, VerdictTexts) {
    Rows("l0 n3.8 m4.0");
    Net.ProjectCheck.NodeSx[3].Kind = PowerNode;
    EXPECT_EQ(TextOf({Complete}), "解析成功并即将启动\n");
    EXPECT_EQ(TextOf({BranchOpen, 12, 4, 1}),
              "出错啦,此支路号:12不完整,缺少下游链接。尾部的设备和通路,分别是设备(InstanceID) "
              ":MOD4,通路号:1,设备VornmoduleID:24032022192805856\n");
    EXPECT_EQ(TextOf({NetWithoutPressure, -1, 3}),
              "出错啦,此节点(InstanceID)所在管网缺少定压装置:NOD3,节点VornmoduleID:3002\n");
    EXPECT_EQ(TextOf({RowNotConsumed, -1, 1, 7}),
              "出错啦,此设备(InstanceID):MOD1中,通路号:7所在支路不完整,设备VornmoduleID:2601010000013\n");
}

TEST_F(NetworkTest, PassesBoundChainsAgainstFlowOrder) {
    struct {
        int rows;
        bool reversed;
        int size;
        bool complete;
    } const cases[] = {
        {600, false, 600, true}, {256, true, 256, true}, {257, true, 257, false}, {300, true, 257, false}};
    for (const auto& each : cases) {
        std::vector<std::string> chain = Chain(each.rows);
        if (each.reversed) std::reverse(chain.begin(), chain.end());
        Rows(Joined(chain));
        EXPECT_EQ(SnapshotAnalyse(Net, 0), each.complete) << each.rows;
        EXPECT_EQ(Net.BranchTable[0].Size, each.size);
        EXPECT_EQ(Net.ParseMessage, TextOf(each.complete ? Said{} : Said{BranchOpen, 0, 260, 0}));
    }
}

/// The walk as the rules tell it, with every row against every branch. Fills the branches, gives the verdict.
std::string PlainWalk() {
    std::vector<int> marked(Net.ProjectCheck.LinkNb + Net.ProjectCheck.PageLinkNb);
    const auto forRows = [&](auto run) {
        ForLinkRows(Net.ProjectCheck,
                    [&](int row, const LinkSxCache& link, bool page) { run(link, marked[row], page); });
    };
    std::vector<BranchSx>& table = Net.BranchTable;
    std::vector<std::vector<BranchElement>> elements;
    const auto elementOf = [](const LinkSxCache& link) {
        return BranchElement{link.S_Nb, ModulePortInfo(0, link.S_Nb, link.S_PortNb, 5).AisleNb};
    };
    table.clear();
    forRows([](const LinkSxCache& link, int& mark, bool page) {
        mark = int{link.Type == 1 || link.Type == 3 || (!page && (link.F_Sx == 3 || link.S_Sx == 3))};
    });
    forRows([&](const LinkSxCache& link, int& mark, bool page) {
        if ((mark && !page) || (link.F_Sx != 2 && (link.F_Sx != 1 || link.F_Type2))) return;
        table.push_back({link.Type, 1, link.F_Sx == 1 ? ModulePortEnd : NodeEnd, link.F_Nb, link.F_PortNb});
        elements.push_back({elementOf(link)});
        mark = 1;
    });
    bool found = true;
    for (int pass = 0; pass < 256 && std::exchange(found, false); ++pass) {
        forRows([&](const LinkSxCache& link, int& mark, bool) {
            if (mark || link.F_Sx != 1 || !link.F_Type2) return;
            for (std::size_t number = 0; number < table.size(); ++number) {
                BranchSx& branch = table[number];
                const BranchElement tail = elements[number].back();
                if (branch.Closed == 1 || tail.Module != link.F_Nb) continue;
                if (ModuleAisleSx(0, tail.Module, tail.Aisle, 2).OutPortNb != link.F_PortNb) continue;
                found = true;
                mark = 1;
                branch.Closed = link.S_Sx != 1 || !link.S_Type2;
                if (branch.Closed == 0) {
                    elements[number].push_back(elementOf(link));
                    ++branch.Size;
                    continue;
                }
                branch.Post_Sx = link.S_Sx == 1 ? ModulePortEnd : NodeEnd;
                branch.Post_Nb = link.S_Nb;
                branch.PostPort = link.S_PortNb;
            }
        });
    }
    Said said;
    forRows([&](const LinkSxCache& link, int& mark, bool) {
        if (!mark && said.kind == Complete) said = {RowNotConsumed, -1, link.F_Nb, link.F_PortNb};
    });
    for (int number = static_cast<int>(table.size()) - 1; number >= 0; --number) {
        const BranchElement tail = elements[number].back();
        if (table[number].Closed == 0) said = {BranchOpen, number, tail.Module, tail.Aisle};
    }
    Net.BranchElements.clear();
    for (const auto& each : elements)
        Net.BranchElements.insert(Net.BranchElements.end(), each.begin(), each.end());
    return TextOf(said);
}

/// The nets as the rules tell them, by groups of sweeps over the ports that the branches name; and the
/// verdict.
std::string PlainSweeps() {
    const ProjectCheckCache& check = Net.ProjectCheck;
    const int count = check.NodeNb;
    struct Peer {
        int kind = -1;
        int number = -1;
    };
    std::vector<std::array<Peer, PortsPerElement>> ports(count);
    for (const BranchSx& branch : Net.BranchTable) {
        const auto enter = [&](int kind, int node, int port, Peer peer) {
            if (kind == 1 && node >= 0 && node < count) ports[node][port] = peer;
        };
        enter(branch.Front_Sx, branch.Front_Nb, branch.FrontPort, {branch.Post_Sx, branch.Post_Nb});
        enter(branch.Post_Sx, branch.Post_Nb, branch.PostPort, {branch.Front_Sx, branch.Front_Nb});
    }
    std::vector<int> taking;
    for (int node = 0; node < count; ++node) {
        const NodeRow& row = check.NodeSx[node];
        if (row.InUse && row.Kind != InfoNode && row.Kind <= MechNode) taking.push_back(node);
    }
    std::vector<std::vector<int>> nets;
    std::vector<int> netOf(count, -1);
    bool mayOpen = false;
    for (std::size_t turn = 0; turn < taking.size() * taking.size(); ++turn) {
        mayOpen |= turn % taking.size() == 0;  // a new group of sweeps
        for (int k : taking) {
            if (netOf[k] >= 0) continue;
            bool hit = false;
            for (int m : taking) {
                for (const Peer& peer : ports[m]) {
                    if (netOf[m] < 0 || peer.kind != 1 || peer.number != k) continue;
                    hit = true;
                    std::vector<int>& nodes = nets[netOf[m]];
                    if (std::count(nodes.begin(), nodes.end(), k) > 0) continue;
                    nodes.push_back(k);
                    netOf[k] = netOf[m];
                }
            }
            if (hit || !std::exchange(mayOpen, false)) continue;
            netOf[k] = static_cast<int>(nets.size());
            nets.push_back({k});
        }
    }
    Said said;
    std::string text;
    for (std::vector<int>& nodes : nets) {
        std::sort(nodes.begin(), nodes.end());
        bool holds = false;
        for (int node : nodes) {
            text += std::to_string(node) + " ";
            for (const Peer& peer : ports[node]) holds |= peer.kind == 0;
        }
        text += "\n";
        if (!holds && said.kind == Complete) said = {NetWithoutPressure, -1, nodes.front()};
    }
    return text + TextOf(said);
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
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        run([&random](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); });
    }
}

template <typename Below>
std::string RandomRows(Below below) {
    const int modules = 1 + below(5);
    const int wild = below(8) == 0 ? 6 : 1000;  // how seldom a number is one that fits nothing
    const auto number = [&](int usual) { return std::to_string(below(wild) == 0 ? below(40) - 3 : usual); };
    const auto end = [&](int port, int nodesInTen) {
        const int kind = below(40);
        if (kind < 4 * nodesInTen)
            return (below(8) == 0 ? " N" : " n") + number(below(3)) + "." + number(below(16));
        if (kind == 39) return std::string(below(2) == 0 ? " j1.0" : " J1.0");
        const int module = 5 - below(modules);  // exchangers and pipes
        const int aisle = module < Exchangers ? below(2) : 0;
        return (kind > 34 ? " e" : " m") + number(module) + "." + number(port + 2 * aisle);
    };
    std::string rows;
    for (int left = 1 + below(16); left > 0; --left) {
        rows += below(6) == 0 ? "p" : "l";
        rows += below(20) == 0 ? "-" : below(8) == 0 ? std::to_string(below(4)) : "0";
        rows += end(1, 3) + end(0, 1) + "\n";
    }
    return rows;
}

void CompareWalks(const std::string& rows) {
    Rows(rows);
    const std::string verdict = PlainWalk();
    const std::string branches = BranchesText();
    const bool complete = BranchesTrace(Net, 0);
    ASSERT_EQ(BranchesText(), branches) << rows;
    ASSERT_EQ(complete ? TextOf({}) : Net.ParseMessage, verdict) << rows;
}

TEST_F(NetworkTest, WalkAgreesWithPlainWalk) {
    unsigned moved = 0;
    ForRandomTables(RandomTables, [&](auto below) {
        CompareWalks(RandomRows(below));
        for (const BranchSx& branch : Net.BranchTable) moved += branch.Size > 2 ? 1 : 0;
    });
    EXPECT_GT(moved, RandomTables / 4);                    // the tables hold real chains
    ForRandomTables(RandomTables / 1000, [](auto below) {  // about the limit of the passes
        std::vector<std::string> chain = Chain(460 + below(120));
        for (int left = static_cast<int>(chain.size()); left > 1; --left)
            chain[left - 1].swap(chain[below(left)]);
        CompareWalks(Joined(chain));
    });
}

TEST_F(NetworkTest, NetsAgreeWithPlainSweeps) {
    ForRandomTables(RandomTables, [](auto below) {
        ProjectCheckCache& check = Net.ProjectCheck;
        check.NodeNb = below(7);
        for (int node = 0; node < check.NodeNb; ++node) {
            check.NodeSx[node] = {.InUse = below(10) > 0, .Kind = below(5)};
        }
        Net.BranchTable.resize(below(9));
        const int ports = 1 + below(4);  // few ports, so that branches share some
        const auto kind = [&] { return below(6) == 0 ? ModulePortEnd : NodeEnd; };
        for (BranchSx& branch : Net.BranchTable) {
            branch = {0, 1, kind(), below(8) - 1, below(ports) * 5, kind(), below(8) - 1, below(ports), 1};
        }
        const bool complete = Net_NodeMatrixMap(Net);
        const std::string outcome = NetsText() + (complete ? TextOf({}) : Net.ParseMessage);
        ASSERT_EQ(outcome, PlainSweeps());
    });
}

}  // namespace

}  // namespace vorn
