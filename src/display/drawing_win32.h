// Small owning types for the drawing objects of the echogram view. GUI thread, between start and end of GDI+.
// Each object that is made or released is counted, so that a test can tell whether painting makes any, and
// whether all go.
#pragma once

#include <windows.h>

// Need the types of windows.h.
#include <objidl.h>
#include <propidl.h>

// Needs the types of both.
#include <gdiplus.h>

#include <cstdint>
#include <utility>

#include "display/canvas.h"

namespace tw {

struct DrawingCounts {
  uint32_t made;
  uint32_t released;
};

extern DrawingCounts drawingCounts;

namespace flat = Gdiplus::DllExports;

inline void Release(HDC dc) {
  DeleteDC(dc);
}
inline void Release(HBITMAP bitmap) {
  DeleteObject(bitmap);
}
inline void Release(HFONT font) {
  DeleteObject(font);
}
inline void Release(Gdiplus::GpGraphics* graphics) {
  flat::GdipDeleteGraphics(graphics);
}
inline void Release(Gdiplus::GpFontFamily* family) {
  flat::GdipDeleteFontFamily(family);
}
inline void Release(Gdiplus::GpFont* font) {
  flat::GdipDeleteFont(font);
}
inline void Release(Gdiplus::GpSolidFill* brush) {
  flat::GdipDeleteBrush(brush);
}
inline void Release(Gdiplus::GpBitmap* image) {
  flat::GdipDisposeImage(image);
}

// Owns an object that one of the functions above releases. Null owns nothing.
template <typename Object>
class [[nodiscard]] Drawing {
 public:
  Drawing() = default;
  explicit Drawing(Object object) : object_(object) {
    if (object_ != nullptr) ++drawingCounts.made;
  }
  ~Drawing() { Reset(); }
  Drawing(Drawing&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Drawing& operator=(Drawing&& other) noexcept {
    if (this != &other) {
      Reset();
      object_ = std::exchange(other.object_, nullptr);
    }
    return *this;
  }

  [[nodiscard]] Object Get() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

  void Reset() {
    if (object_ == nullptr) return;
    Release(object_);
    ++drawingCounts.released;
    object_ = nullptr;
  }

 private:
  Object object_ = nullptr;
};

using OwnedDc = Drawing<HDC>;
using OwnedBitmap = Drawing<HBITMAP>;
using OwnedGdiFont = Drawing<HFONT>;
using OwnedGraphics = Drawing<Gdiplus::GpGraphics*>;
using OwnedFamily = Drawing<Gdiplus::GpFontFamily*>;
using OwnedFont = Drawing<Gdiplus::GpFont*>;
using OwnedBrush = Drawing<Gdiplus::GpSolidFill*>;
using OwnedImage = Drawing<Gdiplus::GpBitmap*>;

// A picture in memory that GDI, GDI+ and our own code draw into: a memory device context with a 32-bit
// top-down bitmap selected.
class OffscreenPicture {
 public:
  OffscreenPicture() = default;
  ~OffscreenPicture();
  OffscreenPicture(const OffscreenPicture&) = delete;
  OffscreenPicture& operator=(const OffscreenPicture&) = delete;

  // Makes it this large; what was drawn is lost if the size changes, kept if not. False for a size of 0 or
  // when the system has no memory for it; then it is empty.
  [[nodiscard]] bool Resize(HDC like, int32_t width, int32_t height);

  // Waits for what GDI has not drawn yet, so that our own code may go on.
  [[nodiscard]] Canvas Pixels();
  [[nodiscard]] HDC Dc() const { return dc_.Get(); }
  [[nodiscard]] Gdiplus::GpGraphics* Graphics() const { return graphics_.Get(); }

 private:
  void Clear();

  OwnedDc dc_;
  OwnedBitmap bitmap_;
  OwnedGraphics graphics_;
  HGDIOBJ replaced_ = nullptr;  // the bitmap that the device context came with
  Canvas canvas_{};
};

}  // namespace tw
