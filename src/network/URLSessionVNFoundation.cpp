// The library's session factories: one replaceable place through which it makes sessions.
#include <mutex>

#include "vn/network/URLSession.h"

namespace vn {
namespace {

struct FactorySlot {
    std::mutex mutex;
    URLSession::SessionFactory factory;
};

FactorySlot& factorySlot() {
    static FactorySlot* const slot = new FactorySlot;  // read by sessions made during exit
    return *slot;
}

}  // namespace

URLSession::SessionFactory URLSession::setVNSessionFactory(SessionFactory factory) {
    FactorySlot& slot = factorySlot();
    std::lock_guard lock(slot.mutex);
    std::swap(slot.factory, factory);
    if (factory) return factory;
    return [](const URLSessionConfiguration& configuration, URLSessionDelegatePtr delegate,
              ExecutorPtr delegateQueue) {
        return sessionWithConfiguration(configuration, std::move(delegate),
                                        std::move(delegateQueue));
    };
}

URLSessionPtr URLSession::vnSessionWithConfiguration(const URLSessionConfiguration& configuration,
                                                     URLSessionDelegatePtr delegate,
                                                     ExecutorPtr delegateQueue) {
    SessionFactory factory;
    {
        FactorySlot& slot = factorySlot();
        std::lock_guard lock(slot.mutex);
        factory = slot.factory;
    }
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
