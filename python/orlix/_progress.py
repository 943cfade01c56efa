"""How far a measure is."""

from contextlib import contextmanager


@contextmanager
def follow(progress, name):
    """Gives what the library calls with the share that is done: None, the caller's function, or a bar."""
    if progress is None or progress is False:
        yield None
    elif callable(progress):
        yield progress
    elif progress is True:
        try:
            from tqdm.auto import tqdm
        except ImportError:
            raise ImportError("progress=True shows a bar with tqdm, which is not installed: pip install tqdm") from None
        with tqdm(total=100, desc=name, unit="%", bar_format="{l_bar}{bar}| {elapsed}<{remaining}") as bar:
            yield lambda share: bar.update(100 * share - bar.n)
    else:
        raise TypeError(f"progress is True, False, None or a function, not {progress!r}")
