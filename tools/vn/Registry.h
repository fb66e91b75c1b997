// The vn tool's commands and tour sections. Each area's file under commands/ registers its
// own with static CommandRegistration / TourRegistration objects.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vn::tool {

using Arguments = std::vector<std::string>;

struct Command {
    std::string name;     // first word on the command line: "coerce", "wkt"
    std::string usage;    // "coerce bool|int|uint|double|decimal|string|geo VALUE"
    std::string summary;  // one line for vn --help
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

// Prints "usage: vn <usage>" to standard error and returns 2, for commands given bad arguments.
int usageError(const Command& command);

}  // namespace vn::tool
