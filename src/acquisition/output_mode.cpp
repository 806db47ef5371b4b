#include "acquisition/output_mode.h"

#include <algorithm>
#include <iterator>

namespace tw {
namespace {

constexpr OutputModeName kSecondFamily[] = {
    {1, L"Altimeter Simple"},
    {2, L"Echo txt"},
    {3, L"Altimeter NMEA"},
    {4, L"Echo txt Fixed 200 Samples"},
    {5, L"Echo txt Fixed 500 Samples"},
    {6, L"Echo txt Fixed 1000 Samples"},
    {7, L"PSA-916"},
    {8, L"AltiPlusTemp."},
    {9, L"Sonarmite DFX"},
    {10, L"Sonarmite OLD"},
    {100, L"Echo Bin 10bit"},
    {101, L"Echo Bin 8bit/compand"},
};

constexpr OutputModeName kThirdFamily[] = {
    {1, L"Altimeter Simple"},
    {2, L"Echo Txt"},
    {3, L"Altimeter NMEA"},
    {4, L"Echo txt Fixed 200 Samples"},
    {5, L"Echo txt Fixed 500 Samples"},
    {6, L"Echo txt Fixed 1000 Samples"},
    {7, L"PSA-916"},
    {8, L"AltiPlusTemp."},
    {9, L"Sonarmite DFX"},
    {10, L"Sonarmite OLD"},
};

constexpr OutputModeName kFirstFamily[] = {
    {1, L"Simple Altimeter"}, {3, L"Altimeter NMEA"},          {2, L"Echo Txt 10bit"}, {4, L"Echo Txt 12bit"},
    {100, L"Echo Bin 12bit"}, {101, L"Echo Bin 8bit/compand"}, {6, L"DESO-25(M)"},     {7, L"Altimeter Dual"},
    {8, L"Sonarmite DFX"},    {9, L"Sonarmite OLD"},
};

constexpr OutputMode kEchoFirst[] = {2, 4, 100, 101};
constexpr OutputMode kEchoOthers[] = {2, 4, 5, 6, 100, 101};

template <typename Range>
bool Holds(const Range& modes, OutputMode mode) {
  return std::find(std::begin(modes), std::end(modes), mode) != std::end(modes);
}

}  // namespace

std::span<const OutputModeName> OfferedModes(int32_t family) {
  if (family == 1) return kFirstFamily;
  if (family == 2) return kSecondFamily;
  return kThirdFamily;
}

bool ModeOfName(int32_t family, std::wstring_view name, OutputMode& mode) {
  for (const OutputModeName& row : OfferedModes(family)) {
    if (row.name == name) {
      mode = row.code;
      return true;
    }
  }
  return false;
}

std::wstring_view NameOfMode(int32_t family, OutputMode mode) {
  for (const OutputModeName& row : OfferedModes(family)) {
    if (row.code == mode) return row.name;
  }
  return {};
}

bool CarriesEchoSamples(int32_t family, OutputMode mode) {
  return family == 1 ? Holds(kEchoFirst, mode) : Holds(kEchoOthers, mode);
}

}  // namespace tw
