// The library's session factories: one replaceable place through which it makes sessions.
#include "network/ProcessWideSetting.h"
#include "vn/network/URLSession.h"

namespace vn {
namespace {

// Null: sessionWithConfiguration itself.
network_internal::ProcessWideSetting<URLSession::SessionFactory>& factorySetting() {
    static auto* const setting =
        new network_internal::ProcessWideSetting<URLSession::SessionFactory>;
    return *setting;
}

}  // namespace

URLSession::SessionFactory URLSession::setVNSessionFactory(SessionFactory factory) {
    if (SessionFactory replaced = factorySetting().exchange(std::move(factory))) return replaced;
    return [](const URLSessionConfiguration& configuration, URLSessionDelegatePtr delegate,
              ExecutorPtr delegateQueue) {
        return sessionWithConfiguration(configuration, std::move(delegate),
                                        std::move(delegateQueue));
    };
}

URLSessionPtr URLSession::vnSessionWithConfiguration(const URLSessionConfiguration& configuration,
                                                     URLSessionDelegatePtr delegate,
                                                     ExecutorPtr delegateQueue) {
    const SessionFactory factory = factorySetting().get();
    if (!factory)
        return sessionWithConfiguration(configuration, std::move(delegate),
                                        std::move(delegateQueue));
    return factory(configuration, std::move(delegate), std::move(delegateQueue));
}

URLSessionPtr URLSession::vnSessionWithConfiguration(const URLSessionConfiguration& configuration) {
    return vnSessionWithConfiguration(configuration, nullptr, nullptr);
}

const URLSessionPtr& URLSession::vnSharedSession() {
    // Never destroyed: tasks may still use it while static objects are torn down at exit.
    static const URLSessionPtr* const session = new URLSessionPtr(
        vnSessionWithConfiguration(URLSessionConfiguration::defaultSessionConfiguration()));
    return *session;
}

}  // namespace vn
