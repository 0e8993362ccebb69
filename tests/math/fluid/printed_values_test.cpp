// Every value printed in the check tables of the standards, in data/fluid_check_values.csv, against the layer of the
// calculation that has the same inputs. A value has to agree within half a unit of its last digit.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "math/fluid/iapws_if97.h"

namespace norvane::test {
namespace {

struct Row {
  std::string table, fluid, T, second, second_value, quantity, printed, unit, note;
};

std::vector<Row> read_rows() {
  std::ifstream file(NORVANE_TEST_DATA "/fluid_check_values.csv");
  std::vector<Row> rows;
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) {
    std::istringstream fields(line);
    Row row;
    for (std::string* field : {&row.table, &row.fluid, &row.T, &row.second, &row.second_value, &row.quantity,
                               &row.printed, &row.unit, &row.note})
      std::getline(fields, *field, ',');
    rows.push_back(row);
  }
  return rows;
}

// Half a unit of the last digit of "0.100215168e-2", and what reading the figures leaves.
double half_unit(const std::string& printed) {
  const std::size_t e = printed.find('e'), point = printed.find('.');
  const int exponent = e == std::string::npos ? 0 : std::stoi(printed.substr(e + 1));
  const std::size_t end = std::min(e, printed.size());
  const int decimals = point == std::string::npos ? 0 : static_cast<int>(end - point) - 1;
  return 0.5 * std::pow(10.0, exponent - decimals) * (1.0 + 1e-9);
}

// The figure that a row prints.
using Values = std::map<std::string, double>;

Values water(const Row& row) {
  using namespace IAPWS_IF97;
  const double second = row.second.empty() ? 0.0 : std::stod(row.second_value);
  if (row.T.empty())
    return {{"T_sat", saturation_temperature(second)}, {"T_boundary23", boundary23_temperature(second)}};
  const double T = std::stod(row.T);
  if (row.second.empty()) return {{"p_sat", saturation_pressure(T)}, {"p_boundary23", boundary23_pressure(T)}};
  const bool by_density = row.second == "rho_kg_m3";
  const double p = by_density ? region3_pressure(second, T) : second;
  const bool metastable = row.table.find("Table 18") != std::string::npos;
  const State x = by_density                                  ? region3(second, T)
                  : metastable                                ? metastable_vapour(p, T)
                  : T > 1073.15                               ? region5(p, T)
                  : p >= saturation_pressure(T) && T < 623.15 ? region1(p, T)
                                                              : region2(p, T);
  return {{"p", p},
          {"v", x.v},
          {"h", x.h},
          {"u", x.h - 1000.0 * p * x.v},
          {"s", x.s},
          {"cp", x.cp},
          {"w", std::sqrt(x.w2)}};
}

TEST(PrintedValues, AreReproducedToTheLastDigit) {
  const std::map<std::string, std::function<Values(const Row&)>> fluids = {{"water", water}};
  std::map<std::string, int> count;
  for (const Row& row : read_rows()) {
    SCOPED_TRACE(row.table + ", " + row.fluid + " " + row.quantity + " at " + row.T + " " + row.second_value);
    ASSERT_TRUE(fluids.contains(row.fluid));
    const Values values = fluids.at(row.fluid)(row);
    ASSERT_TRUE(values.contains(row.quantity));
    EXPECT_NEAR(values.at(row.quantity), std::stod(row.printed), half_unit(row.printed));
    ++count[row.fluid];
  }
  EXPECT_EQ(count, (std::map<std::string, int>{{"water", 98}}));
}

}  // namespace
}  // namespace norvane::test
