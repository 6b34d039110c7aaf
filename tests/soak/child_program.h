// Programs that the soak starts, ends in the middle and looks into.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace hyetex::test {

/// What a program holds of the machine; read from /proc.
struct Held {
  long Kilobytes = 0;
  int Handles = 0;
};
Held HeldBy(pid_t process);

/// How a command is disturbed.
struct Disturbance {
  int KillAfterMs = -1;      ///< by SIGKILL; less than 0: not
  long FullAfterBytes = -1;  ///< no file may grow beyond this; less than 0: the disk has room
};

struct Ended {
  int Status = -1;   ///< -1: a signal ended it
  std::string Told;  ///< both of its outputs
};

/// Runs a command to its end, or to the end that is made of it.
Ended RunCommand(std::vector<std::string> words, const Disturbance& disturbance = {});

/// A desktop program under orders; see desk_program.h. Ended at the latest when this goes.
class DeskProcess {
 public:
  DeskProcess() = default;
  DeskProcess(const DeskProcess&) = delete;
  DeskProcess& operator=(const DeskProcess&) = delete;
  ~DeskProcess() { Kill(); }

  void Start(std::vector<std::string> words);
  bool Runs() const { return process_ > 0; }
  pid_t Id() const { return process_; }
  void Kill();
  /// Lets the program leave, which takes all it holds back in order. Whether it left without an error.
  bool Leave();
  /// Its answer; `meanwhile` is called while it is waited for. Empty when the program has ended, or says
  /// nothing for a minute.
  std::string Ask(
      const std::string& order, const std::function<void()>& meanwhile = [] {});
  /// From now on no file that it writes may grow beyond this; less than 0: the disk has room again.
  void FillDisk(long bytes) const;

  std::vector<std::string> Boxes;  ///< that it has shown

 private:
  void Forget();

  pid_t process_ = -1;
  int orders_ = -1, answers_ = -1;
  std::string heard_;
};

}  // namespace hyetex::test
