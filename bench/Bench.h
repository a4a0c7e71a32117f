#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

/// What every benchmark needs: its options, a clock, a table, and a check that decides its exit
/// status.
class TBench {
 public:
  TBench(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) quick_ |= std::strcmp(argv[i], "--quick") == 0;
  }

  /// Whether to run once and briefly, to see that it works.
  bool Quick() const { return quick_; }

  /// Median time of `rounds` runs in seconds; a quick bench runs once. `prepare` runs before each
  /// and is not counted.
  template <class TRun, class TPrepare>
  double Seconds(int rounds, TRun run, TPrepare prepare) const {
    using TClock = std::chrono::steady_clock;
    std::vector<double> times;
    for (int i = 0; i < (quick_ ? 1 : rounds); ++i) {
      prepare();
      const auto start = TClock::now();
      run();
      times.push_back(std::chrono::duration<double>(TClock::now() - start).count());
    }
    std::nth_element(times.begin(), times.begin() + static_cast<long>(times.size() / 2),
                     times.end());
    return times[times.size() / 2];
  }
  template <class TRun>
  double Seconds(int rounds, TRun run) const {
    return Seconds(rounds, run, [] {});
  }

  /// One line of the table: what, how much, in which unit.
  void Row(const std::string& what, double value, const char* unit) const {
    std::printf("%-52s %12.3f %s\n", what.c_str(), value, unit);
    std::fflush(stdout);
  }

  /// A wrong result is printed and makes Result() 1.
  void Check(bool right, const std::string& what) {
    if (right) return;
    std::printf("WRONG: %s\n", what.c_str());
    wrong_ = true;
  }

  /// The exit status.
  int Result() const { return wrong_ ? EXIT_FAILURE : EXIT_SUCCESS; }

 private:
  bool quick_ = false;
  bool wrong_ = false;
};
