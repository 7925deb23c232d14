#include <algorithm>

#include "engine/vorn_core.h"
#include "tests/support/service_test.h"

namespace {

using Calls = std::vector<std::string>;

class MoveTest : public ServiceTest {
  protected:
    MoveTest() {
        Send("Create", "P1");
        for (const char* number : {"0", "1"}) {
            EXPECT_EQ(Send("AddModule", "P1", R"({"VornModuleID":26010100000000012,"DeviceName":"阀门"})"),
                      std::string("MOD") + number);
            EXPECT_EQ(Send("AddNode", "P1", R"({"VornModuleID":3000,"NodeName":"FLUID"})"),
                      std::string("NOD") + number);
        }
        ModuleInstanceIDSet(0, 1, "valve-7");
        EXPECT_EQ(Send("AddLink", "P1",
                       R"({"F_InstanceID":"MOD0","F_PortNb":1,"S_InstanceID":"NOD0","S_PortNb":0})"),
                  "LNK0");
    }
};

TEST_F(MoveTest, MovesModulesAndNodesOnly) {
    const std::string notDouble = "的格式错误,应该是double";
    const std::string notMovable = "连线或跳转不可被移动,会跟随所连接的设备、节点移动";
    const struct {
        const char* name;
        const char* messages;
        std::string reply;
        std::string call{};  // the one that moves
    } rows[] = {
        {"P1_MOD0", R"({"PositionX":1.99,"PositionZ":-3.5})", "OK", R"(ProjectModuleXYSet("P1",0,99,-175))"},
        {"P1_valve-7", R"({"PositionX":2.0,"PositionZ":1e1})", "OK", R"(ProjectModuleXYSet("P1",1,100,500))"},
        {"p1_NOD1", "{}", "OK", R"(ProjectNodeXYSet("P1",1,0,0))"},
        {"P1_MOD77", R"({"PositionX":3.0})", "OK", R"(ProjectModuleXYSet("P1",77,150,0))"},
        {"P1_MOD0", R"({"PositionX":3})", "PositionX" + notDouble},
        {"P1_MOD0", R"({"PositionX":3,"PositionZ":"a"})", "PositionZ" + notDouble},
        {"P1_NOD0", R"({"PositionX":"a","PositionZ":1.0})", "PositionX" + notDouble},
        {"P1_MOD0", R"({"PositionX":5e7})", "PositionX" + notDouble},
        {"P1_LNK0", R"({"PositionX":3})", "PositionX" + notDouble},
        {"P1_LNK0", "{}", notMovable},
        {"P1_JMP3", R"({"PositionX":3.0})", notMovable},
        {"P1_LNK0", "[]", "API调用json格式错误,无法解析"},
        {"P1_none", "{}", "无法识别name中的InstanceID或ConnectionID，请核对一下"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.name) + row.messages);
        standin::TraceStart();
        EXPECT_EQ(Send("MoveMN", row.name, row.messages), row.reply);
        Calls calls = standin::TraceStop();
        if (row.call.empty()) {
            EXPECT_EQ(std::count(calls.begin(), calls.end(), "sleep 300"), 0);
            continue;
        }
        calls.erase(calls.begin(), std::find(calls.begin(), calls.end(), "ProjectNameGet(0)"));
        EXPECT_EQ(calls, (Calls{"ProjectNameGet(0)", row.call, "Pipe_PjtRef(0)", "sleep 300"}));
    }
}

TEST_F(MoveTest, DeletesAllButJumps) {
    const struct {
        const char* name;
        const char* reply;
        Calls calls;  // behind the one that finds the element
    } rows[] = {
        {"P1_LNK0", "OK", {"Pipe_DeleteLink(0,0)"}},
        {"P1_MOD0", "OK", {"Pipe_DeleteModule(0,0)"}},
        {"P1_valve-7", "OK", {R"(Module_FindInstanceID(0,"valve-7"))", "Pipe_DeleteModule(0,1)"}},
        {"P1_NOD1", "OK", {"Pipe_DeleteNode(0,1)"}},
        {"P1_NOD1", "OK", {"Pipe_DeleteNode(0,1)"}},  // vacant by now
        {"P1_JMP3", "跳转不可被删除", {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        standin::TraceStart();
        EXPECT_EQ(Send("DeleteMNL", row.name), row.reply);
        Calls calls = standin::TraceStop();
        calls.erase(calls.begin());
        EXPECT_EQ(calls, row.calls);
    }
    EXPECT_EQ(ProjectModuleNbCheck(0), 0);
    EXPECT_EQ(ProjectNodeNbCheck(0), 1);
    EXPECT_EQ(ProjectLinkNbCheck(0), 0);
}

}  // namespace
