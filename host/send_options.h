// The command line of vorn-send.

#pragma once

#include <optional>
#include <string>

#include "host/send_place.h"

struct SendOptions {
    bool pipe = false;
    int row = -1;             ///< of the pipe; -1 for the first that is served
    int port = -1;            ///< -1 for the first that answers
    SendPlace place;          ///< of the address; without origin where none is given
    std::string credentials;  ///< their file; empty for those of the environment
    Credentials found;        ///< read before the command is sent, for https only
    std::string caFile;       ///< of certificates; empty for the environment's, else the system's
    int timeout = 600;        ///< seconds without a byte of the reply
    std::string file;
    std::string command, name, messages;
};

/// Reads the command line. Nothing when the command is to be sent; otherwise the status to end with, after
/// help, version or the fault was printed.
std::optional<int> SendOptionsRead(int count, const char* const* arguments, SendOptions& options);
