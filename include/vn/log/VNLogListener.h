// VNLogListener: an object that receives every message VNLog writes, whatever the console and
// file switches say (see VNLog::addListener).
#pragma once

#include <memory>
#include <string>

namespace vn {

class VNLogListener {
  public:
    virtual ~VNLogListener() = default;

    // Receives one message with its line end ("abc\n"). Called on the thread that logged, in
    // registration order among listeners and outside the log's own lock, so several threads
    // may call it at the same time: implementations must be thread-safe. It may log, and add
    // or remove listeners (itself included); such changes apply from the next message on.
    virtual void logListenerNotifyMessage(const std::string& message) = 0;
};

// Listeners are held strongly by the log until removed, and compared by identity (address).
using VNLogListenerPtr = std::shared_ptr<VNLogListener>;

}  // namespace vn
