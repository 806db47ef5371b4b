// Makes record files for the conversion benchmark: a stretch of sea bed of the virtual echosounder, again and
// again, behind the settings line that record files begin with.
//
//   recording_maker frames|text MEBIBYTES FILE
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/virtual_echosounder.h"

namespace tw {
namespace {

constexpr size_t kSailedSize = size_t{8} << 20;

// Knows where the last whole message ends.
class EndOfMessages final : public sim::PingObserver {
 public:
  void PingMade(const sim::SentPing&, std::span<const uint16_t>) override {}
  void PingEnded(const sim::SentPing& ping) override { end_ = ping.offset + ping.size; }
  [[nodiscard]] uint64_t End() const { return end_; }

 private:
  uint64_t end_ = 0;
};

std::vector<uint8_t> Sail(int32_t outputMode) {
  sim::SounderOptions options;
  options.baud = 12'000'000;
  options.outputMode = outputMode;
  options.pingsPerSecond = 50;
  options.sampleCount = 1'000;
  options.samplingFrequency_hz = 100'000;
  options.binaryForm = sim::BinaryForm::frame;
  options.streaming = true;
  EndOfMessages end;
  sim::VirtualEchosounder device(options, &end);
  std::vector<uint8_t> sailed;
  std::vector<uint8_t> piece(1 << 16);
  for (int64_t now_us = 0; sailed.size() < kSailedSize; now_us += 10'000) {
    while (const size_t count = device.Send(piece, now_us)) {
      sailed.insert(sailed.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
    }
  }
  sailed.resize(end.End());
  return sailed;
}

int Make(std::string_view kind, uint64_t size, const char* path) {
  const int32_t mode = kind == "frames" ? 100 : 4;
  const std::string info =
      "INFO:1,450000,30000,0.1,20,0.0,0,15,0.08,0,150,20,0,1500.0," + std::to_string(mode) + "\r\n";
  const std::vector<uint8_t> sailed = Sail(mode);
  std::FILE* const file = std::fopen(path, "wb");
  if (file == nullptr) return 1;
  bool written = std::fwrite(info.data(), 1, info.size(), file) == info.size();
  for (uint64_t done = 0; written && done < size; done += sailed.size()) {
    written = std::fwrite(sailed.data(), 1, sailed.size(), file) == sailed.size();
  }
  return std::fclose(file) == 0 && written ? 0 : 1;
}

}  // namespace
}  // namespace tw

int main(int count, char** words) {
  if (count != 4) return 2;
  return tw::Make(words[1], std::strtoull(words[2], nullptr, 10) << 20, words[3]);
}
