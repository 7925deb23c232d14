#include "engine/vorn_chart_cache.h"
#include "engine/vorn_core.h"
#include "standin/trace.h"
using namespace standin;
void Pipe_PjtPngSave(int slot) {
    Trace("Pipe_PjtPngSave", slot);
}
void Chart_PngSave(const char* name) {
    Trace("Chart_PngSave", name);
}
