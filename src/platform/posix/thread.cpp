#include "platform/thread.h"

#include <pthread.h>

#include <cerrno>

#include "platform/clock.h"
#include "platform/posix/handle_table.h"
#include "platform/posix/last_error.h"
#include "platform/posix/monitor.h"
#include "platform/virtual/baton.h"
#include "platform/virtual/fault_points.h"

namespace tw {
namespace {

struct HostThread {
  ThreadBody body = nullptr;
  void* argument = nullptr;
  baton::Seat* seat = nullptr;  // null on the real clock
  Monitor monitor;
  bool ended = false;
};

HandleTable<HostThread>& Threads() {
  static auto* const table = new HandleTable<HostThread>(HandleKind::thread);
  return *table;
}

void* Run(void* argument) {
  const std::unique_ptr<std::shared_ptr<HostThread>> owned(
      static_cast<std::shared_ptr<HostThread>*>(argument));
  HostThread& thread = **owned;
  if (thread.seat != nullptr) baton::SitDown(thread.seat);
  thread.body(thread.argument);
  {
    const std::lock_guard held(thread.monitor);
    thread.ended = true;
    thread.monitor.WakeAll();
  }
  if (thread.seat != nullptr) baton::StandUp();
  return nullptr;
}

[[nodiscard]] int StartDetached(const std::shared_ptr<HostThread>& thread) {
  auto* const owned = new std::shared_ptr<HostThread>(thread);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_t unused;
  const int result = pthread_create(&unused, &attributes, Run, owned);
  pthread_attr_destroy(&attributes);
  if (result != 0) delete owned;
  return result;
}

}  // namespace

Handle StartThread(ThreadBody body, void* argument) {
  if (FaultAt(FaultPoint::startThread, {})) return Handle::null;
  const auto thread = std::make_shared<HostThread>();
  thread->body = body;
  thread->argument = argument;
  if (baton::Held()) thread->seat = baton::AddSeat();
  const Handle handle = Threads().Add(thread);
  const int result = StartDetached(thread);
  if (result == 0) return handle;
  if (thread->seat != nullptr) baton::DropSeat(thread->seat);
  Threads().Remove(handle);
  SetSystemError(static_cast<uint32_t>(result));
  return Handle::null;
}

ThreadWait WaitForThread(Handle handle, uint32_t timeout_ms) {
  baton::Poll();
  const std::shared_ptr<HostThread> thread = Threads().Find(handle);
  if (thread == nullptr) {
    SetSystemError(EBADF);
    return ThreadWait::failed;
  }
  const int64_t deadline_us = DeadlineAfter_us(timeout_ms);
  const std::lock_guard held(thread->monitor);
  while (!thread->ended) {
    if (timeout_ms == 0 || HostNow_us() >= deadline_us) return ThreadWait::timedOut;
    thread->monitor.WaitUntil(deadline_us, "a thread's end");
  }
  return ThreadWait::ended;
}

void CloseThread(Handle thread) {
  Threads().Remove(thread);
}

}  // namespace tw
