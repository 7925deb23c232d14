// Plants that tests and benchmarks make straight in the stand-in's records: drawn first, then placed in any
// order.

#pragma once

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "engine/vorn_core.h"
#include "standin/project.h"
#include "standin/values.h"

/// Module types by number, and nodes.
enum MadeType {
    NodePiece = -1,
    Pipe = 0,
    Duct = 2,
    CopperPipe = 3,
    RoomPiece = 7,
    FanCoil = 8,
    AirCooler = 9,
    Radiator = 10,
    Pump = 11,
    ValvePiece = 12,
    Exchanger = 13,
    Tank = 14,
    Tower = 15,
    Compressor = 16,
    Condenser = 17,
    Evaporator = 18,
    ExpansionValve = 19,
    Receiver = 20,
    ColdStore = 22
};

/// A plant on paper. Pieces are told by their index.
struct Drawing {
    struct Piece {
        int type;
        std::vector<double> items;
        int room;
    };
    struct Row {
        int from, fromPort, to, toPort;
    };
    std::vector<Piece> pieces;
    std::vector<Row> rows;

    /// A piece whose first items are `items`, the others as of a new module; `room` is a piece.
    int Add(int type, const std::vector<double>& items = {}, int room = -1) {
        pieces.push_back({type, items, room});
        return static_cast<int>(pieces.size()) - 1;
    }
    /// Links an outlet to an inlet. Of a node the ports do not matter.
    void Link(int from, int fromPort, int to, int toPort) { rows.push_back({from, fromPort, to, toPort}); }
    /// Adds a pipe between two such ends.
    int Join(int from, int fromPort, int to, int toPort, double length, double millimetres) {
        const int pipe = Add(Pipe, {length, 0, millimetres});
        Link(from, fromPort, pipe, 0);
        Link(pipe, 1, to, toPort);
        return pipe;
    }
    /// Links the first aisles of pieces in a chain; an end may be a node, or a vessel, out of port 1 into
    /// port 0.
    void Chain(const std::vector<int>& chain) {
        for (std::size_t next = 1; next < chain.size(); ++next) Link(chain[next - 1], 1, chain[next], 0);
    }
};

/// A drawing placed in an open project of its own.
class MadePlant {
  public:
    /// Places pieces and rows in their order, or in one that a seed above 0 shuffles. The run values begin as
    /// cache set 0.
    MadePlant(const std::string& name, const Drawing& drawing, unsigned seed = 0) : name_(name) {
        ProjectJsonAdd(name.c_str());
        slot_ = ProjectNameToID(name.c_str());
        std::vector<std::size_t> pieces(drawing.pieces.size());
        std::iota(pieces.begin(), pieces.end(), 0U);
        std::vector<Drawing::Row> rows = drawing.rows;
        if (seed > 0) {
            std::mt19937 random(seed);
            std::shuffle(pieces.begin(), pieces.end(), random);
            std::shuffle(rows.begin(), rows.end(), random);
        }
        numbers_.resize(pieces.size());
        kinds_.resize(pieces.size(), ModuleKind);
        for (const std::size_t piece : pieces) Place(drawing.pieces[piece], piece);
        for (std::size_t piece = 0; piece < pieces.size(); ++piece) {
            const int room = drawing.pieces[piece].room;
            if (room >= 0) Pipe_RoomLinkAnalysis(slot_, numbers_[piece], Number(room));
        }
        for (const Drawing::Row& row : rows) Tie(row);
    }

    int Slot() const { return slot_; }
    standin::Project& Records() const { return *standin::ProjectFind(slot_); }
    int Number(int piece) const { return numbers_[static_cast<std::size_t>(piece)]; }
    /// A run value of a module or node.
    double& Item(int piece, std::size_t row) {
        return ElementOf(piece).layers[standin::RunLayer].items.at(row);
    }
    const standin::PortValues& Port(int piece, int port) {
        return standin::PortRead(ElementOf(piece), standin::RunLayer, port);
    }
    standin::Element& ElementOf(int piece) {
        return *standin::ElementFind(Records(), kinds_[static_cast<std::size_t>(piece)], Number(piece));
    }

