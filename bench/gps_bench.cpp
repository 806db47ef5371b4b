// Sentences of a GPS receiver per second: parser and fix on half a million of them, pushed in pieces as the
// worker reads them, against a parser of istringstream and stod that reads the same values. Processor time.
//
//   gps_bench [FILE]
//
// FILE gets the sentences, for other decoders: see gps_decoders.sh.
#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "base/calendar.h"
#include "bench/measure.h"
#include "gps/nmea_parser.h"
#include "simulator/gps_sentences.h"

namespace tw {
namespace {

constexpr size_t kSentences = 500'000;
constexpr size_t kPiece = 64;
constexpr uint32_t kBegin_s = 1'700'000'000;

// What a receiver sends once a second: a fix, its quality, the sky, course and speed.
std::string MakeStream() {
  std::string stream;
  size_t count = 0;
  for (uint32_t second = 0; count < kSentences; ++second) {
    const double way_deg = 1e-5 * second;
    const sim::GpsMoment moment{.utc = CalendarFromUnixSeconds(kBegin_s + second),
                                .latitude_deg = 35.1 + way_deg,
                                .longitude_deg = 129.05 + way_deg,
                                .course_deg = 60.0,
                                .speed_kn = 5.0,
                                .fix = true,
                                .differential = true,
                                .emptyFields = false,
                                .laterFields = false};
    const std::string epoch[] = {sim::GgaSentence("GP", moment), sim::GsaSentence("GP", moment),
                                 sim::GsvSentence(1, moment),    sim::GsvSentence(2, moment),
                                 sim::GsvSentence(3, moment),    sim::RmcSentence("GP", moment),
                                 sim::VtgSentence("GP", moment)};
    for (const std::string& sentence : epoch) {
      if (count++ < kSentences) stream += sentence;
    }
  }
  return stream;
}

size_t ReadAll(const std::string& stream, GpsFix& fix) {
  NmeaParser parser{};
  if (!MakeParser(parser, 4'096)) return 0;
  size_t applied = 0;
  for (size_t at = 0; at < stream.size(); at += kPiece) {
    const size_t size = std::min(kPiece, stream.size() - at);
    static_cast<void>(ParserPush(parser, reinterpret_cast<const uint8_t*>(stream.data()) + at, size));
    applied += static_cast<size_t>(ApplyPackets(parser, fix));
  }
  return applied;
}

double Number(const std::string& field) {
  return field.empty() ? 0.0 : std::stod(field);
}

double Signed(const std::string& field, const std::string& side) {
  return side == "S" || side == "W" ? -Number(field) : Number(field);
}

void TakeFields(const std::vector<std::string>& fields, GpsFix& fix) {
  const std::string type = fields[0].substr(2);
  std::vector<double> numbers;  // every sentence's own, read whether they are used or not
  for (const std::string& field : fields) {
    if (!field.empty() && field.find_first_not_of("0123456789.-") == std::string::npos) {
      numbers.push_back(std::stod(field));
    }
  }
  if (type == "GGA") {
    fix.latitude = Signed(fields[2], fields[3]);
    fix.longitude = Signed(fields[4], fields[5]);
    fix.quality = std::stoi(fields[6]);
    fix.elevation_m = Number(fields[9]);
  } else if (type == "RMC") {
    fix.latitude = Signed(fields[3], fields[4]);
    fix.longitude = Signed(fields[5], fields[6]);
    fix.direction_deg = Number(fields[8]);
  } else if (type == "GSA") {
    fix.hdop = Number(fields[16]);
    fix.vdop = Number(fields[17]);
  } else if (type == "VTG") {
    fix.speed_kmh = Number(fields[7]);
  }
}

size_t ReadPlainly(const std::string& stream, GpsFix& fix) {
  std::istringstream lines(stream);
  size_t count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    const size_t star = line.find('*');
    unsigned sum = 0;
    for (size_t i = 1; i < star; ++i) sum ^= static_cast<unsigned char>(line[i]);
    std::istringstream digits(line.substr(star + 1, 2));
    unsigned told = 0;
    digits >> std::hex >> told;
    if (sum != told) continue;
    std::istringstream body(line.substr(1, star - 1));
    std::vector<std::string> fields;
    for (std::string field; std::getline(body, field, ',');) fields.push_back(field);
    TakeFields(fields, fix);
  }
  return count;
}

bool Same(const GpsFix& a, const GpsFix& b) {
  return a.latitude == b.latitude && a.longitude == b.longitude && a.quality == b.quality &&
         a.elevation_m == b.elevation_m && a.direction_deg == b.direction_deg && a.hdop == b.hdop &&
         a.vdop == b.vdop && a.speed_kmh == b.speed_kmh;
}

int Main(const char* path) {
  const std::string stream = MakeStream();
  if (path != nullptr) {
    std::FILE* const file = std::fopen(path, "wb");
    if (file == nullptr || std::fwrite(stream.data(), 1, stream.size(), file) != stream.size()) return 1;
    std::fclose(file);
  }
  GpsFix ours{};
  GpsFix theirs{};
  size_t applied = 0;
  size_t read = 0;
  const double parsing = MedianMilliseconds([&] { applied = ReadAll(stream, ours); }, ProcessorClock_ms);
  const double plain = MedianMilliseconds([&] { read = ReadPlainly(stream, theirs); }, ProcessorClock_ms);
  if (applied != kSentences || read != kSentences || !Same(ours, theirs)) {
    std::printf("The two parsers read different sentences: %zu, %zu.\n", applied, read);
    return 1;
  }
  std::printf("%zu sentences in %.1f ms, %.2f million a second; istringstream and stod %.1f ms, %.1f x\n",
              applied, parsing, static_cast<double>(applied) / parsing / 1e3, plain, plain / parsing);
  return 0;
}

}  // namespace
}  // namespace tw

int main(int argc, char** argv) {
  return tw::Main(argc > 1 ? argv[1] : nullptr);
}
