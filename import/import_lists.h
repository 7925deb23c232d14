// The records of an import in progress, and the lists that hold them.

#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "engine/vorn_records.h"

namespace vorn {

/// The size of a port: metres in a record, both 0.0 where the document gives none.
struct PortSize {
    double x = 0.0;
    double y = 0.0;
};

/// One device of a document. Texts are UTF-8 of at most 37 bytes.
struct DeviceEntry {
    char InstanceID[IdentityBytes] = {};  ///< its identity in the document
    char RoomID[IdentityBytes] = {};      ///< identity of the room that it stands in
    std::int64_t ModuleOneID = 0;         ///< identity of its module type; 3000 to 3999 makes a node
    char ModelID[IdentityBytes] = {};     ///< name of its model
    std::int32_t FluidType = 0;           ///< for a node, the node kind
    double PositionX = 0.0;
    double PositionZ = 0.0;
};

/// One connection of a document. It becomes a pipe module that bears the connection's identity.
struct ConnectionEntry {
    char ConnectionID[IdentityBytes] = {};
    std::int32_t RdcNumber = 0;       ///< number of elbows
    std::int32_t ConnectionType = 0;  ///< for the engine, which ties the ends
    std::int32_t ConnectionMaterialType = 0;
    double Length = 0.0;
    char StartDeviceInstanceID[IdentityBytes] = {};
    std::int32_t StartPortID = 0;
    PortSize StartPortSize{};
    char EndDeviceInstanceID[IdentityBytes] = {};
    std::int32_t EndPortID = 0;
    PortSize EndPortSize{};
    std::int32_t PipeNb = -1;  ///< module number of the pipe, negative until and unless it is placed
};

/// What a document was read into, and the expansion makes a project of. One import has one.
struct ImportLists {
    std::vector<DeviceEntry> ImportDevices{};
    std::vector<ConnectionEntry> ImportConnections{};
};

/// What a text field holds, up to its terminator. Texts are compared in this form.
template <std::size_t Bytes>
std::string_view BoundedText(const char (&field)[Bytes]) {
    const std::string_view whole(field, Bytes);
    return whole.substr(0, whole.find('\0'));
}

}  // namespace vorn
