#include "service/api_envelope.h"

#include "service/exchange.h"
#include "text/json_slice.h"
#include "variables/var_batch.h"

namespace vorn {

namespace {

/// What the members of an envelope hold.
struct Envelope {
    std::string midHeader{};
    std::string midData{};
    std::string midValue{};
    std::string text{};       ///< the body, in which the texts of `document` stay
    JsonDocument document{};  ///< kept for a batch alone: it is many times the size of a body of small values
    const JsonValue* batch = nullptr;  ///< what `midValue` is the text of; null where it is no batch
};

/// True where `messages` is a batch that gives the same document when it is written to text and parsed again.
bool IsBatch(const Envelope& envelope, const JsonValue& messages, const JsonSlice& slice) {
    return envelope.midData == BatchName && messages.IsObject() && !slice.reals;
}

/// Reads `messages`: a text as it is, any other value as its JSON text; empty when absent.
void MessagesRead(const std::string& body, const JsonSlice& slice, Envelope& envelope) {
    constexpr const char* Messages = "messages";
    if (FieldText(envelope.document, Messages, envelope.midValue) != Field::WrongType) return;
    const JsonValue& messages = envelope.document.FindMember(Messages)->value;
    envelope.midValue = JsonTextOf(messages, slice, body);
    if (IsBatch(envelope, messages, slice)) envelope.batch = &messages;
}

/// False for a body that is no JSON object.
bool EnvelopeRead(const std::string& body, Envelope& envelope) {
    JsonSlice messages;
    envelope.text.assign(body, 0, body.find('\0'));
    JsonParseInPlace(envelope.text.data(), envelope.document, "messages", messages);
    if (!envelope.document.IsObject()) return false;
    FieldText(envelope.document, "command", envelope.midHeader);
    FieldText(envelope.document, "name", envelope.midData);
    MessagesRead(body, messages, envelope);
    if (envelope.batch != nullptr) return true;
    envelope.document = JsonDocument();
    envelope.text = std::string();
    return true;
}

}  // namespace

void ApiEnvelope(const std::string& body, std::string& reply, const Caller& caller) {
    Envelope envelope;
    if (!EnvelopeRead(body, envelope)) {
        reply = "API调用格式错误";
        ExchangeRefused(caller, body, reply);
        return;
    }
    ExchangeRun(caller, envelope.midHeader, envelope.midData, envelope.midValue, reply, envelope.batch);
}

}  // namespace vorn
