// What any plant keeps, whatever it is made of and whatever clients write into it.

#include <cmath>
#include <limits>
#include <map>
#include <random>

#include "tests/support/plant_test.h"

using standin::PlantStep;

namespace {

/// Pieces of a random plant that the tests look at.
struct Drawn {
    Drawing drawing;
    std::vector<int> nodes, rooms, tanks, towers, pumps, valves, compressors, coils, crossings;
};

/// Chilled water in rings of its own with pumps, valves and coils in rooms, cooled by circuits and through
/// plate exchangers by condenser water, which goes over towers.
Drawn RandomPlant(unsigned seed) {
    Drawn made;
    Drawing& drawing = made.drawing;
    std::mt19937 random(seed);
    const auto one = [&](double low, double high) {
        return std::uniform_real_distribution(low, high)(random);
    };
    const auto any = [&](int count) { return std::uniform_int_distribution(0, count - 1)(random); };
    const auto add = [&](std::vector<int>& list, int type, const std::vector<double>& items = {}) {
        list.push_back(drawing.Add(type, items));
        return list.back();
    };
    const auto valve = [&] {
        const double openings[] = {0.0, 1e-4, 0.01, one(0.1, 1.0)};
        return add(made.valves, ValvePiece, {openings[std::min(any(6), 3)]});
    };
    for (int count = 1 + any(3); count > 0; --count) add(made.rooms, RoomPiece, {one(10, 35), one(-10, 35)});

    // Two waters, each a ring of nodes with chords; a pump or two lead out of its vessel into the ring.
    std::vector<int> rings[2];
    for (auto& ring : rings) {
        const bool chilled = &ring == rings;
        const int vessel = chilled ? add(made.tanks, Tank, {any(3) == 0 ? 0.0 : one(0.1, 3.0)})
                                   : add(made.towers, Tower, {one(1, 200)});
        for (int count = 3 + any(6); count > 0; --count) ring.push_back(add(made.nodes, NodePiece));
        const auto size = static_cast<int>(ring.size());
        const auto node = [&](int index) { return ring[static_cast<std::size_t>(index % size)]; };
        const int suction = add(made.nodes, NodePiece);
        const int mouths[] = {add(made.nodes, NodePiece), add(made.nodes, NodePiece)};
        drawing.Link(vessel, 1, mouths[0], 0);
        drawing.Link(mouths[1], 0, vessel, 0);
        drawing.Join(mouths[0], 0, suction, 0, one(1, 5), 80);
        for (int count = 1 + any(2); count > 0; --count) {
            std::vector<int> chain{suction};
            for (int pumps = 1 + any(3); pumps > 0; --pumps)
                chain.push_back(add(made.pumps, Pump, {any(6) == 0 ? 0.0 : one(1, 30), one(0.2, 20)}));
            chain.push_back(node(0));
            drawing.Chain(chain);
        }
        drawing.Join(node(size / 2), 0, mouths[1], 0, one(1, 5), 80);
        for (int index = 0; index < size; ++index)
            drawing.Join(node(index), 0, node(index + 1), 0, one(1, 30), one(20, 60));
        for (int count = chilled ? 1 + any(4) : 0; count > 0; --count) {
            const int room = made.rooms[static_cast<std::size_t>(any(static_cast<int>(made.rooms.size())))];
            const int coil = add(made.coils, any(2) == 0 ? FanCoil : Radiator, {one(0, 10)});
            drawing.pieces.back().room = room;
            drawing.Chain({node(any(size)), valve(), coil, node(any(size))});
        }
    }
    const auto across = [&](int piece, int inlet, const std::vector<int>& ring) {
        drawing.Link(ring[0], 1, piece, inlet);
        drawing.Link(piece, inlet + 1, ring[ring.size() / 2], 0);
    };
    if (any(2) == 0) {
        const int exchanger = add(made.crossings, Exchanger, {one(0, 20)});
        across(exchanger, 0, rings[0]);
        across(exchanger, 2, rings[1]);
    }
    for (int count = any(3); count > 0; --count) {
        const int evaporator = add(made.crossings, Evaporator, {one(0, 30)});
        const int condenser = add(made.crossings, Condenser, {one(0, 30)});
        const int compressor = add(made.compressors, Compressor, {one(0, 20)});
        const int expansion = drawing.Add(ExpansionValve, {one(0.1, 1.0)});
        drawing.Chain({compressor, condenser, drawing.Add(CopperPipe), expansion});
        // Either aisle of an evaporator can be the one of refrigerant.
        const int inlet = any(2) * 2;
        drawing.Link(expansion, 1, evaporator, inlet);
        drawing.Link(evaporator, inlet + 1, compressor, 0);
        across(evaporator, 2 - inlet, rings[0]);
        across(condenser, 2, rings[1]);
    }
    return made;
}

/// The sums of a plant's heat over one step, in J: what is stored, what comes in, and the size of both.
struct HeatSums {
    double stored = 0.0, comes = 0.0, size = 0.0;
    void Store(double joules) { stored += joules, size += std::abs(joules); }
    void Come(double joules) { comes += joules, size += std::abs(joules); }
};

/// J that the water in all pipes has, half of it at each end of a pipe, which are nodes.
double PipeHeat(const Drawn& drawn, MadePlant& plant, const std::vector<double>& nodes) {
    double joules = 0.0;
    for (const auto& row : drawn.drawing.rows) {
        for (const auto& [pipe, node] : {std::pair(row.from, row.to), std::pair(row.to, row.from)}) {
            if (drawn.drawing.pieces[static_cast<std::size_t>(pipe)].type != Pipe) continue;
            const double diameter = plant.Item(pipe, 2) / 1000.0;
            const double volume = std::acos(-1.0) / 4.0 * diameter * diameter * plant.Item(pipe, 0);
            joules += 0.5 * volume * 998.2 * WaterHeat * nodes[static_cast<std::size_t>(node)];
        }
    }
    return joules;
}

std::vector<double> NodeTemperatures(const Drawn& drawn, MadePlant& plant) {
    std::vector<double> temperatures(drawn.drawing.pieces.size());
    for (const int node : drawn.nodes) {
        const bool first = plant.Records().steps == 0;
        temperatures[static_cast<std::size_t>(node)] = first ? 20.0 : plant.Item(node, 1);
    }
    return temperatures;
}

/// W that a stream of water takes up in an aisle that begins at that port.
double Warms(MadePlant& plant, int piece, int inlet) {
    const auto& from = plant.Port(piece, inlet);
    return WaterHeat * from.flow * (plant.Port(piece, inlet + 1).temperature - from.temperature);
}

/// Steps a plant and compares its energy with what its values say.
void ExpectEnergyKept(const Drawn& drawn, MadePlant& plant, double seconds) {
    HeatSums sums;
    std::vector<double> before;
    for (const int room : drawn.rooms) before.push_back(plant.Item(room, 0));
    const bool first = plant.Records().steps == 0;
    const double tankBefore = first ? 20.0 : plant.Port(drawn.tanks[0], 1).temperature;
    const int unsolved = plant.Records().stepsUnsolved;
    const double drawnBefore = ProjectReal(plant, 1);
    const double pipesBefore = PipeHeat(drawn, plant, NodeTemperatures(drawn, plant));
    ASSERT_TRUE(PlantStep(plant.Slot(), seconds));
    double rooms = 0;
    for (std::size_t room = 0; room < drawn.rooms.size(); ++room) {
        double devices = 0;
        for (const auto& piece : drawn.drawing.pieces) devices += piece.room == drawn.rooms[room] ? 1 : 0;
        const double now = plant.Item(drawn.rooms[room], 0);
        sums.Store((500e3 + 50e3 * devices) * (now - before[room]));
        sums.Come(100.0 * (plant.Item(drawn.rooms[room], 1) - now) * seconds);
        rooms += devices;
    }
    const double tankNow = plant.Port(drawn.tanks[0], 1).temperature;
    sums.Store(998.2 * WaterHeat * plant.Item(drawn.tanks[0], 0) * (tankNow - tankBefore));
    sums.Store(PipeHeat(drawn, plant, NodeTemperatures(drawn, plant)) - pipesBefore);
    for (const int port : {0, 1}) {
        const auto& end = plant.Port(drawn.towers[0], port);
        sums.Come((port == 0 ? -1 : 1) * WaterHeat * end.flow * end.temperature * seconds);
    }
    sums.Come((ProjectReal(plant, 1) - drawnBefore) * 3.6e6);  // by pumps and compressors
    for (const int pump : drawn.pumps) {
        // A pump that moves nothing warms its surroundings.
        const double power = plant.Item(pump, 0) > 0.0 ? plant.Item(pump, 1) * 1000.0 : 0.0;
        const double warms = Warms(plant, pump, 0);
        const bool whole =
            plant.Port(pump, 1).temperature < 100.0 && power < 80.0 * WaterHeat * plant.Port(pump, 0).flow;
        EXPECT_NEAR(whole ? warms : std::clamp(warms, 0.0, power), whole ? power : warms,
                    1e-6 * power + 1e-3);
        sums.Come((warms - power) * seconds);
    }
    if (plant.Records().stepsUnsolved > unsolved) return;
    EXPECT_NEAR(sums.stored, sums.comes, 1e-6 * sums.size);
}

/// No stream leaves colder or warmer than what it meets: the other stream's inlet, the circuit, or the room.
void ExpectNothingCrossed(const Drawn& drawn, MadePlant& plant) {
    constexpr double Slack = 1e-6;
    const auto within = [&](int piece, int inlet, double other) {
        if (plant.Port(piece, inlet).flow < 1e-6) return;
        const double comes = plant.Port(piece, inlet).temperature;
        const double leaves = plant.Port(piece, inlet + 1).temperature;
        EXPECT_GE(leaves, std::min(comes, other) - Slack) << piece << '.' << inlet;
        EXPECT_LE(leaves, std::max(comes, other) + Slack) << piece << '.' << inlet;
    };
    for (const int piece : drawn.crossings) {
        for (const int inlet : {0, 2}) within(piece, inlet, plant.Port(piece, 2 - inlet).temperature);
    }
    for (const int coil : drawn.coils) {
        const int room = drawn.drawing.pieces[static_cast<std::size_t>(coil)].room;
        within(coil, 0, plant.Item(room, 0));
    }
}

void ExpectMassKept(const Drawn& drawn, MadePlant& plant) {
    double largest = 0.0;
    std::map<int, double> surplus, comes;
    for (const auto& row : drawn.drawing.rows) {
        const bool from = drawn.drawing.pieces[static_cast<std::size_t>(row.from)].type == NodePiece;
        const bool to = drawn.drawing.pieces[static_cast<std::size_t>(row.to)].type == NodePiece;
        if (from == to) continue;
        const double flow =
            from ? plant.Port(row.to, row.toPort).flow : plant.Port(row.from, row.fromPort).flow;
        const double in = from ? -flow : flow;
        surplus[from ? row.from : row.to] += in;
        comes[from ? row.from : row.to] += std::max(in, 0.0);
        largest = std::max(largest, std::abs(flow));
    }
    for (const auto& [node, kilograms] : surplus) {
        EXPECT_LE(std::abs(kilograms), 1e-6 * largest) << node;
        EXPECT_NEAR(plant.Item(node, 2), comes[node], 1e-6 * largest) << node;
    }
}

TEST_F(PlantTest, MassAndEnergyAreKeptInAnyPlantAndAnyOrderOfRows) {
    int steps = 0;
    int unsolved = 0;
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        const Drawn drawn = RandomPlant(seed);
        MadePlant plant("A", drawn.drawing);
        MadePlant other("B", drawn.drawing, seed);
        std::mt19937 random(seed);
        const auto any = [&](int count) { return std::uniform_int_distribution(0, count - 1)(random); };
        for (const double seconds : {0.1, 10.0, 600.0, 0.1, 0.1, 0.1, 0.1, 0.1}) {
            for (const int pump : drawn.pumps)
                plant.Item(pump, 0) = other.Item(pump, 0) = any(3) * any(3) * 5.0;
            for (const int valve : drawn.valves)
                plant.Item(valve, 0) = other.Item(valve, 0) = std::pow(0.01, any(4)) - 1e-6;
            for (const int compressor : drawn.compressors)
                plant.Item(compressor, 1) = other.Item(compressor, 1) = 0.0;
            ExpectEnergyKept(drawn, plant, seconds);
            ExpectNothingCrossed(drawn, plant);
            ExpectMassKept(drawn, plant);
            EXPECT_EQ(ProjectCount(plant, 3), 0) << "nets without a solution";
            ASSERT_TRUE(PlantStep(other.Slot(), seconds));
            for (int piece = 0; piece < static_cast<int>(drawn.drawing.pieces.size()); ++piece) {
                for (int port = 0; port < 4; ++port) {
                    const auto& one = plant.Port(piece, port);
                    const auto& same = other.Port(piece, port);
                    if (drawn.drawing.pieces[static_cast<std::size_t>(piece)].type == NodePiece) continue;
                    ASSERT_NEAR(one.flow, same.flow, 1e-6) << piece;
                    // Where pumps shut a part off its pressure is told by the numbers in it.
                    ASSERT_NEAR(one.flow == 0.0 ? 0.0 : one.pressure - same.pressure, 0.0, 1e-5) << piece;
                    if (std::abs(one.flow) < 1e-4) continue;  // next to nothing can have any temperature
                    ASSERT_NEAR(one.temperature, same.temperature, 1e-4) << piece << '.' << port;
                }
            }
        }
        steps += plant.Records().steps;
        unsolved += plant.Records().stepsUnsolved;
        Send("Put", "", "Close");
    }
    // A step or two on the way from the start, where water in no tank finds its temperature.
    EXPECT_LE(unsolved, steps / 50);
}

