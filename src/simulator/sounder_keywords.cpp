#include "simulator/sounder_keywords.h"

#include <algorithm>
#include <span>

namespace tw::sim {
namespace {

using S = Setting;
using M = Meaning;

constexpr Keyword Value(std::string_view word, Setting setting) {
  return {word, M::value, Access::askAndSet, setting};
}
constexpr Keyword Fact(std::string_view word, Setting setting) {
  return {word, M::value, Access::ask, setting};
}
constexpr Keyword Told(std::string_view word, Meaning meaning) {
  return {word, meaning, Access::ask};
}
constexpr Keyword SetOnly(std::string_view word, Setting setting) {
  return {word, M::value, Access::set, setting};
}
constexpr Keyword Command(std::string_view word, Meaning meaning) {
  return {word, meaning, Access::command};
}

// Each table is in the order in which the firmware learned to tell the values: an older one lacks the end of
// it. No word stands twice.
constexpr Keyword kFirstFamily[] = {
    Told("#info", M::information),
    {"#time", M::clock, Access::askAndSet},
    {"#speed", M::speed, Access::askAndSet, S::speed},
    Command("#default", M::restore),
    Command("#reset", M::reset),
    Command("#go", M::go),
    Command("#setfreqlow", M::useLow),
    Command("#setfl", M::useLow),
    Command("#setfreqhigh", M::useHigh),
    Command("#setfh", M::useHigh),
    Command("#setfreqdual", M::useBoth),
    Value("#pingonce", S::pingOnce),
    Value("#nmeadbt", S::nmeaDbt),
    Value("#nmeadpt", S::nmeaDpt),
    Value("#nmeamtw", S::nmeaMtw),
    Value("#nmeaxdr", S::nmeaXdr),
    Value("#nmeaema", S::nmeaEma),
    Value("#nmeazda", S::nmeaZda),
    Value("#nmeadpzero", S::nmeaDepthZero),
    Fact("##maxrangel", S::maxRangeLow),
    Value("#rangeh", S::rangeHigh),
    {"#auto", M::automatic, Access::askAndSet, S::automatic},
    {"#preset", M::preset, Access::askAndSet, S::preset},
    Fact("##maxrangeh", S::maxRangeHigh),
    Fact("##maxlengthh", S::maxLengthHigh),
    Fact("##maxlengthl", S::maxLengthLow),
    Fact("#swversion", S::firmware),
    Fact("#getfreq", S::frequencyInUse),
    Value("#rangel", S::rangeLow),
    {"#range", M::bothRanges, Access::askAndSet, S::rangeLow},
    Value("#interval", S::interval),
    {"#output", M::output, Access::askAndSet, S::output},
    Value("#thresholdl", S::thresholdLow),
    Value("#thresholdh", S::thresholdHigh),
    Value("#offsetl", S::offsetLow),
    Value("#offseth", S::offsetHigh),
    Value("#deadzonel", S::deadZoneLow),
    Value("#deadzoneh", S::deadZoneHigh),
    Value("#txlengthl", S::txLengthLow),
    Value("#txlengthh", S::txLengthHigh),
    Value("#gainlow", S::gainLow),
    Value("#gainl", S::gainLow),
    Value("#gainhigh", S::gainHigh),
    Value("#gainh", S::gainHigh),
    Value("#tvgsprdl", S::tvgSpreadingLow),
    Value("#tvgsprdh", S::tvgSpreadingHigh),
    Value("#tvgabslow", S::tvgAbsorptionLow),
    Value("#tvgabsl", S::tvgAbsorptionLow),
    Value("#tvgabshigh", S::tvgAbsorptionHigh),
    Value("#tvgabsh", S::tvgAbsorptionHigh),
    Fact("##freql", S::frequencyLow),
    Fact("#getfreql", S::frequencyLow),
    Fact("#getfl", S::frequencyLow),
    Fact("##freqh", S::frequencyHigh),
    Fact("#getfreqh", S::frequencyHigh),
    Fact("#getfh", S::frequencyHigh),
    Value("#tvgmode", S::tvgMode),
    Told("#iden", M::identity),
    Value("#sound", S::sound),
    Value("#txpower", S::txPower),
    Fact("#samplfreq", S::samplingFrequency),
    Value("#attnl", S::attenuationLow),
    Value("#attnh", S::attenuationHigh),
    Fact("##vfreql", S::virtualFrequencyLow),
    Fact("##vfreqh", S::virtualFrequencyHigh),
    Fact("##getsimul", S::simultaneous),
    Fact("#smooth", S::smooth),
    Value("#outrate", S::outputRate),
    Value("#medianflt", S::medianFilter),
    Value("#movavgflt", S::movingAverageFilter),
};

// The other families have one channel, whose values are the high ones here.
constexpr Keyword kSecondFamily[] = {
    Told("#info", M::information),
    {"#time", M::clock, Access::askAndSet},
    {"#speed", M::speed, Access::askAndSet, S::speed},
    Command("#default", M::restore),
    Command("#reset", M::reset),
    Command("#go", M::go),
    Value("#pingonce", S::pingOnce),
    Value("#nmeadbt", S::nmeaDbt),
    Value("#nmeadpt", S::nmeaDpt),
    Value("#nmeamtw", S::nmeaMtw),
    Value("#nmeaxdr", S::nmeaXdr),
    Value("#nmeaema", S::nmeaEma),
    Value("#nmeazda", S::nmeaZda),
    Value("#nmeadpzero", S::nmeaDepthZero),
    Told("#iden", M::identity),
    Value("#range", S::rangeHigh),
    {"#auto", M::automatic, Access::askAndSet, S::automatic},
    {"#preset", M::preset, Access::askAndSet, S::preset},
    Value("#interval", S::interval),
    {"#output", M::output, Access::askAndSet, S::output},
    Value("#threshold", S::thresholdHigh),
    Value("#offset", S::offsetHigh),
    Value("#deadzone", S::deadZoneHigh),
    Value("#txlength", S::txLengthHigh),
    Value("#gain", S::gainHigh),
    Value("#tvgmode", S::tvgMode),
    Value("#tvgsprd", S::tvgSpreadingHigh),
    Value("#tvgabs", S::tvgAbsorptionHigh),
    Value("#sound", S::sound),
    Fact("#getfreq", S::frequencyInUse),
    Fact("#samplfreq", S::samplingFrequency),
    Value("#medianflt", S::medianFilter),
    Value("#movavgflt", S::movingAverageFilter),
    Fact("#swversion", S::firmware),
};

// The third family tells its values all at once, in its information, and has no filters and no presets.
constexpr Keyword kThirdFamily[] = {
    Told("#info", M::information),
    {"#time", M::clock, Access::askAndSet},
    {"#speed", M::speed, Access::askAndSet, S::speed},
    Command("#default", M::restore),
    Command("#reset", M::reset),
    Command("#go", M::go),
    SetOnly("#pingonce", S::pingOnce),
    SetOnly("#nmeadbt", S::nmeaDbt),
    SetOnly("#nmeadpt", S::nmeaDpt),
    SetOnly("#nmeamtw", S::nmeaMtw),
    SetOnly("#nmeaxdr", S::nmeaXdr),
    SetOnly("#nmeaema", S::nmeaEma),
    SetOnly("#nmeazda", S::nmeaZda),
    SetOnly("#nmeadpzero", S::nmeaDepthZero),
    SetOnly("#range", S::rangeHigh),
    SetOnly("#interval", S::interval),
    {"#output", M::output, Access::set, S::output},
    SetOnly("#threshold", S::thresholdHigh),
    SetOnly("#offset", S::offsetHigh),
    SetOnly("#deadzone", S::deadZoneHigh),
    SetOnly("#txlength", S::txLengthHigh),
    SetOnly("#gain", S::gainHigh),
    SetOnly("#tvgmode", S::tvgMode),
    SetOnly("#tvgsprd", S::tvgSpreadingHigh),
    SetOnly("#tvgabs", S::tvgAbsorptionHigh),
    SetOnly("#sound", S::sound),
};

constexpr bool NoneStandsTwice(std::span<const Keyword> words) {
  for (size_t i = 0; i < words.size(); ++i) {
    for (size_t j = 0; j < i; ++j) {
      if (words[i].word == words[j].word) return false;
    }
  }
  return true;
}
static_assert(NoneStandsTwice(kFirstFamily) && NoneStandsTwice(kSecondFamily) &&
              NoneStandsTwice(kThirdFamily));

std::span<const Keyword> KeywordsOf(DeviceFamily family) {
  switch (family) {
    case DeviceFamily::first:
      return kFirstFamily;
    case DeviceFamily::second:
      return kSecondFamily;
    case DeviceFamily::third:
      return kThirdFamily;
  }
  return {};
}

}  // namespace

const Keyword* FindKeyword(DeviceFamily family, std::string_view word) {
  const auto words = KeywordsOf(family);
  const auto at = std::find_if(words.begin(), words.end(), [&](const Keyword& k) { return k.word == word; });
  return at == words.end() ? nullptr : &*at;
}

bool CameNotBefore(const Keyword& keyword, const Keyword& oldest) {
  return &keyword >= &oldest;
}

}  // namespace tw::sim
