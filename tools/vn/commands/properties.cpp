// vn archive: the contents of a keyed archive (the platform's or ours) as a readable tree; and
// the tour's section on property bags, keyed archives, metadata lookup and colours.
#include <cstdio>
#include <string>

#include "../FileReading.h"
#include "../Registry.h"
#include "vn/coding/KeyedArchiver.h"
#include "vn/coding/KeyedUnarchiver.h"
#include "vn/properties/Color.h"
#include "vn/properties/VNCodingKeysHelpers.h"
#include "vn/properties/VNCodingPropertiesObject.h"
#include "vn/properties/VNInsensitiveMetadata.h"
#include "vn/properties/VNMutableCodingPropertiesObject.h"
#include "vn/services/VNFoundationServices.h"

namespace {

using namespace vn;

std::string reasonOf(const ErrorPtr& error) {
    if (!error) return "unknown reason";
    const std::string* reason = error->userInfoValue(NSDebugDescriptionErrorKey).string();
    return reason ? *reason : error->localizedDescription();
}

std::string colorText(const std::optional<Color>& color) {
    if (!color) return "nil";
    char text[96];
    std::snprintf(text, sizeof text, "red %.3f, green %.3f, blue %.3f, alpha %.3f", color->red,
                  color->green, color->blue, color->alpha);
    return text;
}

int runArchive(const tool::Arguments& arguments);

const tool::Command kArchive{
    "archive", "archive FILE",
    "show a keyed archive (binary property list) as a tree, then decode it",
    "vn archive settings.archive", runArchive};

int runArchive(const tool::Arguments& arguments) {
    if (arguments.size() != 1) return tool::usageError(kArchive);
    std::string problem;
    const auto bytes = tool::readRegularFile(arguments[0], &problem);
    if (!bytes) return tool::badData(kArchive, problem);
    ErrorPtr error;
    const auto tree = KeyedUnarchiver::describeArchive(*bytes, &error);
    if (!tree) return tool::badData(kArchive, reasonOf(error));
    std::printf("%s", tree->c_str());
    const auto root = KeyedUnarchiver::unarchivedValue(*bytes, &error);
    if (!root) {
        std::printf("\ndecoding failed: %s\n", reasonOf(error).c_str());
        return tool::kBadData;
    }
    std::printf("\ndecoded root:\n%s\n", root->description().c_str());
    return tool::kSuccess;
}

// Prints what VNCodingKeysHelpers sends to the host's logger service.
class PrintingLoggerService final : public VNLoggerService {
  public:
    void startLogging() override {}
    void endLogging() override {}
    bool isLogEnabled() const override { return true; }
    VNLoggerLevel logLevelForType(VNLoggerType) const override { return VNLoggerLevel::verbose; }
    void logMessage(std::string_view message, VNLoggerType type, VNLoggerLevel level,
                    bool) override {
        std::printf("  logger service (type %lld, level %lld): %.*s\n",
                    static_cast<long long>(rawValue(type)), static_cast<long long>(rawValue(level)),
                    static_cast<int>(message.size()), message.data());
    }
};

void showBag(const VNPropertiesObject& bag) {
    std::printf("getPropertyValueBool(visible)     = %s\n",
                bag.getPropertyValueBool("visible") ? "true" : "false");
    std::printf("getPropertyValueInteger(count)    = %lld\n",
                static_cast<long long>(bag.getPropertyValueInteger("count")));
    std::printf("getPropertyValueFloat(ratio)      = %g\n", bag.getPropertyValueFloat("ratio"));
    std::printf("getPropertyValueString(count)     = %s (a number is not a text)\n",
                bag.getPropertyValueString("count").value_or("nil").c_str());
    std::printf("getPropertyValueColor(tint)       = %s\n",
                colorText(bag.getPropertyValueColor("tint")).c_str());
}

void showProperties() {
    auto bag = std::make_shared<VNMutableCodingPropertiesObject>(
        Value::Dictionary{{"title", "Überschrift"}, {"visible", "YES"}, {"tint", "#3366CC"}});
    bag->setIntegerProperty(42, "count");
    bag->setFloatProperty(0.75, "ratio");
    bag->setPropertyValue(Value::Array{"news", Date{0}, Value::null()}, "tags");
    showBag(*bag);

    ErrorPtr error;
    const auto bytes = KeyedArchiver::archivedDataWithRootObject(bag, &error);
    if (!bytes) {
        std::printf("archiving failed: %s\n", reasonOf(error).c_str());
        return;
    }
    std::printf("\narchived as %zu bytes of binary property list; its tree:\n", bytes->size());
    std::printf("%s", KeyedUnarchiver::describeArchive(*bytes).value_or("").c_str());

    KeyedUnarchiver unarchiver(*bytes);
    unarchiver.setClass("VNMutableCodingPropertiesObject", [](Coder& coder) -> ObjectPtr {
        return VNCodingPropertiesObject::initWithCoder(coder);
    });
    const auto restored = unarchiver.decodeValue("root").objectAs<VNCodingPropertiesObject>();
    if (!restored) {
        std::printf("restoring failed: %s\n", reasonOf(unarchiver.error()).c_str());
        return;
    }
    std::printf("\nrestored as the read-only class, same dictionary: %s\n",
                Value(restored->properties()) == Value(bag->properties()) ? "yes" : "no");
    std::printf("%s\n", restored->description().c_str());

    const Value metadata = Value::Dictionary{{"title", "Orders"}, {"@name", "orders"}};
    std::printf(
        "\nmetadataObjectForKey(@Title) = %s\n",
        VNInsensitiveMetadata::metadataObjectForKey("@Title", metadata).description().c_str());
    std::printf(
        "metadataObjectForKey(Name)   = %s\n",
        VNInsensitiveMetadata::metadataObjectForKey("Name", metadata).description().c_str());
    std::printf("colorFromValue(\"#F80\")       = %s\n",
                colorText(Color::colorFromValue("#F80")).c_str());
    std::printf("colorFromValue(0x00FF00)     = %s\n",
                colorText(Color::colorFromValue(0x00FF00)).c_str());

    std::printf("\ntyped lookups with diagnostics:\n");
    const auto previous = VNFoundationServices::loggerService();
    VNFoundationServices::registerLoggerService(std::make_shared<PrintingLoggerService>());
    auto lookup = [&metadata](const VNStringCodingKey& key) { return metadata[key.value]; };
    const auto title = VNCodingKeysHelpers::typedValueLoggingError<std::string>(
        VNStringCodingKey{"title"}, lookup);
    std::printf("  typedValue<String>(title) = %s\n", title.value_or("nil").c_str());
    VNCodingKeysHelpers::typedValueLoggingError<std::int64_t>(VNStringCodingKey{"title"}, lookup);
    VNCodingKeysHelpers::typedValueLoggingError<std::string>(VNStringCodingKey{"subtitle"}, lookup);
    VNFoundationServices::registerLoggerService(previous);
}

const tool::CommandRegistration kArchiveRegistration{kArchive};
const tool::TourRegistration kPropertiesTour{
    {50, "Properties: typed bags and keyed archives", showProperties}};

}  // namespace
