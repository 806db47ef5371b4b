// All jobs of a call, so many side by side as it asks for, and what they tell in the order of the recordings.
#pragma once

#include "tools/echotool/work.h"

namespace tw::echotool {

class Listener {
 public:
  virtual ~Listener() = default;
  virtual void Hear(Result result) = 0;
};

// Works on all recordings of the call. The listener hears on the calling thread, of one recording after the
// other; once the call is interrupted only of those that were begun.
void RunBatch(const Call& call, Listener& listener);

}  // namespace tw::echotool
