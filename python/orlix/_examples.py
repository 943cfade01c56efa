"""An example for the docstring of each function: what the doctests run."""

EXAMPLES = {}
