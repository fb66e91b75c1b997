#include "vn/coding/Coding.h"

#include <map>
#include <mutex>
#include <utility>

#include "vn/coding/KeyedArchiver.h"

namespace vn {
namespace {

bool isKeyedCodableAt(const Value& value, int depth) {
    if (depth > KeyedArchiver::kMaxNestingDepth) return false;
    if (value.isObject()) return dynamic_cast<const Coding*>(value.object().get()) != nullptr;
    if (const Value::Array* array = value.array()) {
        for (const Value& element : *array) {
            if (!isKeyedCodableAt(element, depth + 1)) return false;
        }
    }
    if (const Value::Dictionary* dictionary = value.dictionary()) {
        for (const auto& [key, element] : *dictionary) {
            if (!isKeyedCodableAt(element, depth + 1)) return false;
        }
    }
    return true;
}

struct Registry {
    std::mutex mutex;
    std::map<std::string, CodingDecoder, std::less<>> decoders;
};

// Classes register from static initialisers of other translation units, so the registry is
// created on first use rather than as a global whose construction order is unknown.
Registry& registry() {
    static Registry instance;
    return instance;
}

}  // namespace

std::vector<std::string> Coding::classHierarchyForCoder() const {
    return {classNameForCoder(), "NSObject"};
}

bool Coding::registerClass(std::string className, CodingDecoder decoder) {
    Registry& shared = registry();
    std::lock_guard lock(shared.mutex);
    shared.decoders.insert_or_assign(std::move(className), std::move(decoder));
    return true;
}

bool isKeyedCodable(const Value& value) {
    return isKeyedCodableAt(value, 1);
}

CodingDecoder Coding::decoderForClassName(std::string_view className) {
    Registry& shared = registry();
    std::lock_guard lock(shared.mutex);
    const auto found = shared.decoders.find(className);
    return found == shared.decoders.end() ? CodingDecoder{} : found->second;
}

}  // namespace vn
