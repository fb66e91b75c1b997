// VNParseJsonOperation: parses its data as JSON when it runs and tells a weak delegate, on the
// main thread, of the parsed value or of the error (no data, or text that is not JSON, with
// the errors of VNUtilities::jsonObject). Its "data" key can be set by a VNDataSetterOperation.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "vn/concurrency/Operation.h"
#include "vn/platform/Error.h"
#include "vn/platform/KeyValueCoding.h"
#include "vn/platform/Value.h"

namespace vn {

class VNParseJsonOperation;

// Both members optional (no-ops by default); called on the main thread, after the operation
// finished.
class VNParseJsonOperationDelegate {
  public:
    virtual ~VNParseJsonOperationDelegate() = default;
    virtual void parseJsonOperationDidParse(const std::shared_ptr<VNParseJsonOperation>& operation,
                                            const Value& value);
    virtual void parseJsonOperationDidFail(const std::shared_ptr<VNParseJsonOperation>& operation,
                                           const ErrorPtr& error);
};

class VNParseJsonOperation : public Operation, public KeyValueCoding {
  public:
    VNParseJsonOperation() = default;

    std::optional<Data> data() const;
    void setData(std::optional<Data> data);
    std::shared_ptr<VNParseJsonOperationDelegate> delegate() const;
    void setDelegate(const std::shared_ptr<VNParseJsonOperationDelegate>& delegate);

    // After the operation ran: the parsed value (nil on failure) and the error (null on success).
    Value value() const;
    ErrorPtr error() const;

    void main() override;

    // "data" (data or nil) is readable and writable; "value" and "error" readable.
    Value valueForKey(std::string_view key) const override;
    void setValueForKey(const Value& value, std::string_view key) override;

  private:
    mutable std::mutex mutex_;
    std::optional<Data> data_;
    std::weak_ptr<VNParseJsonOperationDelegate> delegate_;
    Value value_;
    ErrorPtr error_;
};

}  // namespace vn
