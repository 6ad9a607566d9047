#!/usr/bin/python3
"""Times scipy's sosfiltfilt (CFC 60 at 10 kHz, odd padding of 500 samples, like ZmFilterCFCd's
default) on the 10^6-sample pulse of bench/crash.cpp; prints the best processor time of 10 runs in ms (the machine may be shared: processor time, as Google Benchmark's CPU column), then the same in a process whose allocator keeps the memory of one call for the next."""
import os
import subprocess
import sys
import time

import numpy as np
from scipy import signal

t = np.arange(1000000) * 1e-4
phase = np.fmod(t, 0.1)
y = np.where(phase < 0.08, -40.0 * np.sin(np.pi * phase / 0.08), 0.0) + np.random.default_rng(7).normal(0, 2, t.size)
sos = signal.butter(2, 2.0775 * 60, fs=10000, output="sos")
best = min((lambda s: (signal.sosfiltfilt(sos, y, padtype="odd", padlen=500), time.process_time() - s)[1])(
    time.process_time()) for _ in range(10))
KEEP = "MALLOC_MMAP_THRESHOLD_"
if KEEP not in os.environ:
    print("scipy %s sosfiltfilt, 10^6 samples: %.2f ms" % (__import__("scipy").__version__, best * 1e3))
    # Each call allocates its 8 MB arrays afresh, and glibc maps them from the system (page faults
    # included in the time). The benchmark reuses its output curve, so the same call is timed
    # again in a process whose allocator keeps its memory: the comparison that favours scipy.
    env = dict(os.environ, MALLOC_MMAP_THRESHOLD_="1073741824", MALLOC_TRIM_THRESHOLD_="2147483648")
    sys.stdout.flush()
    subprocess.run([sys.executable, __file__], env=env, check=True)
else:
    print("scipy sosfiltfilt, memory kept by the allocator: %.2f ms" % (best * 1e3))
