#include "platform/sync.h"

#include <cerrno>
#include <mutex>

#include "platform/clock.h"
#include "platform/posix/monitor.h"
#include "platform/virtual/baton.h"
#include "platform/virtual/fault_points.h"

namespace tw {
namespace {

struct HostLock {
  std::mutex mutex;
  bool heldVirtually = false;  // only threads of the virtual clock touch it, one at a time
};

struct HostEvent {
  Monitor monitor;
  bool automatic = false;
  bool signalled = false;
};

HostLock& Inside(const Lock& lock) {
  return *reinterpret_cast<HostLock*>(lock.word);
}
HostEvent* Inside(const Event& event) {
  return reinterpret_cast<HostEvent*>(event.word);
}

bool TakeSignal(HostEvent& event) {
  const bool signalled = event.signalled;
  if (event.automatic) event.signalled = false;
  return signalled;
}

}  // namespace

void MakeLock(Lock& lock) {
  lock.word = reinterpret_cast<uintptr_t>(new HostLock);
}

void DestroyLock(Lock& lock) {
  delete reinterpret_cast<HostLock*>(lock.word);
  lock.word = 0;
}

void Enter(Lock& lock) {
  HostLock& inside = Inside(lock);
  if (!baton::Held()) return inside.mutex.lock();
  // Whoever leaves hands the lock over, so it is held when the wait ends.
  if (inside.heldVirtually) baton::Wait(&inside, INT64_MAX, "a lock");
  inside.heldVirtually = true;
}

void Leave(Lock& lock) {
  HostLock& inside = Inside(lock);
  if (!baton::Held()) return inside.mutex.unlock();
  inside.heldVirtually = baton::WakeOne(&inside);
}

bool MakeEvent(Event& event, ResetMode mode) {
  if (FaultAt(FaultPoint::makeEvent, {})) return false;
  auto* const inside = new HostEvent;
  inside->automatic = mode == ResetMode::automatic;
  event.word = reinterpret_cast<uintptr_t>(inside);
  return true;
}

void DestroyEvent(Event& event) {
  delete Inside(event);
  event.word = 0;
}

void Signal(Event& event) {
  HostEvent* const inside = Inside(event);
  if (inside == nullptr) return;
  const std::lock_guard held(inside->monitor);
  inside->signalled = true;
  inside->monitor.WakeAll();
}

void Reset(Event& event) {
  HostEvent* const inside = Inside(event);
  if (inside == nullptr) return;
  const std::lock_guard held(inside->monitor);
  inside->signalled = false;
}

bool WaitForEvent(Event& event, uint32_t timeout_ms) {
  HostEvent* const inside = Inside(event);
  baton::Poll();
  if (inside == nullptr) return false;
  const int64_t deadline_us = DeadlineAfter_us(timeout_ms);
  const std::lock_guard held(inside->monitor);
  while (!inside->signalled) {
    if (timeout_ms == 0 || HostNow_us() >= deadline_us) return false;
    inside->monitor.WaitUntil(deadline_us, "an event");
  }
  return TakeSignal(*inside);
}

}  // namespace tw
