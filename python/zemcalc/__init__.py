"""zemcalc: curves, filters, spectra, units, tensors, material laws and geometry over numpy arrays.

Curves are (n, 2) arrays (abscissa, value), points (n, 3), symmetric tensors (n, 6) in the order
xx, yy, zz, xy, yz, xz. float32 arrays run the library's single-precision twin, every other real
dtype is converted to float64 and runs the double twin; results are new arrays of that dtype.

Failures that the library reports with a message raise zemcalc.Error (a ValueError) carrying it;
arrays of the wrong shape raise ValueError. Undefined results (the library's invalid marker
-1e32) come back as nan in arrays and scalars, and as None where a whole result is missing (a
fit that cannot be made, a text that cannot be read).

The unit catalogue is the library's own, shared with every C++ user in the process; changing it
(set_unit_factor) is not thread-safe. Long computations release the interpreter lock.
"""
from ._zemcalc import *  # noqa: F401,F403
from ._zemcalc import Error, __doc__ as _module_doc  # noqa: F401

__all__ = [name for name in dir() if not name.startswith("_")]
