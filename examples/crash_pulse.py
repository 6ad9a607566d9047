"""Filters a crash pulse with the channel-frequency-class filters and prints its peak values.

Run from a build tree with PYTHONPATH=<build dir>/python, or after installing the package.
"""
import numpy as np

import zemcalc as zc

# A sled deceleration sampled at 10 kHz, time in milliseconds: a 40 g half sine over 80 ms,
# with 1.2 kHz structural ringing and sensor noise on top.
rng = np.random.default_rng(7)
t = np.arange(1500) * 0.1
g = np.where(t < 80.0, -40.0 * np.sin(np.pi * t / 80.0), 0.0)
g += 6.0 * np.sin(2 * np.pi * 1.2 * t) + rng.normal(0.0, 1.5, t.size)
pulse = np.column_stack([t, g])

print(f"{'channel':<10} {'peak (g)':>9} {'at (ms)':>8}")
for name, curve in [("raw", pulse)] + [(f.name.split("_")[0][8:], f(pulse)) for f in
                                       (zc.CFC600("ms"), zc.CFC180("ms"), zc.CFC60("ms"))]:
    i = int(np.argmin(curve[:, 1]))
    print(f"{name:<10} {curve[i, 1]:9.2f} {curve[i, 0]:8.1f}")

# The peaks of the filtered signal's half-waves, and its level over a 3 ms window.
peaks, _ = zc.sinusoid_envelope(zc.CFC60("ms")(pulse), upper=False)
print("CFC 60 half-wave minima (ms, g):", np.round(peaks, 2).tolist())
try:
    zc.CFC60()(pulse)  # the time unit matters: 0.1 s steps are refused
except zc.Error as error:
    print("refused:", error)
