#!/usr/bin/python3
"""Writes shape_fits.txt: noisy arcs, caps, mantles and ellipses with the shapes fitted to them by independent code:
the direct ellipse fit with numpy, the algebraic circle fits as the generalised eigenproblem M A = eta N A on the raw
(uncentred) moments, Kasa by linear least squares, and the geometric fits by scipy.optimize.least_squares
(trust-region reflective, stopped on the gradient). Run by hand when the cases change (CI reads the committed table
and does not need scipy): /usr/bin/python3 scipy_shape_fits.py > shape_fits.txt
"""
import os
import sys
import warnings

import numpy as np
import scipy.linalg
from scipy.optimize import least_squares

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from reference_support import fmt  # noqa: E402

rng = np.random.default_rng(20261125)
TIGHT = dict(method="trf", xtol=None, ftol=None, gtol=1e-14, max_nfev=200)


def solve(residual, seed, jacobian):
    # Stopped on the gradient alone: MINPACK's test on the relative change of the cost ends
    # with a gradient of 1e-9 left on a large cost, further off the minimum than wanted.
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return least_squares(residual, seed, jac=jacobian, **TIGHT).x


def arc(center, radius, start, sweep, n, noise):
    t = np.radians(start + sweep * np.arange(n) / (n - 1 if sweep < 360 else n))
    r = radius + noise * rng.standard_normal(n)
    return np.column_stack([center[0] + r * np.cos(t), center[1] + r * np.sin(t)])


def algebraic(points, method):
    x, y = points[:, 0], points[:, 1]
    z = x * x + y * y
    if method == "kasa":
        b, c, d = np.linalg.lstsq(np.column_stack([x, y, np.ones_like(x)]), -z, rcond=None)[0]
        a = 1.0
    else:
        design = np.column_stack([z, x, y, np.ones_like(x)])
        m = design.T @ design / len(x)
        mx, my, mz = x.mean(), y.mean(), z.mean()
        n = {
            "pratt": [[0, 0, 0, -2], [0, 1, 0, 0], [0, 0, 1, 0], [-2, 0, 0, 0]],
            "taubin": [[4 * mz, 2 * mx, 2 * my, 0], [2 * mx, 1, 0, 0], [2 * my, 0, 1, 0], [0, 0, 0, 0]],
            "hyper": [[8 * mz, 4 * mx, 4 * my, 2], [4 * mx, 1, 0, 0], [4 * my, 0, 1, 0], [2, 0, 0, 0]],
        }[method]
        values, vectors = scipy.linalg.eig(m, np.array(n, dtype=float))
        # The smallest real non-negative eigenvalue (the first of equal ones).
        usable = [k for k, v in enumerate(values) if np.isfinite(v) and abs(v.imag) < 1e-12 and v.real >= 0]
        a, b, c, d = vectors[:, min(usable, key=lambda k: values[k].real)].real
    cx, cy = -b / (2 * a), -c / (2 * a)
    return cx, cy, np.sqrt(b * b + c * c - 4 * a * d) / (2 * abs(a))


def geometric_ball(points, seed):
    # The analytic Jacobian: finite differences leave a gradient of 1e-9.
    def jacobian(p):
        d = np.linalg.norm(points - p[:-1], axis=1)
        return np.column_stack([-(points - p[:-1]) / d[:, None], -np.ones(len(points))])

    return solve(lambda p: np.linalg.norm(points - p[:-1], axis=1) - p[-1], seed, jacobian)


def record(kind, points):
    print("%s %d" % (kind, len(points)))
    print("\n".join(fmt(p) for p in points))


def circle2_case(points):
    record("circle2", points)
    for method in ("kasa", "pratt", "taubin", "hyper"):
        print(method, fmt(algebraic(points, method)))
    print("geometric", fmt(geometric_ball(points, np.array(algebraic(points, "taubin")))))


def circle3_case(points):
    record("circle3", points)
    mean = points.mean(axis=0)
    _, _, (u, v, n) = np.linalg.svd(points - mean)
    flat = np.column_stack([(points - mean) @ u, (points - mean) @ v])
    cx, cy, r = geometric_ball(flat, np.array(algebraic(flat, "taubin")))
    print("geometric", fmt(list(mean + cx * u + cy * v) + list(n) + [r]))


def sphere_case(points):
    record("sphere", points)
    b = np.linalg.lstsq(np.column_stack([points, np.ones(len(points))]), -(points * points).sum(axis=1), rcond=None)[0]
    center = -b[:3] / 2
    kasa = list(center) + [np.sqrt(center @ center - b[3])]
    print("kasa", fmt(kasa))
    print("geometric", fmt(geometric_ball(points, np.array(kasa))))


