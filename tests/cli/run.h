// Runs the built command line programs and tells all that came of it.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "paths.h"
#include "support.h"

namespace hyetex::test {

struct Ran {
  int Status = -1;  ///< exit status; -1 when a signal ended the program
  std::string Out, Error;
  long PeakKb = 0;  ///< most memory held at once
};

struct RunWith {
  std::string Input = {};    ///< what stands on standard input
  std::string Folder = {};   ///< the folder to run in; empty for the present one
  std::string Out = {};      ///< where standard output goes, in place of Ran::Out
  useconds_t KillAfter = 0;  ///< microseconds of life; 0 for as long as it takes
};

inline Ran RunProgram(std::string program, std::vector<std::string> words, const RunWith& with = {}) {
  const TempFolder own;
  WriteFile(own / "in", with.Input);
  const std::string outPath = with.Out.empty() ? own / "out" : with.Out;
  const std::string paths[] = {own / "in", outPath, own / "err"};
  std::vector<char*> argv{program.data()};
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  const pid_t child = ::fork();
  if (child == 0) {
    for (int fd = 0; fd < 3; ++fd)
      ::dup2(::open(paths[fd].c_str(), fd == 0 ? O_RDONLY : O_WRONLY | O_CREAT, 0666), fd);
    if (!with.Folder.empty() && ::chdir(with.Folder.c_str()) != 0) ::_exit(126);
    ::alarm(60);  // ends a program that hangs
    ::execv(argv[0], argv.data());
    ::_exit(127);
  }
  Ran ran;
  int status = 0;
  rusage usage{};
  if (child > 0 && with.KillAfter > 0) {
    ::usleep(with.KillAfter);
    ::kill(child, SIGKILL);
  }
  if (child < 0 || ::wait4(child, &status, 0, &usage) != child) return ran;
  if (WIFEXITED(status)) ran.Status = WEXITSTATUS(status);
  ran.PeakKb = usage.ru_maxrss;
  if (with.Out.empty()) ran.Out = ReadFile(outPath);
  ran.Error = ReadFile(own / "err");
  return ran;
}

inline Ran RunCli(std::vector<std::string> words, const RunWith& with = {}) {
  return RunProgram(CommandLineProgram(), std::move(words), with);
}

}  // namespace hyetex::test
