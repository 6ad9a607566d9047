"""The module gives the very bits of the C++ library on the same inputs, in both precisions."""
import numpy as np
import pytest

import zemcalc as zc
from conftest import TWINS

MESH = ([1, 2, 3, 6, 5], np.arange(26))
FRAME_POINTS = ((1, 2, 3), (4, 6, 3), (0, 5, 9), 1)


def _cfc180(ends, curve):
    """Settings given to the constructor (ends 0 and 1) or set afterwards, by name (ends 2 and 3)."""
    cfc = zc.CFCFilter(180, "ms", ends, "iso6487") if ends < 2 else zc.CFCFilter(180)
    if ends >= 2:
        cfc.time_unit, cfc.ends, cfc.design = "ms", ("constant", "none")[ends - 2], "iso6487"
    if ends == 1:
        cfc.pad_length = 40
    assert (cfc.ends, cfc.design, cfc.pad_length) == (ends, 1, 40 if ends == 1 else -1)
    return cfc(curve)


def _transmissibility(a, t):
    """The result with and without the intermediate steps, whose titles are the library's."""
    inputs = (a("pulse"), a("trans_output"), 2e-4)
    options = dict(align_abscissa=0.01, frequency_min=10, frequency_max=2000, result_step=5)
    result, steps, phase = zc.transmissibility(*inputs, **options, details=True)
    assert [title for title, _ in steps] == [a(f"title{i}") for i in range(len(steps))]
    assert steps[0][0].startswith("Fitting of output curve with input (")
    return [(zc.transmissibility(*inputs, **options), "transmissibility"), (result, "transmissibility"),
            (phase, "transmissibility_phase")] + [(curve, f"step{i}") for i, (_, curve) in enumerate(steps)]


def _shapes(a, t):
    pts, arc, square, dt = a("points"), a("arc"), a("square"), TWINS[t]
    row = lambda *parts: np.concatenate([np.ravel(p) for p in parts]).astype(dt)[None]
    fit = lambda d, *keys: row(*(d[k] for k in keys), d["rms"], d["max_residual"])
    rigid = zc.fit_rigid(pts, a("turned"))
    arcs = [zc.Arc.through_points(*pts[:3]), zc.Arc.through_points(arc[0], arc[20], arc[39]),
            zc.Arc.from_center(*pts[3:6], (1, 2, 3)), zc.Arc.from_tangent(*pts[6:9]),
            zc.Arc.fillet((1, 2, 3), (4, 1, 0), (1, 2, 3), (-1, 3, 0.5), 0.7, dt)]
    props, frame = zc.polygon_properties(square), zc.polygon_frame(square, "mid_lines")
    pen = zc.find_penetrations(a("pen_nodes"), [2, 1], np.arange(7), None, np.full(47, 0.5, dt), np.full(2, 0.6, dt))
    assert len(pen["node"]) > 3 and all(c.status == "ok" for c in arcs)
    return [(fit(zc.fit_plane(pts), "point", "normal", "fit_quality"), "fit_plane"),
            (fit(zc.fit_circle(arc), "center", "radius"), "fit_circle"),
            (row(rigid["rotation"], rigid["translation"]), "fit_rigid"),
            (fit(zc.fit_line(pts), "point", "direction", "fit_quality"), "fit_line3"),
            (fit(zc.fit_line(arc), "point", "direction", "fit_quality"), "fit_line2"),
            (fit(zc.fit_sphere(a("sphere")), "center", "radius"), "fit_sphere"),
            (fit(zc.fit_cylinder(a("cylinder")), "point", "direction", "radius"), "fit_cylinder"),
            (fit(zc.fit_ellipse(a("oval")), "center", "major_axis", "a", "b"), "fit_ellipse"),
            (arcs[0].tessellate(2.5, 0.2), "arc_tessellated"),
            (zc.tessellate_ellipse((1, 2, 3), (0.6, 0.8, 0), (0, 0, 1), 5, 2, -1, 4, 0.01, 0.3, dt), "ellipse_tessellated"),
            (zc.rectangle_grid(zc.Frame.from_points(*FRAME_POINTS, 0), 10, 7, 1, 0.7, dt), "rectangle_grid"),
            (zc.polygon_grid(square, (0.3, 0.2, 0), 0.9, [a("hole")]), "polygon_grid"),
            (zc.range_grid(0, 1, 0.3, dt), "range_grid"),
            (row(*(props[k] for k in ("centroid", "vertex_average", "normal", "area", "out_of_plane_rms", "convex")),
                 zc.signed_area(arc), zc.signed_area(square, (1, 1, -3)), frame.origin, frame.axes), "polygon"),
            (np.column_stack([pen[k].reshape(len(pen["node"]), -1) for k in
                              ("node", "segment", "depth", "distance", "closest", "natural", "normal")]).astype(dt),
             "penetrations")] + [
        (row(c.center, c.normal, c.start_direction, c.radius, c.sweep, c.length, c.points_at([0.3]),
             c.tangents_at([0.3])), f"arc{i}") for i, c in enumerate(arcs)]


