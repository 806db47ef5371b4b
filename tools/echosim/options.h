// The command line of echosim: one table of options, from which both the parser and the help text are made.
#pragma once

#include <span>
#include <string>

#include "simulator/virtual_echosounder.h"
#include "simulator/virtual_gps.h"

namespace tw::echosim {

struct ToolOptions {
  // Bytes come from a USB adapter once a millisecond, so that the tool does not wake for each of them.
  ToolOptions() { sounder.delivery_us = gps.delivery_us = 1'000; }

  sim::SounderOptions sounder;
  sim::GpsOptions gps;
  std::string device;       // link or port of the echosounder; empty: none
  std::string gpsDevice;    // of the GPS receiver
  std::string logFile;      // one line per ping
  std::string commandFile;  // what the echosounder received
  std::string lineFile;     // how the program set up the echosounder's line
  bool strictLine = false;  // ends at different speeds do not understand each other
  double seconds = 0.0;     // ends by itself after so long; 0: never
  bool help = false;
};

// Reads the arguments (the program's own name left out), in any order, into `options`, which holds the
// defaults. False on the first argument that is unknown, lacks its value or has a bad one, or when one does
// not suit the device's family; `error` then says which, and `options` holds what was read before.
[[nodiscard]] bool ParseOptions(std::span<const char* const> arguments, ToolOptions& options,
                                std::string& error);

[[nodiscard]] std::string HelpText();

}  // namespace tw::echosim
