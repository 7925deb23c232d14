// vorn-send: sends one command to a running service and prints the reply, for people and scripts.

#include <httplib.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdio>
#include <iostream>
#include <iterator>
#include <string>
#include <utility>

#include "host/pipe_rows.h"
#include "host/program_start.h"
#include "host/send_options.h"
#include "include/vorn_contract.h"
#include "platform/fault_text.h"
#include "platform/file_text.h"

namespace {

constexpr int AnswerSeconds = 600;

/// The whole of a file, or of standard input for "-".
bool MessagesRead(const std::string& file, std::string& messages, std::error_code& fault) {
    if (file != "-") return vorn::FileRead(file, messages.max_size(), messages, fault);
    messages.assign(std::istreambuf_iterator<char>(std::cin), {});
    return true;
}

std::string EnvelopeOf(const SendOptions& options) {
    rapidjson::StringBuffer envelope;
    rapidjson::Writer<rapidjson::StringBuffer> writer(envelope);
    writer.StartObject();
    for (const auto& [key, text] : {std::pair("command", &options.command), std::pair("name", &options.name),
                                    std::pair("messages", &options.messages)}) {
        writer.Key(key);
        writer.String(*text);
    }
    writer.EndObject();
    return {envelope.GetString(), envelope.GetSize()};
}

int PortFind() {
    for (int port = VORN_FIRST_PORT; port <= VORN_LAST_PORT; ++port) {
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
        fault = "no service answers on the ports " + std::to_string(VORN_FIRST_PORT) + " to " +
                std::to_string(VORN_LAST_PORT) + "; is vorn-host running?";
        return false;
    }
    httplib::Client client("127.0.0.1", port);
    client.set_read_timeout(AnswerSeconds);
    client.set_write_timeout(AnswerSeconds);
    client.set_tcp_nodelay(true);  // head and body are two writes
    const auto answer = client.Post("/api", EnvelopeOf(options), "application/json");
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
        return Fail(2, "cannot read the file '" + options.file + "': " + vorn::FaultText(unread));
    }
    std::string fault;
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
