// vorn-send: sends one command to a running service and prints the reply, for people and scripts.

#include <httplib.h>

#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "host/own_port.h"
#include "host/pipe_client.h"

namespace {

constexpr int AnswerSeconds = 600;

const char* const HelpText =
    "vorn-send: sends one command to a running VornServer and prints the reply.\n"
    "\n"
    "  vorn-send [options] COMMAND [NAME [MESSAGES]]\n"
    "\n"
    "  --port N     the service on this port; else the first that answers of 33360 to 33459\n"
    "  --pipe       over the first pipe that is served, in place of HTTP\n"
    "  --pipe=N     over the pipe VornServerPipeN\n"
    "  --file FILE  take MESSAGES from a file, '-' from standard input\n"
    "  --           what follows is no option\n"
    "  --help       print this text\n"
    "\n"
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
    "The exit status is 0 when an answer came, whatever it says, 1 when none did, and 2 for a\n"
    "command line that cannot be read.\n";

struct SendOptions {
    bool help = false;
    bool pipe = false;
    int row = -1;   ///< of the pipe; -1 for the first that is served
    int port = -1;  ///< -1 for the first that answers
    std::string file;
    std::vector<std::string> texts;  ///< command, name, messages
};

bool NumberRead(std::string_view text, int most, int& number) {
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size() && number >= 0 && number <= most;
}

/// The value of the option at `index`: what stands behind its `=`, else the next argument.
bool OptionValue(const std::vector<std::string>& arguments, std::size_t& index, std::string_view option,
                 std::string& value) {
    const std::string& argument = arguments[index];
    if (argument.starts_with(std::string(option) + "=")) {
        value = argument.substr(option.size() + 1);
        return true;
    }
    if (argument != option || index + 1 == arguments.size()) return false;
    value = arguments[++index];
    return true;
}

/// Reads the option at `index`; false when it is none or has a wrong value.
bool OptionRead(const std::vector<std::string>& arguments, std::size_t& index, SendOptions& options) {
    const std::string& argument = arguments[index];
    std::string value;
    if (argument == "--help") return options.help = true;
    if (argument == "--pipe") return options.pipe = true;
    if (argument.starts_with("--pipe=")) {
        options.pipe = true;
        return OptionValue(arguments, index, "--pipe", value) && NumberRead(value, PipeRows - 1, options.row);
    }
    if (argument.starts_with("--port")) {
        return OptionValue(arguments, index, "--port", value) && NumberRead(value, 65535, options.port);
    }
    return OptionValue(arguments, index, "--file", options.file) && !options.file.empty();
}

bool OptionsRead(const std::vector<std::string>& arguments, SendOptions& options, std::string& fault) {
    bool optionsEnded = false;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string& argument = arguments[index];
        if (optionsEnded || !argument.starts_with("--")) {
            options.texts.push_back(argument);
        } else if (argument == "--") {
            optionsEnded = true;
        } else if (!OptionRead(arguments, index, options)) {
            fault = "cannot read the option '" + argument + "'";
            return false;
        }
    }
    if (options.help) return true;
    if (options.texts.empty()) fault = "no command is given";
    if (options.texts.size() > 3) fault = "more than COMMAND NAME MESSAGES is given; quote texts with blanks";
    if (options.texts.size() == 3 && !options.file.empty()) fault = "MESSAGES is given twice";
    if (options.pipe && options.port >= 0) fault = "give --pipe or --port, not both";
    options.texts.resize(3);
    return fault.empty();
}

bool FileRead(const std::string& name, std::string& text) {
    std::FILE* file = name == "-" ? stdin : std::fopen(name.c_str(), "rb");
    if (file == nullptr) return false;
    char bytes[65536];
    for (std::size_t count = 1; count > 0;) {
        count = std::fread(bytes, 1, sizeof bytes, file);
        text.append(bytes, count);
    }
    const bool whole = std::ferror(file) == 0;
    std::fclose(file);
    return whole;
}

