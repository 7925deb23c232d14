#include "standin/plant/layout.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>

namespace standin {

namespace {

using Kind = PlantEnd::Kind;

/// A point without a node is told by a module, behind all that have one: by an inlet before an outlet.
constexpr std::int64_t InletRank = std::int64_t{1} << 32;
constexpr std::int64_t OutletRank = std::int64_t{1} << 33;

int Index(const std::vector<int>& byNumber, int number) {
    const bool known = number >= 0 && number < static_cast<int>(byNumber.size());
    return known ? At(byNumber, number) : -1;
}

/// The ends of links by key: first the ports of the devices, then the nodes, then the jumps.
class Ends {
  public:
    Ends(const PlantRows& rows, const Layout& layout) : layout_(layout) {
        int index = 0;
        for (const Device& device : layout.devices) Number(devices_, device.number, index++);
        index = 0;
        for (const int node : layout.nodes) Number(nodes_, node, index++);
        for (const PlantLink& link : rows.links) {
            for (const PlantEnd& end : {link.from, link.to}) {
                if (end.kind == Kind::Jump) jumps_.try_emplace(end.number, static_cast<int>(jumps_.size()));
            }
        }
    }
    int Count() const { return FirstJump() + static_cast<int>(jumps_.size()); }
    int DeviceKey(int device, int port) const { return device * static_cast<int>(PlantPorts) + port; }
    int NodeKey(int node) const { return DeviceKey(static_cast<int>(layout_.devices.size()), 0) + node; }
    int DeviceIndex(int number) const { return Index(devices_, number); }
    int NodeIndex(int number) const { return Index(nodes_, number); }
    /// -1 for an end that is nowhere.
    int Key(const PlantEnd& end) const {
        if (end.kind == Kind::Jump) {
            const auto found = jumps_.find(end.number);
            return found == jumps_.end() ? -1 : FirstJump() + found->second;
        }
        if (end.kind == Kind::Node) return NodeIndex(end.number) < 0 ? -1 : NodeKey(NodeIndex(end.number));
        const int device = end.kind == Kind::Module ? DeviceIndex(end.number) : -1;
        if (device < 0 || end.port < 0) return -1;
        const auto ports = At(layout_.devices, device).type->ports.size();
        return end.port < static_cast<int>(ports) ? DeviceKey(device, end.port) : -1;
    }

  private:
    static void Number(std::vector<int>& byNumber, int number, int index) {
        byNumber.resize(static_cast<std::size_t>(number) + 1, -1);
        byNumber.back() = index;
    }
    int FirstJump() const { return NodeKey(static_cast<int>(layout_.nodes.size())); }

