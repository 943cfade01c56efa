"""Global measures of 2d and 3d images: numbers about a whole image, the same bits on any number of threads.

    import orlix

    orlix.stats(array)                          # one record
    orlix.describe(stack, per="plan").median    # an array with a number for every plane
    orlix.stats("image.tif")                    # a file, of any size

Every function takes NumPy arrays and whatever looks like one, files and Dask arrays: see ``help(orlix.stats)``.
"""

from ._api import FUNCTIONS, get_threads, measure, open, project, set_threads
from ._describe import MEASURES, docstring
from ._files import Image
from ._records import RECORDS, Record
from ._states import State

__version__ = "4.1.0.2"

globals().update(FUNCTIONS)
globals().update({record.__name__: record for record in RECORDS.values()})

__all__ = [*sorted(MEASURES), *sorted(record.__name__ for record in RECORDS.values()), "Image", "Record", "State",
           "get_threads", "measure", "open", "set_threads"]
