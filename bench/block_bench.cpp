// How fast echo text becomes pings: block reader and parser on a stream of the virtual echosounder, handed
// over in pieces as a port gives them, and the parser alone in memory, against memcpy of the same bytes and
// against a plain sscanf parser.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "acquisition/block_reader.h"
#include "acquisition/echo_text_stream.h"
#include "app/state/posts.h"
#include "bench/measure.h"
#include "simulator/virtual_echosounder.h"

namespace tw {

void PostStatusText(AppState&, StatusPart, const wchar_t*) {}

namespace {

constexpr size_t kStreamSize = size_t{64} << 20;
constexpr size_t kSailedSize = size_t{8} << 20;

// Whole blocks, at least kStreamSize bytes: a few hundred pings over the sea bed, again and again.
std::vector<uint8_t> MakeStream(int32_t sampleCount) {
  sim::SounderOptions options;
  options.baud = 12'000'000;
  options.outputMode = 4;
  options.pingsPerSecond = 50;
  options.sampleCount = sampleCount;
  options.streaming = true;
  sim::VirtualEchosounder device(options);
  std::vector<uint8_t> sailed;
  std::vector<uint8_t> piece(1 << 16);
  for (int64_t now_us = 0; sailed.size() < kSailedSize; now_us += 10'000) {
    while (const size_t count = device.Send(piece, now_us)) {
      sailed.insert(sailed.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
    }
  }
  const std::string_view text(reinterpret_cast<const char*>(sailed.data()), sailed.size());
  sailed.resize(text.rfind(kEchoTextMarks.end) + kEchoTextMarks.end.size());
  std::vector<uint8_t> stream;
  while (stream.size() < kStreamSize) stream.insert(stream.end(), sailed.begin(), sailed.end());
  return stream;
}

struct Result {
  size_t pings = 0;
  uint64_t sum = 0;  // of all samples
};

Result ReadAll(const std::vector<uint8_t>& stream, size_t pieceSize, LivePing& ping) {
  const LiveContext context{};
  BlockReader reader(kEchoTextMarks);
  Result result;
  for (size_t at = 0; at < stream.size(); at += pieceSize) {
    std::span<const uint8_t> piece(stream.data() + at, std::min(pieceSize, stream.size() - at));
    while (reader.Feed(piece)) {
      if (!kFirstTextStream.parse(reader.Block(), context, ping)) continue;
      ++result.pings;
      result.sum += ping.samples.back();
    }
  }
  return result;
}

std::vector<std::string_view> BlocksOf(const std::vector<uint8_t>& stream) {
  const std::string_view text(reinterpret_cast<const char*>(stream.data()), stream.size());
  std::vector<std::string_view> blocks;
  for (size_t at = 0; at < text.size(); at += blocks.back().size()) {
    const size_t end = text.find(kEchoTextMarks.end, at) + kEchoTextMarks.end.size();
    blocks.push_back(text.substr(at, end - at));
  }
  return blocks;
}

// The parser alone, on blocks that stand in memory.
Result ParseAll(const std::vector<std::string_view>& blocks, LivePing& ping) {
  const LiveContext context{};
  Result result;
  for (const std::string_view block : blocks) {
    if (!kFirstTextStream.parse(block, context, ping)) continue;
    ++result.pings;
    result.sum += ping.samples.back();
  }
  return result;
}

// What one writes first: each line is cut out and read by the C library.
Result ReadPlainly(const std::vector<uint8_t>& stream) {
  Result result;
  std::vector<uint16_t> samples(kMaxPingSamples);
  std::string line;
  bool data = false;
  int count = 0;
  int wanted = 0;
  int value = 0;
  unsigned whole = 0;
  unsigned part = 0;
  float real = 0;
  for (const uint8_t byte : stream) {
    line += static_cast<char>(byte);
    if (byte != '\n') continue;
    const char* text = line.c_str();
    if (data && count < wanted && std::sscanf(text, "%d\r\n", &value) == 1) {
      samples[static_cast<size_t>(count++)] = static_cast<uint16_t>(value);
    } else if (data && count == wanted) {
      ++result.pings;
      result.sum += samples[static_cast<size_t>(count - 1)];
      data = false;
    } else if (std::strncmp(text, "##DataStart", 11) == 0) {
      data = true;
      count = 0;
    } else if (std::sscanf(text, "#NSamples %d", &value) == 1) {
      wanted = value;
    } else if (std::sscanf(text, "#TimeWork %u.%u", &whole, &part) == 2 ||
               std::sscanf(text, "#OutputMode %d", &value) == 1 ||
               std::sscanf(text, "#Sampling_Frequency,Hz %d", &value) == 1 ||
               std::sscanf(text, "#Altitude %f", &real) == 1 ||
               std::sscanf(text, "#Temperature %f", &real) == 1 ||
               std::sscanf(text, "#Pitch,deg %f", &real) == 1 ||
               std::sscanf(text, "#Roll,deg %f", &real) == 1 || std::sscanf(text, "#Ping %u", &whole) == 1 ||
               std::sscanf(text, "#Tx_Frequency,Hz %d", &value) == 1) {
    }
    line.clear();
  }
  return result;
}

int Measure(int32_t sampleCount) {
  const std::vector<uint8_t> stream = MakeStream(sampleCount);
  std::vector<uint8_t> copy(stream.size(), 1);
  const auto ping = std::make_unique<LivePing>();
  const double mebibytes = static_cast<double>(stream.size()) / (1 << 20);
  const double copying = MedianMilliseconds([&] { std::memcpy(copy.data(), stream.data(), stream.size()); });

  Result plainly;
  const double plain = MedianMilliseconds([&] { plainly = ReadPlainly(stream); });
  std::printf("%d samples a ping, %.0f MiB; memcpy %.1f ms, sscanf %.0f ms\n", sampleCount, mebibytes,
              copying, plain);
  const std::vector<std::string_view> blocks = BlocksOf(stream);
  Result parsed;
  const double parsing = MedianMilliseconds([&] { parsed = ParseAll(blocks, *ping); });
  std::printf("  parsed in place:      %6.1f ms, %4.1f x memcpy\n", parsing, parsing / copying);
  if (parsed.pings != plainly.pings || parsed.sum != plainly.sum) {
    std::puts("The parser alone reads different pings.");
    return 1;
  }
  for (const size_t pieceSize : {size_t{300}, size_t{1024}, size_t{4096}, size_t{16'384}}) {
    Result result;
    const double reading = MedianMilliseconds([&] { result = ReadAll(stream, pieceSize, *ping); });
    if (result.pings != plainly.pings || result.sum != plainly.sum) {
      std::puts("The two parsers read different pings.");
      return 1;
    }
    std::printf("  pieces of %5zu bytes: %6.1f ms, %4.1f x memcpy, 1/%.0f of sscanf\n", pieceSize, reading,
                reading / copying, plain / reading);
  }
  return 0;
}

}  // namespace
}  // namespace tw

int main() {
  return tw::Measure(1'000) | tw::Measure(12'000);
}
