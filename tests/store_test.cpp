#include <bit>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <future>
#include <limits>
#include <random>
#include <thread>
#include <tuple>

#include "engine/vorn_core.h"
#include "standin/project_lock.h"
#include "standin/project_store.h"
#include "tests/support/file_faults.h"
#include "tests/support/peer.h"
#include "tests/support/store_test.h"

using namespace standin;
namespace fs = std::filesystem;

namespace {

/// A project with something in each of its fields, and a vacant row in each table.
void FillProject(Project& project) {
    for (int number = 0; number < 3; ++number) {
        ModuleAdd(project, number, number * 5, number, -number, 1 << 30);
        NodeAdd(project, number, number, 7, number, -5);
        ModuleIdentify(project, number, "M" + std::to_string(number));
        NodeIdentify(project, number, "中\"\\\x01/\xff");
        LinkAdd(project, number, {true, 2, 3, 1, 2, 1, true, 2, 1, 15, true});
    }
    using Limits = std::numeric_limits<double>;
    const double large = Limits::max();
    const double odd[] = {-0.0, 0.1 + 0.2, Limits::denorm_min(), Limits::max(), large, -large};
    int next = 0;
    for (Element* element : {ElementFind(project, 1, 2), ElementFind(project, 2, 1)}) {
        for (ElementValues& layer : element->layers) {
            for (double& item : layer.items) item = odd[next++ % 6];
            layer.ports.resize(PortsPerElement,
                               {odd[1], odd[2], odd[3], {large, -large, 6, 7, 8, 9, 10, 11}});
        }
    }
    Module& module = *project.modules.Find(2);
    module.modelId = "160_120_120_120";
    module.important = "重要";
    module.room = 1;
    ModuleRemove(project, 0);
    NodeRemove(project, 0);
    LinkRemove(project, 0);
    project.variables.push_back({});
    // Numbers of all sizes, which have to come back to the last bit.
    std::mt19937_64 random(11);
    while (project.variables.size() < ProjectVariableCapacity) {
        ProjectVariable& variable = project.variables.emplace_back(ProjectVariable{.name = "变量"});
        for (double& real : variable.reals) {
            do {
                real = std::bit_cast<double>(std::uint64_t{random()});
            } while (!std::isfinite(real));
        }
    }
    project.variables[3].integers[0] = -7;
    project.script = std::string("x = 1\n\0--", 9);
}

}  // namespace

TEST_F(StoreTest, BringsEverythingBack) {
    Send("Create", "Plant1");
    FillProject(*ProjectFind(0));
    const std::string before = Json(0);
    ASSERT_TRUE(StoreWrite(*ProjectFind(0)));
    standin::EngineReset();
    EXPECT_EQ(Send("Open", "pLANT1"), "OK");
    EXPECT_EQ(Json(0), before);
    Project& project = *ProjectFind(0);
    const Module& module = *project.modules.Find(2);
    EXPECT_EQ(std::pair(Module_FindInstanceID(0, "M2"), Module_FindInstanceID(0, "M0")), std::pair(2, -1));
    EXPECT_EQ(std::pair(ProjectModuleNbCheck(0), ProjectLinkNbCheck(0)), std::pair(0, 0));
    EXPECT_EQ(std::tuple(module.type, module.page, module.x, module.z, module.room),
              std::tuple(10, 2, -2, 1 << 30, 1));
    EXPECT_EQ(module.modelId + module.important, "160_120_120_120重要");
    EXPECT_EQ(module.linksAtPort[1], 2);
    EXPECT_EQ(project.nodes.Find(1)->layers[CacheLayer1].ports.at(15).series[7], 11);
    EXPECT_EQ(project.nodes.Find(1)->instanceId, "中\"\\\x01/\xff");
    EXPECT_EQ(project.links.rows.at(2).S_PortNb, 15);
    EXPECT_TRUE(project.links.rows[2].F_Type2 && project.links.rows[2].S_Type2);
    EXPECT_EQ(project.script, std::string("x = 1\n\0--", 9));
}

