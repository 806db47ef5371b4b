#include "playback/pair.h"

namespace tw {
namespace {

constexpr std::wstring_view kUnit = L"kHz";

struct NameParts {
  std::wstring_view before;
  std::wstring_view number;
  std::wstring_view behind;
};

std::optional<NameParts> Split(std::wstring_view path) {
  const size_t separator = path.find_last_of(L"/\\");
  const std::wstring_view name = separator == path.npos ? path : path.substr(separator + 1);
  const size_t unit = name.find(kUnit);
  if (unit == name.npos) return std::nullopt;
  size_t begin = unit;
  while (begin > 0 && name[begin - 1] >= L'0' && name[begin - 1] <= L'9') --begin;
  constexpr size_t kMostDigits = 6;
  if (begin == unit || unit - begin > kMostDigits) return std::nullopt;
  return NameParts{name.substr(0, begin), name.substr(begin, unit - begin), name.substr(unit)};
}

}  // namespace

std::optional<int32_t> KHzOfName(std::wstring_view path) {
  const auto parts = Split(path);
  if (!parts) return std::nullopt;
  int32_t number = 0;
  for (const wchar_t digit : parts->number) number = number * 10 + static_cast<int32_t>(digit - L'0');
  return number;
}

bool BelongTogether(std::wstring_view pathA, std::wstring_view pathB) {
  const auto a = Split(pathA);
  const auto b = Split(pathB);
  return a && b && a->number != b->number && a->before == b->before && a->behind == b->behind;
}

}  // namespace tw
