// A real vorn-host in a process of its own, for tests that talk to it over real transports.

#pragma once

#include <httplib.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/system.h"
#include "tests/support/working_folder.h"

/// Starts a copy of the program in a fresh folder, so that it is a server of its own directory, and waits
/// until it has said its port or has ended; ends it at the latest when the object goes. Exchanges are not
/// printed unless the arguments say so, since nobody may read them.
class HostProcess {
  public:
    /// `program` runs another host's program in the place of a copy.
    explicit HostProcess(const std::vector<std::string>& arguments = {"--quiet"},
                         const std::string& program = "");

    /// The port that it told, 0 when it ended without one.
    int Port() const { return port_; }
    const std::string& Program() const { return program_; }
    /// What it has printed so far.
    const std::string& Output() const { return output_; }
    /// Reads on until a line with `mark` is whole, and gives what stands behind the mark; the empty text when
    /// none came in 20 seconds.
    std::string WaitFor(const std::string& mark);
    /// The reply to a command over HTTP; its texts are put into JSON as they are.
    std::string Ask(const std::string& command, const std::string& name, const std::string& messages = "");
    unsigned Number() const { return process_->Number(); }
    httplib::Client Client() const { return httplib::Client("127.0.0.1", port_); }
    /// Asks it to end and gives its exit status, -1 when it did not end by itself.
    int End();

  private:
    TemporaryFolder folder_;
    std::string output_;
    std::string program_;
    std::unique_ptr<ChildProcess> process_;
    int port_ = 0;
};
