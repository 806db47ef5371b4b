#include "platform/sync.h"

#include <mutex>

#include "platform/posix/event.h"

namespace tw {
namespace {

std::mutex* Inside(const Lock& lock) {
  return reinterpret_cast<std::mutex*>(lock.word);
}

}  // namespace

void MakeLock(Lock& lock) {
  lock.word = reinterpret_cast<uintptr_t>(new std::mutex);
}

void DestroyLock(Lock& lock) {
  delete Inside(lock);
  lock.word = 0;
}

void Enter(Lock& lock) {
  Inside(lock)->lock();
}

void Leave(Lock& lock) {
  Inside(lock)->unlock();
}

bool MakeEvent(Event& event, ResetMode mode) {
  posix::MakeEvent(event, mode);
  return true;
}

}  // namespace tw
