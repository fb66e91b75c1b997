#include "vn/services/VNFoundationServices.h"

#include <mutex>
#include <utility>

#include "vn/services/VNLogAlertMessageService.h"

namespace vn {
namespace {

struct Registry {
    std::mutex mutex;
    std::shared_ptr<VNAlertMessageService> alertSlot;
    // The alert service as resolved by the first read; null until then.
    std::shared_ptr<VNAlertMessageService> frozenAlert;
    std::shared_ptr<VNLoggerService> logger;
    std::shared_ptr<VNNetworkActivityIndicatorService> networkActivityIndicator;
    std::shared_ptr<VNProgressActivityIndicatorService> progressActivityIndicator;
    std::shared_ptr<VNWatchConnectivityService> watchConnectivity;
};

Registry& registry() {
    static auto* instance = new Registry();  // never destroyed: services are looked up during exit
    return *instance;
}

template <typename Service>
std::shared_ptr<Service> read(std::shared_ptr<Service> Registry::*slot) {
    Registry& r = registry();
    std::lock_guard lock(r.mutex);
    return r.*slot;
}

// The replaced service is released after the lock, so its destructor may use the registry.
template <typename Service>
void replace(std::shared_ptr<Service> Registry::*slot, std::shared_ptr<Service> service) {
    Registry& r = registry();
    std::lock_guard lock(r.mutex);
    std::swap(r.*slot, service);
}

}  // namespace

std::shared_ptr<VNAlertMessageService> VNFoundationServices::alertMessageService() {
    Registry& r = registry();
    std::lock_guard lock(r.mutex);
    if (!r.frozenAlert) {
        if (!r.alertSlot) r.alertSlot = std::make_shared<VNLogAlertMessageService>();
        r.frozenAlert = r.alertSlot;
    }
    return r.frozenAlert;
}

void VNFoundationServices::registerAlertMessageService(
    std::shared_ptr<VNAlertMessageService> service) {
    replace(&Registry::alertSlot, std::move(service));
}

std::shared_ptr<VNLoggerService> VNFoundationServices::loggerService() {
    return read(&Registry::logger);
}

void VNFoundationServices::registerLoggerService(std::shared_ptr<VNLoggerService> service) {
    replace(&Registry::logger, std::move(service));
}

std::shared_ptr<VNNetworkActivityIndicatorService>
VNFoundationServices::networkActivityIndicatorService() {
    return read(&Registry::networkActivityIndicator);
}

void VNFoundationServices::registerNetworkActivityIndicatorService(
    std::shared_ptr<VNNetworkActivityIndicatorService> service) {
    replace(&Registry::networkActivityIndicator, std::move(service));
}

std::shared_ptr<VNProgressActivityIndicatorService>
VNFoundationServices::progressActivityIndicatorService() {
    return read(&Registry::progressActivityIndicator);
}

void VNFoundationServices::registerProgressActivityIndicatorService(
    std::shared_ptr<VNProgressActivityIndicatorService> service) {
    replace(&Registry::progressActivityIndicator, std::move(service));
}

std::shared_ptr<VNWatchConnectivityService> VNFoundationServices::watchConnectivityService() {
    return read(&Registry::watchConnectivity);
}

void VNFoundationServices::registerWatchConnectivityService(
    std::shared_ptr<VNWatchConnectivityService> service) {
    replace(&Registry::watchConnectivity, std::move(service));
}

void VNFoundationServices::reset() {
    Registry released;  // the old services die after the lock is gone
    Registry& r = registry();
    std::lock_guard lock(r.mutex);
    std::swap(released.alertSlot, r.alertSlot);
    std::swap(released.frozenAlert, r.frozenAlert);
    std::swap(released.logger, r.logger);
    std::swap(released.networkActivityIndicator, r.networkActivityIndicator);
    std::swap(released.progressActivityIndicator, r.progressActivityIndicator);
    std::swap(released.watchConnectivity, r.watchConnectivity);
}

}  // namespace vn
