"""Reference values: the C++ program named by ZEMCALC_REFERENCE writes inputs and the library's
results, which the tests feed through the module and compare bit for bit."""
import os
import subprocess

import numpy as np
import pytest


def _parse(text):
    arrays, texts = {}, {}
    lines = iter(text.splitlines())
    for line in lines:
        words = line.split(" ", 2)
        if words[0] == "text":
            texts[words[1]] = words[2] if len(words) > 2 else ""
            continue
        name, rows, cols = words[0], int(words[1]), int(words[2])
        dtype = np.float32 if name.endswith("/f") else np.float64
        values = [float.fromhex(v) for v in next(lines).split()]
        arrays[name] = np.array(values, dtype=dtype).reshape(rows, cols)
    return arrays, texts


@pytest.fixture(scope="session")
def reference():
    exe = os.environ.get("ZEMCALC_REFERENCE")
    if not exe:
        pytest.skip("ZEMCALC_REFERENCE names no reference program (run the suite through ctest)")
    return _parse(subprocess.run([exe], check=True, capture_output=True, text=True).stdout)


def same_bits(actual, expected):
    """True when both arrays have the same dtype, shape and bits (NaN included)."""
    actual = np.asarray(actual)
    return actual.dtype == expected.dtype and actual.shape == expected.shape and actual.tobytes() == expected.tobytes()
