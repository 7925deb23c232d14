#include "host/command_line.h"

#include <charconv>

namespace {

std::string FaultText(const CLI::App* app, const CLI::Error& error) {
    const std::string& program = app->get_name();
    return program + ": " + error.what() + "\n" + program + " --help tells the usage\n";
}

}  // namespace

CLI::Option* AddValueOption(CLI::App& app, const std::string& name, const std::string& needed,
                            const std::string& text, const ValueTaker& take) {
    const auto read = [name, needed, take](const std::string& value) {
        // The library takes whatever comes next as the value.
        const bool option = value.starts_with("--");
        const std::string fault = option ? "needs " + needed + " before " + value : take(value);
        if (!fault.empty()) throw CLI::ValidationError(name, fault);
    };
    return app.add_option_function<std::string>(name, read, text)->type_name(needed);
}

ValueTaker NumberTaker(int least, int most, int& number) {
    return [least, most, &number](const std::string& value) -> std::string {
        const char* const end = value.data() + value.size();
        const auto read = std::from_chars(value.data(), end, number);
        if (read.ec == std::errc() && read.ptr == end && number >= least && number <= most) return {};
        return "'" + value + "' is no number from " + std::to_string(least) + " to " + std::to_string(most);
    };
}

std::optional<int> CommandLineRead(CLI::App& app, int count, const char* const* arguments) {
    app.set_help_flag("--help", "print this text");
    app.set_version_flag("--version", app.get_name() + " " VORN_VERSION, "print the version");
    app.failure_message(FaultText);
    try {
        app.parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    return {};
}
