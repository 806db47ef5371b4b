#include "app/run/elapsed_log.h"

#include "app/state/app_state.h"
#include "base/text_format.h"
#include "platform/clock.h"
#include "platform/debug_output.h"

namespace tw {

ElapsedLog::ElapsedLog() : begin_ms_(MillisecondClock()) {
  Write("Start  time : ");
}

void ElapsedLog::Write(const char* label) const {
  const double elapsed_s = (MillisecondClock() - begin_ms_) / 1000.0;
  FormatWide(globals.debugText, "%s%f\n", label, elapsed_s);
  WriteDebugText(globals.debugText);
}

}  // namespace tw
