#include "vn/network/OperationQueueVNFoundation.h"

namespace vn {

VNURLRequestAndParseJsonOperations addURLRequestAndParseJSONOperationsForRequest(
    OperationQueue& queue, const URLRequest& request,
    const std::shared_ptr<VNURLRequestAndParseJsonDelegate>& delegate) {
    auto requestOperation = std::make_shared<VNURLRequestOperation>();
    requestOperation->setRequest(request);
    requestOperation->setDelegate(delegate);
    auto parser = std::make_shared<VNParseJsonOperation>();
    parser->setDelegate(delegate);
    auto setter = std::make_shared<VNDataSetterOperation>(
        requestOperation, parser, VNDataSetterOperation::DataKeys{{"data", "data"}});
    setter->addDependency(requestOperation);
    parser->addDependency(setter);
    queue.addOperation(requestOperation);
    queue.addOperation(setter);
    queue.addOperation(parser);
    return {std::move(requestOperation), std::move(setter), std::move(parser)};
}

}  // namespace vn
