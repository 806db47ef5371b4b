#include "outputs/depth_message.h"

#include "outputs/position_sentences.h"

namespace tw {
namespace {

struct Source {
  const PingFacts& ping;
  float offset_m;
};

struct SentenceRow {
  uint32_t sentence;
  size_t (*build)(SentenceText text, const Source& from);
};

// In the order in which they are sent: the position comes before the depth that belongs to it.
constexpr SentenceRow kRows[] = {
    {kGga, [](SentenceText text,
              const Source& from) { return BuildOutputGga(text, from.ping.fix, from.ping.talkerGn); }},
    {kRmc, [](SentenceText text,
              const Source& from) { return BuildOutputRmc(text, from.ping.fix, from.ping.talkerGn); }},
    {kDbt, [](SentenceText text, const Source& from) { return BuildDbt(text, from.ping.altitude_m); }},
    {kDpt,
     [](SentenceText text, const Source& from) {
       return BuildDpt(text, from.ping.altitude_m, from.offset_m, from.ping.range_m);
     }},
    {kMtw, [](SentenceText text, const Source& from) { return BuildMtw(text, from.ping.temperature_c); }},
    {kXdr, [](SentenceText text,
              const Source& from) { return BuildXdr(text, from.ping.pitch_deg, from.ping.roll_deg); }},
};
static_assert(std::size(kRows) == kMaxSentences);

}  // namespace

DepthMessage BuildMessage(const PingFacts& ping, const OutputOptions& options, bool freshFix) {
  DepthMessage message;
  message.clock_ms = ping.clock_ms;
  if (!IsDepth(ping.altitude_m)) return message;
  const uint32_t wanted = options.sentences & (freshFix ? kAllSentences : kAllSentences & ~(kGga | kRmc));
  for (const SentenceRow& row : kRows) {
    if ((wanted & row.sentence) == 0) continue;
    const uint32_t begin = message.Size();
    const SentenceText room(message.text.data() + begin, kSentenceText);
    const size_t length = row.build(room, {ping, options.transducerOffset_m});
    if (length > 0) message.ends[message.count++] = begin + static_cast<uint32_t>(length);
  }
  return message;
}

}  // namespace tw
