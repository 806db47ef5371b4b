// What a device tells of itself beside its settings.
#pragma once

#include <cstdint>

namespace tw {

struct DeviceFacts {
  int32_t interfaceType = 0;  // 0 RS-232, 1 RS-485, 2 USB
  float firmwareVersion = 0.0f;
  bool presetCapable = false;
  int32_t currentPreset = 0;
  bool smoothingSupported = false;
  bool highChannelActive = false;  // given, unread
};

}  // namespace tw
