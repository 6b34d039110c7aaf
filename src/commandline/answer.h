// What a program answers to its words, in the one way of all our programs: results on standard output,
// messages on standard error in one line that the program's name begins.
#pragma once

#include <string>
#include <string_view>

namespace hyetex::commandline {

/// A program's exit status: it is done, it could not be done, the words are off, it is done and a person has
/// to look at some of it.
enum Exit : int { Done = 0, Failed = 1, WordsOff = 2, ToReview = 3 };

/// What the words alone have led to: help or the version (Done), or what is off with them (WordsOff).
struct Answer {
  Exit Status = Done;
  std::string Text;
};

/// Says one line on standard error.
void Say(std::string_view program, std::string_view line);
/// Says why something could not be done.
Exit Fail(std::string_view program, std::string_view why);
/// Prints the answer where it belongs; its status.
Exit Give(std::string_view program, const Answer& answer);

}  // namespace hyetex::commandline
