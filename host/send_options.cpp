#include "host/send_options.h"

#include "host/command_line.h"
#include "include/vorn_contract.h"

namespace {

constexpr const char* Footer =
    "Examples:\n"
    "  vorn-send Create PLANT1                          make a project\n"
    "  vorn-send AddNode PLANT1 '{\"VornModuleID\":3000,\"NodeName\":\"FLUID\"}'\n"
    "  vorn-send Get PLANT1_GTemp                       read a variable\n"
    "  vorn-send Set PLANT1_GTemp -5                    write it\n"
    "  vorn-send Get json '{\"VarName\":[\"PLANT1_GTemp\",\"PLANT1_GStep\"]}'\n"
    "  vorn-send --file plant.json PjtSent PLANT1       send a whole project document\n"
    "  vorn-send PjtPngGet PLANT1 > plant.svg           save a picture\n"
    "  vorn-send --pipe Fdp PLANT1                      ask over the named pipe\n"
    "\n"
    "  vorn-send --address http://plant.example/vorn Get PLANT1_GTemp            another machine\n"
    "\n"
    "What stands behind -- is no option. The exit status is 0 when the command was carried out, 1 when\n"
    "no reply came, 2 for a command line that cannot be read, and 3 when the service refused.\n"
    "Over https, the environment gives credentials in VORNSERVER_USER and VORNSERVER_PASSWORD, or in\n"
    "VORNSERVER_TOKEN, or names their file in VORNSERVER_CREDENTIALS, and that of certificates in\n"
    "VORNSERVER_CA_FILE.";

/// What the library makes of a flag without a value.
constexpr const char* NoValue = "true";

/// A taker of any text.
ValueTaker TextTaker(std::string& text) {
    return [&text](const std::string& value) {
        text = value;
        return std::string();
    };
}

/// The options for a service behind a proxy.
void AddRemoteOptions(CLI::App& app, CLI::Option* port, SendOptions& options) {
    CLI::Option* address =
        AddValueOption(app, "--address", "URL", "the service behind this address of http or https",
                       [&options](const std::string& value) {
                           std::string fault;
                           SendPlaceRead(value, options.place, fault);
                           return fault;
                       });
    address->excludes(port);
    AddValueOption(app, "--credentials", "FILE",
                   "lines `user NAME` and `password TEXT`, or `token TEXT`; a file of mode 600",
                   TextTaker(options.credentials))
        ->needs(address);
    AddValueOption(app, "--ca-file", "FILE", "the certificates that may sign the service's",
                   TextTaker(options.caFile))
        ->needs(address);
    AddValueOption(app, "--timeout", "N", "seconds without a byte of the reply, 600 unless given",
                   NumberTaker(1, 86400, options.timeout));
}

}  // namespace

std::optional<int> SendOptionsRead(int count, const char* const* arguments, SendOptions& options) {
    CLI::App app("vorn-send: sends one command to a running VornServer and prints the reply.", "vorn-send");
    app.footer(Footer);
    const CLI::Option* command = app.add_option("COMMAND", options.command, "the command's word");
    app.add_option("NAME", options.name, "a project, an element or a variable");
    CLI::Option* messages = app.add_option("MESSAGES", options.messages, "the command's value, often JSON");
    CLI::Option* port = AddValueOption(
        app, "--port", "N", "the service on this port; else the first that answers of 33360 to 33459",
        NumberTaker(1, 65535, options.port));
    std::string pipe;
    // A flag takes a value only behind '=': what follows `--pipe` is the command.
    app.add_flag("--pipe", pipe,
                 "over the first pipe that is served, in place of HTTP; --pipe=N: over VornServerPipeN")
        ->excludes(port)
        ->check([&options](const std::string& row) {
            options.pipe = true;
            return row == NoValue ? std::string() : NumberTaker(0, VORN_PIPE_NAMES - 1, options.row)(row);
        });
    AddRemoteOptions(app, port, options);
    AddValueOption(app, "--file", "FILE", "take MESSAGES from a file, '-' from standard input",
                   TextTaker(options.file))
        ->excludes(messages);
    app.final_callback([command, &options] {
        if (command->count() == 0) throw CLI::RequiredError("COMMAND");
        if (!options.credentials.empty() && !options.place.secure) {
            throw CLI::ValidationError("--credentials", "credentials are sent over https only");
        }
        if (options.pipe && !options.place.origin.empty()) throw CLI::ExcludesError("--address", "--pipe");
    });
    return CommandLineRead(app, count, arguments);
}
