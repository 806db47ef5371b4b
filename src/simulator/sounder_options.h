// How a virtual echosounder is built and what is wrong with it. Values outside the ranges given are brought
// to the nearest bound when the device is made.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/instrument.h"

namespace tw::sim {

// The generations of the device; each has its own keywords and streams.
enum class DeviceFamily : uint8_t { third = 0, first = 1, second = 2 };

enum class InterfaceWord : uint8_t { rs232, rs485, usb };

enum class PromptStyle : uint8_t {
  whole,          // CR LF >
  missing,        // nothing
  split,          // CR LF, a pause, >
  doubledReturn,  // CR CR LF >
};

enum class BlockFault : uint8_t {
  none,
  noEndMark,   // the two empty lines are left out
  missingKey,  // the line with one key is left out
  oversize,    // the samples go on until the block is longer than 256,000 bytes
};

// Faults of single messages of a stream, at places drawn by chance.
enum class StreamFault : uint8_t {
  none,
  flippedBytes,  // one to eight bytes in a row are others
  lostBytes,     // one to eight bytes in a row are missing
  doubledBytes,  // one to eight bytes in a row come twice
  truncated,     // the message breaks off; at worst nothing of it comes
  absurdCount,   // a length, count or code is one that cannot be
  notANumber,    // a measured value is not a number, or infinite
  timeJump,      // the device's clock shows another time
  otherMode,     // the message is that of another mode
};

// Where the binary modes deviate from the device's own block, they send the frames of recordings.
enum class BinaryForm : uint8_t { block, frame, dualFrame };

// What the first family's firmware knows of smoothing.
enum class Smoothing : uint8_t { absent, off, on };

inline constexpr int32_t kInformationBytes = 38;  // of the third family's block

struct SounderFaults {
  InstrumentFaults instrument = {};
  int32_t replyDelay_ms = 0;  // 0 to 60,000, before each reply at the prompt
  std::string late = {};      // a keyword that is answered late when it comes for the first time,
  int32_t late_ms = 2'300;    // by 0 to 60,000
  PromptStyle prompt = PromptStyle::whole;
  bool splitEndMark = false;   // "Data", a pause, "End"
  int32_t splitPause_ms = 50;  // 0 to 60,000, of a split prompt or end mark
  BlockFault block = BlockFault::none;
  int32_t blockEvery = 1;                 // 1 to 1,000,000: each how-manieth block has the block fault
  std::string missingKey = {};            // as it stands in the block: "#Altitude"
  std::vector<StreamFault> stream = {};   // those that can hit a message, one of them at a time
  double streamRate = 0.01;               // 0 to 1, how often that happens
  int32_t garbageBytes = 0;               // 0 to 65,536, behind each block
  bool deaf = false;                      // streams on, whatever it is told
  bool chatter = false;                   // sends a line of noise every 100 ms while it is at the prompt
  std::vector<std::string> refused = {};  // keywords that are answered with "Error"
  std::vector<std::string> mute = {};     // keywords that get no answer at all
  std::string lacksFrom = {};             // an older firmware: it cannot tell the value of this keyword and
                                          // of those that came after it; set they can be all the same
  bool lacksSilently = false;             // asked for them, it gives no answer instead of "Error"
  int32_t informationBytes = kInformationBytes;  // 0 to 1,000: the third family's block is cut, or padded
};

struct SounderOptions {
  uint64_t seed = 1;
  DeviceFamily family = DeviceFamily::first;
  std::string identity = {};  // at most 95 characters, 1 to 9 digits for the second and third family; else
                              // VIRTUAL-0001 or 42
  int32_t firmware_hundredths = 210;  // 1 to 9,999
  InterfaceWord interfaceWord = InterfaceWord::rs232;
  int32_t baud = 115'200;                 // 300 to 12,000,000
  int64_t delivery_us = 0;                // 0: byte by byte; else bytes arrive in bursts at its multiples
  int32_t outputMode = 2;                 // one that the family can stream, else 2
  double pingsPerSecond = 0.0;            // 0: automatic, 10 a second; else 1 to 50
  int32_t sampleCount = 0;                // 0: follows range and sampling frequency; else 100 to 12,000
  int32_t samplingFrequency_hz = 25'000;  // 1,000 to 100,000
  int32_t range_mm = 30'000;              // 1,000 to 200,000, both channels
  double depth_m = 12.0;                  // 0.5 to 200, of the sea bed
  double relief_m = 2.5;                  // 0 to half the depth
  bool lowFrequency = false;              // first family: the channel in use at power-on
  int32_t frequency_hz = 450'000;         // second and third family: of the one channel, 10,000 to 1,000,000
  bool dual = false;                      // first family: both channels at power-on
  bool refusesDualOld = false;            // first family: no "Sonarmite OLD", output 9, for both channels
  Smoothing smoothing = Smoothing::off;   // first family
  bool automatic = false;                 // first and second family, at power-on; its preset is in force then
  int32_t preset = 255;                   // 0 to 255; 255: none
  bool speedAtOnce = false;               // a new line speed is in force behind the prompt of its own answer,
                                          // not behind that of the next reset
  bool reportsFrequency = true;           // first family: lines and epochs tell the transmit frequency
  BinaryForm binaryForm = BinaryForm::block;
  bool streaming = false;                // pings at power-on instead of standing at its prompt
  uint32_t startTime_s = 1'700'000'000;  // the device's clock at time 0, seconds since 1970
  size_t logSize = 16'384;               // entries kept of each log
  SounderFaults faults = {};
};

[[nodiscard]] SounderOptions WithinBounds(SounderOptions options);

}  // namespace tw::sim
