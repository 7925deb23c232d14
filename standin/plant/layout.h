// The nets of a plant, made from its links. A layout depends on the structure alone, not on
// values, and stays as long as that does.

#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <vector>

#include "standin/plant/device.h"
#include "standin/plant/fluid.h"

namespace standin {

inline constexpr int NoPoint = -1;

/// The value at an index, which is one of `values`.
template <typename Values>
auto& At(Values& values, int index) {
    return values[static_cast<std::size_t>(index)];
}

/// A module. Its index in the layout is not its number.
struct Device {
    int number = 0;
    const DeviceType* type = nullptr;
    int room = -1;                              ///< index of the device that it stands in, -1 for none
    int firstValue = 0;                         ///< where its items begin among all devices' items
    std::array<int, 4> points{-1, -1, -1, -1};  ///< by port; `NoPoint` where nothing is linked
    std::array<int, 4> aisles{-1, -1, -1, -1};  ///< by port, the live aisle; -1 where there is none
    std::array<int, 4> mouths{-1, -1, -1, -1};  ///< by port, of a vessel; -1 where nothing is linked
};

/// A way through a device whose two ports are both linked. Others carry nothing and are not here.
struct Aisle {
    int device;
    int aisle;  ///< its number in the device
    int inlet;  ///< points
    int outlet;
    int net;
};

/// A linked port of a vessel.
struct Mouth {
    int device;
    bool outlet;
    int point;
    int content;
};

/// What the vessels of one kind in one net hold together.
struct Content {
    Role role;
    int net;
    std::vector<int> devices;
};

/// Ends of links that meet: one pressure, one temperature. A node is a point of its own.
struct Point {
    int net = -1;
    bool linked = false;    ///< not of a lone node
    std::int64_t rank = 0;  ///< where a part of a net that nothing holds rests on 0: its lowest rank
};

struct Net {
    Fluid fluid = Fluid::Water;
    bool linked = false;   ///< not a lone node
    bool circuit = false;  ///< of refrigerant, with a compressor
    std::vector<int> points;
    std::vector<int> aisles;
    std::vector<int> mouths;
};

/// A linked port of a node, and the module's port at the other end of its link, which tells the flow.
struct NodePort {
    int node;  ///< index
    int port;
    int device;  ///< -1 where the link ends at no module
    int devicePort;
};

struct Layout {
    std::deque<DeviceType> types;  ///< of all devices
    std::vector<Device> devices;
    std::vector<int> nodes;       ///< numbers, by node index
    std::vector<int> nodePoints;  ///< by node index
    std::vector<NodePort> nodePorts;
    std::vector<Point> points;
    std::vector<Aisle> aisles;
    std::vector<Mouth> mouths;
    std::vector<Content> contents;
    std::vector<Net> nets;
    int valueCount = 0;  ///< items of all devices
};

Layout LayoutMake(const PlantRows& rows);

/// Sets that are joined; each is known by one of its members.
class Joined {
  public:
    explicit Joined(int count);
    int Of(int member);
    void Join(int one, int other);

  private:
    std::vector<int> above_;
};

}  // namespace standin
