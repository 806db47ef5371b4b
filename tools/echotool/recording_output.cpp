#include "tools/echotool/recording_output.h"

#include <algorithm>
#include <utility>

#include "tools/echotool/file_names.h"
#include "tools/echotool/summary.h"

namespace tw::echotool {
namespace {

constexpr const char* kUnread = "cannot be read";

}  // namespace

RecordingWriter::RecordingWriter(CopiedFiles from, Handle file, OutputFile& output,
                                 const Selection& selection, const std::atomic<bool>& interrupted)
    : from_(std::move(from)),
      file_(file),
      output_(output),
      selection_(selection),
      interrupted_(interrupted),
      copy_(output),
      chooser_(selection) {}

bool RecordingWriter::Begin() {
  if (!copy_.From(from_.path, from_.recording.Kind().isText)) fault_ = kUnread;
  return true;
}

void RecordingWriter::NoteDropped(const PingSource& recording, const RecordedPing& ping) {
  if (ping.recordBegin > behind_) {
    if (places_++ == 0) firstPlace_ = behind_;
    dropped_ += ping.recordBegin - behind_;
  }
  behind_ = recording.Position();
}

bool RecordingWriter::Append(const RecordedPing& ping) {
  if (!fault_.empty()) return true;
  if (read_++ == 0) {
    if (!copy_.TakeSettings(from_.recording, ping)) return false;
    behind_ = output_.Size();
  }
  NoteDropped(from_.recording, ping);
  return (selection_.Any() && !chooser_.Takes(ping)) || copy_.Take(from_.recording, ping);
}

// Nothing but its pings: the settings are those of the first.
bool RecordingWriter::AppendFile(const std::wstring& path) {
  RecordingFault fault = RecordingFault::none;
  const auto recording = OpenRecording(path.c_str(), fault);
  if (recording == nullptr || !copy_.From(path, recording->Kind().isText)) {
    fault_ = NarrowName(path) + " " + kUnread;
    return true;
  }
  recording->SetInterruption(InterruptionBy(interrupted_));
  for (RecordedPing ping{}; !interrupted_.load(std::memory_order_relaxed) && recording->Next(ping);) {
    if (!copy_.Take(*recording, ping)) return false;
  }
  if (recording->Failed()) fault_ = NarrowName(path) + " " + kUnread;
  if (recording->Skipped() != 0) others_ += "; of " + NarrowName(path) + " " + DamageText(*recording);
  return true;
}

bool RecordingWriter::End() {
  if (from_.recording.Size() > behind_) {
    if (places_++ == 0) firstPlace_ = behind_;
    dropped_ += from_.recording.Size() - behind_;
  }
  for (const std::wstring& path : from_.following) {
    if (fault_.empty() && !AppendFile(path)) return false;
  }
  if (!output_.Flush()) return false;
  if (fault_.empty() && !interrupted_.load()) Judge();
  return true;
}

void RecordingWriter::Judge() {
  const bool byTime = selection_.from || selection_.to;
  if (copy_.Unread()) {
    fault_ = kUnread;
  } else if (byTime && !chooser_.KnowsTime()) {
    fault_ = "tells no times to choose pings by";
  } else if (copy_.Pings() == 0) {
    fault_ = "has none of the pings that were asked for";
  } else if (!IsReadAs(file_, from_.recording.Kind(), copy_.Pings(), interrupted_)) {
    fault_ = "is so damaged that its pings cannot stand without what lies between them";
  }
}

std::string RecordingWriter::Note() const {
  if (selection_.Any() || (dropped_ == 0 && others_.empty())) return {};
  if (dropped_ == 0) return "dropped:" + others_.substr(1);
  return "dropped: " + std::to_string(dropped_) + " bytes in " + std::to_string(places_) +
         (places_ == 1 ? " place, at byte " : " places, the first at byte ") + std::to_string(firstPlace_) +
         others_;
}

}  // namespace tw::echotool
