// Strikes at every call by which the commands write, in every way, one at a time, and looks at what is left:
// each part of the folder is wholly old or wholly new, who reports success has done the work, who fails says
// so, and the next run brings the work to its end and leaves nothing lying about.
//
// usage: hyetex_faults [--sample N] [--least N] [--only NAME] [--jobs N]
#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <sstream>
#include <thread>

#include "core/text.h"
#include "faults/folder_state.h"
#include "faults/scenarios.h"
#include "paths.h"
#include "support.h"

namespace hyetex::test {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

struct Call {
  std::string Name, Path;
};

struct Fault {
  std::size_t At = 0;  ///< the call, from 1
  Call Where;
  std::string Kind;
  /// The run that mends what this one left is struck too, at this call; 0 is at none.
  std::size_t AgainAt = 0;

  bool Kills() const { return Kind.starts_with("kill"); }
  std::string Text() const {
    return Where.Name + " " + std::to_string(At) + " of " + Where.Path + ", " + Kind +
           (AgainAt > 0 ? ", and again at " + std::to_string(AgainAt) : "");
  }
};

Lines KindsFor(const std::string& call) {
  const auto fail = [](int error) { return "fail " + std::to_string(error); };
  Lines kinds{fail(EIO), "fail-on " + std::to_string(EIO), "kill-before", "kill-after"};
  const std::map<std::string, Lines> more{{"open", {fail(EACCES), fail(EMFILE), fail(ENOSPC)}},
                                          {"write",
                                           {fail(ENOSPC), "fail-on " + std::to_string(ENOSPC), fail(EINTR),
                                            "short 0", "short 1", "nothing", "kill-within"}},
                                          {"flush", {fail(ENOSPC)}},
                                          {"rename", {fail(ENOSPC), fail(EACCES)}},
                                          {"remove", {fail(EACCES)}},
                                          {"mkdir", {fail(EACCES), fail(ENOSPC)}},
                                          {"truncate", {fail(ENOSPC)}}};
  if (const auto found = more.find(call); found != more.end())
    kinds.insert(kinds.end(), found->second.begin(), found->second.end());
  return kinds;
}

struct Ran {
  int Status = -1;  ///< -1 when a signal ended it
  int Signal = 0;
  std::string Told;
};

// What the workers have counted together.
struct Totals {
  std::atomic<long> Faults, Killed, Refused, Done, Wrong;
};

class Worker {
 public:
  Worker(Totals& totals, std::string library, std::string base)
      : totals_(totals), library_(std::move(library)), base_(std::move(base)), work_(base_ + "/work") {
    fs::create_directories(base_);
  }

  /// Makes the scenario's folder and runs it once without and once with a count. Whether that went well.
  bool Begin(const Scenario& scenario) {
    scenario_ = &scenario;
    fs::remove_all(work_);
    fs::create_directory(work_);
    scenario.Prepare(work_);
    fs::remove_all(base_ + "/before");
    fs::copy(work_, base_ + "/before", fs::copy_options::recursive);
    before_ = Read();
    fs::remove(base_ + "/log");
    const Ran ran = Run({{"HYETEX_FAULT_LOG", base_ + "/log"}});
    after_ = Read();
    calls_.clear();
    std::istringstream log(ReadFile(base_ + "/log"));
    for (std::string name, path; log >> name && std::getline(log >> std::ws, path);)
      calls_.push_back({name, path});
    if (ran.Status == 0 && !calls_.empty() && !(before_ == after_)) return true;
    Wrong({}, "the command does not work without a fault: " + ran.Told);
    return false;
  }

  std::vector<Fault> Faults() const {
    std::vector<Fault> faults;
    for (std::size_t i = 0; i < calls_.size(); ++i)
      for (const std::string& kind : KindsFor(calls_[i].Name)) {
        faults.push_back({i + 1, calls_[i], kind});
        // A second one early and one late in the run that mends.
        if (kind == "kill-after")
          for (const std::size_t again : {i % 7 + 1, i % calls_.size() + 1})
            faults.push_back({i + 1, calls_[i], kind, again});
      }
    return faults;
  }

