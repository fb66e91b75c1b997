#include "vn/concurrency/VNReadWriteLock.h"

namespace vn {

VNReadWriteLock::~VNReadWriteLock() {
    pthread_rwlock_destroy(&_lock);
}

void VNReadWriteLock::acquireReadLock() {
    pthread_rwlock_rdlock(&_lock);
}

void VNReadWriteLock::acquireWriteLock() {
    pthread_rwlock_wrlock(&_lock);
}

void VNReadWriteLock::unlock() {
    pthread_rwlock_unlock(&_lock);
}

}  // namespace vn
