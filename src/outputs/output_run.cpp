#include "outputs/output_run.h"

#include "platform/clock.h"

namespace tw {
namespace {

// Clients are let in with each ping, and without pings this often.
constexpr uint32_t kWelcome_ms = 1'000;

}  // namespace

OutputRun::OutputRun(const OutputOptions& options)
    : options_(options),
      serial_(options, serialCount_),
      udp_(options, udpCount_),
      tcp_(options, tcpCount_),
      rate_(options.pingsPerSecond) {
  MakeLock(lock_);
}

OutputRun::~OutputRun() {
  DestroyEvent(something_);
  DestroyLock(lock_);
}

bool OutputRun::Make() {
  return MakeEvent(something_, ResetMode::automatic) && serial_.Make();
}

void OutputRun::Offer(const PingFacts& ping) {
  {
    const Locked held(lock_);
    if (count_ == kQueuedPings) {
      first_ = (first_ + 1) % kQueuedPings;
      --count_;
      ++dropped_;
    }
    queue_[(first_ + count_++) % kQueuedPings] = ping;
  }
  Signal(something_);
}

bool OutputRun::Take(PingFacts& ping) {
  const Locked held(lock_);
  if (count_ == 0) return false;
  ping = queue_[first_];
  first_ = (first_ + 1) % kQueuedPings;
  --count_;
  return true;
}

OutputFigures OutputRun::Figures() const {
  return {dropped_, serialCount_.Figures(), udpCount_.Figures(), tcpCount_.Figures()};
}

void OutputRun::End() {
  ended_ = true;
  Signal(something_);
  serial_.End();
}

void OutputRun::Send() {
  PingFacts ping{};
  while (!ended_) {
    if (options_.tcp) tcp_.Welcome(MillisecondClock());
    while (!ended_ && Take(ping)) Send(ping);
    static_cast<void>(WaitForEvent(something_, options_.tcp ? kWelcome_ms : kWaitForever));
  }
}

void OutputRun::Send(const PingFacts& ping) {
  const bool freshFix = watch_.IsFresh(ping);
  if (ping.dual && ping.secondChannel != options_.lowChannel) return;
  if (!IsDepth(ping.altitude_m) || !rate_.Takes(ping.clock_ms)) return;
  const DepthMessage message = BuildMessage(ping, options_, freshFix);
  if (message.count > 0) Send(message);
}

void OutputRun::Send(const DepthMessage& message) {
  const uint32_t now_ms = MillisecondClock();
  if (message.IsStale(now_ms)) {
    ++dropped_;
    return;
  }
  if (options_.udp) udp_.Send(message);
  if (options_.tcp) tcp_.Send(message, now_ms);
  if (options_.serial) serial_.Put(message);
}

}  // namespace tw
