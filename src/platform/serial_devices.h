// Which device a numbered serial port is. Tablets are looked for on ports 1 and 2; port N is what the setting
// "SerialPort<N>" names, else the machine's Nth serial device in the order of their names.
#pragma once

#include <string>

namespace hyetex {

inline constexpr int FirstSerialPort = 1, LastSerialPort = 4;

/// The device of a port; empty when there is none.
std::string SerialDevice(const std::string& programFolder, int port);

}  // namespace hyetex
