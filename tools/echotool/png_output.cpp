#include "tools/echotool/png_output.h"

#include <cstring>

#include "tools/echotool/png_image.h"

namespace tw::echotool {
namespace {

class FileSink final : public PngImage::Sink {
 public:
  explicit FileSink(OutputFile& output) : output_(output) {}
  [[nodiscard]] bool Take(std::string_view bytes) override {
    uint8_t* const room = output_.Room(bytes.size());
    if (room == nullptr) return false;
    std::memcpy(room, bytes.data(), bytes.size());
    output_.Take(bytes.size());
    return true;
  }

 private:
  OutputFile& output_;
};

// Of a picture with a width of its own twice as many columns are kept, so that each pixel has one of its own.
size_t MostColumns(const PictureOptions& options) {
  return options.width == 0 ? kMostPictureColumns : 2 * size_t{options.width};
}

}  // namespace

PngWriter::PngWriter(OutputFile& output, float soundSpeed_mps, const PictureOptions& options)
    : output_(output),
      options_(options),
      columns_(MostColumns(options), 2 * size_t{options.height}, soundSpeed_mps, options.from_m,
               options.to_m) {}

bool PngWriter::Append(const RecordedPing& ping) {
  if (ping.channel + 1 == static_cast<int32_t>(options_.channel)) columns_.Add(ping);
  return true;
}

std::string PngWriter::Emptiness() const {
  return columns_.IsEmpty() ? "no ping of this channel has echoes with a sampling frequency to draw" : "";
}

bool PngWriter::End() {
  columns_.End();
  if (columns_.IsEmpty()) return true;
  const size_t width = options_.width == 0 ? columns_.Columns() : options_.width;
  FileSink sink(output_);
  PngImage image(sink);
  return image.Begin(width, options_.height) &&
         columns_.Draw(width, options_.height, [&](auto row) { return image.Row(row); }) && image.End() &&
         output_.Flush();
}

}  // namespace tw::echotool
