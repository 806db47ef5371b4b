// A picture of steps of the given palette as a PNG (ISO/IEC 15948): eight bits a pixel, step 0 black, the
// others the palette's entries 16 apart, compressed by zlib. One thread.
#pragma once

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "app/state/display_palette.h"

namespace tw::echotool {

// The colours of all pictures. Any thread.
[[nodiscard]] const DisplayPalette& PicturePalette();

class PngImage {
 public:
  // Where the bytes go; false when it takes no more.
  class Sink {
   public:
    virtual ~Sink() = default;
    [[nodiscard]] virtual bool Take(std::string_view bytes) = 0;
  };

  explicit PngImage(Sink& sink) : sink_(sink) {}
  ~PngImage();
  PngImage(const PngImage&) = delete;
  PngImage& operator=(const PngImage&) = delete;

  // All three: false when the sink has declined or there is no memory. Width and height 1 to 65,535.
  [[nodiscard]] bool Begin(size_t width, size_t height);
  [[nodiscard]] bool Row(std::span<const uint8_t> steps);
  [[nodiscard]] bool End();

 private:
  [[nodiscard]] bool Chunk(std::string_view type, std::string_view data);
  [[nodiscard]] bool Compress(std::string_view bytes, int flush);

  Sink& sink_;
  z_stream stream_{};
  bool begun_ = false;
  std::string packed_;  // of the chunk that is being filled
};

}  // namespace tw::echotool
