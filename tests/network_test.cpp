// Branches, nets and verdicts of small networks.

#include <algorithm>

#include "network/net_access.h"
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
    {"a chain", "l0 n2.8 m4.0 l0 m4.1 m7.0 l0 m7.1 n5.0", "0 n2.8 4/0 7/0 n5.0\n2 5 \n", {2, -1, 2}},
    {"one end port mends the net", "l0 n2.8 m4.0 l0 m4.1 n5.0 l0 e9.1 m8.0 l0 m8.1 n5.1",
     "0 n2.8 4/0 n5.0\n0 e9.1 8/0 n5.1\n2 5 \n"},
    {"vacant rows", "l0 m7.1 e5.0 l- m4.1 e0.0 l0 m4.1 m7.0 l2 n2.8 m4.0", "2 n2.8 4/0 7/0 e5.0\n2 \n"},
    {"two aisles of one module", "l0 n0.8 m1.2 l0 n0.9 m1.0 l0 m1.1 e5.0 l0 m1.3 e6.0",
     "0 n0.8 1/1 e6.0\n0 n0.9 1/0 e5.0\n0 \n"},
    {"one module twice", "l0 n0.8 m1.0 l0 m1.1 m1.2 l0 m1.3 e6.0", "0 n0.8 1/0 1/1 e6.0\n0 \n"},
    {"a ring", "l0 e9.0 m8.0 l0 m8.1 e9.1 l0 m4.1 m5.0 l0 m5.1 m4.0", "0 e9.0 8/0 e9.1\n", {3, -1, 4, 1}},
    {"out into the own inlet", "l0 m4.1 m4.0 l0 n0.8 m4.0 l0 m4.1 e6.0", "0 n0.8 4/0 4/0 e6.0\n0 \n"},
    {"two branches with one tail", "l0 n0.8 m4.0 l0 m4.1 m5.0 l0 m5.1 e6.0 l0 n1.8 m4.0",
     "0 n0.8 4/0 5/0 e6.0\n0 n1.8 4/0 5/0 e6.0\n0 \n1 \n"},
    {"a node to itself", "l0 n3.8 m4.0 l0 m4.1 n3.0", "0 n3.8 4/0 n3.0\n3 \n", {2, -1, 3}},
    {"open hides left over", "l0 m6.1 m7.0 l0 n0.8 m4.0 l0 m4.1 m5.0", "0 n0.8 4/0 5/0 open\n", {1, 0, 5, 0}},
    {"left over hides the net", "l0 n0.8 m4.0 l0 m4.1 n1.0 l0 m6.1 m7.0", "0 n0.8 4/0 n1.0\n", {3, -1, 6, 1}},
    {"a page link left over", "p0 m6.1 m7.0", "", {3, -1, 6, 1}},
    {"rows that make no branch",
     "l1 n0.8 m4.0 l3 m4.1 n0.0 l0 j1.0 m5.0 l0 m5.1 j2.0 l1 m5.1 j2.0 p3 m5.1 m6.0",
     "0 \n",
     {2, -1, 0}},
    {"a page link of any type opens", "p1 n0.8 m4.0 p1 m4.1 e5.0", "1 n0.8 4/0 open\n", {1, 0, 4, 0}},
    {"over two pages", "l0 n0.8 m4.0 l0 m5.1 e6.0 p0 m4.1 m5.0", "0 n0.8 4/0 5/0 e6.0\n0 \n"},
    {"page links open last", "p3 n0.8 m4.0 l0 n1.8 m5.0 l0 m5.1 e6.0 l0 m4.1 e6.1",
     "0 n1.8 5/0 e6.0\n3 n0.8 4/0 e6.1\n0 \n1 \n"},
    {"INFO joins nothing",
     "l0 n0.8 m4.0 l0 m4.1 i1.0 l0 i1.8 m5.0 l0 m5.1 n2.0 l0 e6.0 m7.0 l0 m7.1 n0.1",
     "0 n0.8 4/0 n1.0\n0 n1.8 5/0 n2.0\n0 e6.0 7/0 n0.1\n0 \n2 \n",
     {2, -1, 2}},
    // The later branch stands at the doubled port: the other's front is not named there, and leads there.
    {"doubled above", "l0 n0.8 m4.0 l0 m4.1 n1.0 l0 e6.0 m5.0 l0 m5.1 n1.0",
     "0 n0.8 4/0 n1.0\n0 e6.0 5/0 n1.0\n0 1 \n"},
    {"doubled below",
     "l0 n1.8 m4.0 l0 m4.1 n0.0 l0 e6.0 m5.0 l0 m5.1 n0.0",
     "0 n1.8 4/0 n0.0\n0 e6.0 5/0 n0.0\n0 \n1 \n",
     {2, -1, 1}},
    {"ends outside the tables",
     "l0 n-1.8 m4.0 l0 m4.1 n0.16 l0 n9999.8 m5.0 l0 m5.1 n0.-1",
     "0 n-1.8 4/0 n0.16\n0 n9999.8 5/0 n0.-1\n0 \n",
     {2, -1, 0}},
    {"a row of no module", "l0 m-7.1 m6.0", "", {3, -1, -7, 1}},
};

TEST_F(NetworkTest, SmallTables) {
    for (const auto& each : Cases) {
        Rows(each.rows);
        EXPECT_EQ(SnapshotAnalyse(0), each.verdict.kind == Complete) << each.about;
        EXPECT_EQ(std::string(ParseMessage), TextOf(each.verdict)) << each.about;
        const bool mapped = each.verdict.kind == Complete || each.verdict.kind == NetWithoutPressure;
        EXPECT_EQ(BranchesText() + (mapped ? NetsText(MatrixNodes) : ""), each.outcome) << each.about;
    }
}

TEST_F(NetworkTest, VerdictTexts) {
    Rows("l0 n3.8 m4.0");
    ProjectCheck.NodeSx[3].Kind = 2;
    EXPECT_EQ(TextOf({0}), "解析成功并即将启动\n");
    EXPECT_EQ(TextOf({1, 12, 4, 1}),
              "出错啦,此支路号:12不完整,缺少下游链接。尾部的设备和通路,分别是设备(InstanceID) "
              ":MOD4,通路号:1,设备VornmoduleID:24032022192805856\n");
    EXPECT_EQ(TextOf({2, -1, 3}),
              "出错啦,此节点(InstanceID)所在管网缺少定压装置:NOD3,节点VornmoduleID:3002\n");
    EXPECT_EQ(TextOf({3, -1, 1, 7}),
              "出错啦,此设备(InstanceID):MOD1中,通路号:7所在支路不完整,设备VornmoduleID:26010100000000013\n");
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
        EXPECT_EQ(SnapshotAnalyse(0), each.complete) << each.rows;
        EXPECT_EQ(BranchTable[0].Size, each.size);
        EXPECT_EQ(std::string(ParseMessage), TextOf(each.complete ? Said{} : Said{1, 0, 260, 0}));
    }
}

}  // namespace

}  // namespace vorn
