#include "display/no_data_overlay.h"

#include <cinttypes>
#include <cwchar>

#include "base/text_format.h"
#include "display/scaling.h"

namespace tw {
namespace {

// At 96 dpi.
constexpr int32_t kLetterWidth = 11;  // in the mean, and a little more
constexpr int32_t kBoardHeight = 30;
constexpr int32_t kTextHeight = 18;
constexpr int32_t kTextLeft = 8;
constexpr int32_t kTextTop = 3;
constexpr Pixel kRed = 0xFF4040;

// In the middle of the image's height, or so many boards below.
void Place(const PanelLayout& layout, size_t letters, int32_t boards, NoDataSign& sign) {
  const auto px = [&](int32_t length) { return ScalePixels(length, layout.dpi); };
  const Rect& image = layout.image;
  const int32_t width = px(2 * kTextLeft + kLetterWidth * static_cast<int32_t>(letters));
  const int32_t height = px(kBoardHeight);
  if (image.Width() < width || image.Height() < (2 * boards + 1) * height) return;
  const int32_t top = image.top + (image.Height() - height) / 2 + boards * height;
  sign.board = {image.right - width, top, image.right, top + height};
  sign.label.at = {sign.board.left + px(kTextLeft), sign.board.top + px(kTextTop)};
  sign.label.height_px = px(kTextHeight);
  sign.label.colour = kRed;
}

}  // namespace

NoDataSign LayOutNoData(const PanelLayout& layout, uint32_t noData_s) {
  NoDataSign sign{};
  Place(layout, FormatWide(sign.label.text, "NO DATA %" PRIu32 " s", noData_s), 0, sign);
  return sign;
}

NoDataSign LayOutAlarm(const PanelLayout& layout, const wchar_t* text) {
  NoDataSign sign{};
  CopyWide(sign.label.text, text);
  Place(layout, std::wcslen(sign.label.text), 1, sign);
  return sign;
}

}  // namespace tw
