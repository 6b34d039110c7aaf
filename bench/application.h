// The toolkit's application for benchmarks that draw.
#pragma once

#include <QApplication>

namespace hyetex::bench {

/// Made by each benchmark for itself: one that lived to the end of the program would outlive what the toolkit
/// keeps of its devices.
class Application {
 private:
  char words_[3][10] = {"bench", "-platform", "offscreen"};
  char* argv_[4] = {words_[0], words_[1], words_[2], nullptr};
  int argc_ = 3;
  QApplication application_{argc_, argv_};
};

}  // namespace hyetex::bench
