// What a command is given, and the form of its handler.

#pragma once

#include <string>

#include "elements/instance_id.h"

namespace vorn {

/// What the frame worked out of one request. It lives for the handler's call.
struct Request {
    const std::string& name;      ///< as it came in
    const std::string& messages;  ///< for the command to read
    int pjtnb = -1;               ///< the slot, 0 to 7; -1 for a command on a new project
    int midstate = -1;            ///< the element's kind, 1 to 4; set for element commands
    int midnb = -1;               ///< the element's number, 0 or above; set for element commands
};

/// Carries a command out and gives its reply. All bad input gets a reply that says so.
using Handler = std::string (*)(const Request&);

}  // namespace vorn
