// Scripts, held values and the time of a run, as clients meet them.

#include <bit>
#include <chrono>
#include <memory>
#include <thread>

#include "tests/support/plant_test.h"

using standin::PlantStep;

namespace {

/// A pump that drives water out of a tank through a valve and a radiator in a room. P_MOD1 is the pump,
/// P_MOD2 the valve, P_MOD4 the room.
Drawing Loop() {
    Drawing drawing;
    const int tank = drawing.Add(Tank, {0.3});
    const int pump = drawing.Add(Pump, {10.0, 0.5});
    const int valve = drawing.Add(ValvePiece, {1.0});
    const int radiator = drawing.Add(Radiator, {2.0}, 4);
    drawing.Add(RoomPiece, {15.0, 5.0});
    drawing.Chain({tank, pump, valve, radiator, tank});
    return drawing;
}

class ControlTest : public PlantTest {
  protected:
    static void Step(int count = 1) {
        for (; count > 0; --count) ASSERT_TRUE(PlantStep(0, 1.0));
    }
    static std::string Faults() { return Send("ImportantGet", "P"); }
};

TEST_F(ControlTest, AScriptRunsOnceAStepWithTheNamesOfClients) {
    MadePlant plant("P", Loop());
    Send("PjtAddVar", "P", "X");
    ASSERT_EQ(Send("LuaSent", "P", R"(
        n = (n or 0) + 1
        set("MOD2_Opening", 0.5) set("P_X", n) set("GOutside", 0 / 0)
        assert(get("MOD2_Opening") == 0.5 and get("GTime") == time() and step_seconds() == 1)
        if n == 3 then error("enough") end)"),
              "OK");
    Step();
    EXPECT_EQ(Get("P_MOD2_Opening"), 0.5);
    EXPECT_EQ(Get("P_X") + Get("P_GScript") + Get("P_GOutside"), 2.0);
    Step();
    EXPECT_EQ(Get("P_X"), 2.0);
    EXPECT_EQ(Faults(), "[]");
    // The fault stops the script and not the plant.
    Step(2);
    EXPECT_EQ(Get("P_GScript"), 2.0);
    EXPECT_EQ(Get("P_GTime"), 4.0);
    EXPECT_EQ(Faults(), R"([{"InstanceID":"","Important":"script:5: enough"}])");
    // Another script begins anew, and none is none.
    EXPECT_EQ(Send("LuaSent", "P", "set('X', n == nil)"), "OK");
    Step();
    EXPECT_EQ(Get("P_X") + Get("P_GScript"), 2.0);
    EXPECT_EQ(Faults(), "[]");
    Send("LuaSent", "P", "");
    Step();
    EXPECT_EQ(Get("P_GScript"), 0.0);
}

TEST_F(ControlTest, AHeldValueStaysUntilItIsLetGo) {
    MadePlant plant("P", Loop());
    Send("LuaSent", "P", "set('MOD2_Opening', 1)");
    Step();
    const double flow = Get("P_MOD1_IM1_FLOW");
    const double room = Get("P_MOD4_InsideTemperature");
    for (const char* name : {"MOD1_IM1_FLOW", "MOD4_InsideTemperature", "MOD2_Opening"}) {
        EXPECT_EQ(Send("Set", std::string("P_") + name + "_HELD", "1"), "OK");
        EXPECT_EQ(Send("Set", std::string("P_") + name, "0.25"), "OK");
        EXPECT_EQ(Get(std::string("P_") + name + "_HELD"), 1.0);
    }
    Step(5);
    EXPECT_EQ(Get("P_MOD1_IM1_FLOW"), 0.25);
    EXPECT_EQ(Get("P_MOD4_InsideTemperature"), 0.25);
    EXPECT_EQ(Get("P_MOD2_Opening"), 0.25);
    EXPECT_LT(Get("P_MOD2_IM1_FLOW"), 0.9 * flow);  // the held opening is the one that throttles
    for (const char* name : {"MOD1_IM1_FLOW", "MOD4_InsideTemperature", "MOD2_Opening"})
        Send("Set", std::string("P_") + name + "_HELD", "0");
    EXPECT_NEAR(Get("P_MOD4_InsideTemperature"), room, 0.2);  // a stuck sensor, and the room went on
    EXPECT_EQ(Get("P_MOD2_Opening"), 1.0);                    // what the script has set
    Step();
    EXPECT_NEAR(Get("P_MOD1_IM1_FLOW"), flow, 1e-3);
    for (const char* name : {"P_GTemp_HELD", "P_MOD1_IM1_ARY_HELD", "P_MOD9_Opening_HELD"})
        EXPECT_EQ(Send("Get", name), NoVariable) << name;
}

TEST_F(ControlTest, AnElementsVariablesAreFoundByItsIdentityToo) {
    Send("Create", "P");
    Send("AddModule", "P", Valve());
    standin::ModuleIdentify(*standin::ProjectFind(0), 0, "valve_1 a");
    EXPECT_EQ(Send("Set", "P_valve_1 a_Opening", "0.5"), "OK");
    EXPECT_EQ(Get("P_MOD0_Opening"), 0.5);
    EXPECT_EQ(Get("P_valve_1 a_IM0_TEMP_HELD"), 0.0);
    for (const char* name : {"P_valve_Opening", "P_valve_1 a_Head", "P_valve_1 a"})
        EXPECT_EQ(Send("Get", name), NoVariable) << name;
}

TEST_F(ControlTest, TheTimeVariablesHaveLimits) {
    Send("Create", "P");
    for (const auto& [given, wanted] : RowsOf(R"(GStepSeconds 0->0.010000; GStepSeconds 99->60.000000;
        GStepSeconds 2.5->2.500000; GRate -1->0.000000; GRate inf->0.000000; GRate 60->60.000000;
        GUntil nan->0.000000; GUntil -5->0.000000; GTemp inf->0.000000;)")) {
        const std::size_t blank = given.find(' ');
        const std::string name = "P_" + given.substr(0, blank);
        EXPECT_EQ(Send("Set", name, given.substr(blank + 1)), "OK");
        EXPECT_EQ(Send("Get", name), wanted) << given;
    }
}

class ControlThreadsTest : public ControlTest {
  protected:
    /// Waits until the project has paused itself, a good while if need be.
    static bool Paused(int slot) {
        for (int wait = 0; wait < 30'000; ++wait, std::this_thread::sleep_for(std::chrono::milliseconds(1))) {
            const std::lock_guard guard(standin::EngineLock());
            if (standin::ProjectFind(slot)->paused) return true;
        }
        return false;
    }
};

std::uint64_t Bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

TEST_F(ControlThreadsTest, AnyRateGivesTheSameBitsAndPausesWhereItIsTold) {
    const char* script = "set('MOD2_Opening', 0.5 + 0.4 * math.sin(time()))";
    std::vector<std::unique_ptr<MadePlant>> plants;
    const char* names[] = {"P", "Q", "R"};
    const char* rates[] = {"0", "1000", "20"};
    for (int slot = 0; slot < 3; ++slot) {
        const std::string name = names[slot];
        plants.push_back(std::make_unique<MadePlant>(name, Loop()));
        Send("LuaSent", name, script);
        Send("Set", name + "_GRate", rates[slot]);
        Send("Set", name + "_GUntil", "12.3");
        Send("PjtRun", name);
    }
    standin::SimulationKeepOff(false);
    for (int slot = 0; slot < 3; ++slot) {
        ASSERT_TRUE(Paused(slot));
        const std::string name = names[slot];
        EXPECT_EQ(Send("Get", name + "_GStep"), "123");
        EXPECT_NEAR(Get(name + "_GTime"), 12.3, 1e-12);
        for (int piece = 0; piece < 4; ++piece) {
            const auto& mine = plants[static_cast<std::size_t>(slot)]->Port(piece, 1);
            const auto& first = plants[0]->Port(piece, 1);
            EXPECT_NE(mine.flow, 0.0);
            EXPECT_EQ(Bits(mine.temperature), Bits(first.temperature)) << name << piece;
            EXPECT_EQ(Bits(mine.pressure), Bits(first.pressure)) << name << piece;
            EXPECT_EQ(Bits(mine.flow), Bits(first.flow)) << name << piece;
        }
    }
}

TEST_F(ControlThreadsTest, AStopOrPauseIsTheEndOfWritingAtFullSpeedToo) {
    MadePlant plant("P", Loop());
    Send("LuaSent", "P", "set('MOD2_Opening', 0.5 + 0.4 * math.sin(time()))");
    Send("Set", "P_GRate", "0");
    standin::SimulationKeepOff(false);
    for (int round = 0; round < 20; ++round) {
        Send("PjtRun", "P");
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        Send(round % 2 == 0 ? "PjtStop" : "PjtPause", "P");
        const std::string before =
            Send("VarInfoGet", "P_MOD2") + Send("Get", "P_GTime") + Send("Get", "P_GLag");
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        EXPECT_EQ(Send("VarInfoGet", "P_MOD2") + Send("Get", "P_GTime") + Send("Get", "P_GLag"), before);
        Send("PjtStop", "P");
    }
    EXPECT_GT(Get("P_GStep"), 100.0);
}

}  // namespace
