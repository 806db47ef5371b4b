// Fills an Overview from a recording: coarsely at first, then finer and finer, so that there soon is
// something to see. It looks at one ping a column, so the time it takes depends on the columns rather than on
// the length of the file. One thread.
#pragma once

#include <cstdint>

#include "app/state/overview.h"
#include "playback/ping_source.h"

namespace tw {

class OverviewMaker {
 public:
  // All three outlive the maker. `asked` ends what is under way; it may be asked thousands of times.
  OverviewMaker(Overview& overview, PingSource& recording, const Interruption& asked);
  ~OverviewMaker() { recording_.SetInterruption({}); }
  OverviewMaker(const OverviewMaker&) = delete;
  OverviewMaker& operator=(const OverviewMaker&) = delete;

  // What the recording holds now. False when it was asked to end.
  [[nodiscard]] bool Make();

  // Whether the file has grown since Make: then the recording's end is told anew, and `much` says whether the
  // columns stand for another part of it by now.
  [[nodiscard]] bool HasGrown(bool& much);

 private:
  [[nodiscard]] bool IsAsked() const { return asked_.isAsked(asked_.subject); }
  [[nodiscard]] bool IsEnough();
  [[nodiscard]] bool Find(uint64_t position, RecordedPing& ping);
  void LookForBegin();
  void LookForEnd();
  [[nodiscard]] OverviewColumn Look(size_t column);
  void Put(size_t first, size_t count, const OverviewColumn& column);

  Overview& overview_;
  PingSource& recording_;
  const Interruption asked_;
  double reach_m_ = 0.0;
  uint64_t size_ = 0;     // that the columns stand for
  uint64_t endSize_ = 0;  // at which the end was told
  int reads_ = 0;
  int mostReads_ = 0;
};

}  // namespace tw
