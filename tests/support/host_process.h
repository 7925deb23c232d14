// A real vorn-host in a process of its own, for tests that talk to it over real transports.

#pragma once

#include <httplib.h>
#include <sys/types.h>

#include <string>
#include <vector>

/// Starts a copy of the program in a fresh folder, so that it is a server of its own directory, and waits
/// until it has said its port or has ended; ends it at the latest when the object goes. Exchanges are not
/// printed unless the arguments say so, since nobody may read them.
class HostProcess {
  public:
    /// `program` runs another host's program in the place of a copy.
    explicit HostProcess(std::vector<std::string> arguments = {"--quiet"}, const std::string& program = "");
    ~HostProcess();
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    /// The port that it told, 0 when it ended without one.
    int Port() const { return port_; }
    const std::string& Program() const { return program_; }
    /// What it has printed so far.
    const std::string& Output() const { return output_; }
    /// Reads on until a line with `mark` is whole, and gives what stands behind the mark; the empty text when
    /// none came in 20 seconds.
    std::string WaitFor(const std::string& mark);
    httplib::Client Client() const { return httplib::Client("127.0.0.1", port_); }
    /// Asks it to end and gives its exit status, -1 when it did not end by itself.
    int End();

  private:
    pid_t pid_ = 0;
    int output_fd_ = -1;
    std::string output_;
    std::string folder_;
    std::string program_;
    int port_ = 0;
};
