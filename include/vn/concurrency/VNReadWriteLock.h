// VNReadWriteLock: a POSIX read-write lock inside an object: many readers or one writer.
//
// The caller pairs every acquire with one unlock(). The lock is not recursive, a read lock
// cannot be upgraded, and the object must not be destroyed while held. Return codes of the
// POSIX calls are ignored, as the platform's class does.
#pragma once

#include <pthread.h>

#include "vn/platform/Object.h"

namespace vn {

class VNReadWriteLock : public Object {
  public:
    VNReadWriteLock() = default;
    ~VNReadWriteLock() override;

    void acquireReadLock();
    void acquireWriteLock();
    // Releases a read or a write lock held by the calling thread.
    void unlock();

  private:
    pthread_rwlock_t _lock = PTHREAD_RWLOCK_INITIALIZER;
};

}  // namespace vn
