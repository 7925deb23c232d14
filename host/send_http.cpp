#include "host/send_http.h"

#include <httplib.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <utility>

#include "include/vorn_contract.h"

namespace {

constexpr int ConnectSeconds = 10;

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

/// The place of the service; `spoken` is what a fault calls it.
bool PlaceFind(const SendOptions& options, SendPlace& place, std::string& spoken, std::string& fault) {
    if (!options.place.origin.empty()) {
        place = options.place;
        spoken = "from " + place.origin + place.path;
        return true;
    }
    const int port = options.port >= 0 ? options.port : PortFind();
    if (port < 0) {
        fault = "no service answers on the ports " + std::to_string(VORN_FIRST_PORT) + " to " +
                std::to_string(VORN_LAST_PORT) + "; is vorn-host running?";
        return false;
    }
    place.origin = "http://127.0.0.1:" + std::to_string(port);
    spoken = "on port " + std::to_string(port);
    return true;
}

void ClientPrepare(const SendOptions& options, const SendPlace& place, httplib::Client& client) {
    client.set_connection_timeout(std::min(options.timeout, ConnectSeconds));
    client.set_read_timeout(options.timeout);
    client.set_write_timeout(options.timeout);
    client.set_tcp_nodelay(true);  // head and body are two writes
    if (!place.secure) return;
#ifdef CPPHTTPLIB_OPENSSL_SUPPORT
    const std::string caFile =
        options.caFile.empty() ? EnvironmentText("VORNSERVER_CA_FILE") : options.caFile;
    if (!caFile.empty()) client.set_ca_cert_path(caFile);
#endif
    const Credentials& credentials = options.found;
    if (!credentials.token.empty()) {
        client.set_bearer_token_auth(credentials.token);
    } else if (!credentials.user.empty()) {
        client.set_basic_auth(credentials.user, credentials.password);
    }
}

std::string WhyNone(const httplib::Result& answer) {
    if (!answer) return httplib::to_string(answer.error());
    const std::string status = "status " + std::to_string(answer->status);
    return answer->status == 401 ? status + ", it asks for other credentials" : status;
}

}  // namespace

bool HttpSend(const SendOptions& options, std::string& reply, std::string& fault) {
    SendPlace place;
    std::string spoken;
    if (!PlaceFind(options, place, spoken, fault)) return false;
    httplib::Client client(place.origin);
    ClientPrepare(options, place, client);
    const auto answer = client.Post(place.path + "/api", EnvelopeOf(options), "application/json");
    if (!answer || answer->status != 200) {
        fault = "no answer " + spoken + " (" + WhyNone(answer) + ")";
        return false;
    }
    reply = answer->body;
    return true;
}
