#include "tools/echotool/png_image.h"

#include "display/palette.h"

namespace tw::echotool {
namespace {

constexpr size_t kChunkSize = size_t{64} * 1024;
constexpr int kLevel = 4;  // echoes are mostly noise: more effort gains little
constexpr size_t kSteps = 256;

std::string BigEndian(size_t value) {
  std::string out;
  for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>((value >> shift) & 0xFF);
  return out;
}

std::string Colours() {
  const DisplayPalette& palette = PicturePalette();
  std::string colours(3, '\0');
  for (size_t step = 1; step < kSteps; ++step) {
    const uint8_t* const entry = palette.entries[step * 16];  // blue, green, red
    for (const size_t part : {size_t{2}, size_t{1}, size_t{0}}) colours += static_cast<char>(entry[part]);
  }
  return colours;
}

}  // namespace

const DisplayPalette& PicturePalette() {
  static const DisplayPalette palette = [] {
    DisplayPalette built;
    BuildPalette(built);
    return built;
  }();
  return palette;
}

PngImage::~PngImage() {
  if (begun_) deflateEnd(&stream_);
}

bool PngImage::Chunk(std::string_view type, std::string_view data) {
  std::string body(type);
  body += data;
  const auto sum = crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()));
  return sink_.Take(BigEndian(data.size()) + body + BigEndian(sum));
}

bool PngImage::Begin(size_t width, size_t height) {
  if (deflateInit(&stream_, kLevel) != Z_OK) return false;
  begun_ = true;
  const std::string_view kind("\x08\x03\0\0\0",
                              5);  // 8 bits, a palette, the one compression and filter there are
  return sink_.Take("\x89PNG\r\n\x1A\n") &&
         Chunk("IHDR", BigEndian(width) + BigEndian(height) + std::string(kind)) && Chunk("PLTE", Colours());
}

bool PngImage::Compress(std::string_view bytes, int flush) {
  stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));  // zlib only reads it
  stream_.avail_in = static_cast<uInt>(bytes.size());
  for (;;) {
    const size_t used = packed_.size();
    packed_.resize(kChunkSize);
    stream_.next_out = reinterpret_cast<Bytef*>(packed_.data() + used);
    stream_.avail_out = static_cast<uInt>(kChunkSize - used);
    const int said = deflate(&stream_, flush);
    packed_.resize(kChunkSize - stream_.avail_out);
    if (packed_.size() < kChunkSize) return said == Z_OK || said == Z_STREAM_END || said == Z_BUF_ERROR;
    if (!Chunk("IDAT", packed_)) return false;
    packed_.clear();
  }
}

bool PngImage::Row(std::span<const uint8_t> steps) {
  constexpr std::string_view kUnfiltered("\0", 1);
  return Compress(kUnfiltered, Z_NO_FLUSH) &&
         Compress({reinterpret_cast<const char*>(steps.data()), steps.size()}, Z_NO_FLUSH);
}

bool PngImage::End() {
  return Compress({}, Z_FINISH) && Chunk("IDAT", packed_) && Chunk("IEND", {});
}

}  // namespace tw::echotool
