// Measures live reading in the Windows program: echo text blocks from a serial port through byte source,
// block reader, parser and ring, at whatever rate line_sender sends them. Prints the blocks and bytes taken
// and the processor time of this process; TIMES_FILE gets one line a block: its number and the wall clock in
// microseconds at the moment at which the ping was published.
//
//   live_reading PORT_NUMBER SECONDS TIMES_FILE
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>

#include "acquisition/block_reader.h"
#include "acquisition/byte_source.h"
#include "acquisition/echo_text.h"
#include "acquisition/store_ping.h"
#include "app/state/app_state.h"
#include "device/serial_ports.h"
#include "platform/clock.h"
#include "platform/memory.h"
#include "platform/serial_line.h"

namespace {

int64_t WallClock_us() {
  FILETIME now;
  GetSystemTimePreciseAsFileTime(&now);
  const int64_t ticks = static_cast<int64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
  return ticks / 10 - 11'644'473'600'000'000;
}

double ProcessorTime_ms() {
  FILETIME created;
  FILETIME exited;
  FILETIME kernel;
  FILETIME user;
  GetProcessTimes(GetCurrentProcess(), &created, &exited, &kernel, &user);
  const auto ticks = [](const FILETIME& t) {
    return static_cast<double>(static_cast<int64_t>(t.dwHighDateTime) << 32 | t.dwLowDateTime);
  };
  return (ticks(kernel) + ticks(user)) / 10'000.0;
}

struct Reading {
  tw::BlockReader reader{tw::kEchoTextMarks};
  tw::EchoTextHeader header{};
  uint16_t samples[tw::kMaxTextSamples]{};
  tw::SlotImage image;
  tw::Lock lock{};
  int32_t index = 0;
  int64_t time = 0;
  uint16_t reach[tw::kRingSlots]{};
};

void TakeBlock(Reading& reading, tw::RingWriter& ring) {
  const tw::ParsedEchoText parsed = tw::ParseEchoTextHeader(
      tw::EchoTextKeys::firstFamily, reading.reader.Block(), 25'000, 200'000, reading.header);
  const std::span<uint16_t> samples(reading.samples, static_cast<size_t>(reading.header.sampleCount));
  static_cast<void>(tw::ReadSampleLines(parsed.dataLines, samples));
  tw::PingHeader header{};
  header.ping = reading.header.ping;
  header.samplingFrequency_hz = static_cast<uint32_t>(reading.header.samplingFrequency_hz);
  header.sampleCount = static_cast<uint32_t>(samples.size());
  reading.image.Build(header, samples, 1);
  tw::StorePing(ring, reading.image, tw::MillisecondClock());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: live_reading PORT_NUMBER SECONDS TIMES_FILE\n");
    return 2;
  }
  const tw::Handle port = tw::OpenFastDevicePort((L"COM" + std::to_wstring(std::atoi(argv[1]))).c_str());
  std::FILE* times = std::fopen(argv[3], "w");
  const auto reading = std::make_unique<Reading>();
  tw::MakeLock(reading->lock);
  auto* ringMemory = static_cast<tw::PingRing*>(tw::AllocateZeroed(tw::kRingSize));
  if (port == tw::Handle::invalid || times == nullptr || ringMemory == nullptr) {
    std::fprintf(stderr, "live_reading: no port, no file or no memory\n");
    return 1;
  }
  tw::RingWriter ring{ringMemory, &reading->index, &reading->time, &reading->lock, reading->reach};
  const auto source = std::make_unique<tw::ByteSource>(port);
  tw::RaiseTimerResolution();
  if (!tw::WriteSerialLine(port, "g", 1)) return 1;

  const uint32_t duration_ms = static_cast<uint32_t>(std::atoi(argv[2]) + 1) * 1000;
  const uint32_t begin_ms = tw::MillisecondClock();
  const double cpuBegin_ms = ProcessorTime_ms();
  uint64_t bytes = 0;
  uint32_t blocks = 0;
  while (tw::MillisecondClock() - begin_ms < duration_ms) {
    const tw::ReadResult result = tw::ReadBlock(*source, reading->reader);
    if (result == tw::ReadResult::failed) break;
    if (result != tw::ReadResult::complete) continue;
    TakeBlock(*reading, ring);
    std::fprintf(times, "%u %lld\n", reading->header.ping, static_cast<long long>(WallClock_us()));
    bytes += reading->reader.Block().size();
    ++blocks;
  }
  const double cpu_ms = ProcessorTime_ms() - cpuBegin_ms;
  std::fclose(times);
  std::printf("read %llu bytes, blocks %u, processor time %.0f ms\n", static_cast<unsigned long long>(bytes),
              blocks, cpu_ms);
  return 0;
}
