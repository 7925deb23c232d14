// Stand in for the store until it is there.
#include "engine/vorn_core.h"
#include "standin/project_store.h"
#include "standin/trace.h"

bool standin::StoreWrite(const Project&) {
    return false;
}
bool standin::StoreHas(std::string_view) {
    return false;
}
bool standin::StoreRead(Project&) {
    return false;
}
int ProjectInfoRead(const char* name) {
    standin::Trace("ProjectInfoRead", name);
    return 0;
}
void ProjectDBRead(const char*) {}
