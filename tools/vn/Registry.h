// The vn tool's commands and tour sections. Each area's file under commands/ registers its
// own with static CommandRegistration / TourRegistration objects.
//
// Exit statuses, the same for every command: 0 success; 1 bad data (a value given cannot be
// used: not a number, out of range, not a URL, an unreadable file, text that does not parse,
// a failed request); 2 usage (wrong number of arguments, an unknown option or keyword, an
// option without its value). "--help" or "-h" as the first argument, "--help" anywhere, and
// "vn help COMMAND" show the command's usage and an example instead of running it.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vn::tool {

using Arguments = std::vector<std::string>;

inline constexpr int kSuccess = 0;
inline constexpr int kBadData = 1;
inline constexpr int kUsage = 2;

struct Command {
    std::string name;     // first word on the command line: "coerce", "wkt"
    std::string usage;    // "coerce bool|int|uint|double|decimal|string|geo VALUE"
    std::string summary;  // one line for vn --help
    std::string example;  // a command line that works as it is: "vn coerce int '\"42 items\"'"
    std::function<int(const Arguments& arguments)>
        run;  // arguments after the name; returns the exit status
};

struct TourSection {
    int order;  // sections are shown by increasing order
    std::string title;
    std::function<void()> show;
};

const std::vector<Command>& commands();
const std::vector<TourSection>& tourSections();

struct CommandRegistration {
    explicit CommandRegistration(Command command);
};

struct TourRegistration {
    explicit TourRegistration(TourSection section);
};

// Prints "usage: vn <usage>" to standard error and returns kUsage, for commands given bad
// arguments.
int usageError(const Command& command);

// Prints "vn <name>: <problem>" to standard error and returns kBadData.
int badData(const Command& command, std::string_view problem);

// Prints the command's usage, summary and example to standard output.
void printCommandHelp(const Command& command);

}  // namespace vn::tool
