#include "host/private_file.h"

// Files have lists of rights here, which a user's own folder keeps from others.
bool OthersMayOpen(const std::string& /*path*/) {
    return false;
}
