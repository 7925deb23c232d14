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
    "What stands behind -- is no option. The exit status is 0 when an answer came, whatever it\n"
    "says, 1 when none did, and 2 for a command line that cannot be read.";

/// What the library makes of a flag without a value.
constexpr const char* NoValue = "true";

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
    AddValueOption(app, "--file", "FILE", "take MESSAGES from a file, '-' from standard input",
                   [&options](const std::string& name) {
                       options.file = name;
                       return std::string();
                   })
        ->excludes(messages);
    app.final_callback([command] {
        if (command->count() == 0) throw CLI::RequiredError("COMMAND");
    });
    return CommandLineRead(app, count, arguments);
}
