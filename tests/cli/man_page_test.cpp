// The manual pages of the package are made by the programs themselves.
#include <gmock/gmock.h>

#include "cli/run.h"

namespace hyetex::test {
namespace {

using ::testing::HasSubstr;

TEST(ManPage, NamesEveryCommandAndItsOptions) {
  const Ran ran = RunCli({"--man"});
  EXPECT_EQ(ran.Status, 0) << ran.Error;
  for (const char* text : {".TH HYETEX-CLI 1 ", "\nhyetex-cli \\- ", "\n.SS populate\n",
                           "\n.SS create\\-tables\n", "\\fB\\-\\-gmt\\fR", "\n.SH EXIT STATUS\n"})
    EXPECT_THAT(ran.Out, HasSubstr(text));
  EXPECT_EQ(RunCli({"--man", "populate"}).Status, 2);  // a word like any other that there is not
}

}  // namespace
}  // namespace hyetex::test
