#include "vn/errors/ErrorClassTextProviders.h"

#include <map>
#include <mutex>

namespace vn {
namespace {

struct ProviderTable {
    std::mutex mutex;
    std::map<std::string, ErrorClassTextProvider, std::less<>> providers;
};

ProviderTable& providerTable() {
    static auto* table = new ProviderTable();  // never destroyed: errors are made during exit too
    return *table;
}

}  // namespace

void registerErrorClassTextProvider(std::string_view name, ErrorClassTextProvider provider) {
    ErrorClassTextProvider replaced;  // destroyed after the lock is released
    ProviderTable& table = providerTable();
    std::lock_guard lock(table.mutex);
    const auto found = table.providers.find(name);
    if (found != table.providers.end()) {
        replaced = std::move(found->second);
        if (provider) {
            found->second = std::move(provider);
        } else {
            table.providers.erase(found);
        }
    } else if (provider) {
        table.providers.emplace(std::string(name), std::move(provider));
    }
}

std::optional<std::string> errorClassText(std::string_view name) {
    ErrorClassTextProvider provider;
    {
        ProviderTable& table = providerTable();
        std::lock_guard lock(table.mutex);
        const auto found = table.providers.find(name);
        if (found == table.providers.end()) return std::nullopt;
        provider = found->second;
    }
    return provider();
}

}  // namespace vn