TEST_F(StoreTest, RunStartsAStoredProjectThatWasNotOpen) {
    SimulationKeepOff(true);
    Send("Create", "P1");
    Send("AddModule", "P1", Valve());
    Send("VarCacheSet", "P1_MOD0", R"({"Row":0,"Column":1,"Value":"7"})");
    EXPECT_TRUE(StoreWrite(*ProjectFind(0)));
    Send("Create", "BARE");
    EXPECT_TRUE(StoreWrite(*ProjectFind(1)));
    Send("Put", "", "Close");

    ExpectExchange("Put", "P1", "Run", "成功运行", R"(ProjectNameToID("P1"); ProjectInfoRead("P1");
        ProjectRunFabuGet("P1"); Pipe_PjtListRef(); PeojectListRef_CliSet("P1"))");
    EXPECT_TRUE(PjtStartGet(0));
    EXPECT_EQ(Send("Get", "P1_MOD0_Opening"), "7.000000");
    EXPECT_EQ(Send("Put", "P1", "Run"), "已运行");

    // What is stored and has nothing to run is closed again.
    ExpectExchange("Put", "BARE", "Run", "项目未成功发布",
                   R"(ProjectNameToID("BARE"); ProjectInfoRead("BARE");
        ProjectRunFabuGet("BARE"); ProjectInfoRemove("BARE"))");
    EXPECT_EQ(Send("Fdp", "BARE"), "0");
}

TEST_F(StoreTest, KeepsADamagedFileAndTheProjectThatReplacesIt) {
    Send("Create", "P");
    Send("PjtSent", "P", Nodes(3));
    const std::string whole = Read(FileOf("P"));
    testing::internal::CaptureStderr();
    std::vector<std::string> damaged{
        "", "{}", whole + " ", whole.substr(0, whole.size() / 2), "\n" + whole, std::string(100000, '[')};
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        damaged.push_back(whole);
        damaged.back()[random() % whole.size()] ^= static_cast<char>(1 + random() % 255);
    }
    for (const std::string& text : damaged) {
        Write(FileOf("P"), text);
        EXPECT_FALSE(StoreRead(*ProjectFind(0)));
        EXPECT_EQ(Read(FileOf("P")), text);
    }
    EXPECT_EQ(ProjectFind(0)->nodes.rows.size(), 3U);

    // Open makes an empty project; what it then stores does not cover the damaged file.
    for (const char* aside : {"P.damaged.1", "P.damaged.2"}) {
        Write(FileOf("P"), damaged.back());
        standin::EngineReset();
        EXPECT_EQ(Send("Open", "P"), "OK");
        EXPECT_TRUE(ProjectFind(0)->nodes.rows.empty());
        EXPECT_EQ(Read(FileOf("P")), damaged.back());
        Send("PjtSent", "P", Nodes(2));
        EXPECT_EQ(Read((Folder("P") / aside).string()), damaged.back());
    }
    const std::string lines = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(
        lines.starts_with("project store: P: the stored file is damaged or foreign, and left as it is: "
                          "../AlgProject/P/P.json\n"));
    EXPECT_TRUE(Holds(lines, "P: the damaged file is kept as ../AlgProject/P/P.damaged.2\n"));
    standin::EngineReset();
    Send("Open", "P");
    EXPECT_EQ(ProjectFind(0)->nodes.rows.size(), 2U);
}

TEST_F(StoreTest, ReadsNoFileAgainThatLooksAsItWasLeft) {
    Send("Create", "P");
    Send("PjtSent", "P", Nodes(2));
    std::string other = Read(FileOf("P"));
    other[other.size() / 2] ^= 1;
    const auto written = fs::last_write_time(FileOf("P"));
    Write(FileOf("P"), other);
    fs::last_write_time(FileOf("P"), written);
    Send("PjtSent", "P", Nodes(2));
    EXPECT_EQ(FilesOf("P"), "P.json ") << "nothing was found damaged";
}

