// GOST 8.586-2005, flow of liquids and gases by orifice plates: mass flow rate (parts 2 and 5), radius of the edge
// (part 2), equivalent roughness and thermal expansion (part 1).
//
//   q_m = (pi/4) d^2 C E K_sh K_p eps sqrt(2 dp rho)
//
// C, E, eps and the limits of use are those of ISO 5167-2:2003; K_sh corrects for a pipe that is rougher or smoother
// than the limits of C, K_p for an edge that is no longer sharp.
#pragma once

#include "core/outcome.h"
#include "math/flow/differential_pressure.h"
#include "math/flow/orifice_plate.h"

namespace norvane::GOST_8_586_2005 {

using differential_pressure::Geometry;     // mm at 20 degC, 1/degC
using differential_pressure::Measurement;  // mbar, bar, degC, kg/m3, Pa s; all at the upstream tapping

// ---- Mass flow rate, GOST 8.586.2 and 8.586.5 ---------------------------------------------------------------------

enum class Tappings : int { corner = 1, d_and_half_d = 2, flange = 3 };

struct Arguments {
  Measurement measured;
  Geometry geometry = {.pipe_reference_temperature = 20.0, .device_reference_temperature = 20.0};
  double roughness = 0.0;    // equivalent roughness R_sh of the pipe [mm]
  double edge_radius = 0.0;  // radius r_k of the orifice's edge [mm]
  Tappings tappings = Tappings::corner;
};

struct Result {
  double mass_rate = 0.0;              // q_m [kg/s]
  double beta = 0.0;                   // d/D at the working temperature [-]
  double orifice_diameter = 0.0;       // d at the working temperature [mm]
  double pipe_diameter = 0.0;          // D at the working temperature [mm]
  double reynolds = 0.0;               // Re_D [-]
  double discharge_coefficient = 0.0;  // C [-], without the two factors
  double expansibility = 1.0;          // eps [-]
  double velocity_of_approach = 0.0;   // E [-]
  double roughness_factor = 1.0;       // K_sh [-]
  double edge_factor = 1.0;            // K_p [-]
  bool pressure_out_of_range = false;  // gas: p2/p1 below 0.75
  bool reynolds_out_of_range = false;
  bool diameter_out_of_range = false;  // orifice, pipe or beta
};

// Status 1: an argument that is no measurement. Status 2: no equation for the state, as at a Reynolds number far
// below the limits. Status 3: the mass rate does not settle. Without a differential pressure nothing flows.
Outcome calculate(const Arguments& in, Result& out) noexcept;

// What the wear of plate and pipe does to the coefficient of one orifice plate.
class COrifice {
 public:
  // roughness, edge_radius [mm].
  COrifice(const orifice_plate::Flowing& flowing, double roughness, double edge_radius) noexcept
      : flowing_(flowing), roughness_(roughness), edge_radius_(edge_radius) {}

  // K_p, GOST 8.586.2, formula (5.13): 1 while the radius is at most 0.0004 d.
  double edge_factor() const noexcept;
  // K_sh, formulas (5.9) to (5.12). NaN where the friction factor has no value.
  double roughness_factor(double reynolds) const noexcept;

 private:
  orifice_plate::Flowing flowing_;
  double roughness_;
  double edge_radius_;
};

// 10^4 Ra/D between which the pipe needs no correction. Beyond a Reynolds number of 1e8, where the equations end,
// the limits are those of 1e8.
double greatest_roughness(double beta, double reynolds) noexcept;
double least_roughness(double beta, double reynolds) noexcept;

// ---- Radius of the edge, GOST 8.586.2, formulas (5.14) to (5.16) -------------------------------------------------

enum class RadiusMode : int { interval_mean = 1, after_operation = 2 };

struct EdgeArguments {
  double initial_radius = 0.05;  // r_n [mm]
  double time = 1.0;             // of operation, or between checks [a]
  RadiusMode mode = RadiusMode::interval_mean;
  double limit_radius = 0.195;  // that the edge tends to [mm]
};
struct EdgeResult {
  double radius = 0.0;  // r_k [mm]
};
Outcome edge_radius(const EdgeArguments& in, EdgeResult& out) noexcept;

// ---- Tables of GOST 8.586.1 ---------------------------------------------------------------------------------------

// A row of table D.1, counted from 1.
enum class Pipe : int {};
struct RoughnessArguments {
  Pipe pipe{4};
};
struct RoughnessResult {
  double roughness = 0.0;          // equivalent, R_sh [mm]
  double average_roughness = 0.0;  // Ra [mm]
};
Outcome pipe_roughness(const RoughnessArguments& in, RoughnessResult& out) noexcept;

// A row of table G.1, counted from 1.
enum class Grade : int {};
struct SteelArguments {
  Grade grade{3};
  double temperature = 20.0;  // [degC]
};
struct SteelResult {
  double expansion = 0.0;  // mean linear, from 20 degC to the temperature [1/degC]
};
Outcome steel_expansion(const SteelArguments& in, SteelResult& out) noexcept;

}  // namespace norvane::GOST_8_586_2005
