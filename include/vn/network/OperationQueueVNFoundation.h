// The request → data → JSON chain on an operation queue: a VNURLRequestOperation, a
// VNDataSetterOperation copying its "data" into the parser's "data", and a
// VNParseJsonOperation, added in that order, each depending on the one before.
#pragma once

#include <memory>

#include "vn/concurrency/OperationQueue.h"
#include "vn/network/VNDataSetterOperation.h"
#include "vn/network/VNParseJsonOperation.h"
#include "vn/network/VNURLRequestOperation.h"

namespace vn {

// A delegate of both the request and the parse operation.
class VNURLRequestAndParseJsonDelegate : public VNURLRequestOperationDelegate,
                                         public VNParseJsonOperationDelegate {};

struct VNURLRequestAndParseJsonOperations {
    VNURLRequestOperationPtr request;
    std::shared_ptr<VNDataSetterOperation> setter;
    std::shared_ptr<VNParseJsonOperation> parser;
};

// Adds the three operations to queue (request with delegate, setter with the key map
// {"data": "data"}, parser with delegate) and returns them. The delegate is held weakly.
VNURLRequestAndParseJsonOperations addURLRequestAndParseJSONOperationsForRequest(
    OperationQueue& queue, const URLRequest& request,
    const std::shared_ptr<VNURLRequestAndParseJsonDelegate>& delegate);

}  // namespace vn
