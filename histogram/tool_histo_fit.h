/** The two analyses of a panel's histogram, apart from the panel. */
#pragma once

#include <cstdint>
#include <memory>

struct Histo_Data;
struct Histo_Record;

///@{
/** Analyses the record's counts as chosen by the colour component. The messages of an analysis may let the host destroy
 *  the panel or begin another analysis: the data live until this one ends, and another one meanwhile is refused.
 *  @param panel_data of a panel; null: there is nothing to analyse
 *  @return 1; 0 without counts and while an analysis runs */
int Histo_Fit_Derivative(const std::shared_ptr<Histo_Data>& panel_data, std::uint8_t component, std::uint8_t max_peak);
int Histo_Fit_Gaussian(const std::shared_ptr<Histo_Data>& panel_data, std::uint8_t component);
/** As if no fit had been before: see Histo_Fit_Repeatable. */
int Histo_Fit_Gaussian_First(const std::shared_ptr<Histo_Data>& panel_data, std::uint8_t component);
///@}

/** The counts that the colour component chooses: 0 the fourth array, 1 to 3 red, green, blue, 4 all; without colour
 * always all. Null: there are none. */
const std::uint32_t* Peak_Source_Counts(const Histo_Record& record, std::uint8_t component);

/** Fills `curve` (nb_bins values) from these counts; zeros where there are none. */
void Peak_Source_Curve(const Histo_Record& record, std::uint8_t component, double* curve);
