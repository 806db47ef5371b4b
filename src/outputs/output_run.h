// The outputs from their start to their end: a bounded queue of pings, the output thread that takes from it,
// and the thread of the serial line, which alone can be held up. Whoever started it and both threads share
// it, and it goes with the last of them.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>

#include "app/state/ping_facts.h"
#include "outputs/fix_watch.h"
#include "outputs/send_rate.h"
#include "outputs/serial_output.h"
#include "outputs/tcp_output.h"
#include "outputs/udp_output.h"
#include "platform/sync.h"

namespace tw {

inline constexpr size_t kQueuedPings = 32;

// What has been done since the start.
struct OutputFigures {
  uint32_t dropped;  // pings that came to no output: the queue was full, or they were late
  SinkFigures serial;
  SinkFigures udp;
  SinkFigures tcp;
};

class OutputRun {
 public:
  explicit OutputRun(const OutputOptions& options);
  OutputRun(const OutputRun&) = delete;
  OutputRun& operator=(const OutputRun&) = delete;
  ~OutputRun();

  // False when the system has no events to give.
  [[nodiscard]] bool Make();

  // Any thread; never waits. The oldest ping makes room.
  void Offer(const PingFacts& ping);
  [[nodiscard]] OutputFigures Figures() const;
  void End();

  // The bodies of the two threads.
  void Send();
  void WriteLine() { serial_.Run(); }

 private:
  [[nodiscard]] bool Take(PingFacts& ping);
  void Send(const PingFacts& ping);
  void Send(const DepthMessage& message);

  const OutputOptions options_;
  SinkCount serialCount_;
  SinkCount udpCount_;
  SinkCount tcpCount_;
  std::atomic<uint32_t> dropped_ = 0;
  std::atomic<bool> ended_ = false;
  Event something_{};  // automatic: a ping, or the end
  Lock lock_{};
  std::array<PingFacts, kQueuedPings> queue_{};  // lock_
  size_t first_ = 0;                             // lock_
  size_t count_ = 0;                             // lock_
  SerialOutput serial_;
  UdpOutput udp_;   // output thread
  TcpOutput tcp_;   // output thread
  SendRate rate_;   // output thread
  FixWatch watch_;  // output thread
};

}  // namespace tw
