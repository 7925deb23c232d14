// A serial line without a device: the tests hold its one end, a host opens the other.

#pragma once

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

class PseudoTerminal {
  public:
    PseudoTerminal() : end_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        grantpt(end_);
        unlockpt(end_);
    }
    ~PseudoTerminal() { close(end_); }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    /// What a host opens.
    std::string Device() const { return ptsname(end_); }
    void Write(const std::string& text) const {
        for (std::size_t done = 0; done < text.size();) {
            const ssize_t written = write(end_, text.data() + done, text.size() - done);
            if (written <= 0) return;
            done += static_cast<std::size_t>(written);
        }
    }
    /// The next line without its end; "timeout" when it does not come in 20 seconds.
    std::string ReadLine() const {
        std::string line;
        pollfd readable{.fd = end_, .events = POLLIN, .revents = 0};
        while (poll(&readable, 1, 20000) > 0) {
            char byte = 0;
            if (read(end_, &byte, 1) != 1) break;
            if (byte == '\n' && line.ends_with('\r')) return line.substr(0, line.size() - 1);
            line += byte;
        }
        return line + "timeout";
    }

  private:
    int end_;
};
