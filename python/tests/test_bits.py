"""The module gives the very bits of the C++ library on the same inputs, in both precisions."""
import numpy as np
import pytest

import zemcalc as zc
from conftest import same_bits


def _tensor_results(r, t):
    values, directions = zc.principal_directions(r["tensors/" + t])
    return [(values, "values"), (directions.reshape(-1, 9), "directions"),
            (zc.principal_values(r["tensors/" + t]), "values")]


MESH = ([1, 2, 3, 6, 5], np.arange(26))


def _cfc180(ends, curve):
    """Settings given to the constructor (ends 0 and 1) or set afterwards, by name (ends 2 and 3)."""
    cfc = zc.CFCFilter(180, "ms", ends, "iso6487") if ends < 2 else zc.CFCFilter(180)
    if ends >= 2:
        cfc.time_unit, cfc.ends, cfc.design = "ms", ("constant", "none")[ends - 2], "iso6487"
    if ends == 1:
        cfc.pad_length = 40
    assert (cfc.ends, cfc.design, cfc.pad_length) == (ends, 1, 40 if ends == 1 else -1)
    return cfc(curve)


def _shapes(r, t):
    f = lambda name: r[name + "/" + t]
    pts, arc, dt = f("points"), f("arc"), f("points").dtype
    row = lambda *parts: np.concatenate([np.ravel(p) for p in parts]).astype(dt)[None]
    fit = lambda d, *keys: row(*(d[k] for k in keys), d["rms"], d["max_residual"])
    rigid = zc.fit_rigid(pts, f("turned"))
    arcs = [zc.Arc.through_points(*pts[:3]), zc.Arc.through_points(arc[0], arc[20], arc[39]),
            zc.Arc.from_center(*pts[3:6], (1, 2, 3)), zc.Arc.from_tangent(*pts[6:9]),
            zc.Arc.fillet((1, 2, 3), (4, 1, 0), (1, 2, 3), (-1, 3, 0.5), 0.7, dt)]
    props, frame = zc.polygon_properties(f("square")), zc.polygon_frame(f("square"), "mid_lines")
    pen = zc.find_penetrations(f("pen_nodes"), [2, 1], np.arange(7), None, np.full(47, 0.5, dt), np.full(2, 0.6, dt))
    assert len(pen["node"]) > 3 and all(a.status == "ok" for a in arcs)
    return [(fit(zc.fit_plane(pts), "point", "normal", "fit_quality"), "fit_plane"),
            (fit(zc.fit_circle(arc), "center", "radius"), "fit_circle"),
            (row(rigid["rotation"], rigid["translation"]), "fit_rigid"),
            (fit(zc.fit_line(pts), "point", "direction", "fit_quality"), "fit_line3"),
            (fit(zc.fit_line(arc), "point", "direction", "fit_quality"), "fit_line2"),
            (fit(zc.fit_sphere(f("sphere")), "center", "radius"), "fit_sphere"),
            (fit(zc.fit_cylinder(f("cylinder")), "point", "direction", "radius"), "fit_cylinder"),
            (fit(zc.fit_ellipse(f("oval")), "center", "major_axis", "a", "b"), "fit_ellipse"),
            (arcs[0].tessellate(2.5, 0.2), "arc_tessellated"),
            (zc.tessellate_ellipse((1, 2, 3), (0.6, 0.8, 0), (0, 0, 1), 5, 2, -1, 4, 0.01, 0.3, dt), "ellipse_tessellated"),
            (zc.rectangle_grid(zc.Frame.from_points((1, 2, 3), (4, 6, 3), (0, 5, 9), 1, 0), 10, 7, 1, 0.7, dt),
             "rectangle_grid"),
            (zc.polygon_grid(f("square"), (0.3, 0.2, 0), 0.9, [f("hole")]), "polygon_grid"),
            (zc.range_grid(0, 1, 0.3, dt), "range_grid"),
            (row(*(props[k] for k in ("centroid", "vertex_average", "normal", "area", "out_of_plane_rms", "convex")),
                 zc.signed_area(arc), zc.signed_area(f("square"), (1, 1, -3)), frame.origin, frame.axes), "polygon"),
            (np.column_stack([pen[k].reshape(len(pen["node"]), -1) for k in
                              ("node", "segment", "depth", "distance", "closest", "natural", "normal")]).astype(dt),
             "penetrations")] + [
        (row(a.center, a.normal, a.start_direction, a.radius, a.sweep, a.length, a.points_at([0.3]),
             a.tangents_at([0.3])), f"arc{i}") for i, a in enumerate(arcs)]


