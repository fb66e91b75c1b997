#include "vn/network/URLSessionDelegate.h"

namespace vn {

void URLSessionDelegate::willPerformHTTPRedirection(const std::shared_ptr<URLSession>&,
                                                    const std::shared_ptr<URLSessionTask>&,
                                                    const HTTPURLResponsePtr&,
                                                    URLRequest newRequest,
                                                    RedirectCompletion completionHandler) {
    completionHandler(std::move(newRequest));
}

void URLSessionDelegate::didReceiveResponse(const std::shared_ptr<URLSession>&,
                                            const std::shared_ptr<URLSessionDataTask>&,
                                            const URLResponsePtr&,
                                            ResponseCompletion completionHandler) {
    completionHandler(URLSessionResponseDisposition::allow);
}

void URLSessionDelegate::didBecomeDownloadTask(const std::shared_ptr<URLSession>&,
                                               const std::shared_ptr<URLSessionDataTask>&,
                                               const std::shared_ptr<URLSessionDownloadTask>&) {}

void URLSessionDelegate::didReceiveData(const std::shared_ptr<URLSession>&,
                                        const std::shared_ptr<URLSessionDataTask>&, const Data&) {}

void URLSessionDelegate::didFinishDownloadingToURL(const std::shared_ptr<URLSession>&,
                                                   const std::shared_ptr<URLSessionDownloadTask>&,
                                                   const std::string&) {}

void URLSessionDelegate::didCompleteWithError(const std::shared_ptr<URLSession>&,
                                              const std::shared_ptr<URLSessionTask>&,
                                              const ErrorPtr&) {}

void URLSessionDelegate::didBecomeInvalidWithError(const std::shared_ptr<URLSession>&,
                                                   const ErrorPtr&) {}

}  // namespace vn
