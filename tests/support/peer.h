// Parts of tests that run in a process of their own: this very program, started again.

#pragma once

#include <string>

#include "tests/support/system.h"

/// Gives a name to what such a process does. Its result is the exit status.
class Peer {
  public:
    using Run = int (*)(const std::string& argument);
    Peer(const char* name, Run run);
};

/// Starts the peer of that name, in the working folder of this process.
ChildProcess PeerStart(const std::string& name, const std::string& argument = "");
