#include "import/import_lists.h"

namespace vorn {

// Never destroyed: a request may still run while the process ends.
std::array<DeviceList, ImportSlots>& ImportDevices = *new std::array<DeviceList, ImportSlots>;
std::array<ConnectionList, ImportSlots>& ImportConnections = *new std::array<ConnectionList, ImportSlots>;

DeviceList& DevicesOf(int pjtnb) {
    return ImportDevices[static_cast<std::size_t>(pjtnb)];
}

ConnectionList& ConnectionsOf(int pjtnb) {
    return ImportConnections[static_cast<std::size_t>(pjtnb)];
}

void ImportListsClear(int pjtnb) {
    ConnectionsOf(pjtnb) = {};
    DevicesOf(pjtnb) = {};
}

}  // namespace vorn
