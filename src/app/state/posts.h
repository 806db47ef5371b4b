// What worker threads tell the user interface: posted, never sent, so a worker never waits for the GUI
// thread. Any thread. The user interface of the program implements these; a test brings its own.
#pragma once

#include <cstddef>
#include <cstdint>

#include "app/state/slider_messages.h"

namespace tw {

struct AppState;

enum class StatusPart : uint8_t { device = 0, gps = 1, position = 2, pingLine = 3, empty = 4 };

inline constexpr wchar_t kWithoutMemoryText[] = L"Insufficient memory!";

// Shows a text in a part of the status bar. Only the pointer travels: the text must live for the whole
// process and stay readable after the writer has moved on (see StatusTexts).
void PostStatusText(AppState& state, StatusPart part, const wchar_t* text);

// Tells the slider and the main window how far a file has been read; each gets a copy of the block. A copy
// that cannot be posted is dropped: the next one comes within 20 ms.
void PostProgress(AppState& state, const ProgressBlock& progress);

// A conversion is over; `exhausted` when all of its input was read. False when that has to be posted again:
// the message queue is full.
[[nodiscard]] bool PostConversionEnd(AppState& state, bool exhausted);

// What has changed of the run. Told by run control on its own thread (in the program the GUI thread), in the
// middle of its steps: who listens shows it and returns.
enum class RunChange : uint8_t {
  identified,   // the device has told what it is and its settings
  speedTaken,   // the device has taken its new speed, which goes into force with its reset
  starting,     // the device is told to go next
  reconnected,  // the same, at a port that was opened anew
  running,      // device and workers are started
  idle,         // the run is over, its ports and files are closed
};
void TellRunChanged(AppState& state, RunChange change);

inline constexpr uint32_t kStatusTextSize = 256;

// A few process-wide text buffers that one thread fills in turn, so that a text stays whole while the GUI
// thread reads it although the next one is already being written.
struct StatusTexts {
  wchar_t texts[4][kStatusTextSize];
  uint32_t next;

  // The buffer to fill now; the three before it stay untouched.
  wchar_t (&Next())[kStatusTextSize] { return texts[next++ % 4]; }
};

// The texts of a thread that posts more than the GUI thread may keep pace with: a buffer for each part of the
// status bar, which is rewritten again and again. Static, as the buffers must live for the whole process.
struct OwnTexts {
  wchar_t texts[5][kStatusTextSize];

  wchar_t (&OfPart(StatusPart part))[kStatusTextSize] { return texts[static_cast<size_t>(part)]; }
};

// Writes a text into the buffer of its part, not while the status bar reads it, and shows it. However late
// the status bar comes round to what was posted, it shows a whole text of that part: the newest.
void PostOwnText(AppState& state, StatusPart part, OwnTexts& texts, const wchar_t* text);

}  // namespace tw