    const Layout& layout_;
    std::vector<int> devices_;  ///< index by number
    std::vector<int> nodes_;
    std::unordered_map<int, int> jumps_;
};

void PlaceDevices(const PlantRows& rows, Layout& layout) {
    std::unordered_map<const PlantType*, const DeviceType*> known;
    for (const PlantRows::ModuleRow& row : rows.modules) {
        const DeviceType*& type = known[row.type];
        if (type == nullptr) type = &layout.types.emplace_back(DeviceTypeOf(*row.type));
        layout.devices.push_back({.number = row.number, .type = type, .firstValue = layout.valueCount});
        layout.valueCount += static_cast<int>(type->items.size());
    }
    layout.nodes = rows.nodes;
}

/// The two keys of a link; -1 both where one end is nowhere.
struct LinkKeys {
    int first;
    int second;
};

LinkKeys KeysOf(const Ends& ends, const PlantLink& link) {
    const LinkKeys keys{ends.Key(link.from), ends.Key(link.to)};
    return keys.first < 0 || keys.second < 0 ? LinkKeys{-1, -1} : keys;
}

/// Makes a point of each set of ends that meet, and tells the ports and nodes theirs.
void MakePoints(const PlantRows& rows, const Ends& ends, Layout& layout) {
    Joined met(ends.Count());
    std::vector<char> linked(static_cast<std::size_t>(ends.Count()));
    for (const PlantLink& link : rows.links) {
        const auto [first, second] = KeysOf(ends, link);
        if (first < 0) continue;
        met.Join(first, second);
        At(linked, first) = At(linked, second) = 1;
    }
    std::vector<int> pointOf(static_cast<std::size_t>(ends.Count()), NoPoint);
    const auto point = [&](int key, std::int64_t rank) {
        int& found = At(pointOf, met.Of(key));
        if (found == NoPoint) {
            found = static_cast<int>(layout.points.size());
            layout.points.push_back({.rank = rank});
        }
        Point& is = At(layout.points, found);
        is.linked = is.linked || At(linked, key) != 0;
        is.rank = std::min(is.rank, rank);
        return found;
    };
    for (std::size_t device = 0; device < layout.devices.size(); ++device) {
        Device& each = layout.devices[device];
        for (std::size_t port = 0; port < each.type->ports.size(); ++port) {
            const int key = ends.DeviceKey(static_cast<int>(device), static_cast<int>(port));
            const std::int64_t side = each.type->ports[port].outlet ? OutletRank : InletRank;
            if (At(linked, key)) each.points[port] = point(key, side + each.number);
        }
    }
    for (std::size_t node = 0; node < layout.nodes.size(); ++node) {
        layout.nodePoints.push_back(point(ends.NodeKey(static_cast<int>(node)), layout.nodes[node]));
    }
}

void MakeAisles(Layout& layout) {
    for (std::size_t number = 0; number < layout.devices.size(); ++number) {
        Device& device = layout.devices[number];
        int aisle = -1;
        for (const AisleType& type : device.type->aisles) {
            ++aisle;
            const auto inletPort = static_cast<std::size_t>(type.inlet);
            const auto outletPort = static_cast<std::size_t>(type.outlet);
            const int inlet = device.points[inletPort];
            const int outlet = device.points[outletPort];
            if (inlet == NoPoint || outlet == NoPoint) continue;
            device.aisles[inletPort] = device.aisles[outletPort] = static_cast<int>(layout.aisles.size());
            layout.aisles.push_back({static_cast<int>(number), aisle, inlet, outlet, -1});
        }
    }
}

/// Nets are what hangs together over aisles and vessels.
void MakeNets(Layout& layout) {
    Joined joined(static_cast<int>(layout.points.size()));
    for (const Aisle& aisle : layout.aisles) joined.Join(aisle.inlet, aisle.outlet);
    for (const Device& device : layout.devices) {
        if (IsVessel(device.type->role) && device.points[0] != NoPoint && device.points[1] != NoPoint) {
            joined.Join(device.points[0], device.points[1]);
        }
    }
    std::vector<int> netOf(layout.points.size(), -1);
    for (std::size_t number = 0; number < layout.points.size(); ++number) {
        int& net = At(netOf, joined.Of(static_cast<int>(number)));
        if (net < 0) {
            net = static_cast<int>(layout.nets.size());
            layout.nets.emplace_back();
        }
        layout.points[number].net = net;
        Net& is = At(layout.nets, net);
        is.points.push_back(static_cast<int>(number));
        is.linked = is.linked || layout.points[number].linked;
    }
    for (std::size_t number = 0; number < layout.aisles.size(); ++number) {
        Aisle& aisle = layout.aisles[number];
        aisle.net = At(layout.points, aisle.inlet).net;
        At(layout.nets, aisle.net).aisles.push_back(static_cast<int>(number));
    }
}

/// A duct makes a net one of air, else a copper pipe one of refrigerant, also where only one end is linked.
void TellFluids(Layout& layout) {
    for (const Device& device : layout.devices) {
        for (const int point : device.points) {
            if (point == NoPoint) continue;
            Net& net = At(layout.nets, At(layout.points, point).net);
            if (device.type->role == Role::Duct) net.fluid = Fluid::Air;
            if (device.type->role == Role::CopperPipe && net.fluid == Fluid::Water) {
                net.fluid = Fluid::Refrigerant;
            }
        }
    }
    for (Net& net : layout.nets) {
        net.circuit = net.fluid == Fluid::Refrigerant &&
                      std::any_of(net.aisles.begin(), net.aisles.end(), [&](int aisle) {
                          const int device = At(layout.aisles, aisle).device;
                          return At(layout.devices, device).type->role == Role::Compressor;
                      });
    }
}

int ContentOf(Layout& layout, Role role, int net) {
    auto found = std::find_if(layout.contents.begin(), layout.contents.end(), [&](const Content& content) {
        return content.role == role && content.net == net;
    });
    if (found == layout.contents.end()) {
        layout.contents.push_back({role, net, {}});
        found = layout.contents.end() - 1;
    }
    return static_cast<int>(found - layout.contents.begin());
}

void MakeContents(Layout& layout) {
    for (std::size_t number = 0; number < layout.devices.size(); ++number) {
        Device& device = layout.devices[number];
        if (!IsVessel(device.type->role)) continue;
        int content = -1;
        for (std::size_t port = 0; port < device.type->ports.size(); ++port) {
            const int point = device.points[port];
            if (point == NoPoint) continue;
            const int net = At(layout.points, point).net;
            if (content < 0) {
                content = ContentOf(layout, device.type->role, net);
                At(layout.contents, content).devices.push_back(static_cast<int>(number));
            }
            device.mouths[port] = static_cast<int>(layout.mouths.size());
            At(layout.nets, net).mouths.push_back(device.mouths[port]);
            layout.mouths.push_back(
                {static_cast<int>(number), device.type->ports[port].outlet, point, content});
        }
    }
}

/// The end at the other side of a link's end. Where a jump has two links, that is the other one's far end.
class FarEnds {
  public:
    explicit FarEnds(const PlantRows& rows) {
        for (const PlantLink& link : rows.links) {
            for (const PlantEnd& end : {link.from, link.to}) {
                if (end.kind == Kind::Jump) linksOfJump_[end.number].push_back(&link);
            }
        }
    }
    PlantEnd Of(const PlantLink& link, bool ofFrom) const {
        const PlantEnd& far = ofFrom ? link.to : link.from;
        if (far.kind != Kind::Jump) return far;
        const auto& pair = linksOfJump_.at(far.number);
        if (pair.size() != 2) return far;
        const PlantLink& other = *(pair[0] == &link ? pair[1] : pair[0]);
        const bool leads = other.from.kind == Kind::Jump && other.from.number == far.number;
        return leads ? other.to : other.from;
    }

