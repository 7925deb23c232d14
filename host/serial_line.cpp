#include "host/serial_line.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string_view>
#include <thread>

#include "include/vorn_contract.h"
#include "include/vorn_server.h"

namespace {

constexpr std::string_view LineEnd = "\r\n";

struct BaudRow {
    unsigned baud;
    speed_t speed;
};

constexpr BaudRow BaudTable[] = {
    {1200, B1200},     {2400, B2400},     {4800, B4800},     {9600, B9600},
    {19200, B19200},   {38400, B38400},   {57600, B57600},   {115200, B115200},
    {230400, B230400}, {460800, B460800}, {921600, B921600},
};

const BaudRow* BaudFind(unsigned baud) {
    const auto* row = std::find_if(std::begin(BaudTable), std::end(BaudTable),
                                   [baud](const BaudRow& each) { return each.baud == baud; });
    return row == std::end(BaudTable) ? nullptr : row;
}

bool SetRaw(int device, unsigned baud) {
    termios settings{};
    if (tcgetattr(device, &settings) != 0) return false;
    cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    cfsetspeed(&settings, BaudFind(baud)->speed);
    return tcsetattr(device, TCSANOW, &settings) == 0;
}

/// The open device, or -1 with `fault` saying why.
int DeviceOpen(const SerialPort& port, std::string& fault) {
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

bool WriteWhole(int device, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(device, text.data(), text.size());
        if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
        if (written < 0 && errno != EINTR) return false;
    }
    return true;
}

/// Serves the device until it goes away.
void DeviceServe(int device) {
    LineAssembler lines;
    std::string line;
    std::array<char, 4096> bytes{};
    for (;;) {
        const ssize_t count = read(device, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        for (const char byte : std::string_view(bytes.data(), static_cast<std::size_t>(count))) {
            const LineAssembler::Event event = lines.Take(byte, line);
            if (event == LineAssembler::Event::None) continue;
            if (!WriteWhole(device, SerialReply(event, line))) return;
        }
    }
}

[[noreturn]] void PortServe(const SerialPort& port, int device) {
    for (;;) {
        DeviceServe(device);
        close(device);
        std::fprintf(stderr, "vorn-host: the serial port %s has gone\n", port.device.c_str());
        std::string fault;
        do {
            std::this_thread::sleep_for(std::chrono::seconds(1));
            device = DeviceOpen(port, fault);
        } while (device < 0);
        std::fprintf(stderr, "vorn-host: the serial port %s is back\n", port.device.c_str());
    }
}

}  // namespace

LineAssembler::Event LineAssembler::Take(char byte, std::string& line) {
    const bool secondOfPair = byte == '\n' && afterReturn_;
    afterReturn_ = byte == '\r';
    if (secondOfPair || byte == '\0') return Event::None;
    if (byte != '\r' && byte != '\n') {
        overlong_ = overlong_ || line_.size() == SerialLineBytesAtMost;
        if (!overlong_) line_ += byte;
        return Event::None;
    }
    const Event event = overlong_ ? Event::Overlong : Event::Line;
    line.swap(line_);
    line_.clear();
    overlong_ = false;
    return event;
}

std::string SerialReply(LineAssembler::Event event, const std::string& line) {
    std::string reply = "the line is too long";
    if (event == LineAssembler::Event::Line) {
        char answer[VORN_SERIAL_REPLY_BYTES];
        ChuanKouServerThread(line.c_str(), answer);
        reply = answer;
    }
    return reply.append(LineEnd);
}

bool SerialPortRead(const std::string& text, SerialPort& port, std::string& fault) {
    port.device = text;
    const std::size_t colon = text.rfind(':');
    const std::string_view digits =
        colon == std::string::npos ? std::string_view() : std::string_view(text).substr(colon + 1);
    // A device's own name may hold a colon.
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos) return true;
    port.device.resize(colon);
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), port.baud);
    if (read.ec == std::errc() && BaudFind(port.baud) != nullptr) return true;
    fault = "unknown speed '" + std::string(digits) + "' of the serial port; these are known:";
    for (const BaudRow& row : BaudTable) fault += " " + std::to_string(row.baud);
    return false;
}

bool SerialStart(const SerialPort& port, std::string& fault) {
    const int device = DeviceOpen(port, fault);
    if (device < 0) return false;
    std::thread([port, device] { PortServe(port, device); }).detach();
    return true;
}
