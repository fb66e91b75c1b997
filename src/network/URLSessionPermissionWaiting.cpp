// The URL session's task factories that repeat a request once, in a session that waits for
// connectivity, when its first attempt failed while the local-network permission may be
// pending; the classification of such failures; the waiting session.
#include <mutex>

#include "network/ProcessWideSetting.h"
#include "vn/network/IPAddressLiteral.h"
#include "vn/network/URLSession.h"
#include "vn/network/VNNetworkReachability.h"
#include "vn/network/VNPlatformVersion.h"
#include "vn/network/VNUndocumentedConfig.h"
#include "vn/platform/Error.h"
#include "vn/platform/Exception.h"
#include "vn/platform/ExecutionEnvironment.h"

namespace vn {
namespace {

// Null: the built-in classification.
network_internal::ProcessWideSetting<URLSession::LocalNetworkPermissionErrorClassifier>&
classifierSetting() {
    static auto* const setting =
        new network_internal::ProcessWideSetting<URLSession::LocalNetworkPermissionErrorClassifier>;
    return *setting;
}

struct WaitingSessionSlot {
    std::mutex mutex;
    URLSessionPtr session;
};

WaitingSessionSlot& waitingSessionSlot() {
    static WaitingSessionSlot* const slot = new WaitingSessionSlot;  // kept for the process
    return *slot;
}

bool isInBackground() {
    return VNExecutionEnvironmentHelper::applicationState() == UIApplicationState::background;
}

// A background application cannot show the permission question, and a session that waits for
// connectivity needs no second attempt; without a handler there is nobody to answer.
template <typename Completion>
bool armsRetry(const URLSession& session, const Completion& completionHandler) {
    return completionHandler && !isInBackground() && !session.configuration().waitsForConnectivity;
}

template <typename Result>
using Completion = std::function<void(Result, URLResponsePtr, ErrorPtr)>;

template <typename Result, typename TaskPtr>
using RetryMaker = std::function<TaskPtr(URLSession& waitingSession, Completion<Result> handler)>;

// The first attempt's completion: passes its result to handler, or drops it and makes the one
// retry (whose completion is handler itself) in the waiting session.
template <typename Result, typename TaskPtr>
Completion<Result> retryingCompletion(
    Completion<Result> handler, std::optional<URL> url, RetryMaker<Result, TaskPtr> makeRetry,
    std::function<void(const TaskPtr&)> onRetryWaitingTaskCreated) {
    return [handler = std::move(handler), url = std::move(url), makeRetry = std::move(makeRetry),
            onRetry = std::move(onRetryWaitingTaskCreated)](Result result, URLResponsePtr response,
                                                            ErrorPtr error) {
        if (!error || !URLSession::vnMayBeLocalNetworkPermissionError(error, url) ||
            isInBackground())
            return handler(std::move(result), std::move(response), std::move(error));
        TaskPtr retry;
        if (const URLSessionPtr waitingSession = URLSession::vnPermissionWaitingSession()) {
            try {
                retry = makeRetry(*waitingSession, handler);
            } catch (const Exception&) {
                // The waiting session was invalidated: the first result is all there is.
            }
        }
        if (!retry) return handler(std::move(result), std::move(response), std::move(error));
        if (onRetry) {
            onRetry(retry);
        } else {
            retry->resume();
        }
    };
}

using DataResult = std::optional<Data>;
using DownloadResult = std::optional<std::string>;

bool flagsSuggestLocalLink(SCNetworkReachabilityFlags flags) {
    const bool reachable = flags & kSCNetworkReachabilityFlagsReachable;
    const bool onLink =
        flags & (kSCNetworkReachabilityFlagsIsLocalAddress | kSCNetworkReachabilityFlagsIsDirect);
    const bool cellular = flags & kSCNetworkReachabilityFlagsIsWWAN;
    return reachable && onLink && !cellular;
}

}  // namespace

URLSessionDataTaskPtr URLSession::vnDataTaskWaitingForPermissionWithRequest(
    const URLRequest& request, DataCompletion completionHandler,
    DataRetryTaskHandler onRetryWaitingTaskCreated) {
    if (!armsRetry(*this, completionHandler))
        return dataTaskWithRequest(request, std::move(completionHandler));
    return dataTaskWithRequest(
        request, retryingCompletion<DataResult, URLSessionDataTaskPtr>(
                     std::move(completionHandler), request.url(),
                     [request](URLSession& waitingSession, DataCompletion handler) {
                         return waitingSession.dataTaskWithRequest(request, std::move(handler));
                     },
                     std::move(onRetryWaitingTaskCreated)));
}

URLSessionDataTaskPtr URLSession::vnDataTaskWaitingForPermissionWithURL(
    const URL& url, DataCompletion completionHandler,
    DataRetryTaskHandler onRetryWaitingTaskCreated) {
    if (!armsRetry(*this, completionHandler))
        return dataTaskWithURL(url, std::move(completionHandler));
    return dataTaskWithURL(url, retryingCompletion<DataResult, URLSessionDataTaskPtr>(
                                    std::move(completionHandler), url,
                                    [url](URLSession& waitingSession, DataCompletion handler) {
                                        return waitingSession.dataTaskWithURL(url,
                                                                              std::move(handler));
                                    },
                                    std::move(onRetryWaitingTaskCreated)));
}

URLSessionUploadTaskPtr URLSession::vnUploadTaskWaitingForPermissionWithRequest(
    const URLRequest& request, const URL& fileURL, DataCompletion completionHandler,
    UploadRetryTaskHandler onRetryWaitingTaskCreated) {
    if (!armsRetry(*this, completionHandler))
        return uploadTaskWithRequest(request, fileURL, std::move(completionHandler));
    return uploadTaskWithRequest(
        request, fileURL,
        retryingCompletion<DataResult, URLSessionUploadTaskPtr>(
            std::move(completionHandler), request.url(),
            [request, fileURL](URLSession& waitingSession, DataCompletion handler) {
                return waitingSession.uploadTaskWithRequest(request, fileURL, std::move(handler));
            },
            std::move(onRetryWaitingTaskCreated)));
}

URLSessionUploadTaskPtr URLSession::vnUploadTaskWaitingForPermissionWithRequest(
    const URLRequest& request, Data bodyData, DataCompletion completionHandler,
    UploadRetryTaskHandler onRetryWaitingTaskCreated) {
    if (!armsRetry(*this, completionHandler))
        return uploadTaskWithRequest(request, std::move(bodyData), std::move(completionHandler));
    auto retryBody = std::make_shared<const Data>(bodyData);
    return uploadTaskWithRequest(
        request, std::move(bodyData),
        retryingCompletion<DataResult, URLSessionUploadTaskPtr>(
            std::move(completionHandler), request.url(),
            [request, retryBody](URLSession& waitingSession, DataCompletion handler) {
                return waitingSession.uploadTaskWithRequest(request, *retryBody,
                                                            std::move(handler));
            },
            std::move(onRetryWaitingTaskCreated)));
}

URLSessionDownloadTaskPtr URLSession::vnDownloadTaskWaitingForPermissionWithRequest(
    const URLRequest& request, DownloadCompletion completionHandler,
    DownloadRetryTaskHandler onRetryWaitingTaskCreated) {
    if (!armsRetry(*this, completionHandler))
        return downloadTaskWithRequest(request, std::move(completionHandler));
    return downloadTaskWithRequest(
        request, retryingCompletion<DownloadResult, URLSessionDownloadTaskPtr>(
                     std::move(completionHandler), request.url(),
                     [request](URLSession& waitingSession, DownloadCompletion handler) {
                         return waitingSession.downloadTaskWithRequest(request, std::move(handler));
                     },
                     std::move(onRetryWaitingTaskCreated)));
}

URLSessionDownloadTaskPtr URLSession::vnDownloadTaskWaitingForPermissionWithURL(
    const URL& url, DownloadCompletion completionHandler,
    DownloadRetryTaskHandler onRetryWaitingTaskCreated) {
    if (!armsRetry(*this, completionHandler))
        return downloadTaskWithURL(url, std::move(completionHandler));
    return downloadTaskWithURL(
        url, retryingCompletion<DownloadResult, URLSessionDownloadTaskPtr>(
                 std::move(completionHandler), url,
                 [url](URLSession& waitingSession, DownloadCompletion handler) {
                     return waitingSession.downloadTaskWithURL(url, std::move(handler));
                 },
                 std::move(onRetryWaitingTaskCreated)));
}

bool URLSession::vnMayBeLocalNetworkPermissionError(const ErrorPtr& error,
                                                    const std::optional<URL>& url) {
    const LocalNetworkPermissionErrorClassifier classifier = classifierSetting().get();
    return classifier ? classifier(error, url)
                      : vnMayBeLocalNetworkPermissionErrorDefault(error, url);
}

bool URLSession::vnMayBeLocalNetworkPermissionErrorDefault(const ErrorPtr& error,
                                                           const std::optional<URL>& url) {
    if (!VNPlatformVersion::isAtLeast(14, 0)) return false;
    if (!error || error->domain() != NSURLErrorDomain) return false;
    if (error->code() != NSURLErrorNotConnectedToInternet) return false;
    if (!url || !url->host()) return false;
    const auto literal = IPAddressLiteral::parse(*url->host());
    if (!literal) return false;
    const auto flags = VNNetworkReachability::flagsForHost(literal->hostText());
    if (!flags) return false;
    return flagsSuggestLocalLink(*flags);
}

URLSession::LocalNetworkPermissionErrorClassifier
URLSession::setVNLocalNetworkPermissionErrorClassifier(
    LocalNetworkPermissionErrorClassifier classifier) {
    if (LocalNetworkPermissionErrorClassifier replaced =
            classifierSetting().exchange(std::move(classifier)))
        return replaced;
    return [](const ErrorPtr& error, const std::optional<URL>& url) {
        return vnMayBeLocalNetworkPermissionErrorDefault(error, url);
    };
}

URLSessionPtr URLSession::vnPermissionWaitingSession() {
    WaitingSessionSlot& slot = waitingSessionSlot();
    std::lock_guard lock(slot.mutex);
    if (!slot.session) {
        URLSessionConfiguration configuration =
            URLSessionConfiguration::defaultSessionConfiguration();
        configuration.waitsForConnectivity = true;
        configuration.timeoutIntervalForResource =
            VNUndocumentedConfig::localNetworkPermissionTimeout();
        slot.session = vnSessionWithConfiguration(configuration);
    }
    return slot.session;
}

void URLSession::vnResetPermissionWaitingSession() {
    URLSessionPtr forgotten;
    WaitingSessionSlot& slot = waitingSessionSlot();
    std::lock_guard lock(slot.mutex);
    std::swap(forgotten, slot.session);
}

}  // namespace vn
