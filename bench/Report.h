#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace kestrova::bench {

// Whether every goal reported so far was met.
inline bool allMet = true;

// Prints a figure beside its goal.
inline void report(const char* what, double value, const char* unit, double goal,
                   bool atMost = true) {
  const bool met = atMost ? value <= goal : value >= goal;
  allMet = allMet && met;
  std::printf("%-46s %9.2f %-6s goal %s %.2f: %s\n", what, value, unit,
              atMost ? "at most" : "at least", goal, met ? "met" : "MISSED");
}

inline double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// A line of /proc/self/status in MiB.
inline double memory(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(name + ":")) return std::stod(line.substr(name.size() + 1)) / 1024;
  }
  return 0;
}

}  // namespace kestrova::bench
