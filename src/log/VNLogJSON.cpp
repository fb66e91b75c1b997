// The log's JSON writers: structured values rendered as JSON text, built only when the text
// will reach a sink.
#include "vn/log/VNLog.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/UserDefaults.h"
#include "vn/values/JSON.h"

namespace vn {
namespace {

bool parserElementGateIsOpen() {
    if (VNUtilities::showDeveloperInfo()) return true;
    if (!VNUtilities::isTolvarApp()) return false;
    const UserDefaults& defaults = UserDefaults::standard();
    return defaults.boolForKey(VNLog::logEnabledPreferenceKey) &&
           defaults.boolForKey(VNLog::logResponsesPreferenceKey);
}

void writeParserElement(const Value& element) {
    if (!VNLog::hasActiveSink()) return;
    VNLog::writeMessage("JSON Parser: " + element.description(), true);
}

}  // namespace

void VNLog::logJSONObject(const Value& object, std::string_view title) {
    if (!hasActiveSink()) return;
    const Value titled(Value::Dictionary{{std::string(title), object}});
    writeMessage(jsonString(titled, JSONWritingStyle::pretty), true);
}

void VNLog::logJSONParserElementIfEnabled(const Value& element) {
    sharedInstance();
    if (parserElementGateIsOpen()) writeParserElement(element);
}

void VNLog::logJSONParserElementIfEnabled(const std::function<Value()>& element) {
    sharedInstance();
    if (parserElementGateIsOpen() && element) writeParserElement(element());
}

}  // namespace vn
