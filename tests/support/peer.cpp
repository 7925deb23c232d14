#include "tests/support/peer.h"

#include <gtest/gtest.h>

#include <map>

namespace {

constexpr const char* PeerOption = "--peer";

std::map<std::string, Peer::Run>& Peers() {
    static std::map<std::string, Peer::Run> peers;
    return peers;
}

}  // namespace

Peer::Peer(const char* name, Run run) {
    Peers()[name] = run;
}

ChildProcess PeerStart(const std::string& name, const std::string& argument) {
    return {TestProgram(), {PeerOption, name, argument}};
}

int main(int count, char** arguments) {
    if (count == 4 && std::string(arguments[1]) == PeerOption) return Peers().at(arguments[2])(arguments[3]);
    testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
}