TEST_F(PlantTest, AnyStepLengthLeadsToTheSameSteadyState) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
        SCOPED_TRACE(seed);
        const Drawn drawn = RandomPlant(seed);
        MadePlant plant("A", drawn.drawing);
        for (int step = 0; step < 100; ++step) ASSERT_TRUE(PlantStep(plant.Slot(), 1e6));
        std::vector<double> steady;
        for (const int room : drawn.rooms) steady.push_back(plant.Item(room, 0));
        for (const double seconds : {10.0, 0.1}) {
            for (int step = 0; step < 50; ++step) ASSERT_TRUE(PlantStep(plant.Slot(), seconds));
            for (std::size_t room = 0; room < steady.size(); ++room) {
                EXPECT_NEAR(plant.Item(drawn.rooms[room], 0), steady[room], 1e-6);
            }
        }
        Send("Put", "", "Close");
    }
}

/// Whatever a client may write into an item.
double Odd(std::mt19937& random) {
    constexpr double Infinite = std::numeric_limits<double>::infinity();
    const double values[] = {std::nan(""), Infinite, -Infinite, 1e300, -1e300, 1e-300, 5e-324, 0.0,     -0.0,
                             -1.0,         1e-9,     0.5,       1.0,   37.0,   1e6,    1e12,   -273.15, 1e5};
    return values[std::uniform_int_distribution<std::size_t>(0, std::size(values) - 1)(random)];
}

