// Medians and spreads, printed the same way by every benchmark.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace voxmate::bench
{

/// The time of a steady clock in milliseconds.
inline double NowMs()
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// The value below which `share` (0 to 1) of the values lie, interpolated; 0 when there are none.
inline double Quantile(std::vector<double> values, double share)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const double at = share * static_cast<double>(values.size() - 1);
    const auto below = static_cast<std::size_t>(at);
    const std::size_t above = std::min(below + 1, values.size() - 1);
    return values[below] + (values[above] - values[below]) * (at - static_cast<double>(below));
}

inline double Median(const std::vector<double>& values)
{
    return Quantile(values, 0.5);
}

/// Prints one line: what was measured, median, quartiles, extremes, count, and the aim if there is one.
inline void Report(const std::string& what, const std::vector<double>& values, const char* unit, const char* aim = "")
{
    std::printf("%-48s median %8.3f %s  (quartiles %.3f to %.3f, extremes %.3f to %.3f, n = %zu)%s%s\n", what.c_str(),
                Median(values), unit, Quantile(values, 0.25), Quantile(values, 0.75), Quantile(values, 0),
                Quantile(values, 1), values.size(), *aim ? "  aim: " : "", aim);
    std::fflush(stdout);
}

} // namespace voxmate::bench
