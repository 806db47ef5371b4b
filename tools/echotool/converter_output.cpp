#include "tools/echotool/converter_output.h"

#include <array>

#include "playback/segy_format.h"
#include "playback/segy_text_header.h"

namespace tw::echotool {
namespace {

std::span<const uint8_t, kSegyTextHeaderSize> TextHeader() {
  static const auto header = [] {
    std::array<uint8_t, kSegyTextHeaderSize> built;
    BuildSegyTextHeader(built);
    return built;
  }();
  return header;
}

}  // namespace

SegyWriter::SegyWriter(OutputFile& output, float soundSpeed_mps, const SegyOptions& options)
    : output_(output), converter_(output, TextHeader(), soundSpeed_mps, options) {}

bool SegyWriter::Append(const RecordedPing& ping) {
  ++pings_;
  return converter_.Append(ping);
}

std::string SegyWriter::Emptiness() const {
  return converter_.Traces() != 0 ? "" : "no ping tells its sampling frequency, which SEG-Y needs";
}

std::string SegyWriter::Note() const {
  const uint64_t without = pings_ - converter_.Traces();
  std::string note;
  if (without != 0) note = std::to_string(without) + " pings without a sampling frequency left out";
  if (converter_.CutTraces() == 0) return note;
  if (!note.empty()) note += ", ";
  return note + std::to_string(converter_.CutTraces()) + " traces cut at " + std::to_string(kMaxSegyField) +
         " samples, the most that SEG-Y tells";
}

}  // namespace tw::echotool
