#!/usr/bin/python3
"""VTK's vtkMeshQuality on 10^6 quads and 10^6 hexahedra, the yardstick of bench_mesh.

The same kind of elements as bench/mesh.cpp (unit elements with nodes moved by up to 0.15, each
element with nodes of its own), as an unstructured grid; the filter runs in VTK's C++ and the
median of three Update() times is reported, wall clock and processor time (the figure to
compare with Google Benchmark's CPU column on a loaded machine). Run with Debian's python3-vtk9 (/usr/bin/python3)
right after bench_mesh, on the same machine.
"""
import time

import numpy as np
import vtk
from vtk.util import numpy_support

COUNT = 1000000
RNG = np.random.default_rng(3)


def grid(reference, cell_type):
    reference = np.asarray(reference, dtype=float)
    k = len(reference)
    points = (reference[None, :, :] + RNG.uniform(-0.15, 0.15, (COUNT, k, 3)) +
              RNG.uniform(-100, 100, (COUNT, 1, 3))).reshape(-1, 3)
    ug = vtk.vtkUnstructuredGrid()
    vtk_points = vtk.vtkPoints()
    vtk_points.SetDataTypeToDouble()
    vtk_points.SetData(numpy_support.numpy_to_vtk(points, deep=True))
    ug.SetPoints(vtk_points)
    connectivity = np.hstack([np.full((COUNT, 1), k), np.arange(COUNT * k).reshape(COUNT, k)]).ravel()
    cells = vtk.vtkCellArray()
    cells.SetCells(COUNT, numpy_support.numpy_to_vtkIdTypeArray(connectivity.astype(np.int64), deep=True))
    ug.SetCells(cell_type, cells)
    return ug


def measure(name, ug, configure):
    wall, cpu = [], []
    for _ in range(3):
        quality = vtk.vtkMeshQuality()
        quality.SetInputData(ug)
        configure(quality)
        start, start_cpu = time.perf_counter(), time.process_time()
        quality.Update()
        wall.append(time.perf_counter() - start)
        cpu.append(time.process_time() - start_cpu)
    w, c = sorted(wall)[1], sorted(cpu)[1]
    print("%-28s wall %7.1f ms  cpu %7.1f ms  %6.2f M elements/s of cpu" % (name, w * 1e3, c * 1e3, COUNT / c / 1e6))


quads = grid([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]], vtk.VTK_QUAD)
measure("vtk quad scaled Jacobian", quads, lambda q: q.SetQuadQualityMeasureToScaledJacobian())
measure("vtk quad warpage", quads, lambda q: q.SetQuadQualityMeasureToWarpage())
hexes = grid([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [0, 0, 1], [1, 0, 1], [1, 1, 1], [0, 1, 1]],
             vtk.VTK_HEXAHEDRON)
measure("vtk hex scaled Jacobian", hexes, lambda q: q.SetHexQualityMeasureToScaledJacobian())
measure("vtk hex volume", hexes, lambda q: q.SetHexQualityMeasureToVolume())
