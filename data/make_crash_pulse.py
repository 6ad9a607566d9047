#!/usr/bin/python3
"""Writes the small crash pulse shipped with zemcalc: head accelerations (g) of a frontal impact
sampled at 10 kHz, as a CSV table (crash_pulse.csv, time in seconds and the x, y, z channels)
and the x channel as an ISO/TS 13499 (MME) channel file (crash_pulse_head_x.mme). A synthetic
pulse: half sines of 12 ms to 70 ms plus measurement noise, 10 ms of quiet data before and after."""
import math
import os

import numpy as np

here = os.path.dirname(os.path.abspath(__file__))
rng = np.random.default_rng(2026)
t = np.arange(-100, 1000) * 1e-4  # -10 ms .. 99.9 ms


def half_sine(start, length, peak):
    phase = (t - start) / length
    return np.where((phase > 0) & (phase < 1), peak * np.sin(math.pi * phase), 0.0)


x = half_sine(0.0, 0.070, -38.0) + half_sine(0.030, 0.012, -55.0) + rng.normal(0, 1.5, t.size)
y = half_sine(0.010, 0.050, 6.0) + rng.normal(0, 1.0, t.size)
z = half_sine(0.020, 0.040, 14.0) + half_sine(0.031, 0.010, 22.0) + rng.normal(0, 1.2, t.size)

with open(os.path.join(here, "crash_pulse.csv"), "w") as f:
    f.write("time,head x,head y,head z\n")
    for row in zip(t, x, y, z):
        f.write("%.4f,%.3f,%.3f,%.3f\n" % row)

with open(os.path.join(here, "crash_pulse_head_x.mme"), "w") as f:
    header = [("Instrumentation standard", "ISO 6487"), ("Name of the channel", "11HEAD0000H3ACXA"),
              ("Laboratory channel code", "head x"), ("Unit", "g"), ("Reference system", "L"),
              ("Channel frequency class", "NOVALUE"), ("Sampling interval", "0.0001"), ("Bit resolution", "16"),
              ("Time of first sample", "-0.0100"), ("Number of samples", str(t.size))]
    for key, value in header:
        f.write("%-28s:%s\n" % (key, value))
    for v in x:
        f.write("%.3f\n" % v)
