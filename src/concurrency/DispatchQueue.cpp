#include "vn/concurrency/DispatchQueue.h"

#include <asio/steady_timer.hpp>

#include <array>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>

#include "concurrency/QueueContext.h"
#include "concurrency/WorkerPool.h"
#include "vn/concurrency/DispatchGroup.h"
#include "vn/concurrency/RunLoop.h"
#include "vn/platform/FatalError.h"

namespace vn {
namespace concurrency_internal {
namespace {

thread_local CurrentQueueScope* tInnermostScope = nullptr;

}  // namespace

CurrentQueueScope::CurrentQueueScope(DispatchQueue& queue)
    : queue_(&queue), previous_(tInnermostScope) {
    tInnermostScope = this;
}

CurrentQueueScope::~CurrentQueueScope() {
    tInnermostScope = previous_;
}

DispatchQueue* CurrentQueueScope::innermost() {
    return tInnermostScope ? tInnermostScope->queue_ : nullptr;
}

bool CurrentQueueScope::isRunning(const DispatchQueue& queue) {
    for (const CurrentQueueScope* scope = tInnermostScope; scope; scope = scope->previous_) {
        if (scope->queue_ == &queue) return true;
    }
    return false;
}

namespace {

// A hand-over between a thread that waits and the one that lets it go; shared so that
// neither side outlives the state it touches.
struct Handover {
    std::mutex mutex;
    std::condition_variable done;
    bool released = false;
    std::exception_ptr exception;

    // Notified after the lock is let go, so that the woken waiter does not sleep again on it.
    void release() {
        {
            std::lock_guard lock(mutex);
            released = true;
        }
        done.notify_all();
    }

    void await() {
        BlockingRegion blocking;
        std::unique_lock lock(mutex);
        done.wait(lock, [this] { return released; });
    }
};

// --- main queue -----------------------------------------------------------------------------

class MainDispatchQueue final : public DispatchQueue {
  public:
    MainDispatchQueue() : DispatchQueue(Kind::main, "vn.main", 0) {}

    void async(std::function<void()> work) override {
        if (!work) return;
        RunLoop::main().perform([this, work = std::move(work)] {
            CurrentQueueScope scope(*this);
            runWork(work);
        });
    }

  protected:
    void syncInvoke(const std::function<void()>& work) override {
        auto handover = std::make_shared<Handover>();
        RunLoop::main().perform([this, handover, &work] {
            {
                CurrentQueueScope scope(*this);
                try {
                    work();
                } catch (...) {
                    handover->exception = std::current_exception();
                }
            }
            handover->release();
        });
        handover->await();
        if (handover->exception) std::rethrow_exception(handover->exception);
    }
};

// --- global queues --------------------------------------------------------------------------

constexpr std::array<long, 4> kGlobalPriorities = {
    DISPATCH_QUEUE_PRIORITY_HIGH, DISPATCH_QUEUE_PRIORITY_DEFAULT, DISPATCH_QUEUE_PRIORITY_LOW,
    DISPATCH_QUEUE_PRIORITY_BACKGROUND};
constexpr std::array<const char*, 4> kGlobalLabels = {"vn.global.high", "vn.global.default",
                                                      "vn.global.low", "vn.global.background"};

std::size_t laneOfPriority(long priority) {
    for (std::size_t lane = 0; lane < kGlobalPriorities.size(); ++lane) {
        if (kGlobalPriorities[lane] == priority) return lane;
    }
    return 1;  // unknown priorities select the default queue
}

// Each priority has its own pool, as the platform gives each quality of service threads of
// its own: high-priority work never waits behind a backlog of other priorities, and the low
// and background pools run at a lower scheduling priority, yielding the processor.
WorkerPool& poolOfLane(std::size_t lane) {
    // Deliberately leaked, like the default pool.
    switch (lane) {
        case 0: {
            static auto* high = new WorkerPool(0);
            return *high;
        }
        case 1:
            return WorkerPool::shared();
        case 2: {
            static auto* low = new WorkerPool(10);
            return *low;
        }
        default: {
            static auto* background = new WorkerPool(19);
            return *background;
        }
    }
}

class GlobalDispatchQueue final : public DispatchQueue {
  public:
    explicit GlobalDispatchQueue(std::size_t lane)
        : DispatchQueue(Kind::global, kGlobalLabels[lane], kGlobalPriorities[lane]), lane_(lane) {}

    void async(std::function<void()> work) override {
        if (!work) return;
        poolOfLane(lane_).post([this, work = std::move(work)] {
            CurrentQueueScope scope(*this);
            runWork(work);
        });
    }

  protected:
    // A concurrent queue imposes no order, so sync work runs at once on the caller's thread.
    void syncInvoke(const std::function<void()>& work) override {
        CurrentQueueScope scope(*this);
        work();
    }

  private:
    const std::size_t lane_;  // its pool is made on the first submission
};

// --- serial queues --------------------------------------------------------------------------

// One owner at a time runs the queue's blocks: either a drain on the worker pool or a thread
// inside sync(). A sync() caller that finds the queue busy queues a hand-over item; when the
// drain reaches it, ownership passes to the caller, which runs its block on its own thread
// and then gives the rest of the queue back to the pool.
class SerialDispatchQueue final : public DispatchQueue {
  public:
    explicit SerialDispatchQueue(std::string label)
        : DispatchQueue(Kind::serial, std::move(label), 0) {}

