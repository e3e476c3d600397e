#pragma once
// Our figure beside its goal and its baseline, in the benchmark's own line: the counters ours_ms (mean
// of the timed runs), base_ms (median of the baseline's runs, done in the same process just before),
// x_base (ours / baseline) and the label naming the goal; the same in this thread's CPU time
// (ours_cpu_ms, base_cpu_ms, x_base_cpu), which other programs on a shared machine disturb less than
// the clock (the clock counts the waits for the disk, the CPU time does not). Ratios to the in-run
// baseline are what to compare between runs.

#include <benchmark/benchmark.h>

#include <QElapsedTimer>
#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

namespace BenchReport {

inline double threadCpuMs() {
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) * 1e3 + static_cast<double>(ts.tv_nsec) / 1e6;
}

// Milliseconds of one run of f, by the clock and in CPU time.
struct Time {
    double ms = 0;
    double cpuMs = 0;
};
template <typename F> Time time(F &&f) {
    const double cpu = threadCpuMs();
    QElapsedTimer t;
    t.start();
    f();
    return {static_cast<double>(t.nsecsElapsed()) / 1e6, threadCpuMs() - cpu};
}
template <typename F> double timeMs(F &&f) {
    return time(f).ms;
}

// Median of `runs` runs of f (clock and CPU time each).
template <typename F> Time median(int runs, F &&f) {
    std::vector<double> ms, cpu;
    for (int i = 0; i < runs; ++i) {
        const Time t = time(f);
        ms.push_back(t.ms);
        cpu.push_back(t.cpuMs);
    }
    std::sort(ms.begin(), ms.end());
    std::sort(cpu.begin(), cpu.end());
    return ms.empty() ? Time{} : Time{ms[ms.size() / 2], cpu[cpu.size() / 2]};
}

// Accumulates the timed runs of a benchmark loop.
class Runs {
public:
    template <typename F> void time(F &&f) { add(BenchReport::time(f)); }
    void add(const Time &t) {
        m_ms += t.ms;
        m_cpu += t.cpuMs;
        ++m_count;
    }
    Time mean() const { return m_count == 0 ? Time{} : Time{m_ms / m_count, m_cpu / m_count}; }

private:
    double m_ms = 0, m_cpu = 0;
    int m_count = 0;
};

inline void report(benchmark::State &state, const Time &ours, const Time &baseline, const std::string &goal) {
    state.counters["ours_ms"] = ours.ms;
    state.counters["ours_cpu_ms"] = ours.cpuMs;
    if (baseline.ms > 0) {
        state.counters["base_ms"] = baseline.ms;
        state.counters["x_base"] = ours.ms / baseline.ms;
    }
    if (baseline.cpuMs > 0) {
        state.counters["base_cpu_ms"] = baseline.cpuMs;
        state.counters["x_base_cpu"] = ours.cpuMs / baseline.cpuMs;
    }
    state.SetLabel("goal: " + goal);
}

} // namespace BenchReport
