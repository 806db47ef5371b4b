#include "app/settings/control_tips.h"

#include "app/settings/control_states.h"
#include "app/window/control_ids.h"
#include "base/text_format.h"

namespace tw {
namespace {

constexpr int kMain = ID_DIALOG_MAIN;

// In the order in which they stand in their windows.
// clang-format off
constexpr ControlTip kTips[] = {
    {kMain, ID_DEVICE_PORT, L"The port of the echosounder."},
    {kMain, ID_DEVICE_SPEED, L"The speed of its port, in bit/s; it must be the device's own."},
    {kMain, ID_GPS_PORT, L"The port of the GPS receiver; N/A is for none."},
    {kMain, ID_GPS_SPEED, L"The speed of its port, in bit/s; usually 4800 or 9600."},
    {kMain, ID_START, L"Connects, reads the device's settings and lets it run (F5)."},
    {kMain, ID_STOP, L"Ends a run, a playback or a conversion (Shift+F5)."},
    {kMain, ID_HIGH_FREQUENCY, L"Pings with the high frequency, with Apply (Ctrl+H)."},
    {kMain, ID_LOW_FREQUENCY, L"Pings with the low frequency, with Apply (Ctrl+L)."},
    {kMain, ID_DUAL_MODE, L"Pings with both frequencies in turn, with Apply (Ctrl+D)."},
    {kMain, ID_OUTPUT, L"The form of the device's data; sent one second after the choice."},
    {kMain, ID_RANGE, L"How deep the device listens; sent one second after the choice."},
    {kMain, ID_INTERVAL, L"The time between two pings, in seconds, with Apply."},
    {kMain, ID_MEASURED_INTERVAL, L"The time between two pings that was measured, where the device chooses it."},
    {kMain, ID_PRESET, L"Settings that the device keeps ready, with Apply."},
    {kMain, ID_APPLY, L"Sends the choices that wait to the device (F6)."},
    {kMain, ID_DETAIL, L"All settings of the device (F7)."},
    {kMain, ID_DEFAULT, L"Brings the device to the values it was delivered with, after a question (Ctrl+Shift+D)."},
    {kMain, ID_RECORD, L"Writes each ping to a record file in the working folder (Ctrl+R)."},
    {kMain, ID_TIMESTAMP, L"Numbers time marks and writes them across the echogram (Ctrl+T)."},
    {kMain, ID_AUTO_CAPTURE, L"Saves a picture of the echogram each 135 s, with both frequencies each 67 s (Ctrl+A)."},
    {kMain, ID_PLAYBACK, L"Shows a recording, or both files of a pair, in the echogram (Ctrl+O)."},
    {kMain, ID_SHOW_SETTINGS, L"The settings that the played file was recorded with (Shift+F7)."},
    {kMain, ID_FAST_BACK, L"Goes back by 100 places (Ctrl+Shift+F8)."},
    {kMain, ID_BACK, L"Goes back by 20 places (Ctrl+F8)."},
    {kMain, ID_PAUSE, L"Holds the picture (Shift+F8)."},
    {kMain, ID_RESUME, L"Goes on; at the end it begins again (F8)."},
    {kMain, ID_SEGY_CONVERT, L"Makes a SEG-Y file of a recording with echoes (Ctrl+E)."},

    {ID_PLAYBACK_BAR, ID_REPLAY_PACE, L"How fast the recording is played, against its own time; as given: a ping each 16 ms. + faster, \u2212 slower."},
    {ID_PLAYBACK_BAR, ID_REPLAY_SKIP_GAPS, L"Gaps of more than 5 s are not waited for."},
    {ID_PLAYBACK_BAR, ID_REPLAY_TIME, L"Space: hold, and go on. Left and right: 20 pings back and on, with Ctrl 100. Home: to the beginning.\nThe keys count while the echogram, the slider or this bar has the focus."},
    {ID_PLAYBACK_BAR, ID_REPLAY_GO_TO, L"A time of the recording, as 1:02:03, 2:03 or 3: Enter goes there.", L"This recording tells no times that one could go to."},
    {ID_PLAYBACK_BAR, ID_REPLAY_STRIP, L"The whole recording: its echoes, and the depth as a line. A click goes there."},

    {ID_DIALOG_FOLDER, ID_FOLDER_EDIT, L"Recordings, pictures and events.csv go there; at most 129 characters. A file that is being written stays where it is."},
    {ID_DIALOG_FOLDER, ID_FOLDER_BROWSE, L"Shows the folders of this computer, and can make one."},
    {ID_DIALOG_FOLDER, ID_DIALOG_OK, L"Makes the folder when it is not there."},

    {ID_DIALOG_MARK, ID_MARK_WORD, L"At most 47 characters. Without a word the mark has its number alone."},
    {ID_DIALOG_MARK, ID_DIALOG_OK, L"The mark stands at the ping that was the newest when you asked for it, however long you type."},

    {ID_DIALOG_BAUD, ID_BAUD_SPEED, L"What device and program go on with. If cable or adapter do not carry it, the device is lost: then Help, Find device... shows at which speed it answers."},
    {ID_DIALOG_BAUD, ID_BAUD_CHANGE, L"Tells the device, which must be running, and goes on with the run; recording goes on in a new file."},

    {ID_DIALOG_OPTIONS, ID_OPTIONS_DEFAULTS, L"This page as the program was delivered, but for what a run forbids; OK takes it over."},

    {ID_DIALOG_FIND, ID_FIND_PORTS, L"Tick where to look; the receiver's port is not ticked at first. A silent port costs 1.2 s a speed, a noisy one 3.6 s."},
    {ID_DIALOG_FIND, ID_FIND_SPEEDS, L"Tick what to try: the speed of the main window comes first, then the others from the highest on."},
    {ID_DIALOG_FIND, ID_FIND_SEARCH, L"Asks one port after the other until something answers there. Pressed again it ends the search.", L"Tick a port and a speed."},
    {ID_DIALOG_FIND, ID_DIALOG_OK, L"Puts port and speed of the selected device into the main window; press Start there.", L"Select a row with a device; none has answered there yet."},
};
// clang-format on

const ControlTip* RowOf(int window, int id) {
  for (const ControlTip& row : kTips) {
    if (row.window == window && row.id == id) return &row;
  }
  return nullptr;
}

}  // namespace

std::span<const ControlTip> ControlTips() {
  return kTips;
}

void ComposeTip(std::span<wchar_t> tip, const wchar_t* text, const wchar_t* reason) {
  size_t used = CopyWide(tip, text);
  if (reason == nullptr || reason[0] == L'\0') return;
  used += CopyWide(tip.subspan(used), L"\n");
  CopyWide(tip.subspan(used), reason);
}

void FormatControlTip(const AppState& state, int id, std::span<wchar_t> tip) {
  CopyWide(tip, L"");
  if (const ControlTip* const row = RowOf(ID_DIALOG_MAIN, id))
    ComposeTip(tip, row->text, WhyDisabled(state, id));
}

void FormatControlTip(int window, int id, bool grey, std::span<wchar_t> tip) {
  CopyWide(tip, L"");
  if (const ControlTip* const row = RowOf(window, id))
    ComposeTip(tip, row->text, grey ? row->reason : nullptr);
}

}  // namespace tw
