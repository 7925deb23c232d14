#include "host/serial_line.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <new>
#include <string_view>
#include <thread>

#include "host/tell.h"
#include "include/vorn_contract.h"
#include "include/vorn_server.h"

namespace {

constexpr std::string_view LineEnd = "\r\n";

/// Answers the byte if it ends a line. False when the device has gone.
bool ByteServe(std::intptr_t device, LineAssembler& lines, char byte) {
    const LineAssembler::Event event = lines.Take(byte);
    try {
        return event == LineAssembler::Event::None || SerialWrite(device, SerialReply(event, lines.Line()));
    } catch (const std::bad_alloc&) {
        return true;
    }
}

/// Serves the device until it goes away.
void DeviceServe(std::intptr_t device, LineAssembler& lines) {
    std::array<char, 4096> bytes{};
    while (const std::size_t count = SerialRead(device, bytes)) {
        for (const char byte : std::string_view(bytes.data(), count)) {
            if (!ByteServe(device, lines, byte)) return;
        }
    }
}

/// Opens the device once it is back; -1 where there was no memory for that.
std::intptr_t DeviceAwait(const SerialPort& port) {
    std::intptr_t device = -1;
    try {
        TellFault("the serial port " + port.device + " has gone");
        std::string fault;
        while (device < 0) {
            std::this_thread::sleep_for(std::chrono::seconds(1));
            device = SerialOpen(port, fault);
        }
        TellFault("the serial port " + port.device + " is back");
    } catch (const std::bad_alloc&) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
    return device;
}

[[noreturn]] void PortServe(const SerialPort& port, std::intptr_t device) {
    LineAssembler lines;
    for (;;) {
        DeviceServe(device, lines);
        lines.Forget();
        SerialClose(device);
        do {
            device = DeviceAwait(port);
        } while (device < 0);
    }
}

}  // namespace

LineAssembler::Event LineAssembler::Take(char byte) {
    const bool secondOfPair = byte == '\n' && afterReturn_;
    if (ended_) Forget();
    afterReturn_ = byte == '\r';
    if (secondOfPair || byte == '\0') return Event::None;
    ended_ = byte == '\r' || byte == '\n';
    if (ended_) return overlong_ ? Event::Overlong : Event::Line;
    overlong_ = overlong_ || line_.size() == SerialLineBytesAtMost;
    if (!overlong_) line_ += byte;
    return Event::None;
}

void LineAssembler::Forget() {
    line_.clear();
    ended_ = overlong_ = afterReturn_ = false;
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
    const bool known = std::find(SerialSpeeds.begin(), SerialSpeeds.end(), port.baud) != SerialSpeeds.end();
    if (read.ec == std::errc() && known) return true;
    fault = "unknown speed '" + std::string(digits) + "' of the serial port; these are known:";
    for (const unsigned speed : SerialSpeeds) fault += " " + std::to_string(speed);
    return false;
}

bool SerialStart(const SerialPort& port, std::string& fault) {
    const std::intptr_t device = SerialOpen(port, fault);
    if (device < 0) return false;
    std::thread([port, device] { PortServe(port, device); }).detach();
    return true;
}
