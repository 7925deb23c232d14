// The serial line of the host: each line that comes in goes to the library, each reply goes back.

#pragma once

#include <cstddef>
#include <string>

#include "host/serial_port.h"

/// Longer lines are refused.
inline constexpr std::size_t SerialLineBytesAtMost = 65536;

/// Lines out of bytes. CR, LF and CR LF each end a line; zero bytes, with which some devices pad, are passed
/// over. Takes its memory when it is made: a line that lost a byte for want of it would be another line.
class LineAssembler {
  public:
    enum class Event { None, Line, Overlong };

    LineAssembler() { line_.reserve(SerialLineBytesAtMost); }

    /// Takes one byte. At a line's end `Line`; `Overlong` when it had more than `SerialLineBytesAtMost`.
    Event Take(char byte);
    /// The line that has ended, without its end, until the next byte is taken.
    const std::string& Line() const { return line_; }
    /// Drops what came of a line so far.
    void Forget();

  private:
    std::string line_;
    bool ended_ = false;
    bool overlong_ = false;
    bool afterReturn_ = false;
};

/// What goes back for one line, its own end included.
std::string SerialReply(LineAssembler::Event event, const std::string& line);

/// Reads `DEVICE[:BAUD]`. False, with `fault` saying why, for an unknown speed.
bool SerialPortRead(const std::string& text, SerialPort& port, std::string& fault);

/// Opens the port raw and serves it on a thread of its own until the process ends; a device that goes away is
/// opened again when it is back. A reply for which there is no memory is not sent. False, with `fault` saying
/// why, when it cannot be opened now.
bool SerialStart(const SerialPort& port, std::string& fault);
