// What worker threads tell the user interface: posted, never sent, so a worker never waits for the GUI
// thread. Any thread. The user interface of the program implements these; a test brings its own.
#pragma once

#include <cstdint>

namespace tw {

struct AppState;

enum class StatusPart : uint8_t { device = 0, gps = 1, position = 2, pingLine = 3, empty = 4 };

// Shows a text in a part of the status bar. Only the pointer travels: the text must live for the whole
// process and stay readable after the writer has moved on (see StatusTexts).
void PostStatusText(AppState& state, StatusPart part, const wchar_t* text);

inline constexpr uint32_t kStatusTextSize = 256;

// A few process-wide text buffers that one thread fills in turn, so that a text stays whole while the GUI
// thread reads it although the next one is already being written.
struct StatusTexts {
  wchar_t texts[4][kStatusTextSize];
  uint32_t next;

  // The buffer to fill now; the three before it stay untouched.
  wchar_t (&Next())[kStatusTextSize] { return texts[next++ % 4]; }
};

}  // namespace tw
