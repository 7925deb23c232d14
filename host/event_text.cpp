#include "host/event_text.h"

#include <algorithm>
#include <string_view>

#include "host/event_names.h"

namespace {

constexpr char Quote = '\'';

bool IsPlain(std::string_view text) {
    const auto plain = [](char each) {
        return (each >= 'A' && each <= 'Z') || (each >= 'a' && each <= 'z') || (each >= '0' && each <= '9') ||
               each == '_' || each == '.' || each == '-';
    };
    return !text.empty() && std::all_of(text.begin(), text.end(), plain);
}

void AppendLeft(std::string& line, const vorn::Excerpt& excerpt) {
    if (excerpt.left > 0) line += "+" + std::to_string(excerpt.left);
}

void AppendQuoted(std::string& line, const vorn::Excerpt& excerpt) {
    line += Quote;
    for (const char each : excerpt.text) {
        if (each == Quote) {
            line += "\\x27";
        } else {
            line += each;
        }
    }
    line += Quote;
    AppendLeft(line, excerpt);
}

void AppendName(std::string& line, const vorn::Excerpt& name) {
    if (!IsPlain(name.text)) return AppendQuoted(line, name);
    line += name.text;
    AppendLeft(line, name);
}

}  // namespace

std::string ExchangeLine(const vorn::ExchangeEvent& event) {
    std::string line = event.writes ? "write  " : "read   ";
    line += NameOf(event.front);
    if (!event.peer.empty()) line.append("/").append(event.peer);
    line.append(" ").append(vorn::WordText(event.word)).append(" ");
    if (event.word == vorn::OtherWord) {
        AppendQuoted(line, event.sentWord);
        line += ' ';
    }
    AppendName(line, event.name);
    line += ' ';
    AppendQuoted(line, event.messages);
    line += ' ';
    AppendQuoted(line, event.reply);
    if (event.store == vorn::StoreEnd::Failed) line += " (store failed)";
    return line += '\n';
}

std::string RunStateLine(const vorn::RunStateEvent& event) {
    return "state  " + event.project + " " + NameOf(event.state) + (event.byCommand ? "" : " (by itself)") +
           "\n";
}

std::string LossLines(const vorn::EventLoss& loss) {
    const struct {
        std::uint64_t count;
        const char* what;
    } rows[] = {{loss.exchanges, "exchanges"},
                {loss.excerpts, "texts of exchanges"},
                {loss.states, "changes of run states"},
                {loss.notices, "reports of the engine"}};
    std::string lines;
    for (const auto& row : rows) {
        if (row.count > 0) lines += "(" + std::to_string(row.count) + " " + row.what + " found no room)\n";
    }
    return lines;
}