# (what, computation from the accessor a of the reference values of twin t -> [(result, expected key)])
CASES = [
    ("filters", lambda a, t: [(zc.Filter.from_name(name + t)(a("pulse")), name) for name in
                              ("ZmFilterCFC60_10kHz", "ZmFilterCFC180_10kHz", "ZmFilterCFC600_10kHz", "ZmFilterFIRF16")]
     + [(zc.CFC60()(a("pulse")), "ZmFilterCFC60_10kHz"), (zc.MovingAverage(7, extrapolation=2)(a("pulse")), "mva7"),
        (zc.WeightedMovingAverage(5, [1, 2], 1)(a("pulse")), "weighted5"), (zc.CosineFilter(9)(a("pulse")), "cos9"),
        (zc.SlidingWindowAverage(2.5e-4, 0.75)(a("pulse")), "swa")]),
    ("cfc any rate", lambda a, t: [(_cfc180(e, a("pulse_ms")), f"cfc180_{e}") for e in range(4)]
     + [(np.array([zc.CFCFilter(1000).coefficients_at(5e-5)]), "cfc1000_coefficients")] * (t == "d")),
    ("injury", lambda a, t: [(zc.resultant(a("pulse"), a("lateral"), a("pulse")), "resultant"),
                             ([*zc.hic(a("resultant"), 0.036), zc.clip_level(a("resultant"))], "injury")]),
    ("mesh", lambda a, t: [(zc.mesh_metric("scaled_jacobian", a("points")[:30], *MESH), "scaled_jacobian"),
                           (zc.mesh_time_step(a("points")[:30], *MESH, 210000, 0.3, 7.85e-9), "time_step")]),
    ("fits, arcs, polygons, grids, penetrations", _shapes),
    ("spectra", lambda a, t: list(zip(zc.fft(a("pulse"), (100, 1800), "hann", 2048, phase=True), ("fft", "phase")))
     + [(zc.correlation(a("head"), a("shifted"), linear=True), "correlation")]),
    ("curves", lambda a, t: [(zc.sample_x(a("pulse"), 3.3e-4, 0.01), "sampled"),
                             (zc.envelope(a("pulse"), True, 5e-3), "envelope")]),
    ("transmissibility", _transmissibility),
    ("tensors", lambda a, t: list(zip(zc.principal_directions(a("tensors")), ("values", "directions")))
     + [(zc.principal_values(a("tensors")), "values")]),
    ("strain mode", lambda a, t: [(zc.strain_mode(a("tensors")[:, [0, 1, 3]] / 200), "mode")]),
    ("units", lambda a, t: [(zc.UnitSystem("mm", "T", "s").convert(
        a("pressures"), zc.dimension("pressure"), zc.UnitSystem("m", "Kg", "s")), "pressures_mpa"),
        ([zc.UnitSystem(2, 4, 0).parse(" 2.1e5 Pa", zc.dimension("pressure"), TWINS[t])], "parsed")]),
    ("materials", lambda a, t: [(zc.hollomon_fit(a("measured")), "hollomon"),
                                (zc.keeler_curve(1.2, 0.18, TWINS[t]), "keeler"),
                                (zc.kinematic_curve(210, 12.5, 180, 350, TWINS[t]), "kinematic")]),
    ("geometry", lambda a, t: list(zip(zc.project_on_polyline(a("points"), a("polyline")), ("feet", "params")))
     + [(zc.Frame.from_points(*FRAME_POINTS, 1).to_local(a("points")), "local")]),
]


@pytest.mark.parametrize("twin", TWINS)
@pytest.mark.parametrize("what,compute", CASES, ids=[c[0] for c in CASES])
def test_same_bits_as_cpp(reference, what, compute, twin):
    """Same dtype and bits (NaN included); a result of the right size may come in another shape, and
    numbers returned as a list or tuple are taken in the twin's dtype."""
    for result, key in compute(lambda name: reference[name + "/" + twin], twin):
        expected = reference[key + "/" + twin]
        result = np.asarray(result, TWINS[twin] if isinstance(result, (list, tuple)) else None)
        result = result.reshape(expected.shape) if result.size == expected.size else result
        assert (result.dtype, result.shape, result.tobytes()) == (expected.dtype, expected.shape, expected.tobytes()), \
            f"{what}: {key}/{twin}"
