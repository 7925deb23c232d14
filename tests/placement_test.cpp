// AddModule, AddNode and AddLink: which failure a client is told of, what is placed, and the engine calls in
// order.

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "engine/vorn_core.h"
#include "standin/project.h"
#include "tests/support/service_test.h"

namespace {

using std::string;
using Calls = std::vector<string>;

constexpr const char* ModuleNotFound = "找不到VornModuleID对应的模块,请核查VornModuleID";
constexpr const char* NodeNotFound = "找不到VornModuleID对应的节点,请核查VornModuleID";
constexpr const char* ModuleName = "DeviceName与VornModuleID对应不上,请重新核查";
constexpr const char* NodeName = "NodeName与VornModuleID对应不上,请重新核查";
constexpr const char* Refused = "出现莫名错误,请联系技术支持";

/// A project P in slot 0.
class PlacementTest : public ServiceTest {
  protected:
    PlacementTest() { Send("Create", "P"); }
};

/// A request for a valve (type 12), for a node of kind FLUID, with further members.
string Valve(const string& more = "") {
    return R"({"VornModuleID":26010100000000012,"DeviceName":"阀门")" + more + "}";
}
string Fluid(const string& more = "") {
    return R"({"VornModuleID":3000,"NodeName":"FLUID")" + more + "}";
}

TEST_F(PlacementTest, TellsTheFailureThatCounts) {
    const struct {
        string command, messages, reply;
    } rows[] = {
        {"AddModule", "", ModuleNotFound},
        {"AddModule", "no json", ModuleNotFound},
        {"AddModule", "[]", ModuleNotFound},
        {"AddModule", "{}", ModuleNotFound},
        {"AddModule", R"({"VornModuleID":1})", ModuleNotFound},
        {"AddModule", R"({"VornModuleID":"26010100000000012","DeviceName":"阀门"})", ModuleNotFound},
        {"AddModule", R"({"VornModuleID":26010100000000012.0,"DeviceName":"阀门"})", ModuleNotFound},
        {"AddModule", R"({"VornModuleID":1,"PageNb":"x"})", ModuleNotFound},
        {"AddModule", Valve(R"(,"PageNb":1.0)"), "PageNb的格式错误,应该是int的整数"},
        {"AddModule", Valve(R"(,"PositionX":"1")"), "PositionX的格式错误,应该是double"},
        {"AddModule", Valve(R"(,"PositionX":3000000000)"), "PositionX的格式错误,应该是double"},
        {"AddModule", Valve(R"(,"PositionZ":43000000.0)"), "PositionZ的格式错误,应该是double"},
        {"AddModule", Valve(R"(,"PositionZ":true)"), "PositionZ的格式错误,应该是double"},
        {"AddModule", Valve(R"(,"ModelID":1)"), "ModelID的格式错误,应该是string"},
        {"AddModule", Valve(R"(,"RoomID":1,"PageNb":"x")"), "RoomID的格式错误,应该是string"},
        {"AddModule", R"({"VornModuleID":26010100000000012,"DeviceName":5,"RoomID":5})",
         "DeviceName的格式错误,应该是string"},
        {"AddModule", R"({"VornModuleID":26010100000000012})", ModuleName},
        {"AddModule", R"({"VornModuleID":26010100000000012,"DeviceName":"水泵"})", ModuleName},
        {"AddNode", "no json", NodeNotFound},
        {"AddNode", R"({"VornModuleID":2999,"NodeName":"FLUID"})", NodeNotFound},
        {"AddNode", R"({"VornModuleID":3004,"NodeName":"FLUID"})", NodeNotFound},
        {"AddNode", R"({"VornModuleID":-2147483648,"NodeName":"FLUID"})", NodeNotFound},
        {"AddNode", R"({"VornModuleID":3000.0,"NodeName":"FLUID"})", NodeNotFound},
        {"AddNode", R"({"VornModuleID":3001,"NodeName":"info"})", NodeName},
        {"AddNode", R"({"VornModuleID":3001})", NodeName},
        {"AddNode", Fluid(R"(,"PageNb":null)"), "PageNb的格式错误,应该是int的整数"},
        {"AddNode", Fluid(R"(,"PositionX":"1","PositionZ":"1")"), "PositionZ的格式错误,应该是double"},
        {"AddNode", R"({"VornModuleID":3000,"NodeName":7})", "NodeName的格式错误,应该是string"},
        {"AddModule", Valve(), "MOD0"},
        {"AddNode", R"({"VornModuleID":3003,"NodeName":"MECH"})", "NOD0"},
    };
    for (const auto& row : rows) EXPECT_EQ(Send(row.command, "P", row.messages), row.reply) << row.messages;
}

TEST_F(PlacementTest, TellsOfAFullTableAndOfARefusal) {
    standin::CapacitySet(standin::ModuleTable, 1);
    standin::CapacitySet(standin::NodeTable, 0);
    standin::RefuseNextAddition();
    EXPECT_EQ(Send("AddModule", "P", Valve()), Refused);
    EXPECT_EQ(Send("AddModule", "P", Valve()), "MOD0");
    EXPECT_EQ(Send("AddModule", "P", Valve(R"(,"PageNb":"x")")), "模块数量已达到上限");
    EXPECT_EQ(Send("AddModule", "P", R"({"VornModuleID":1})"), ModuleNotFound);
    EXPECT_EQ(Send("AddNode", "P", Fluid()), "节点数量已达到上限");
    EXPECT_EQ(Send("AddNode", "P", "{}"), NodeNotFound);
}

TEST_F(PlacementTest, PlacesOnTheGridInTheGivenOrder) {
    EXPECT_EQ(CallsOf("AddModule", "P_x", Valve(R"(,"PageNb":2,"PositionX":1.99,"PositionZ":-3)")),
              (Calls{"NameParsing_ModNod(\"P_x\")", "ProjectModuleNbCheck(0)",
                     "ModuleOneID_ToID(26010100000000012)", "ModuleNameGet(12)", "GuiRef_Get(0)",
                     "ProjectNameGet(0)", "ProjectAddModule(\"P\",0,12,2,99,-150)", "Pipe_PjtRef(0)",
                     "sleep 300", "ModuleInstanceIDSet(0,0,\"MOD0\")"}));
    EXPECT_EQ(CallsOf("AddNode", "P", Fluid(R"(,"PositionX":3.0,"PositionZ":-0.01)")),
              (Calls{"NameParsing_ModNod(\"P\")", "ProjectNodeNbCheck(0)", "GuiRef_Get(0)",
                     "ProjectNameGet(0)", "ProjectAddNode(\"P\",0,0,0,150,0)", "Pipe_PjtRef(0)", "sleep 300",
                     "NodeInstanceIDSet(0,0,\"NOD0\")"}));
}

TEST_F(PlacementTest, WaitsForABusyViewAndThenGoesAhead) {
    const auto waits = [](const Calls& calls) { return std::count(calls.begin(), calls.end(), "sleep 1"); };
    standin::ViewBusySet(3);
    EXPECT_EQ(waits(CallsOf("AddNode", "P", Fluid())), 2);
    standin::ViewBusySet(-1);
    EXPECT_EQ(waits(CallsOf("AddNode", "P", Fluid())), 300);
    EXPECT_NE(standin::ProjectFind(0)->nodes.Find(1), nullptr);
}

/// The plant of the link tests: valves MOD0 and MOD1 (ports 0 in and 1 out, through), tanks MOD2 and MOD3 (0
/// in and 1 out, end ports), nodes NOD0 and NOD1.
class LinkTest : public PlacementTest {
  protected:
    LinkTest() {
        for (int valve = 0; valve < 2; ++valve) ProjectAddModule("P", valve, 12, 0, 0, 0);
        for (int tank = 2; tank < 4; ++tank) ProjectAddModule("P", tank, 14, 0, 0, 0);
        for (int node = 0; node < 2; ++node) ProjectAddNode("P", node, 0, 0, 0, 0);
    }

