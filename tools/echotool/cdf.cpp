#include "tools/echotool/cdf.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

#include "base/bytes.h"

namespace tw::echotool {
namespace {

constexpr uint32_t kDimensions = 10;
constexpr uint32_t kVariables = 11;
constexpr uint32_t kAttributes = 12;
constexpr uint64_t kMostLength = 0x7FFF'FFFC;  // of a dimension; counts are signed
constexpr uint64_t kMostRecords = 0x7FFF'FFFF;
constexpr uint64_t kMostPart = 0xFFFF'FFFC;  // of a variable in a record, and of a fixed one

constexpr uint64_t Padded(uint64_t size) {
  return (size + 3) / 4 * 4;
}

template <typename T>
T Nearest(double value) {
  const double low = std::numeric_limits<T>::min();
  const double high = std::numeric_limits<T>::max();
  return static_cast<T>(std::clamp(std::round(value), low, high));
}

class Header {
 public:
  void Whole(uint32_t value) { Number(value); }
  void Offset(uint64_t value) { Number(value); }
  void Padded(std::string_view bytes) {
    text_ += bytes;
    text_.resize(echotool::Padded(text_.size()), '\0');
  }
  void Name(std::string_view name) {
    Whole(static_cast<uint32_t>(name.size()));
    Padded(name);
  }
  // An empty list is two zeros.
  void List(uint32_t tag, size_t count) {
    Whole(count == 0 ? 0 : tag);
    Whole(static_cast<uint32_t>(count));
  }
  void Attributes(const std::vector<CdfAttribute>& attributes) {
    List(kAttributes, attributes.size());
    for (const CdfAttribute& each : attributes) {
      Name(each.name);
      Whole(static_cast<uint32_t>(each.type));
      Whole(each.count);
      Padded(each.values);
    }
  }
  [[nodiscard]] std::string& Text() { return text_; }

 private:
  template <typename T>
  void Number(T value) {
    uint8_t bytes[sizeof value];
    StoreBe(bytes, value);
    text_.append(reinterpret_cast<const char*>(bytes), sizeof bytes);
  }

  std::string text_;
};

bool IsRecorded(const CdfContents& contents, const CdfVariable& variable) {
  return !variable.dimensions.empty() && contents.dimensions[variable.dimensions[0]].length == 0;
}

// Bytes of a variable, of one with records in each of them; kMostPart + 1 when they are too many.
uint64_t PartOf(const CdfContents& contents, const CdfVariable& variable) {
  uint64_t size = SizeOf(variable.type);
  for (size_t i = IsRecorded(contents, variable) ? 1 : 0; i < variable.dimensions.size(); ++i) {
    const uint64_t length = contents.dimensions[variable.dimensions[i]].length;
    if (length > kMostLength || size * length > kMostPart) return kMostPart + 1;
    size *= length;
  }
  return size;
}

std::string HeaderOf(const CdfContents& contents, const CdfLayout& layout) {
  Header header;
  header.Padded(std::string_view("CDF\x02", 4));
  header.Whole(static_cast<uint32_t>(contents.records));
  header.List(kDimensions, contents.dimensions.size());
  for (const CdfDimension& dimension : contents.dimensions) {
    header.Name(dimension.name);
    header.Whole(static_cast<uint32_t>(dimension.length));
  }
  header.Attributes(contents.attributes);
  header.List(kVariables, contents.variables.size());
  for (size_t i = 0; i < contents.variables.size(); ++i) {
    const CdfVariable& variable = contents.variables[i];
    header.Name(variable.name);
    header.Whole(static_cast<uint32_t>(variable.dimensions.size()));
    for (const uint32_t dimension : variable.dimensions) header.Whole(dimension);
    header.Attributes(variable.attributes);
    header.Whole(static_cast<uint32_t>(variable.type));
    header.Whole(static_cast<uint32_t>(Padded(PartOf(contents, variable))));
    header.Offset(layout.begins[i]);
  }
  return std::move(header.Text());
}

// Puts the variables of one kind one behind the other, from `place` on; returns the place behind them.
uint64_t Place(const CdfContents& contents, bool recorded, uint64_t place, CdfLayout& layout) {
  for (size_t i = 0; i < contents.variables.size(); ++i) {
    if (IsRecorded(contents, contents.variables[i]) != recorded) continue;
    layout.begins[i] = place;
    place += Padded(PartOf(contents, contents.variables[i]));
  }
  return place;
}

}  // namespace

uint32_t SizeOf(CdfType type) {
  switch (type) {
    case CdfType::text:
      return 1;
    case CdfType::int16:
      return 2;
    case CdfType::int32:
    case CdfType::float32:
      return 4;
    case CdfType::float64:
      return 8;
  }
  return 0;
}

uint32_t StoreCdfValue(uint8_t* bytes, CdfType type, double value) {
  if (!std::isfinite(value)) value = CdfFill(type);
  switch (type) {
    case CdfType::text:
      break;
    case CdfType::int16:
      StoreBe(bytes, Nearest<int16_t>(value));
      break;
    case CdfType::int32:
      StoreBe(bytes, Nearest<int32_t>(value));
      break;
    case CdfType::float32:
      StoreBe(bytes, std::bit_cast<uint32_t>(static_cast<float>(value)));
      break;
    case CdfType::float64:
      StoreBe(bytes, std::bit_cast<uint64_t>(value));
      break;
  }
  return SizeOf(type);
}

double CdfFill(CdfType type) {
  switch (type) {
    case CdfType::text:
      return 0;
    case CdfType::int16:
      return -32'767;
    case CdfType::int32:
      return -2'147'483'647;
    case CdfType::float32:
    case CdfType::float64:
      return 9.9692099683868690e+36;
  }
  return 0;
}

CdfAttribute TextAttribute(std::string_view name, std::string_view text) {
  std::string clean(text);
  std::replace_if(
      clean.begin(), clean.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '?');
  return {std::string(name), CdfType::text, static_cast<uint32_t>(clean.size()), clean};
}

CdfAttribute NumberAttribute(std::string_view name, CdfType type, double value) {
  uint8_t bytes[8];
  const uint32_t size = StoreCdfValue(bytes, type, value);
  return {std::string(name), type, 1, {reinterpret_cast<const char*>(bytes), size}};
}

bool LayOutCdf(const CdfContents& contents, CdfLayout& layout, std::string& error) {
  for (const CdfVariable& variable : contents.variables) {
    if (PartOf(contents, variable) <= kMostPart) continue;
    error = variable.name + " is more in one record than NetCDF with 64-bit offsets can tell";
    return false;
  }
  if (contents.records > kMostRecords) {
    error = std::to_string(contents.records) + " records are more than NetCDF with 64-bit offsets can tell";
    return false;
  }
  layout.begins.assign(contents.variables.size(), 0);
  const uint64_t begin = HeaderOf(contents, layout).size();
  const uint64_t records = Place(contents, false, begin, layout);
  layout.recordSize = Place(contents, true, records, layout) - records;
  const auto recorded = [&](const CdfVariable& each) { return IsRecorded(contents, each); };
  if (std::count_if(contents.variables.begin(), contents.variables.end(), recorded) == 1)
    layout.recordSize =
        PartOf(contents, *std::find_if(contents.variables.begin(), contents.variables.end(), recorded));
  layout.header = HeaderOf(contents, layout);
  return true;
}

}  // namespace tw::echotool