  private:
    void Place(const Drawing::Piece& drawn, std::size_t piece) {
        if (drawn.type == NodePiece) {
            kinds_[piece] = NodeKind;
            numbers_[piece] = ProjectNodeNbCheck(slot_);
            ProjectAddNode(name_.c_str(), numbers_[piece], 0, 0, 0, 0);
            return;
        }
        numbers_[piece] = ProjectModuleNbCheck(slot_);
        ProjectAddModule(name_.c_str(), numbers_[piece], drawn.type, 0, 0, 0);
        auto& layers = Records().modules.Find(numbers_[piece])->layers;
        std::copy(drawn.items.begin(), drawn.items.end(), layers[standin::CacheLayer0].items.begin());
        layers[standin::RunLayer] = layers[standin::CacheLayer0];
    }
    void Tie(const Drawing::Row& row) {
        LinkSxCache link{.InUse = true};
        link.F_Sx = kinds_[static_cast<std::size_t>(row.from)];
        link.F_Nb = Number(row.from);
        link.F_PortNb = PortOf(row.from, row.fromPort, NodeInletCount);
        link.S_Sx = kinds_[static_cast<std::size_t>(row.to)];
        link.S_Nb = Number(row.to);
        link.S_PortNb = PortOf(row.to, row.toPort, 0);
        ProjectAddLink(name_.c_str(), ProjectLinkNbCheck(slot_), link);
    }
    int PortOf(int piece, int port, int firstOfNode) {
        if (kinds_[static_cast<std::size_t>(piece)] != NodeKind) return port;
        const auto& taken = ElementOf(piece).linksAtPort;
        const auto first = taken.begin() + firstOfNode;
        return static_cast<int>(std::find(first, first + NodeInletCount - 1, 0) - taken.begin());
    }

    std::string name_;
    int slot_ = -1;
    std::vector<int> numbers_;
    std::vector<int> kinds_;
};

/// A mesh of at most that many pipes: square, fed in one corner by a pump out of a tank to which it comes
/// back from the other, with radiators in a room between some of its nodes. The pump is piece 1.
inline Drawing Mesh(int pipes, unsigned seed = 1) {
    Drawing drawing;
    std::mt19937 random(seed);
    const auto one = [&](double low, double high) {
        return std::uniform_real_distribution(low, high)(random);
    };
    const int tank = drawing.Add(Tank, {5.0});
    const int pump = drawing.Add(Pump, {20.0, 2.0 + pipes / 500.0});
    const int room = drawing.Add(RoomPiece, {10.0, 0.0});
    int side = 2;
    while (2 * side * (side + 1) + 2 <= pipes) ++side;
    const int first = static_cast<int>(drawing.pieces.size());
    for (int count = 0; count < side * side; ++count) drawing.Add(NodePiece);
    const auto node = [&](int x, int z) { return first + z * side + x; };
    drawing.Join(tank, 1, pump, 0, 2.0, 100.0);
    drawing.Link(pump, 1, node(0, 0), 0);
    drawing.Join(node(side - 1, side - 1), 0, tank, 0, 2.0, 100.0);
    for (int z = 0; z < side; ++z) {
        for (int x = 0; x < side; ++x) {
            if (x + 1 < side) drawing.Join(node(x, z), 0, node(x + 1, z), 0, one(2.0, 20.0), one(20.0, 80.0));
            if (z + 1 < side) drawing.Join(node(x, z), 0, node(x, z + 1), 0, one(2.0, 20.0), one(20.0, 80.0));
            if (x + 2 < side && x % 5 == 1 && z % 4 == 1) {
                drawing.Chain({node(x, z), drawing.Add(Radiator, {2.0}, room), node(x + 2, z)});
            }
        }
    }
    return drawing;
}
