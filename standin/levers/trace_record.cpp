#include "standin/levers/trace_record.h"

#include <mutex>
#include <utility>

#include "standin/trace.h"

namespace standin {

namespace {

struct Record {
    std::mutex lock;
    bool collecting = false;
    std::vector<std::string> lines;
};

// Never destroyed: the engine's threads may write while the process ends.
Record& TheRecord() {
    static Record& record = *new Record;
    return record;
}

}  // namespace

void TraceStart() {
    Record& record = TheRecord();
    const std::lock_guard guard(record.lock);
    record.lines.clear();
    traced = record.collecting = true;
}

std::vector<std::string> TraceStop() {
    Record& record = TheRecord();
    const std::lock_guard guard(record.lock);
    traced = record.collecting = false;
    return std::exchange(record.lines, {});
}

void TraceLine(std::string line) {
    if (!traced) return;
    Record& record = TheRecord();
    const std::lock_guard guard(record.lock);
    traced = record.collecting;
    if (record.collecting) record.lines.push_back(std::move(line));
}

}  // namespace standin
