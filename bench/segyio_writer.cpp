// What the conversion is measured against: the frames of a binary recording written as SEG-Y through segyio's
// C interface, the same headers and samples. For recordings without damage.
//
//   segyio_writer RECORDING OUTPUT
#include <segyio/segy.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace {

constexpr size_t kHeader = 88;
constexpr uint32_t kMaxSamples = 32'767;
constexpr long kFirstTrace = 3'600;

uint32_t Word(const uint8_t* header, size_t at) {
  uint32_t value;
  std::memcpy(&value, header + at, sizeof value);
  return value;
}

int32_t Arc(const uint8_t* header, size_t at) {
  float radians;
  std::memcpy(&radians, header + at, sizeof radians);
  return static_cast<int32_t>(static_cast<double>(radians) * 180.0 / std::acos(-1.0) * 3600.0 * 1000.0);
}

bool WriteFileHeaders(segy_file* out, const uint8_t* header) {
  static char cards[3200];
  static char binary[400];
  std::memset(cards, 'C', sizeof cards);
  segy_set_bfield(binary, SEGY_BIN_INTERVAL, static_cast<int32_t>(1'000'000 / Word(header, 24)));
  segy_set_bfield(binary, SEGY_BIN_SAMPLES, static_cast<int32_t>(Word(header, 32)));
  segy_set_bfield(binary, SEGY_BIN_FORMAT, SEGY_SIGNED_SHORT_2_BYTE);
  return segy_write_textheader(out, 0, cards) == SEGY_OK && segy_write_binheader(out, binary) == SEGY_OK;
}

void FillTraceHeader(char* trace, const uint8_t* header, int number) {
  constexpr int kPingFields[] = {SEGY_TR_SEQ_LINE, SEGY_TR_FIELD_RECORD, SEGY_TR_NUMBER_ORIG_FIELD,
                                 SEGY_TR_ENERGY_SOURCE_POINT, SEGY_TR_ENSEMBLE};
  constexpr struct {
    int field;
    int32_t value;
  } kFixed[] = {
      {SEGY_TR_NUM_IN_ENSEMBLE, 1},         {SEGY_TR_TRACE_ID, 1},          {SEGY_TR_SUMMED_TRACES, 1},
      {SEGY_TR_STACKED_TRACES, 1},          {SEGY_TR_DATA_USE, 1},          {SEGY_TR_ELEV_SCALAR, -1000},
      {SEGY_TR_SOURCE_GROUP_SCALAR, -1000}, {SEGY_TR_COORD_UNITS, 2},       {SEGY_TR_WEATHERING_VELO, 1500},
      {SEGY_TR_TIME_BASE_CODE, 4},          {SEGY_TR_SHOT_POINT_SCALAR, 1}, {SEGY_TR_SCALAR_TRACE_HEADER, 1}};
  const time_t seconds = static_cast<time_t>(Word(header, 16));
  std::tm time;
  gmtime_r(&seconds, &time);
  std::memset(trace, 0, SEGY_TRACE_HEADER_SIZE);
  for (const int field : kPingFields) segy_set_field(trace, field, static_cast<int32_t>(Word(header, 20)));
  for (const auto& row : kFixed) segy_set_field(trace, row.field, row.value);
  segy_set_field(trace, SEGY_TR_SEQ_FILE, number);
  const int32_t y = Arc(header, 64);
  const int32_t x = Arc(header, 68);
  segy_set_field(trace, SEGY_TR_SOURCE_X, x);
  segy_set_field(trace, SEGY_TR_SOURCE_Y, y);
  segy_set_field(trace, SEGY_TR_GROUP_X, x);
  segy_set_field(trace, SEGY_TR_GROUP_Y, y);
  segy_set_field(trace, SEGY_TR_CDP_X, x);
  segy_set_field(trace, SEGY_TR_CDP_Y, y);
  segy_set_field(trace, SEGY_TR_SAMPLE_COUNT, static_cast<int32_t>(Word(header, 32)));
  segy_set_field(trace, SEGY_TR_SAMPLE_INTER, static_cast<int32_t>(1'000'000 / Word(header, 24)));
  segy_set_field(trace, SEGY_TR_YEAR_DATA_REC, time.tm_year + 1900);
  segy_set_field(trace, SEGY_TR_DAY_OF_YEAR, time.tm_yday + 1);
  segy_set_field(trace, SEGY_TR_HOUR_OF_DAY, time.tm_hour);
  segy_set_field(trace, SEGY_TR_MIN_OF_HOUR, time.tm_min);
  segy_set_field(trace, SEGY_TR_SEC_OF_MIN, time.tm_sec);
}

int Convert(std::FILE* in, segy_file* out) {
  for (int c = std::fgetc(in); c != EOF && c != '\n';) c = std::fgetc(in);  // the settings line
  static uint8_t header[kHeader];
  static char trace[SEGY_TRACE_HEADER_SIZE];
  static int16_t samples[kMaxSamples];
  for (int number = 0; std::fread(header, kHeader, 1, in) == 1; ++number) {
    const uint32_t length = Word(header, 32);
    if (std::memcmp(header, "TR57", 4) != 0 || length == 0 || length > kMaxSamples) return 1;
    if (std::fread(samples, 2, length, in) != length) return 1;
    if (number == 0) {
      if (!WriteFileHeaders(out, header)) return 1;
      if (segy_set_format(out, SEGY_SIGNED_SHORT_2_BYTE) != SEGY_OK) return 1;
    }
    FillTraceHeader(trace, header, number + 1);
    const int size = segy_trsize(SEGY_SIGNED_SHORT_2_BYTE, static_cast<int>(length));
    if (segy_write_traceheader(out, number, trace, kFirstTrace, size) != SEGY_OK) return 1;
    segy_from_native(SEGY_SIGNED_SHORT_2_BYTE, length, samples);
    if (segy_writetrace(out, number, samples, kFirstTrace, size) != SEGY_OK) return 1;
  }
  return 0;
}

}  // namespace

int main(int count, char** words) {
  if (count != 3) return 2;
  std::FILE* const in = std::fopen(words[1], "rb");
  segy_file* const out = segy_open(words[2], "w+b");
  if (in == nullptr || out == nullptr) return 1;
  const int result = Convert(in, out);
  std::fclose(in);
  return segy_close(out) == SEGY_OK ? result : 1;
}
