// Pings taken over from recordings into another one, byte for byte as they stand, with what was recorded with
// them: the settings that a recording begins with, then whole pings in the order in which they come. One
// thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "platform/owned_file.h"
#include "playback/output_file.h"
#include "playback/ping_source.h"

namespace tw::echotool {

class PingCopy {
 public:
  explicit PingCopy(OutputFile& output) : output_(output) {}

  // The recording that pings are taken from, from now on. False when it cannot be opened.
  [[nodiscard]] bool From(const std::wstring& path, bool isText);

  // All three: false when the output has failed.
  // The settings lines of the recording, or what an older one has of them ahead of its first ping.
  [[nodiscard]] bool TakeSettings(const PingSource& recording, const RecordedPing& first);
  // The ping that the recording has just given. Bytes that it shares with the ping before are taken once.
  [[nodiscard]] bool Take(const PingSource& recording, const RecordedPing& ping);

  // True once a recording could not be read a second time.
  [[nodiscard]] bool Unread() const { return unread_; }
  [[nodiscard]] uint64_t Pings() const { return pings_; }

 private:
  [[nodiscard]] bool Bytes(uint64_t begin, uint64_t end);
  [[nodiscard]] bool Holds(uint64_t begin, uint64_t end, std::string_view text);
  [[nodiscard]] bool Read(uint64_t place, void* bytes, uint32_t size);

  OutputFile& output_;
  OwnedFile file_;
  bool isText_ = false;
  uint64_t taken_ = 0;     // the place behind the last byte taken from this recording
  uint64_t position_ = 0;  // of the file
  uint64_t pings_ = 0;
  uint8_t last_[2] = {'\r', '\n'};  // bytes of the output: a line can begin behind them
  bool unread_ = false;
};

// Has a reader give up once the user wants that, be it in the middle of garbage.
[[nodiscard]] Interruption InterruptionBy(const std::atomic<bool>& interrupted);

// True when the file is read as what `original` is, and holds so many pings. The file's position is anywhere
// afterwards.
[[nodiscard]] bool IsReadAs(Handle file, const RecordingKind& original, uint64_t pings,
                            const std::atomic<bool>& interrupted);

}  // namespace tw::echotool
