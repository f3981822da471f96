#pragma once

/// What figures need beyond + − × ÷ and √, made of these alone: the functions of a machine's own library
/// may differ in the last bit from those of another, and two machines would write two different reports.
namespace lab::stable {

/// The natural logarithm of a finite number above 0, to some units in the last place.
[[nodiscard]] double logarithm(double x);

/// e^x; infinite above 709.78, 0 below −745.2.
[[nodiscard]] double exponential(double x);

/// base^exponent for a finite base above 0.
[[nodiscard]] double power(double base, double exponent);

/// Φ(x), the share of a standard normal distribution below x.
[[nodiscard]] double normalShare(double x);

/// Φ⁻¹(share) for 0 < share < 1; exact to some 1e-15 where the share is at most one half.
[[nodiscard]] double normalQuantile(double share);

} // namespace lab::stable
