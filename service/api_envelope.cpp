#include "service/api_envelope.h"

#include "service/dispatcher.h"
#include "service/service_locks.h"
#include "text/json.h"

namespace vorn {

namespace {

/// A text as it is, any other value as its JSON text; empty when absent.
std::string MessagesText(const JsonValue& envelope) {
    const auto messages = envelope.FindMember("messages");
    if (messages == envelope.MemberEnd()) return {};
    const JsonValue& value = messages->value;
    return value.IsString() ? std::string(value.GetString(), value.GetStringLength()) : JsonText(value);
}

}  // namespace

void ApiEnvelope(const std::string& body, std::string& reply) {
    JsonDocument envelope;
    JsonParse(body.c_str(), envelope);
    if (!envelope.IsObject()) {
        reply = "API调用格式错误";
        return;
    }
    std::string midHeader;
    std::string midData;
    FieldText(envelope, "command", midHeader);
    FieldText(envelope, "name", midData);
    const std::string midValue = MessagesText(envelope);

    const std::lock_guard guard(DispatchLock);
    ServerDispatch(midHeader, midData, midValue, reply);
}

}  // namespace vorn
