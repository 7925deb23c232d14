// The reader of stored projects: an input is a stored project's content, which need not be one.

#include <string>

#include "standin/project.h"
#include "standin/project_json.h"
#include "tests/fuzz/front.h"

namespace {

/// Reads `text` into the open project P and gives what it then writes; nothing where it is refused.
std::string Reread(const std::string& text) {
    BeginFresh();
    Ask("Create", "P");
    const std::lock_guard guard(standin::EngineLock());
    standin::Project& project = *standin::ProjectFind("P");
    project.variables.clear();
    std::string written;
    if (standin::ProjectFromJson(text, project)) standin::ProjectToJson(project, written);
    return written;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string written = Reread(std::string(Text(bytes, size)));
    if (written.empty()) return 0;
    Require(Reread(written) == written, "what was read is written and read again alike", written);
    for (const char* command : {"NetAccess", "PjtInfoChk", "PjtRun", "PjtStep", "PjtStop", "PjtSave"}) {
        Ask(command, "P");
    }
    for (const char* element : {"P_MOD0", "P_NOD0", "P_LNK0"}) {
        Ask("RunValueGet", element);
        Ask("DeleteMNL", element);
    }
    return 0;
}
