// All ways into a real host at once, and the client program over both of its transports.

#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "host/pipe_rows.h"
#include "tests/support/host_process.h"
#include "tests/support/service_test.h"

namespace {

using std::string;

/// One request over one of the three transports; gives the reply.
using Asker = std::function<string(const string& command, const string& name, const string& messages)>;

Asker OverHttp(const HostProcess& host) {
    auto client = std::make_shared<httplib::Client>(host.Client());
    client->set_keep_alive(true);
    client->set_tcp_nodelay(true);
    return [client](const string& command, const string& name, const string& messages) {
        const string body =
            R"({"command":")" + command + R"(","name":")" + name + R"(","messages":")" + messages;
        const auto reply = client->Post("/api", body + "\"}", "application/json");
        return reply ? reply->body : "no reply";
    };
}

Asker OverPipe(int row) {
    return [row](const string& command, const string& name, const string& messages) {
        string reply;
        string fault;
        return PipeRowAsk(row, command + "/" + name + "/" + messages, reply, fault) ? reply : fault;
    };
}

Asker OverSerial(const SerialLink& terminal) {
    return [&terminal](const string& command, const string& name, const string& messages) {
        terminal.Write(command + "/" + name + (messages.empty() ? "" : "/") + messages + "\r");
        return terminal.ReadLine();
    };
}

/// Writes and reads one variable and holds every reply against its request. Gives the lines that the host is
/// to print.
std::vector<string> Exercise(const Asker& ask, const string& project, const string& variable,
                             const string& front) {
    std::vector<string> log;
    const auto Expect = [&](const string& side, const Exchange& row) {
        EXPECT_EQ(ask(row.command, row.name, row.messages), row.reply) << row.command << " " << row.name;
        log.push_back(side + front + " " + row.command + " " + row.name + " '" + row.messages + "' '" +
                      row.reply + "'");
    };
    for (int round = 0; round < 200; ++round) {
        const string value = std::to_string(round);
        Expect("write  ", {"Set", variable, value, "OK"});
        Expect("read   ", {"Get", variable, "", value + ".000000"});
        if (front != "serial") Expect("read   ", {"Fdp", project, variable, "1"});
    }
    return log;
}

/// The lines of `lines` of one side that name `variable`, in order.
std::vector<string> LinesOf(std::vector<string> lines, const string& side, const string& variable) {
    std::erase_if(lines, [&](const string& line) {
        return !line.starts_with(side) ||
               (line.find(variable + " ") == string::npos && line.find("'" + variable + "'") == string::npos);
    });
    return lines;
}

TEST(FrontEndsThreadsTest, AnswerAllWaysAtOnceAndLogEachExchangeWhole) {
    const SerialLink terminal;
    if (!terminal.Made()) GTEST_SKIP() << terminal.Lacks();
    HostProcess host({"--serial", terminal.Device()});
    const string pipe = host.WaitFor("holds the pipe VornServerPipe");
    ASSERT_NE(pipe, "") << host.Output();
    for (int project = 0; project < 8; ++project) {
        // Each over a connection of its own: one that stays open keeps a worker from the clients below.
        ASSERT_EQ(OverHttp(host)("Create", "P" + std::to_string(project), ""), "OK");
    }

    struct Client {
        Asker ask;
        string project, variable;
        string front;
        std::vector<string> log{};
    };
    std::vector<Client> clients;
    for (int client = 0; client < 11; ++client) {
        const string project = "P" + std::to_string(client % 8);
        const string variable = project + (client < 8 ? "_GTemp" : "_WAll");
        const string front = client < 8 ? "http/127.0.0.1" : client < 10 ? "pipe" : "serial";
        const Asker ask = client < 8 ? OverHttp(host) : OverPipe(std::stoi(pipe));
        clients.push_back({client < 10 ? ask : OverSerial(terminal), project, variable, front});
    }
    std::thread reader([&host] { host.WaitFor("VornServer has ended"); });
    std::vector<std::thread> threads;
    threads.reserve(clients.size());
    for (Client& each : clients) {
        threads.emplace_back(
            [&each] { each.log = Exercise(each.ask, each.project, each.variable, each.front); });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(host.End(), 0);
    reader.join();
    for (const Client& client : clients) {
        for (const char* side : {"read   ", "write  "}) {
            EXPECT_EQ(LinesOf(Split(host.Output(), '\n'), side, client.variable),
                      LinesOf(client.log, side, client.variable));
        }
    }
}

/// Runs a program with arguments, told in one text with blanks between them, and gives it its standard input;
/// gives its output and its exit status.
std::pair<string, int> RunProgram(const std::filesystem::path& program, const string& arguments,
                                  const string& input = "") {
    ChildProcess process(program, Split(arguments, ' '), std::filesystem::current_path(), input);
    string text;
    while (process.Read(text)) continue;
    return {text, process.Wait()};
}

TEST(SendThreadsTest, SendsOneCommandOverEitherTransport) {
    HostProcess host({"--metrics"});
    const string row = host.WaitFor("holds the pipe VornServerPipe");
    const string port = "--port " + std::to_string(host.Port()) + " ";
    const string pipe = "--pipe=" + row + " ";
    const TemporaryFolder folder;
    const string batch = (folder.Path() / "batch.json").string();
    const string content = "{\"VarName\":[\"PLANT1_GTemp\"],\r\n\t\"VarValue\":[\"4\"]}";
    std::ofstream(batch, std::ios::binary) << content;
    const struct {
        string arguments, output;
        int status;
        string input = {};
    } cases[] = {
        {port + "Create plant1", "OK\n", 0},
        {"Fdp", "0\n", 0},
        {"--pipe Fdp", "0\n", 0},
        {port + "Set PLANT1_GTemp -5", "OK\n", 0},
        {pipe + "Get PLANT1_GTemp", "-5.000000\n", 0},
        {port + "Set json --file " + batch, "[\"OK\"]\n", 0},
        {"--file=- " + port + "Get json", "[\"4.000000\"]\n", 0, content},
        {pipe + "Get json --file " + batch, "[\"4.000000\"]\n", 0},
        {port + "Create PLANT2 [1,\\n\"2\t\"]", "OK\n", 0},
        {port + "-- --none", "项目名称找不到(project Char error)\n", 3},
        {port + "Get PLANT1_No", "none varname 找不到变量名称\n", 3},
        {port + R"(Get json {"VarName":["PLANT1_GTemp","X"]})", "[\"4.000000\",\"none", 3},
        {port + "PjtInfoChk PLANT1", "{", 0},
        {"--address http://127.0.0.1:" + std::to_string(host.Port()) + "/ Fdp PLANT1", "1\n", 0},
        {pipe + "a/b", "vorn-send: COMMAND and NAME cannot hold '/' on the pipe\n", 2},
        {"--port 9 Fdp P", "vorn-send: no answer on port 9 (Connection)\n", 1},
        {"--port 9360 Fdp P", "vorn-send: no answer on port 9360 (status 400)\n", 1},
    };
    for (const auto& each : cases) {
        const auto [output, status] = RunProgram(ProgramBeside("vorn-send"), each.arguments, each.input);
        EXPECT_TRUE(output.starts_with(each.output)) << each.arguments << ": " << output;
        EXPECT_EQ(status, each.status) << each.arguments;
    }
    EXPECT_EQ(host.WaitFor("write  http/127.0.0.1 Create PLANT2 "), R"('[1,\n"2\x09"]' 'OK')");
    string counters;
    for (int look = 0; look < 2000 && counters.find("command=\"Create\"} 2\n") == string::npos; ++look) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        counters = httplib::Client("127.0.0.1", 9360).Get("/metrics")->body;
    }
    EXPECT_NE(counters.find("vornserver_exchanges_total{side=\"write\",command=\"Create\"} 2\n"),
              string::npos);
}

