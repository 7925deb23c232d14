// The serial line of the host: each line that comes in goes to the library, each reply goes back.

#pragma once

#include <cstddef>
#include <string>

#include "host/serial_port.h"

/// Longer lines are refused.
inline constexpr std::size_t SerialLineBytesAtMost = 65536;

/// Lines out of bytes. CR, LF and CR LF each end a line; zero bytes, with which some devices pad, are passed
/// over.
class LineAssembler {
  public:
    enum class Event { None, Line, Overlong };

    /// Takes one byte. At a line's end `Line`, and `line` holds it without its end; `Overlong` when it had
    /// more than `SerialLineBytesAtMost` bytes.
    Event Take(char byte, std::string& line);

  private:
    std::string line_;
    bool overlong_ = false;
    bool afterReturn_ = false;
};

/// What goes back for one line, its own end included.
std::string SerialReply(LineAssembler::Event event, const std::string& line);

/// Reads `DEVICE[:BAUD]`. False, with `fault` saying why, for an unknown speed.
bool SerialPortRead(const std::string& text, SerialPort& port, std::string& fault);

/// Opens the port raw and serves it on a thread of its own until the process ends; a device that goes away is
/// opened again when it is back. False, with `fault` saying why, when it cannot be opened now.
bool SerialStart(const SerialPort& port, std::string& fault);
