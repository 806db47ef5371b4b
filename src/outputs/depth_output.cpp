#include "outputs/depth_output.h"

#include <new>
#include <utility>

#include "platform/thread.h"

namespace tw {
namespace {

constexpr uint32_t kEndLimit_ms = 750;

using SharedRun = std::shared_ptr<OutputRun>;

// Runs the body, which keeps the run alive meanwhile.
template <void (OutputRun::*body)()>
void RunBody(void* argument) {
  const std::unique_ptr<SharedRun> run(static_cast<SharedRun*>(argument));
  ((**run).*body)();
}

[[nodiscard]] Handle StartWith(const SharedRun& run, ThreadBody body) {
  std::unique_ptr<SharedRun> share(new (std::nothrow) SharedRun(run));
  if (share == nullptr) return Handle::null;
  const Handle thread = StartThread(body, share.get());
  if (thread != Handle::null) static_cast<void>(share.release());
  return thread;
}

void AwaitEnd(Handle thread) {
  if (thread == Handle::null) return;
  static_cast<void>(WaitForThread(thread, kEndLimit_ms));
  CloseThread(thread);
}

}  // namespace

DepthOutput::DepthOutput() {
  MakeLock(lock_);
}

DepthOutput::~DepthOutput() {
  Stop();
  DestroyLock(lock_);
}

bool DepthOutput::Start(const OutputOptions& options) {
  Stop();
  const OutputOptions bounded = Bound(options);
  if (!bounded.serial && !bounded.udp && !bounded.tcp) return true;
  if (StartThreads(bounded)) return true;
  Stop();
  return false;
}

bool DepthOutput::StartThreads(const OutputOptions& options) {
  SharedRun run(new (std::nothrow) OutputRun(options));
  if (run == nullptr || !run->Make()) return false;
  {
    const Locked held(lock_);
    run_ = run;
  }
  sending_ = StartWith(run, RunBody<&OutputRun::Send>);
  if (options.serial) writing_ = StartWith(run, RunBody<&OutputRun::WriteLine>);
  return sending_ != Handle::null && (writing_ != Handle::null || !options.serial);
}

void DepthOutput::Stop() {
  SharedRun run;
  {
    const Locked held(lock_);
    run = std::move(run_);
  }
  if (run != nullptr) run->End();
  AwaitEnd(std::exchange(sending_, Handle::null));
  AwaitEnd(std::exchange(writing_, Handle::null));
}

std::shared_ptr<OutputRun> DepthOutput::Run() {
  const Locked held(lock_);
  return run_;
}

void DepthOutput::Offer(const PingFacts& ping) {
  const SharedRun run = Run();
  if (run != nullptr) run->Offer(ping);
}

OutputFigures DepthOutput::Figures() {
  const SharedRun run = Run();
  return run != nullptr ? run->Figures() : OutputFigures{};
}

}  // namespace tw
