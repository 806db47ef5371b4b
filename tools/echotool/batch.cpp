#include "tools/echotool/batch.h"

#include <algorithm>
#include <utility>

#include "platform/clock.h"
#include "platform/sync.h"
#include "platform/thread.h"

namespace tw::echotool {
namespace {

class SideBySide {
 public:
  explicit SideBySide(const Call& call)
      : call_(call), units_(UnitsOf(call.inputs, call.options.task)), slots_(call.inputs.size()) {
    MakeLock(lock_);
  }
  ~SideBySide() {
    for (const Handle thread : threads_) {
      static_cast<void>(WaitForThread(thread, kWaitForever));
      CloseThread(thread);
    }
    DestroyEvent(news_);
    DestroyLock(lock_);
  }
  SideBySide(const SideBySide&) = delete;
  SideBySide& operator=(const SideBySide&) = delete;

  // False when the system gives not one thread.
  [[nodiscard]] bool Start(uint32_t jobs) {
    if (!MakeEvent(news_, ResetMode::automatic)) return false;
    for (size_t i = 0; i < std::min<size_t>(jobs, units_.size()); ++i) {
      NoteWorkers(1);
      const Handle thread = StartThread([](void* self) { static_cast<SideBySide*>(self)->Work(); }, this);
      if (thread == Handle::null) {
        NoteWorkers(-1);
        break;
      }
      threads_.push_back(thread);
    }
    return !threads_.empty();
  }

  void Tell(Listener& listener) {
    for (Slot& slot : slots_) {
      if (IsReady(slot)) listener.Hear(std::move(slot.result));
    }
  }

 private:
  struct Slot {
    Result result;  // its worker's until it is ready, then the teller's
    bool isReady = false;
  };

  void Work() {
    for (size_t unit = next_++; unit < units_.size(); unit = next_++) {
      for (const size_t i : units_[unit]) {
        if (!call_.interrupted.load()) Put(slots_[i], WorkOn(call_, call_.inputs[i]));
      }
    }
    NoteWorkers(-1);
    Signal(news_);
  }

  void Put(Slot& slot, Result result) {
    slot.result = std::move(result);
    {
      const Locked held(lock_);
      slot.isReady = true;
    }
    Signal(news_);
  }

  // Waits for it. False when it will never be, since the call has been interrupted.
  [[nodiscard]] bool IsReady(const Slot& slot) {
    for (;;) {
      {
        const Locked held(lock_);
        if (slot.isReady || workers_ == 0) return slot.isReady;
      }
      static_cast<void>(WaitForEvent(news_, kWaitForever));
    }
  }

  void NoteWorkers(int more) {
    const Locked held(lock_);
    workers_ += more;
  }

  const Call& call_;
  const std::vector<std::vector<size_t>> units_;
  std::vector<Slot> slots_;
  std::atomic<size_t> next_ = 0;  // unit
  std::vector<Handle> threads_;
  Lock lock_{};
  int workers_ = 0;  // under the lock, as is what of the slots is ready
  Event news_{};
};

// On the calling thread.
void RunInOrder(const Call& call, Listener& listener) {
  for (const Input& input : call.inputs) {
    listener.Hear(WorkOn(call, input));
    if (call.interrupted.load() || call.options.task == Task::join) return;
  }
}

}  // namespace

void RunBatch(const Call& call, Listener& listener) {
  const uint32_t asked = call.options.jobs != 0 ? call.options.jobs : std::min(ProcessorCount(), kMostJobs);
  if (asked > 1 && call.inputs.size() > 1 && call.options.task != Task::join) {
    SideBySide jobs(call);
    if (jobs.Start(asked)) return jobs.Tell(listener);
  }
  RunInOrder(call, listener);
}

}  // namespace tw::echotool