# (what, computation from the reference arrays r of twin t -> [(result, expected key)])
CASES = [
    ("filters", lambda r, t: [(zc.Filter.from_name(name + t)(r["pulse/" + t]), name) for name in
                              ("ZmFilterCFC60_10kHz", "ZmFilterCFC180_10kHz", "ZmFilterCFC600_10kHz", "ZmFilterFIRF16")]
     + [(zc.CFC60()(r["pulse/" + t]), "ZmFilterCFC60_10kHz"),
        (zc.MovingAverage(7, extrapolation=2)(r["pulse/" + t]), "mva7"),
        (zc.WeightedMovingAverage(5, [1, 2], 1)(r["pulse/" + t]), "weighted5"),
        (zc.CosineFilter(9)(r["pulse/" + t]), "cos9"),
        (zc.SlidingWindowAverage(2.5e-4, 0.75)(r["pulse/" + t]), "swa")]),
    ("cfc any rate", lambda r, t: [(_cfc180(e, r["pulse_ms/" + t]), f"cfc180_{e}") for e in range(4)]
     + [(np.array([zc.CFCFilter(1000).coefficients_at(5e-5)]), "cfc1000_coefficients")] * (t == "d")),
    ("injury", lambda r, t: [(zc.resultant(r["pulse/" + t], r["lateral/" + t], r["pulse/" + t]), "resultant"),
                             (np.array([[*zc.hic(r["resultant/" + t], 0.036), zc.clip_level(r["resultant/" + t])]],
                                       r["pulse/" + t].dtype), "injury")]),
    ("mesh", lambda r, t: [(zc.mesh_metric("scaled_jacobian", r["points/" + t][:30], *MESH), "scaled_jacobian"),
                           (zc.mesh_time_step(r["points/" + t][:30], *MESH, 210000, 0.3, 7.85e-9), "time_step")]),
    ("fits, arcs, polygons, grids, penetrations", _shapes),
    ("spectra", lambda r, t: list(zip(zc.fft(r["pulse/" + t], (100, 1800), "hann", 2048, phase=True), ("fft", "phase")))
     + [(zc.correlation(r["head/" + t], r["shifted/" + t], linear=True), "correlation")]),
    ("curves", lambda r, t: [(zc.sample_x(r["pulse/" + t], 3.3e-4, 0.01), "sampled"),
                             (zc.envelope(r["pulse/" + t], True, 5e-3), "envelope")]),
    ("transmissibility", lambda r, t: [(zc.transmissibility(r["pulse/" + t], r["trans_output/" + t], 2e-4,
                                                            align_abscissa=0.01, frequency_min=10, frequency_max=2000,
                                                            result_step=5), "transmissibility")]),
    ("tensors", _tensor_results),
    ("strain mode", lambda r, t: [(zc.strain_mode(r["tensors/" + t][:, [0, 1, 3]] / 200)[:, None], "mode")]),
    ("units", lambda r, t: [(zc.UnitSystem("mm", "T", "s").convert(
        r["pressures/" + t], zc.dimension("pressure"), zc.UnitSystem("m", "Kg", "s")), "pressures_mpa"),
        (np.array([[zc.UnitSystem(2, 4, 0).parse(" 2.1e5 Pa", zc.dimension("pressure"), r["parsed/" + t].dtype)]],
                  r["parsed/" + t].dtype), "parsed")]),
    ("materials", lambda r, t: [(np.array([zc.hollomon_fit(r["measured/" + t])], r["measured/" + t].dtype), "hollomon"),
                                (zc.keeler_curve(1.2, 0.18, r["measured/" + t].dtype), "keeler"),
                                (zc.kinematic_curve(210, 12.5, 180, 350, r["measured/" + t].dtype), "kinematic")]),
    ("geometry", lambda r, t: list(zip(zc.project_on_polyline(r["points/" + t], r["polyline/" + t]), ("feet", "params")))
     + [(zc.Frame.from_points((1, 2, 3), (4, 6, 3), (0, 5, 9), 1, 1).to_local(r["points/" + t]), "local")]),
]


@pytest.mark.parametrize("twin", ["d", "f"])
@pytest.mark.parametrize("what,compute", CASES, ids=[c[0] for c in CASES])
def test_same_bits_as_cpp(reference, what, compute, twin):
    arrays, _ = reference
    for result, key in compute(arrays, twin):
        expected = arrays[key + "/" + twin]
        assert same_bits(np.asarray(result).reshape(expected.shape) if np.size(result) == expected.size else result,
                         expected), f"{what}: {key}/{twin}"


@pytest.mark.parametrize("twin", ["d", "f"])
def test_transmissibility_steps_and_titles(reference, twin):
    arrays, texts = reference
    result, steps, phase = zc.transmissibility(arrays["pulse/" + twin], arrays["trans_output/" + twin], 2e-4,
                                               align_abscissa=0.01, frequency_min=10, frequency_max=2000,
                                               result_step=5, details=True)
    assert [title for title, _ in steps] == [texts[f"title{i}/{twin}"] for i in range(len(steps))]
    assert steps[0][0].startswith("Fitting of output curve with input (")
    for i, (_, curve) in enumerate(steps):
        assert same_bits(curve, arrays[f"step{i}/{twin}"]), f"step {i}"
    assert same_bits(phase, arrays["transmissibility_phase/" + twin])
