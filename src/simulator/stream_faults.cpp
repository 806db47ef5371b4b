#include "simulator/stream_faults.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "base/bytes.h"

namespace tw::sim {
namespace {

constexpr uint64_t kLongestRun = 8;

constexpr std::string_view kNotNumbers[] = {"nan", "-nan",     "inf",  "-inf",
                                            "NaN", "infinity", "1e39", "nan(7)"};
constexpr uint32_t kNotFloats[] = {0x7FC00000, 0xFFC00000, 0x7F800000, 0xFF800000, 0x7F800001};

constexpr std::string_view kAbsurdTexts[] = {"-1",
                                             "-2147483648",
                                             "50001",
                                             "2147483647",
                                             "4294967295",
                                             "4294967296",
                                             "99999999999999999999",
                                             "1e38",
                                             "999999999999999999999999999999999999999999999999999999999999"};
constexpr uint32_t kAbsurdWords[] = {1,          7,          13,         61,         256'001,
                                     0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFFE, 0x20000000};

template <typename T, size_t kCount>
const T& OneOf(const T (&choices)[kCount], Dice& dice) {
  return choices[dice.Below(kCount)];
}

Damage Changed(size_t at, size_t size) {
  return {static_cast<uint32_t>(at), static_cast<uint32_t>(size), true};
}

struct Run {
  size_t at;
  size_t size;
};

// One to eight bytes anywhere in the message, which is not empty.
Run DrawRun(Dice& dice, const StreamMessage& message) {
  const size_t at = dice.Below(message.bytes.size());
  const size_t size = 1 + dice.Below(kLongestRun);
  return {at, std::min(size, message.bytes.size() - at)};
}

std::vector<uint8_t>::iterator At(StreamMessage& message, size_t offset) {
  return message.bytes.begin() + static_cast<ptrdiff_t>(offset);
}

Damage Flip(Dice& dice, StreamMessage& message) {
  const Run run = DrawRun(dice, message);
  for (size_t i = 0; i < run.size; ++i) {
    message.bytes[run.at + i] ^= static_cast<uint8_t>(1 + dice.Below(255));
  }
  return Changed(run.at, run.size);
}

Damage Lose(Dice& dice, StreamMessage& message) {
  const Run run = DrawRun(dice, message);
  message.bytes.erase(At(message, run.at), At(message, run.at + run.size));
  return Changed(run.at, 0);
}

Damage Double(Dice& dice, StreamMessage& message) {
  const Run run = DrawRun(dice, message);
  std::array<uint8_t, kLongestRun> copy{};
  std::copy_n(At(message, run.at), run.size, copy.begin());
  message.bytes.insert(At(message, run.at), copy.begin(), copy.begin() + static_cast<ptrdiff_t>(run.size));
  return Changed(run.at, 2 * run.size);
}

Damage Truncate(Dice& dice, StreamMessage& message) {
  const size_t kept = dice.Below(message.bytes.size());
  message.bytes.resize(kept);
  return Changed(kept, 0);
}

// One of the fields of a kind; null when there is none.
const MessageField* DrawField(FieldKind kind, Dice& dice, const StreamMessage& message) {
  const auto matches = [&](const MessageField& field) { return field.kind == kind; };
  const auto count = std::count_if(message.fields.begin(), message.fields.end(), matches);
  if (count == 0) return nullptr;
  auto skip = dice.Below(static_cast<uint64_t>(count));
  return &*std::find_if(message.fields.begin(), message.fields.end(),
                        [&](const MessageField& field) { return matches(field) && skip-- == 0; });
}

Damage PutText(const MessageField& field, std::string_view text, StreamMessage& message) {
  message.bytes.erase(At(message, field.offset), At(message, field.offset + field.size));
  message.bytes.insert(At(message, field.offset), text.begin(), text.end());
  return Changed(field.offset, text.size());
}

Damage PutWord(const MessageField& field, uint32_t word, StreamMessage& message) {
  uint8_t* at = message.bytes.data() + field.offset;
  StoreLe<uint32_t>(at, LoadLe<uint32_t>(at) == word ? ~word : word);  // another than what stands there
  return Changed(field.offset, field.size);
}

Damage MakeNotANumber(Dice& dice, StreamMessage& message) {
  const MessageField* field = DrawField(FieldKind::decimal, dice, message);
  if (field == nullptr) return {};
  if (message.binary) return PutWord(*field, OneOf(kNotFloats, dice), message);
  return PutText(*field, OneOf(kNotNumbers, dice), message);
}

Damage MakeAbsurd(Dice& dice, StreamMessage& message) {
  const MessageField* field = DrawField(FieldKind::count, dice, message);
  if (field == nullptr) field = DrawField(FieldKind::decimal, dice, message);
  if (field == nullptr) return {};
  if (message.binary) return PutWord(*field, OneOf(kAbsurdWords, dice), message);
  return PutText(*field, OneOf(kAbsurdTexts, dice), message);
}

}  // namespace

Dice FaultDice(uint64_t seed, uint64_t messageIndex) {
  constexpr uint64_t kFaults = 0x6661756C74730000;  // apart from all other chance
  return Dice(Mix(seed ^ kFaults) ^ Mix(messageIndex));
}

StreamFault DrawFault(const SounderFaults& faults, Dice& dice) {
  if (faults.stream.empty() || !(faults.streamRate > 0.0)) return StreamFault::none;
  constexpr double kScale = 0x1p32;
  if (static_cast<double>(dice.Next() >> 32) >= faults.streamRate * kScale) return StreamFault::none;
  return faults.stream[dice.Below(faults.stream.size())];
}

uint32_t JumpedTime_s(uint32_t time_s, Dice& dice) {
  constexpr int64_t kDay_s = 86'400;
  constexpr int64_t kJumps_s[] = {-1, 1, -3'600, 3'600, -kDay_s, kDay_s, -300 * kDay_s, 300 * kDay_s};
  const uint32_t which = dice.Below(std::size(kJumps_s) + 2);
  if (which == std::size(kJumps_s)) return 0;
  if (which > std::size(kJumps_s)) return UINT32_MAX;
  return static_cast<uint32_t>(std::clamp<int64_t>(time_s + kJumps_s[which], 0, UINT32_MAX));
}

Damage ApplyFault(StreamFault fault, Dice& dice, StreamMessage& message) {
  if (message.bytes.empty()) return {};
  switch (fault) {
    case StreamFault::flippedBytes:
      return Flip(dice, message);
    case StreamFault::lostBytes:
      return Lose(dice, message);
    case StreamFault::doubledBytes:
      return Double(dice, message);
    case StreamFault::truncated:
      return Truncate(dice, message);
    case StreamFault::absurdCount:
      return MakeAbsurd(dice, message);
    case StreamFault::notANumber:
      return MakeNotANumber(dice, message);
    case StreamFault::none:
    case StreamFault::timeJump:
    case StreamFault::otherMode:
      return {};
  }
  return {};
}

}  // namespace tw::sim
