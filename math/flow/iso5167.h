// ISO 5167, Measurement of fluid flow by means of pressure differential devices: the mass flow rate through
// orifice plates, nozzles and Venturi tubes, with the fluid's state and the geometry it follows from.
//
//   ISO 5167-1:1991            orifice plates, nozzles, Venturi tubes ("edition 1991")
//   ISO 5167-1:1991/Amd 1:1998 Reader-Harris/Gallagher equation ("edition 1998")
//   ISO 5167-2/-3/-4:2003      orifice plates / nozzles and Venturi nozzles / Venturi tubes ("edition 2003")
//   ISO/TR 15377               quarter-circle and conical-entrance orifice plates
//
//   q_m = C eps (pi/4) d^2 sqrt(2 dp rho1) / sqrt(1 - beta^4)          ISO 5167-1:2003, clause 5
//
// Pure functions of numbers: no state, no allocation, no exception. Options
// come in as enumerations; numbers may be anything.
#pragma once

#include "core/outcome.h"
#include "math/flow/differential_pressure.h"

namespace norvane::ISO5167 {

using differential_pressure::Device;
using differential_pressure::Geometry;     // diameters in mm, 1/degC, degC
using differential_pressure::Measurement;  // mbar, bar, degC, kg/m3, Pa s
using differential_pressure::ThreePoints;

enum class Edition : int { y1991 = 1, y1998 = 2, y2003 = 3 };
enum class Tappings : int { corner = 1, d_and_half_d = 2, flange = 3, quarter_circle = 4, conical_entrance = 5 };
enum class VenturiType : int { as_cast = 1, rough_welded = 2, machined = 3, custom = 4 };

// The permanent pressure loss of a Venturi is not computed but given.
struct PressureLoss {
  enum class Mode : int { value = 1, percentage = 2 } mode = Mode::value;
  double value = 0.0;  // [mbar], or percent of the differential pressure
};

// What an algorithm answers. With the codes marked * the result is good and some limit of use is exceeded.
enum class Code : int {
  ok = 0,
  device_diameter = 1,        // * device diameter outside its limits
  pipe_diameter = 2,          // * pipe diameter outside its limits
  viscosity = 3,              // not positive
  beta = 4,                   // * diameter ratio outside its limits
  density = 5,                // not positive
  pressure = 6,               // not positive, or measured at no tapping
  differential_pressure = 7,  // negative
  argument = 8,               // any other argument that is no number
  configuration = 9,          // tappings that the edition does not know
  no_convergence = 10,        // after 25 rounds, or on a coefficient below zero
  reynolds = 11,              // * Reynolds number outside its limits
  isentropic_exponent = 12,   // not greater than 1
  division_by_zero = 14       // a diameter, pressure or pressure ratio of zero or below, or no finite result
};

// True for the codes under which the result is delivered.
constexpr bool delivered(Code code) noexcept {
  return code == Code::ok || code == Code::device_diameter || code == Code::pipe_diameter || code == Code::beta ||
         code == Code::reynolds;
}

struct Result {
  double mass_rate = 0.0;              // q_m [kg/s]
  double beta = 0.0;                   // d/D at T1 [-]
  double device_diameter = 0.0;        // d at T1 [mm]
  double pipe_diameter = 0.0;          // D at T1 [mm]
  ThreePoints pressure;                // absolute [bar]
  ThreePoints temperature;             // [degC]
  ThreePoints density;                 // [kg/m3]
  double reynolds = 100000.0;          // Re_D = 4 q_m/(pi mu D) [-]
  double discharge_coefficient = 0.0;  // C [-]
  double expansibility = 0.0;          // eps [-]
  double velocity_of_approach = 0.0;   // E = (1 - beta^4)^-0.5 [-]
  bool pressure_out_of_range = false;
  bool reynolds_out_of_range = false;
  bool diameter_out_of_range = false;  // device, pipe or beta
  int rounds = 0;                      // of the iteration
};

// ISO 5167-1:1991 and Amd 1:1998, ISO 5167-2:2003; quarter-circle and conical-entrance plates (edition
// 2003 only): ISO/TR 15377. drain_hole [mm], 0 for none.
Code orifice(const Measurement& measured, const Geometry& geometry, Tappings tappings, Edition edition,
             double drain_hole, Result& result) noexcept;

// ISO 5167-3:2003, 5.1: ISA 1932 nozzle; the edition decides on the pressure loss.
Code isa1932_nozzle(const Measurement& measured, const Geometry& geometry, Edition edition, Result& result) noexcept;

// ISO 5167-3:2003, 5.2: long radius nozzle; the edition decides on the pressure loss.
Code long_radius_nozzle(const Measurement& measured, const Geometry& geometry, Edition edition,
                        Result& result) noexcept;

// ISO 5167-3:2003, 5.3: Venturi nozzle.
Code venturi_nozzle(const Measurement& measured, const Geometry& geometry, const PressureLoss& loss,
                    Result& result) noexcept;

// ISO 5167-4:2003: classical Venturi tube. custom_coefficient [-] is C of VenturiType::custom.
Code venturi(const Measurement& measured, const Geometry& geometry, VenturiType type, const PressureLoss& loss,
             double custom_coefficient, Result& result) noexcept;

// ---- The elements as they are given ------------------------------------------------------------------------------

struct OrificeArguments {
  Device device;
  Tappings tappings;
  Edition edition;
  double drain_hole;  // diameter [mm], 0 for none
};
struct NozzleArguments {
  Device device;
  Edition edition;
};
struct VenturiNozzleArguments {
  Device device;
  PressureLoss loss;
};
struct VenturiArguments {
  Device device;
  VenturiType type;
  PressureLoss loss;
  double custom_coefficient;  // [-], of VenturiType::custom
};

// Statuses: argument_error for an argument outside what has a meaning, calculation_error for a diameter or pressure that
// comes out zero or below, no_convergence. A device wider than its pipe is refused.
Outcome orifice_flow(const OrificeArguments& given, Result& result) noexcept;
Outcome isa1932_nozzle_flow(const NozzleArguments& given, Result& result) noexcept;
Outcome long_radius_nozzle_flow(const NozzleArguments& given, Result& result) noexcept;
Outcome venturi_nozzle_flow(const VenturiNozzleArguments& given, Result& result) noexcept;
Outcome venturi_flow(const VenturiArguments& given, Result& result) noexcept;

}  // namespace norvane::ISO5167
