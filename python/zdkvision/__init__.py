"""3-D machine-vision algorithms over 16-bit height maps, with NumPy arrays for cells, masks and points.

Heights are int16 counts, and -32768 is a missing one. A world value is `offset + count * scale`. Cells are shared
between the library and NumPy wherever they can be; `empty` tells when. What the headers call null is None here, except
within arrays.

While a call works on an array, no other thread may write to it.
"""

import re as _re

from zdkvision import _records
from zdkvision._core import *
from zdkvision._core import _documentation
from zdkvision._errors import Error as Error
from zdkvision._errors import OutOfMemoryError as OutOfMemoryError
from zdkvision._records import *

NULL_HEIGHT: int = -32768  #: the count of a missing height
NULL: float = -1.7976931348623157e308  #: what stands for a missing number in arrays of float64


def _describe_records() -> None:
    """Records and enumerations of the headers have the comments that stand there."""
    for name, cpp_name in _records.FROM_HEADERS.items():
        record = getattr(_records, name)
        record.__doc__ = _documentation(cpp_name)
        for field in getattr(record, "_fields", ()):
            cpp_field = _re.sub("_([a-z])", lambda match: match[1].upper(), field)
            getattr(record, field).__doc__ = _documentation(f"{cpp_name}::{cpp_field}")


_describe_records()
