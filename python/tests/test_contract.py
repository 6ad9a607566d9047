"""Errors carry the library's messages, wrong shapes raise, sentinels become nan or None, and the
dtype of the input picks the precision."""
import numpy as np
import pytest

import zemcalc as zc

T = np.arange(100) * 1.0e-4
CURVE = np.column_stack([T, np.sin(50 * T)])
PRESSURE, SI = zc.dimension("pressure"), zc.UnitSystem("m", "Kg", "s")

# (message, call): zc.Error carries the library's own message
LIBRARY_ERRORS = [
    ("Not enough points to filter", lambda: zc.CFC60()(CURVE[:39])),
    ("Can't process filtering. The time step of interval 1 is higher than 0.00015",
     lambda: zc.CFC60()(CURVE * [10, 1])),
    ("Can't process filtering. The time step of interval 1 is lower than 0.05", lambda: zc.CFC60("ms")(CURVE)),
    ("Invalid filter kernel size 0", lambda: zc.MovingAverage(0)(CURVE)),
    ("Unknown extrapolation type 7", lambda: zc.MovingAverage(3, 7)(CURVE)),
    ("Less than 3 points in the window. Can't compute FFT", lambda: zc.fft(CURVE, (5, 6))),
    ("FFT length 3 is not a power of two between 1 and 4294967296. Can't compute FFT", lambda: zc.fft(CURVE, nfft=3)),
    ("Window [0, 100] is outside the signal of 100 points. Can't compute FFT", lambda: zc.fft(CURVE, (0, 100))),
    ("Error while computing the coefficients : 2 points (at least) are mandatory",
     lambda: zc.mooney_rivlin_fit(CURVE[:1])),
    ("Unsupported length unit 'YARD'", lambda: zc.UnitSystem.from_solver_line("UNIT YARD TON S KELVIN")),
    ("Inconsistent target unit system", lambda: zc.UnitSystem(-1, "T", "s").convert([1.0], PRESSURE, SI)),
    ("'ZmFilterMA' names no filter that can be created by name", lambda: zc.Filter.from_name("ZmFilterMA")),
    ("Can't process filtering. The sampling rate 10000 Hz is lower than 10 times the channel frequency class 2000",
     lambda: zc.CFCFilter(2000)(CURVE)),
    ("Unknown end treatment 7", lambda: zc.CFCFilter(60, ends=7)(CURVE)),
    ("Can't process filtering. The sampling rate 500 Hz is lower than 10 times the channel frequency class 60",
     lambda: zc.CFCFilter(60, "ms").coefficients_at(2.0)),
    ("The HIC window 0 s is not a positive number", lambda: zc.hic(CURVE, 0)),
    ("The curve lasts 0.0099 s, less than the clip duration 1 s", lambda: zc.clip_level(CURVE, 1.0)),
    ("The channels have different point counts (100, 99, 100)", lambda: zc.resultant(CURVE, CURVE[:99], CURVE)),
]
# (message, call): wrong arguments, shapes and dtypes raise ValueError before anything runs, never a crash
BINDING_ERRORS = [
    ("unknown end treatment 'odd' (one of 'reflection', 'mirror', 'constant', 'none')",
     lambda: zc.CFCFilter(60, ends="odd")),
    ("connectivity holds 3 node indices, the types need 4",
     lambda: zc.mesh_metric("volume", np.zeros((4, 3)), [3], [0, 1, 2])),
    ("unknown element metric 'volumes' (see ELEMENT_METRICS)",
     lambda: zc.mesh_metric("volumes", np.zeros((4, 3)), [3], [0, 1, 2, 3])),
    ("unknown circle fit method 'lsq' (kasa, pratt, taubin, hyper or geometric)", lambda: zc.fit_circle(CURVE, "lsq")),
    ("unknown polygon axis 'diagonal' (first_edge or mid_lines)", lambda: zc.polygon_frame(np.eye(3), "diagonal")),
    ("the signed area of (n, 3) vertices needs a reference direction", lambda: zc.signed_area(np.eye(3))),
    ("node_thickness must hold one value per node (4)",
     lambda: zc.find_penetrations(np.eye(4, 3), [1], [0, 1, 2], node_thickness=[1, 2])),
    ("connectivity holds 3 node indices, the types need 4", lambda: zc.find_penetrations(np.eye(4, 3), [2], [0, 1, 2])),
    ("curve must be an (n, 2) array, got shape (100, 1)", lambda: zc.CFC60()(CURVE[:, :1])),
    ("tensors must be an (n, 6) array, got shape (6,)", lambda: zc.principal_values(np.zeros(6))),
    ("2D tensors must be an (n, 3) array, got shape (4, 6)", lambda: zc.strain_mode(np.zeros((4, 6)))),
    ("points must be an (n, 3) array, got shape (2, 2)",
     lambda: zc.project_on_polyline(np.zeros((2, 2)), np.zeros((3, 3)))),
    ("normal must hold three numbers", lambda: zc.distance_to_plane(np.zeros((2, 3)), (0, 0), (0, 0, 0))),
    ("b must be a real numeric array", lambda: zc.correlation(CURVE, [["a", "b"]])),
    ("weighting must be 'none', 'hamming' or 'hann', got 'welch'", lambda: zc.fft(CURVE, weighting="welch")),
    ("the three points must hold two numbers each, or three each",
     lambda: zc.Arc.through_points((0, 0), (1, 0), (0, 1, 0))),
    ("center must hold three numbers", lambda: zc.Arc.from_center((0, 0, 0), (1, 0, 0), (0, 0), (0, 0, 1))),
    ("major_axis must hold three numbers",
     lambda: zc.tessellate_ellipse((0, 0, 0), (1, 0), (0, 0, 1), 2, 1, 0, 1, 0.1)),
    ("points must be an (n, 3) array, got shape (5, 2)", lambda: zc.fit_sphere(np.zeros((5, 2)))),
    ("points must be an (n, 2) array, got shape (5, 3)", lambda: zc.fit_ellipse(np.zeros((5, 3), np.float32))),
    ("hole must be an (n, 3) array, got shape (3, 2)",
     lambda: zc.polygon_grid(np.eye(3), (0, 0, 0), 1, [np.zeros((3, 2))])),
]
FAILURES = [(zc.Error, *row) for row in LIBRARY_ERRORS] + [(ValueError, *row) for row in BINDING_ERRORS]


