"""Speed of the Python module against the C++ library and the usual numpy/scipy tools.

    PYTHONPATH=<build>/python python3 bench/python_bench.py [--cpp <build>/bench]

CFC 60 on a 10^6-sample crash pulse from Python (copy in, the library's Compute, copy out)
next to the C++ time of the same call (BM_CFC60 of bench_filters, same signal length, when --cpp
names the directory of the benchmark programs), scipy's sosfiltfilt of a 4-pole Butterworth
low-pass at 100 Hz and numpy.convolve with the 81-tap CFC 60 kernel; then the principal values
of 10^6 symmetric tensors next to the C++ loop (BM_ZmMathValues of bench_tensors) and
numpy.linalg.eigvalsh. Wall-clock medians of --repeat runs; with --cpu, processor-time medians
on both sides (Google Benchmark's CPU column), steadier on a machine shared with other jobs.

The CFC filter at any rate (zemcalc.CFCFilter(60), both twins) on the same pulse, next to the C++
call (BM_CFCAnyRate60d of bench_crash) and scipy's sosfiltfilt with the same design: a 2-pole
Butterworth at 2.0775 x 60 Hz run forward and backward, reflected ends of the filter's automatic
500 samples (padtype "odd"); the largest difference between the two results is printed too.
"""
import argparse
import json
import subprocess
import time

import numpy as np

import zemcalc as zc


CLOCK = time.perf_counter
CPP_TIME = "real_time"


def median_ms(fn, repeat):
    times = []
    for _ in range(repeat):
        start = CLOCK()
        fn()
        times.append(CLOCK() - start)
    return 1e3 * float(np.median(times))


def cpp_ms(program, name, repeat):
    out = subprocess.run([program, f"--benchmark_filter=^{name}$", "--benchmark_format=json",
                          f"--benchmark_repetitions={repeat}", "--benchmark_report_aggregates_only=true"],
                         check=True, capture_output=True, text=True).stdout
    for b in json.loads(out)["benchmarks"]:
        if b.get("aggregate_name") == "median":
            return b[CPP_TIME] * {"ms": 1.0, "us": 1e-3, "ns": 1e-6, "s": 1e3}[b["time_unit"]]
    raise RuntimeError(f"no median for {name}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cpp", help="the directory of bench_filters and bench_tensors, for the C++ times")
    parser.add_argument("--repeat", type=int, default=10)
    parser.add_argument("--cpu", action="store_true", help="processor time instead of wall-clock time")
    args = parser.parse_args()
    if args.cpu:
        global CLOCK, CPP_TIME
        CLOCK, CPP_TIME = time.process_time, "cpu_time"
    n = 1_000_000
    rng = np.random.default_rng(7)
    t = np.arange(n) * 1.0e-4
    phase = np.fmod(t, 0.1)
    pulse = np.column_stack([t, np.where(phase < 0.08, -40.0 * np.sin(np.pi * phase / 0.08), 0.0)
                             + rng.normal(0.0, 2.0, n)])
    cfc60 = zc.CFC60()
    cfc60(pulse)  # the first call normalises the kernel
    half = cfc60.coefficients
    kernel = np.concatenate([half, half[-2::-1]])
    rows = [("zemcalc.CFC60, float64", median_ms(lambda: cfc60(pulse), args.repeat))]
    pulse32 = pulse.astype(np.float32)
    rows.append(("zemcalc.CFC60, float32", median_ms(lambda: cfc60(pulse32), args.repeat)))
    if args.cpp:
        rows.append(("C++ ZmFilterCFC60_10kHzd::Compute", cpp_ms(f"{args.cpp}/bench_filters", "BM_CFC60", args.repeat)))
    try:
        from scipy import signal
        sos = signal.butter(4, 100.0, fs=1.0e4, output="sos")
        rows.append(("scipy.signal.sosfiltfilt, Butterworth 4", median_ms(lambda: signal.sosfiltfilt(sos, pulse[:, 1]),
                                                                         args.repeat)))
    except ImportError:
        pass
    cfc_any, cfc_any32 = zc.CFCFilter(60), zc.CFCFilter(60)
    cfc_any32.step_tolerance = 0.1  # float abscissae of a 100 s record are 7.6e-6 s apart near its end
    rows.append(("zemcalc.CFCFilter(60), float64", median_ms(lambda: cfc_any(pulse), args.repeat)))
    rows.append(("zemcalc.CFCFilter(60), float32", median_ms(lambda: cfc_any32(pulse32), args.repeat)))
    if args.cpp:
        rows.append(("C++ ZmFilterCFCd(60)::Compute", cpp_ms(f"{args.cpp}/bench_crash", "BM_CFCAnyRate60d", args.repeat)))
    try:
        from scipy import signal
        sos2 = signal.butter(2, 2.0775 * 60.0, fs=1.0e4, output="sos")
        rows.append(("scipy.signal.sosfiltfilt, same design, padtype odd, padlen 500",
                     median_ms(lambda: signal.sosfiltfilt(sos2, pulse[:, 1], padtype="odd", padlen=500), args.repeat)))
        gap = np.max(np.abs(cfc_any(pulse)[:, 1] - signal.sosfiltfilt(sos2, pulse[:, 1], padtype="odd", padlen=500)))
        print(f"largest |zemcalc.CFCFilter(60) - sosfiltfilt|: {gap:.3g} (signal amplitude 40)")
    except ImportError:
        pass
    rows.append(("numpy.convolve, 81 taps", median_ms(lambda: np.convolve(pulse[:, 1], kernel, "same"), args.repeat)))

    tensors = rng.uniform(-100.0, 100.0, (n, 6))
    matrices = tensors[:, [0, 3, 5, 3, 1, 4, 5, 4, 2]].reshape(n, 3, 3)
    rows.append(("zemcalc.principal_values, 10^6 tensors", median_ms(lambda: zc.principal_values(tensors), args.repeat)))
    if args.cpp:
        rows.append(("C++ ZmMathd::Tensor3DToMainValues loop", cpp_ms(f"{args.cpp}/bench_tensors", "BM_ZmMathValues", 3)))
    rows.append(("numpy.linalg.eigvalsh, 10^6 tensors", median_ms(lambda: np.linalg.eigvalsh(matrices), args.repeat)))
    print("| operation, 10^6 samples or tensors | median time (ms) |")
    print("|---|---|")
    for name, ms in rows:
        print(f"| {name} | {ms:.1f} |")


if __name__ == "__main__":
    main()
