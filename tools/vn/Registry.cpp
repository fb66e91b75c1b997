#include "Registry.h"

#include <algorithm>
#include <cstdio>

namespace vn::tool {
namespace {

std::vector<Command>& mutableCommands() {
    static std::vector<Command> all;
    return all;
}

std::vector<TourSection>& mutableTourSections() {
    static std::vector<TourSection> all;
    return all;
}

}  // namespace

const std::vector<Command>& commands() {
    return mutableCommands();
}

const std::vector<TourSection>& tourSections() {
    auto& sections = mutableTourSections();
    std::stable_sort(sections.begin(), sections.end(),
                     [](const TourSection& a, const TourSection& b) { return a.order < b.order; });
    return sections;
}

CommandRegistration::CommandRegistration(Command command) {
    mutableCommands().push_back(std::move(command));
}

TourRegistration::TourRegistration(TourSection section) {
    mutableTourSections().push_back(std::move(section));
}

int usageError(const Command& command) {
    std::fprintf(stderr, "usage: vn %s\n(vn help %s shows an example)\n", command.usage.c_str(),
                 command.name.c_str());
    return kUsage;
}

int badData(const Command& command, std::string_view problem) {
    std::fprintf(stderr, "vn %s: %.*s\n", command.name.c_str(), static_cast<int>(problem.size()),
                 problem.data());
    return kBadData;
}

void printCommandHelp(const Command& command) {
    std::printf("usage: vn %s\n\n%s\n\nexample:\n  %s\n", command.usage.c_str(),
                command.summary.c_str(), command.example.c_str());
}

}  // namespace vn::tool
