// What the operator can switch on beyond the device's own settings: everything off, the program does what it
// always did. GUI thread; a worker gets a copy of what it needs with its start.
#pragma once

#include <cstdint>

namespace tw {

// Four decimal numbers with points between them.
struct OptionAddress {
  wchar_t text[16];
};

// Switches are 0 or 1.
struct Options {
  // Link
  int32_t keepRunGoing;  // a lost link is tried again, the run and its files go on
  int32_t silence_s;     // without data for so long the link is lost
  int32_t beepWhenLost;
  int32_t receiverSilence_s;   // without a byte for so long the receiver is silent
  int32_t dropSilentPosition;  // no position from a silent receiver
  int32_t startByItself;       // at program start, once the stored ports are there
  int32_t giveUpWriting;       // a write that the line does not take in 10 s fails

  // Recording
  int32_t splitByTime;
  int32_t splitPeriod_min;  // at full multiples of the clock
  int32_t splitBySize;
  int32_t splitSize_MB;
  int32_t neverReplace;   // a name that exists waits for the next second
  int32_t flushPeriod_s;  // to the disk itself; 0 leaves it to the system
  int32_t recordAgain;    // in a new file, once a full disk has space again
  int32_t beepWhenEnded;  // by a full disk
  int32_t eventLog;

  // Outputs: depth for other programs
  int32_t sendSerial;
  int32_t serialPort;  // COM number
  int32_t serialSpeed_bps;
  int32_t sendUdp;
  OptionAddress udpAddress;
  int32_t udpPort;
  int32_t sendTcp;
  OptionAddress tcpAddress;
  int32_t tcpPort;
  int32_t sendDbt;
  int32_t sendDpt;
  int32_t transducerOffset_cm;  // above 0 from the water line, below 0 from the keel
  int32_t sendMtw;
  int32_t sendXdr;
  int32_t sendGga;
  int32_t sendRmc;
  int32_t outputRate;  // pings a second, at most
  int32_t sendLowChannel;

  // Display
  int32_t noDataOverEchogram;
};

}  // namespace tw
