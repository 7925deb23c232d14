// The files of the console's page.

#pragma once

#include <filesystem>
#include <map>
#include <string>

struct ConsoleFile {
    const char* type;  ///< as the header `Content-Type` has it
    std::string content;
};

/// The folder of the page's files: `../share/vornserver/console`, seen from the program.
std::filesystem::path ConsoleFolder();

/// The files by their paths, `/NAME`, read whole: what is not in this list is not served, whatever a path
/// holds. Empty where there is no folder; without files of kinds that a page does not have.
std::map<std::string, ConsoleFile> ConsoleFilesRead(const std::filesystem::path& folder);