def cylinder_case(points, seed_axis):
    record("cylinder", points)
    mean = points.mean(axis=0)

    # Axis through mean + a u + b v along (sin t cos f, sin t sin f, cos t); radius last.
    def unpack(p):
        d = np.array([np.sin(p[2]) * np.cos(p[3]), np.sin(p[2]) * np.sin(p[3]), np.cos(p[2])])
        return mean + np.array([p[0], p[1], 0.0]), d, p[4]

    def residual(p):
        c, d, r = unpack(p)
        q = points - c
        return np.linalg.norm(q - np.outer(q @ d, d), axis=1) - r

    seed = [0.0, 0.0, np.arccos(seed_axis[2]), np.arctan2(seed_axis[1], seed_axis[0]), 1.0]
    c, d, r = unpack(solve(residual, seed, "3-point"))
    foot = c + d * ((mean - c) @ d)
    print("geometric", fmt(list(foot) + list(d) + [r]))


def ellipse_case(points):
    # Fitzgibbon's direct fit in Halir and Flusser's form, on the raw coordinates.
    record("ellipse", points)
    x, y = points[:, 0], points[:, 1]
    d1 = np.column_stack([x * x, x * y, y * y])
    d2 = np.column_stack([x, y, np.ones_like(x)])
    s1, s2, s3 = d1.T @ d1, d1.T @ d2, d2.T @ d2
    t = -np.linalg.solve(s3, s2.T)
    m = s1 + s2 @ t
    m = np.array([m[2] / 2, -m[1], m[0] / 2])
    _, vectors = np.linalg.eig(m)
    vectors = vectors.real
    constraint = 4 * vectors[0] * vectors[2] - vectors[1] ** 2
    a1 = vectors[:, np.argmax(constraint)]
    qa, qb, qc = a1
    qd, qe, qf = t @ a1
    den = qb * qb - 4 * qa * qc
    x0, y0 = (2 * qc * qd - qb * qe) / den, (2 * qa * qe - qb * qd) / den
    f0 = qf + (qd * x0 + qe * y0) / 2
    values, axes = np.linalg.eigh(np.array([[qa, qb / 2], [qb / 2, qc]]))
    semi = np.sqrt(-f0 / values)
    major = np.argmax(semi)
    print("direct", fmt([x0, y0, axes[0, major], axes[1, major], semi[major], semi[1 - major]]))


def rotate(points, axis, angle, shift):
    axis = np.asarray(axis, dtype=float) / np.linalg.norm(axis)
    k = np.array([[0, -axis[2], axis[1]], [axis[2], 0, -axis[0]], [-axis[1], axis[0], 0]])
    rot = np.eye(3) + np.sin(angle) * k + (1 - np.cos(angle)) * k @ k
    return points @ rot.T + shift


print("# circle2 <n> | circle3 <n> | sphere <n> | cylinder <n>, then n points, then per method")
print("# circle2: kasa|pratt|taubin|hyper|geometric cx cy r;  circle3: geometric cx cy cz nx ny nz r")
print("# sphere: kasa|geometric cx cy cz r;  cylinder: geometric px py pz dx dy dz r")
print("# ellipse: direct cx cy ux uy a b (u the unit major axis, up to sign)")
for sweep, n, noise in ((30, 20, 0.01), (90, 25, 0.02), (360, 30, 0.05), (30, 12, 0.001), (90, 40, 0.2)):
    circle2_case(arc((2.5, -1.25), 4.0, 17.0, sweep, n, noise))
for sweep in (30, 90, 360):
    flat = arc((0.5, 0.25), 12.0, 40.0, sweep, 24, 0.03)
    lifted = np.column_stack([flat, 0.02 * rng.standard_normal(len(flat))])
    circle3_case(rotate(lifted, (1, 2, 0.5), 0.7, np.array([100.0, -20.0, 5.0])))
for cap in (60, 180):
    n = 40
    theta = np.radians(cap / 2) * np.sqrt(rng.random(n))
    phi = 2 * np.pi * rng.random(n)
    r = 3.0 + 0.02 * rng.standard_normal(n)
    cap_points = np.column_stack([r * np.sin(theta) * np.cos(phi), r * np.sin(theta) * np.sin(phi), r * np.cos(theta)])
    sphere_case(cap_points + np.array([1.0, -2.0, 0.5]))
for sweep, height in ((360, 10.0), (200, 6.0)):
    n = 60
    t = np.radians(sweep) * rng.random(n)
    r = 2.0 + 0.01 * rng.standard_normal(n)
    local = np.column_stack([r * np.cos(t), r * np.sin(t), height * rng.random(n)])
    points = rotate(local, (0.3, -1, 0.2), 0.9, np.array([5.0, 1.0, -2.0]))
    # Seeded near the true axis: the reference must find the minimum around it.
    seed = rotate(np.array([[0.0, 0.0, 1.0]]), (0.3, -1, 0.2), 0.9, 0)[0] + np.array([0.02, -0.01, 0.01])
    cylinder_case(points, seed / np.linalg.norm(seed))
for sweep, n, noise in ((360, 40, 0.02), (120, 30, 0.05)):
    t = np.radians(10 + sweep * np.arange(n) / n)
    local = np.column_stack([5 * np.cos(t), 2 * np.sin(t)]) + noise * rng.standard_normal((n, 2))
    c, s = np.cos(np.radians(30)), np.sin(np.radians(30))
    ellipse_case(local @ np.array([[c, s], [-s, c]]) + np.array([3.0, -2.0]))
