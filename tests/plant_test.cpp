// The plant of the stand-in, held against answers that are known by hand.

#include <atomic>
#include <cmath>
#include <thread>

#include "engine/vorn_core.h"
#include "standin/plant/circuit.h"
#include "standin/plant/refrigerant.h"
#include "tests/support/plant_test.h"

using standin::PlantStep;

namespace {

using std::string;

TEST_F(PlantTest, OnePipeTakesWhatItsFormulaSays) {
    // Between a tank of 150 kPa and a tower of none: length in m, diameter in mm, elbows.
    const double rows[][3] = {{100, 50, 0}, {20, 15, 7}, {1000, 200, 3}, {30000, 10, 0}};
    for (const auto& row : rows) {
        Drawing drawing;
        const int pipe = drawing.Add(Pipe, {row[0], row[2], row[1]});
        drawing.Chain({drawing.Add(Tank), pipe, drawing.Add(Tower)});
        MadePlant plant("P", drawing);
        ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
        const double diameter = row[1] / 1000.0;
        const double speed = plant.Port(pipe, 0).flow / 998.2 / (std::acos(-1.0) / 4.0 * diameter * diameter);
        const double reynolds = speed * diameter / 1.004e-6;
        ASSERT_TRUE(reynolds < 2000.0 || reynolds > 4000.0);
        const double decades = std::log10(0.25e-3 / diameter / 3.7 + 5.74 / std::pow(reynolds, 0.9));
        const double f = reynolds < 2000.0 ? 64.0 / reynolds : 0.25 / (decades * decades);
        EXPECT_NEAR((f * row[0] / diameter + 0.9 * row[2]) * 998.2 * speed * speed / 2.0, 150e3, 0.1);
        Send("PjtClose", "P");
    }
}

/// A ring of a tank, two pumps side by side between two nodes, a valve and a radiator.
struct Ring {
    Drawing drawing;
    int tank = drawing.Add(Tank, {1.0});
    int from = drawing.Add(NodePiece);
    int to = drawing.Add(NodePiece);
    int strong = drawing.Add(Pump, {20.0, 1.0});
    int weak = drawing.Add(Pump, {5.0, 1.0});
    int valve = drawing.Add(ValvePiece);
    int radiator = drawing.Add(Radiator);
    int standby = drawing.Add(ValvePiece);
    int behind = drawing.Add(Pump, {0.0, 1.0});
    Ring() {
        drawing.Chain({tank, from, strong, to, valve, radiator, tank});
        drawing.Chain({from, weak, to});
        drawing.Chain({from, standby, behind, to});
    }
};

TEST_F(PlantTest, PumpsChecksAndValves) {
    Ring ring;
    MadePlant plant("P", ring.drawing);
    const auto step = [&] { ASSERT_TRUE(PlantStep(plant.Slot(), 0.1)); };
    const auto flow = [&](int piece) { return plant.Port(piece, 0).flow; };
    const auto pressure = [&](int piece, int port) { return plant.Port(piece, port).pressure; };
    const double shut = 4.0 / 3.0 * 998.2 * 9.80665 * 20.0 / 1000.0;
    plant.Item(ring.standby, 0) = 0.0;
    step();
    const double open = flow(ring.valve);
    EXPECT_GT(open, 1.0);
    // The pressures at the pump, put into its curve.
    const double rated = 0.6 * 1000.0 / (998.2 * 9.80665 * 20.0) * 998.2;
    const double part = flow(ring.strong) / rated;
    EXPECT_NEAR(pressure(ring.strong, 1) - pressure(ring.strong, 0), shut * (1.0 - part * part / 4.0), 1e-4);
    EXPECT_EQ(flow(ring.weak), 0.0) << "its check holds";
    EXPECT_NEAR(flow(ring.strong), open, 1e-9);
    // Between a closed valve and a check that holds nothing gives a pressure.
    EXPECT_EQ(pressure(ring.behind, 0), 0.0);
    EXPECT_EQ(flow(ring.behind), 0.0);
    plant.Item(ring.valve, 0) = 0.0;
    step();
    EXPECT_EQ(flow(ring.valve), 0.0);
    EXPECT_NEAR(pressure(ring.valve, 0), 150.0 + shut, 1e-4);
    EXPECT_NEAR(pressure(ring.valve, 1), 150.0, 1e-6);
    plant.Item(ring.valve, 0) = 1.0;
    plant.Item(ring.strong, 1) = -1.0;
    step();
    EXPECT_GT(flow(ring.weak), 0.5);
    EXPECT_EQ(flow(ring.strong), 0.0) << "its check holds where it is off, too";
    plant.Item(ring.strong, 1) = 1.0;
    step();
    EXPECT_NEAR(flow(ring.valve), open, 1e-6);
}

TEST_F(PlantTest, LikeBranchesGetLikeFlowsAndANodeTellsThemAtItsPorts) {
    Drawing drawing;
    const int tank = drawing.Add(Tank);
    const int pump = drawing.Add(Pump, {20.0, 4.0});
    const int supply = drawing.Add(NodePiece);
    const int back = drawing.Add(NodePiece);
    drawing.Chain({tank, pump, supply});
    drawing.Chain({back, tank});
    std::vector<int> branches;
    branches.reserve(8);
    for (int branch = 0; branch < 8; ++branch) {
        branches.push_back(drawing.Join(supply, 0, back, 0, 10.0, 32.0));
    }
    MadePlant plant("P", drawing);
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    for (const int branch : branches) {
        EXPECT_NEAR(plant.Port(branch, 1).flow, plant.Port(pump, 1).flow / 8.0, 1e-9);
    }
    for (int port = NodeInletCount; port < PortsPerElement; ++port) {
        EXPECT_NEAR(plant.Port(supply, port).flow, plant.Port(pump, 1).flow / 8.0, 1e-9);
        EXPECT_NEAR(plant.Port(back, port - NodeInletCount).flow, plant.Port(pump, 1).flow / 8.0, 1e-9);
    }
    EXPECT_NEAR(plant.Item(supply, 2), plant.Port(pump, 1).flow, 1e-9);
}

TEST_F(PlantTest, AVesselTiesWhatIsLinkedToIt) {
    Drawing drawing;
    drawing.Chain({drawing.Add(Pipe), drawing.Add(Tank, {1.0}), drawing.Add(Pipe)});
    drawing.Add(NodePiece);
    MadePlant plant("P", drawing);
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    EXPECT_EQ(ProjectCount(plant, 0), 4) << "elements";
    EXPECT_EQ(ProjectCount(plant, 1), 1) << "nets: a lone node is none";
}

TEST_F(PlantTest, AnExchangerMovesWhatItsEffectivenessSays) {
    for (const double area : {0.0, 1.0, 8.0, 1e6}) {
        Drawing drawing;
        const int exchanger = drawing.Add(Exchanger, {area});
        for (const int side : {0, 2}) {
            const int tank = drawing.Add(Tank, {1e6});
            const int pump = drawing.Add(Pump, {10.0, side == 0 ? 0.5 : 0.2});
            drawing.Chain({tank, pump});
            drawing.Link(pump, 1, exchanger, side);
            drawing.Link(exchanger, side + 1, tank, 0);
        }
        MadePlant plant("P", drawing);
        ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
        Send("Set", "P_MOD1_IM1_TEMP", "80");
        ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
        const double one = 4182.0 * plant.Port(exchanger, 0).flow;
        const double two = 4182.0 * plant.Port(exchanger, 2).flow;
        const double hot = plant.Port(exchanger, 0).temperature;
        const double cold = plant.Port(exchanger, 2).temperature;
        EXPECT_NEAR(hot - cold, 60.0, 0.1);
        const double ratio = two / one;
        const double decay = std::exp(-500.0 * area / two * (1.0 - ratio));
        const double heat = (1.0 - decay) / (1.0 - ratio * decay) * two * (hot - cold);
        EXPECT_NEAR(one * (hot - plant.Port(exchanger, 1).temperature), heat, 1e-3 + 1e-6 * heat);
        EXPECT_NEAR(two * (plant.Port(exchanger, 3).temperature - cold), heat, 1e-3 + 1e-6 * heat);
        Send("PjtClose", "P");
    }
}

TEST_F(PlantTest, RoomsAndStoresFollowTheirExponentials) {
    Drawing drawing;
    const int room = drawing.Add(RoomPiece, {10.0, 30.0});
    const int store = drawing.Add(ColdStore, {-20.0});
    drawing.Add(Radiator, {5.0}, room);
    MadePlant plant("P", drawing);
    for (int step = 0; step < 1000; ++step) ASSERT_TRUE(PlantStep(plant.Slot(), 1.0));
    EXPECT_NEAR(plant.Item(room, 0), 30.0 - 20.0 * std::exp(-1000.0 * 100.0 / 550e3), 0.001);
    EXPECT_NEAR(plant.Item(store, 0), 25.0 - 45.0 * std::exp(-1000.0 * 30.0 / 500e3), 0.001);
}

TEST_F(PlantTest, EmittersGiveTheirPowerAtTheirRatingAndFollowTheDifference) {
    struct Row {
        int type;
        double water, room;  // degrees Celsius
        double share;        // of the power, where so much flows that the water stays as warm as it is
    };
    // The rated mean differences are 49.8, 17.4 and 8.4 K, those of streams that cool along their way.
    const Row rows[] = {{Radiator, 69.83, 20, 1.0},  {Radiator, 44.92, 20, std::pow(0.5, 1.3)},
                        {Radiator, 20, 69.83, -1.0}, {FanCoil, 9.62, 27, -1.0},
                        {FanCoil, 18.31, 27, -0.5},  {FanCoil, 44.38, 27, 1.0},
                        {AirCooler, -8.41, 0, -1.0}};
    for (const auto& row : rows) {
        Ring ring;
        const int room = ring.drawing.Add(RoomPiece, {row.room, row.room});
        ring.drawing.pieces[static_cast<std::size_t>(ring.radiator)] = {row.type, {0.1}, room};
        MadePlant plant("P", ring.drawing);
        plant.Item(ring.tank, 0) = 1e6;
        ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
        Send("Set", "P_MOD0_IM1_TEMP", std::to_string(row.water));
        ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
        const auto& leaving = plant.Port(ring.radiator, 1);
        const double heat =
            WaterHeat * leaving.flow * (plant.Port(ring.radiator, 0).temperature - leaving.temperature);
        EXPECT_NEAR(heat, row.share * 100.0, 2.0) << row.type << ' ' << row.water;
        Send("PjtClose", "P");
    }
}

TEST_F(PlantTest, BrineIsHeavierAndCarriesLess) {
    Ring ring;
    MadePlant plant("P", ring.drawing);
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    const double lift = plant.Port(ring.strong, 1).pressure - plant.Port(ring.strong, 0).pressure;
    plant.Item(ring.valve, 0) = 0.0;
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    const double shut = plant.Port(ring.valve, 0).pressure - 150.0;
    plant.Item(ring.tank, 1) = 30.0;
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    EXPECT_GT(shut, lift);
    EXPECT_NEAR(plant.Port(ring.valve, 0).pressure - 150.0, shut * 1050.0 / 998.2, 1e-3);
}

TEST(RefrigerantTest, SaturationIsThatOfPublishedTables) {
    // Between the rows of the table in use: degrees Celsius, kPa, m3/kg, kJ/kg. Of the same source.
    const double rows[][5] = {
        {-26.07, 101.33, 0.19018, 165.81, 382.78}, {-14, 170.82, 0.11605, 181.44, 390.24},
        {4, 337.66, 0.06039, 205.40, 400.92},      {26, 685.43, 0.03000, 235.97, 412.84},
        {36, 911.85, 0.02238, 250.48, 417.65},     {64, 1846.7, 0.01024, 294.09, 427.61}};
    for (const auto& row : rows) {
        const standin::Saturation found = standin::SaturationAt(row[0]);
        EXPECT_NEAR(found.pressure.value, row[1], 0.002 * row[1]) << row[0];
        EXPECT_NEAR(found.vapourDensity.value * row[2], 1.0, 0.01) << row[0];
        EXPECT_NEAR(found.liquidEnthalpy.value, 1e3 * row[3], 400.0) << row[0];
        EXPECT_NEAR(found.vapourEnthalpy.value, 1e3 * row[4], 400.0) << row[0];
    }
    // What a displacement takes falls with the suction's density.
    const double cold = standin::CapacityOf(4e3, -30.0, 40.0).watts;
    EXPECT_LT(cold, 0.5 * standin::CapacityOf(4e3, -5.0, 40.0).watts);
    EXPECT_GT(cold, 0.2 * standin::CapacityOf(4e3, -5.0, 40.0).watts);
}

TEST_F(PlantTest, WhatIsSetToNothingIsNothingAfterItWasStored) {
    Send("Create", "P");
    Send("AddModule", "P", Valve());
    Send("VarCacheSet", "P_MOD0", R"({"Row":0,"Column":1,"Value":"0"})");
    const string sets = R"([{"Row":0,"Item":"Opening","Sets":[0.0,1.0,1.0]}])";
    EXPECT_EQ(Send("VarCacheGet", "P_MOD0"), sets);
    ProjectDBWrite("P");
    Send("PjtClose", "P");
    Send("Open", "P");
    EXPECT_EQ(Send("VarCacheGet", "P_MOD0"), sets);
}

TEST_F(PlantTest, ACircuitHasHalfOfCarnotsCop) {
    Drawing drawing;
    const int store = drawing.Add(ColdStore, {-10.0});
    const int compressor = drawing.Add(Compressor, {4.0});
    const int condenser = drawing.Add(Condenser, {10.0});
    const int valve = drawing.Add(ExpansionValve);
    const int cooler = drawing.Add(AirCooler, {12.0}, store);
    drawing.Chain(
        {compressor, condenser, drawing.Add(CopperPipe), drawing.Add(Receiver), valve, cooler, compressor});
    MadePlant plant("P", drawing);
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    const double evaporating = ProjectReal(plant, 0);
    const double condensing = plant.Port(condenser, 0).temperature;
    const double cop = ProjectReal(plant, 2);
    EXPECT_NEAR(cop, 0.5 * (evaporating + 273.15) / (condensing - evaporating), 1e-6);
    // 12 kW at 10 K; the condenser is in air of 25 degrees.
    const double taken = 1200.0 * (plant.Item(store, 0) - evaporating);
    const double power = taken / cop;
    EXPECT_NEAR(taken, standin::CapacityOf(4000.0, evaporating, condensing).watts, 1e-3);
    EXPECT_LT(power, 4000.0);
    EXPECT_NEAR(3000.0 * (condensing - 25.0), taken + power, 1e-3);
    EXPECT_NEAR(plant.Port(cooler, 0).flow * standin::EvaporationHeat(evaporating, condensing), taken, 1e-2);
    const auto gauge = [](double celsius) {
        return standin::SaturationAt(celsius).pressure.value - standin::Atmosphere;
    };
    EXPECT_NEAR(plant.Port(compressor, 0).pressure, gauge(evaporating), 1e-9);
    EXPECT_NEAR(plant.Port(compressor, 1).pressure, gauge(condensing), 1e-9);
    EXPECT_NEAR(plant.Item(cooler, 1), plant.Item(store, 0), 1e-9);
    const auto energy = [&] { return ProjectReal(plant, 1) / (power / 1000.0 * 0.1 / 3600.0); };  // in steps
    EXPECT_NEAR(energy(), 1.0, 1e-6);
    PjtStartSet(plant.Slot(), true);
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1) && PlantStep(plant.Slot(), 0.1));
    EXPECT_NEAR(energy(), 2.0, 1e-3) << "since the start";
    plant.Item(valve, 0) = 0.5;  // half of the cooler is wetted
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    EXPECT_LT(ProjectReal(plant, 0), evaporating - 1.0);
    plant.Item(valve, 0) = 0.0;
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    EXPECT_EQ(plant.Port(cooler, 0).flow, 0.0);
    EXPECT_EQ(ProjectReal(plant, 2), 0.0);
    EXPECT_EQ(ProjectCount(plant, 2), 1) << "circuits";
}

