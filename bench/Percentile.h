#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace bench {

// The value at fraction `p` (0 to 1) of the sorted values, nearest rank; `values` is not empty.
inline double percentile(std::vector<double> values, double p) {
    std::sort(values.begin(), values.end());
    size_t index = static_cast<size_t>(p * static_cast<double>(values.size() - 1) + 0.5);
    return values[index];
}

}  // namespace bench
