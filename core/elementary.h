// exp, log and pow as the calculations use them: the same bits on every platform.
//
// Nothing here calls the C library's mathematics, and every operation is a plain IEEE 754 double operation
// rounded to nearest (contraction into fused operations is off in this project), so that a calculation
// answers with the same digits whatever the compiler, the operating system or the processor.
//
// Error: below 0.52 ulp (exp), 0.51 ulp (log) and 0.53 ulp (pow) for normal results, below 1 ulp for denormal ones.
// Special values are those of the C standard (Annex F); errno and the rounding mode are
// not touched, exception flags are not promised.
#pragma once

#include <array>

namespace norvane::elementary {

double exp(double x) noexcept;
double log(double x) noexcept;
double pow(double x, double y) noexcept;

// Four exponentials at once, faster than four calls; each equals exp of its argument bit for bit.
std::array<double, 4> exp4(const std::array<double, 4>& x) noexcept;

}  // namespace norvane::elementary
