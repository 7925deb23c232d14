// A plant drawn from bytes and stepped while its items change: what it reports is finite, and nodes keep
// mass.

#include <cmath>
#include <limits>
#include <map>
#include <vector>

#include "standin/plant_step.h"
#include "tests/fuzz/front.h"
#include "tests/support/made_plant.h"

namespace {

constexpr int PiecesAtMost = 24;
constexpr int StepsAtMost = 4;
constexpr int ModuleTypes = 23;
constexpr std::size_t CountsRow = 5;  ///< of the project variables
constexpr std::size_t UnsolvedNets = 3;
constexpr std::size_t StepsUnsolved = 4;

/// Bytes of the input in turn; zeros behind its end.
class Choices {
  public:
    Choices(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), left_(size) {}
    bool More() const { return left_ > 0; }
    int Next(int count) {
        if (left_ == 0) return 0;
        --left_;
        return *bytes_++ % count;
    }
    /// What a client may write into an item: a usual value, or one that no plant has.
    double Value() {
        constexpr double Infinite = std::numeric_limits<double>::infinity();
        constexpr double Odd[] = {
            0.0,    -0.0,     1.0,    0.5,    -1.0,      1e-9,
            37.0,   -273.15,  1e5,    1e6,    1e12,      1e300,
            -1e300, Infinite, 5e-324, 1e-300, -Infinite, std::numeric_limits<double>::quiet_NaN()};
        const int choice = Next(256);
        return choice < 192 ? choice * choice / 100.0
                            : Odd[static_cast<std::size_t>(choice) % std::size(Odd)];
    }

  private:
    const std::uint8_t* bytes_;
    std::size_t left_;
};

/// Of twice as many choices as there are types the others are nodes, pipes and pumps.
int TypeOf(int choice) {
    constexpr int Nodes = 10;
    if (choice < ModuleTypes) return choice;
    if (choice < ModuleTypes + Nodes) return NodePiece;
    return choice % 2 == 0 ? Pipe : Pump;
}

/// Pieces with items, and links from outlets to inlets, of which each port of a module has one at most.
Drawing Drawn(Choices& choices) {
    Drawing drawing;
    const int count = 2 + choices.Next(PiecesAtMost - 1);
    for (int piece = 0; piece < count; ++piece) {
        const int type = TypeOf(choices.Next(2 * ModuleTypes));
        const auto most =
            type == NodePiece ? 0 : static_cast<int>(standin::ModuleTypeFind(type)->items.size());
        std::vector<double> items;
        for (int item = choices.Next(most + 1); item > 0; --item) items.push_back(choices.Value());
        drawing.Add(type, items, choices.Next(4) == 0 ? choices.Next(count) : -1);
    }
    const auto isNode = [&](int piece) {
        return drawing.pieces[static_cast<std::size_t>(piece)].type == NodePiece;
    };
    std::map<std::pair<int, int>, bool> taken;
    for (int row = choices.Next(2 * PiecesAtMost); row > 0; --row) {
        const int from = choices.Next(count);
        const int to = choices.Next(count);
        const int fromPort = choices.Next(2) * 2 + 1;
        const int toPort = choices.Next(2) * 2;
        if (isNode(from) && isNode(to)) continue;
        bool& fromTaken = taken[{from, fromPort}];
        if (fromTaken && !isNode(from)) continue;
        bool& toTaken = taken[{to, toPort}];
        if (toTaken && !isNode(to)) continue;
        fromTaken = toTaken = true;
        drawing.Link(from, fromPort, to, toPort);
    }
    return drawing;
}

void CheckFinite(MadePlant& plant, const Drawing& drawing) {
    for (int piece = 0; piece < static_cast<int>(drawing.pieces.size()); ++piece) {
        for (int port = 0; port < 4; ++port) {
            const standin::PortValues& values = plant.Port(piece, port);
            const bool finite = std::isfinite(values.pressure) && std::isfinite(values.temperature) &&
                                std::isfinite(values.flow);
            Require(finite, "the values of ports are finite", std::to_string(piece));
        }
    }
    for (const auto& variable : plant.Records().variables) {
        for (const double value : variable.reals)
            Require(std::isfinite(value), "a project's values are finite", variable.name);
    }
}

/// What comes to a node and leaves it, by the ports of the modules that its links lead to.
struct Sums {
    double surplus = 0.0, comes = 0.0;
};

/// In a step that was solved nothing is lost at a node.
void CheckNodes(MadePlant& plant, const Drawing& drawing) {
    std::map<int, Sums> nodes;
    double largest = 0.0;
    for (const Drawing::Row& row : drawing.rows) {
        const bool fromNode = drawing.pieces[static_cast<std::size_t>(row.from)].type == NodePiece;
        const bool toNode = drawing.pieces[static_cast<std::size_t>(row.to)].type == NodePiece;
        const standin::PortValues& there =
            fromNode ? plant.Port(row.to, row.toPort) : plant.Port(row.from, row.fromPort);
        largest = std::max(largest, std::abs(there.flow));
        if (fromNode == toNode) continue;
        Sums& node = nodes[fromNode ? row.from : row.to];
        const double in = fromNode ? 0.0 - there.flow : there.flow;
        node.surplus += in;
        node.comes += std::max(in, 0.0);
    }
    for (const auto& [piece, sums] : nodes) {
        const double most = 1e-5 * largest;
        const double flow = plant.Item(piece, 2);
        Require(std::abs(sums.surplus) <= most, "a node keeps mass", std::to_string(piece));
        Require(std::abs(sums.comes - flow) <= most, "a node reports what comes in", std::to_string(piece));
    }
}

/// New values in some items and vessels.
void Change(MadePlant& plant, const Drawing& drawing, Choices& choices) {
    for (int changes = choices.Next(8); changes > 0; --changes) {
        const int piece = choices.Next(static_cast<int>(drawing.pieces.size()));
        standin::ElementValues& values = plant.ElementOf(piece).layers[standin::RunLayer];
        const int row = choices.Next(8);
        const double value = choices.Value();
        if (row == 7 && values.ports.size() > 1) {
            // What a client writes to a port that no step writes stays as it is.
            values.ports[1].temperature = std::isfinite(value) ? value : 0.0;
        } else if (row < static_cast<int>(values.items.size())) {
            values.items[static_cast<std::size_t>(row)] = value;
        }
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    BeginFresh();
    Choices choices(bytes, size);
    const Drawing drawing = Drawn(choices);
    MadePlant plant("A", drawing);
    const auto& counts = plant.Records().variables[CountsRow].integers;
    int unsolvedBefore = 0;
    for (int step = 0; step == 0 || (step < StepsAtMost && choices.More()); ++step) {
        Change(plant, drawing, choices);
        constexpr double Seconds[] = {0.1, 10.0, 600.0, 1e6};
        Require(standin::PlantStep(plant.Slot(), Seconds[choices.Next(4)]), "a step is made", "");
        CheckFinite(plant, drawing);
        const int unsolved = counts[StepsUnsolved];
        if (counts[UnsolvedNets] == 0 && unsolved == unsolvedBefore) CheckNodes(plant, drawing);
        unsolvedBefore = unsolved;
    }
    return 0;
}
