// The console: a second small HTTP server of the host program, which shows the plants to a person's browser.
// It serves the page's files, takes the page's commands, and gives the records of events.

#pragma once

#include <filesystem>
#include <string>

#include "host/console_address.h"

/// Starts the console, once in a process, on threads of its own. `folder` holds the page's files, which are
/// read once. Returns the link to open; the empty text, with `fault` giving the reason, when there is no page
/// or no free port.
///
/// Served are only requests of its own page (`FromOwnPage`); all others get 403. A body may have 64 MB.
///
/// `POST /api` runs a command as the service's own port does. `GET /events?after=N` gives `EventsJson`.
std::string ConsoleStart(const ConsoleAddress& address, const std::filesystem::path& folder,
                         std::string& fault);
