#include "acquisition/output_mode.h"

#include <algorithm>
#include <array>

#include "acquisition/altimeter_lines.h"
#include "acquisition/device_block.h"
#include "acquisition/echo_frame.h"
#include "acquisition/echo_text_stream.h"
#include "acquisition/nmea_depth.h"

namespace tw {
namespace {

// kept: the two words of a mode differ in capitalisation, and those of the families too; archives are
// searched by them.
constexpr auto kFirstFamily = std::to_array<OutputModeRow>({
    {1, L"Simple Altimeter", "simple", "simple", kSimpleStream, kReportingStream, kReportingStream},
    {3, L"Altimeter NMEA", "nmea", "nmea", kFirstNmeaStream},
    {2, L"Echo Txt 10bit", "txt10", "txt10", kFirstTextStream},
    {4, L"Echo Txt 12bit", "txt12", "txt12", kFirstTextStream},
    {100, L"Echo Bin 12bit", "bin12", "bin12", kBlockStream, kFrameStream},
    {101, L"Echo Bin 8bit/compand", "bin8", "bin8", kBlockStream, kFrameStream},
    {6, L"DESO-25(M)", "deso_M", "deso_M", kDesoStream},
    {7, L"Altimeter Dual", "Dual", "dual", kDualStream},
    {8, L"Sonarmite DFX", "DFX", "dfx", kDfxStream},
    {9, L"Sonarmite OLD", "OLD", "old", kOldStream},
});

constexpr auto kSecondFamily = std::to_array<OutputModeRow>({
    {1, L"Altimeter Simple", "simple", "simple", kSimpleStream, kReportingStream},
    {2, L"Echo txt", "Echosounder", "Echosounder", kSecondTextStream},
    {3, L"Altimeter NMEA", "nmea", "nmea", kSecondNmeaStream},
    {4, L"Echo txt Fixed 200 Samples", "EchoSounder(200)", "EchoSounder(200)", kSecondTextStream},
    {5, L"Echo txt Fixed 500 Samples", "EchoSounder(500)", "EchoSounder(500)", kSecondTextStream},
    {6, L"Echo txt Fixed 1000 Samples", "EchoSounder(1000)", "EchoSounder(1000)", kSecondTextStream},
    {7, L"PSA-916", "PSA-916", "PSA-916", kPsaStream},
    {8, L"AltiPlusTemp.", "AltiTemp", "AltiTemp", kAltiTempStream},
    {9, L"Sonarmite DFX", "DFX", "DFX", kDfxStream},
    {10, L"Sonarmite OLD", "OLD", "OLD", kOldStream},
    {100, L"Echo Bin 10bit", "bin10", "bin10", kBlockStream, kFrameStream},
    {101, L"Echo Bin 8bit/compand", "bin8", "bin8", kBlockStream, kFrameStream},
});

// The third family sends what the second does. kept: its selector writes one name otherwise and does not
// offer the binary modes, which are accepted all the same; their files are called "nmea" at Start.
constexpr auto kThirdFamily = [] {
  auto rows = kSecondFamily;
  for (OutputModeRow& row : rows) {
    if (row.code == 2) row.name = L"Echo Txt";
    if (row.code != 100 && row.code != 101) continue;
    row.name = {};
    row.wordAtStart = "nmea";
  }
  return rows;
}();

const OutputModeRow* Find(std::span<const OutputModeRow> rows, bool (*fits)(const OutputModeRow&, OutputMode),
                          OutputMode mode) {
  const auto at =
      std::find_if(rows.begin(), rows.end(), [&](const OutputModeRow& row) { return fits(row, mode); });
  return at == rows.end() ? nullptr : &*at;
}

bool HasCode(const OutputModeRow& row, OutputMode mode) {
  return row.code == mode;
}

bool IsPlayedAs(const OutputModeRow& row, OutputMode mode) {
  return row.code == mode || row.Played() == mode;
}

}  // namespace

std::span<const OutputModeRow> AcceptedModes(DeviceFamily family) {
  if (family == DeviceFamily::first) return kFirstFamily;
  return family == DeviceFamily::second ? kSecondFamily : kThirdFamily;
}

std::span<const OutputModeRow> OfferedModes(DeviceFamily family) {
  const auto rows = AcceptedModes(family);
  const auto end =
      std::find_if(rows.begin(), rows.end(), [](const OutputModeRow& row) { return row.name.empty(); });
  return {rows.begin(), end};
}

const OutputModeRow* FindMode(DeviceFamily family, OutputMode mode) {
  return Find(AcceptedModes(family), HasCode, mode);
}

const OutputModeRow& AcceptedMode(DeviceFamily family, OutputMode mode) {
  const OutputModeRow* const row = FindMode(family, mode);
  return row == nullptr ? *FindMode(family, kAltimeterNmea) : *row;
}

const OutputModeRow& PlayedMode(DeviceFamily family, OutputMode mode) {
  const OutputModeRow* const row = Find(AcceptedModes(family), IsPlayedAs, mode);
  return row == nullptr ? *FindMode(family, kAltimeterNmea) : *row;
}

bool ModeOfName(DeviceFamily family, std::wstring_view name, OutputMode& mode) {
  for (const OutputModeRow& row : OfferedModes(family)) {
    if (row.name == name) {
      mode = row.code;
      return true;
    }
  }
  return false;
}

std::wstring_view NameOfMode(DeviceFamily family, OutputMode mode) {
  const OutputModeRow* const row = FindMode(family, mode);
  return row == nullptr ? std::wstring_view() : row->name;
}

}  // namespace tw