    /// A request such as `"MOD2 1 > NOD0 0"`, with further members.
    static string Ends(const string& text, const string& more = "") {
        std::istringstream words(text);
        string upstream, upstreamPort, arrow, downstream, downstreamPort;
        words >> upstream >> upstreamPort >> arrow >> downstream >> downstreamPort;
        return R"({"F_InstanceID":")" + upstream + R"(","F_PortNb":)" + upstreamPort +
               R"(,"S_InstanceID":")" + downstream + R"(","S_PortNb":)" + downstreamPort + more + "}";
    }
    static string Link(const string& text, const string& more = "") {
        return Send("AddLink", "P", Ends(text, more));
    }

    static LinkSxCache Row(int number) { return *standin::ProjectFind(0)->links.Find(number); }
};

TEST_F(LinkTest, TellsTheLastFailureOfTheFirstFailedStage) {
    const string unknown = "InstanceID不识别,请重新核查InstanceID";
    const string upstreamRange = "F_PortNb端口号超出范围,仅支持编号0~15共16个端口";
    const string downstreamRange = "S_PortNb端口号超出范围,仅支持编号0~15共16个端口";
    ProjectAddLink("P", 0, {.InUse = true, .F_Sx = 1, .F_Nb = 0, .F_PortNb = 1, .S_Sx = 1, .S_Nb = 1});
    const struct {
        string messages, reply;
    } rows[] = {
        {"", "API调用json格式错误,无法解析"},
        {"[]", "API调用json格式错误,无法解析"},
        {R"({"Type":"0","PageNb":1.5})", "PageNb的格式错误,应该是int的整数"},
        {R"({"Type":1.0})", "Type的格式错误,应该是int的整数"},
        {R"({"F_InstanceID":1,"PageNb":"x"})", "F_InstanceID的格式错误,应该是string"},
        {R"({"F_PortNb":"1"})", "F_PortNb的格式错误,应该是int的整数"},
        {R"({"S_InstanceID":null})", "S_InstanceID的格式错误,应该是string"},
        {R"({"S_PortNb":1.0})", "S_PortNb的格式错误,应该是int的整数"},
        {R"({"F_PortNb":16,"S_InstanceID":1})", upstreamRange},
        {R"({"F_PortNb":-1,"S_PortNb":16})", downstreamRange},
        {Ends("NOD0 16 > MOD1 0"), upstreamRange},
        {"{}", unknown},
        {Ends("MOD 1 > NOD0 0"), unknown},
        {Ends("mod1 1 > NOD0 0"), unknown},
        {Ends("XYZ1 1 > NOD0 0"), unknown},
        {Ends("MOD1a 1 > NOD0 0"), unknown},
        {Ends("MOD4294967296 1 > NOD0 0"), unknown},
        {Ends("NOD0 0 > MOD1b 0"), unknown},
        {Ends("MOD2 0 > NOD0 0"), "连线错误,上游端口只能是出口性质"},
        {Ends("NOD0 0 > MOD2 1"), "连线错误,下游端口只能是入口性质"},
        {Ends("MOD0 1 > NOD0 0"), "连线错误,上游端口已连接:1"},
        {Ends("NOD0 0 > MOD1 0"), "连线错误,下游端口已连接0"},
        {Ends("MOD0 0 > MOD1 1"), "连线错误,下游端口只能是入口性质"},
        {Ends("MOD0 1 > MOD1 0"), "连线错误,下游端口已连接0"},
        {Ends("XYZ1 1 > MOD1 1"), "连线错误,下游端口只能是入口性质"},
        {Ends("MOD0 0 > NOD9 0"), "连线错误,此节点的入口已被占满"},
        {Ends("MOD9 1 > NOD0 0"), "连线错误,上游端口只能是出口性质"},
    };
    for (const auto& row : rows) EXPECT_EQ(Send("AddLink", "P", row.messages), row.reply) << row.messages;
    EXPECT_EQ(standin::ProjectFind(0)->links.NextNumber(), 1);
}

TEST_F(LinkTest, LinksDirectlyWhereAPortIsFlaggedOrTheTypeHasNoModule) {
    EXPECT_EQ(CallsOf("AddLink", "P", Ends("MOD0 1 > MOD1 0", R"(,"Type":0,"PageNb":3)")),
              (Calls{"NameParsing_ModNod(\"P\")", "ProjectModulePortInOutGet(0,0,1)",
                     "ProjectModulePortCanBeLink(0,0,1)", "ProjectModulePortType_2_Get(0,0,1)",
                     "ProjectModulePortInOutGet(0,1,0)", "ProjectModulePortCanBeLink(0,1,0)",
                     "ProjectModulePortType_2_Get(0,1,0)", "GuiRef_Get(0)", "ProjectLinkNbCheck(0)",
                     "ProjectNameGet(0)", "ProjectAddLink(\"P\",0,{0 3 1 0 1 1 1 1 0 1})", "Pipe_PjtRef(0)",
                     "sleep 300"}));
    EXPECT_EQ(Link("MOD2 1 > MOD3 0", R"(,"Type":1)"), "LNK1");
    EXPECT_EQ(Link("NOD0 0 > NOD1 0", R"(,"Type":3)"), "LNK2");
    EXPECT_EQ(Link("JMP4 5 > LNK2 6", R"(,"Type":7)"), "LNK3");
    const auto jump = Row(3);
    EXPECT_TRUE(jump.F_Sx == 3 && jump.F_Nb == 4 && jump.F_PortNb == 5 && jump.S_Sx == 4 &&
                jump.S_PortNb == 6);
}

TEST_F(LinkTest, PutsAPipeOrAWireBetweenUnflaggedEnds) {
    standin::ViewBusySet(2);
    EXPECT_EQ(CallsOf("AddLink", "P", Ends("MOD2 1 > NOD0 9", R"(,"PageNb":2)")),
              (Calls{"NameParsing_ModNod(\"P\")",
                     "ProjectModulePortInOutGet(0,2,1)",
                     "ProjectModulePortCanBeLink(0,2,1)",
                     "ProjectModulePortType_2_Get(0,2,1)",
                     "ProjectNodePortCanBeLink(0,0,0)",
                     "GuiRef_Get(0)",
                     "sleep 1",
                     "GuiRef_Get(0)",
                     "ModuleOneID_ToID(24032022192805856)",
                     "ProjectModuleNbCheck(0)",
                     "ProjectNameGet(0)",
                     "ProjectAddModule(\"P\",4,0,2,50,50)",
                     "ModuleInstanceIDSet(0,4,\"MOD4\")",
                     "ProjectLinkNbCheck(0)",
                     "ProjectNameGet(0)",
                     "ProjectAddLink(\"P\",0,{0 2 1 2 1 0 1 4 0 1})",
                     "ProjectLinkNbCheck(0)",
                     "ProjectNameGet(0)",
                     "ProjectAddLink(\"P\",1,{0 2 1 4 1 1 2 0 0 0})",
                     "Pipe_PjtRef(0)",
                     "sleep 300"}));
    EXPECT_EQ(Link("NOD0 0 > NOD1 0", R"(,"Type":2)"),
              "OK,但是新增了一个模块、链接了两条线:MOD5、LNK2、LNK3");
    EXPECT_EQ(standin::ProjectFind(0)->modules.Find(5)->type, 1);
}

TEST_F(LinkTest, TakesTheLowestFreeNodePorts) {
    for (int link = 0; link < 8; ++link)
        EXPECT_EQ(Link("NOD0 3 > NOD1 9", R"(,"Type":1)"), "LNK" + std::to_string(link));
    EXPECT_TRUE(Row(0).F_PortNb == 8 && Row(0).S_PortNb == 0 && Row(7).F_PortNb == 15 &&
                Row(7).S_PortNb == 7);
    EXPECT_EQ(Link("NOD0 0 > NOD0 0", R"(,"Type":1)"), "连线错误,此节点的出口已被占满");
    EXPECT_EQ(Link("NOD0 0 > NOD1 0", R"(,"Type":1)"), "连线错误,此节点的入口已被占满");
    Pipe_DeleteLink(0, 2);
    EXPECT_EQ(Link("NOD0 0 > NOD1 0", R"(,"Type":1)"), "LNK2");
    EXPECT_TRUE(Row(2).F_PortNb == 10 && Row(2).S_PortNb == 2);
}

TEST_F(LinkTest, TellsWhatHasNoRoom) {
    const string noRoom = "请暂停,连线数量、模块数量已达到上限。或者缺少管道、导线模块,请联系技术支持";
    standin::CapacitySet(standin::ModuleTable, 4);
    EXPECT_EQ(Link("MOD2 1 > NOD0 0"), noRoom);
    standin::CapacitySet(standin::LinkTable, 0);
    EXPECT_EQ(Link("MOD2 1 > NOD0 0", R"(,"Type":1)"), noRoom);
    EXPECT_EQ(Link("MOD0 1 > NOD0 0"), "Nb To Be Max");
    // The link table is asked for only after the module stands.
    standin::CapacitySet(standin::ModuleTable, 6);
    EXPECT_EQ(Link("MOD2 1 > NOD0 0"), "OK,但是新增了一个模块、链接了两条线:MOD4");
    standin::CapacitySet(standin::LinkTable, 1);
    EXPECT_EQ(Link("MOD2 1 > NOD0 0"), "OK,但是新增了一个模块、链接了两条线:MOD5、LNK0");
}

TEST_F(LinkTest, MakesNoLinkWhereTheModuleIsRefused) {
    standin::RefuseNextAddition();
    EXPECT_EQ(Link("MOD2 1 > NOD0 0"), Refused);
    EXPECT_EQ(standin::ProjectFind(0)->links.NextNumber(), 0);
    EXPECT_EQ(Link("MOD2 1 > NOD0 0"), "OK,但是新增了一个模块、链接了两条线:MOD4、LNK0、LNK1");
}

TEST_F(LinkTest, DeletesTheLinksOfADeletedElementAndReusesItsNumber) {
    Link("MOD0 1 > MOD1 0");
    Link("NOD0 0 > MOD0 0");
    Pipe_DeleteModule(0, 0);
    EXPECT_EQ(standin::ProjectFind(0)->links.Find(0), nullptr);
    EXPECT_EQ(standin::ProjectFind(0)->links.Find(1), nullptr);
    EXPECT_FALSE(ProjectModulePortCanBeLink(0, 1, 0));
    EXPECT_EQ(Send("AddModule", "P", Valve()), "MOD0");
    EXPECT_EQ(Link("NOD0 0 > MOD0 0"), "LNK0");
}

}  // namespace
