#include "vn/network/VNParseJsonOperation.h"

#include "vn/concurrency/DispatchQueue.h"
#include "vn/errors/NSErrorVNFoundation.h"
#include "vn/values/JSON.h"

namespace vn {

void VNParseJsonOperationDelegate::parseJsonOperationDidParse(
    const std::shared_ptr<VNParseJsonOperation>&, const Value&) {}

void VNParseJsonOperationDelegate::parseJsonOperationDidFail(
    const std::shared_ptr<VNParseJsonOperation>&, const ErrorPtr&) {}

std::optional<Data> VNParseJsonOperation::data() const {
    std::lock_guard lock(mutex_);
    return data_;
}

void VNParseJsonOperation::setData(std::optional<Data> data) {
    std::lock_guard lock(mutex_);
    data_ = std::move(data);
}

std::shared_ptr<VNParseJsonOperationDelegate> VNParseJsonOperation::delegate() const {
    std::lock_guard lock(mutex_);
    return delegate_.lock();
}

void VNParseJsonOperation::setDelegate(
    const std::shared_ptr<VNParseJsonOperationDelegate>& delegate) {
    std::lock_guard lock(mutex_);
    delegate_ = delegate;
}

Value VNParseJsonOperation::value() const {
    std::lock_guard lock(mutex_);
    return value_;
}

ErrorPtr VNParseJsonOperation::error() const {
    std::lock_guard lock(mutex_);
    return error_;
}

void VNParseJsonOperation::main() {
    const std::optional<Data> input = data();
    ErrorPtr failure;
    Value parsed;
    if (input) {
        parsed = VNUtilities::jsonObject(*input, std::nullopt, &failure);
    } else {
        failure = defaultVNErrorWithDeveloperDescription("No data to parse as JSON");
    }
    {
        std::lock_guard lock(mutex_);
        value_ = parsed;
        error_ = failure;
    }
    auto self = std::static_pointer_cast<VNParseJsonOperation>(Operation::shared_from_this());
    DispatchQueue::vnOnMain([self, parsed, failure] {
        const auto delegate = self->delegate();
        if (!delegate) return;
        if (failure) {
            delegate->parseJsonOperationDidFail(self, failure);
        } else {
            delegate->parseJsonOperationDidParse(self, parsed);
        }
    });
}

Value VNParseJsonOperation::valueForKey(std::string_view key) const {
    if (key == "data") {
        const auto input = data();
        return input ? Value(*input) : Value();
    }
    if (key == "value") return value();
    if (key == "error") return Value(error());
    return KeyValueCoding::valueForKey(key);
}

void VNParseJsonOperation::setValueForKey(const Value& value, std::string_view key) {
    if (key != "data") return KeyValueCoding::setValueForKey(value, key);
    if (const Data* bytes = value.data()) return setData(*bytes);
    if (const std::string* text = value.string()) return setData(Data(text->begin(), text->end()));
    setData(std::nullopt);
}

}  // namespace vn
