// What the driver manager knows without a connection: data sources and drivers, in its own order.
#pragma once

#include <string>
#include <vector>

namespace hyetex {

struct NameAndDriver {
  std::string Name, Driver;
};

/// The data sources of the machine and its user; none where the driver manager cannot be asked.
std::vector<NameAndDriver> RegisteredDataSources();
std::vector<std::string> RegisteredDrivers();

}  // namespace hyetex
