// The log of events: what happened to a run and its files, for whoever looks after the fact. A file
// events.csv in the working folder, one line an event, each in one write at the file's end:
//
//   2026-03-14T09:30:05.123Z,start,"COM5, 921600 bit/s"
//
// Before a line that would take the file beyond kEventFileLimit_bytes it becomes events_old.csv, in the place
// of an older one. A line that cannot be written is lost; nothing else is. Any thread, unless said otherwise:
// threads wait for each other's lines, so nothing that comes with every ping belongs here.
#pragma once

#include <string_view>

#include "app/state/app_state.h"

namespace tw {

inline constexpr wchar_t kEventFile[] = L"events.csv";
inline constexpr wchar_t kOldEventFile[] = L"events_old.csv";
inline constexpr uint64_t kEventFileLimit_bytes = 10'000'000;

// Takes over option and working folder, at the start of the program and when one of them has changed. GUI
// thread.
void DirectEventLog(AppState& state);

[[nodiscard]] bool IsEventLogOn(const AppState& state);

// Writes one line while the option is on, else does nothing. The event is a plain word or two, the detail any
// text in UTF-8; it is cut behind some hundred bytes, and a line break becomes a blank.
void LogEvent(AppState& state, std::string_view event, std::string_view detail);

// The same for a mark of the operator's, whether the option is on or not: `utc_ms` is the time of its ping.
void LogMark(AppState& state, int64_t utc_ms, std::string_view detail);

}  // namespace tw
