// A sentence, as "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47": '$', a talker of two
// letters (of receivers "G" and the satellite system's), a type of three, fields, '*' and the checksum in two
// hexadecimal digits. A '$' begins a sentence wherever it stands; one of 82 characters without an end is
// none.
#include "device/heard.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

#include "base/checksum.h"

namespace tw {
namespace {

constexpr uint32_t kLeastText = 8;  // fewer visible characters may be an accident
constexpr std::string_view kTypesOfReceivers[] = {"GGA", "RMC", "GSA", "GSV", "VTG", "GLL"};

// `sentence` ends with the two digits.
bool IsOfReceiver(std::string_view sentence) {
  constexpr size_t kHead = sizeof("$GPGGA,") - 1;
  constexpr size_t kTail = sizeof("*47") - 1;
  if (sentence.size() < kHead + kTail || sentence[1] != 'G' || sentence[kHead - 1] != ',') return false;
  const std::string_view type = sentence.substr(3, 3);
  if (std::find(std::begin(kTypesOfReceivers), std::end(kTypesOfReceivers), type) ==
      std::end(kTypesOfReceivers)) {
    return false;
  }
  const std::string_view digits = sentence.substr(sentence.size() - 2);
  uint8_t told = 0;
  const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), told, 16);
  const bool whole = failure == std::errc{} && end == digits.data() + digits.size();
  return whole && told == XorChecksum(sentence.substr(1, sentence.size() - 1 - kTail));
}

}  // namespace

void HeardBytes::Take(uint8_t byte) {
  const auto c = static_cast<char>(byte);
  ++total_;
  if (byte > ' ' && byte < 0x7F) ++visible_;
  if (c == ' ' || c == '\r' || c == '\n' || c == '\t') ++blank_;
  prompt_.Take(c);
  prompted_ = prompted_ || prompt_.Holds("\r\n>");
  TakeOfSentence(c);
}

void HeardBytes::TakeOfSentence(char c) {
  if (c == '$') length_ = 0;
  if (c != '$' && length_ == 0) return;
  sentence_[length_++] = c;
  const std::string_view text(sentence_, length_);
  const bool ends = length_ >= 3 && text[length_ - 3] == '*';
  if (ends && IsOfReceiver(text)) receiver_ = true;
  if (ends || length_ == kLongestSentence) length_ = 0;
}

Heard HeardBytes::Verdict() const {
  if (receiver_) return Heard::receiver;
  if (prompted_) return Heard::prompt;
  if (total_ == 0) return Heard::nothing;
  if (blank_ == total_) return Heard::echo;
  constexpr uint64_t kOfTen = 9;
  const uint64_t legible = uint64_t{visible_} + blank_;
  return visible_ >= kLeastText && legible * 10 >= total_ * kOfTen ? Heard::text : Heard::noise;
}

}  // namespace tw