@pytest.mark.parametrize("exception,message,call", FAILURES, ids=[f[1][:40] for f in FAILURES])
def test_failures_raise_with_the_message(exception, message, call):
    with pytest.raises(exception) as raised:
        call()
    assert str(raised.value) == message


NAN = float("nan")
# (call, expected) for the library's in-band "no result"
SENTINELS = [
    (lambda: zc.interpolate_on_x(CURVE, -1.0), NAN),
    (lambda: zc.interpolate_on_y(CURVE, 5.0), NAN),
    (lambda: zc.polyline_length([[0, 0, 0], [1, 0, NAN]]), NAN),
    (lambda: zc.project_on_polyline([[NAN, 0, 0]], [[0, 0, 0], [1, 0, 0]])[1][0], NAN),
    (lambda: zc.distance_to_polyline([[0, 1e32, 0]], [[0, 0, 0], [1, 0, 0]])[0], 1e32),
    (lambda: zc.hollomon_fit(CURVE[:2]), None),
    (lambda: zc.hollomon_curve(500, 0.2, 200, 0, -1, 2e5), None),
    (lambda: zc.hill_coefficients(-1, 1, 1), None),
    (lambda: zc.UnitSystem("mm", "T", "s").parse("12 parsecs", PRESSURE), None),
    (lambda: zc.fit_circle([[0, 0], [1, 0], [2, 0]])["radius"], NAN),  # collinear: status 'degenerate'
    (lambda: zc.mesh_metric("volume", np.eye(3), [1], [0, 1, 2])[0], NAN),  # no volume for a triangle
    (lambda: zc.mesh_metric("area", np.eye(3), [1, 9, 1], [0, 1, 2, 0, 1, 2])[2], NAN),  # walk ends at type 9
    (lambda: zc.find_penetrations(np.eye(4, 3), [3], [0, 1, 2, 3])["depth"].size, 0),  # a tet is no segment
    (lambda: zc.Arc.through_points((0, 0, 0), (1, 1, 1), (2, 2, 2)).radius, NAN),  # status 'collinear'
    (lambda: zc.Arc.from_tangent((0, 0, 0), (1, 0, 0), (2, 0, 0)).points_at([0.5])[0, 0], NAN),
    (lambda: zc.Arc.fillet((0, 0, 0), (1, 0, 0), (0, 1, 0), (1, 0, 0), 1.0).tessellate(0.1), None),  # parallel
    (lambda: zc.tessellate_ellipse((0, 0, 0), (1, 0, 0), (0, 0, 1), 1, 2, 0, 1, 0.1), None),  # a < b
    (lambda: zc.rectangle_grid(zc.Frame(), 1, 1, -1, 1), None),
    (lambda: zc.polygon_grid(np.eye(3), (NAN, 0, 0), 0.1), None),
    (lambda: zc.range_grid(0, 1, 0, np.float32), None),
    (lambda: zc.polygon_frame([[0, 0, 0], [1, 0, 0], [2, 0, 0]]), None),  # degenerate
    (lambda: zc.polygon_properties(np.eye(3)[:2])["area"], NAN),  # too few points
    (lambda: zc.signed_area([[0, 0], [1, NAN], [0, 1]]), NAN),
    (lambda: zc.fit_line(np.ones((1, 2)))["direction"][0], NAN),
    (lambda: zc.fit_sphere(np.eye(3)[[0, 1, 2, 0, 1]] * [1, 1, 0])["radius"], NAN),  # coplanar
    (lambda: zc.fit_cylinder(np.eye(3))["radius"], NAN),
    (lambda: zc.fit_ellipse(np.column_stack([np.arange(6.0), np.arange(6.0)]))["a"], NAN),  # collinear
]


@pytest.mark.parametrize("call,expected", SENTINELS, ids=range(len(SENTINELS)))
def test_undefined_results(call, expected):
    result = call()
    assert result is None if expected is None else np.isclose(result, expected, rtol=1e-6, atol=0, equal_nan=True)


def test_integers_take_the_double_twin():
    # float32 and float64 inputs keep their dtype: test_bits compares the dtypes of every result.
    assert zc.MovingAverage(3)((CURVE * 1000).astype(np.int32)).dtype == np.float64
    assert zc.principal_values(np.ones((2, 6), np.int32)).dtype == np.float64
    assert zc.UnitSystem("mm", "T", "s").convert(np.ones(3, np.int32), PRESSURE, SI).dtype == np.float64


def test_every_public_name_is_documented_and_in_the_stubs():
    import ast
    import os
    stub = ast.parse(open(os.path.join(os.path.dirname(zc.__file__), "__init__.pyi")).read())
    stubbed = {node.name for node in stub.body if isinstance(node, (ast.FunctionDef, ast.ClassDef))}
    stubbed |= {t.id for node in stub.body if isinstance(node, ast.AnnAssign) for t in [node.target]}
    public = {name for name in zc.__all__ if not isinstance(getattr(zc, name), type(zc))}
    assert public - stubbed == set()
    assert [name for name in public if callable(getattr(zc, name)) and not getattr(zc, name).__doc__] == []
