#include "playback/conversion_run.h"

#include "playback/ping_feeder.h"

namespace tw {

ConversionEnd RunConversion(PingSource& recording, PingConverter& converter, ConversionWatch& watch) {
  PingFeeder feeder(recording,
                    {[](void* asked) { return static_cast<ConversionWatch*>(asked)->IsStopped(); }, &watch});
  bool writes = converter.Begin();
  if (!writes && !watch.GoesOnWithoutOutput()) return ConversionEnd::unwritten;
  RecordedPing ping{};
  while (!watch.IsStopped()) {
    switch (feeder.Next(ping)) {
      case Fed::ping:
        break;
      case Fed::interrupted:
        continue;
      case Fed::unread:
        return ConversionEnd::unread;
      case Fed::end:
      case Fed::ended:
        return writes && !converter.End() ? ConversionEnd::unwritten : ConversionEnd::exhausted;
    }
    if (writes && !converter.Append(ping)) {
      writes = false;
      if (!watch.GoesOnWithoutOutput()) return ConversionEnd::unwritten;
    }
    watch.NotePing(ping);
  }
  return ConversionEnd::stopped;
}

}  // namespace tw
