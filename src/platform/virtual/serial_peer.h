// What stands at the other end of a test's serial lines: an object in this process, or a terminal.
// Set up while no line of that name is open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/virtual/virtual_clock.h"

namespace tw {

// A device in this process, on the virtual clock or on the real one. Times are those of the line's clock, in
// microseconds: since the start of the virtual clock, or since some moment. Calls come from the threads that
// use the line, one at a time.
class SerialPeer {
 public:
  virtual ~SerialPeer() = default;

  // The program opens the line with this mode string ("baud=115200 parity=N data=8 stop=1"). False: there is
  // no such line. What waits after it is thrown away, as it is on opening a port.
  virtual bool Open(const char* mode) {
    (void)mode;
    return true;
  }
  virtual void Close() {}

  // The program has written these bytes.
  virtual void Receive(std::span<const uint8_t> bytes, int64_t now_us) = 0;

  // Takes bytes that have left the device by now; returns how many.
  virtual size_t Send(std::span<uint8_t> out, int64_t now_us) = 0;

  // The earliest time at which Send would give a byte: not after `now_us` when one waits; kNever when none
  // comes unless the program writes.
  virtual int64_t NextSend_us(int64_t now_us) = 0;

  // How many bytes Send could give now.
  virtual size_t Waiting(int64_t now_us) = 0;

  // True when the device is gone: each call on the line then fails.
  virtual bool HungUp(int64_t now_us) {
    (void)now_us;
    return false;
  }
};

// Puts the device behind a line's name ("\\.\COM7"). The caller keeps it alive until the line is closed and
// DetachSerialLines() has run.
void AttachPeer(const wchar_t* name, SerialPeer* peer);

// Puts a terminal ("/dev/pts/4") behind a line's name. A name that was not attached and starts with "/" is
// taken for a terminal's path itself.
void AttachTerminal(const wchar_t* name, const char* path);

// Forgets what was attached, and the list below.
void DetachSerialLines();

// What ListSerialLines() reports, in this order.
void SetSerialLineList(std::vector<std::wstring> names);

// Makes a read that waits on the line look again: for a device that has got something to send, or has hung
// up, for a reason other than time and what the program wrote.
void WakeSerialLine(const wchar_t* name);

}  // namespace tw
