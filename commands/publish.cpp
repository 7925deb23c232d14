// PjtSent: takes in a project document.

#include "commands/handlers.h"
#include "import/document.h"

namespace vorn {

std::string PjtSent(const Request& request) {
    return ProjectDocumentImport(request.pjtnb, request.messages.c_str());
}

}  // namespace vorn
