#include "simulator/sounder_keywords.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace tw::sim {
namespace {

// Sorted by subject; no word stands twice.
constexpr Keyword kFirstFamily[] = {
    {"#range", Meaning::inUse, Setting::rangeLow},
    {"#rangel", Meaning::value, Setting::rangeLow},
    {"#rangeh", Meaning::value, Setting::rangeHigh},
    {"##maxrangel", Meaning::fact, Setting::maxRangeLow},
    {"##maxrangeh", Meaning::fact, Setting::maxRangeHigh},
    {"#threshold", Meaning::inUse, Setting::thresholdLow},
    {"#thresholdl", Meaning::value, Setting::thresholdLow},
    {"#thresholdh", Meaning::value, Setting::thresholdHigh},
    {"#offset", Meaning::inUse, Setting::offsetLow},
    {"#offsetl", Meaning::value, Setting::offsetLow},
    {"#offseth", Meaning::value, Setting::offsetHigh},
    {"#deadzone", Meaning::inUse, Setting::deadZoneLow},
    {"#deadzonel", Meaning::value, Setting::deadZoneLow},
    {"#deadzoneh", Meaning::value, Setting::deadZoneHigh},
    {"#txlength", Meaning::inUse, Setting::txLengthLow},
    {"#txlengthl", Meaning::value, Setting::txLengthLow},
    {"#txlengthh", Meaning::value, Setting::txLengthHigh},
    {"##maxlengthl", Meaning::fact, Setting::maxLengthLow},
    {"##maxlengthh", Meaning::fact, Setting::maxLengthHigh},
    {"#gain", Meaning::inUse, Setting::gainLow},
    {"#gainlow", Meaning::value, Setting::gainLow},
    {"#gainl", Meaning::value, Setting::gainLow},
    {"#gainhigh", Meaning::value, Setting::gainHigh},
    {"#gainh", Meaning::value, Setting::gainHigh},
    {"#tvgmode", Meaning::value, Setting::tvgMode},
    {"#tvgs", Meaning::inUse, Setting::tvgSpreadingLow},
    {"#tvgsprd", Meaning::inUse, Setting::tvgSpreadingLow},
    {"#tvgsprdl", Meaning::value, Setting::tvgSpreadingLow},
    {"#tvgsprdh", Meaning::value, Setting::tvgSpreadingHigh},
    {"#tvgabs", Meaning::inUse, Setting::tvgAbsorptionLow},
    {"#tvgabslow", Meaning::value, Setting::tvgAbsorptionLow},
    {"#tvgabsl", Meaning::value, Setting::tvgAbsorptionLow},
    {"#tvgabshigh", Meaning::value, Setting::tvgAbsorptionHigh},
    {"#tvgabsh", Meaning::value, Setting::tvgAbsorptionHigh},
    {"#attn", Meaning::inUse, Setting::attenuationLow},
    {"#attnl", Meaning::value, Setting::attenuationLow},
    {"#attnh", Meaning::value, Setting::attenuationHigh},
    {"#txpower", Meaning::value, Setting::txPower},
    {"#sound", Meaning::value, Setting::sound},
    {"#interval", Meaning::value, Setting::interval},
    {"#pingonce", Meaning::value, Setting::pingOnce},
    {"#output", Meaning::output, Setting::output},
    {"#outrate", Meaning::value, Setting::outputRate},
    {"#medianflt", Meaning::value, Setting::medianFilter},
    {"#movavgflt", Meaning::value, Setting::movingAverageFilter},
    {"#smooth", Meaning::value, Setting::smooth},
    {"#auto", Meaning::value, Setting::automatic},
    {"#preset", Meaning::value, Setting::preset},
    {"#samplfreq", Meaning::fact, Setting::samplingFrequency},
    {"#getfreq", Meaning::fact, Setting::frequencyInUse},
    {"##freql", Meaning::fact, Setting::frequencyLow},
    {"#getfreql", Meaning::fact, Setting::frequencyLow},
    {"#getfl", Meaning::fact, Setting::frequencyLow},
    {"##freqh", Meaning::fact, Setting::frequencyHigh},
    {"#getfreqh", Meaning::fact, Setting::frequencyHigh},
    {"#getfh", Meaning::fact, Setting::frequencyHigh},
    {"##vfreql", Meaning::fact, Setting::virtualFrequencyLow},
    {"##vfreqh", Meaning::fact, Setting::virtualFrequencyHigh},
    {"##getsimul", Meaning::fact, Setting::simultaneous},
    {"#setfreqlow", Meaning::useLow},
    {"#setfl", Meaning::useLow},
    {"#setfreqhigh", Meaning::useHigh},
    {"#setfh", Meaning::useHigh},
    {"#setfreqdual", Meaning::useBoth},
    {"#nmeadbt", Meaning::value, Setting::nmeaDbt},
    {"#nmeadpt", Meaning::value, Setting::nmeaDpt},
    {"#nmeamtw", Meaning::value, Setting::nmeaMtw},
    {"#nmeaxdr", Meaning::value, Setting::nmeaXdr},
    {"#nmeaema", Meaning::value, Setting::nmeaEma},
    {"#nmeazda", Meaning::value, Setting::nmeaZda},
    {"#nmeadpzero", Meaning::value, Setting::nmeaDepthZero},
    {"#iden", Meaning::identity},
    {"#info", Meaning::information},
    {"#swversion", Meaning::fact, Setting::firmware},
    {"#time", Meaning::clock},
    {"#speed", Meaning::speed, Setting::speed},
    {"#default", Meaning::restore},
    {"#reset", Meaning::reset},
    {"#go", Meaning::go},
};
static_assert([] {
  for (size_t i = 0; i < std::size(kFirstFamily); ++i) {
    for (size_t j = 0; j < i; ++j) {
      if (kFirstFamily[i].word == kFirstFamily[j].word) return false;
    }
  }
  return true;
}());

std::span<const Keyword> KeywordsOf(DeviceFamily family) {
  switch (family) {
    case DeviceFamily::first:
      return kFirstFamily;
    case DeviceFamily::second:
    case DeviceFamily::third:
      return {};
  }
  return {};
}

}  // namespace

const Keyword* FindKeyword(DeviceFamily family, std::string_view word) {
  const auto words = KeywordsOf(family);
  const auto at = std::find_if(words.begin(), words.end(), [&](const Keyword& k) { return k.word == word; });
  return at == words.end() ? nullptr : &*at;
}

}  // namespace tw::sim
