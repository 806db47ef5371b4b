#include "tools/echotool/ping_copy.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace tw::echotool {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kOldSettings = "Parameters";

}  // namespace

bool PingCopy::From(const std::wstring& path, bool isText) {
  file_ = OwnedFile(OpenFileForReading(path.c_str(), WriteSharing::denied));
  isText_ = isText;
  taken_ = position_ = 0;
  return file_.Get() != Handle::invalid;
}

bool PingCopy::Read(uint64_t place, void* bytes, uint32_t size) {
  uint32_t got = 0;
  const bool there = place == position_ || SeekFile(file_.Get(), place);
  if (!there || !ReadFileBytes(file_.Get(), bytes, size, got) || got != size) unread_ = true;
  position_ = place + size;
  return !unread_;
}

bool PingCopy::Bytes(uint64_t begin, uint64_t end) {
  for (uint64_t place = begin; place < end && !unread_;) {
    const auto size = static_cast<uint32_t>(std::min<uint64_t>(end - place, kOutputBufferSize));
    uint8_t* const room = output_.Room(size);
    if (room == nullptr) return false;
    if (!Read(place, room, size)) return true;
    if (size == 1) last_[0] = last_[1];
    std::memcpy(size == 1 ? last_ + 1 : last_, size == 1 ? room : room + size - 2, size == 1 ? 1 : 2);
    output_.Take(size);
    place += size;
  }
  taken_ = std::max(taken_, end);
  return true;
}

bool PingCopy::Holds(uint64_t begin, uint64_t end, std::string_view text) {
  std::array<char, kStartSize> bytes;
  const auto size = static_cast<uint32_t>(std::min<uint64_t>(end - begin, bytes.size()));
  return Read(begin, bytes.data(), size) &&
         std::string_view(bytes.data(), size).find(text) != std::string_view::npos;
}

bool PingCopy::TakeSettings(const PingSource& recording, const RecordedPing& first) {
  const uint64_t size = recording.Told().infoSize;
  if (size != 0) return Bytes(0, size);
  return !Holds(0, first.recordBegin, kOldSettings) || Bytes(0, first.recordBegin);
}

// A line without a mark of its own is one only behind the end of another.
bool PingCopy::Take(const PingSource& recording, const RecordedPing& ping) {
  ++pings_;
  const uint64_t begin = std::max(ping.recordBegin, taken_);
  const uint64_t size = kLineEnd.size();
  const bool isApart = isText_ && begin != taken_ && begin - taken_ >= size;
  if (isApart && std::memcmp(last_, kLineEnd.data(), size) != 0 && Holds(begin - size, begin, kLineEnd) &&
      !Bytes(begin - size, begin))
    return false;
  return Bytes(begin, recording.Position());
}

Interruption InterruptionBy(const std::atomic<bool>& interrupted) {
  const auto isInterrupted = [](void* watched) {
    return static_cast<const std::atomic<bool>*>(watched)->load();
  };
  return {isInterrupted, const_cast<std::atomic<bool>*>(&interrupted)};  // nobody writes to it here
}

bool IsReadAs(Handle file, const RecordingKind& original, uint64_t pings,
              const std::atomic<bool>& interrupted) {
  constexpr int kRetries = 0;
  RecordingFault fault = RecordingFault::none;
  const auto recording = MakeRecording(file, CandidatesOf(file, kRetries), fault);
  if (recording == nullptr || recording->Kind().name != original.name ||
      recording->Kind().channels != original.channels)
    return false;
  recording->SetInterruption(InterruptionBy(interrupted));
  uint64_t found = 0;
  for (RecordedPing ping{}; !interrupted.load(std::memory_order_relaxed) && recording->Next(ping);) ++found;
  return found == pings && !recording->Failed();
}

}  // namespace tw::echotool