class PlantThreadsTest : public PlantTest {};

TEST_F(PlantThreadsTest, StepsKeepWhatClientsWriteAndDropWhatHasChanged) {
    const Drawing drawing = Mesh(300);  // so large that a step is under way at almost any time
    const auto open = [&drawing] {
        const MadePlant made("P", drawing);
        EXPECT_EQ(Send("PjtRun", "P"), "OK");
    };
    open();
    std::atomic<bool> ends = false;
    std::atomic<int> made = 0;
    std::thread stepper([&] {
        // So short that the room stays as it was set.
        for (; !ends; ++made) PlantStep(0, 1e-5, standin::StepCause::Run);
    });
    const auto awaitStepUnderWay = [&made] {
        for (const int before = made; made < before + 2;) std::this_thread::yield();
    };
    for (int round = 0; round < 120; ++round) {
        const string number = std::to_string(20 + round % 7);
        Send("Set", "P_MOD1_Head", number);
        Send("Set", "P_MOD2_InsideTemperature", number);
        awaitStepUnderWay();
        EXPECT_GT(Get("P_GStep"), 0);
        EXPECT_EQ(Get("P_MOD1_Head"), 20 + round % 7);
        EXPECT_NEAR(Get("P_MOD2_InsideTemperature"), 20 + round % 7, 0.05);
        if (round % 10 == 0) Send("AddModule", "P", Valve());
        if (round % 10 == 3 || round % 10 == 6) {
            Send(round % 10 == 3 ? "PjtStop" : "PjtPause", "P");
            const double steps = Get("P_GStep");
            awaitStepUnderWay();
            EXPECT_EQ(Get("P_GStep"), steps);
            Send(round % 10 == 3 ? "PjtRun" : "PjtPause", "P");
        }
        if (round % 10 != 9) continue;
        Send("PjtClear", "P");
        Send("AddModule", "P", Valve());
        awaitStepUnderWay();
        EXPECT_EQ(Get("P_MOD0_IM0_PRE"), 0.0) << "what stood there before was a tank";
        Send("PjtClose", "P");
        open();
    }
    ends = true;
    stepper.join();
}

}  // namespace
