// Recordings made of recordings: repaired, cut and joined. What has been written is read again before it is
// called done. One thread.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "tools/echotool/ping_copy.h"
#include "tools/echotool/selection.h"
#include "tools/echotool/track_output.h"

namespace tw::echotool {

// Where the pings come from: the recording that is being read, and others that follow it.
struct CopiedFiles {
  const PingSource& recording;
  std::wstring path;
  std::vector<std::wstring> following;
};

class RecordingWriter final : public PingWriter {
 public:
  // `file` is the output's own. Without a selection all pings are taken. What is referred to outlives it.
  RecordingWriter(CopiedFiles from, Handle file, OutputFile& output, const Selection& selection,
                  const std::atomic<bool>& interrupted);

  [[nodiscard]] bool Begin() override;
  [[nodiscard]] bool Append(const RecordedPing& ping) override;
  [[nodiscard]] bool End() override;
  [[nodiscard]] std::string Emptiness() const override { return fault_; }
  [[nodiscard]] std::string Note() const override;

 private:
  [[nodiscard]] bool AppendFile(const std::wstring& path);
  void NoteDropped(const PingSource& recording, const RecordedPing& ping);
  void Judge();

  CopiedFiles from_;
  Handle file_;
  OutputFile& output_;
  const Selection& selection_;
  const std::atomic<bool>& interrupted_;
  PingCopy copy_;
  Chooser chooser_;
  uint64_t read_ = 0;
  std::string fault_;
  std::string others_;  // of the recordings behind the first: which were damaged

  // Of the first recording: bytes between its pings that have been left out.
  uint64_t behind_ = 0;
  uint64_t dropped_ = 0;
  uint64_t places_ = 0;
  uint64_t firstPlace_ = 0;
};

}  // namespace tw::echotool
