// The device link: the open device port and all that the program keeps of the dialogue over it. Whoever opens
// and closes the port owns it; one lives as long as the program, through all its connections. GUI thread,
// while no worker owns the port.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "device/device_facts.h"
#include "device/heard.h"
#include "device/rolling_window.h"
#include "platform/handle.h"

namespace tw {

inline constexpr size_t kReplySize = size_t{64} * 1024;

// Of the stop procedure. kept: the windows persist from one call to the next, so an end mark is found
// although its beginning came during an earlier attempt.
struct StopWindows {
  RollingWindow<7> end;
  RollingWindow<3> prompt;
};

// Of the interface probe; kept: they persist as well.
struct ProbeWindows {
  RollingWindow<5> rs232;
  RollingWindow<5> rs485;
  RollingWindow<3> usb;
};

// What the dialogue has come to, for the operator who waits for it.
enum class LinkStep : uint8_t {
  listening,  // for a device that streams
  stopping,   // a device that streams
  prompting,  // waiting for the prompt
  lateReply,  // waiting for a reply that has not come in time
  receiver,   // the GPS port is opened next
  asking,     // for the settings
  probing,    // asking how the device is attached
  sending,    // settings
  starting,   // sending the commands of the start
};

struct LinkProgress {
  LinkStep step;
  int32_t number = 0;  // of this attempt or command, from 1 on; 0: there is but one
  int32_t count = 0;   // of them at most; 0: not known
};

struct DeviceLink {
  Handle port = Handle::invalid;  // Handle::invalid while it is closed
  char reply[kReplySize];         // the last reply that was read, with a terminating zero
  StopWindows stopWindows;        // never reset, not even for another connection
  ProbeWindows probeWindows;      // never reset either
  DeviceFacts facts;

  uint32_t writeLimit_ms =
      0;  // a write that the line does not take in this time fails; 0: it may take for ever

  bool takesNothing =
      false;  // such a write was given up: until the port is opened anew the others fail at once

  // Asked at each read and write, where set: whoever wanted the dialogue does not want it any more, and it
  // ends as if the port had failed.
  bool (*givesUp)(void* context) = nullptr;
  void* givesUpContext = nullptr;

  // Told each step before it is taken, where set; shows it and returns at once.
  void (*tells)(void* context, const LinkProgress& progress) = nullptr;
  void* tellsContext = nullptr;
  LinkProgress counted = {LinkStep::asking};  // the last step of a counted kind

  HeardBytes heard;  // all that was read since whoever looks at it has put it back
};

// A read of one byte; `got` is 0 when none came within the port's time-out. False: the port failed, or the
// dialogue is given up.
[[nodiscard]] bool ReadByte(DeviceLink& link, uint8_t& byte, uint32_t& got);

// The same for a write.
[[nodiscard]] bool WriteBytes(DeviceLink& link, std::string_view text);

// Tells a step to who waits.
void TellStep(const DeviceLink& link, LinkStep step, int32_t number = 0, int32_t count = 0);

// The same for steps of one kind, `count` of them at most: each time the next one is told.
void CountSteps(DeviceLink& link, LinkStep step, int32_t count);
void TellNextStep(DeviceLink& link);

}  // namespace tw
