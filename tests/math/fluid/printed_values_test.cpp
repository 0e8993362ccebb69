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

#include "math/fluid/ethylene_iupac.h"
#include "math/fluid/ethylene_nist1045.h"
#include "math/fluid/iapws_if97.h"
#include "math/fluid/nist_co2.h"
#include "math/fluid/nist_ethylene_visc.h"

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

// The equations of state of single fluids, with their densities in kg/m3 and states per kilogram.
struct Fluid {
  std::function<bool(double p, double T, double& rho)> density;
  std::function<helmholtz::State(double T, double rho)> state;
  double critical_density;
};
const std::map<std::string, Fluid> equations = {
    {"CO2", {NIST_CO2::density, NIST_CO2::state, NIST_CO2::critical_density}},
    {"ethylene IUPAC", {Ethylene_IUPAC::density, Ethylene_IUPAC::state, Ethylene_IUPAC::critical_density}},
    {"ethylene TN1045",
     {[](double p, double T, double& rho) {
        return Ethylene_NIST1045::density(p, T, Ethylene_NIST1045::Phase::automatic, rho);
      },
      Ethylene_NIST1045::state, Ethylene_NIST1045::critical_density}}};

// The pressure where the answer changes from gas to liquid, and both densities there.
struct Saturation {
  double p, gas, liquid;
};
Saturation saturation(const Fluid& fluid, double T) {
  Saturation x{0.0, 0.0, 0.0};
  double low = 1e-6, high = 8.0;
  while (true) {
    x.p = 0.5 * (low + high);
    if (!(x.p > low && x.p < high)) return x;
    double rho = 0.0;
    EXPECT_TRUE(fluid.density(x.p, T, rho));
    (rho < fluid.critical_density ? low : high) = x.p;
    (rho < fluid.critical_density ? x.gas : x.liquid) = rho;
  }
}

// `unit` is what the table's unit of density is in that of the equation; 1 where both are molar or both are not.
Values single_fluid(const Row& row, double unit, double molar_mass) {
  const Fluid& fluid = equations.at(row.fluid);
  const double T = std::stod(row.T);
  Values values;
  const auto add = [&](double rho, double p, const std::string& phase) {
    const helmholtz::State x = fluid.state(T, rho);
    values["rho" + phase] = rho / unit;
    values["h" + phase] = x.h * unit;
    values["u" + phase] = x.h - 1000.0 * p / rho;
    values["s" + phase] = x.s * unit;
    values["cp" + phase] = x.cp * unit;
    values["cv" + phase] = x.cv * unit;
    values["w" + phase] = std::sqrt(1000.0 * x.M_w2 / molar_mass);
    values["dpdrho" + phase] = x.dp_drho * 8.31434e-3 * T;
  };
  if (row.second == "p_MPa") {
    const double p = std::stod(row.second_value);
    double rho = 0.0;
    EXPECT_TRUE(fluid.density(p, T, rho));
    add(rho, p, "");
  } else if (row.quantity == "B") {
    values["B"] = Ethylene_IUPAC::second_virial(T) * unit * 1000.0;
  } else {
    const Saturation x = saturation(fluid, T);
    values["p_sat"] = x.p;
    add(x.liquid, x.p, "_liquid");
    add(x.gas, x.p, "_vapour");
  }
  return values;
}

Values viscosity(const Row& row) {
  using namespace NIST_Ethylene_Visc;
  constexpr double microP = 1e-7;
  const double T = std::stod(row.T);
  if (row.second.empty()) return {{"eta_dilute", dilute_viscosity(T) / microP}};
  Result result;
  EXPECT_TRUE(calculate({std::stod(row.second_value), T}, result).good());
  return {{"eta", result.viscosity / microP}};
}

TEST(PrintedValues, AreReproducedToTheLastDigit) {
  const std::map<std::string, std::function<Values(const Row&)>> fluids = {
      {"water", water},
      {"CO2", [](const Row& row) { return single_fluid(row, 1.0, 1.0); }},
      {"ethylene IUPAC", [](const Row& row) { return single_fluid(row, Ethylene_IUPAC::molar_mass, 1.0); }},
      {"ethylene TN1045", [](const Row& row) { return single_fluid(row, 1.0, Ethylene_NIST1045::molar_mass); }},
      {"ethylene viscosity", viscosity}};
  int count = 0;
  for (const Row& row : read_rows()) {
    SCOPED_TRACE(row.table + ", " + row.fluid + " " + row.quantity + " at " + row.T + " " + row.second_value);
    ++count;
    ASSERT_TRUE(fluids.contains(row.fluid));
    const Values values = fluids.at(row.fluid)(row);
    ASSERT_TRUE(values.contains(row.quantity));
    // One enthalpy of Table B-1 is rounded the other way: 22550.4755 J/mol is printed as 22550.47.
    const double units = row.note == "differs" ? 1.2 : 1.0;
    EXPECT_NEAR(values.at(row.quantity), std::stod(row.printed), units * half_unit(row.printed));
  }
  EXPECT_EQ(count, 307);
}

}  // namespace
}  // namespace norvane::test
