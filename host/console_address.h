// Where the console and the counters listen.

#pragma once

#include <string>

/// Ports that are tried for the console where none is asked for.
inline constexpr int FirstConsolePort = 8360;
inline constexpr int LastConsolePort = 8459;

struct ConsoleAddress {
    std::string host = "127.0.0.1";
    int port = 0;  ///< 0: the first free one

    /// True for the addresses that stand for all of the machine's.
    bool IsEverywhere() const { return host == "0.0.0.0" || host == "::"; }
};

/// Reads `ADDRESS:PORT`, an IPv6 address in brackets, or `ADDRESS` alone. False, with `fault` giving the
/// reason, for any other text and for a port that the library may take itself.
bool ConsoleAddressRead(const std::string& text, ConsoleAddress& address, std::string& fault);

/// The port as it stands behind a host, with its colon; empty for the one that links have by themselves.
std::string PortText(int port);

/// The beginning of a link to that host and port, `http://HOST:PORT`, an IPv6 address in brackets.
std::string LinkTo(const std::string& host, int port);
