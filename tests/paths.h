// Where the build has put the programs under test, and where the sample files stand.
#pragma once

#include <string>

namespace hyetex::test {

std::string CommandLineProgram();
std::string TabletProgram();
std::string TraceProgram();
std::string DesktopProgram();
/// The folder that the project stands in.
std::string Sources();
std::string PictureProgram();
/// A file of the demo folder, such as "charts/siphon-chart.csv".
std::string Demo(const std::string& file);
/// The folder of whole sessions, one folder each.
std::string Cases();

}  // namespace hyetex::test
