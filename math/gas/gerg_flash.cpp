// GERG-2008: the phases of a mixture at a temperature and pressure.
//
//   z_i    mole fraction of the feed               K_i   y_i/x_i
//   y_i    of the lighter phase, "vapour"          b     its share of the amount of substance
//   x_i    of the denser phase, "liquid"           f_i   fugacity over p: y_i phi_i
//
// A trial phase with amounts W_i lowers the Gibbs energy of the feed where its tangent plane distance is negative
// (M. L. Michelsen, Fluid Phase Equilibria 9 (1982) 1 and 21):
//   tm = 1 + sum W_i (ln W_i + ln phi_i(W) - d_i - 1), d_i = ln z_i + ln phi_i(z)
//
// 1. the feed at its root of less Gibbs energy          2. trials; none negative: one phase
// 3. K from the trial, successive substitution          4. Newton's method on the Gibbs energy
// 5. trials against the answer; a negative one is a better pair of phases, or a third phase

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "core/elementary.h"
#include "math/gas/gerg.h"

namespace norvane::GERG2008 {
namespace {

using elementary::exp;
using elementary::log;

// Amounts below this take no part: no balance or chromatograph knows of them.
constexpr double least_amount = 1e-14;
// Equal fugacities: the greatest difference of their logarithms.
constexpr double equal = 1e-11;
// A tangent plane distance counts as negative below this; rounding makes some 1e-13.
constexpr double negative = -1e-9;
// Phases whose compositions differ less are one, max |ln K|.
constexpr double identical = 1e-5;
// A trial this close to a known phase leads there, max |ln(w/x)|: the feed, or one of two phases in equilibrium.
constexpr double returned = 1e-4, drawn_in = 0.02;
// Logarithms of amounts and of K are kept within this, so that no product of two overflows or vanishes.
constexpr double longest_log = 300.0;
double within_bounds(double ln) noexcept { return std::clamp(ln, -longest_log, longest_log); }

// Critical pressure [MPa] and acentric factor of the components, as the equation itself has them: for the first guess
// of K, ln K = ln(pc/p) + 5.373 (1 + omega)(1 - Tc/T) (G. M. Wilson, 1968).
struct Volatility {
  double p_c, omega;
};
constexpr Volatility volatility[component_count] = {
    {4.599, 0.011}, {3.396, 0.037},  {7.377, 0.225}, {4.872, 0.100}, {4.247, 0.153}, {22.064, 0.345},
    {8.999, 0.100}, {1.315, -0.219}, {3.498, 0.050}, {5.039, 0.022}, {3.637, 0.185}, {3.791, 0.199},
    {3.378, 0.228}, {3.371, 0.252},  {3.043, 0.300}, {2.731, 0.349}, {2.498, 0.395}, {2.282, 0.443},
    {2.101, 0.488}, {0.228, -0.386}, {4.860, -0.002}};

// Lists of the components that take part, from 0.
using List = std::array<double, component_count>;

// Solves (A + lambda I) s = -g with the least lambda of a growing row that makes the matrix positive. A has about 1
// on its diagonal.
bool solve(const std::array<List, component_count>& A, const List& g, std::size_t n, double lambda,
           List& s) noexcept {
  for (int attempt = 0; attempt < 14; ++attempt) {
    std::array<List, component_count> L;
    bool positive = true;
    for (std::size_t i = 0; i < n && positive; ++i) {
      for (std::size_t j = 0; j <= i; ++j) {
        double sum = A[i][j] + (i == j ? lambda : 0.0);
        for (std::size_t k = 0; k < j; ++k) sum -= L[i][k] * L[j][k];
        if (i != j) {
          L[i][j] = sum / L[j][j];
        } else {
          constexpr double flat = 1e-12;
          if (!(sum > flat)) {
            positive = false;
            break;
          }
          L[i][i] = std::sqrt(sum);
        }
      }
    }
    if (positive) {
      for (std::size_t i = 0; i < n; ++i) {
        double sum = -g[i];
        for (std::size_t k = 0; k < i; ++k) sum -= L[i][k] * s[k];
        s[i] = sum / L[i][i];
      }
      for (std::size_t i = n; i-- > 0;) {
        double sum = s[i];
        for (std::size_t k = i + 1; k < n; ++k) sum -= L[k][i] * s[k];
        s[i] = sum / L[i][i];
      }
      return true;
    }
    lambda = std::max(10.0 * lambda, 1e-9);
  }
  return false;
}

// A phase on trial.
struct Trial {
  List x{};  // mole fractions
  List ln_x{};
  List ln_phi{};
  double rho = 0.0;   // 0: not known yet
  List x_of_rho{};    // the composition that has this density
  bool loop = false;  // neither a vapour's nor a liquid's density
  double g = 0.0;     // Gibbs energy over R T, sum x_i (ln x_i + ln phi_i)
};

class Flash {
 public:
  Flash(Edition edition, const Composition& z, double T, double p) noexcept : edition_(edition), T_(T), p_(p) {
    double sum = 0.0;
    for (std::size_t i = 0; i < component_count; ++i) {
      if (!(z[i] >= least_amount)) continue;
      index_[count_] = i;
      z_[count_++] = z[i];
      sum += z[i];
    }
    for (std::size_t a = 0; a < count_; ++a) {
      if (index_[a] == water) water_ = a;
      if (index_[a] >= i_pentane && index_[a] <= n_decane) heavy_[heavy_count_++] = a;
      z_[a] /= sum;
      ln_z_[a] = log(z_[a]);
    }
  }

