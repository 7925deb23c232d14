#include "host/private_file.h"

#include <sys/stat.h>

bool OthersMayOpen(const std::string& path) {
    struct stat found {};
    return stat(path.c_str(), &found) == 0 && (found.st_mode & (S_IRWXG | S_IRWXO)) != 0;
}
