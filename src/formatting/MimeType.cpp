#include "vn/formatting/MimeType.h"

#include <array>
#include <fstream>
#include <memory>
#include <mutex>
#include <sstream>
#include <unordered_map>
#include <utility>

namespace vn {
namespace {

using Table = std::array<std::pair<std::string_view, std::string_view>, 6>;

// Extensions whose type this host knows only by its uniform type identifier.
constexpr Table kKnownIdentifiers{{
    {"pages", "com.apple.iwork.pages.pages"},
    {"key", "com.apple.iwork.keynote.key"},
    {"numbers", "com.apple.iwork.numbers.numbers"},
    {"aifc", "public.aifc-audio"},
    {"caf", "com.apple.coreaudio-format"},
    {"mp2", "public.mp2"},
}};

constexpr Table kIdentifierOverrides{{
    {"com.apple.iwork.pages.pages", "application/x-iwork-pages-sffpages"},
    {"com.apple.iwork.keynote.key", "application/x-iwork-keynote-sffkey"},
    {"com.apple.iwork.numbers.numbers", "application/x-iwork-numbers-sffnumbers"},
    {"public.aifc-audio", "audio/x-aiff"},
    {"com.apple.coreaudio-format", "audio/x-caf"},
    {"public.mp2", "video/mpeg"},
}};

constexpr std::array<std::pair<std::string_view, std::string_view>, 10> kExtensionOverrides{{
    {"swf", "application/x-shockwave-flash"},
    {"ogg", "audio/vorbis"},
    {"oga", "audio/vorbis"},
    {"spx", "audio/vorbis"},
    {"webm", "video/webm"},
    {"ogv", "video/ogg"},
    {"divx", "video/x-divx"},
    {"sif", "application/x-stuffit"},
    {"rar", "application/x-rar-compressed"},
    {"dmg", "application/x-apple-diskimage"},
}};

template <typename Entries>
std::optional<std::string_view> lookUp(const Entries& entries, std::string_view key) {
    for (const auto& [name, value] : entries) {
        if (name == key) return value;
    }
    return std::nullopt;
}

std::string asciiLowercase(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    }
    return result;
}

using Database = std::unordered_map<std::string, std::string>;

// "type ext ext ..." lines; "#" starts a comment. The first type listed for an extension wins.
std::shared_ptr<const Database> readDatabase(const std::string& path) {
    auto database = std::make_shared<Database>();
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        if (const auto hash = line.find('#'); hash != std::string::npos) line.resize(hash);
        std::istringstream words(line);
        std::string type;
        std::string extension;
        if (!(words >> type)) continue;
        while (words >> extension) database->emplace(asciiLowercase(extension), type);
    }
    return database;
}

struct DatabaseState {
    std::mutex mutex;
    std::string path = "/etc/mime.types";
    std::shared_ptr<const Database> database;
};

DatabaseState& databaseState() {
    static auto* state = new DatabaseState();  // process-wide, never destroyed
    return *state;
}

std::shared_ptr<const Database> systemDatabase() {
    DatabaseState& state = databaseState();
    std::lock_guard lock(state.mutex);
    if (!state.database) state.database = readDatabase(state.path);
    return state.database;
}

}  // namespace

std::optional<std::string> mimeType(std::string_view pathExtension) {
    if (pathExtension.empty()) return std::nullopt;
    const std::string key = asciiLowercase(pathExtension);
    const auto database = systemDatabase();
    if (const auto found = database->find(key); found != database->end()) return found->second;
    if (const auto identifier = lookUp(kKnownIdentifiers, key)) {
        if (const auto type = lookUp(kIdentifierOverrides, *identifier)) return std::string(*type);
    }
    if (const auto type = lookUp(kExtensionOverrides, pathExtension)) return std::string(*type);
    return std::nullopt;
}

std::optional<std::string> mimeTypeFromPathExtension(std::string_view pathExtension) {
    return mimeType(pathExtension);
}

std::string mimeTypeForPathExtension(std::string_view pathExtension) {
    return mimeType(pathExtension).value_or(std::string(mimeTypeApplicationOctetStream));
}

void setSystemMimeTypesPath(std::string_view path) {
    DatabaseState& state = databaseState();
    std::lock_guard lock(state.mutex);
    state.path = std::string(path);
    state.database.reset();
}

}  // namespace vn
