#include "tests/support/file_faults.h"

#include <limits>
#include <utility>

#include "platform/file_steps.h"

using namespace vorn;

namespace {

constexpr int Never = std::numeric_limits<int>::max();

int faultyStep = Never;
int made = 0;
StepFault kind = StepFault::IoError;
std::function<void()> stop;

/// Counts a step. False when it fails.
bool StepGoes(std::error_code& fault) {
    const int step = made++;
    if (step < faultyStep || kind == StepFault::ShortWrite) return true;
    if (kind == StepFault::Stop) stop();
    fault = std::error_code(
        static_cast<int>(kind == StepFault::DiskFull ? std::errc::no_space_on_device : std::errc::io_error),
        std::generic_category());
    return false;
}

bool MakeFolder(const std::string& path, bool& newlyMade, std::error_code& fault) {
    return StepGoes(fault) && SystemFileSteps.makeFolder(path, newlyMade, fault);
}

FileNumber Make(const std::string& path, std::error_code& fault) {
    return StepGoes(fault) ? SystemFileSteps.make(path, fault) : NoFile;
}

std::size_t Write(FileNumber file, std::string_view bytes, std::error_code& fault) {
    if (made != faultyStep || bytes.size() < 2) {
        return StepGoes(fault) ? SystemFileSteps.write(file, bytes, fault) : 0;
    }
    const std::size_t half = SystemFileSteps.write(file, bytes.substr(0, bytes.size() / 2), fault);
    return StepGoes(fault) ? half : 0;
}

bool Flush(FileNumber file, std::error_code& fault) {
    return StepGoes(fault) && SystemFileSteps.flush(file, fault);
}

bool Rename(const std::string& from, const std::string& to, std::error_code& fault) {
    return StepGoes(fault) && SystemFileSteps.rename(from, to, fault);
}

bool FlushFolder(const std::string& path, std::error_code& fault) {
    return StepGoes(fault) && SystemFileSteps.flushFolder(path, fault);
}

}  // namespace

void FileFaultSet(int number, StepFault fault, std::function<void()> stopped) {
    faultyStep = number;
    made = 0;
    kind = fault;
    stop = std::move(stopped);
}

int FileFaultClear() {
    faultyStep = Never;
    return made;
}

namespace vorn {

const FileSteps& FileStepsInUse() {
    static const FileSteps steps{.makeFolder = MakeFolder,
                                 .names = SystemFileSteps.names,
                                 .make = Make,
                                 .write = Write,
                                 .flush = Flush,
                                 .close = SystemFileSteps.close,
                                 .rename = Rename,
                                 .flushFolder = FlushFolder,
                                 .remove = SystemFileSteps.remove};
    return steps;
}

}  // namespace vorn