TEST_F(StoreTest, RefusesContentThatDoesNotFit) {
    Send("Create", "P");
    ModuleAdd(*ProjectFind(0), 0, 0, 0, 1, 2);
    const std::string text = Json(0);
    const auto read = [&](const std::string& from, const std::string& to) {
        std::string changed = text;
        changed.replace(changed.find(from), from.size(), to);
        Project project;
        project.modules.capacity = ModuleCapacity;
        project.links.capacity = LinkCapacity;
        return ProjectFromJson(changed, project);
    };
    const std::string room = R"("room":-1)";
    const auto layers = [&](const std::string& values) {
        return R"("layers":[{},{},{})" + values + "]," + room;
    };
    EXPECT_TRUE(read(room, room));
    EXPECT_TRUE(read(room, layers(R"(,{"items":[1,2.5,3],"ports":[]})")));
    EXPECT_TRUE(read(room, layers(R"(,{"items":[1,2.5],"ports":[]})")))
        << "as before an item came to the type";
    for (const char* values :
         {R"(,{"items":[1,2.5,3,4],"ports":[]})", "", R"(,{"items":[1,2,3],"ports":[[1]]})"}) {
        EXPECT_FALSE(read(room, layers(values))) << values;
    }
    const auto faults = Split(R"(24032022192805856 12; "number":0 "number":5485; "number":0 "number":-1;
        "x":1 "x":1.5; "nodes":[] "nodes":{}; "links":[] "links":[{"number":0,"ends":[0]}]; GTemp Other;
        "kind":1 "kind":4; "script":"" "script":[]; 0.0,0.0 0.0,1e999; { [;)");
    for (const std::string& fault : faults)
        EXPECT_FALSE(read(Split(fault, ' ')[0], Split(fault, ' ')[1])) << fault;
}

TEST_F(StoreTest, BuildsNoPathFromABadName) {
    testing::internal::CaptureStderr();
    for (const std::string name : {"..", "../run", "A/B", "A.B", "A_B", "Ä", "A B"}) {
        ASSERT_TRUE(ProjectJsonAdd(name.c_str()));
        EXPECT_FALSE(StoreWrite(*ProjectFind(0)) || StoreRead(*ProjectFind(0))) << name;
        Pipe_PjtPngSave(0);
        ProjectInfoRemove(name.c_str());
    }
    EXPECT_FALSE(fs::exists(Folder("")));
    EXPECT_TRUE(Holds(testing::internal::GetCapturedStderr(),
                      "project store: A B: the project cannot be stored: Invalid argument\n"));
    ASSERT_TRUE(ProjectJsonAdd(std::string(64, 'A').c_str()));
    EXPECT_TRUE(StoreWrite(*ProjectFind(0)));
}

TEST_F(StoreTest, HoldsUpNothingThatRunsWhileItWrites) {
    Send("Create", "P");
    Send("PjtSent", "P", Nodes(1));
    const auto otherThreadTakesTheLock = [] {
        const std::unique_lock lock(EngineLock(), std::try_to_lock);
        return lock.owns_lock();
    };
    testing::internal::CaptureStderr();
    for (int step = 1; step < 6; ++step) {  // behind the making of the folder
        bool free = false;
        FileFaultSet(step, StepFault::Stop,
                     [&] { free = std::async(std::launch::async, otherThreadTakesTheLock).get(); });
        Send("PjtSent", "P", Nodes(2));
        FileFaultClear();
        EXPECT_TRUE(free) << step;
    }
    testing::internal::GetCapturedStderr();
}

/// What stands in the place of the stored file before a store.
enum class Before { Nothing, AProject, Damage };

TEST_F(StoreTest, IsTheOldOrTheNewProjectWhicheverStepFails) {
    const std::string damage = "damaged";
    Send("Create", "P");
    const std::string first = Json(0);
    for (const auto& [fault, reason] : {std::pair(StepFault::IoError, "Input/output error"),
                                        {StepFault::DiskFull, "No space left on device"},
                                        {StepFault::ShortWrite, ""}}) {
        for (const Before before : {Before::Nothing, Before::AProject, Before::Damage}) {
            int step = 0;
            for (bool met = true; met; ++step) {
                SCOPED_TRACE(std::string(reason) + " at step " + std::to_string(step));
                Project& project = *ProjectFind(0);
                ProjectLockRelease(0);  // a file that is held may not be removed
                fs::remove_all(Folder(""));
                ProjectEmpty(project);
                EXPECT_TRUE(before != Before::AProject || StoreWrite(project));
                if (before == Before::Damage) Write(FileOf("P"), damage);
                NodeAdd(project, 0, 0, 0, 0, 0);
                const std::string second = Json(0);

                testing::internal::CaptureStderr();
                FileFaultSet(step, fault);
                const bool stored = StoreWrite(project);
                met = FileFaultClear() > step;
                const std::string lines = testing::internal::GetCapturedStderr();
                EXPECT_EQ(stored, !met || fault == StepFault::ShortWrite);
                EXPECT_EQ(stored, !Holds(lines, "project store: P: the project cannot be stored: " +
                                                    std::string(reason) + ": ../AlgProject/P/"));
                EXPECT_FALSE(Holds(FilesOf("P"), ".new"));
                const bool damageKept = Read(FileOf("P")) == damage || Holds(FilesOf("P"), "P.damaged.1 ");
                EXPECT_EQ(damageKept, before == Before::Damage);
                EXPECT_FALSE(Read(FileOf("P")) == damage && Holds(FilesOf("P"), "P.damaged"));

                if (fs::exists(FileOf("P")) && Read(FileOf("P")) != damage) {
                    ASSERT_TRUE(StoreRead(project));
                    EXPECT_TRUE(Json(0) == second || (before == Before::AProject && Json(0) == first));
                    EXPECT_TRUE(!stored || Json(0) == second);
                } else {
                    EXPECT_FALSE(stored || before == Before::AProject);
                }
                ASSERT_TRUE(StoreWrite(project) && StoreRead(project));
            }
            EXPECT_GE(step, before == Before::Nothing ? 11 : 7);
        }
    }
}

/// Stores a project, named before a step's number, with one more node, and stops at that step, which it tells
/// by `k`; `d` when there is no such step.
int StoreAndStop(const std::string& projectAndStep) {
    const std::size_t blank = projectAndStep.find(' ');
    const std::string step = projectAndStep.substr(blank + 1);
    const auto tell = [](char what) {
        std::printf("%c\n", what);
        std::fflush(stdout);
        for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
    };
    Send("Open", projectAndStep.substr(0, blank));
    NodeAdd(*ProjectFind(0), 0, 0, 0, 0, 0);
    FileFaultSet(std::stoi(step), StepFault::Stop, [&] { tell('k'); });
    StoreWrite(*ProjectFind(0));
    tell('d');
    return 1;
}
const Peer storeAndStop("store and stop", StoreAndStop);

TEST_F(StoreTest, IsTheOldOrTheNewProjectWhereverTheProcessIsKilled) {
    Send("Create", "P");
    ASSERT_TRUE(StoreWrite(*ProjectFind(0)));
    const std::string first = Json(0);
    NodeAdd(*ProjectFind(0), 0, 0, 0, 0, 0);
    const std::string second = Json(0);
    ChildProcess bystander = PeerStart("store and stop", "Q 1");
    const std::string begun = "P.json.new." + std::to_string(bystander.Number());
    int leftovers = 0;
    std::string told;
    while (told.empty()) ASSERT_TRUE(bystander.Read(told));
    for (int step = 0; told.starts_with('k'); ++step) {
        SCOPED_TRACE(step);
        told.clear();
        ASSERT_EQ(Send("PjtClose", "P"), "OK");  // one server has it open at a time
        ChildProcess child = PeerStart("store and stop", "P " + std::to_string(step));
        const std::string leftover = ".new." + std::to_string(child.Number());
        while (told.empty()) ASSERT_TRUE(child.Read(told));
        child.Kill();
        child.Wait();

        leftovers += Holds(FilesOf("P"), leftover);
        ASSERT_EQ(Send("Open", "P"), "OK");
        // The file is renamed by the step before the last.
        EXPECT_EQ(Json(0), step < 5 ? first : second);
        ProjectEmpty(*ProjectFind(0));
        // What a process that is there began is left to it.
        Write((Folder("P") / begun).string(), "begun");
        ASSERT_TRUE(StoreWrite(*ProjectFind(0)));
        EXPECT_EQ(FilesOf("P"), "P.json " + begun + " ");
    }
    EXPECT_EQ(leftovers, 3);
}