    void async(std::function<void()> work) override {
        if (!work) return;
        bool startDrain = false;
        {
            std::lock_guard lock(mutex_);
            items_.push_back({std::move(work), nullptr});
            startDrain = !owned_;
            owned_ = true;
        }
        if (startDrain) scheduleDrain();
    }

  protected:
    void syncInvoke(const std::function<void()>& work) override {
        std::shared_ptr<Handover> handover;
        {
            std::lock_guard lock(mutex_);
            if (owned_) {
                handover = std::make_shared<Handover>();
                items_.push_back({nullptr, handover});
            }
            owned_ = true;
        }
        if (handover) handover->await();
        struct GiveBack {
            SerialDispatchQueue& queue;
            ~GiveBack() { queue.releaseOwnership(); }
        } giveBack{*this};
        CurrentQueueScope scope(*this);
        work();
    }

  private:
    struct Item {
        std::function<void()> work;
        std::shared_ptr<Handover> handover;
    };
    static constexpr int kBlocksPerDrain = 64;  // then the drain yields its worker to others

    std::shared_ptr<SerialDispatchQueue> self() {
        return std::static_pointer_cast<SerialDispatchQueue>(shared_from_this());
    }

    void scheduleDrain() {
        WorkerPool::shared().post([queue = self()] { queue->drain(); });
    }

    void drain() {
        for (int i = 0; i < kBlocksPerDrain; ++i) {
            Item item;
            {
                std::lock_guard lock(mutex_);
                if (items_.empty()) {
                    owned_ = false;
                    return;
                }
                item = std::move(items_.front());
                items_.pop_front();
            }
            if (item.handover) {
                item.handover->release();  // ownership passes to the waiting sync() caller
                return;
            }
            CurrentQueueScope scope(*this);
            runWork(item.work);
        }
        scheduleDrain();
    }

    void releaseOwnership() {
        {
            std::lock_guard lock(mutex_);
            if (items_.empty()) {
                owned_ = false;
                return;
            }
        }
        scheduleDrain();
    }

    std::mutex mutex_;
    std::deque<Item> items_;
    bool owned_ = false;
};

}  // namespace
}  // namespace concurrency_internal

using concurrency_internal::CurrentQueueScope;

DispatchQueue::DispatchQueue(Kind kind, std::string label, long priority)
    : kind_(kind), label_(std::move(label)), priority_(priority) {}

const DispatchQueuePtr& DispatchQueue::main() {
    // Deliberately leaked: the queue is used from any thread until the process ends.
    static const auto* queue =
        new DispatchQueuePtr(std::make_shared<concurrency_internal::MainDispatchQueue>());
    return *queue;
}

const DispatchQueuePtr& DispatchQueue::global(long priority) {
    // Deliberately leaked, like the main queue.
    static const auto* queues = new std::array<DispatchQueuePtr, 4>{
        std::make_shared<concurrency_internal::GlobalDispatchQueue>(0),
        std::make_shared<concurrency_internal::GlobalDispatchQueue>(1),
        std::make_shared<concurrency_internal::GlobalDispatchQueue>(2),
        std::make_shared<concurrency_internal::GlobalDispatchQueue>(3)};
    return (*queues)[concurrency_internal::laneOfPriority(priority)];
}

DispatchQueuePtr DispatchQueue::serial(std::string label) {
    return std::make_shared<concurrency_internal::SerialDispatchQueue>(std::move(label));
}

DispatchQueuePtr DispatchQueue::current() {
    DispatchQueue* queue = CurrentQueueScope::innermost();
    return queue ? std::static_pointer_cast<DispatchQueue>(queue->shared_from_this()) : nullptr;
}

bool DispatchQueue::isCurrent() const {
    return CurrentQueueScope::isRunning(*this);
}

void DispatchQueue::async(const DispatchGroupPtr& group, std::function<void()> work) {
    if (!work) return;
    if (!group) {
        async(std::move(work));
        return;
    }
    group->enter();
    async([group, work = std::move(work)] {
        work();
        group->leave();
    });
}

void DispatchQueue::sync(const std::function<void()>& work) {
    if (!work) return;
    if (kind_ == Kind::main && Thread::isMainThread()) {
        fatalError("DispatchQueue::sync onto the main queue from the main thread would deadlock");
    }
    if (kind_ == Kind::serial && isCurrent()) {
        fatalError("DispatchQueue::sync onto serial queue '" + label_ +
                   "' from its own work would deadlock");
    }
    syncInvoke(work);
}

void DispatchQueue::after(DispatchTime deadline, std::function<void()> work) {
    if (!work) return;
    auto& pool = concurrency_internal::WorkerPool::shared();
    auto timer = std::make_shared<asio::steady_timer>(pool.context(), deadline);
    timer->async_wait([timer, queue = std::static_pointer_cast<DispatchQueue>(shared_from_this()),
                       work = std::move(work)](const asio::error_code&) mutable {
        queue->async(std::move(work));
    });
}

void DispatchQueue::vnOnMain(std::function<void()> work) {
    if (!work) return;
    if (Thread::isMainThread()) {
        work();
    } else {
        main()->async(std::move(work));
    }
}

std::string DispatchQueue::description() const {
    return "<DispatchQueue: " + label_ + ">";
}

}  // namespace vn
