#include "vn/concurrency/OperationQueue.h"

#include <condition_variable>
#include <deque>
#include <list>
#include <mutex>
#include <unordered_map>

#include "concurrency/QueueContext.h"
#include "concurrency/WorkerPool.h"
#include "vn/platform/Exception.h"

namespace vn {

// The queue's state, shared with its operations while they are enqueued, so that a queue
// whose owner let go still finishes its work.
class OperationQueue::Core final : public concurrency_internal::OperationOwner,
                                   public std::enable_shared_from_this<Core> {
  public:
    explicit Core(DispatchQueuePtr defaultUnderlyingQueue, long maxConcurrent)
        : defaultUnderlyingQueue_(std::move(defaultUnderlyingQueue)),
          maxConcurrent_(maxConcurrent) {}

    void add(const OperationPtr& operation) {
        bool attached = false;
        {
            // Attached and recorded in one step: a dependency finishing on another thread may
            // make the operation ready (and run it) at once, and it must be on record by then.
            std::lock_guard lock(mutex_);
            attached = operation->attach(shared_from_this());
            if (attached) {
                positions_[operation.get()] = operations_.insert(operations_.end(), operation);
                if (operation->isReady()) ready_.push_back(operation);
            }
        }
        if (!attached) {
            throw Exception(std::string(NSInvalidArgumentException),
                            "*** -[OperationQueue addOperation:]: operation is already enqueued on "
                            "a queue, or is "
                            "executing or finished");
        }
        startReadyOperations();
    }

    void operationBecameReady(const OperationPtr& operation) override {
        {
            std::lock_guard lock(mutex_);
            ready_.push_back(operation);
        }
        startReadyOperations();
    }

    void operationFinished(const OperationPtr& operation, bool startedByQueue) override {
        {
            std::lock_guard lock(mutex_);
            if (const auto it = positions_.find(operation.get()); it != positions_.end()) {
                operations_.erase(it->second);
                positions_.erase(it);
            }
            if (startedByQueue) --running_;
            if (operations_.empty()) allFinished_.notify_all();
        }
        startReadyOperations();
    }

    // Starts ready operations while the concurrency limit allows. The ready list may hold
    // operations that stopped being ready or were started already: claiming sorts them out
    // (an operation that becomes ready again is listed again).
    void startReadyOperations() {
        std::vector<OperationPtr> starting;
        DispatchQueuePtr queue;
        {
            std::lock_guard lock(mutex_);
            while (!suspended_ && hasRoomLocked() && !ready_.empty()) {
                OperationPtr operation = std::move(ready_.front());
                ready_.pop_front();
                if (!operation->claimForQueue()) continue;
                ++running_;
                starting.push_back(std::move(operation));
            }
            queue = underlyingQueueLocked();
        }
        for (auto& operation : starting) {
            queue->async([core = shared_from_this(), operation = std::move(operation)] {
                operation->startFromQueue();
            });
        }
    }

    std::vector<OperationPtr> operations() const {
        std::lock_guard lock(mutex_);
        return {operations_.begin(), operations_.end()};
    }

    std::size_t operationCount() const {
        std::lock_guard lock(mutex_);
        return operations_.size();
    }

    long maxConcurrent() const {
        std::lock_guard lock(mutex_);
        return maxConcurrent_;
    }

    void setMaxConcurrent(long count) {
        {
            std::lock_guard lock(mutex_);
            maxConcurrent_ = count < 0 ? defaultMaxConcurrentOperationCount : count;
        }
        startReadyOperations();
    }

    bool isSuspended() const {
        std::lock_guard lock(mutex_);
        return suspended_;
    }

    void setSuspended(bool suspended) {
        {
            std::lock_guard lock(mutex_);
            suspended_ = suspended;
        }
        startReadyOperations();
    }

    void waitUntilEmpty() {
        std::unique_lock lock(mutex_);
        if (operations_.empty()) return;
        concurrency_internal::BlockingRegion blocking;
        allFinished_.wait(lock, [this] { return operations_.empty(); });
    }

    DispatchQueuePtr underlyingQueue() const {
        std::lock_guard lock(mutex_);
        return underlyingQueueLocked();
    }

    void setUnderlyingQueue(DispatchQueuePtr queue) {
        std::lock_guard lock(mutex_);
        underlyingQueue_ = std::move(queue);
    }

    std::string name() const {
        std::lock_guard lock(mutex_);
        return name_;
    }

    void setName(std::string name) {
        std::lock_guard lock(mutex_);
        name_ = std::move(name);
    }

  private:
    bool hasRoomLocked() const { return maxConcurrent_ < 0 || running_ < maxConcurrent_; }
    const DispatchQueuePtr& underlyingQueueLocked() const {
        return underlyingQueue_ ? underlyingQueue_ : defaultUnderlyingQueue_;
    }

    const DispatchQueuePtr defaultUnderlyingQueue_;
    mutable std::mutex mutex_;
    std::condition_variable allFinished_;
    std::list<OperationPtr> operations_;
    std::unordered_map<const Operation*, std::list<OperationPtr>::iterator> positions_;
    std::deque<OperationPtr> ready_;
    long maxConcurrent_;
    long running_ = 0;
    bool suspended_ = false;
    DispatchQueuePtr underlyingQueue_;
    std::string name_;
};

OperationQueue::OperationQueue()
    : core_(std::make_shared<Core>(DispatchQueue::global(DISPATCH_QUEUE_PRIORITY_DEFAULT),
                                   defaultMaxConcurrentOperationCount)) {}

OperationQueue::~OperationQueue() = default;

const OperationQueuePtr& OperationQueue::mainQueue() {
    // Deliberately leaked, like the main dispatch queue it runs on.
    static const auto* queue = [] {
        auto mainQueue = std::make_shared<OperationQueue>();
        mainQueue->core_ = std::make_shared<Core>(DispatchQueue::main(), 1);
        mainQueue->setName("vn.main");
        return new OperationQueuePtr(std::move(mainQueue));
    }();
    return *queue;
}

void OperationQueue::addOperation(const OperationPtr& operation) {
    if (operation) core_->add(operation);
}

void OperationQueue::addOperations(const std::vector<OperationPtr>& operations,
                                   bool waitUntilFinished) {
    for (const auto& operation : operations) addOperation(operation);
    if (!waitUntilFinished) return;
    for (const auto& operation : operations) {
        if (operation) operation->waitUntilFinished();
    }
}

void OperationQueue::addOperationWithBlock(std::function<void()> block) {
    addOperation(std::make_shared<BlockOperation>(std::move(block)));
}

std::vector<OperationPtr> OperationQueue::operations() const {
    return core_->operations();
}

std::size_t OperationQueue::operationCount() const {
    return core_->operationCount();
}

long OperationQueue::maxConcurrentOperationCount() const {
    return core_->maxConcurrent();
}

void OperationQueue::setMaxConcurrentOperationCount(long count) {
    core_->setMaxConcurrent(count);
}

bool OperationQueue::isSuspended() const {
    return core_->isSuspended();
}

void OperationQueue::setSuspended(bool suspended) {
    core_->setSuspended(suspended);
}

void OperationQueue::cancelAllOperations() {
    for (const auto& operation : core_->operations()) operation->cancel();
}

void OperationQueue::waitUntilAllOperationsAreFinished() {
    core_->waitUntilEmpty();
}

DispatchQueuePtr OperationQueue::underlyingQueue() const {
    return core_->underlyingQueue();
}

void OperationQueue::setUnderlyingQueue(DispatchQueuePtr queue) {
    core_->setUnderlyingQueue(std::move(queue));
}

std::string OperationQueue::name() const {
    return core_->name();
}

void OperationQueue::setName(std::string name) {
    core_->setName(std::move(name));
}

}  // namespace vn
