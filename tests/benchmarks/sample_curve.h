/** Histograms of real images for the benchmarks: what scripts/sample_curves wrote into out/curves below the folder in
 * which the benchmark is started. */
#pragma once

#include <fstream>
#include <string>
#include <vector>

/** Counts, one per level; empty when the file is not there. @param name brain, brain_fine, ct */
inline std::vector<double> Sample_Curve(const std::string& name) {
    std::vector<double> counts;
    std::ifstream in("out/curves/" + name + ".txt");
    for (double count = 0.0; in >> count;) {
        counts.push_back(count);
    }
    return counts;
}
