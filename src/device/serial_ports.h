// The serial ports of the device and of the GPS receiver: listing, choosing, opening. GUI thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "app/state/port_entry.h"
#include "device/device_link.h"
#include "platform/handle.h"

namespace tw {

// Opens a port by its name ("COM7") at the speed, 8 data bits, no parity, one stop bit; a read waits 100 ms
// for its first byte. Handle::invalid on failure, and LastSystemError() tells why.
[[nodiscard]] Handle OpenDevicePort(const wchar_t* name, int32_t baud);

// The same at 3,000,000 bit/s with hardware flow control; a read waits 200 ms.
[[nodiscard]] Handle OpenFastDevicePort(const wchar_t* name);

// True as soon as one byte has been read (it is gone then); false when none came within 4,000 ms or the port
// failed.
[[nodiscard]] bool WaitForAnyByte(DeviceLink& link);

// The number behind "COM" in a port's name, as the C library reads a wide integer: no digits are 0, and what
// does not fit is the nearest bound. 0 for other names.
[[nodiscard]] uint32_t PortNumberOf(std::wstring_view name);

// Empties the list: each entry up to the first one whose number is 0.
void ClearPortList(std::span<PortEntry> entries);

// Writes the ports that the system knows into the cleared list, in the system's order; a name that does not
// begin with "COM" is skipped, and the enumeration stops at the list's end. kept: a name without a number
// after "COM" has number 0, which ends the list for its readers. False when the system's list cannot be read.
[[nodiscard]] bool EnumerateSerialPorts(std::span<PortEntry> entries);

// How many entries the list has.
[[nodiscard]] size_t CountPorts(std::span<const PortEntry> entries);

// By number, ascending.
void SortPorts(std::span<PortEntry> entries);

// The index of the entry whose "COM%d" is exactly this text, or -1.
[[nodiscard]] int FindPort(std::span<const PortEntry> entries, std::wstring_view text);

}  // namespace tw
