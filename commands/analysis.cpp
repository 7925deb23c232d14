// The commands that analyse a project's networks and report its topology.

#include <string>

#include "commands/handlers.h"
#include "include/vorn_server.h"
#include "network/net_access.h"

namespace vorn {

std::string NetAccess(const Request& request) {
    return Net_Access(request.pjtnb) ? "OK" : ParseMessageGet();
}

std::string PjtInfoChk(const Request& request) {
    return Net_InfoToAI(request.pjtnb);
}

}  // namespace vorn
