// The selectors of serial ports and speeds in the main window. GUI thread.
#pragma once

#include <cstdint>
#include <span>

#include "app/run/run_choices.h"
#include "app/settings/persistent_settings.h"
#include "app/state/app_state.h"

namespace tw {

inline constexpr wchar_t kNoPortText[] = L"N/A";

// Refill a port selector from a fresh enumeration, in the order of the port numbers, and keep its selection;
// when the selected port has gone, the first item is selected. The GPS selector starts with "N/A".
void FillDevicePortCombo(AppState& state);
void FillGpsPortCombo(AppState& state);

// Both, when the ports have changed: a selector that is refilled flickers. Not while a list is dropped down.
// During a run that waits for its ports they are selected again once they are listed.
void RefreshPortCombos(AppState& state);

// Selects stored ports in selectors that are already filled; the first item where a port is not listed.
void SelectStoredPorts(AppState& state, const CommunicationSettings& stored);

// Fills both speed selectors and selects the stored speeds; the first item where a speed is not listed.
void FillSpeedCombos(AppState& state, const CommunicationSettings& stored);

// The device speeds on offer, in bit/s.
[[nodiscard]] std::span<const int32_t> DeviceSpeeds();

// Selects a speed in the device's selector; one that it does not hold leaves the selection.
void SelectDeviceSpeed(AppState& state, int32_t speed_bps);

// Selects a port in the device's selector; one that the system does not list any more leaves the selection.
void SelectDevicePort(AppState& state, const wchar_t* name);

// The ports of the last enumeration, in ascending order.
[[nodiscard]] std::span<const PortEntry> KnownPorts(const AppState& state);

// Selects the stored ports in selectors that are already filled, if the system lists the device port, and the
// GPS port unless none is stored. False, and nothing is selected, while one is missing.
[[nodiscard]] bool SelectStoredPortsThatAreThere(AppState& state);

// Keeps which ports are there when a run starts; and names those that have come since, in ascending order:
// ", new: COM7 COM8", cut at the text's end; empty where none have.
void KeepPortsAtStart(AppState& state);
void FormatNewPorts(const AppState& state, std::span<char> text);

// Reads the four selectors. A text that holds no number stands for the port or speed of the last run.
void ReadPortChoices(AppState& state, PortChoice& device, PortChoice& receiver);

}  // namespace tw
