// Which device a numbered serial port is: what its setting names, else the machine's Nth serial device in the
// order of their names.
#pragma once

#include <string>
#include <vector>

#include "core/settings.h"
#include "platform/serial_line.h"

namespace hyetex {

/// The machine's serial devices in the order of their names, numbers by their value.
std::vector<std::string> SerialDevices();
/// The device of a port; empty when there is none.
std::string SerialDevice(const Settings& settings, int port);

}  // namespace hyetex
