#include "platform/posix/running_thread.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/handle_table.h"
#include "platform/posix/last_error.h"

namespace tw {
namespace {

using posix::RunningThread;

HandleTable<RunningThread>& Threads() {
  static auto* const table = new HandleTable<RunningThread>(HandleKind::thread);
  return *table;
}

struct Beginning {
  std::shared_ptr<RunningThread> thread;
  void (*run)(RunningThread& thread);
};

void* Begin(void* argument) {
  const std::unique_ptr<Beginning> owned(static_cast<Beginning*>(argument));
  owned->run(*owned->thread);
  return nullptr;
}

[[nodiscard]] int StartDetached(Beginning* beginning) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_t unused;
  const int result = pthread_create(&unused, &attributes, Begin, beginning);
  pthread_attr_destroy(&attributes);
  if (result != 0) delete beginning;
  return result;
}

}  // namespace

void RunningThread::Run() {
  body(argument);
  const std::lock_guard held(monitor);
  ended = true;
  monitor.WakeAll();
}

Handle posix::Start(const std::shared_ptr<RunningThread>& thread, void (*run)(RunningThread& thread)) {
  const Handle handle = Threads().Add(thread);
  const int result = StartDetached(new Beginning{thread, run});
  if (result == 0) return handle;
  Threads().Remove(handle);
  SetSystemError(static_cast<uint32_t>(result));
  return Handle::null;
}

ThreadWait WaitForThread(Handle handle, uint32_t timeout_ms) {
  const int64_t deadline_us = PolledDeadline_us(timeout_ms);
  const std::shared_ptr<RunningThread> thread = Threads().Find(handle);
  if (thread == nullptr) {
    SetSystemError(EBADF);
    return ThreadWait::failed;
  }
  const std::lock_guard held(thread->monitor);
  while (!thread->ended) {
    if (timeout_ms == 0 || Now_us() >= deadline_us) return ThreadWait::timedOut;
    thread->monitor.WaitUntil(deadline_us, "a thread's end");
  }
  return ThreadWait::ended;
}

// As many as the process may use, which can be fewer than there are.
uint32_t ProcessorCount() {
  cpu_set_t allowed;
  if (sched_getaffinity(0, sizeof(allowed), &allowed) != 0) return 1;
  return static_cast<uint32_t>(std::max(CPU_COUNT(&allowed), 1));
}

// Without the right to it the thread runs like the others.
void StandBack() {
  constexpr int kNiceness = 15;
  static_cast<void>(setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kNiceness));
}

void CloseThread(Handle thread) {
  Threads().Remove(thread);
}

}  // namespace tw
