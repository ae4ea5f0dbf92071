/** Peak shapes and their partial derivatives: pure functions. Widths are half widths at half height. */
#pragma once

#include <cstdint>
#include <span>

/** Parameters of one shape. */
struct Peak_Parameters {
    double centre = 0.0;     ///< bins
    double amplitude = 0.0;  ///< counts
    double width = 0.0;      ///< bins
};

/** Shape value at a position; 0 beyond the cut-off (10 widths for the Gaussian, 50 for the Lorentzian) and for an
 * unknown shape. A width of 0 gives the amplitude at the centre and 0 elsewhere. @param mix_ratio weight of the
 * Lorentzian in the mixed shape */
double Shape_Value(std::uint8_t type, double position, const Peak_Parameters& parameters, double mix_ratio);

/** Partial derivative by parameter 0 centre, 1 amplitude, 2 width; 0 beyond the cut-off, for an unknown shape or index,
 * and for a width of 0 (but 1 by the amplitude at the centre). */
double Shape_Derivative(std::uint8_t type, std::uint8_t index, double position, const Peak_Parameters& parameters,
                        double mix_ratio);

/** Bins first .. last (both included) in which a shape may differ from 0; first > last: none. */
struct Bin_Span {
    int first = 0;
    int last = -1;
};

/** The bins of 0 .. nb_bins - 1 inside a Gaussian's cut-off. */
Bin_Span Gauss_Support(const Peak_Parameters& parameters, int nb_bins);

/** Values of a Gaussian of amplitude 1 at the bins of its support, one element per bin from `support.first` on. Forward
 *  differencing of the exponent from the centre outwards: two multiplications per bin instead of an exponential;
 *  relative error below 1e-8 over any support. @param unit support.last - support.first + 1 values */
void Gauss_Unit_Values(const Peak_Parameters& parameters, const Bin_Span& support, std::span<double> unit);

/** Derivatives of one Gaussian at many bins, from its unit values there. The width must not be 0. */
class Gauss_Slopes {
  public:
    explicit Gauss_Slopes(const Peak_Parameters& parameters);

    double By_Centre(double position, double unit) const {
        return p.amplitude * unit * (-2.0) * (p.centre - position) * sharpness;
    }
    static double By_Amplitude(double unit) { return unit; }
    double By_Width(double position, double unit) const {
        const double distance = position - p.centre;
        return p.amplitude * unit * widening * (distance * distance);
    }

  private:
    Peak_Parameters p;
    double sharpness;  ///< ln 2 / width^2
    double widening;   ///< 2 ln 2 / width^3
};
