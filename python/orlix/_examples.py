"""An example for the docstring of each function: what the doctests run."""

EXAMPLES = {
    "stats": """
>>> image = np.array([[1, 2], [3, 250]], dtype=np.uint8)
>>> orlix.stats(image)
Statistics
  nb_pixels  4 pixels
  sum        256 grey levels
  mean       64 grey levels
  min        1 grey levels
  max        250 grey levels
  std_dev    107.3894781 grey levels
>>> orlix.stats(image, mask=image < 100).mean
2.0
>>> stack = np.stack([image, image // 2])
>>> orlix.stats(stack, per="plan").max
array([250., 125.])
""",
    "describe": """
>>> image = np.arange(100, dtype=np.uint16).reshape(10, 10)
>>> result = orlix.describe(image, percentiles=(5, 95))
>>> result.median, result.percentiles, result.max_position
(49.5, {5.0: 4.95, 95.0: 94.05}, (9, 9))
>>> image = np.array([[1, 2, np.nan, 4]], dtype=np.float32)
>>> result = orlix.describe(image)
>>> result.nb_nan, result.mean
(1, 2.3333333333333335)
>>> orlix.describe(image, nan="propagate").mean
nan
""",
    "noise": """
>>> rng = np.random.default_rng(1)
>>> image = rng.normal(100, 5, (512, 512)).astype(np.float32)
>>> round(orlix.noise(image).noise_std_dev, 1)
5.0
""",
    "histogram": """
>>> image = np.array([[0, 1, 1, 2, 9]], dtype=np.uint8)
>>> counts, edges = orlix.histogram(image)
>>> counts
array([1, 2, 1, 0, 0, 0, 0, 0, 0, 1], dtype=uint64)
>>> edges[:3]
array([0., 1., 2.])
>>> orlix.histogram(image, min=0, max=9, classes=2).counts
array([4, 1], dtype=uint64)
""",
    "entropy": """
>>> image = np.array([[0, 0, 7, 7]], dtype=np.uint8)
>>> round(orlix.entropy(image).entropy, 6)
0.693147
""",
    "kde": """
>>> image = np.arange(10000, dtype=np.float32).reshape(100, 100)
>>> sample = orlix.kde(image, samples=5, bandwidth="scott")
>>> len(sample.samples), sample.bandwidth > 0
(5, True)
""",
    "project": """
>>> stack = np.array([[[1, 2], [3, 4]], [[5, 6], [7, 8]]], dtype=np.uint8)
>>> orlix.project(stack, "z", "max")
array([[5, 6],
       [7, 8]], dtype=uint8)
>>> orlix.project(stack, "x", "mean")
array([[2., 3.],
       [6., 7.]])
>>> orlix.project(stack, "z", "mean", dtype=np.float32)
array([[3., 4.],
       [5., 6.]], dtype=float32)
""",
    "ncc": """
>>> first = np.array([[1, 2], [3, 4]], dtype=np.float32)
>>> round(float(orlix.ncc(first, 10 - 2 * first).correlation), 6)
-1.0
""",
    "pearson": """
>>> first = np.array([[1, 2], [3, 4]], dtype=np.float32)
>>> second = np.array([[1, 3], [2, 4]], dtype=np.float32)
>>> round(orlix.pearson(first, second).r, 6)
0.8
""",
    "similarity": """
>>> first = np.array([[10, 20], [30, 40]], dtype=np.uint8)
>>> orlix.similarity(first, first + np.uint8(2)).mse
4.0
>>> round(orlix.similarity(first, first + np.uint8(2)).psnr, 3)
42.11
""",
    "count": """
>>> labels = np.array([[0, 0, 3], [7, 7, 3]], dtype=np.uint16)
>>> orlix.count(labels).count
2
""",
    "percent": """
>>> labels = np.array([[0, 0, 1], [2, 2, 2]], dtype=np.uint8)
>>> orlix.percent(labels).values.round(2)
array([33.33, 16.67, 50.  ])
>>> orlix.percent(labels > 0).values.round(2)
array([33.33, 66.67])
""",
    "locate": """
>>> image = np.array([[0, 5, 0], [9, 0, 9]], dtype=np.uint8)
>>> orlix.locate(image > 5)
array([[0, 1],
       [2, 1]])
""",
    "paraboloid": """
>>> y, x = np.mgrid[0:20, 0:30]
>>> image = (2 * x**2 - y**2 + 3 * x * y + 7).astype(np.float32)
>>> fit = orlix.paraboloid(image)
>>> [round(number, 3) + 0.0 for number in fit]
[2.0, -1.0, 3.0, 0.0, 0.0, 7.0]
""",
    "compare": """
>>> first = np.arange(64, dtype=np.uint8).reshape(8, 8)
>>> second = first + np.uint8(1)
>>> result = orlix.compare(first, second)
>>> result.me, result.mse, result.r, result.max_abs_error
(1.0, 1.0, 1.0, 1.0)
""",
    "regions": """
>>> labels = np.array([[1, 1, 0], [0, 2, 2]], dtype=np.uint8)
>>> image = np.array([[5, 7, 0], [0, 1, 2]], dtype=np.uint8)
>>> table = orlix.regions(labels, image)
>>> table["label"], table["nb_pixels"], table["mean"]
(array([1, 2], dtype=int64), array([2, 2], dtype=int64), array([6. , 1.5]))
>>> table["centroid_x"]
array([0.5, 1.5])
""",
    "threshold": """
>>> image = np.array([[1, 2, 2, 200, 210]], dtype=np.uint8)
>>> result = orlix.threshold(image)
>>> bool(2 <= result.threshold < 200)
True
""",
}
