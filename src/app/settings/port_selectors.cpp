#include "app/settings/port_selectors.h"

#include <algorithm>
#include <cinttypes>
#include <cwchar>
#include <iterator>
#include <span>
#include <vector>

#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "base/text_format.h"
#include "base/text_scan.h"
#include "device/serial_ports.h"

namespace tw {
namespace {

constexpr int32_t kDeviceSpeeds[] = {4800,   9600,   19200,  38400,  57600,
                                     115200, 230400, 460800, 921600, 3000000};
constexpr int32_t kGpsSpeeds[] = {2400, 4800, 9600, 19200, 38400, 57600, 115200};

// The ports that the system has now, in ascending order.
std::span<const PortEntry> ListPorts(AppState& state) {
  ClearPortList(state.ports);
  // A list that cannot be read is an empty one; the next refresh tries again.
  static_cast<void>(EnumerateSerialPorts(state.ports));
  SortPorts(state.ports);
  return KnownPorts(state);
}

bool SamePort(const PortEntry& a, const PortEntry& b) {
  return a.number == b.number && std::wcscmp(a.name, b.name) == 0;
}

// Selects the port whose name is exactly `text`, else the first item. `itemsBefore` stand ahead of the ports.
void SelectPort(AppState& state, int combo, std::span<const PortEntry> ports, int itemsBefore,
                const wchar_t* text) {
  const int index = FindPort(ports, text);
  SelectComboItem(state, combo, index < 0 ? 0 : itemsBefore + index);
}

void FillPortCombo(AppState& state, int combo, bool withNoPort) {
  wchar_t kept[kPortNameSize];
  GetControlText(state, combo, kept);
  ClearCombo(state, combo);
  const std::span<const PortEntry> ports = ListPorts(state);
  if (withNoPort) AddComboItem(state, combo, kNoPortText);
  for (const PortEntry& port : ports) AddComboItem(state, combo, port.name);
  SelectPort(state, combo, ports, withNoPort ? 1 : 0, kept);
}

void FillSpeedCombo(AppState& state, int combo, std::span<const int32_t> speeds, int32_t stored) {
  ClearCombo(state, combo);
  for (const int32_t speed : speeds) {
    wchar_t text[16];
    FormatWide(text, "%" PRId32, speed);
    AddComboItem(state, combo, text);
  }
  const auto selected = std::find(speeds.begin(), speeds.end(), stored);
  SelectComboItem(state, combo, selected == speeds.end() ? 0 : static_cast<int>(selected - speeds.begin()));
}

// A port that was away comes back into its selector, so that the next start takes the same ones.
void SelectPortsOfRun(AppState& state) {
  const std::span<const PortEntry> ports = KnownPorts(state);
  if (FindPort(ports, state.devicePortName) >= 0)
    SelectPort(state, ID_DEVICE_PORT, ports, 0, state.devicePortName);
  if (FindPort(ports, state.gpsPortName) >= 0) SelectPort(state, ID_GPS_PORT, ports, 1, state.gpsPortName);
}

void ReadSpeed(AppState& state, int combo, int32_t& speed_bps) {
  wchar_t wide[kPortNameSize];
  GetControlText(state, combo, wide);
  char narrow[kPortNameSize];
  std::string_view text(narrow, NarrowText(narrow, wide));
  static_cast<void>(ScanInt(text, speed_bps));
}

void ReadPort(AppState& state, int combo, int32_t lastNumber, PortChoice& port) {
  wchar_t text[kPortNameSize];
  GetControlText(state, combo, text);
  const auto read = static_cast<int32_t>(PortNumberOf(text));
  const int32_t number = read != 0 ? read : lastNumber;
  if (number != kNoGpsPort) FormatWide(port.name, "COM%" PRId32, number);
}

bool SaysNoPort(AppState& state, int combo) {
  wchar_t text[kPortNameSize];
  GetControlText(state, combo, text);
  return std::wcscmp(text, kNoPortText) == 0;
}

}  // namespace

std::span<const PortEntry> KnownPorts(const AppState& state) {
  return {state.ports, CountPorts(state.ports)};
}

void SelectDevicePort(AppState& state, const wchar_t* name) {
  const int index = FindPort(KnownPorts(state), name);
  if (index >= 0) SelectComboItem(state, ID_DEVICE_PORT, index);
}

void FillDevicePortCombo(AppState& state) {
  FillPortCombo(state, ID_DEVICE_PORT, false);
}

void FillGpsPortCombo(AppState& state) {
  FillPortCombo(state, ID_GPS_PORT, true);
}

void RefreshPortCombos(AppState& state) {
  if (IsComboOpen(state, ID_DEVICE_PORT) || IsComboOpen(state, ID_GPS_PORT)) return;
  const std::span<const PortEntry> known = KnownPorts(state);
  const std::vector<PortEntry> before(known.begin(), known.end());
  if (std::ranges::equal(before, ListPorts(state), SamePort)) return;
  FillDevicePortCombo(state);
  FillGpsPortCombo(state);
  if (state.options.keepRunGoing != 0 && state.acquisitionThread != Handle::null) SelectPortsOfRun(state);
}

void SelectStoredPorts(AppState& state, const CommunicationSettings& stored) {
  const std::span<const PortEntry> ports = KnownPorts(state);
  wchar_t name[16];
  FormatWide(name, "COM%" PRId32, stored.devicePort);
  SelectPort(state, ID_DEVICE_PORT, ports, 0, name);
  FormatWide(name, "COM%" PRId32, stored.gpsPort);
  SelectPort(state, ID_GPS_PORT, ports, 1, name);
}

void FillSpeedCombos(AppState& state, const CommunicationSettings& stored) {
  FillSpeedCombo(state, ID_DEVICE_SPEED, kDeviceSpeeds, stored.deviceSpeed_bps);
  FillSpeedCombo(state, ID_GPS_SPEED, kGpsSpeeds, stored.gpsSpeed_bps);
}

std::span<const int32_t> DeviceSpeeds() {
  return kDeviceSpeeds;
}

void SelectDeviceSpeed(AppState& state, int32_t speed_bps) {
  const auto* const speed = std::find(std::begin(kDeviceSpeeds), std::end(kDeviceSpeeds), speed_bps);
  if (speed == std::end(kDeviceSpeeds)) return;
  SelectComboItem(state, ID_DEVICE_SPEED, static_cast<int>(speed - std::begin(kDeviceSpeeds)));
}

bool SelectStoredPortsThatAreThere(AppState& state) {
  const CommunicationSettings stored = LoadCommunicationSettings();
  const auto isThere = [&state](int32_t number) {
    wchar_t name[16];
    FormatWide(name, "COM%" PRId32, number);
    return FindPort(KnownPorts(state), name) >= 0;
  };
  if (!isThere(stored.devicePort)) return false;
  if (stored.gpsPort != kNoGpsPort && !isThere(stored.gpsPort)) return false;
  SelectStoredPorts(state, stored);
  return true;
}

void KeepPortsAtStart(AppState& state) {
  std::ranges::fill(state.watch.portsAtStart, 0u);
  std::ranges::transform(KnownPorts(state), state.watch.portsAtStart, &PortEntry::number);
}

void FormatNewPorts(const AppState& state, std::span<char> text) {
  text[0] = '\0';
  size_t used = 0;
  for (const PortEntry& port : KnownPorts(state)) {
    if (std::ranges::count(state.watch.portsAtStart, port.number) != 0) continue;
    char name[24];
    FormatText(name, "%s COM%" PRIu32, used == 0 ? ", new:" : "", port.number);
    const size_t length = std::string_view(name).size();
    if (used + length >= text.size()) return;
    FormatText(text.subspan(used), "%s", name);
    used += length;
  }
}

void ReadPortChoices(AppState& state, PortChoice& device, PortChoice& receiver) {
  device = {.name = {}, .speed_bps = globals.deviceBaud};
  receiver = {.name = {}, .speed_bps = globals.gpsBaud};
  ReadPort(state, ID_DEVICE_PORT, globals.devicePortNumber, device);
  ReadSpeed(state, ID_DEVICE_SPEED, device.speed_bps);
  if (!SaysNoPort(state, ID_GPS_PORT)) ReadPort(state, ID_GPS_PORT, globals.gpsPortNumber, receiver);
  ReadSpeed(state, ID_GPS_SPEED, receiver.speed_bps);
}

}  // namespace tw