  void Check(const Fault& fault) {
    ++totals_.Faults;
    fs::remove_all(work_);
    fs::copy(base_ + "/before", work_, fs::copy_options::recursive);
    Struck(fault, fault.At);
    if (fault.AgainAt > 0) Struck(fault, fault.AgainAt);

    // The run that mends.
    const FolderState left = Read();
    const Ran ran = Run({});
    const FolderState mended = Read();
    if (!mended.Temporaries.empty()) Wrong(fault, "the next run leaves " + mended.Temporaries.front());
    const bool refuses = scenario_->Refuses && ran.Status == 1;
    if (ran.Status != 0 && !refuses) Wrong(fault, "the next run fails: " + ran.Told);
    if (refuses && Grown(left, fault, {}) && mended == left) return;
    for (const std::string& name : Differences(mended, after_))
      Wrong(fault, "after the next run " + name + " differs");
  }

  std::size_t CallCount() const { return calls_.size(); }

 private:
  void Struck(const Fault& fault, std::size_t at) {
    const Ran ran = Run({{"HYETEX_FAULT_AT", std::to_string(at)}, {"HYETEX_FAULT_KIND", fault.Kind}});
    const FolderState left = Read();
    for (const std::string& name : Differences(left, after_))
      if (!SameIn(left, before_, name) && !Grown(left, fault, name)) Wrong(fault, name + " is torn or lost");
    if (ran.Signal == SIGKILL && fault.Kills()) {
      ++totals_.Killed;
      return;
    }
    if (ran.Status == 0) {
      ++totals_.Done;
      for (const std::string& name : Differences(left, after_))
        Wrong(fault, name + " is not done, and success is reported");
    } else if (ran.Status == 1) {
      ++totals_.Refused;
      if (!Names(ran.Told)) Wrong(fault, "the message does not name what failed: " + ran.Told);
    } else {
      Wrong(fault, "ended with " + std::to_string(ran.Status) + ", signal " + std::to_string(ran.Signal) +
                       ": " + ran.Told);
    }
    const bool couldClear = fault.Where.Name != "remove" && !fault.Kind.starts_with("fail-on");
    if (couldClear && !left.Temporaries.empty()) Wrong(fault, "leaves " + left.Temporaries.front());
  }

  static bool SameIn(const FolderState& one, const FolderState& other, const std::string& name) {
    const auto a = one.Parts.find(name), b = other.Parts.find(name);
    if (a == one.Parts.end() || b == other.Parts.end()) return a == one.Parts.end() && b == other.Parts.end();
    return a->second == b->second;
  }
  // Whether the part, or else the file that grows, is the first lines of what it grows to. A kill within a
  // write may leave half of a line, which the reader of such a file passes over.
  bool Grown(const FolderState& state, const Fault& fault, const std::string& name) const {
    if (scenario_->Grows.empty()) return false;
    if (!name.empty() && name != scenario_->Grows) return false;
    const auto part = state.Parts.find(scenario_->Grows);
    if (part == state.Parts.end()) return false;
    const std::string& text = part->second;
    const bool whole = text.empty() || text.ends_with('\n') || fault.Kind == "kill-within";
    return whole && after_.Parts.at(scenario_->Grows).starts_with(text);
  }
  // A file, or the database.
  bool Names(const std::string& told) const {
    return told.find(work_) != std::string::npos || told.find("atabase") != std::string::npos ||
           told.find("[SQLite]") != std::string::npos || told.find(".dat") != std::string::npos;
  }

  FolderState Read() const { return ReadFolder(work_, base_ + "/scratch"); }

