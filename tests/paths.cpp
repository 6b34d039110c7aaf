#include "paths.h"

namespace hyetex::test {

std::string CommandLineProgram() { return HYETEX_BIN "/hyetex-cli"; }
std::string TabletProgram() { return HYETEX_BIN "/hyetex-tablet"; }
std::string TraceProgram() { return HYETEX_BIN "/hyetex-trace"; }
std::string DesktopProgram() { return HYETEX_BIN "/hyetex"; }
std::string PictureProgram() { return HYETEX_BIN "/hyetex-pictures"; }
std::string Sources() { return HYETEX_SOURCE; }
std::string Demo(const std::string& file) { return HYETEX_SOURCE "/demo/" + file; }
std::string Cases() { return HYETEX_SOURCE "/tests/cases"; }

}  // namespace hyetex::test
