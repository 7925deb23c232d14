#include <algorithm>
#include <chrono>
#include <thread>

#include "engine/vorn_core.h"
#include "engine/vorn_var.h"
#include "standin/simulation.h"
#include "tests/support/service_test.h"

namespace {

constexpr const char* NotOpen = "找不到项目/不识别命令";

/// A project of one module in slot 0, and no steps but those that a test makes.
class RunControlTest : public ServiceTest {
  protected:
    RunControlTest() {
        standin::SimulationKeepOff(true);
        Open();
    }
    static void Open() {
        Send("Create", "P1");
        Send("AddModule", "P1", Valve());
    }
};

std::string State() {
    if (ProjectNameToID("P1") != 0) return "absent";
    const std::string paused = PjtPauseSxGet(0) ? "paused" : "running";
    return PjtStartGet(0) ? paused : PjtPauseSxGet(0) ? "held" : "stopped";
}

/// Brings P1 into a state by the flags alone.
void Enter(const std::string& state) {
    PjtStartSet(0, state == "running" || state == "paused");
    PjtPauseSxSet(0, state == "paused" || state == "held");
}

TEST_F(RunControlTest, BothCommandSetsMakeTheirCallsAndTransitions) {
    const std::string start =
        "PjtStartGet(0); ProjectAllCacheInToRun(0,0); PjtStartSet(0,true); ProjectControllerRun(); ";
    const std::string stop = "PjtStartSet(0,false); PjtPauseSxSet(0,false)";
    const std::string toggle = "PjtPauseSxGet(0); PjtPauseSxSet(0,";
    const std::string endRun = "PjtStartGet(0); PjtStartSet(0,false); ";
    const std::string close = R"(ProjectNameGet(0); ProjectInfoRemove("P1"); Pipe_PjtListRef())";
    const std::string remove = R"(ProjectInfoRemove("p1"); Pipe_PjtListRef())";
    const std::string mark = R"(PeojectListRef_CliSet("p1"))";
    // The state before, the command, its reply, the calls behind the one that finds the project, and the
    // state behind it. A project that is stopped with pause set is `held`.
    const struct {
        const char *from, *command, *messages, *reply;
        std::string calls;
        const char* to;
    } rows[] = {
        {"stopped", "PjtRun", "", "OK", start + "sleep 2000; PeojectAccess_ToServerRefGet(0)", "running"},
        {"paused", "PjtRun", "", "OK", "PjtStartGet(0)", "paused"},
        {"running", "PjtPause", "", "OK", toggle + "true)", "paused"},
        {"held", "PjtPause", "", "OK", toggle + "false)", "stopped"},
        {"paused", "PjtStep", "", "OK", "StepSxSet(0,true)", "paused"},
        {"paused", "PjtStop", "", "OK", stop, "stopped"},
        {"held", "PjtStop", "", "OK", stop, "stopped"},
        {"paused", "PjtClear", "", "OK", "Pipe_ProjectInfoClear(0); Pipe_PjtRef(0); sleep 300", "paused"},
        {"running", "PjtCacheToRun", " +2x", "OK", "ProjectAllCacheInToRun(0,2)", "running"},
        {"stopped", "PjtCacheToRun", "abc", "OK", "ProjectAllCacheInToRun(0,0)", "stopped"},
        {"running", "PjtCacheToRun", "3", "shibai", "", "running"},
        {"running", "PjtRunToCache", "", "OK", "ProjectAllRunInToCache(0,0); Pipe_PjtVarValueRef(0)",
         "running"},
        {"running", "PjtRunToCache", "-1", "shibai", "", "running"},
        {"paused", "PjtClose", "", "OK", endRun + close, "absent"},
        {"stopped", "PjtClose", "", "OK", "PjtStartGet(0); " + close, "absent"},
        {"held", "Put", "Run", "成功运行", start + mark, "paused"},
        {"running", "Put", "Run", "已运行", "PjtStartGet(0); " + mark, "running"},
        {"paused", "Put", "Pause", "OK", toggle + "false)", "running"},
        {"stopped", "Put", "Pause", "OK", toggle + "true)", "held"},
        {"running", "Put", "Step", "OK", "StepSxSet(0,true)", "running"},
        {"stopped", "Put", "Stop", "OK", stop, "stopped"},
        {"running", "Put", "Remove", "OK", endRun + remove, "absent"},
        {"held", "Put", "Remove", "OK", "PjtStartGet(0); " + remove, "absent"},
    };
    for (const auto& row : rows) {
        Open();
        Enter(row.from);
        const bool put = row.command == std::string("Put");
        const char* find = put ? R"(ProjectNameToID("p1"); )" : R"(NameParsing_ModNod("P1"); )";
        ExpectExchange(row.command, put ? "p1" : "P1", row.messages, row.reply, find + row.calls);
        EXPECT_EQ(State(), row.to) << row.from << ' ' << row.command << ' ' << row.messages;
    }
}

TEST_F(RunControlTest, CloseWalksAllSlots) {
    Send("Create", "P2");
    std::string wanted;
    for (int slot = 0; slot < 8; ++slot) {
        const std::string number = std::to_string(slot);
        const std::string name = slot == 0 ? "P1" : slot == 1 ? "P2" : "";
        wanted += "PjtStartSet(" + number + ",false); ProjectNameGet(" + number + "); ";
        wanted += "ProjectInfoRemove(\"" + name + "\"); ";
    }
    ExpectExchange("Put", "", "Close", "OK", wanted + "Pipe_PjtListRef()");
    EXPECT_EQ(Send("Fdp", "P1") + Send("Fdp", "P2"), "00");
}

TEST_F(RunControlTest, RepliesOfWhatCannotBe) {
    EXPECT_EQ(Send("Put", "NONE", "Run"), "找不到项目");
    for (const char* verb : {"Pause", "Step", "Stop", "Remove"})
        EXPECT_EQ(Send("Put", "NONE", verb), NotOpen);
    for (const char* verb : {"run", ""}) EXPECT_EQ(Send("Put", "P1", verb), NotOpen);
    EXPECT_EQ(Send("Put", "P1_MOD0", "Pause"), NotOpen);
    EXPECT_EQ(Send("PjtRun", "NONE"), NoProject);
    EXPECT_EQ(State(), "stopped");
}

TEST_F(RunControlTest, ARefusedStartTellsWhy) {
    Send("DeleteMNL", "P1_MOD0");
    EXPECT_EQ(Send("PjtRun", "P1"), "项目中没有模块,无法运行");
    EXPECT_EQ(State(), "stopped");
    EXPECT_EQ(Send("Put", "P1", "Run"), "成功运行");
    EXPECT_EQ(State(), "stopped");
    // The reason of an earlier refusal is gone with the next start, also where that is taken back later.
    Send("AddModule", "P1", Valve());
    AtSleep([](int) { PjtStartSet(0, false); });
    EXPECT_EQ(Send("PjtRun", "P1"), "OK");
    EXPECT_EQ(State(), "stopped");
}

double& RunValue(int module, std::size_t row) {
    return standin::ProjectFind(0)->modules.Find(module)->layers[standin::RunLayer].items.at(row);
}

TEST_F(RunControlTest, SetsAreCopiedForAllElementsAndOnlyAtAStart) {
    Send("AddNode", "P1", Fluid());
    auto& node = standin::ProjectFind(0)->nodes.Find(0)->layers;
    RunValue(0, 0) = 7.0;
    node[standin::RunLayer].items[1] = 8.0;
    Send("PjtRunToCache", "P1", "2");
    Send("PjtRun", "P1");
    EXPECT_EQ(RunValue(0, 0), 1.0);
    EXPECT_EQ(node[standin::RunLayer].items[1], 0.0);
    Send("PjtCacheToRun", "P1", "2");
    Send("PjtRun", "P1");
    EXPECT_EQ(RunValue(0, 0), 7.0);
    EXPECT_EQ(node[standin::RunLayer].items[1], 8.0);
    EXPECT_EQ(node[standin::CacheLayer1].items[1], 0.0);
}

/// The steps that P1 has made; 0 where it is not open.
int Steps() {
    const std::lock_guard guard(standin::EngineLock());
    const standin::Project* project = standin::ProjectFind(0);
    return project == nullptr ? 0 : project->variables[3].integers[0];
}

/// Waits for the simulation's thread, a good while if need be.
bool StepsReach(int count) {
    const std::chrono::milliseconds pause(1);
    for (int wait = 0; wait < 20'000 && Steps() < count; ++wait) std::this_thread::sleep_for(pause);
    return Steps() >= count;
}

class RunControlThreadsTest : public RunControlTest {};

TEST_F(RunControlThreadsTest, StepWhatRunsAndWhatIsAsked) {
    standin::SimulationKeepOff(false);
    Send("PjtStep", "P1");
    Send("Put", "P1", "Step");
    EXPECT_TRUE(StepsReach(2));
    Send("PjtPause", "P1");
    Send("PjtRun", "P1");
    Send("PjtStep", "P1");
    EXPECT_TRUE(StepsReach(3));
    EXPECT_EQ(Steps(), 3);
    Send("PjtPause", "P1");
    EXPECT_TRUE(StepsReach(6));
}

TEST_F(RunControlThreadsTest, StepTenTimesASecondAndNeverFaster) {
    using Milliseconds = std::chrono::duration<double, std::milli>;
    standin::SimulationKeepOff(false);
    const auto start = std::chrono::steady_clock::now();
    const auto passed = [start] { return Milliseconds(std::chrono::steady_clock::now() - start).count(); };
    Send("PjtRun", "P1");
    // However busy the machine, some six steps follow each other without a rest.
    bool met = false;
    std::vector<double> seen;  // when each step was seen
    while ((seen.size() < 12 || !met) && passed() < 60'000) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        const int steps = Steps();
        ASSERT_LE(steps * 100, passed() + 100);  // the first may follow a step of another run
        seen.resize(static_cast<std::size_t>(steps), passed());
        met = met || (seen.size() > 5 && seen.back() - seen[seen.size() - 6] < 650);
    }
    EXPECT_TRUE(met);
}

TEST_F(RunControlThreadsTest, OfClientsAndOfTheSimulationDoNotDisturbEachOther) {
    standin::SimulationKeepOff(false);
    constexpr int Rounds = 6000;
    const auto client = [](int number) {
        const std::string requests[][3] = {{"Set", "P1_GTemp", "4.5"},   {"Get", "P1_GStep", ""},
                                           {"PjtRunToCache", "P1", "1"}, {"PjtCacheToRun", "P1", "1"},
                                           {"PjtRun", "P1", ""},         {"Put", "P1", "Step"},
                                           {"AddModule", "P1", Valve()}, {"DeleteMNL", "P1_MOD1", ""},
                                           {"MoveMN", "P1_MOD0", "{}"},  {"LuaSent", "P1", "x = = 1"}};
        for (int round = 0; round < Rounds; ++round) {
            const auto& [command, name, messages] = requests[(round + number * 3) % std::size(requests)];
            Send(command, name, messages);
            // The engine takes operations at any time, also without the dispatcher's lock.
            PeojectAccess_ToServerRefGet(0);
            ProjectAllRunInToCache(0, 2);
            w_GloSet(0, 0, GloGet(0, 1));
            w_ModPortSet(0, 0, 0, 0, ModPortGet(0, 0, 1, 0));
        }
    };
    const auto closer = [] {
        for (int round = 0; round < Rounds / 3; ++round) {
            EXPECT_EQ(Send("Put", "P1", round % 2 == 0 ? "Remove" : "Close"), "OK");
            EXPECT_EQ(Send("Create", "P1"), "OK");
            Send("AddModule", "P1", Valve());
        }
    };
    std::vector<std::thread> threads;
    for (int number = 0; number < 3; ++number) threads.emplace_back(client, number);
    threads.emplace_back(closer);
    for (std::thread& thread : threads) thread.join();
    Send("AddModule", "P1", Valve());
    EXPECT_EQ(Send("PjtRun", "P1"), "OK");
    EXPECT_TRUE(StepsReach(1));
}

}  // namespace
