// Looks for a device on ports and at speeds that are chosen. Talks to whatever is attached there; a device
// that streams is stopped. Knows no record and no window: the thread that calls it owns the ports meanwhile.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "app/state/device_settings.h"
#include "device/heard.h"

namespace tw {

struct SearchPlan {
  std::vector<std::wstring> ports;  // by their names, "COM7"
  std::vector<int32_t> speeds_bps;  // in the order in which they are tried
};

enum class SearchOutcome : uint8_t {
  trying,   // the port is being tried at this speed; one of the others follows
  refused,  // the system does not open it
  heard,    // no device, at any speed
  device,
};

struct SearchNews {
  size_t port;        // of the plan
  int32_t speed_bps;  // of what is told; of nothing heard, the last one tried
  SearchOutcome outcome;
  Heard heard = Heard::nothing;    // the most telling of all speeds
  char identity[kIdentitySize]{};  // of a device: printable, with a terminating zero
};

struct SearchListener {
  void* context;
  void (*takes)(void* context, const SearchNews& news);
  // Asked at each read and write; the search then ends within half a second, but for a port that the system
  // takes its time to open.
  bool (*isCancelled)(void* context);
};

// Tries each port at each speed until something answers there: a device or a GPS receiver. Each port is
// closed before its last news. A silent port costs 1.2 s a speed, a noisy one 3.6 s.
void SearchDevices(const SearchPlan& plan, const SearchListener& listener);

}  // namespace tw
