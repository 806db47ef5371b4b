// Reading the whole parameter set of a device, in the forms of the three device families. GUI thread, while
// no worker owns the port. The caller gives a copy of its settings and takes it over only on success.
#pragma once

#include "app/state/device_settings.h"
#include "device/command_link.h"

namespace tw {

// First family: all queries in a fixed order. `invalid` when one that every device knows fails:
// "##maxrangel", "#rangeh", "#swversion", "#getfreq" or "#rangel"; `silent` then tells whether it failed for
// want of a reply, which may yet come. A failure of any other but "#auto" and "#smooth" ends the reading with
// success, since older firmware lacks the later commands; one of these whose reply comes late is repeated.
// Sets the preset, smoothing, high-channel and firmware values of the link's facts.
[[nodiscard]] LinkResult ReadAllSettings(DeviceLink& link, DeviceSettings& settings, bool& silent);

// Second family, an older command set: "#iden" as a number and "#range" must succeed.
[[nodiscard]] LinkResult ReadSecondFamilySettings(DeviceLink& link, DeviceSettings& settings, bool& silent);

// Third family: the B64INFO block of the "#info" answer and, 2 s later, its "Tx Frequency" line. noPrompt
// when the device is silent for 2 s or takes longer than 10 s for the block; `silent` then tells whether
// there was no prompt either, so that the answer may yet come. A text of 256 characters or more ends the
// program.
[[nodiscard]] LinkResult ReadSettingsFromB64Info(DeviceLink& link, DeviceSettings& settings, bool& silent);

// The same, no more than the identifier and for any device: a block that is too long, or not whole, is none.
// Any thread that owns the link.
[[nodiscard]] bool ReadIdentifierFromB64Info(DeviceLink& link, int32_t& identifier);

// Takes the text between "B64INFO[" and "]". Only fields whose bytes are all there are set. Pure.
void DecodeB64Info(std::string_view text, DeviceSettings& settings);

// Reads the frequency out of a line "Tx Frequency     %7d Hz  ". Pure.
[[nodiscard]] bool ParseTxFrequency(std::string_view line, int32_t& frequency_hz);

}  // namespace tw