TEST(CommandLineTest, TellsWhatIsWrong) {
    const std::filesystem::path host = ProgramBeside("vorn-host");
    const std::filesystem::path send = ProgramBeside("vorn-send");
    const string null = NullDevice;
    const struct {
        std::filesystem::path program;
        string arguments, output;
        int status;
    } cases[] = {
        {host, "--serial", "vorn-host: --serial: 1 required DEVICE[:BAUD] missing\n", 2},
        {host, "--serial --quiet", "vorn-host: --serial: needs DEVICE[:BAUD] before --quiet\n", 2},
        {host, "--serial " + null + ":7", "vorn-host: --serial: unknown speed '7' of the serial port;", 2},
        {host, "--serial " + null, "vorn-host: " + null + " is no serial port\n", 1},
        {host, "--console --serial " + null, "vorn-host: " + null + " is no serial port\n", 1},
        {host, "--console a:b", "vorn-host: --console: cannot read 'a:b' as ADDRESS:PORT\n", 2},
        {host, "--console a:33360", "vorn-host: --console: the ports 33360 to 33459 are the service's own\n",
         2},
        {host, "--quite", "vorn-host: The following argument was not expected: --quite\n", 2},
        {host, "--version", "vorn-host " VORN_VERSION "\n", 0},
        {send, "--version", "vorn-send " VORN_VERSION "\n", 0},
        {send, "--help", "vorn-send: sends one command", 0},
        {send, "--port 33360", "vorn-send: COMMAND is required\n", 2},
        {send, "--port 0 Fdp", "vorn-send: --port: '0' is no number from 1 to 65535\n", 2},
        {send, "--port 7x Fdp", "vorn-send: --port: '7x' is no number from 1 to 65535\n", 2},
        {send, "--pipe=100 Fdp", "vorn-send: --pipe: '100' is no number from 0 to 99\n", 2},
        {send, "--pipe --port 9 Fdp", "vorn-send: --port excludes --pipe\n", 2},
        {send, "--file F A B C", "vorn-send: MESSAGES excludes --file\n", 2},
        {send, "--address ftp://a A", "vorn-send: --address: an address is of the form ", 2},
        {send, "--address http://a:b@c A", "vorn-send: --address: a name and a password do not belong ", 2},
        {send, "--address http://a --credentials F A",
         "vorn-send: --credentials: credentials are sent over https only\n", 2},
        {send, "--address https://a --credentials /none A",
         "vorn-send: --address: this vorn-send has no https yet\n", 2},
        {send, "--file /none A", "vorn-send: cannot read the file '/none': ", 2},
    };
    for (const auto& each : cases) {
        const auto [output, status] = RunProgram(each.program, each.arguments);
        EXPECT_TRUE(output.starts_with(each.output)) << each.arguments << ": " << output;
        EXPECT_EQ(status, each.status) << each.arguments;
    }
}

}  // namespace
