#include "study/study_options.h"

#include "host/command_line.h"

namespace {

constexpr const char* Footer =
    "A file of values has lines ELEMENT|ROW|VALUE; its name ends in .values. A script is Lua; its name ends\n"
    "in .lua, and it runs before each step. A name is that of a variable without the project: GTemp,\n"
    "MOD7_Opening, 'office 1_InsideTemperature'.\n"
    "\n"
    "Example:\n"
    "  vorn-plant examples/cold_store.json examples/cold_store.values --until 3600 --every 60 \\\n"
    "             GTemp COP 'cold room_BKT_TEMP'\n"
    "\n"
    "The exit status is 0 when the study ran to its end, 1 when it did not, and 2 for a command line that\n"
    "cannot be read.";

constexpr double LongestStudy = 1e10;  // s
constexpr double LeastStep = 0.01;     // s, as of a project that runs
constexpr double LongestStep = 60.0;

}  // namespace

std::optional<int> StudyOptionsRead(int count, const char* const* arguments, StudyOptions& options) {
    CLI::App app("vorn-plant: runs a plant from its document, without a service, and prints CSV.",
                 "vorn-plant");
    app.footer(Footer);
    std::vector<std::string> words;
    app.add_option("PLANT.json", options.plant, "the document of the plant")->required();
    app.add_option("NAMES", words, "[FILE.values] [FILE.lua] NAME...: start values, a script, what to print");
    app.add_option("--until", options.until, "simulated seconds, 86400 where it is left out")
        ->check(CLI::Range(LeastStep, LongestStudy));
    app.add_option("--every", options.every, "seconds from row to row, 60 where it is left out")
        ->check(CLI::Range(LeastStep, LongestStudy));
    app.add_option("--step", options.step, "seconds of a step, 1 where it is left out")
        ->check(CLI::Range(LeastStep, LongestStep));
    if (const auto status = CommandLineRead(app, count, arguments)) return status;
    for (const std::string& word : words) {
        const bool first = options.names.empty();
        if (first && options.values.empty() && word.ends_with(".values")) {
            options.values = word;
        } else if (first && options.script.empty() && word.ends_with(".lua")) {
            options.script = word;
        } else {
            options.names.push_back(word);
        }
    }
    return std::nullopt;
}