void ExpectFinite(MadePlant& plant, const Drawing& drawing) {
    for (int piece = static_cast<int>(drawing.pieces.size()) - 1; piece >= 0; --piece) {
        for (int port = 0; port < PortsPerElement; ++port) {
            const auto& values = plant.Port(piece, port);
            ASSERT_TRUE(std::isfinite(values.pressure + values.temperature + values.flow)) << piece;
        }
        const int type = drawing.pieces[static_cast<std::size_t>(piece)].type;
        const std::size_t outputs = type == NodePiece ? 3 : type == RoomPiece || type == ColdStore ? 1 : 0;
        for (std::size_t row = 0; row < outputs; ++row)
            ASSERT_TRUE(std::isfinite(plant.Item(piece, row))) << piece;
    }
    for (const auto& variable : plant.Records().variables) {
        for (const double value : variable.reals) ASSERT_TRUE(std::isfinite(value)) << variable.name;
    }
}

TEST_F(PlantTest, NothingBecomesNaNWhateverClientsWriteAndLink) {
    std::mt19937 random(7);
    const auto any = [&](std::size_t count) {
        return static_cast<int>(std::uniform_int_distribution<std::size_t>(0, count - 1)(random));
    };
    int unsolved = 0;
    for (unsigned seed = 1; seed <= 120; ++seed) {
        SCOPED_TRACE(seed);
        Drawn drawn = RandomPlant(seed);
        // Links that no drawing should have: any port to any other, ducts and copper among water.
        for (int count = seed % 2 == 0 ? any(12) : 0; count > 0; --count) {
            drawn.drawing.Add(any(23));
            const std::size_t pieces = drawn.drawing.pieces.size();
            drawn.drawing.Link(any(pieces), any(5), any(pieces), any(5));
            drawn.drawing.Link(static_cast<int>(pieces) - 1, any(3), any(pieces), any(5));
        }
        MadePlant plant("A", drawn.drawing, seed);
        for (int step = 0; step < 12; ++step) {
            for (std::size_t piece = 0; piece < drawn.drawing.pieces.size(); ++piece) {
                auto& values = plant.ElementOf(static_cast<int>(piece)).layers[standin::RunLayer];
                for (double& item : values.items) item = any(4) == 0 ? Odd(random) : item;
                const int type = drawn.drawing.pieces[piece].type;
                const bool vessel = type == Tank || type == Tower || type == Receiver;
                if (vessel && values.ports.size() > 1 && any(4) == 0)
                    values.ports[1].temperature = Odd(random);
            }
            ASSERT_TRUE(PlantStep(plant.Slot(), any(2) == 0 ? 0.1 : 10.0));
            ExpectFinite(plant, drawn.drawing);
        }
        unsolved += plant.Records().stepsUnsolved;
        Send("Put", "", "Close");
    }
    EXPECT_LT(unsolved, 1440 / 5) << "steps without a solution";
}

}  // namespace
