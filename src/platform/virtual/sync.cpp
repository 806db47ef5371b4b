#include "platform/sync.h"

#include <mutex>

#include "platform/posix/event.h"
#include "platform/posix/monitor.h"
#include "platform/virtual/baton.h"
#include "platform/virtual/fault_points.h"

namespace tw {
namespace {

struct VirtualLock {
  std::mutex mutex;
  bool heldVirtually = false;  // only threads of the virtual clock touch it, one at a time
};

VirtualLock& Inside(const Lock& lock) {
  return *reinterpret_cast<VirtualLock*>(lock.word);
}

}  // namespace

void MakeLock(Lock& lock) {
  lock.word = reinterpret_cast<uintptr_t>(new VirtualLock);
}

void DestroyLock(Lock& lock) {
  delete reinterpret_cast<VirtualLock*>(lock.word);
  lock.word = 0;
}

void Enter(Lock& lock) {
  VirtualLock& inside = Inside(lock);
  if (!baton::Held()) return inside.mutex.lock();
  // Whoever leaves hands the lock over, so it is held when the wait ends.
  if (inside.heldVirtually) baton::Wait(&inside, kNever, "a lock");
  inside.heldVirtually = true;
}

void Leave(Lock& lock) {
  VirtualLock& inside = Inside(lock);
  if (!baton::Held()) return inside.mutex.unlock();
  inside.heldVirtually = baton::WakeOne(&inside);
}

bool MakeEvent(Event& event, ResetMode mode) {
  if (FaultAt(FaultPoint::makeEvent, {})) return false;
  posix::MakeEvent(event, mode);
  return true;
}

}  // namespace tw
