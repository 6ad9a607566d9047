#!/usr/bin/python3
"""Reference values of the CFC filter at any rate, computed with scipy (Debian's python3-scipy).

Writes cfc_filter.txt beside this script, read by tests/filters/test_cfc_filter.cpp:
  coef <k> <cfc> <fs> <b0> <b1> <b2> <a1> <a2>   scipy.signal.butter(2, k*cfc, fs=fs): b and a[1:]
  input <n> <fs> <y0> ... <yn-1>                 the reference signal, x_i = i / fs
  filtered <k> <cfc> <fs> <ends> <pad> <n> <y0> ... <yn-1>
where ends is odd/even/constant (sosfiltfilt's padtype with padlen = pad) or none (sosfilt
forward from rest, then sosfilt over the reversed result from rest, reversed back).
It also prints where the fixed 10 kHz FIR kernels sit against the J211/1 corridor.

Run: /usr/bin/python3 tests/reference/cfc_filter.py
"""
import math

import numpy as np
import scipy
from scipy import signal

from reference_support import fmt, write_beside

J211 = 2.0775
ISO = 25.0 / 12.0


def design(k, cfc, fs, output="ba"):
    return signal.butter(2, k * cfc, btype="low", fs=fs, output=output)


def reference_signal(n, fs):
    """A crash-like pulse on an offset, with noise: a half sine of 12 ms from 3 ms on."""
    rng = np.random.default_rng(16)
    t = np.arange(n) / fs
    pulse = np.where((t > 0.003) & (t < 0.015), 40.0 * np.sin(math.pi * (t - 0.003) / 0.012), 0.0)
    return np.round(2.5 + pulse + rng.normal(0.0, 3.0, n), 6)


def filtered(k, cfc, fs, ends, pad, y):
    sos = design(k, cfc, fs, output="sos")
    if ends == "none":
        forward = signal.sosfilt(sos, y)
        return signal.sosfilt(sos, forward[::-1])[::-1]
    return signal.sosfiltfilt(sos, y, padtype=ends, padlen=pad)


def corridor(cfc, f):
    """(lower, upper) in dB of the J211/1 CFC corridor at frequency f (Hz)."""
    fh, fn = cfc, cfc * 5.0 / 3.0
    upper = 0.5 if f <= fn else max(0.5 - 9.0 * math.log2(f / fn), -30.0)
    if f <= fh:
        lower = -0.5
    elif f <= fn:
        lower = -1.0 - 3.0 * math.log(f / fh) / math.log(fn / fh)
    else:
        lower = -math.inf
    return lower, upper


FIXED = {
    60: [-0.139593, -0.1363283, -0.1297337, -0.1196782, -0.105973, -0.08837478, -0.06659711, -0.04032801,
         -0.009227486, 0.02704436, 0.06881879, 0.1164061, 0.1700688, 0.2300157, 0.2963936, 0.3692688, 0.4485992,
         0.5342599, 0.6259945, 0.723458, 0.8261465, 0.9334888, 1.044765, 1.159146, 1.275743, 1.393509, 1.511388,
         1.628229, 1.742837, 1.854019, 1.960551, 2.061238, 2.154909, 2.240475, 2.316902, 2.38326, 2.438724,
         2.482607, 2.514358, 2.53357, 2.540001],
    180: [-0.1798959, -0.1781332, -0.1697561, -0.1456399, -0.09356785, 2.671033e-06, 0.1476574, 0.3584331,
          0.6352806, 0.9730306, 1.357338, 1.764996, 2.165815, 2.525941, 2.812142, 2.996394, 3.06],
    600: [-0.03039485, -0.05765256, -0.1836764, -0.3456453, -0.1976632, 0.6855329, 2.308616, 3.975888, 4.69],
}


def fixed_kernel_report():
    """The zero-phase response of each normalised fixed kernel at 10 kHz against the corridor."""
    fs = 10000.0
    f = np.linspace(0.1, fs / 2, 49999)
    for cfc, half in FIXED.items():
        c = np.array(half, dtype=np.float32).astype(np.float64)
        h = len(c) - 1  # centre last
        s = 2.0 * c[:h].sum() + c[h]
        c = c / s
        resp = c[h] + 2.0 * sum(c[k] * np.cos(2 * np.pi * f * (h - k) / fs) for k in range(h))
        db = 20 * np.log10(np.maximum(np.abs(resp), 1e-300))
        lo, up = zip(*(corridor(cfc, x) for x in f))
        lo = np.maximum(np.array(lo), -1e300)
        below = np.array(lo) - db
        above = db - np.array(up)
        out = f[(below > 0) | (above > 0)]
        f3 = f[np.argmax(db < -3.0)]
        print(f"CFC {cfc} 10 kHz kernel: -3 dB at {f3:.1f} Hz, passband ripple {db[f <= cfc].max():+.3f} / "
              f"{db[f <= cfc].min():+.3f} dB, worst excess below {below.max():.2f} dB, above {above.max():.2f} dB, "
              f"outside the corridor: {'nowhere' if out.size == 0 else f'{out.min():.0f} .. {out.max():.0f} Hz'}")


def main():
    lines = []
    for k in (J211, ISO):
        for cfc in (60, 180, 600, 1000):
            for fs in (10000.0, 12500.0, 20000.0, 50000.0, 100000.0):
                b, a = design(k, cfc, fs)
                lines.append("coef %.17g %d %.17g " % (k, cfc, fs) + fmt((*b, a[1], a[2])))
    n = 200
    for fs in (10000.0, 12500.0, 100000.0):
        y = reference_signal(n, fs)
        lines.append("input %d %.17g " % (n, fs) + fmt(y))
        cases = {10000.0: [(J211, 60, "odd"), (J211, 180, "odd"), (ISO, 180, "odd")],
                 12500.0: [(J211, 600, "odd"), (J211, 1000, "odd"), (J211, 600, "even"), (J211, 600, "constant"),
                           (J211, 600, "none")],
                 100000.0: [(J211, 1000, "odd")]}[fs]
        for k, cfc, ends in cases:
            pad = 0 if ends == "none" else min(math.ceil(3.0 * fs / cfc), n - 1)
            out = filtered(k, cfc, fs, ends, pad, y)
            lines.append("filtered %.17g %d %.17g %s %d %d " % (k, cfc, fs, ends, pad, n) + fmt(out))
    write_beside(__file__, "cfc_filter.txt", "# generated by cfc_filter.py (scipy %s); do not edit\n%s\n"
                 % (scipy.__version__, "\n".join(lines)))
    fixed_kernel_report()


if __name__ == "__main__":
    main()
