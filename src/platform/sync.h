// Locks and events that are plain values: all bits zero is "not yet made", and neither has a constructor or
// destructor, so that the state record can be one zero-filled block that outlives its threads.
#pragma once

#include <cstdint>

namespace tw {

// A lock for short sections; not recursive.
struct Lock {
  uintptr_t word;
};

void MakeLock(Lock& lock);  // once, before the first use; a process keeps it for life or destroys it
void DestroyLock(Lock& lock);
void Enter(Lock& lock);
void Leave(Lock& lock);

// Holds a lock for a scope.
class [[nodiscard]] Locked {
 public:
  explicit Locked(Lock& lock) : lock_(lock) { Enter(lock_); }
  ~Locked() { Leave(lock_); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

 private:
  Lock& lock_;
};

// A flag that threads can wait for. An auto-reset event is cleared by the wait (or poll) that sees it set.
struct Event {
  uintptr_t word;
};

enum class ResetMode : uint8_t { automatic, manual };

// Not signalled at first. False when the system has none to give; the event stays "not yet made".
[[nodiscard]] bool MakeEvent(Event& event, ResetMode mode);
void DestroyEvent(Event& event);
void Signal(Event& event);
void Reset(Event& event);

// True when the event is signalled, at once or within the time; kWaitForever waits without limit. A wait of
// 0 is a poll. An event that was never made is never signalled, and a wait for it ends at once.
[[nodiscard]] bool WaitForEvent(Event& event, uint32_t timeout_ms);

}  // namespace tw
