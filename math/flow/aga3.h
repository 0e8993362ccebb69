// AGA Report No. 3 = API MPMS Chapter 14.3: mass flow rate through a flange-tapped, concentric square-edged orifice.
//
//   Part 1 (1990/1992, 2012)   equations, uncertainty, limits of use
//   Part 4 (1992)              procedure: the discharge coefficient by Newton's method in X = 4000/Re_D
//
//   q_m = N Ev Cd Y d^2 sqrt(2 rho1 dP)
//   Ev  = 1/sqrt(1 - beta^4)               Y  expansion factor at the upstream tapping
//
// Customary units throughout: inches, psia, inches of water at 60 degF, degF, lbm/ft3, cP, lbm/h.
#pragma once

#include "core/outcome.h"
#include "math/flow/differential_pressure.h"

namespace norvane::AGA3 {

using differential_pressure::Device;
using differential_pressure::Geometry;     // in, 1/degF, degF
using differential_pressure::Measurement;  // inH2O at 60 degF, psia, degF, lbm/ft3, cP
using differential_pressure::ThreePoints;

enum class Edition : int { y1992 = 1, y2012 = 2 };

// What the algorithm answers; also delivered as it is, beside the status.
enum class Code : int {
  ok = 0,
  diameter = 1,               // pipe not positive, bore not positive or not smaller than the pipe
  density = 2,                // not positive
  pressure = 3,               // not positive
  pressure_location = 4,      // neither upstream nor downstream
  differential_pressure = 5,  // negative
  isentropic_exponent = 6,    // not positive
  no_convergence = 7,         // of the discharge coefficient in 20 steps; the result is delivered all the same
  negative_flow = 8,          // the expansion factor came out below zero
  downstream_pressure = 9,    // zero, with a density that was not measured upstream
  recovered = 10,             // kept from the list of codes; a ratio p1/p2 is at least 1, so nothing leads here
  math = 11                   // no finite result
};

struct Result {
  Code code = Code::ok;
  double mass_rate = 0.0;               // q_m with the gravity correction [lbm/h]
  double beta = 0.0;                    // d/D at the upstream temperature [-]
  double orifice_diameter = 0.0;        // d at the upstream temperature [in]
  double pipe_diameter = 0.0;           // D at the upstream temperature [in]
  ThreePoints pressure;                 // absolute [psia]
  ThreePoints temperature;              // [degF]
  ThreePoints density;                  // [lbm/ft3]
  double reynolds = 0.0;                // Re_D, without the gravity correction [-]
  double discharge_coefficient = 0.0;   // Cd [-]
  double expansion_factor = 0.0;        // Y [-]
  double velocity_of_approach = 0.0;    // Ev [-]
  bool pressure_out_of_range = false;   // dP/(27.707 P1) above 0.2 (1992) or 0.25 (2012)
  bool reynolds_out_of_range = false;   // below 4000
  bool diameter_out_of_range = false;   // d below 0.45 in, D below 2 in, beta outside 0.2 to 0.75
  double raw_mass_rate = 0.0;           // of the last Newton step, without the gravity correction [lbm/h]
  double raw_previous_mass_rate = 0.0;  // of the step before: the first estimate where one step was enough [lbm/h]
  int steps = 0;                        // Newton steps
};

// gravity_correction: F_pwl, local gravity correction for deadweight calibrators [-]. drain_hole [in], 0 for none.
Code orifice(const Measurement& measured, const Geometry& geometry, Edition edition, double drain_hole,
             double gravity_correction, Result& result) noexcept;

struct Arguments {
  Device device;
  double drain_hole;          // diameter [in], 0 for none
  double gravity_correction;  // F_pwl [-]
  Edition edition;
};

// Statuses: argument_error and calculation_error, by code, with the code alone; no_convergence with the result that has not
// converged.
Outcome orifice_flow(const Arguments& given, Result& result) noexcept;

}  // namespace norvane::AGA3