  FlashResult run(Equilibrium& answer) noexcept;

 private:
  struct Pair {
    Trial vapour, liquid;
    double b = 0.0;
    double g = 0.0;
    List ln_K;
  };
  enum class Ending { converged, collapsed, outside, failed };

  // Density and fugacities of a composition: close to the density it has already, or at the root of less Gibbs
  // energy.
  bool evaluate(Trial& trial, std::array<List, component_count>* slope = nullptr) noexcept;
  bool evaluate_afresh(Trial& trial) noexcept {
    trial.rho = 0.0;
    return evaluate(trial);
  }

  // The least tangent plane distance that a trial met.
  struct Find {
    List ln_W;
    Trial phase;
    double tm = 0.0;
  };
  // Trials from all starts against a phase that has d, until one finds a negative distance. One that leads to the
  // reference or to the other phase finds nothing.
  bool test(const List& d, const Trial& reference, const Trial* other, Find& found) noexcept;
  Find trial(List ln_W, const List& d, const Trial& reference, const Trial* other) noexcept;
  List start(std::size_t which, const Trial& reference, const Trial* other) const noexcept;
  std::size_t start_count(const Trial* other) const noexcept {
    return 3 + (other == nullptr ? 1 : 0) + count_ +
           (water_ < count_ ? heavy_count_ * (other == nullptr ? 3 : 4) : 0);
  }
  // Greatest difference of the logarithms of two phases' fractions.
  double distance(const Trial& one, const Trial& two) const noexcept {
    double greatest = 0.0;
    for (std::size_t a = 0; a < count_; ++a) greatest = std::max(greatest, std::fabs(one.ln_x[a] - two.ln_x[a]));
    return greatest;
  }

  double rachford_rice(const List& ln_K, double b) const noexcept;
  void amounts(Pair& pair) const noexcept;
  Ending substitute(Pair& pair) noexcept;
  Ending newton(Pair& pair) noexcept;
  Ending iterate(Pair& pair) noexcept;
  bool descend(const Trial& found, const Trial& feed, Pair& pair) noexcept;
  bool two_phases(const Find& find, const Trial& feed, Pair& pair) noexcept;
  void from(const Trial& one, const Trial& two, Pair& pair) const noexcept;

  Phase phase_of(const Trial& trial) noexcept;

