// Which device a numbered serial port is. Tablets are looked for on ports 1 and 2; each port is what its
// setting names, else the machine's Nth serial device in the order of their names.
#pragma once

#include <string>

#include "core/settings.h"

namespace hyetex {

inline constexpr int FirstSerialPort = 1, LastSerialPort = 4;

/// The device of a port; empty when there is none.
std::string SerialDevice(const Settings& settings, int port);

}  // namespace hyetex
