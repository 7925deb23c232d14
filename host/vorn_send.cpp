// vorn-send: sends one command to a running service and prints the reply, for people and scripts.

#include <cstdio>
#include <iostream>
#include <iterator>
#include <string>

#include "host/pipe_rows.h"
#include "host/program_start.h"
#include "host/reply_kind.h"
#include "host/send_http.h"
#include "host/send_options.h"
#include "platform/fault_text.h"
#include "platform/file_text.h"

namespace {

/// What the program ends with.
enum Status { Done = 0, NoReply = 1, BadCall = 2, RefusedByService = 3 };

/// The whole of a file, or of standard input for "-".
bool MessagesRead(const std::string& file, std::string& messages, std::error_code& fault) {
    if (file != "-") return vorn::FileRead(file, messages.max_size(), messages, fault);
    messages.assign(std::istreambuf_iterator<char>(std::cin), {});
    return true;
}

bool PipeSend(const SendOptions& options, std::string& reply, std::string& fault) {
    const int row = options.row >= 0 ? options.row : PipeRowFind();
    if (row < 0) {
        fault = "no server holds a pipe; is vorn-host running?";
        return false;
    }
    // With both slashes also a short command has the five bytes below which nothing is split.
    return PipeRowAsk(row, options.command + "/" + options.name + "/" + options.messages, reply, fault);
}

/// A text that the pipe cannot carry as it is.
bool PipeCarries(const SendOptions& options, std::string& fault) {
    if ((options.command + options.name).find('/') != std::string::npos) {
        fault = "COMMAND and NAME cannot hold '/' on the pipe";
    }
    if (options.messages.find('\0') != std::string::npos) {
        fault = "MESSAGES cannot hold a zero byte on the pipe";
    }
    return fault.empty();
}

int Fail(int status, const std::string& fault) {
    std::fprintf(stderr, "vorn-send: %s\n", fault.c_str());
    return status;
}

}  // namespace

int main(int count, char** arguments) {
    char** const words = ProgramStart(count, arguments);
    SendOptions options;
    const std::optional<int> ended = SendOptionsRead(count, words, options);
    if (ended) return *ended;
    std::error_code unread;
    if (!options.file.empty() && !MessagesRead(options.file, options.messages, unread)) {
        return Fail(BadCall, "cannot read the file '" + options.file + "': " + vorn::FaultText(unread));
    }
    std::string fault;
    if (options.pipe && !PipeCarries(options, fault)) return Fail(BadCall, fault);
    if (options.place.secure && !CredentialsFind(options.credentials, options.found, fault)) {
        return Fail(BadCall, fault);
    }
    std::string reply;
    const bool answered = (options.pipe ? PipeSend : HttpSend)(options, reply, fault);
    if (!answered) return Fail(NoReply, fault);
    const bool refused = ReplyRefuses(options.command, options.name, reply);
    reply += '\n';
    if (std::fwrite(reply.data(), 1, reply.size(), stdout) != reply.size() || std::fflush(stdout) != 0) {
        return Fail(NoReply, "the reply cannot be written");
    }
    return refused ? RefusedByService : Done;
}
