#include "soak/child_program.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <utility>

namespace hyetex::test {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto Patience = std::chrono::seconds(60);

[[noreturn]] void Become(std::vector<std::string>& words) {
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  ::execv(argv[0], argv.data());
  ::_exit(127);
}

void Limit(pid_t process, long bytes) {
  rlimit limit{};
  ::prlimit(process, RLIMIT_FSIZE, nullptr, &limit);
  limit.rlim_cur = bytes < 0 ? limit.rlim_max : static_cast<rlim_t>(bytes);
  ::prlimit(process, RLIMIT_FSIZE, &limit, nullptr);
}

bool HasBytes(int fd, int milliseconds) {
  pollfd waiting{fd, POLLIN, 0};
  return ::poll(&waiting, 1, milliseconds) > 0;
}

}  // namespace

Held HeldBy(pid_t process) {
  Held held;
  const std::string folder = "/proc/" + std::to_string(process);
  long size = 0, resident = 0;
  std::ifstream(folder + "/statm") >> size >> resident;
  held.Kilobytes = resident * (::sysconf(_SC_PAGESIZE) / 1024);
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder + "/fd", error)) {
    (void)entry;
    ++held.Handles;
  }
  return held;
}

Ended RunCommand(std::vector<std::string> words, const Disturbance& disturbance) {
  int out[2] = {};
  if (::pipe2(out, O_CLOEXEC) != 0) return {};
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(::open("/dev/null", O_RDONLY), 0);
    ::dup2(out[1], 1);
    ::dup2(out[1], 2);
    if (disturbance.FullAfterBytes >= 0) {
      ::signal(SIGXFSZ, SIG_IGN);
      Limit(0, disturbance.FullAfterBytes);
    }
    Become(words);
  }
  ::close(out[1]);
  Ended ended;
  const auto start = Clock::now();
  const auto patience =
      disturbance.KillAfterMs < 0 ? Patience * 3 : std::chrono::milliseconds(disturbance.KillAfterMs);
  char bytes[4096];
  for (bool killed = false;;) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(start + patience - Clock::now()).count();
    if (!killed && (left <= 0 || !HasBytes(out[0], static_cast<int>(left)))) {
      ::kill(child, SIGKILL);
      killed = true;
    }
    const ssize_t count = ::read(out[0], bytes, sizeof bytes);
    if (count <= 0) break;
    ended.Told.append(bytes, static_cast<std::size_t>(count));
  }
  ::close(out[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  if (WIFEXITED(status)) ended.Status = WEXITSTATUS(status);
  return ended;
}

void DeskProcess::Start(std::vector<std::string> words) {
  int in[2] = {}, out[2] = {};
  if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0) return;
  process_ = ::fork();
  if (process_ == 0) {
    ::dup2(in[0], 0);
    ::dup2(out[1], 1);
    Become(words);
  }
  ::close(in[0]);
  ::close(out[1]);
  orders_ = in[1];
  answers_ = out[0];
}

void DeskProcess::Forget() {
  for (int* fd : {&orders_, &answers_})
    if (*fd >= 0) ::close(std::exchange(*fd, -1));
  process_ = -1;
  heard_.clear();
}

void DeskProcess::Kill() {
  if (process_ <= 0) return;
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
  Forget();
}

bool DeskProcess::Leave() {
  if (process_ <= 0) return true;
  ::close(std::exchange(orders_, -1));
  char bytes[4096];
  const auto until = Clock::now() + Patience;
  while (Clock::now() < until && HasBytes(answers_, 1000) && ::read(answers_, bytes, sizeof bytes) > 0)
    continue;
  int status = 0;
  if (::waitpid(process_, &status, Clock::now() < until ? 0 : WNOHANG) != process_) return Kill(), false;
  Forget();
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string DeskProcess::Ask(const std::string& order, const std::function<void()>& meanwhile) {
  const std::string line = order + "\n";
  if (process_ <= 0 || ::write(orders_, line.data(), line.size()) != std::ssize(line)) return {};
  for (const auto until = Clock::now() + Patience; Clock::now() < until;) {
    for (std::size_t end = 0; (end = heard_.find('\n')) != std::string::npos;) {
      std::string answer = heard_.substr(0, end);
      heard_.erase(0, end + 1);
      if (answer.starts_with("qt "))
        std::fprintf(stderr, "%s\n", answer.c_str());
      else if (answer.starts_with("box "))
        Boxes.push_back(answer.substr(4));
      else
        return answer;
    }
    meanwhile();
    if (!HasBytes(answers_, 5)) continue;
    char bytes[4096];
    const ssize_t count = ::read(answers_, bytes, sizeof bytes);
    if (count <= 0) return {};
    heard_.append(bytes, static_cast<std::size_t>(count));
  }
  return {};
}

void DeskProcess::FillDisk(long bytes) const { Limit(process_, bytes); }

}  // namespace hyetex::test
