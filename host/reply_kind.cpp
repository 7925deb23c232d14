#include "host/reply_kind.h"

#include <rapidjson/document.h>

#include <algorithm>
#include <iterator>

#include "host/reply_table.h"

namespace {

using std::string_view;

/// Whether `text` is of the form, in which "{}" stands for anything.
bool FormMatches(string_view form, string_view text) {
    const std::size_t piece = form.find("{}");
    if (piece == string_view::npos) return text == form;
    if (!text.starts_with(form.substr(0, piece))) return false;
    const string_view rest = form.substr(piece + 2);
    for (std::size_t at = piece; at <= text.size(); ++at) {
        if (FormMatches(rest, text.substr(at))) return true;
        if (rest.find("{}") == string_view::npos) return text.substr(at).ends_with(rest);
    }
    return false;
}

bool OneMatches(string_view forms, string_view text) {
    for (;;) {
        const std::size_t end = forms.find('\n');
        if (FormMatches(forms.substr(0, end), text)) return true;
        if (end == string_view::npos) return false;
        forms.remove_prefix(end + 1);
    }
}

bool EntryRefuses(const ReplyRow& row, string_view reply) {
    rapidjson::Document entries;
    entries.Parse(reply.data(), reply.size());
    if (!entries.IsArray()) return true;
    return std::any_of(entries.Begin(), entries.End(), [&row](const rapidjson::Value& entry) {
        return entry.IsString() && OneMatches(row.forms, {entry.GetString(), entry.GetStringLength()});
    });
}

}  // namespace

bool ReplyRefuses(string_view command, string_view name, string_view reply) {
    const bool batch = name == "json" && (command == "Set" || command == "Get");
    const auto* row = std::find_if(std::begin(ReplyTable), std::end(ReplyTable), [&](const ReplyRow& each) {
        return each.word == command && (each.texts == ReplyTexts::Entries) == batch;
    });
    if (row == std::end(ReplyTable)) return true;
    if (row->texts == ReplyTexts::Entries) return EntryRefuses(*row, reply);
    return OneMatches(row->forms, reply) == (row->texts == ReplyTexts::Refused);
}
