// What a large report takes in memory.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "engine/vorn_core.h"
#include "include/vorn_server.h"
#include "standin/levers/levers.h"

namespace {

/// A field of the process's status that counts kilobytes, in bytes.
std::size_t BytesOf(const std::string& field) {
    std::ifstream status("/proc/self/status");
    std::string name;
    std::size_t kilobytes = 0;
    while (status >> name && name != field) status.ignore(1000, '\n');
    status >> kilobytes;
    return kilobytes * 1024;
}

constexpr int Branches = 400;
constexpr int Modules = 800;

/// Many branches that all go through one long chain, so that each tells all its modules.
void PlantMake() {
    standin::EngineReset();
    ProjectJsonAdd("LARGE");
    ProjectAddNode("LARGE", 0, FluidNode, 0, 0, 0);
    for (int module = 0; module < Modules; ++module) ProjectAddModule("LARGE", module, 0, 0, 0, 0);
    int row = 0;
    const LinkSxCache front{
        .InUse = true, .F_Sx = NodeKind, .F_PortNb = NodeInletCount, .S_Sx = ModuleKind, .S_Type2 = true};
    while (row < Branches) ProjectAddLink("LARGE", row++, front);
    LinkSxCache link = front;
    link.F_Sx = ModuleKind;
    link.F_PortNb = 1;
    link.F_Type2 = true;
    for (link.F_Nb = 0; link.F_Nb < Modules - 1; ++link.F_Nb) {
        link.S_Nb = link.F_Nb + 1;
        ProjectAddLink("LARGE", row++, link);
    }
}

TEST(ReportMemoryTest, IsAtMostFourTimesTheText) {
    PlantMake();
    EXPECT_FALSE(Net_Access(0));  // the chain's end is open, which takes nothing from the report
    const pid_t child = fork();   // whose high-water mark is its own
    if (child == 0) {
        const std::size_t before = BytesOf("VmRSS:");
        const std::size_t text = std::strlen(Net_InfoToAI(0));
        const std::size_t taken = BytesOf("VmHWM:") - before;
        std::printf("%zu bytes for a text of %zu\n", taken, text);
        std::fflush(stdout);
        _exit(text > std::size_t{50} * Branches * Modules && taken <= 4 * text ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    standin::EngineReset();
}

}  // namespace
