#include "host/metrics.h"

#include <gtest/gtest.h>

namespace {

/// The value of a sample in the text of all counters, -1 where it is not there.
long Sample(const std::string& name) {
    const std::string text = "\n" + MetricsText();
    const std::size_t at = text.find("\n" + name + " ");
    return at == std::string::npos ? -1 : std::stol(text.substr(at + name.size() + 2));
}

std::string Exchanges(const std::string& side, const std::string& command) {
    return "vornserver_exchanges_total{side=\"" + side + "\",command=\"" + command + "\"}";
}

TEST(MetricsTest, CountsExchangesBySideWordAndKindOfReply) {
    MetricsCount(
        "read   Get P_X  1.000000\nread   Get P_Y  none varname 找不到变量名称\n"
        "write  Set P_X 5 OK\nwrite  CacheToRun P_MOD0 7 shibai\nread   PjtInfoChk P  {\n");
    MetricsCount("read       \"DeviceInfo\": [\nread   ]\nread   \nwrite  \\x1B[2J x OK\n");
    MetricsCount("read   " + std::string(33, 'W') + " P  x\n");
    const std::pair<std::string, long> rows[] = {
        {Exchanges("read", "Get"), 2},
        {Exchanges("write", "Set"), 1},
        {Exchanges("write", "Get"), -1},
        {Exchanges("read", "PjtInfoChk"), 1},
        {"vornserver_replies_total{kind=\"ok\"}", 1},
        {"vornserver_replies_total{kind=\"refused\"}", 1},
        {"vornserver_replies_total{kind=\"unknown_variable\"}", 1},
        {"vornserver_replies_total{kind=\"value_or_text\"}", 2},
        {"vornserver_log_bytes_total{side=\"write\"}", 56},
    };
    for (const auto& [name, value] : rows) EXPECT_EQ(Sample(name), value) << name;
    // "DeviceInfo" in quotes, a bracket, nothing, an escape, too long a word.
    EXPECT_EQ(Sample("vornserver_log_fragments_total"), 5);
    EXPECT_GT(Sample("process_resident_memory_bytes"), 1000000);
    // Whoever sends words of his own fills no memory.
    for (char first = 'a'; first <= 'z'; ++first) {
        for (char second = 'a'; second <= 'z'; ++second) {
            MetricsCount(std::string("read   ") + first + second + " P  x\n");
        }
    }
    EXPECT_GT(Sample(Exchanges("read", "other")), 600);
    EXPECT_EQ(Sample(Exchanges("read", "zz")), -1);
}

}  // namespace
