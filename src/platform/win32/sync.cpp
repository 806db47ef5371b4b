#include "platform/sync.h"

#include <windows.h>

#include "platform/clock.h"

namespace tw {
namespace {

static_assert(sizeof(Lock) == sizeof(SRWLOCK) && alignof(Lock) == alignof(SRWLOCK));
static_assert(kWaitForever == INFINITE);

SRWLOCK* Inside(Lock& lock) {
  return reinterpret_cast<SRWLOCK*>(&lock.word);
}
HANDLE Inside(const Event& event) {
  return reinterpret_cast<HANDLE>(event.word);
}

}  // namespace

void MakeLock(Lock& lock) {
  InitializeSRWLock(Inside(lock));
}
void DestroyLock(Lock& lock) {
  lock.word = 0;
}
void Enter(Lock& lock) {
  AcquireSRWLockExclusive(Inside(lock));
}
void Leave(Lock& lock) {
  ReleaseSRWLockExclusive(Inside(lock));
}

bool MakeEvent(Event& event, ResetMode mode) {
  event.word = reinterpret_cast<uintptr_t>(CreateEventW(nullptr, mode == ResetMode::manual, FALSE, nullptr));
  return event.word != 0;
}

void DestroyEvent(Event& event) {
  if (event.word != 0) CloseHandle(Inside(event));
  event.word = 0;
}

void Signal(Event& event) {
  if (event.word != 0) SetEvent(Inside(event));
}

void Reset(Event& event) {
  if (event.word != 0) ResetEvent(Inside(event));
}

bool WaitForEvent(Event& event, uint32_t timeout_ms) {
  return event.word != 0 && WaitForSingleObject(Inside(event), timeout_ms) == WAIT_OBJECT_0;
}

}  // namespace tw
