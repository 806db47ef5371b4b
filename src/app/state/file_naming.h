// Names of the files that recordings and conversions go to, and the rule by which they are created. Any
// thread. Names are plain ASCII: what a device calls itself is cleaned before it becomes part of a path.
//
// A recording's name: 20250314_093005_Dual_450kHz_id_E3105_txt12.log
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "app/state/conversion.h"
#include "app/state/device_family.h"
#include "base/calendar.h"
#include "platform/handle.h"

namespace tw {

inline constexpr char kProgramTitle[] = "Tidewriter Echosounder Control Software";
inline constexpr size_t kRecordNameSize = 256;
inline constexpr size_t kPathSize = 1024;

// The names differ a little between the files that Start opens and those that are opened when "Record Data"
// is switched on during a run; later readers go by content, so both habits are kept.
enum class NamingMoment : uint8_t { start, recordSwitchedOn };

// All that a record file's name depends on.
struct NamingFacts {
  NamingMoment moment;
  DeviceFamily family;
  bool dual;
  const char* modeWord;  // that stands for the output mode
  bool sharesOneFile;    // a dual run of it has one file for both channels
  bool hasSamples;
  int32_t frequencyInUse_hz;
  int32_t lowFrequency_hz;
  int32_t highFrequency_hz;
  int32_t measuredLow_hz;
  int32_t measuredHigh_hz;
  std::string_view identity;  // family 1
  int32_t identifierWord;     // families 2 and 0
  bool segyCompanions;
  CalendarTime localTime;
};

// One file to open. An empty name: there is no such file.
struct RecordFileName {
  char record[kRecordNameSize];
  char segy[kRecordNameSize];
  int32_t channelFrequency_hz;  // for the settings line at the start of the file
};

struct RecordFileNames {
  RecordFileName a;
  RecordFileName b;
};

[[nodiscard]] RecordFileNames NameRecordFiles(const NamingFacts& facts);

// A frequency for a name: kHz, rounded to a multiple of 10 (447000 gives 450).
[[nodiscard]] int32_t NameKHz(int32_t frequency_hz);

// "20250314_093005".
void FormatTimeStamp(std::span<char> out, const CalendarTime& localTime);

// The window title while recording: the program's title, blanks, the name of the first file and, when
// `nameB` is not empty, that of the second. Cut to fit.
void FormatRecordTitle(std::span<char> out, const char* nameA, const char* nameB);

// The name of a conversion's output: the last component of the input's path up to its first point, then
// ".sgy" or "_txt.log" (Conversion::none is none). Cut to fit.
void NameConversion(std::span<wchar_t> out, std::wstring_view inputPath, Conversion conversion);

// Folder and name joined by the system's separator. False (and an empty `out`) when they do not fit.
[[nodiscard]] bool JoinPath(std::span<wchar_t> out, std::wstring_view folder, std::wstring_view name);

// Creates `folder` when it is no folder yet, then the file in it: anew, for reading and writing, shared for
// reading. Handle::invalid when either cannot be had.
[[nodiscard]] Handle CreateInFolder(const wchar_t* folder, const wchar_t* name);

}  // namespace tw
