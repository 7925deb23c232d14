// The console: a second small HTTP server of the host program, which shows the plants to a person's browser.
// It serves the page's files, passes `/api` on to the library's own port, and tells the log of exchanges.

#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Ports that are tried where none is asked for.
inline constexpr int FirstConsolePort = 8360;
inline constexpr int LastConsolePort = 8459;

/// Where the console listens.
struct ConsoleAddress {
    std::string host = "127.0.0.1";
    int port = 0;  ///< 0: the first free one
};

/// Reads `ADDRESS:PORT`, an IPv6 address in brackets, or `ADDRESS` alone. False, with `fault` saying why, for
/// any other text and for a port that the library may take itself.
bool ConsoleAddressRead(const std::string& text, ConsoleAddress& address, std::string& fault);

/// The beginning of a link to that host and port, `http://HOST:PORT`: an IPv6 address in brackets, and
/// without the port where it is the one that links have by themselves.
std::string LinkTo(const std::string& host, int port);

/// The folder of the page's files: `../share/vornserver/console`, seen from the program.
std::filesystem::path ConsoleFolder();

/// Starts the console, once in a process, on threads of its own. `folder` holds the page's files, which are
/// read once. `servicePort` is where `/api` goes. Gives the link to open; the empty text, with `fault` saying
/// why, when there is no page or no free port.
///
/// Served are only requests whose `Host` is the console's own, by number or as `localhost`, and whose
/// `Origin`, where there is one, is the console itself: all others get 403, so that no page of the web
/// reaches a plant. A body may have 64 MB; a head has 5 seconds to come and a body 10. A service that gives no answer is told with 502.
///
/// `GET /log?after=N` gives `{"next":N,"lines":[{"number":N,"time":MILLISECONDS,"text":"..."}]}`: the
/// lines behind number N that are still kept, 500 at most, the time since 1970.
std::string ConsoleStart(const ConsoleAddress& address, const std::filesystem::path& folder, int servicePort,
                         std::string& fault);

/// Keeps lines of the log of exchanges for `/log`, each with its end, in UTF-8 without control characters;
/// the last 2000, of which each is cut at 4000 bytes. Any thread; never waits for a browser.
void ConsoleLog(std::string_view lines);
