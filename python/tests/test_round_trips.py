"""Pairs of calls that undo each other: each catches arguments passed in the wrong order or to
the wrong twin by the bindings."""
import numpy as np
import pytest

import zemcalc as zc

RNG = np.random.default_rng(3)
POINTS = RNG.uniform(-5.0, 5.0, (50, 3))
R = (1.7, 1.2, 2.1)
MM, SI, PRESSURE = zc.UnitSystem("mm", "T", "s"), zc.UnitSystem("m", "Kg", "s"), zc.dimension("pressure")
CYLINDRICAL = zc.Frame.from_direction((1, 2, 3), (0, 1, 1), 1)
OBLIQUE = zc.Frame.from_points((0, 0, 0), (1, 1, 0), (0, 0, 1))

# (name, round trip, expected, relative tolerance)
ROUND_TRIPS = [
    ("solver line", lambda: zc.UnitSystem.from_solver_line("UNIT M KG MS CELSIUS").solver_line(), "UNIT M KG MS CELSIUS", 0),
    ("solver line, no prefix", lambda: zc.UnitSystem.from_solver_line("MM TON S KELVIN", False).solver_line(False),
     "MM TON S KELVIN", 0),
    ("symbols", lambda: zc.UnitSystem.from_symbols("mm", "T", "ms", "K").units, (2, 4, 1, 0, 1), 0),
    ("format then parse", lambda: MM.parse(SI.format(2.5e9, PRESSURE), PRESSURE), 2500.0, 1e-6),
    ("list in another system", lambda: MM.parse_values("1; 2.5 GPa", PRESSURE).tolist(), [1000.0, 2500.0], 1e-6),
    ("cylindrical frame", lambda: CYLINDRICAL.to_global(CYLINDRICAL.to_local(POINTS)), POINTS, 1e-9),
    ("frame vectors, float", lambda: OBLIQUE.to_global(OBLIQUE.to_local(POINTS.astype(np.float32), True), True),
     POINTS, 1e-5),
    ("strains", lambda: zc.engineering_to_true_strain(zc.true_to_engineering_strain(np.linspace(-0.5, 0.5, 11), True)),
     np.linspace(-0.5, 0.5, 11), 1e-12),
    ("Hill and Lankford", lambda: zc.lankford_coefficients(*zc.hill_coefficients(*R)), R, 1e-12),
    ("polyline ends", lambda: zc.polyline_points_at(POINTS, [0.0, 1.0]), POINTS[[0, -1]], 0),
    ("projection on plane", lambda: zc.distance_to_plane(zc.project_on_plane(POINTS, (0, 0.6, 0.8), (1, 1, 1)),
                                                         (0, 3, 4), (1, 1, 1)), np.zeros(50), 1e-9),
    ("zero crossings", lambda: zc.interpolate_on_y_all(np.column_stack([np.arange(8.0), [1, -1] * 4]), 0.0).tolist(),
     [0.5 + i for i in range(7)], 0),
]


@pytest.mark.parametrize("trip,expected,rel", [r[1:] for r in ROUND_TRIPS], ids=[r[0] for r in ROUND_TRIPS])
def test_round_trip(trip, expected, rel):
    result = trip()
    if isinstance(expected, str):
        assert result == expected
    else:
        np.testing.assert_allclose(np.asarray(result, dtype=float), expected, rtol=rel, atol=1e-12 if rel else 0)
