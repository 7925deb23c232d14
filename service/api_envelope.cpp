#include "service/api_envelope.h"

#include "service/exchange.h"
#include "text/json.h"

namespace vorn {

namespace {

/// What the members of an envelope hold.
struct Triple {
    std::string midHeader;
    std::string midData;
    std::string midValue;
};

/// A text as it is, any other value as its JSON text; empty when absent.
std::string MessagesText(const JsonValue& envelope) {
    const auto messages = envelope.FindMember("messages");
    if (messages == envelope.MemberEnd()) return {};
    const JsonValue& value = messages->value;
    return value.IsString() ? std::string(value.GetString(), value.GetStringLength()) : JsonText(value);
}

/// False for a body that is no JSON object. The document, many times the size of a body of small values, ends
/// here and not with the command.
bool EnvelopeRead(const std::string& body, Triple& triple) {
    JsonDocument envelope;
    JsonParse(body.c_str(), envelope);
    if (!envelope.IsObject()) return false;
    FieldText(envelope, "command", triple.midHeader);
    FieldText(envelope, "name", triple.midData);
    triple.midValue = MessagesText(envelope);
    return true;
}

}  // namespace

void ApiEnvelope(const std::string& body, std::string& reply, const Caller& caller) {
    Triple triple;
    if (!EnvelopeRead(body, triple)) {
        reply = "API调用格式错误";
        ExchangeRefused(caller, body, reply);
        return;
    }
    ExchangeRun(caller, triple.midHeader, triple.midData, triple.midValue, reply);
}

}  // namespace vorn
