// Benchmarks in pairs: the library against a plain sorted vector of the same records, in one run.
// A benchmark "list/Build/1000" is measured against "vector/Build/1000"; the ratios of CPU time
// come after the table, behind them those that a program asks for by name. With repetitions it is
// the ratio of the fastest.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// The names of two benchmarks, of which the first is measured against the second.
typedef std::pair<std::string, std::string> Bench_Pair;

class Bench_RatioReporter : public benchmark::ConsoleReporter {
public:
  void ReportRuns(std::vector<Run> const & iRuns) override {
    benchmark::ConsoleReporter::ReportRuns(iRuns);
    for (Run const & run : iRuns) {
      if (run.run_type != Run::RT_Iteration || run.iterations == 0) continue;
      double const time = run.cpu_accumulated_time / static_cast<double>(run.iterations);
      auto const [iter, isNew] = mFastest.try_emplace(run.benchmark_name(), time);
      if (!isNew) iter->second = std::min(iter->second, time);
    }
  }

  void PrintRatios(std::vector<Bench_Pair> const & iPairs) const {
    std::printf("\n%-44s %12s\n", iPairs.empty() ? "list over vector" : "", "ratio");
    for (auto const & [first, second] : iPairs) {
      auto const one = mFastest.find(first), other = mFastest.find(second);
      if (one == mFastest.end() || other == mFastest.end()) continue;
      std::printf("%-44s %12.4f\n", (first + " : " + second).c_str(), one->second / other->second);
    }
    for (auto const & [name, time] : mFastest) {
      if (name.rfind("list/", 0) != 0) continue;
      auto const other = mFastest.find("vector/" + name.substr(5));
      if (other == mFastest.end()) continue;
      std::printf("%-44s %12.3f\n", name.substr(5).c_str(), time / other->second);
    }
  }

private:
  std::map<std::string, double> mFastest;  // seconds of CPU time by name of benchmark
};

inline int Bench_RunWithRatios(int iNumArgs, char ** iArgs,
                               std::vector<Bench_Pair> const & iPairs = {}) {
  benchmark::Initialize(&iNumArgs, iArgs);
  if (benchmark::ReportUnrecognizedArguments(iNumArgs, iArgs)) return 1;
  Bench_RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios(iPairs);
  return 0;
}
