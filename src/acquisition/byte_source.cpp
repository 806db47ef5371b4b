#include "acquisition/byte_source.h"

#include <algorithm>

#include "platform/clock.h"
#include "platform/serial_line.h"

namespace tw {

ReadResult ByteSource::Fill() {
  if (!bytes_.empty()) return ReadResult::complete;
  const uint32_t waiting = BytesWaiting(line_, &overruns_);
  const uint32_t wanted = std::clamp<uint32_t>(waiting, 1, sizeof buffer_);
  uint32_t got = 0;
  if (!ReadSerialLine(line_, buffer_, wanted, got)) return ReadResult::failed;
  bytes_ = {buffer_, got};
  return got == 0 ? ReadResult::nothing : ReadResult::complete;
}

ReadResult ReadBlock(ByteSource& source, StreamReader& reader) {
  const uint32_t begin = MillisecondClock();
  do {
    const ReadResult result = source.Fill();
    if (result != ReadResult::complete) return result;
    if (reader.Feed(source.Bytes())) return ReadResult::complete;
  } while (MillisecondClock() - begin < kPollInterval_ms);
  return ReadResult::pending;
}

}  // namespace tw
