#include "simulator/sounder_information.h"

#include <charconv>
#include <span>
#include <string_view>
#include <vector>

#include "base/bytes.h"
#include "base/text_format.h"

namespace tw::sim {
namespace {

std::string_view NameOf(InterfaceWord word) {
  switch (word) {
    case InterfaceWord::rs232:
      return "RS232";
    case InterfaceWord::rs485:
      return "RS485";
    case InterfaceWord::usb:
      return "USB";
  }
  return {};
}

// Where the third family's values stand in its block, little-endian.
namespace place {
constexpr size_t kLength = 0;         // int32, of the block
constexpr size_t kIdentity = 4;       // int32
constexpr size_t kRange = 8;          // int32, mm
constexpr size_t kTxLength = 12;      // int16
constexpr size_t kInterval = 14;      // float, s
constexpr size_t kDeadZone = 18;      // int16, mm
constexpr size_t kOffset = 20;        // int16, mm
constexpr size_t kThreshold = 22;     // int16, percent
constexpr size_t kGain = 24;          // float, dB
constexpr size_t kTvgSpreading = 28;  // float
constexpr size_t kTvgMode = 32;       // int16
constexpr size_t kOutput = 34;        // int16
constexpr size_t kSound = 36;         // int16, m/s
}  // namespace place
static_assert(place::kSound + sizeof(int16_t) == kInformationBytes);

std::vector<uint8_t> Block(const SounderOptions& options, const SounderSettings& settings) {
  std::vector<uint8_t> block(kInformationBytes);
  const auto store16 = [&](size_t at, Setting setting) {
    StoreLe<int16_t>(block.data() + at, static_cast<int16_t>(settings.Whole(setting)));
  };
  const auto store32 = [&](size_t at, int64_t value) {
    StoreLe<int32_t>(block.data() + at, static_cast<int32_t>(value));
  };
  const auto storeReal = [&](size_t at, Setting setting) {
    StoreLeFloat(block.data() + at,
                 static_cast<float>(static_cast<double>(settings.Thousandths(setting)) / kThousand));
  };
  int32_t identity = 0;
  std::from_chars(options.identity.data(), options.identity.data() + options.identity.size(), identity);
  store32(place::kLength, kInformationBytes);
  store32(place::kIdentity, identity);
  store32(place::kRange, settings.Whole(Setting::rangeHigh));
  store16(place::kTxLength, Setting::txLengthHigh);
  storeReal(place::kInterval, Setting::interval);
  store16(place::kDeadZone, Setting::deadZoneHigh);
  store16(place::kOffset, Setting::offsetHigh);
  store16(place::kThreshold, Setting::thresholdHigh);
  storeReal(place::kGain, Setting::gainHigh);
  storeReal(place::kTvgSpreading, Setting::tvgSpreadingHigh);
  store16(place::kTvgMode, Setting::tvgMode);
  store16(place::kOutput, Setting::output);
  store16(place::kSound, Setting::sound);
  block.resize(static_cast<size_t>(options.faults.informationBytes));
  return block;
}

std::string Base64(std::span<const uint8_t> bytes) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (size_t at = 0; at < bytes.size(); at += 3) {
    const size_t count = std::min<size_t>(3, bytes.size() - at);
    uint32_t group = 0;
    for (size_t i = 0; i < 3; ++i) group = group << 8 | (i < count ? bytes[at + i] : 0u);
    for (size_t i = 0; i < 4; ++i) text.push_back(i <= count ? kDigits[group >> (18 - 6 * i) & 63] : '=');
  }
  return text;
}

std::string Lines(const SounderOptions& options, const SounderSettings& settings) {
  const Setting range = settings.LowInUse() ? Setting::rangeLow : Setting::rangeHigh;
  return "Device " + options.identity + "\r\nFirmware " + settings.Text(Setting::firmware) + "\r\nRange " +
         settings.Text(range) + " mm\r\nOutput " + settings.Text(Setting::output);
}

}  // namespace

std::string Information(const SounderOptions& options, const SounderSettings& settings) {
  switch (options.family) {
    case DeviceFamily::first:
      return Lines(options, settings) + "\r\nInterface " + std::string(NameOf(options.interfaceWord));
    case DeviceFamily::second:
      return Lines(options, settings);
    case DeviceFamily::third:
      break;
  }
  char frequency[64];
  const size_t length = FormatText(frequency, "Tx Frequency     %7lld Hz  ",
                                   static_cast<long long>(settings.Whole(Setting::frequencyInUse)));
  return "B64INFO[" + Base64(Block(options, settings)) + "]\r\n" + std::string(frequency, length);
}

}  // namespace tw::sim
