// Depth for other programs: each ping's sentences to a serial line, by datagrams and to TCP clients. A ping
// is handed over without waiting for anybody; whatever an output cannot take costs that output alone.
//
// One object lives as long as the process, since workers may offer pings to the end. Start, Stop and Figures:
// GUI thread; Offer: any thread.
#pragma once

#include <memory>

#include "app/state/ping_facts.h"
#include "outputs/output_options.h"
#include "outputs/output_run.h"
#include "platform/handle.h"
#include "platform/sync.h"

namespace tw {

class DepthOutput final : public PingSink {
 public:
  DepthOutput();
  DepthOutput(const DepthOutput&) = delete;
  DepthOutput& operator=(const DepthOutput&) = delete;
  ~DepthOutput();

  // Begins with these options, bounded before use, in the place of those before; figures begin at 0. Lines
  // and sockets open on threads of their own; what does not open is tried again every five seconds. With all
  // outputs off nothing is started. False when the system has no thread or event to give: then it is stopped.
  [[nodiscard]] bool Start(const OutputOptions& options);

  // Ends all outputs. Waits three quarters of a second for each thread at most: one that a driver holds up
  // ends by itself later. Pings that are offered from now on go nowhere.
  void Stop();

  void Offer(const PingFacts& ping) override;

  // All 0 while stopped.
  [[nodiscard]] OutputFigures Figures();

 private:
  [[nodiscard]] bool StartThreads(const OutputOptions& options);
  [[nodiscard]] std::shared_ptr<OutputRun> Run();

  Lock lock_{};
  std::shared_ptr<OutputRun> run_;  // lock_
  Handle sending_ = Handle::null;
  Handle writing_ = Handle::null;
};

}  // namespace tw
