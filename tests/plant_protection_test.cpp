// What a plant reports of itself and stops: trips, alarms, and ports that are no longer linked.

#include "tests/support/plant_test.h"

using standin::Alarm;
using standin::PlantStep;
using standin::Trip;

namespace {

/// A chiller between a tank of chilled water and a tower, each with its pump.
struct Chiller {
    Drawing drawing;
    int tank = drawing.Add(Tank, {1.0});
    int chilledPump = drawing.Add(Pump, {10.0, 0.5});
    int evaporator = drawing.Add(Evaporator, {10.0});
    int tower = drawing.Add(Tower, {40.0});
    int towerPump = drawing.Add(Pump, {10.0, 0.5});
    int condenser = drawing.Add(Condenser, {10.0});
    int compressor = drawing.Add(Compressor, {5.0});
    int expansion = drawing.Add(ExpansionValve);
    Chiller() {
        drawing.Chain({compressor, condenser, drawing.Add(CopperPipe), expansion, evaporator, compressor});
        drawing.Chain({tank, chilledPump});
        drawing.Link(chilledPump, 1, evaporator, 2);
        drawing.Link(evaporator, 3, tank, 0);
        drawing.Chain({tower, towerPump});
        drawing.Link(towerPump, 1, condenser, 2);
        drawing.Link(condenser, 3, tower, 0);
    }
};

TEST_F(PlantTest, ACompressorTripsStaysOffAndComesBackWithItsReset) {
    const Chiller chiller;
    struct Row {
        int piece;
        std::size_t item;
        double broken;
        Trip trip;
    };
    const Row rows[] = {{chiller.towerPump, 0, 0.0, Trip::CondenserFlow},
                        {chiller.chilledPump, 1, 0.0, Trip::EvaporatorFlow},
                        {chiller.expansion, 0, 0.0, Trip::NothingCirculates},
                        {chiller.condenser, 0, 0.5, Trip::HighCondensing},
                        {chiller.evaporator, 0, 0.01, Trip::LowEvaporating}};
    for (const Row& row : rows) {
        MadePlant plant("P", chiller.drawing);
        const auto step = [&] { ASSERT_TRUE(PlantStep(plant.Slot(), 1.0)); };
        const auto trip = [&] { return static_cast<Trip>(plant.Item(chiller.compressor, 1)); };
        step();
        EXPECT_EQ(trip(), Trip::None);
        const double cop = ProjectReal(plant, 2);
        EXPECT_GT(cop, 2.0);
        EXPECT_EQ(Get("P_GAlarms"), 0);
        const double whole = plant.Item(row.piece, row.item);
        plant.Item(row.piece, row.item) = row.broken;
        step();
        EXPECT_EQ(trip(), row.trip);
        EXPECT_EQ(plant.Item(chiller.compressor, 2), static_cast<double>(Alarm::Tripped));
        EXPECT_EQ(Get("P_GAlarms"), 1);
        plant.Item(row.piece, row.item) = whole;
        step();
        EXPECT_EQ(trip(), row.trip) << "it stays off";
        EXPECT_EQ(ProjectReal(plant, 2), 0.0);
        EXPECT_EQ(Send("RunValueSet", "P_MOD" + std::to_string(plant.Number(chiller.compressor)),
                       R"({"Row":1,"Value":"0"})"),
                  "OK");
        step();
        EXPECT_EQ(trip(), Trip::None);
        EXPECT_NEAR(ProjectReal(plant, 2), cop, 0.2);
        EXPECT_EQ(Get("P_GAlarms"), 0);
        Send("PjtClose", "P");
    }
}

TEST_F(PlantTest, TheAirOutsideDecidesWhatATowerReaches) {
    const Chiller chiller;
    MadePlant plant("P", chiller.drawing);
    double mild = 0.0;
    for (const double outside : {20.0, 35.0}) {
        Send("Set", "P_GOutside", std::to_string(outside));
        for (int count = 0; count < 50; ++count) ASSERT_TRUE(PlantStep(plant.Slot(), 10.0));
        const double approach = plant.Port(chiller.tower, 1).temperature - outside;
        EXPECT_GT(approach, 0.5);
        EXPECT_LT(approach, 8.0);
        const double condensing = plant.Port(chiller.compressor, 1).temperature;
        EXPECT_GT(condensing, mild + 10.0);
        mild = condensing;
    }
}

TEST_F(PlantTest, AlarmsReportWhatARealPlantWould) {
    Drawing drawing;
    const int tank = drawing.Add(Tank, {5.0});
    const int thin = drawing.Add(Pipe, {50.0, 0.0, 25.0});
    const int pump = drawing.Add(Pump, {20.0, 1.0});
    const int valve = drawing.Add(ValvePiece);
    const int room = drawing.Add(RoomPiece, {20.0, 20.0});
    drawing.Chain({tank, thin, pump, valve, tank});
    struct Row {
        int piece;
        std::size_t item;
        double value;
        int reports;
        Alarm alarm;
    };
    const Row rows[] = {{thin, 0, 1.0, pump, Alarm::None},      {valve, 0, 0.0, pump, Alarm::NoFlow},
                        {pump, 0, 90.0, pump, Alarm::Suction},  {room, 7, 19.0, room, Alarm::TooWarm},
                        {room, 6, -30.0, room, Alarm::TooWarm}, {room, 7, -10.0, room, Alarm::None}};
    for (const Row& row : rows) {
        MadePlant plant("P", drawing);
        plant.Item(row.piece, row.item) = row.value;
        ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
        const double alarm = Get("P_MOD" + std::to_string(plant.Number(row.reports)) + "_Alarm");
        EXPECT_EQ(static_cast<Alarm>(alarm), row.alarm) << row.piece << ' ' << row.value;
        Send("PjtClose", "P");
    }
    MadePlant plant("P", drawing);
    plant.Item(room, 6) = 21.0;
    plant.Item(room, 7) = 24.0;
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    EXPECT_EQ(plant.Item(room, 8), static_cast<double>(Alarm::TooCold));
    Send("Set", "P_MOD0_IM1_TEMP", "0.2");
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    EXPECT_EQ(plant.Item(tank, 2), static_cast<double>(Alarm::Freezing));
    plant.Item(tank, 1) = 30.0;
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    EXPECT_EQ(plant.Item(tank, 2), 0.0) << "brine bears it";
}

TEST_F(PlantTest, APortThatIsFreedBecomesZero) {
    Drawing drawing;
    const int tank = drawing.Add(Tank, {1.0});
    const int pump = drawing.Add(Pump, {10.0, 0.5});
    const int node = drawing.Add(NodePiece);
    drawing.Chain({tank, pump, node, tank});
    MadePlant plant("P", drawing);
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    EXPECT_GT(plant.Port(pump, 1).flow, 0.0);
    EXPECT_GT(plant.Port(node, 0).flow, 0.0);
    standin::LinkRemove(plant.Records(), 1);
    ASSERT_TRUE(PlantStep(plant.Slot(), 0.1));
    for (const auto& port : {plant.Port(pump, 1), plant.Port(node, 0)}) {
        EXPECT_EQ(std::abs(port.pressure) + std::abs(port.temperature) + std::abs(port.flow), 0.0);
    }
    EXPECT_NEAR(plant.Port(pump, 0).temperature, 20.0, 0.1) << "the other port is still linked";
}

}  // namespace
