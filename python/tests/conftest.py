"""Reference values: the C++ program named by ZEMCALC_REFERENCE reads the inputs made here and
writes the library's results on them, which test_bits compares bit for bit with the module's."""
import os
import subprocess

import numpy as np
import pytest

TWINS = {"d": np.float64, "f": np.float32}


def _inputs():
    """A crash pulse sampled at 10 kHz (a half sine of 80 ms with ringing and noise) and curves made
    of it, noisy points, shapes and tensors (the first with a repeated eigenvalue, the second zero)."""
    rng = np.random.default_rng(12345)
    noise = lambda *shape: rng.uniform(-1.0, 1.0, shape)
    t, i, j, k = np.arange(2000) * 1e-4, np.arange(60), np.arange(50), np.arange(40)
    y = np.where(t < 0.08, 400 * np.sin(np.pi * t / 0.08), 0) + 30 * np.sin(2 * np.pi * 900 * t) + 5 * noise(2000)
    a, b, r, e = 0.37 * i, 0.05 * i - 1.5, 4 + 0.01 * noise(60), 0.02 + 0.03 * np.arange(12)
    points, tensors = noise(500, 3) * [60, 10, 250], 100 * noise(1000, 6)
    tensors[:2] = [[5, 5, 5, 0, 0, 0], [0] * 6]
    xy = lambda *columns: np.column_stack(columns)
    return {"pulse": xy(t, y), "pulse_ms": xy(0.1 * np.arange(2000), y), "lateral": xy(t, 0.5 * y),
            "head": xy(t, y)[:300], "shifted": xy(t[:300], np.roll(y[:300], -7)),
            "trans_output": xy(t, 0.6 * y[np.maximum(np.arange(2000) - 3, 0)] + 2.0),
            "tensors": tensors, "pressures": 1e6 * (1 + noise(100, 1)),
            "measured": xy(e, 530 * e ** 0.21 * (1 + 0.01 * noise(12))),
            "polyline": xy(j, 3 * np.sin(0.3 * j), 0.1 * j * j), "points": points,
            "arc": xy(3 + 7 * np.cos(0.05 * k), -2 + 7 * np.sin(0.05 * k) + 0.01 * noise(40)),
            "turned": xy(1 - points[:, 1], 2 + points[:, 0], 3 + points[:, 2] + 0.1 * noise(500)),
            "sphere": xy(1 + r * np.cos(a) * np.cos(b), -2 + r * np.sin(a) * np.cos(b), 3 + r * np.sin(b)),
            "cylinder": xy(2 + r * np.cos(a), 0.2 * i, -1 + r * np.sin(a)),
            "oval": xy(1 + 4 * np.cos(a) - 1.2 * np.sin(a), 2 + 3 * np.cos(a) + 1.6 * np.sin(a) + 0.01 * noise(60)),
            "square": np.array([[0, 0, 0], [10, 0, 0.1], [10, 10, 0.2], [0, 10, 0.3]]),
            "hole": np.array([[4, 4, 0], [6, 4, 0], [6, 6, 0], [4, 6, 0]], float),
            "pen_nodes": np.vstack([[[0, 0, 0], [2, 0, 0], [2, 2, 0.1], [0, 2, 0], [3, 0, 0], [5, 0, 0], [4, 2, 0.2]],
                                    [2.5, 1, 0] + noise(40, 3) * [3, 1.5, 0.4]])}


@pytest.fixture(scope="session")
def reference():
    """Arrays and texts by name, "<name>/<d|f>": the inputs in both twins and the C++ results."""
    exe = os.environ.get("ZEMCALC_REFERENCE")
    if not exe:
        pytest.skip("ZEMCALC_REFERENCE names no reference program (run the suite through ctest)")
    inputs = _inputs()
    stdin = "".join(f"{name} {v.shape[0]} {v.size // v.shape[0]}\n{' '.join(map(float.hex, v.ravel().tolist()))}\n"
                    for name, v in inputs.items())
    arrays = {f"{name}/{t}": v.astype(dtype) for name, v in inputs.items() for t, dtype in TWINS.items()}
    lines = iter(subprocess.run([exe], input=stdin, check=True, capture_output=True, text=True).stdout.splitlines())
    for line in lines:
        words = line.split(" ", 2)
        if words[0] == "text":
            arrays[words[1]] = words[2] if len(words) > 2 else ""
        else:
            values = [float.fromhex(v) for v in next(lines).split()]
            arrays[words[0]] = np.array(values, TWINS[words[0][-1]]).reshape(int(words[1]), int(words[2]))
    return arrays

