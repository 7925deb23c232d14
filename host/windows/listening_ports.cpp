#include "host/listening_ports.h"

#include <windows.h>
#include <winsock2.h>

#include <iphlpapi.h>

#include <cstddef>
#include <cstring>

std::vector<int> ListeningPorts(int first, int last) {
    const auto listeners = [](void* table, DWORD* bytes) {
        return GetExtendedTcpTable(table, bytes, FALSE, AF_INET, TCP_TABLE_OWNER_PID_LISTENER, 0);
    };
    // The table may grow between two calls.
    std::vector<std::byte> table;
    DWORD bytes = 0;
    while (listeners(table.data(), &bytes) == ERROR_INSUFFICIENT_BUFFER) table.resize(bytes);

    std::vector<int> ports;
    DWORD rows = 0;
    if (bytes < sizeof rows || table.size() < bytes) return ports;
    std::memcpy(&rows, table.data(), sizeof rows);
    for (DWORD index = 0; index < rows; ++index) {
        MIB_TCPROW_OWNER_PID row{};
        std::memcpy(&row, table.data() + offsetof(MIB_TCPTABLE_OWNER_PID, table) + index * sizeof row,
                    sizeof row);
        const int port = ntohs(static_cast<u_short>(row.dwLocalPort));
        // Wine knows no owner.
        const bool own = row.dwOwningPid == GetCurrentProcessId() || row.dwOwningPid == 0;
        const bool everywhere = row.dwLocalAddr == INADDR_ANY;
        if (own && everywhere && port >= first && port <= last) ports.push_back(port);
    }
    return ports;
}
