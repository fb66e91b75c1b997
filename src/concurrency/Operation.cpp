#include "vn/concurrency/Operation.h"

#include <algorithm>

#include "concurrency/WorkerPool.h"
#include "vn/platform/Exception.h"

namespace vn {

Operation::~Operation() = default;

void Operation::announce(std::string_view key, KeyValueChange change) {
    std::vector<std::shared_ptr<KeyObserver>> listening;
    {
        std::lock_guard lock(observersMutex_);
        for (const Observer& observer : observers_) {
            if (observer.key.empty() || observer.key == key) listening.push_back(observer.block);
        }
    }
    for (const auto& block : listening) (*block)(*this, key, change);
}

void Operation::announceReadyChange() {
    announce(isReadyKey, KeyValueChange::willChange);
    announce(isReadyKey, KeyValueChange::didChange);
}

Operation::ObserverToken Operation::addObserver(std::string_view key, KeyObserver observer) {
    std::lock_guard lock(observersMutex_);
    const ObserverToken token = nextObserverToken_++;
    if (observer)
        observers_.push_back(
            {token, std::string(key), std::make_shared<KeyObserver>(std::move(observer))});
    return token;
}

void Operation::removeObserver(ObserverToken token) {
    std::shared_ptr<KeyObserver> removed;  // released outside the lock
    std::lock_guard lock(observersMutex_);
    const auto it =
        std::find_if(observers_.begin(), observers_.end(),
                     [token](const Observer& observer) { return observer.token == token; });
    if (it == observers_.end()) return;
    removed = std::move(it->block);
    observers_.erase(it);
}

void Operation::main() {}

void Operation::start() {
    {
        std::lock_guard lock(mutex_);
        if (started_ || finished_) {
            throw Exception(std::string(NSInvalidArgumentException),
                            "*** -[" + className() + " start]: receiver has already been started");
        }
        if (!isReadyLocked()) {
            throw Exception(
                std::string(NSInvalidArgumentException),
                "*** -[" + className() + " start]: receiver is not yet ready to execute");
        }
        if (owner_) {
            throw Exception(
                std::string(NSInvalidArgumentException),
                "*** -[" + className() + " start]: receiver is enqueued on an operation queue");
        }
        started_ = true;
    }
    run();
}

void Operation::startFromQueue() {
    run();
}

void Operation::run() {
    if (isCancelled()) {
        finish();
        return;
    }
    announce(isExecutingKey, KeyValueChange::willChange);
    bool executing = false;
    {
        // finish() may have been called from another thread meanwhile: a finished operation
        // never becomes executing, and its main() is not called.
        std::lock_guard lock(mutex_);
        executing = !finishing_ && !finished_;
        executing_ = executing;
    }
    announce(isExecutingKey, KeyValueChange::didChange);
    if (!executing) return;
    main();
    if (!isAsynchronous()) finish();
}

bool Operation::claimFinish(bool& wasExecuting) {
    std::lock_guard lock(mutex_);
    if (finishing_ || finished_) return false;
    finishing_ = true;
    started_ = true;  // a finishing operation can no longer be started or enqueued
    wasExecuting = executing_;
    return true;
}

void Operation::finish() {
    // Only the caller that claims the transition announces it, so every willChange is paired
    // with its didChange even when several threads finish the operation at once.
    bool wasExecuting = false;
    if (!claimFinish(wasExecuting)) return;
    if (wasExecuting) announce(isExecutingKey, KeyValueChange::willChange);
    announce(isFinishedKey, KeyValueChange::willChange);
    std::vector<std::weak_ptr<Object>> dependents;
    std::function<void()> completion;
    std::shared_ptr<concurrency_internal::OperationOwner> owner;
    bool startedByQueue = false;
    {
        std::lock_guard lock(mutex_);
        startedByQueue = startedByQueue_;
        executing_ = false;
        finished_ = true;
        dependents.swap(dependents_);
        completion = completionBlock_;
        owner = std::move(owner_);
        finishedCondition_.notify_all();
    }
    if (wasExecuting) announce(isExecutingKey, KeyValueChange::didChange);
    announce(isFinishedKey, KeyValueChange::didChange);
    for (const auto& weakDependent : dependents) {
        if (const auto dependent = std::static_pointer_cast<Operation>(weakDependent.lock())) {
            dependent->dependencyFinished(*this);
        }
    }
    if (completion) completion();
    if (owner)
        owner->operationFinished(std::static_pointer_cast<Operation>(shared_from_this()),
                                 startedByQueue);
}

void Operation::cancel() {
    {
        std::lock_guard lock(mutex_);
        if (cancelled_) return;
    }
    announce(isCancelledKey, KeyValueChange::willChange);
    bool becameReady = false;
    std::shared_ptr<concurrency_internal::OperationOwner> owner;
    {
        std::lock_guard lock(mutex_);
        becameReady = !isReadyLocked() && isWaitingToStartLocked();
        cancelled_ = true;
        owner = owner_;
    }
    announce(isCancelledKey, KeyValueChange::didChange);
    if (!becameReady) return;
    announceReadyChange();
    if (owner) owner->operationBecameReady(std::static_pointer_cast<Operation>(shared_from_this()));
}

bool Operation::isCancelled() const {
    std::lock_guard lock(mutex_);
    return cancelled_;
}

bool Operation::isExecuting() const {
    std::lock_guard lock(mutex_);
    return executing_;
}

bool Operation::isFinished() const {
    std::lock_guard lock(mutex_);
    return finished_;
}

bool Operation::isReady() const {
    std::lock_guard lock(mutex_);
    return isReadyLocked();
}

bool Operation::registerDependent(const std::weak_ptr<Object>& dependent) {
    std::lock_guard lock(mutex_);
    if (finished_) return false;
    dependents_.push_back(dependent);
    return true;
}

void Operation::addDependency(const OperationPtr& dependency) {
    if (!dependency || dependency.get() == this) return;
    const bool alreadyFinished = dependency->isFinished();
    bool becameUnready = false;
    {
        std::lock_guard lock(mutex_);
        for (const Dependency& existing : dependencies_) {
            if (existing.operation == dependency) return;
        }
        dependencies_.push_back({dependency, !alreadyFinished});
        if (alreadyFinished) return;
        becameUnready = isReadyLocked() && isWaitingToStartLocked();
        ++pendingDependencies_;
    }
    if (becameUnready) announceReadyChange();
    // The dependency may have finished since it was asked; then it will not call back.
    if (!dependency->registerDependent(weak_from_this())) dependencyFinished(*dependency);
}

void Operation::removeDependency(const OperationPtr& dependency) {
    bool becameReady = false;
    std::shared_ptr<concurrency_internal::OperationOwner> owner;
    {
        std::lock_guard lock(mutex_);
        const auto it =
            std::find_if(dependencies_.begin(), dependencies_.end(),
                         [&](const Dependency& d) { return d.operation == dependency; });
        if (it == dependencies_.end()) return;
        const bool wasReady = isReadyLocked();
        if (it->pending) --pendingDependencies_;
        dependencies_.erase(it);
        becameReady = !wasReady && isReadyLocked() && isWaitingToStartLocked();
        owner = owner_;
    }
    if (!becameReady) return;
    announceReadyChange();
    if (owner) owner->operationBecameReady(std::static_pointer_cast<Operation>(shared_from_this()));
}

void Operation::dependencyFinished(const Operation& dependency) {
    bool becameReady = false;
    std::shared_ptr<concurrency_internal::OperationOwner> owner;
    {
        std::lock_guard lock(mutex_);
        const auto it = std::find_if(
            dependencies_.begin(), dependencies_.end(),
            [&](const Dependency& d) { return d.operation.get() == &dependency && d.pending; });
        if (it == dependencies_.end()) return;
        const bool wasReady = isReadyLocked();
        it->pending = false;
        --pendingDependencies_;
        becameReady = !wasReady && isReadyLocked() && isWaitingToStartLocked();
        owner = owner_;
    }
    if (!becameReady) return;
    announceReadyChange();
    if (owner) owner->operationBecameReady(std::static_pointer_cast<Operation>(shared_from_this()));
}

std::vector<OperationPtr> Operation::dependencies() const {
    std::lock_guard lock(mutex_);
    std::vector<OperationPtr> result;
    result.reserve(dependencies_.size());
    for (const Dependency& d : dependencies_) result.push_back(d.operation);
    return result;
}

void Operation::setCompletionBlock(std::function<void()> block) {
    std::lock_guard lock(mutex_);
    completionBlock_ = std::move(block);
}

std::function<void()> Operation::completionBlock() const {
    std::lock_guard lock(mutex_);
    return completionBlock_;
}

void Operation::waitUntilFinished() {
    std::unique_lock lock(mutex_);
    if (finished_) return;
    concurrency_internal::BlockingRegion blocking;
    finishedCondition_.wait(lock, [this] { return finished_; });
}

std::string Operation::name() const {
    std::lock_guard lock(mutex_);
    return name_;
}

void Operation::setName(std::string name) {
    std::lock_guard lock(mutex_);
    name_ = std::move(name);
}

bool Operation::attach(std::shared_ptr<concurrency_internal::OperationOwner> owner) {
    std::lock_guard lock(mutex_);
    if (owner_ || started_ || finished_) return false;
    owner_ = std::move(owner);
    return true;
}

bool Operation::claimForQueue() {
    std::lock_guard lock(mutex_);
    if (!isWaitingToStartLocked() || !isReadyLocked()) return false;
    started_ = true;
    startedByQueue_ = true;
    return true;
}

BlockOperation::BlockOperation(std::function<void()> block) {
    if (block) blocks_.push_back(std::move(block));
}

void BlockOperation::addExecutionBlock(std::function<void()> block) {
    if (isExecuting() || isFinished()) {
        throw Exception(std::string(NSInvalidArgumentException),
                        "*** -[BlockOperation addExecutionBlock:]: blocks cannot be added after "
                        "the operation has "
                        "started executing or finished");
    }
    if (!block) return;
    std::lock_guard lock(blocksMutex_);
    blocks_.push_back(std::move(block));
}

std::vector<std::function<void()>> BlockOperation::executionBlocks() const {
    std::lock_guard lock(blocksMutex_);
    return blocks_;
}

void BlockOperation::main() {
    for (const auto& block : executionBlocks()) block();
}

}  // namespace vn
