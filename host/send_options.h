// The command line of vorn-send.

#pragma once

#include <optional>
#include <string>

struct SendOptions {
    bool pipe = false;
    int row = -1;   ///< of the pipe; -1 for the first that is served
    int port = -1;  ///< -1 for the first that answers
    std::string file;
    std::string command, name, messages;
};

/// Reads the command line. Nothing when the command is to be sent; otherwise the status to end with, after
/// help, version or the fault was printed.
std::optional<int> SendOptionsRead(int count, const char* const* arguments, SendOptions& options);