  Ran Run(const std::map<std::string, std::string>& environment) const {
    Lines words = scenario_->Command(work_);
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    const std::string told = base_ + "/told";
    const pid_t child = ::fork();
    if (child == 0) {
      ::dup2(::open("/dev/null", O_RDONLY), 0);
      ::dup2(::open(told.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666), 1);
      ::dup2(1, 2);
      ::setenv("LD_PRELOAD", library_.c_str(), 1);
      ::setenv("HYETEX_FAULT_FOLDER", work_.c_str(), 1);
      for (const auto& [name, value] : environment) ::setenv(name.c_str(), value.c_str(), 1);
      ::alarm(30);  // ends a program that hangs
      ::execv(argv[0], argv.data());
      ::_exit(127);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child) return {};
    Ran ran;
    if (WIFEXITED(status)) ran.Status = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) ran.Signal = WTERMSIG(status);
    ran.Told = ReadFile(told);
    return ran;
  }

  void Wrong(const Fault& fault, const std::string& what) const {
    ++totals_.Wrong;
    std::string line = scenario_->Name + ": " + fault.Text() + ": " + what;
    for (char& c : line)
      if (c == '\n' || c == '\r') c = ' ';
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
  }

  Totals& totals_;
  const std::string library_, base_, work_;
  const Scenario* scenario_ = nullptr;
  FolderState before_, after_;
  std::vector<Call> calls_;
};

struct Order {
  std::size_t Sample = 0;  ///< how many faults, spread over all; 0 is all
  long Least = 1;          ///< fewer faults are a failure
  std::string Only;
  std::size_t Jobs = std::max(1U, std::thread::hardware_concurrency());
};

int RunAll(const Order& order) {
  const TempFolder folder;
  const std::string library = fs::read_symlink("/proc/self/exe").parent_path() / "libhyetex_faults.so";
  auto* totals =
      new (::mmap(nullptr, sizeof(Totals), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
          Totals{};
  std::vector<pid_t> children;
  for (std::size_t job = 0; job < order.Jobs; ++job) {
    const pid_t child = ::fork();
    if (child > 0) children.push_back(child);
    if (child != 0) continue;
    Worker worker(*totals, library, folder / std::to_string(job));
    const auto scenarios = AllScenarios();
    const std::size_t share = order.Sample / scenarios.size();
    for (const Scenario& scenario : scenarios) {
      if (!order.Only.empty() && scenario.Name != order.Only) continue;
      if (!worker.Begin(scenario)) continue;
      const std::vector<Fault> faults = worker.Faults();
      const std::size_t step = share == 0 ? 1 : std::max<std::size_t>(1, faults.size() / share);
      for (std::size_t i = 0; i * step < faults.size(); ++i)
        if (i % order.Jobs == job) worker.Check(faults[i * step]);
      if (job == 0)
        std::printf("%-24s %5zu calls %6zu faults\n", scenario.Name.c_str(), worker.CallCount(),
                    (faults.size() + step - 1) / step);
      std::fflush(stdout);
    }
    ::_exit(0);
  }
  bool ended = true;
  for (const pid_t child : children) {
    int status = 0;
    ended = ::waitpid(child, &status, 0) == child && status == 0 && ended;
  }
  std::printf("%ld faults: %ld ended the program, %ld were told, %ld did no harm; %ld left something wrong\n",
              totals->Faults.load(), totals->Killed.load(), totals->Refused.load(), totals->Done.load(),
              totals->Wrong.load());
  return ended && totals->Wrong == 0 && totals->Faults >= order.Least ? 0 : 1;
}

}  // namespace
}  // namespace hyetex::test

int main(int argc, char** argv) {
  using namespace hyetex::test;
  if (argc == 4 && std::strcmp(argv[1], "--task") == 0) return DoTask(argv[2], argv[3]);
  Order order;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string option = argv[i], value = argv[i + 1];
    if (option == "--sample") order.Sample = std::strtoul(value.c_str(), nullptr, 10);
    if (option == "--least") order.Least = std::strtol(value.c_str(), nullptr, 10);
    if (option == "--jobs") order.Jobs = std::strtoul(value.c_str(), nullptr, 10);
    if (option == "--only") order.Only = value;
  }
  return RunAll(order);
}
