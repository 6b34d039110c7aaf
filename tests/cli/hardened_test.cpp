// What the programs that are shipped have been given against bytes that reach where they should not.
#include <cstdio>

#include "paths.h"
#include "support.h"

namespace hyetex::test {
namespace {

std::string Told(const std::string& command) {
  std::string told;
  std::FILE* output = ::popen(command.c_str(), "r");
  for (int c = 0; output != nullptr && (c = std::fgetc(output)) != EOF;) told += static_cast<char>(c);
  if (output != nullptr) ::pclose(output);
  return told;
}

TEST(Hardened, AreTheProgramsOfAReleaseBuild) {
#ifndef HYETEX_HARDENED
  GTEST_SKIP() << "only a release build without sanitizers is";
#endif
  for (const std::string& program :
       {CommandLineProgram(), TraceProgram(), TabletProgram(), DesktopProgram()}) {
    if (!std::filesystem::exists(program)) continue;  // the preset without windows
    const std::string told = Told("LC_ALL=C readelf -hldsW '" + program + "'");
    for (const char* part :
         {"Position-Independent Executable", "GNU_RELRO", "BIND_NOW", "__stack_chk_fail", "_chk@"})
      EXPECT_NE(told.find(part), std::string::npos) << program << " lacks " << part;
    EXPECT_EQ(told.find(" RWE "), std::string::npos) << program << " has memory to write and to run";
  }
}

}  // namespace
}  // namespace hyetex::test
