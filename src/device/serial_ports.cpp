#include "device/serial_ports.h"

#include <algorithm>
#include <cinttypes>
#include <string>

#include "base/text_format.h"
#include "platform/clock.h"
#include "platform/serial_line.h"

namespace tw {
namespace {

constexpr uint32_t kReadConstant_ms = 100;
constexpr uint32_t kFastReadConstant_ms = 200;
constexpr uint32_t kAnyByteLimit_ms = 4000;
constexpr std::wstring_view kPrefix = L"COM";

Handle Open(const wchar_t* name, const char* mode, uint32_t readConstant_ms) {
  const std::wstring device = std::wstring(L"\\\\.\\") + name;
  return OpenSerialLine(device.c_str(), mode, readConstant_ms);
}

struct Listing {
  std::span<PortEntry> entries;
  size_t used;
};

void TakePort(void* context, const wchar_t* name) {
  Listing& listing = *static_cast<Listing*>(context);
  if (!std::wstring_view(name).starts_with(kPrefix) || listing.used == listing.entries.size()) return;
  PortEntry& entry = listing.entries[listing.used++];
  entry.number = PortNumberOf(name);
  CopyWide(entry.name, name);
}

}  // namespace

// White space, a sign, and digits up to the first other character.
uint32_t PortNumberOf(std::wstring_view name) {
  if (!name.starts_with(kPrefix)) return 0;
  std::wstring_view text = name.substr(kPrefix.size());
  text.remove_prefix(std::min(text.find_first_not_of(L" \t\n\v\f\r"), text.size()));
  const bool negative = text.starts_with(L'-');
  if (negative || text.starts_with(L'+')) text.remove_prefix(1);
  const int64_t bound = negative ? -int64_t{INT32_MIN} : INT32_MAX;
  int64_t value = 0;
  for (const wchar_t c : text) {
    if (c < L'0' || c > L'9') break;
    value = std::min(value * 10 + (c - L'0'), bound);
  }
  return static_cast<uint32_t>(negative ? -value : value);
}

Handle OpenDevicePort(const wchar_t* name, int32_t baud) {
  char mode[64];
  FormatText(mode, "baud=%" PRId32 " parity=N data=8 stop=1", baud);
  return Open(name, mode, kReadConstant_ms);
}

Handle OpenFastDevicePort(const wchar_t* name) {
  return Open(name, "baud=3000000 parity=N data=8 stop=1 octs=on rts=on", kFastReadConstant_ms);
}

bool WaitForAnyByte(DeviceLink& link) {
  const uint32_t begin = MillisecondClock();
  do {
    uint8_t byte = 0;
    uint32_t got = 0;
    if (!ReadByte(link, byte, got)) return false;
    if (got != 0) return true;
  } while (MillisecondClock() - begin < kAnyByteLimit_ms);
  return false;
}

void ClearPortList(std::span<PortEntry> entries) {
  for (PortEntry& entry : entries) {
    if (entry.number == 0) return;
    entry.number = 0;
    entry.name[0] = L'\0';
  }
}

bool EnumerateSerialPorts(std::span<PortEntry> entries) {
  Listing listing{entries, 0};
  const bool listed = ListSerialLines(TakePort, &listing);
  // Clearing stops at a name without a number, so older entries may still stand behind it.
  if (listing.used < entries.size()) entries[listing.used] = PortEntry{};
  return listed;
}

size_t CountPorts(std::span<const PortEntry> entries) {
  const auto end =
      std::find_if(entries.begin(), entries.end(), [](const PortEntry& entry) { return entry.number == 0; });
  return static_cast<size_t>(end - entries.begin());
}

void SortPorts(std::span<PortEntry> entries) {
  std::stable_sort(entries.begin(), entries.begin() + static_cast<ptrdiff_t>(CountPorts(entries)),
                   [](const PortEntry& a, const PortEntry& b) { return a.number < b.number; });
}

int FindPort(std::span<const PortEntry> entries, std::wstring_view text) {
  const size_t count = CountPorts(entries);
  for (size_t i = 0; i < count; ++i) {
    wchar_t name[32];
    FormatWide(name, "COM%" PRId32, static_cast<int32_t>(entries[i].number));
    if (text == name) return static_cast<int>(i);
  }
  return -1;
}

}  // namespace tw