/// `text` in JSON quotes, byte for byte.
std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') quoted += '\\';
        if (static_cast<unsigned char>(character) >= 0x20) {
            quoted += character;
        } else {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04X", static_cast<unsigned>(character));
            quoted += code;
        }
    }
    return quoted + '"';
}

int PortFind() {
    for (int port = FirstPort; port <= LastPort; ++port) {
        httplib::Client client("127.0.0.1", port);
        client.set_connection_timeout(1);
        client.set_read_timeout(1);
        const auto reply = client.Get("/hi");
        if (reply && reply->body == "Hello Quelmo!\n") return port;
    }
    return -1;
}

bool HttpSend(const SendOptions& options, std::string& reply, std::string& fault) {
    const int port = options.port >= 0 ? options.port : PortFind();
    if (port < 0) {
        fault = "no service answers on the ports " + std::to_string(FirstPort) + " to " +
                std::to_string(LastPort) + "; is vorn-host running?";
        return false;
    }
    httplib::Client client("127.0.0.1", port);
    client.set_read_timeout(AnswerSeconds);
    client.set_write_timeout(AnswerSeconds);
    client.set_tcp_nodelay(true);  // head and body are two writes
    const auto answer =
        client.Post("/api",
                    R"({"command":)" + Quoted(options.texts[0]) + R"(,"name":)" + Quoted(options.texts[1]) +
                        R"(,"messages":)" + Quoted(options.texts[2]) + "}",
                    "application/json");
    if (!answer || answer->status != 200) {
        const std::string why =
            answer ? "status " + std::to_string(answer->status) : httplib::to_string(answer.error());
        fault = "no answer on port " + std::to_string(port) + " (" + why + ")";
        return false;
    }
    reply = answer->body;
    return true;
}

bool PipeSend(const SendOptions& options, std::string& reply, std::string& fault) {
    const int row = options.row >= 0 ? options.row : PipeRowFind(true);
    if (row < 0) {
        fault = "no server holds a pipe; is vorn-host running?";
        return false;
    }
    // With both slashes also a short command has the five bytes below which nothing is split.
    return PipeAsk(row, options.texts[0] + "/" + options.texts[1] + "/" + options.texts[2], reply, fault);
}

/// A text that the pipe cannot carry as it is.
bool PipeCarries(const SendOptions& options, std::string& fault) {
    if ((options.texts[0] + options.texts[1]).find('/') != std::string::npos) {
        fault = "COMMAND and NAME cannot hold '/' on the pipe";
    }
    if (options.texts[2].find('\0') != std::string::npos) {
        fault = "MESSAGES cannot hold a zero byte on the pipe";
    }
    return fault.empty();
}

int Fail(int status, const std::string& fault) {
    std::fprintf(stderr, "vorn-send: %s\n", fault.c_str());
    if (status == 2) std::fputs("vorn-send --help tells the usage\n", stderr);
    return status;
}

}  // namespace

int main(int count, char** arguments) {
    SendOptions options;
    std::string fault;
    if (!OptionsRead({arguments + 1, arguments + count}, options, fault)) return Fail(2, fault);
    if (options.help) {
        std::fputs(HelpText, stdout);
        return 0;
    }
    if (!options.file.empty() && !FileRead(options.file, options.texts[2])) {
        return Fail(2, "cannot read the file '" + options.file + "'");
    }
    if (options.pipe && !PipeCarries(options, fault)) return Fail(2, fault);
    std::string reply;
    const bool answered = (options.pipe ? PipeSend : HttpSend)(options, reply, fault);
    if (!answered) return Fail(1, fault);
    reply += '\n';
    if (std::fwrite(reply.data(), 1, reply.size(), stdout) != reply.size() || std::fflush(stdout) != 0) {
        return Fail(1, "the reply cannot be written");
    }
    return 0;
}
