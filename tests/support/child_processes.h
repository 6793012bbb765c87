// Several processes working on one database at the same time, for the tests that prove what
// holds across processes (distinct keys, no lost write, no double count).
//
//   const auto outcome = RunInChildren(4, [&](int index, std::ostream& out) {
//     auto cn = OpenConnection(uri);   // each child opens its own connections
//     ...; out << value << '\n';
//     return 0;                        // the child's exit status
//   });
//   outcome.statuses[i], outcome.outputs[i]
//
// Each child is a fork() of the test process. It must open its own connections (the parent's
// are never used in the child), reports through `out` (a file the parent reads afterwards) and
// its return value, and ends with _exit, so neither the parent's connections nor the test
// framework's state are touched by the child. A child that throws a std::exception exits with
// status 99 and its message at the end of its output. The children start together, once all are
// forked (each waits for a pipe the parent then closes). The parent waits for every child.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace kivmovfrec::testing {

struct ChildrenOutcome {
  std::vector<int> statuses;         // exit status of each child, -1 when it did not exit
  std::vector<std::string> outputs;  // what each child wrote to `out`
};

inline ChildrenOutcome RunInChildren(int count,
                                     const std::function<int(int, std::ostream&)>& work) {
  static std::atomic<int> serial{0};
  const std::string base =
      (std::filesystem::temp_directory_path() /
       ("kmf_child_" + std::to_string(::getpid()) + "_" + std::to_string(serial++)))
          .string();
  const auto path = [&](int i) { return base + "_" + std::to_string(i) + ".out"; };
  std::cout.flush();
  std::cerr.flush();
  std::vector<pid_t> pids;
  int salida[2] = {-1, -1};
  (void)!::pipe(salida);
  for (int i = 0; i < count; ++i) {
    const pid_t pid = ::fork();
    if (pid == 0) {
      char c = 0;
      ::close(salida[1]);
      (void)!::read(salida[0], &c, 1);  // returns once the parent closes its end
      int status = 0;
      std::ofstream out(path(i));
      try {
        status = work(i, out);
      } catch (const std::exception& e) {
        out << "\nexcepción: " << e.what() << '\n';
        status = 99;
      }
      out.close();
      ::_exit(status);
    }
    pids.push_back(pid);  // -1 when fork failed: reported as a child that did not exit
  }
  ::close(salida[0]);
  ::close(salida[1]);
  ChildrenOutcome outcome;
  for (int i = 0; i < count; ++i) {
    int raw = 0;
    const bool exited = pids[i] > 0 && ::waitpid(pids[i], &raw, 0) == pids[i] && WIFEXITED(raw);
    outcome.statuses.push_back(exited ? WEXITSTATUS(raw) : -1);
    std::ifstream in(path(i));
    std::ostringstream text;
    text << in.rdbuf();
    outcome.outputs.push_back(text.str());
    std::remove(path(i).c_str());
  }
  return outcome;
}

}  // namespace kivmovfrec::testing
