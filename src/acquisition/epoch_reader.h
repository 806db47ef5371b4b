// Cuts a stream of NMEA 0183 sentences into epochs, one ping each. First device family, the frequency line
// only from devices that report their frequency:
//
//   #F 200000 Hz
//   $SDZDA,123456.78,16,11,2026,00,00,*43
//   $SDDBT,13.94,f,4.250,M,2.32,F*39
//   $SDXDR,A,2.0,D,PTCH,A,-1.0,D,ROLL*65
//   $SDMTW,11.40,*73
//   $SDXDR,A,1.5,P,EMA*2B
//
// begins with "#F " or "$SDZDA" and ends four bytes (checksum, CR LF) behind ",P,EMA*". Second family:
//
//   $GPDBT,13.94,f,4.250,M,,*62
//   $YXXDR,A,2.0,D,PTCH,A,-1.0,D,ROLL*73
//   $GPMTW,11.40,*73
//   $GPEMA,1.5*58
//
// begins with "$GPDBT" and ends with the CR LF of the "$GPEMA" sentence. Every line ends in CR LF.
//
// Getting back in step: bytes outside an epoch are dropped. An epoch whose end is damaged goes on to the end
// of the next one; it then holds both, and the first values count. One that outgrows its buffer is dropped. A
// pure state machine; one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "acquisition/start_hunt.h"
#include "acquisition/stream_reader.h"

namespace tw {

inline constexpr size_t kEpochBufferSize = 4'096;  // an epoch and its terminating zero

struct EpochForm {
  std::span<const std::string_view> starts;
  std::string_view end;
  size_t bytesBehind;        // that belong to the epoch behind its end mark;
  std::string_view lineEnd;  // without any: the mark up to which it goes on
};

inline constexpr std::string_view kFirstFamilyStarts[] = {"$SDZDA", "#F "};
inline constexpr std::string_view kSecondFamilyStarts[] = {"$GPDBT"};
inline constexpr EpochForm kFirstFamilyEpoch{kFirstFamilyStarts, ",P,EMA*", 4, {}};
inline constexpr EpochForm kSecondFamilyEpoch{kSecondFamilyStarts, "$GPEMA", 0, "\r\n"};

class EpochReader final : public StreamReader {
 public:
  // What `form` refers to outlives the reader.
  explicit EpochReader(const EpochForm& form) : form_(form), hunt_(form.starts) {}

  [[nodiscard]] bool Feed(std::span<const uint8_t>& input) override;
  void Break() override;

  // From the start mark to the last byte. A zero follows it.
  [[nodiscard]] std::string_view Block() const override { return {buffer_, length_}; }

 private:
  enum class Stage : uint8_t { hunting, gathering, ending, complete };

  void Take(uint8_t byte);
  [[nodiscard]] bool Behind(std::string_view mark) const;

  EpochForm form_;
  StartHunt hunt_;
  Stage stage_ = Stage::hunting;
  char buffer_[kEpochBufferSize];
  size_t length_ = 0;
  size_t searched_ = 0;  // length of what no mark may reach back into: start mark, or all up to the end mark
  std::string_view start_;  // of the epoch that is being gathered
  std::string_view usual_;  // of the last complete one
  bool broken_ = false;     // the next one must have the usual start, else it is the rest of an epoch
};

}  // namespace tw
