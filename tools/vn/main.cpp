// vn: shows what VNFoundation does, on real inputs.
#include <cstdio>
#include <string>

#include "Registry.h"

namespace {

void printHelp() {
    std::printf("usage: vn <command> [arguments]\n\ncommands:\n");
    std::printf("  %-52s %s\n", "tour", "walk through the library's areas with real inputs");
    std::printf("  %-52s %s\n", "--help", "this list");
    for (const auto& command : vn::tool::commands()) {
        std::printf("  %-52s %s\n", command.usage.c_str(), command.summary.c_str());
    }
}

int runTour() {
    for (const auto& section : vn::tool::tourSections()) {
        std::printf("== %s ==\n", section.title.c_str());
        section.show();
        std::printf("\n");
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || std::string(argv[1]) == "--help" || std::string(argv[1]) == "-h" ||
        std::string(argv[1]) == "help") {
        printHelp();
        return argc < 2 ? 2 : 0;
    }
    const std::string name = argv[1];
    if (name == "tour") return runTour();
    for (const auto& command : vn::tool::commands()) {
        if (command.name == name) return command.run(vn::tool::Arguments(argv + 2, argv + argc));
    }
    std::fprintf(stderr, "vn: unknown command '%s' (see vn --help)\n", name.c_str());
    return 2;
}
