// What bench/scaling takes for linear, by the costs of operations that never ran: their times are formulas.
#include "../bench/scaling/growth.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

using kt::scaling::Costs;

// A machine: what a call costs, how much slower values are that lie in farther memory, and how much its other work adds
// to each of the four times.
struct Machine {
  const char* name;
  double call;
  double near, far;  // factors of 4,096 and of 1,048,576 values
  double noise[4];
};

constexpr Machine kMachines[] = {
    {"ideal", 0, 1, 1, {1, 1, 1, 1}},
    {"costly calls", 60, 1, 1, {1, 1, 1, 1}},
    {"noise up", 8, 1, 1, {1, 1, 1.4, 1.9}},
    {"noise down", 8, 1, 1, {1.3, 1.2, 1.1, 1}},
    {"caches", 8, 1.3, 1.9, {1, 1.1, 1.2, 1.1}},
};

using Cost = std::function<double(double)>;  // ns of a run of so many values

Costs costsOf(const Machine& machine, const Cost& cost, unsigned long most = ~0ul) {
  Costs costs{};
  costs.bytes = 8;
  const double distance[] = {1, 1, machine.near, machine.far};
  for (int i = 0; i < kt::scaling::kSizeCount; ++i) {
    const unsigned long count = std::min(kt::scaling::kSizes[i], most);
    const auto values = static_cast<double>(count);
    costs.add(i, count, (machine.call + cost(values) * distance[i]) * machine.noise[i] / values);
  }
  return costs;
}

TEST(Growth, linear_costs_pass_on_every_machine) {
  for (const Machine& machine : kMachines) {
    for (const double each : {0.001, 0.1, 3.0, 80.0, 2000.0}) {
      const Cost linear = [each](double n) { return each * n; };
      EXPECT_TRUE(costsOf(machine, linear).isLinear()) << machine.name << ", " << each << " ns a value";
      EXPECT_TRUE(costsOf(machine, linear, 2000).isLinear()) << machine.name << ", 2,000 values";
    }
    EXPECT_TRUE(costsOf(machine, [](double) { return 5.0; }).isLinear()) << machine.name << ", constant";
    EXPECT_TRUE(costsOf(machine, [](double n) { return std::sqrt(n); }).isLinear()) << machine.name << ", square root";
  }
}

TEST(Growth, more_than_linear_costs_are_found_on_every_machine) {
  const struct {
    const char* name;
    Cost cost;
  } costs[] = {
      {"sorting", [](double n) { return 4 * n * std::log2(n); }},
      {"sorting of costly values", [](double n) { return 50 * n * (1 + std::log2(n)); }},
      {"a tree", [](double n) { return 4 * n * std::log2(n + 1); }},
      {"n to the 1.2", [](double n) { return 4 * std::pow(n, 1.2); }},
      {"quadratic", [](double n) { return n * n; }},
      {"a little that is quadratic", [](double n) { return 20 * n + 0.0001 * n * n; }},
      {"values that no longer fit somewhere", [](double n) { return n > 100000 ? 13 * n : 4 * n; }},
  };
  for (const Machine& machine : kMachines) {
    for (const auto& [name, cost] : costs)
      EXPECT_FALSE(costsOf(machine, cost).isLinear()) << machine.name << ", " << name;
  }
}

TEST(Growth, what_fills_a_text_is_judged_up_to_there) {
  for (const Machine& machine : kMachines) {
    const Cost sorting = [](double n) { return 4 * n * std::log2(n); }, quadratic = [](double n) { return n * n; };
    EXPECT_FALSE(costsOf(machine, sorting, 2000).isLinear()) << machine.name;
    EXPECT_FALSE(costsOf(machine, quadratic, 2000).isLinear()) << machine.name;
    EXPECT_TRUE(costsOf(machine, quadratic, 16).isLinear()) << machine.name << ": nothing to judge";
  }
}

TEST(Growth, the_least_time_counts_and_memory_is_allowed_its_own) {
  Costs costs{};
  costs.bytes = 100;  // 6 ns
  for (int i = 0; i < 4; ++i) costs.add(i, kt::scaling::kSizes[i], 10);
  EXPECT_TRUE(costs.isLinear());
  costs.perValue[3] = 25.9;
  EXPECT_TRUE(costs.isLinear());
  costs.perValue[3] = 26.1;
  EXPECT_FALSE(costs.isLinear());
  costs.counts[3] = costs.counts[2];
  EXPECT_TRUE(costs.isLinear()) << "the same run, disturbed";
  costs.counts[3] = kt::scaling::kSizes[3];
  costs.add(3, kt::scaling::kSizes[3], 25);
  costs.add(3, kt::scaling::kSizes[3], 90);
  EXPECT_TRUE(costs.isLinear());
}

}  // namespace
