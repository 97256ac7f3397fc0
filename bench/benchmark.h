#pragma once

// Small helpers shared by the benchmark programs.

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

// Prints one figure in the form scripts/bench.sh collects.
inline void report(const char *name, double value, const char *unit)
{
    std::printf("%s %.3f %s\n", name, value, unit);
    std::fflush(stdout);
}

// The median wall time of `runs` calls of `work`, in milliseconds.
template<typename Work>
double medianMs(int runs, Work &&work)
{
    std::vector<double> times;
    times.reserve(runs);
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[runs / 2];
}
