#include "app/settings/settings_text.h"

#include <cinttypes>
#include <cmath>
#include <cwchar>
#include <iterator>

#include "app/state/device_settings.h"
#include "base/text_format.h"
#include "base/text_scan.h"

namespace tw {
namespace {

constexpr wchar_t kOff[] = L"Off";

}  // namespace

void FormatNumber(double value, int decimals, std::span<wchar_t> text) {
  constexpr int kMostDecimals = 3;
  char digits[64];
  size_t size = FormatText(digits, "%.*f", kMostDecimals, value);
  const size_t point = size - kMostDecimals - 1;
  const size_t keep = decimals == 0 ? point : point + 1 + static_cast<size_t>(decimals);
  while (size > keep && (digits[size - 1] == '0' || digits[size - 1] == '.')) --size;
  WidenText(text, {digits, size});
}

bool ReadNumber(std::wstring_view text, bool whole, double& value) {
  char narrow[32];
  if (text.empty() || text.size() >= std::size(narrow)) return false;
  bool digit = false;
  bool point = whole;
  for (size_t i = 0; i < text.size(); ++i) {
    const wchar_t c = text[i];
    if (c >= L'0' && c <= L'9') {
      digit = true;
    } else if (c == L'.' && !point) {
      point = true;
    } else if (i != 0 || (c != L'-' && c != L'+')) {
      return false;
    }
    narrow[i] = static_cast<char>(c);
  }
  std::string_view rest(narrow, text.size());
  return digit && ScanDouble(rest, value) && rest.empty();
}

void FormatInterval(int32_t interval_ms, std::span<wchar_t> text) {
  if (interval_ms == 0) {
    CopyWide(text, kAutomaticText);
  } else {
    FormatNumber(interval_ms / 1000.0, 2, text);
  }
}

void FormatMode(DeviceFamily family, OutputMode mode, std::span<wchar_t> text) {
  const std::wstring_view name = NameOfMode(family, mode);
  if (mode == kPlayedBinary) {
    CopyWide(text, L"Echo Bin");
  } else if (name.empty()) {
    FormatWide(text, "%" PRId32, mode);
  } else {
    CopyWide(text, name);
  }
}

void FormatPreset(int32_t preset, std::span<wchar_t> text) {
  if (preset == kNoPreset) {
    CopyWide(text, kOff);
  } else if (preset == kAutomaticPreset) {
    CopyWide(text, kAutomaticText);
  } else {
    FormatWide(text, "%" PRId32, preset);
  }
}

bool ReadPreset(const wchar_t* text, int32_t& preset) {
  if (std::wcscmp(text, kOff) == 0) {
    preset = kNoPreset;
  } else if (std::wcscmp(text, kAutomaticText) == 0) {
    preset = kAutomaticPreset;
  } else {
    double value = 0;
    if (!ReadNumber(text, true, value) || std::fabs(value) > 1e6) return false;
    preset = static_cast<int32_t>(value);
  }
  return true;
}

}  // namespace tw
