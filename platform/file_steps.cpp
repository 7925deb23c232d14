#include "platform/file_steps.h"

namespace vorn {

const FileSteps& FileStepsInUse() {
    return SystemFileSteps;
}

}  // namespace vorn
