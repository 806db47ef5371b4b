// Playback and conversions of chosen files, without a window: opening and judging them, starting and steering
// the file workers, their end. GUI thread. They run only without a device. What cannot be done is returned;
// telling the operator, and refreshing what he sees, is his user interface's (app/window/file_commands.h).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "app/state/app_state.h"
#include "app/state/slider_messages.h"
#include "platform/owned_file.h"
#include "playback/detection.h"
#include "playback/ping_source.h"

namespace tw {

enum class FileFaultKind : uint8_t {
  none,
  deviceRuns,
  noneChosen,
  severalChosen,   // for a conversion
  notOpened,       // names the file
  unknownFormat,   // no kind of recording that this program knows
  notPlayable,     // no ping can be read of it
  wrongPair,       // the files do not belong together
  notConvertible,  // no ping can be read of it, or its kind has nothing to convert
  noOutput,        // the output cannot be made
  noWorker,        // the system starts no thread; everything is closed again, and the process is to end
};

struct FileFault {
  FileFaultKind kind = FileFaultKind::none;
  std::wstring file;  // its name without the folder, where that is told
};

// A file that was opened and judged, once: its worker goes on with what was found. Closed with this, unless
// it was begun.
struct OpenedRecording {
  OwnedFile file;
  std::optional<Detected> told;           // nothing: no kind that is known
  std::unique_ptr<PingSource> recording;  // at its start; null: it holds no ping
  float range_m = 0;                      // that the first ping tells; 0: none
};

struct FilesToPlay {
  OpenedRecording a;
  OpenedRecording b;  // of a pair the lower frequency; without a recording `a` is played alone
};

// One file or the pair of a dual recording, in any order. Where one channel of a pair has not pinged, the
// other is played alone. After a fault the files are open still, as far as they have been opened.
[[nodiscard]] FileFault OpenForPlayback(AppState& state, std::span<const std::wstring> paths,
                                        FilesToPlay& files);

// Takes over what the recording tells of its settings, and starts the workers. No other worker runs.
[[nodiscard]] FileFault BeginPlayback(AppState& state, FilesToPlay& files);

// The same for a conversion; nobody else can write the file while it is open. The output goes to the working
// folder, under the input's name.
[[nodiscard]] FileFault OpenForConversion(AppState& state, const std::wstring& path, Conversion conversion,
                                          OpenedRecording& input);
[[nodiscard]] FileFault BeginConversion(AppState& state, const std::wstring& path, Conversion conversion,
                                        OpenedRecording& input);

// Ends a playback or conversion: waits as long as its workers take. True when a playback was shown, whose
// views are to be arranged anew.
[[nodiscard]] bool EndFileRun(AppState& state);

// What the options say of the pace, the gaps and the bar: when a playback begins, and when they have changed.
void TakeReplayOptions(AppState& state);

// Steers a playback. True when what the controls show has changed. After the end Resume begins again.
[[nodiscard]] bool ResumeFileRun(AppState& state);
[[nodiscard]] bool PauseFileRun(AppState& state);
[[nodiscard]] bool StepFileRunBack(AppState& state, RunEvent step);
[[nodiscard]] bool StepFileRunOn(AppState& state, int32_t pings);

// A worker tells how far it is. After the end this means that the slider has sent it back: true.
[[nodiscard]] bool NoteFileProgress(AppState& state, const ProgressBlock& progress);

}  // namespace tw
