#include "display/no_data_overlay.h"

#include <cinttypes>

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

}  // namespace

NoDataSign LayOutNoData(const PanelLayout& layout, uint32_t noData_s) {
  const auto px = [&](int32_t length) { return ScalePixels(length, layout.dpi); };
  const Rect& image = layout.image;
  NoDataSign sign{};
  const size_t letters = FormatWide(sign.label.text, "NO DATA %" PRIu32 " s", noData_s);
  const int32_t width = px(2 * kTextLeft + kLetterWidth * static_cast<int32_t>(letters));
  if (image.Width() < width || image.Height() < px(kBoardHeight)) return sign;
  const int32_t top = image.top + (image.Height() - px(kBoardHeight)) / 2;
  sign.board = {image.right - width, top, image.right, top + px(kBoardHeight)};
  sign.label.at = {sign.board.left + px(kTextLeft), sign.board.top + px(kTextTop)};
  sign.label.height_px = px(kTextHeight);
  sign.label.colour = kRed;
  return sign;
}

}  // namespace tw
