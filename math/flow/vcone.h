// Cone meter with a calibrated discharge coefficient, after the maker's flow calculation bulletin 24509-54.
//
//   d_c  cone diameter             D  pipe diameter, both at the upstream temperature
//
//   beta = sqrt(1 - d_c^2/D^2)
//   q_m  = C_f eps (pi/4) D^2 beta^2/sqrt(1 - beta^4) sqrt(2 dp rho1)
#pragma once

#include "core/outcome.h"
#include "math/flow/differential_pressure.h"

namespace norvane::VCone {

using differential_pressure::Device;
using differential_pressure::Geometry;     // device: the cone; mm, 1/degC, degC
using differential_pressure::Measurement;  // mbar, bar, degC, kg/m3; here the viscosity is in mPa s
using differential_pressure::ThreePoints;

enum class Type : int { standard = 1, wafer = 2 };

enum class Code : int {
  ok = 0,
  viscosity = 3,              // not positive
  density = 5,                // not positive
  pressure = 6,               // not positive, or measured at no tapping
  differential_pressure = 7,  // negative
  isentropic_exponent = 8,    // not positive
  argument = 9,               // any other argument that is no number
  no_convergence = 10,        // after 25 rounds
  division_by_zero = 14       // cone not smaller than the pipe, a pressure of zero or below, or no finite result
};

struct Result {
  double mass_rate = 0.0;               // q_m [kg/s]
  double beta = 0.0;                    // [-]
  double cone_diameter = 0.0;           // at the upstream temperature [mm]
  double pipe_diameter = 0.0;           // at the upstream temperature [mm]
  ThreePoints pressure;                 // absolute [bar]
  ThreePoints temperature;              // [degC]
  ThreePoints density;                  // [kg/m3]
  double reynolds = 0.0;                // Re_D, at the upstream tapping [-]
  double discharge_coefficient = 0.0;   // C_f as given [-]
  double expansion_factor = 1.0;        // eps [-]
  double velocity = 0.0;                // in the pipe at the upstream tapping [m/s]
  bool expansion_out_of_range = false;  // eps below 0.84
  int rounds = 0;                       // of the iteration
};

// Without a differential pressure the result is the state measured, with no flow.
Code cone(const Measurement& measured, const Geometry& geometry, Type type, double discharge_coefficient,
          Result& result) noexcept;

struct Arguments {
  Device device;
  Type type;
  double discharge_coefficient;  // [-]
};

// What a code means for the arguments that were given.
Outcome outcome_of(Code code, const Arguments& given) noexcept;

}  // namespace norvane::VCone