  private:
    std::unordered_map<int, std::vector<const PlantLink*>> linksOfJump_;
};

void FindNodePorts(const PlantRows& rows, const Ends& ends, Layout& layout) {
    const FarEnds farEnds(rows);
    const auto add = [&](const PlantLink& link, bool ofFrom) {
        const PlantEnd& end = ofFrom ? link.from : link.to;
        if (end.kind != Kind::Node || end.port < 0 || end.port >= NodePorts) return;
        const PlantEnd far = farEnds.Of(link, ofFrom);
        const bool module = far.kind == Kind::Module && ends.Key(far) >= 0;
        layout.nodePorts.push_back(
            {ends.NodeIndex(end.number), end.port, module ? ends.DeviceIndex(far.number) : -1, far.port});
    };
    for (const PlantLink& link : rows.links) {
        if (KeysOf(ends, link).first < 0) continue;
        add(link, true);
        add(link, false);
    }
    // So that they are written as they lie.
    std::sort(layout.nodePorts.begin(), layout.nodePorts.end(),
              [](const NodePort& one, const NodePort& other) {
                  return std::pair(one.node, one.port) < std::pair(other.node, other.port);
              });
}

}  // namespace

Joined::Joined(int count) : above_(static_cast<std::size_t>(count)) {
    std::iota(above_.begin(), above_.end(), 0);
}

int Joined::Of(int member) {
    while (At(above_, member) != member) {
        int& above = At(above_, member);
        above = At(above_, above);
        member = above;
    }
    return member;
}

void Joined::Join(int one, int other) {
    At(above_, Of(one)) = Of(other);
}

Layout LayoutMake(const PlantRows& rows) {
    Layout layout;
    PlaceDevices(rows, layout);
    const Ends ends(rows, layout);
    for (std::size_t row = 0; row < rows.modules.size(); ++row) {
        layout.devices[row].room = ends.DeviceIndex(rows.modules[row].room);
    }
    MakePoints(rows, ends, layout);
    MakeAisles(layout);
    MakeNets(layout);
    TellFluids(layout);
    MakeContents(layout);
    FindNodePorts(rows, ends, layout);
    return layout;
}

}  // namespace standin
