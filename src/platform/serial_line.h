// Serial lines, used synchronously: every wait is a read that returns with nothing after the line's
// time-out. One thread uses a line at a time; any thread may close it, which makes the other thread's next
// call fail.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/handle.h"

namespace tw {

// Opens the line `name` ("\\.\COM7") for this program alone, sets the line as the mode string says
// ("baud=115200 parity=N data=8 stop=1", with "octs=on rts=on" for hardware flow control), sets the
// time-outs (a read returns what waits; when nothing waits it lasts until the first byte, at most
// `readConstant_ms`; writes never time out), asks for a large input queue and empties both queues, in this
// order. Only a failing open counts: Handle::invalid, and LastSystemError() tells why. The other calls'
// results are ignored.
[[nodiscard]] Handle OpenSerialLine(const wchar_t* name, const char* mode, uint32_t readConstant_ms);

// Reads at most `size` bytes. True with `got` = 0 when nothing came within the time-out; false when the line
// failed (then `got` is 0). With more than one byte asked for it may wait longer than one byte needs, so ask
// for BytesWaiting() bytes, or for one.
[[nodiscard]] bool ReadSerialLine(Handle line, void* bytes, uint32_t size, uint32_t& got);

// Writes all `size` bytes. False when the line failed or took fewer.
[[nodiscard]] bool WriteSerialLine(Handle line, const void* bytes, uint32_t size);

// Writes what the line takes within the time; `written` tells how much, also on failure. True as long as the
// line works, although it may have taken less than all: one that nobody empties. Other calls' writes go on
// without a limit.
[[nodiscard]] bool WriteSerialLineWithin(Handle line, const void* bytes, uint32_t size, uint32_t limit_ms,
                                         uint32_t& written);

// Bytes that have arrived and wait to be read; 0 when that cannot be told. `overruns`, when given, is
// increased by one for each reported loss of input.
[[nodiscard]] uint32_t BytesWaiting(Handle line, uint32_t* overruns = nullptr);

// False when there is nothing behind the line any more, though it is open and its reads may go on to end with
// nothing: of an adapter that was pulled out some drivers tell no more than that. To be asked of an idle
// line.
[[nodiscard]] bool IsLineThere(Handle line);

// Closes the line; Handle::null and Handle::invalid are ignored.
void CloseSerialLine(Handle line);

// The names of the serial lines that the system knows ("COM7"), in its own order: the text values of
// "HARDWARE\DEVICEMAP\SERIALCOMM". Calls `take` with each; a name is cut at 255 characters. False when the
// list could not be read, and LastSystemError() tells why.
[[nodiscard]] bool ListSerialLines(void (*take)(void* context, const wchar_t* name), void* context);

}  // namespace tw
