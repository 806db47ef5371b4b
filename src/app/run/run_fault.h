// What a step of run control could not do. The steps tell nobody: who called one shows the fault to the
// operator, and ends what the fault leaves open, in the order that the fault asks for.
#pragma once

#include <cstdint>

namespace tw {

enum class RunFault : uint8_t {
  none,
  notConnected,     // no device port is open
  deviceRefused,    // the device port does not open
  noPrompt,         // a device that is being connected does not come to its prompt
  receiverRefused,  // the GPS port does not open
  unidentified,     // none of the families' forms of settings can be read
  noPromptInRun,    // the device of a run does not come to its prompt
  unreadable,       // the settings of a run's device cannot be read back
  speedUnheard,     // the device could not be told its new speed
  speedRefused,     // its port does not open with the new speed
  dualOldRefused,   // the device refuses the old output together with dual mode; the run can go on
  noAcquisitionThread,
  noGpsThread,
  linkLost,  // the worker has flagged it
};

struct [[nodiscard]] RunResult {
  RunFault fault = RunFault::none;
  uint32_t systemError = 0;  // of a port that does not open

  [[nodiscard]] bool Succeeded() const { return fault == RunFault::none; }
};

}  // namespace tw
