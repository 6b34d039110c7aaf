#include "commandline/answer.h"

#include <cstdio>

#include "core/text.h"

namespace hyetex::commandline {

void Say(std::string_view program, std::string_view line) {
  std::fprintf(stderr, "%.*s: %s\n", static_cast<int>(program.size()), program.data(),
               ShownText(line).c_str());
}

Exit Fail(std::string_view program, std::string_view why) {
  Say(program, why);
  return Failed;
}

Exit Give(std::string_view program, const Answer& answer) {
  if (answer.Status == Done)
    std::fwrite(answer.Text.data(), 1, answer.Text.size(), stdout);
  else
    Say(program, answer.Text);
  return answer.Status;
}

}  // namespace hyetex::commandline
