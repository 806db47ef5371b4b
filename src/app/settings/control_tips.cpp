#include "app/settings/control_tips.h"

#include "app/settings/control_states.h"
#include "app/window/control_ids.h"
#include "base/text_format.h"

namespace tw {
namespace {

// In the order in which they stand in the window.
// clang-format off
constexpr ControlTip kTips[] = {
    {ID_DEVICE_PORT, L"The port of the echosounder."},
    {ID_DEVICE_SPEED, L"The speed of its port, in bit/s; it must be the device's own."},
    {ID_GPS_PORT, L"The port of the GPS receiver; N/A is for none."},
    {ID_GPS_SPEED, L"The speed of its port, in bit/s; usually 4800 or 9600."},
    {ID_START, L"Connects, reads the device's settings and lets it run (F5)."},
    {ID_STOP, L"Ends a run, a playback or a conversion (Shift+F5)."},
    {ID_HIGH_FREQUENCY, L"Pings with the high frequency, with Apply (Ctrl+H)."},
    {ID_LOW_FREQUENCY, L"Pings with the low frequency, with Apply (Ctrl+L)."},
    {ID_DUAL_MODE, L"Pings with both frequencies in turn, with Apply (Ctrl+D)."},
    {ID_OUTPUT, L"The form of the device's data; sent one second after the choice."},
    {ID_RANGE, L"How deep the device listens; sent one second after the choice."},
    {ID_INTERVAL, L"The time between two pings, in seconds, with Apply."},
    {ID_MEASURED_INTERVAL, L"The time between two pings that was measured, where the device chooses it."},
    {ID_PRESET, L"Settings that the device keeps ready, with Apply."},
    {ID_APPLY, L"Sends the choices that wait to the device (F6)."},
    {ID_DETAIL, L"All settings of the device (F7)."},
    {ID_DEFAULT, L"Brings the device to the values it was delivered with, after a question (Ctrl+Shift+D)."},
    {ID_RECORD, L"Writes each ping to a record file in the working folder (Ctrl+R)."},
    {ID_TIMESTAMP, L"Numbers time marks and writes them across the echogram (Ctrl+T)."},
    {ID_AUTO_CAPTURE, L"Saves a picture of the echogram each 135 s, with both frequencies each 67 s (Ctrl+A)."},
    {ID_PLAYBACK, L"Shows a recording, or both files of a pair, in the echogram (Ctrl+O)."},
    {ID_SHOW_SETTINGS, L"The settings that the played file was recorded with (Shift+F7)."},
    {ID_FAST_BACK, L"Goes back by 100 places (Ctrl+Shift+F8)."},
    {ID_BACK, L"Goes back by 20 places (Ctrl+F8)."},
    {ID_PAUSE, L"Holds the picture (Shift+F8)."},
    {ID_RESUME, L"Goes on; at the end it begins again (F8)."},
    {ID_SEGY_CONVERT, L"Makes a SEG-Y file of a recording with echoes (Ctrl+E)."},
};
// clang-format on

}  // namespace

std::span<const ControlTip> ControlTips() {
  return kTips;
}

void FormatControlTip(const AppState& state, int id, std::span<wchar_t> tip) {
  CopyWide(tip, L"");
  for (const ControlTip& row : kTips) {
    if (row.id != id) continue;
    const size_t used = CopyWide(tip, row.text);
    const wchar_t* const reason = WhyDisabled(state, id);
    if (reason == nullptr) return;
    CopyWide(tip.subspan(used + CopyWide(tip.subspan(used), L"\n")), reason);
  }
}

}  // namespace tw
