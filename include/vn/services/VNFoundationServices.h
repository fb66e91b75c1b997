// VNFoundationServices: the registry through which the host application plugs its services
// into the library (alert messages, structured logger, activity indicators, watch
// connectivity). Each service has one strong slot; registering replaces (and releases) what
// the slot held. Parts of the library look services up here when they need them and must
// tolerate an empty slot.
//
// The alert slot is special: it is resolved once, on its first read, to the registered
// service or, when none is registered at that moment, to a new VNLogAlertMessageService, and
// every later read returns that same object even if another service is registered afterwards.
// Register the alert service before anything reads it.
//
// All members are safe from any thread, also during process exit (the registry is never
// destroyed).
#pragma once

#include <memory>

#include "vn/services/VNAlertMessageService.h"
#include "vn/services/VNLoggerService.h"
#include "vn/services/VNNetworkActivityIndicatorService.h"
#include "vn/services/VNProgressActivityIndicatorService.h"
#include "vn/services/VNWatchConnectivityService.h"

namespace vn {

class VNFoundationServices {
  public:
    VNFoundationServices() = delete;

    // Never null. The first call freezes the answer for the rest of the process (or until
    // reset()); concurrent first calls agree on one object.
    static std::shared_ptr<VNAlertMessageService> alertMessageService();
    // Fills the alert slot; has no effect on alertMessageService() once that has been read.
    static void registerAlertMessageService(std::shared_ptr<VNAlertMessageService> service);

    // The slot's current content on every call; null when nothing is registered.
    static std::shared_ptr<VNLoggerService> loggerService();
    static void registerLoggerService(std::shared_ptr<VNLoggerService> service);

    static std::shared_ptr<VNNetworkActivityIndicatorService> networkActivityIndicatorService();
    static void registerNetworkActivityIndicatorService(
        std::shared_ptr<VNNetworkActivityIndicatorService> service);

    static std::shared_ptr<VNProgressActivityIndicatorService> progressActivityIndicatorService();
    static void registerProgressActivityIndicatorService(
        std::shared_ptr<VNProgressActivityIndicatorService> service);

    static std::shared_ptr<VNWatchConnectivityService> watchConnectivityService();
    static void registerWatchConnectivityService(
        std::shared_ptr<VNWatchConnectivityService> service);

    // Empties every slot and unfreezes the alert slot, as at process start. For tests and for
    // hosts that tear their services down; not meant to race with lookups in progress.
    static void reset();
};

}  // namespace vn
