#include "app/settings/lamp_face.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>

#include "base/text_format.h"
#include "gps/position_text.h"

namespace tw {
namespace {

constexpr uint32_t kFlash_ms = 500;
constexpr double kSecondsOfHour = 3'600;
constexpr double kShownHours = 24;
constexpr double kAlarmHours = 2;

const char* ReasonOf(RecordFault fault) {
  switch (fault) {
    case RecordFault::none:
      return "";
    case RecordFault::diskFull:
      return "disk full";
    case RecordFault::diskRefuses:
      return "disk error";
    case RecordFault::folderMissing:
      return "folder missing";
  }
  return "";
}

void FormatRecording(LampFace& face, const RecordingFacts& facts) {
  if (!facts.wanted) {
    CopyWide(face.text, L"not recording");
  } else if (facts.open && facts.fault == RecordFault::none) {
    const uint64_t seconds = facts.recorded_ms / 1000;
    face.colour = LampColour::red;
    FormatWide(face.text, "REC %02" PRIu64 ":%02" PRIu64 ":%02" PRIu64, seconds / 3600, seconds / 60 % 60,
               seconds % 60);
  } else {
    const bool reason = facts.fault != RecordFault::none;
    face.colour = facts.now_ms / kFlash_ms % 2 == 0 ? LampColour::alarm : LampColour::red;
    FormatWide(face.text, "NOT RECORDING%s%s", reason ? ": " : "", ReasonOf(facts.fault));
  }
}

size_t AddSpace(std::span<wchar_t> text, uint64_t free_bytes) {
  constexpr double kMega = 1024.0 * 1024.0;
  if (free_bytes == kUnknownSpace) return 0;
  return FormatWide(text, "%.0f MB free", static_cast<double>(free_bytes) / kMega);
}

void FormatRecordingTip(std::span<wchar_t> tip, const RecordingFacts& facts) {
  size_t used = 0;
  if (facts.wanted && facts.files[0] != '\0') {
    used =
        FormatWide(tip, "%s\n%" PRIu32 " pings, %" PRIu64 " bytes\n", facts.files, facts.pings, facts.bytes);
  }
  AddSpace(tip.subspan(used), facts.free_bytes);
}

// A number that a receiver sends may be any.
double Shown(double hdop) {
  return std::isfinite(hdop) ? std::clamp(hdop, 0.0, 99.9) : 99.9;
}

void FormatFix(LampFace& face, const ReceiverFacts& facts) {
  const char* const word = GgaQualityWord(facts.hasFix ? facts.quality : 0);
  if (!facts.hasFix || facts.quality == 0) {
    face.colour = LampColour::red;
    FormatWide(face.text, "%s %" PRId32 " sat", word, facts.satellites);
  } else {
    face.colour = LampColour::green;
    FormatWide(face.text, "%s %" PRId32 "/%.1f %" PRIu32 "s", word, facts.satellites, Shown(facts.hdop),
               facts.fixAge_s);
  }
  FormatWide(face.tip, "Quality: %s\nSatellites: %" PRId32 "\nHDOP: %.1f\nAge of the fix: %" PRIu32 " s",
             word, facts.satellites, Shown(facts.hdop), facts.fixAge_s);
}

}  // namespace

LampFace LampOf(const RecordingFacts& facts) {
  LampFace face{};
  FormatRecording(face, facts);
  if (facts.noData_s != 0) FormatWide(face.second, "NO DATA %" PRIu32 " s", facts.noData_s);
  FormatRecordingTip(face.tip, facts);
  return face;
}

LampFace LampOf(const ReceiverFacts& facts) {
  LampFace face{};
  if (!facts.chosen) return face;
  if (!facts.open) {
    face.colour = LampColour::red;
    CopyWide(face.text, L"port failed");
    return face;
  }
  if (facts.state == ReceiverState::tells) {
    FormatFix(face, facts);
    return face;
  }
  face.colour = LampColour::red;
  static_cast<void>(FormatReceiverTrouble(face.tip, facts));
  const bool silent = facts.state == ReceiverState::silent;
  CopyWide(face.text, silent ? face.tip : L"no sentences");
  return face;
}

bool FormatReceiverTrouble(std::span<wchar_t> text, const ReceiverFacts& facts) {
  CopyWide(text, L"");
  if (!facts.chosen || (facts.open && facts.state == ReceiverState::tells)) return false;
  if (!facts.open) {
    CopyWide(text, L"port failed");
  } else if (facts.state == ReceiverState::silent) {
    FormatWide(text, "silent %" PRIu32 " s", facts.silent_s);
  } else {
    FormatWide(text, "no sentences at %" PRId32 " bps", facts.baud);
  }
  return true;
}

namespace {

bool FormatDiskRoom(std::span<wchar_t> text, const DiskFacts& facts) {
  if (facts.rate_Bps == 0 || facts.free_bytes == kUnknownSpace) return false;
  const double hours =
      static_cast<double>(facts.free_bytes) / static_cast<double>(facts.rate_Bps) / kSecondsOfHour;
  if (hours > kShownHours) return false;
  if (hours < 1) {
    FormatWide(text, "Disk: %.0f min", std::floor(hours * 60));
  } else {
    FormatWide(text, hours < 10 ? "Disk: %.1f h" : "Disk: %.0f h", hours);
  }
  return hours < kAlarmHours;
}

}  // namespace

bool FormatDiskState(std::span<wchar_t> text, const DiskFacts& facts) {
  CopyWide(text, L"");
  if (facts.pingsLost != 0) {
    FormatWide(text, "Pings not recorded, the disk is too slow : %" PRIu32, facts.pingsLost);
    return true;
  }
  if (facts.left_bytes != 0) {
    FormatWide(text, "Still to be written : %" PRIu64 " KB", (facts.left_bytes + 1023) / 1024);
    return false;
  }
  if (!facts.wanted) return false;
  if (facts.fault == RecordFault::none) return FormatDiskRoom(text, facts);
  const bool begun = facts.fault != RecordFault::folderMissing;
  FormatWide(text, "%s%s", begun ? "Ended: " : "", ReasonOf(facts.fault));
  return true;
}

}  // namespace tw
