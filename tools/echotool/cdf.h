// The classic netCDF format with 64-bit offsets (CDF-2): a header that tells dimensions, attributes and
// variables, the values of the fixed variables, then one record after the other, each with its part of every
// variable of the record dimension. All values big-endian; names, attributes and each variable's part of a
// record are padded to four bytes, but for the part of one that has the records to itself.
//
//   "CDF" 2, number of records
//   dimensions   10, count, each: name, length (0: the record dimension)
//   attributes   12, count, each: name, type, count, values
//   variables    11, count, each: name, dimensions, attributes, type, size, offset (64 bits)
//
// Pure; any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tw::echotool {

enum class CdfType : uint32_t { text = 2, int16 = 3, int32 = 4, float32 = 5, float64 = 6 };

[[nodiscard]] uint32_t SizeOf(CdfType type);

// Stores a value that is no text, what is not finite as the fill value; what no integer of the type can be is
// the nearest that can. Returns its size.
uint32_t StoreCdfValue(uint8_t* bytes, CdfType type, double value);

// What stands in place of a value that is not there: the format's own default of the type.
[[nodiscard]] double CdfFill(CdfType type);

struct CdfAttribute {
  std::string name;
  CdfType type;
  uint32_t count;
  std::string values;  // as they stand in the file, without padding
};

[[nodiscard]] CdfAttribute TextAttribute(std::string_view name, std::string_view text);
[[nodiscard]] CdfAttribute NumberAttribute(std::string_view name, CdfType type, double value);

struct CdfDimension {
  std::string name;
  uint64_t length;  // 0: the record dimension
};

struct CdfVariable {
  std::string name;
  CdfType type;
  std::vector<uint32_t> dimensions;  // indexes; the record dimension comes first
  std::vector<CdfAttribute> attributes;
};

struct CdfContents {
  uint64_t records;
  std::vector<CdfDimension> dimensions;
  std::vector<CdfAttribute> attributes;
  std::vector<CdfVariable> variables;
};

struct CdfLayout {
  std::string header;
  std::vector<uint64_t> begins;  // of each variable in the file, of those with records in the first one
  uint64_t recordSize;
};

// False, and `error` says why, when the contents are more than the format can tell.
[[nodiscard]] bool LayOutCdf(const CdfContents& contents, CdfLayout& layout, std::string& error);

}  // namespace tw::echotool
