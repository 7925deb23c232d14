// Whose requests the console serves.

#pragma once

#include <httplib.h>

#include <string>

#include "host/console_address.h"

/// Where the console listens.
struct ConsolePlace {
    ConsoleAddress address{};
    std::string portText{};  ///< `PortText` of the port that it has
};

/// True for a request whose `Host` is the console's own, by number or as `localhost`, and whose `Origin`,
/// where there is one, is the console itself: no page of the web reaches a plant.
bool FromOwnPage(const ConsolePlace& place, const httplib::Request& request);