  Edition edition_;
  double T_, p_;
  std::size_t count_ = 0;
  std::array<std::size_t, component_count> index_{};
  List z_{}, ln_z_{};
  std::size_t water_ = component_count;               // its place, when it takes part
  std::array<std::size_t, component_count> heavy_{};  // places of pentanes and above
  std::size_t heavy_count_ = 0;
  bool untested_ = false;  // in the last test a start had no density
  PhaseMixture mixture_;
  Isotherm isotherm_;
};

bool Flash::evaluate(Trial& trial, std::array<List, component_count>* slope) noexcept {
  Composition x{};
  for (std::size_t a = 0; a < count_; ++a) x[index_[a]] = trial.x[a];
  mixture_.set(edition_, x);
  isotherm_.set(mixture_, T_);
  // Only a composition that has hardly changed has its density on the same branch.
  constexpr double near_x = 0.01;
  double change = 0.0;
  for (std::size_t a = 0; a < count_; ++a) change += std::fabs(trial.x[a] - trial.x_of_rho[a]);
  if (!(trial.rho > 0.0 && change < near_x && isotherm_.density_near(p_, trial.rho, trial.rho))) {
    double vapour = 0.0, liquid = 0.0;
    const bool has_vapour = isotherm_.vapour_density(p_, vapour);
    const bool has_liquid = !(has_vapour && isotherm_.has_one_root()) && isotherm_.liquid_density(p_, liquid);
    // Close to its critical point a mixture may have neither, between the two: it splits, and a root on the loop
    // serves as the reference for that.
    trial.loop = !has_vapour && !has_liquid;
    if (trial.loop && !isotherm_.loop_density(p_, vapour)) return false;
    trial.rho = has_liquid && !has_vapour ? liquid : vapour;
    if (has_vapour && has_liquid) {
      const auto gibbs = [&](double rho) {
        const double z = p_ / (rho * isotherm_.RT);
        return isotherm_.energy(rho) + z - 1.0 - log(z);
      };
      if (gibbs(liquid) < gibbs(vapour)) trial.rho = liquid;
    }
  }
  trial.x_of_rho = trial.x;
  const double z = p_ / (trial.rho * isotherm_.RT);
  PerComponent ln_phi;
  if (slope == nullptr) {
    fugacity(mixture_, isotherm_, trial.rho, z, ln_phi);
  } else {
    PerPair all;
    fugacity(mixture_, isotherm_, trial.rho, z, ln_phi, all);
    for (std::size_t a = 0; a < count_; ++a)
      for (std::size_t b = 0; b < count_; ++b) (*slope)[a][b] = all[index_[a]][index_[b]];
  }
  trial.g = 0.0;
  for (std::size_t a = 0; a < count_; ++a) {
    trial.ln_phi[a] = ln_phi[index_[a]];
    trial.g += trial.x[a] * (trial.ln_x[a] + trial.ln_phi[a]);
  }
  return std::isfinite(trial.g);
}

// ---- Stability ---------------------------------------------------------------------------------------------------

// Starts: vapour and liquid after Wilson, for a feed also nearer to it; each component nearly pure; the middle of two
// phases, where a third lies near a critical end point. Of water with heavy hydrocarbons the equation has liquids of
// all proportions, which lie between these: each of them in equal parts with water, as a tenth of it, and in equal
// parts with the phases known.
List Flash::start(std::size_t which, const Trial& reference, const Trial* other) const noexcept {
  constexpr double share[4] = {-1.0, 1.0, -1.0 / 3.0, 1.0 / 3.0};
  const std::size_t shares = other == nullptr ? 4 : 2;
  List W{};
  const auto mix = [&](const List& rest, std::size_t component, double part, double water_part = 0.0) {
    for (std::size_t a = 0; a < count_; ++a) W[a] = (1.0 - part - water_part) * rest[a];
    W[component] += part;
    if (water_part > 0.0) W[water_] += water_part;
  };
  List ln_W;
  if (which < shares) {
    for (std::size_t a = 0; a < count_; ++a) {
      const Volatility& v = volatility[index_[a]];
      const double ln_K = log(v.p_c / p_) + 5.373 * (1.0 + v.omega) * (1.0 - components[index_[a]].T_c / T_);
      ln_W[a] = within_bounds(ln_z_[a] + share[which] * ln_K);
    }
    return ln_W;
  }
  which -= shares;
  if (which < count_) {
    mix(z_, which, 0.999);
  } else if (which -= count_; other != nullptr && which-- == 0) {
    for (std::size_t a = 0; a < count_; ++a) W[a] = 0.5 * (reference.x[a] + other->x[a]);
  } else {
    const std::size_t component = heavy_[which % heavy_count_];
    switch (which / heavy_count_) {
      case 0: mix(z_, component, 0.5, 0.499); break;
      case 1: mix(z_, component, 0.1, 0.899); break;
      case 2: mix(reference.x, component, 0.5); break;
      default: mix(other->x, component, 0.5); break;
    }
  }
  for (std::size_t a = 0; a < count_; ++a) ln_W[a] = within_bounds(log(W[a]));
  return ln_W;
}

// From a start to a stationary point of the tangent plane distance: by substitution first, then by Newton's method in
// alpha = 2 sqrt(W), in which the matrix of second derivatives is near the unit matrix. True when it is negative.
Flash::Find Flash::trial(List ln_W, const List& d, const Trial& reference, const Trial* other) noexcept {
  constexpr int steps = 60, substitutions = 6;
  constexpr double stationary = 1e-7;  // greatest change of ln W: tm is known to its square
  constexpr double clearly = -1e-4;    // a distance that needs no stationary point
  constexpr int patience = 4;          // steps that it is followed all the same, for a better first guess of K
  constexpr double share_kept = 0.1;   // of sqrt(W), in one step
  constexpr double small = 1e-3, quadratic = 0.2;
  Find find, least;
  find.ln_W = ln_W;
  List last_ln_W{}, step{};
  double last_tm = 1e300, lambda = 0.0;
  const auto move = [&](const List& from) {
    for (std::size_t a = 0; a < count_; ++a) {
      const double root = exp(0.5 * from[a]);
      const double next = std::clamp(root + 0.5 * step[a], share_kept * root, root / share_kept);
      find.ln_W[a] = within_bounds(2.0 * log(next));
    }
  };
  for (int i = 0; i < steps; ++i) {
    double sum = 0.0;
    List W;
    for (std::size_t a = 0; a < count_; ++a) sum += W[a] = exp(find.ln_W[a]);
    const double ln_sum = log(sum);
    for (std::size_t a = 0; a < count_; ++a) {
      find.phase.x[a] = W[a] / sum;
      find.phase.ln_x[a] = find.ln_W[a] - ln_sum;
    }
    std::array<List, component_count> slope;
    const bool second_order = i >= substitutions;
    if (!evaluate(find.phase, second_order ? &slope : nullptr)) {
      if (i == 0) untested_ = true;
      return least;
    }

    double tm = 1.0, change = 0.0, form = 0.0;
    List g, substituted;
    for (std::size_t a = 0; a < count_; ++a) {
      g[a] = find.ln_W[a] + find.phase.ln_phi[a] - d[a];
      tm += W[a] * (g[a] - 1.0);
      form += (W[a] - reference.x[a]) * g[a];
      substituted[a] = within_bounds(d[a] - find.phase.ln_phi[a]);
      change = std::max(change, std::fabs(substituted[a] - find.ln_W[a]));
    }
    find.tm = tm;
    if (tm < least.tm) least = find;
    // A feed near its critical point has phases near itself; two phases in equilibrium draw in what comes near.
    if (distance(find.phase, reference) < (other == nullptr ? returned : drawn_in)) return least;
    if (other != nullptr && distance(find.phase, *other) < drawn_in) return least;
    // Near the feed tm is a quadratic form, half of sum (W - z) g, and rising: the trial comes back to it.
    if (other == nullptr && tm > 0.0 && tm < small && std::fabs(2.0 * tm / form - 1.0) < quadratic) return least;
    if (change < stationary || (tm < clearly && (change < 1.0 || i >= patience))) return least;
    if (!second_order) {
      find.ln_W = substituted;
      continue;
    }
    if (tm > last_tm + 1e-12 * (1.0 + std::fabs(last_tm))) {  // uphill: back, and a shorter step
      lambda = std::max(4.0 * lambda, 0.1);
      if (lambda > 1e4) return least;
      for (double& length : step) length *= 0.25;
      move(last_ln_W);
      continue;
    }
    std::array<List, component_count> H;
    for (std::size_t a = 0; a < count_; ++a) {
      const double root = std::sqrt(W[a]);
      for (std::size_t b = 0; b <= a; ++b) H[a][b] = root * std::sqrt(W[b]) * slope[a][b] / sum;
      H[a][a] += 1.0 + 0.5 * g[a];
      g[a] *= root;
    }
    if (!solve(H, g, count_, lambda, step)) return least;
    lambda *= 0.25;
    last_tm = tm;
    last_ln_W = find.ln_W;
    move(last_ln_W);
  }
  return least;
}

bool Flash::test(const List& d, const Trial& reference, const Trial* other, Find& found) noexcept {
  untested_ = false;
  for (std::size_t which = 0; which < start_count(other); ++which) {
    found = trial(start(which, reference, other), d, reference, other);
    if (found.tm < negative) return true;
  }
  return false;
}

// ---- Two phases --------------------------------------------------------------------------------------------------

// The share b of the vapour from f = sum z_i (K_i - 1)/(1 - b + b K_i) = 0. It may lie outside 0 to 1 on the way. f
// falls with b from one pole to another; without the poles, as h = (b - low)(high - b) f, it is nearly straight. With
// all K on one side of 1 there is but one phase: 1 or 0.
double Flash::rachford_rice(const List& ln_K, double b) const noexcept {
  List K;
  double least = 1.0, most = 1.0;
  for (std::size_t a = 0; a < count_; ++a) {
    K[a] = exp(ln_K[a]);
    least = std::min(least, K[a]);
    most = std::max(most, K[a]);
  }
  if (!(least < 1.0)) return 1.0;
  if (!(most > 1.0)) return 0.0;
  const double left = 1.0 / (1.0 - most), right = 1.0 / (1.0 - least);
  double low = left, high = right;
  if (!(b > low && b < high)) b = 0.5 * (std::max(low, 0.0) + std::min(high, 1.0));
  constexpr int steps = 100;
  constexpr double rounding = 1e-15;
  for (int i = 0; i < steps; ++i) {
    double f = 0.0, slope = 0.0;
    for (std::size_t a = 0; a < count_; ++a) {
      const double share = (K[a] - 1.0) / (1.0 - b + b * K[a]);
      f += z_[a] * share;
      slope -= z_[a] * share * share;
    }
    (f > 0.0 ? low : high) = b;
    const double h = (b - left) * (right - b);
    const double h_slope = (left + right - 2.0 * b) * f + h * slope;
    double next = b - h * f / h_slope;
    if (!(next > low && next < high)) next = 0.5 * (low + high);
    const bool settled = std::fabs(next - b) <= rounding * (1.0 + std::fabs(b)) && std::fabs(f) < 1.0;
    b = next;
    if (settled || !(high - low > rounding * std::fabs(b))) break;
  }
  return b;
}

// Compositions of both phases from K and b.
void Flash::amounts(Pair& pair) const noexcept {
  double y_sum = 0.0, x_sum = 0.0;
  for (std::size_t a = 0; a < count_; ++a) {
    const double K = exp(pair.ln_K[a]);
    pair.liquid.x[a] = z_[a] / (1.0 - pair.b + pair.b * K);
    pair.vapour.x[a] = K * pair.liquid.x[a];
    x_sum += pair.liquid.x[a];
    y_sum += pair.vapour.x[a];
  }
  for (std::size_t a = 0; a < count_; ++a) {
    pair.liquid.x[a] /= x_sum;
    pair.liquid.ln_x[a] = log(pair.liquid.x[a]);
    pair.vapour.x[a] /= y_sum;
    pair.vapour.ln_x[a] = log(pair.vapour.x[a]);
  }
}

// K from two phases, the lighter one on top.
void Flash::from(const Trial& one, const Trial& two, Pair& pair) const noexcept {
  pair.vapour = one.rho < two.rho ? one : two;
  pair.liquid = one.rho < two.rho ? two : one;
  for (std::size_t a = 0; a < count_; ++a) pair.ln_K[a] = pair.vapour.ln_x[a] - pair.liquid.ln_x[a];
}

// Successive substitution, ln K = ln phi of the liquid - ln phi of the vapour, accelerated along the slowest
// direction.
Flash::Ending Flash::substitute(Pair& pair) noexcept {
  constexpr int steps = 12, between = 4;
  constexpr double close = 1e-3;  // from here Newton's method takes two or three steps
  constexpr double longest = 20.0;
  List last_change{};
  for (int i = 0; i < steps; ++i) {
    pair.b = rachford_rice(pair.ln_K, pair.b);
    amounts(pair);
    if (!evaluate(pair.vapour) || !evaluate(pair.liquid)) return Ending::failed;
    double greatest = 0.0, apart = 0.0, now_now = 0.0, now_last = 0.0, last_last = 0.0;
    for (std::size_t a = 0; a < count_; ++a) {
      const double next = within_bounds(pair.liquid.ln_phi[a] - pair.vapour.ln_phi[a]);
      const double change = next - pair.ln_K[a];
      greatest = std::max(greatest, std::fabs(change));
      apart = std::max(apart, std::fabs(next));
      now_now += change * change;
      now_last += change * last_change[a];
      last_last += last_change[a] * last_change[a];
      last_change[a] = change;
      pair.ln_K[a] = next;
    }
    if (apart < identical) return Ending::collapsed;
    if (greatest < close) return Ending::converged;
    if (i % between == between - 1 && last_last > 0.0) {
      const double eigenvalue = now_last / last_last;
      if (eigenvalue > 0.0 && eigenvalue < 1.0 && now_now < last_last) {
        const double further = std::min(eigenvalue / (1.0 - eigenvalue), longest);
        for (std::size_t a = 0; a < count_; ++a) pair.ln_K[a] += further * last_change[a];
      }
    }
  }
  return Ending::converged;
}

// Newton's method on the Gibbs energy as a function of the vapour's amounts v_i = b y_i. Scaled by sqrt(v_i
// l_i/z_i) the matrix of second derivatives is near the unit matrix. A step uphill is taken back and shortened.
Flash::Ending Flash::newton(Pair& pair) noexcept {
  constexpr int steps = 60;
  constexpr double share_kept = 0.1;  // of an amount, in one step
  constexpr double trace = 0.9 * longest_log;
  List v, l;
  for (std::size_t a = 0; a < count_; ++a) {
    v[a] = pair.b * pair.vapour.x[a];
    l[a] = (1.0 - pair.b) * pair.liquid.x[a];
    if (!(v[a] > 0.0 && l[a] > 0.0)) return Ending::outside;
    const double balance = z_[a] / (v[a] + l[a]);
    v[a] *= balance;
    l[a] *= balance;
  }
  double last_g = 1e300, lambda = 0.0;
  List last_v = v, last_l = l, step{};
  Trial last_vapour = pair.vapour, last_liquid = pair.liquid;
  const auto move = [&] {
    double length = 1.0;
    for (std::size_t a = 0; a < count_; ++a) {
      if (step[a] < 0.0) length = std::min(length, (share_kept - 1.0) * last_v[a] / step[a]);
      if (step[a] > 0.0) length = std::min(length, (1.0 - share_kept) * last_l[a] / step[a]);
    }
    for (std::size_t a = 0; a < count_; ++a) {
      v[a] = last_v[a] + length * step[a];
      l[a] = last_l[a] - length * step[a];
    }
  };
  for (int i = 0; i < steps; ++i) {
    double V = 0.0, L = 0.0;
    for (std::size_t a = 0; a < count_; ++a) {
      V += v[a];
      L += l[a];
    }
    for (std::size_t a = 0; a < count_; ++a) {
      pair.vapour.x[a] = v[a] / V;
      pair.vapour.ln_x[a] = log(pair.vapour.x[a]);
      pair.liquid.x[a] = l[a] / L;
      pair.liquid.ln_x[a] = log(pair.liquid.x[a]);
    }
    pair.b = V / (V + L);
    std::array<List, component_count> vapour_slope, liquid_slope;
    const bool known = evaluate(pair.vapour, &vapour_slope) && evaluate(pair.liquid, &liquid_slope);
    const double g = pair.b * pair.vapour.g + (1.0 - pair.b) * pair.liquid.g;
    constexpr double rounding = 1e-13;
    if (!known || g > last_g + rounding * std::fabs(last_g)) {
      if (i == 0) return Ending::failed;
      lambda = std::max(4.0 * lambda, 0.1);
      if (lambda > 1e6) return Ending::failed;
      for (double& s : step) s *= 0.25;
      pair.vapour = last_vapour;
      pair.liquid = last_liquid;
      move();
      continue;
    }
    List gradient;
    double greatest = 0.0, apart = 0.0;
    for (std::size_t a = 0; a < count_; ++a) {
      pair.ln_K[a] = pair.vapour.ln_x[a] - pair.liquid.ln_x[a];
      const double difference = pair.ln_K[a] + pair.vapour.ln_phi[a] - pair.liquid.ln_phi[a];
      // An amount at its bound may stay there.
      if (std::fabs(pair.ln_K[a]) < trace) greatest = std::max(greatest, std::fabs(difference));
      apart = std::max(apart, std::fabs(pair.ln_K[a]));
      gradient[a] = difference;
    }
    pair.g = g;
    if (apart < identical) return Ending::collapsed;
    if (greatest < equal) return Ending::converged;
    // A phase that vanishes: the boundary of the two-phase region is passed.
    if (V < least_amount || L < least_amount) return Ending::outside;

    std::array<List, component_count> H;
    List scale;
    for (std::size_t a = 0; a < count_; ++a) {
      scale[a] = std::sqrt(v[a] * l[a] / z_[a]);
      gradient[a] *= scale[a];
      for (std::size_t b = 0; b <= a; ++b)
        H[a][b] = scale[a] * scale[b] * ((vapour_slope[a][b] - 1.0) / V + (liquid_slope[a][b] - 1.0) / L);
      H[a][a] += 1.0;
    }
    if (!solve(H, gradient, count_, lambda, step)) return Ending::failed;
    lambda *= 0.25;
    if (lambda < 1e-4) lambda = 0.0;
    for (std::size_t a = 0; a < count_; ++a) step[a] *= scale[a];
    last_g = g;
    last_v = v;
    last_l = l;
    last_vapour = pair.vapour;
    last_liquid = pair.liquid;
    move();
  }
  return Ending::failed;
}

// From a phase that lowers the Gibbs energy of the feed: first by substitution, which needs few steps; if that leads
// elsewhere, downhill from the feed with a little of the new phase in it.
bool Flash::two_phases(const Find& find, const Trial& feed, Pair& pair) noexcept {
  from(find.phase, feed, pair);
  if (iterate(pair) == Ending::converged && pair.g < feed.g) return true;
  return descend(find.phase, feed, pair) && pair.g < feed.g;
}

Flash::Ending Flash::iterate(Pair& pair) noexcept {
  constexpr int rounds = 3;
  for (int i = 0; i < rounds; ++i) {
    const Ending start = substitute(pair);
    if (start != Ending::converged) return start;
    if (!(pair.b > 0.0 && pair.b < 1.0)) continue;
    const Pair kept = pair;
    const Ending ending = newton(pair);
    if (ending == Ending::converged || ending == Ending::collapsed) return ending;
    pair = kept;
  }
  return Ending::outside;
}

bool Flash::descend(const Trial& found, const Trial& feed, Pair& pair) noexcept {
  const bool lighter = found.rho < feed.rho;
  double share = 1.0;
  for (std::size_t a = 0; a < count_; ++a) share = std::min(share, z_[a] / found.x[a]);
  constexpr int halvings = 40;
  for (int i = 0; i < halvings; ++i) {
    share *= 0.5;
    Trial rest = feed;
    for (std::size_t a = 0; a < count_; ++a) {
      rest.x[a] = (z_[a] - share * found.x[a]) / (1.0 - share);
      rest.ln_x[a] = log(rest.x[a]);
    }
    if (!evaluate(rest) || !(share * found.g + (1.0 - share) * rest.g < feed.g)) continue;
    pair.vapour = lighter ? found : rest;
    pair.liquid = lighter ? rest : found;
    pair.b = lighter ? share : 1.0 - share;
    return newton(pair) == Ending::converged;
  }
  return false;
}

// ---- The whole ---------------------------------------------------------------------------------------------------

Phase Flash::phase_of(const Trial& trial) noexcept {
  Phase phase;
  for (std::size_t a = 0; a < count_; ++a) phase.x[index_[a]] = trial.x[a];
  mixture_.set(edition_, phase.x);
  phase.rho = trial.rho;
  phase.z = p_ / (trial.rho * (R * T_));
  phase.molar_mass = mixture_.molar_mass;
  phase.liquid = trial.rho * mixture_.v_r > 1.0 && T_ < mixture_.T_r;
  return phase;
}

FlashResult Flash::run(Equilibrium& answer) noexcept {
  Trial feed;
  feed.x = z_;
  feed.ln_x = ln_z_;
  if (!evaluate_afresh(feed)) return FlashResult::no_density;
  answer = {};
  List d;
  for (std::size_t a = 0; a < count_; ++a) d[a] = ln_z_[a] + feed.ln_phi[a];
  Find find;
  if (count_ == 1 || !test(d, feed, nullptr, find)) {
    if (feed.loop) return FlashResult::no_density;
    answer.untested = untested_;
    answer.vapour = phase_of(feed);
    return FlashResult::found;
  }

  Pair best;
  if (!two_phases(find, feed, best)) return FlashResult::not_converged;

  // Against the phases found. A better pair holds the new phase and one of the two.
  constexpr int rounds = 3;
  for (int i = 0;; ++i) {
    for (std::size_t a = 0; a < count_; ++a) d[a] = best.vapour.ln_x[a] + best.vapour.ln_phi[a];
    answer.third = test(d, best.vapour, &best.liquid, find);
    answer.untested = untested_;
    if (!answer.third || i == rounds) break;
    const double before = best.g;
    for (const Trial* partner : {&best.vapour, &best.liquid}) {
      Pair pair;
      from(find.phase, *partner, pair);
      if (iterate(pair) == Ending::converged && pair.g < best.g) best = pair;
    }
    if (!(best.g < before)) break;
  }
  if (best.vapour.loop || best.liquid.loop) return FlashResult::not_converged;
  answer.split = true;
  if (best.vapour.rho > best.liquid.rho) {
    std::swap(best.vapour, best.liquid);
    best.b = 1.0 - best.b;
  }
  answer.vapour_fraction = best.b;
  answer.vapour = phase_of(best.vapour);
  answer.liquid = phase_of(best.liquid);
  return FlashResult::found;
}

// Of all components only water has no liquid where it would be one: its equation has none below 229.5 K, at 200 MPa
// below 191 K. A mixture close to water then has loops that look like liquids of very low energy.
bool has_no_liquid_water(Edition edition, double T, double p) noexcept {
  constexpr double always_above = 235.0;  // [K]
  if (!(T < always_above)) return false;
  Composition pure{};
  pure[water] = 1.0;
  Mixture mixture;
  mixture.set(edition, pure);
  Isotherm isotherm;
  isotherm.set(mixture, T);
  double rho = 0.0;
  return !isotherm.liquid_density(p, rho);
}

}  // namespace

FlashResult flash(Edition edition, const Composition& x, double T, double p, Equilibrium& answer) noexcept {
  Composition z = x;
  const bool without_water = z[water] >= least_amount && has_no_liquid_water(edition, T, p);
  if (without_water) {
    if (z[water] > most_water_left_out) return FlashResult::no_liquid_water;
    z[water] = 0.0;
  }
  Flash flash(edition, z, T, p);
  const FlashResult result = flash.run(answer);
  answer.without_water = without_water;
  return result;
}

}  // namespace norvane::GERG2008
