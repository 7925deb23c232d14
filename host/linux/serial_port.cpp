#include "host/serial_port.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

namespace {

/// The system's words for `SerialSpeeds`, in the same order.
constexpr speed_t Speeds[] = {B1200,  B2400,   B4800,   B9600,   B19200, B38400,
                              B57600, B115200, B230400, B460800, B921600};
static_assert(std::size(Speeds) == SerialSpeeds.size());

bool SetRaw(int device, unsigned baud) {
    const auto* const speed = std::find(SerialSpeeds.begin(), SerialSpeeds.end(), baud);
    termios settings{};
    if (speed == SerialSpeeds.end() || tcgetattr(device, &settings) != 0) return false;
    cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    cfsetspeed(&settings, Speeds[speed - SerialSpeeds.begin()]);
    return tcsetattr(device, TCSANOW, &settings) == 0;
}

}  // namespace

std::intptr_t SerialOpen(const SerialPort& port, std::string& fault) {
    // Without O_NONBLOCK the opening itself would wait for a carrier.
    const int device = open(port.device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (device < 0) {
        fault = port.device + ": " + std::strerror(errno);
        return -1;
    }
    if (isatty(device) == 0) {
        fault = port.device + " is no serial port";
    } else if (SetRaw(device, port.baud) && fcntl(device, F_SETFL, 0) == 0) {
        return device;
    } else {
        fault = port.device + ": " + std::strerror(errno);
    }
    close(device);
    return -1;
}

void SerialClose(std::intptr_t handle) {
    close(static_cast<int>(handle));
}

std::size_t SerialRead(std::intptr_t handle, std::span<char> bytes) {
    ssize_t count = -1;
    do {
        count = read(static_cast<int>(handle), bytes.data(), bytes.size());
    } while (count < 0 && errno == EINTR);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool SerialWrite(std::intptr_t handle, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(static_cast<int>(handle), text.data(), text.size());
        if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
        if (written < 0 && errno != EINTR) return false;
    }
    return true;
}
