// vn: shows what VNFoundation does, on real inputs.
#include <cstdio>
#include <exception>
#include <string>

#include "Registry.h"
#include "vn/platform/Exception.h"

namespace {

using vn::tool::Arguments;
using vn::tool::Command;

void printHelp() {
    std::printf("usage: vn <command> [arguments]\n       vn help <command>\n\ncommands:\n");
    std::printf("  %-52s %s\n", "tour", "walk through the library's areas with real inputs");
    std::printf("  %-52s %s\n", "help [COMMAND]", "this list, or a command's usage and example");
    for (const auto& command : vn::tool::commands()) {
        std::printf("  %-52s %s\n", command.usage.c_str(), command.summary.c_str());
    }
    std::printf(
        "\nexit status: 0 success, 1 bad data (a value that cannot be used), 2 usage (wrong "
        "arguments)\n");
}

const Command* findCommand(const std::string& name) {
    for (const auto& command : vn::tool::commands()) {
        if (command.name == name) return &command;
    }
    return nullptr;
}

bool asksForHelp(const Arguments& arguments) {
    if (!arguments.empty() && arguments.front() == "-h") return true;
    for (const auto& argument : arguments) {
        if (argument == "--help") return true;
    }
    return false;
}

int runTour() {
    for (const auto& section : vn::tool::tourSections()) {
        std::printf("== %s ==\n", section.title.c_str());
        section.show();
        std::printf("\n");
    }
    return vn::tool::kSuccess;
}

int unknownCommand(const std::string& name) {
    std::fprintf(stderr, "vn: unknown command '%s' (see vn --help)\n", name.c_str());
    return vn::tool::kUsage;
}

int help(const Arguments& arguments) {
    if (arguments.empty()) {
        printHelp();
        return vn::tool::kSuccess;
    }
    if (arguments.size() > 1) {
        std::fprintf(stderr, "usage: vn help [COMMAND]\n");
        return vn::tool::kUsage;
    }
    if (arguments.front() == "tour") {
        std::printf(
            "usage: vn tour\n\nwalk through the library's areas with real inputs\n\n"
            "example:\n  vn tour\n");
        return vn::tool::kSuccess;
    }
    const Command* command = findCommand(arguments.front());
    if (!command) return unknownCommand(arguments.front());
    vn::tool::printCommandHelp(*command);
    return vn::tool::kSuccess;
}

// Runs the command; an error no command expected (a library exception, a failed allocation)
// ends it as bad data with its reason instead of ending the process abnormally.
int runCommand(const Command& command, const Arguments& arguments) {
    try {
        return command.run(arguments);
    } catch (const vn::Exception& exception) {
        return vn::tool::badData(command, exception.name() + ": " + exception.reason());
    } catch (const std::exception& exception) {
        return vn::tool::badData(command, exception.what());
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        printHelp();
        return vn::tool::kUsage;
    }
    const std::string name = argv[1];
    const Arguments arguments(argv + 2, argv + argc);
    if (name == "--help" || name == "-h" || name == "help") return help(arguments);
    if (name == "tour") {
        if (asksForHelp(arguments)) return help({"tour"});
        if (!arguments.empty()) {
            std::fprintf(stderr, "usage: vn tour\n");
            return vn::tool::kUsage;
        }
        return runTour();
    }
    const Command* command = findCommand(name);
    if (!command) return unknownCommand(name);
    if (asksForHelp(arguments)) {
        vn::tool::printCommandHelp(*command);
        return vn::tool::kSuccess;
    }
    return runCommand(*command, arguments);
}
