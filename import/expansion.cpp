#include "import/expansion.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string_view>
#include <unordered_map>

#include "elements/grid.h"
#include "elements/instance_id.h"
#include "engine/vorn_core.h"
#include "engine/vorn_type_ids.h"
#include "import/fitting.h"
#include "import/import_lists.h"
#include "import/parameters.h"
#include "text/fixed_text.h"

namespace vorn {

namespace {

struct GridPlace {
    int x = 0;
    int z = 0;
};

int GridCut(std::int64_t value) {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

/// Grid units added to the X of each element that is placed by its position.
constexpr std::int64_t MarginX = 120;

/// `shift` grid units off the place that the document gives.
GridPlace PlaceByPosition(const DeviceEntry& device, std::int64_t shift) {
    return {.x = GridCut(GridFromPosition(device.PositionX) + shift + MarginX),
            .z = GridCut(GridFromPosition(device.PositionZ) + shift)};
}

/// The rooms stand along the edge of the drawing: down its left side, then along its foot.
class EdgeGrid {
  public:
    GridPlace Next() {
        GridPlace place{.z = FootZ};
        if (edgeFull_) {
            place.x = GridCut((edgeRow_ - SidePlaces) * FootStep);
        } else {
            place.z = static_cast<int>(edgeRow_) * SideStep;
        }
        ++edgeRow_;
        edgeFull_ = edgeFull_ || edgeRow_ == SidePlaces;
        return place;
    }

  private:
    static constexpr std::int64_t SidePlaces = 31;
    static constexpr int SideStep = 80;
    static constexpr std::int64_t FootStep = 120;
    static constexpr int FootZ = 2480;

    std::int64_t edgeRow_ = 0;
    bool edgeFull_ = false;
};

constexpr int FirstPage = 0;
/// Identities that make a node: from the first, and below the second.
constexpr std::int64_t NodeIdFirst = 3000;
constexpr std::int64_t NodeIdEnd = 4000;
/// Identities above this one make a module.
constexpr std::int64_t ModuleIdAbove = 5000;
/// Grid units by which each module stands off the one before it in the list.
constexpr std::int64_t ModuleShift = 5;

void PlaceNode(int pjtnb, const DeviceEntry& device) {
    const int number = ProjectNodeNbCheck(pjtnb);
    if (number < 0 || device.FluidType < 0 || device.FluidType >= NodeKindCount) return;
    const GridPlace place = PlaceByPosition(device, 0);
    ProjectAddNode(ProjectNameGet(pjtnb), number, device.FluidType, FirstPage, place.x, place.z);
    NodeInstanceIDSet(pjtnb, number, device.InstanceID);
}

void PlaceModule(int pjtnb, const DeviceEntry& device, std::int64_t index, EdgeGrid& edge) {
    const int number = ProjectModuleNbCheck(pjtnb);
    if (number < 0) return;
    // The edge grid moves on also where the type then turns out to be unknown.
    const GridPlace place =
        device.ModuleOneID == RoomOneID ? edge.Next() : PlaceByPosition(device, index * ModuleShift);
    const int type = ModuleOneID_ToID(device.ModuleOneID);
    if (type < 0 || type >= ModuleTypeCount) return;
    ProjectAddModule(ProjectNameGet(pjtnb), number, type, FirstPage, place.x, place.z);
    ModuleInstanceIDSet(pjtnb, number, device.InstanceID);
}

void PlaceDevices(int pjtnb, const std::vector<DeviceEntry>& devices) {
    EdgeGrid edge;
    std::int64_t index = 0;
    for (const DeviceEntry& device : devices) {
        if (device.ModuleOneID >= NodeIdFirst && device.ModuleOneID < NodeIdEnd) {
            PlaceNode(pjtnb, device);
        } else if (device.ModuleOneID > ModuleIdAbove) {
            PlaceModule(pjtnb, device, index, edge);
        }
        ++index;
    }
}

void TiePipes(int pjtnb, std::vector<ConnectionEntry>& connections) {
    for (ConnectionEntry& connection : connections) {
        InstanceIdResolve(pjtnb, connection.ConnectionID, connection.PipeNb);
        int midstarteasynb = -1;
        const int startKind = InstanceIdResolve(pjtnb, connection.StartDeviceInstanceID, midstarteasynb);
        int midendeasynb = -1;
        const int endKind = InstanceIdResolve(pjtnb, connection.EndDeviceInstanceID, midendeasynb);
        if (midstarteasynb < 0 || midendeasynb < 0) continue;
        Pipe_PipeLinkAnalysis(pjtnb, connection.PipeNb, connection.ConnectionType, startKind, midstarteasynb,
                              connection.StartPortID, endKind, midendeasynb, connection.EndPortID);
    }
}

/// The devices that stand in a room and heat or cool it.
constexpr std::int64_t RoomLinkedOneID[] = {FanCoilOneID, AirCoolerOneID, RadiatorOneID};
/// The identity under which a document lists an air outlet a second time, for its room.
constexpr std::int64_t AirOutletOneID = 12;

bool IsRoomLinked(std::int64_t oneId) {
    return std::find(std::begin(RoomLinkedOneID), std::end(RoomLinkedOneID), oneId) !=
           std::end(RoomLinkedOneID);
}

void TieToRoom(int pjtnb, const DeviceEntry& device, int module, void (*tie)(int, int, int)) {
    if (BoundedText(device.RoomID).empty()) return;
    int roomModuleNb = -1;
    if (InstanceIdResolve(pjtnb, device.RoomID, roomModuleNb) != ModuleKind || roomModuleNb < 0) return;
    tie(pjtnb, module, roomModuleNb);
}

void TieRooms(int pjtnb, const std::vector<DeviceEntry>& devices) {
    for (const DeviceEntry& device : devices) {
        const int module = Module_FindInstanceID(pjtnb, device.InstanceID);
        if (module < 0) continue;
        if (IsRoomLinked(device.ModuleOneID)) TieToRoom(pjtnb, device, module, Pipe_RoomLinkAnalysis);
        if (device.ModuleOneID == AirOutletOneID) {
            TieToRoom(pjtnb, device, module, Pipe_FengKouLinkAnaysis);
        }
    }
}

}  // namespace

// A connection's device is the first in the list that bears the connection's identity, or a new one at the
// list's end.
void GiveConnectionsDevices(ImportLists& lists) {
    std::vector<DeviceEntry>& devices = lists.ImportDevices;
    const std::vector<ConnectionEntry>& connections = lists.ImportConnections;
    // The index looks into the records, which therefore must not move.
    devices.reserve(devices.size() + connections.size());
    std::unordered_map<std::string_view, DeviceEntry*> firstOf;
    firstOf.reserve(devices.capacity());
    for (DeviceEntry& device : devices) firstOf.try_emplace(BoundedText(device.InstanceID), &device);

    for (const ConnectionEntry& connection : connections) {
        const auto found = firstOf.find(BoundedText(connection.ConnectionID));
        DeviceEntry* device = found == firstOf.end() ? nullptr : found->second;
        if (device == nullptr) {
            device = &devices.emplace_back();
            TextCopy(device->InstanceID, BoundedText(connection.ConnectionID));
            firstOf.emplace(BoundedText(device->InstanceID), device);
        }
        const Fitting fitting = FittingFor(connection.StartPortSize, connection.EndPortSize);
        device->ModuleOneID = fitting.oneId;
        TextCopy(device->ModelID, fitting.model);
    }
}

void LinkExpansion(int pjtnb, ImportLists lists) {
    PlaceDevices(pjtnb, lists.ImportDevices);
    TiePipes(pjtnb, lists.ImportConnections);
    TieRooms(pjtnb, lists.ImportDevices);
    ModelParametersLoad(pjtnb, lists.ImportDevices);
    PipeParametersSet(pjtnb, lists.ImportConnections);
}

}  // namespace vorn
