#include "host/options.h"

#include "host/command_line.h"

namespace {

constexpr const char* Footer =
    "Clients POST JSON to http://127.0.0.1:PORT/api; the port is the first free one of 33360\n"
    "to 33459 and is printed at the start. Projects are stored in ../AlgProject/, seen from\n"
    "the working directory. Local programs may use the pipe that is printed too; vorn-send\n"
    "speaks both. Ctrl-C ends the program.";

/// An option that may stand without its value, for the address that `address` has at first.
void AddAddressOption(CLI::App& app, const std::string& name, const std::string& text,
                      std::optional<ConsoleAddress>& address) {
    AddValueOption(app, name, "ADDRESS:PORT", text, [&address](const std::string& value) {
        std::string fault;
        address.emplace();
        if (!value.empty()) ConsoleAddressRead(value, *address, fault);
        return fault;
    })->expected(0, 1);
}

}  // namespace

std::optional<int> OptionsRead(int count, const char* const* arguments, Options& options) {
    CLI::App app("vorn-host: runs VornServer as a program of its own.", "vorn-host");
    app.footer(Footer);
    AddValueOption(app, "--serial", "DEVICE[:BAUD]",
                   "answer lines that come over a serial port (115200 baud if none is given)",
                   [&options](const std::string& text) {
                       std::string fault;
                       SerialPortRead(text, options.serial.emplace(), fault);
                       return fault;
                   });
    AddAddressOption(
        app, "--console",
        "show the plants to a browser there; where not told at 127.0.0.1, first free port from 8360",
        options.console);
    app.add_flag_callback(
        "--no-console", [&options] { options.console.reset(); }, "show nothing to browsers");
    AddAddressOption(
        app, "--metrics",
        "serve counters of the exchanges there, for Prometheus; where not told at 127.0.0.1:9360",
        options.metrics);
    app.add_flag("--quiet", options.quiet, "do not print the exchanges with clients");
    app.add_flag("--trace", options.trace, "print each call that crosses to the engine, on standard error");
    return CommandLineRead(app, count, arguments);
}
