#include "display/text_win32.h"

#include <cwchar>
#include <iterator>

#include "base/text_format.h"
#include "display/scaling.h"

namespace tw {

namespace {

constexpr Gdiplus::ARGB kOpaque = 0xFF000000;

// Any family that is installed.
OwnedFamily FindAnyFamily() {
  Gdiplus::GpFontCollection* installed = nullptr;  // belongs to GDI+
  if (flat::GdipNewInstalledFontCollection(&installed) != Gdiplus::Ok) return {};
  Gdiplus::GpFontFamily* listed = nullptr;  // belongs to the collection
  int count = 0;
  if (flat::GdipGetFontCollectionFamilyList(installed, 1, &listed, &count) != Gdiplus::Ok || count < 1)
    return {};
  Gdiplus::GpFontFamily* family = nullptr;
  if (flat::GdipCloneFontFamily(listed, &family) != Gdiplus::Ok) return {};
  return OwnedFamily(family);
}

OwnedFamily FindFamily() {
  Gdiplus::GpFontFamily* family = nullptr;
  if (flat::GdipCreateFontFamilyFromName(L"Segoe UI", nullptr, &family) == Gdiplus::Ok)
    return OwnedFamily(family);
  family = nullptr;
  if (flat::GdipGetGenericFontFamilySansSerif(&family) == Gdiplus::Ok) return OwnedFamily(family);
  return FindAnyFamily();
}

OwnedFont MakeFont(const OwnedFamily& family, int32_t height_px) {
  for (const int style : {Gdiplus::FontStyleBold, Gdiplus::FontStyleRegular}) {
    Gdiplus::GpFont* font = nullptr;
    const auto size = static_cast<Gdiplus::REAL>(height_px);
    if (flat::GdipCreateFont(family.Get(), size, style, Gdiplus::UnitPixel, &font) == Gdiplus::Ok) {
      return OwnedFont(font);
    }
  }
  return {};
}

OwnedBrush MakeBrush() {
  Gdiplus::GpSolidFill* brush = nullptr;
  if (flat::GdipCreateSolidFill(kOpaque, &brush) != Gdiplus::Ok) return {};
  return OwnedBrush(brush);
}

}  // namespace

Gdiplus::GpFont* LabelPainter::FontOf(int32_t height_px) {
  for (size_t i = 0; i < fontCount_; ++i) {
    if (fonts_[i].height_px == height_px) return fonts_[i].font.Get();
  }
  if (!familySought_) family_ = FindFamily();
  familySought_ = true;
  if (!family_) return nullptr;
  SizedFont& sized = fonts_[fontCount_ < kSizes ? fontCount_++ : kSizes - 1];
  sized = {height_px, MakeFont(family_, height_px)};
  return sized.font.Get();
}

bool LabelPainter::DrawString(Gdiplus::GpGraphics* graphics, const Label& label, Point at, Pixel colour) {
  Gdiplus::GpFont* const font = FontOf(label.height_px);
  if (!brush_) brush_ = MakeBrush();
  // A null font is not refused by every GDI+; some crash.
  if (graphics == nullptr || font == nullptr || !brush_) return false;
  flat::GdipSetSolidFillColor(brush_.Get(), kOpaque | colour);
  const Gdiplus::RectF place(static_cast<Gdiplus::REAL>(at.x), static_cast<Gdiplus::REAL>(at.y), 0, 0);
  return flat::GdipDrawString(graphics, label.text, -1, font, &place, nullptr, brush_.Get()) == Gdiplus::Ok;
}

// The label's shape, drawn now when it is none of the last ones; null when it cannot be had or is too long.
const TextMask* LabelPainter::FindMask(HDC like, const Label& label) {
  for (const KeptLabel& kept : kept_) {
    if (kept.height_px == label.height_px && std::wcscmp(kept.text, label.text) == 0) return &kept.mask;
  }
  KeptLabel& kept = kept_[nextKept_];
  if (std::wcslen(label.text) >= std::size(kept.text)) return nullptr;
  // Room for the widest letters, and for what GDI+ leaves free at the left.
  const auto letters = static_cast<int32_t>(std::size(kept.text));
  if (!stencil_.Resize(like, letters * label.height_px, 2 * label.height_px)) return nullptr;
  FillRect(stencil_.Pixels(), {0, 0, kMaxCoordinate, kMaxCoordinate}, kBlack);
  if (!DrawString(stencil_.Graphics(), label, {0, 0}, kWhite)) return nullptr;
  kept.mask = MaskOf(stencil_.Pixels());
  CopyWide(kept.text, label.text);
  kept.height_px = label.height_px;
  nextKept_ = (nextKept_ + 1) % kKeptLabels;
  return &kept.mask;
}

void LabelPainter::Draw(OffscreenPicture& picture, const Label& label) {
  const TextMask* const mask = FindMask(picture.Dc(), label);
  if (mask == nullptr) return DrawOnce(picture, label);
  BlendMask(picture.Pixels(), *mask, label.at, label.colour);
}

void LabelPainter::DrawOnce(OffscreenPicture& picture, const Label& label) {
  static_cast<void>(DrawString(picture.Graphics(), label, label.at, label.colour));
}

void MarkPainter::Draw(HDC dc, const ShownMarks& marks, int32_t dpi, Pixel colour) {
  if (marks.count == 0) return;
  const int size = ScalePixels(15, dpi);
  constexpr int kDownwards = 2'700;  // tenths of a degree
  if (!font_) {
    font_ = OwnedGdiFont(CreateFontW(size, size, kDownwards, 0, 400, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                     OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                                     DEFAULT_PITCH | FF_DONTCARE, L"\uAD81\uC11C"));
  }
  if (!font_) return;
  const HGDIOBJ replaced = SelectObject(dc, font_.Get());
  SetTextColor(dc, RGB(colour >> 16 & 0xFF, colour >> 8 & 0xFF, colour & 0xFF));
  SetBkMode(dc, TRANSPARENT);
  for (size_t i = 0; i < marks.count; ++i) {
    const ShownMark& mark = marks.marks[i];
    wchar_t text[kMarkTextSize];
    const size_t length = WidenText(text, mark.text);
    TextOutW(dc, mark.at.x, mark.at.y, text, static_cast<int>(length));
  }
  SelectObject(dc, replaced);
}

}  // namespace tw
