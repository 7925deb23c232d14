#include "host/serial_port.h"

#include <windows.h>

#include <algorithm>
#include <system_error>

#include "platform/fault_text.h"
#include "platform/windows/wide_text.h"

namespace {

HANDLE HandleOf(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

/// Eight bits without parity or flow control, as raw as it goes; a read waits for one byte and takes all that
/// is there.
bool SetRaw(HANDLE device, unsigned baud) {
    DCB settings{};
    settings.DCBlength = sizeof settings;
    if (!GetCommState(device, &settings)) return false;
    settings.BaudRate = baud;
    settings.fBinary = TRUE;
    settings.fParity = FALSE;
    settings.fOutxCtsFlow = settings.fOutxDsrFlow = FALSE;
    settings.fDsrSensitivity = FALSE;
    settings.fOutX = settings.fInX = FALSE;
    settings.fErrorChar = settings.fNull = settings.fAbortOnError = FALSE;
    settings.fDtrControl = DTR_CONTROL_ENABLE;
    settings.fRtsControl = RTS_CONTROL_ENABLE;
    settings.ByteSize = 8;
    settings.Parity = NOPARITY;
    settings.StopBits = ONESTOPBIT;
    COMMTIMEOUTS waits{};
    waits.ReadIntervalTimeout = waits.ReadTotalTimeoutMultiplier = MAXDWORD;
    waits.ReadTotalTimeoutConstant = MAXDWORD - 1;
    return SetCommState(device, &settings) && SetCommTimeouts(device, &waits);
}

}  // namespace

std::intptr_t SerialOpen(const SerialPort& port, std::string& fault) {
    // Ports above COM9 have no other name than this.
    constexpr std::wstring_view Devices = LR"(\\.\)";
    std::wstring name = vorn::WideFromUtf8(port.device);
    if (!name.starts_with(Devices)) name.insert(0, Devices);
    const HANDLE device =
        CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const auto tell = [&] {
        const std::error_code reason(static_cast<int>(GetLastError()), std::system_category());
        fault = port.device + ": " + vorn::FaultText(reason);
        return -1;
    };
    if (device == INVALID_HANDLE_VALUE) return tell();
    if (SetRaw(device, port.baud)) return reinterpret_cast<std::intptr_t>(device);
    DCB settings{};
    settings.DCBlength = sizeof settings;
    if (GetCommState(device, &settings)) {
        tell();
    } else {
        fault = port.device + " is no serial port";
    }
    CloseHandle(device);
    return -1;
}

void SerialClose(std::intptr_t handle) {
    CloseHandle(HandleOf(handle));
}

std::size_t SerialRead(std::intptr_t handle, std::span<char> bytes) {
    DWORD read = 0;
    do {
        // The longest wait of the system ends after 49 days.
        if (!ReadFile(HandleOf(handle), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr))
            return 0;
    } while (read == 0);
    return read;
}

bool SerialWrite(std::intptr_t handle, std::string_view text) {
    while (!text.empty()) {
        DWORD written = 0;
        if (!WriteFile(HandleOf(handle), text.data(), static_cast<DWORD>(text.size()), &written, nullptr))
            return false;
        text.remove_prefix(written);
    }
    return true;
}
