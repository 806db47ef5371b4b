#include "platform/posix/event.h"

#include <mutex>

#include "platform/posix/monitor.h"

namespace tw {
namespace {

struct PosixEvent {
  Monitor monitor;
  bool automatic = false;
  bool signalled = false;
};

PosixEvent* Inside(const Event& event) {
  return reinterpret_cast<PosixEvent*>(event.word);
}

bool TakeSignal(PosixEvent& event) {
  const bool signalled = event.signalled;
  if (event.automatic) event.signalled = false;
  return signalled;
}

}  // namespace

void posix::MakeEvent(Event& event, ResetMode mode) {
  auto* const inside = new PosixEvent;
  inside->automatic = mode == ResetMode::automatic;
  event.word = reinterpret_cast<uintptr_t>(inside);
}

void DestroyEvent(Event& event) {
  delete Inside(event);
  event.word = 0;
}

void Signal(Event& event) {
  PosixEvent* const inside = Inside(event);
  if (inside == nullptr) return;
  const std::lock_guard held(inside->monitor);
  inside->signalled = true;
  inside->monitor.WakeAll();
}

void Reset(Event& event) {
  PosixEvent* const inside = Inside(event);
  if (inside == nullptr) return;
  const std::lock_guard held(inside->monitor);
  inside->signalled = false;
}

bool WaitForEvent(Event& event, uint32_t timeout_ms) {
  PosixEvent* const inside = Inside(event);
  const int64_t deadline_us = PolledDeadline_us(timeout_ms);
  if (inside == nullptr) return false;
  const std::lock_guard held(inside->monitor);
  while (!inside->signalled) {
    if (timeout_ms == 0 || Now_us() >= deadline_us) return false;
    inside->monitor.WaitUntil(deadline_us, "an event");
  }
  return TakeSignal(*inside);
}

}  // namespace tw
