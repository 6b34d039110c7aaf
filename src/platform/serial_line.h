// The machine's serial ports by number, and how a line is set.
#pragma once

namespace hyetex {

/// The ports that have a number.
inline constexpr int FirstSerialPort = 1, LastSerialPort = 4;
/// Those on which a tablet is looked for.
inline constexpr int FirstSearchedPort = FirstSerialPort, LastSearchedPort = 2;

enum class LineParity { None, Even, Odd };

struct LineSettings {
  int Baud = 9600;
  LineParity Parity = LineParity::None;
  int DataBits = 8;  ///< 7 or 8
  int StopBits = 1;  ///< 1 or 2
};

}  // namespace hyetex
