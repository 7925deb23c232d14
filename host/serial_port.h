// A serial port as the system has it. Each handle is to be used by one thread at a time.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// The speeds that a port can have, in baud.
inline constexpr std::array SerialSpeeds{1200U,  2400U,   4800U,   9600U,   19200U, 38400U,
                                         57600U, 115200U, 230400U, 460800U, 921600U};

/// A terminal device and its speed, one of `SerialSpeeds`.
struct SerialPort {
    std::string device;
    unsigned baud = 115200;
};

/// Opens the port raw. Gives its handle, or -1 with `fault` saying why.
std::intptr_t SerialOpen(const SerialPort& port, std::string& fault);
void SerialClose(std::intptr_t handle);

/// Waits for bytes and gives how many came; 0 when the device has gone.
std::size_t SerialRead(std::intptr_t handle, std::span<char> bytes);

/// Writes the whole text; false when the device has gone.
bool SerialWrite(std::intptr_t handle, std::string_view text);
