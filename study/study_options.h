// The command line of vorn-plant.

#pragma once

#include <optional>
#include <string>
#include <vector>

struct StudyOptions {
    std::string plant;  ///< files; `values` and `script` may be empty
    std::string values;
    std::string script;
    std::vector<std::string> names;  ///< of the variables to print
    double until = 86400.0;          ///< s
    double every = 60.0;
    double step = 1.0;
};

/// Reads the command line. Nothing when the study is to run; otherwise the status to end with.
std::optional<int> StudyOptionsRead(int count, const char* const* arguments, StudyOptions& options);
