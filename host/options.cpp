#include "host/options.h"

#include <string_view>

const char* const HelpText =
    "vorn-host: runs VornServer as a program of its own.\n"
    "\n"
    "  vorn-host [--serial DEVICE[:BAUD]] [--quiet] [--trace]\n"
    "\n"
    "  --serial DEVICE[:BAUD]  answer lines that come over a serial port (115200 baud if none is given)\n"
    "  --quiet                 do not print the exchanges with clients\n"
    "  --trace                 print each call that crosses to the engine, on standard error\n"
    "  --help                  print this text\n"
    "\n"
    "Clients POST JSON to http://127.0.0.1:PORT/api; the port is the first free one of 33360\n"
    "to 33459 and is printed at the start. Projects are stored in ../AlgProject/, seen from\n"
    "the working directory. Local programs may use the pipe that is printed too; vorn-send\n"
    "speaks both. Ctrl-C ends the program.\n";

bool OptionsRead(int count, char** arguments, Options& options, std::string& fault) {
    for (int index = 1; index < count; ++index) {
        const std::string_view argument = arguments[index];
        if (argument == "--help") {
            options.help = true;
        } else if (argument == "--trace") {
            options.trace = true;
        } else if (argument == "--quiet") {
            options.quiet = true;
        } else if (argument == "--serial" && index + 1 < count) {
            if (!SerialPortRead(arguments[++index], options.serial.emplace(), fault)) return false;
        } else {
            fault = "cannot read the option '" + std::string(argument) + "'; --help tells the options";
            return false;
        }
    }
    return true;
}
