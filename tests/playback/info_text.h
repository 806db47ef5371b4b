// The settings line that a recording begins with.
#pragma once

#include <string>

namespace tw::test {

// At 1,500 m/s unless said otherwise.
inline std::string InfoText(int32_t family, int32_t outputMode, const std::string& soundSpeed = "1500.0") {
  return "INFO:" + std::to_string(family) + ",450000,30000,0.1,20,0.0,0,15,0.14,0,150,20,0," + soundSpeed +
         "," + std::to_string(outputMode) + "\r\n";
}

}  // namespace tw::test
