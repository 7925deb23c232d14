#include "engine/vorn_core.h"
#include "standin/project_store.h"
#include "tests/support/service_test.h"
#include "tests/support/working_folder.h"

namespace {

class PublishedTest : public ServiceTest {
  protected:
    PublishedTest() { standin::SimulationKeepOff(true); }
    static void Store(const char* project) {
        const std::lock_guard guard(standin::EngineLock());
        EXPECT_TRUE(standin::StoreWrite(*standin::ProjectFind(project)));
    }
    WorkingFolder folder_;
};

TEST_F(PublishedTest, RunStartsAStoredProjectThatWasNotOpen) {
    Send("Create", "P1");
    Send("AddModule", "P1", R"({"VornModuleID":26010100000000012,"DeviceName":"阀门"})");
    Send("VarCacheSet", "P1_MOD0", R"({"Row":0,"Column":1,"Value":"7"})");
    Store("P1");
    Send("Create", "BARE");
    Store("BARE");
    Send("Put", "", "Close");

    standin::TraceStart();
    EXPECT_EQ(Send("Put", "P1", "Run"), "成功运行");
    EXPECT_EQ(standin::TraceStop(),
              (std::vector<std::string>{R"(ProjectNameToID("P1"))", R"(ProjectInfoRead("P1"))",
                                        R"(ProjectRunFabuGet("P1"))", "Pipe_PjtListRef()",
                                        R"(PeojectListRef_CliSet("P1"))"}));
    EXPECT_TRUE(PjtStartGet(0));
    EXPECT_EQ(Send("Get", "P1_MOD0_Opening"), "7.000000");
    EXPECT_EQ(Send("Put", "P1", "Run"), "已运行");

    // What is stored and has nothing to run is closed again.
    standin::TraceStart();
    EXPECT_EQ(Send("Put", "BARE", "Run"), "项目未成功发布");
    EXPECT_EQ(standin::TraceStop(),
              (std::vector<std::string>{R"(ProjectNameToID("BARE"))", R"(ProjectInfoRead("BARE"))",
                                        R"(ProjectRunFabuGet("BARE"))", R"(ProjectInfoRemove("BARE"))"}));
    EXPECT_EQ(Send("Fdp", "BARE"), "0");
}

}  // namespace
