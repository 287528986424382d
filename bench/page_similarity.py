"""How alike two pictures of a page are: for the scripts that print documents and compare the pages with the documents."""
import numpy as np
from PIL import Image, ImageChops


def cells(page, resolution):
    """The page as ink, 0 to 1, averaged to about 100 cells an inch: rows, columns, channels."""
    small = np.asarray(page.reduce(max(1, round(resolution / 100))), dtype=np.float64)
    return 1 - (small if small.ndim == 3 else small[..., None]) / 255


def windows(plane, size=7):
    total = np.pad(np.cumsum(np.cumsum(np.pad(plane, size // 2, mode="edge").astype(np.float64), 0), 1), ((1, 0), (1, 0)))
    return (total[size:, size:] - total[:-size, size:] - total[size:, :-size] + total[:-size, :-size]) / size ** 2


def similarity(a, b, resolution):
    # The driver knows sheets, not any size: of a page a little smaller the upper left part is the same.
    if abs(a.width - b.width) > a.width * 0.02 or abs(a.height - b.height) > a.height * 0.02:
        return 0.0
    size = (0, 0, min(a.width, b.width), min(a.height, b.height))
    first, second = cells(a.crop(size), resolution), cells(b.crop(size), resolution)
    results = []
    for channel in range(first.shape[2]):
        p, q = first[..., channel], second[..., channel]
        mp, mq = windows(p), windows(q)
        vp, vq, cov = windows(p * p) - mp * mp, windows(q * q) - mq * mq, windows(p * q) - mp * mq
        ssim = ((2 * mp * mq + 1e-4) * (2 * cov + 9e-4)) / ((mp * mp + mq * mq + 1e-4) * (vp + vq + 9e-4))
        ink = np.maximum(mp, mq) > 0.005
        results.append(ssim[ink].mean() if ink.any() else 1.0)
    return min(results)


def picture(a, b, path):
    factor = max(1, a.width // 850)
    a, b = a.reduce(factor), b.reduce(factor).crop((0, 0, a.width // factor, a.height // factor))
    b = b.crop((0, 0, a.width, a.height))
    joined = Image.new(a.mode, (3 * a.width, a.height), "white")
    joined.paste(a, (0, 0))
    joined.paste(b, (a.width, 0))
    joined.paste(ImageChops.invert(ImageChops.difference(a, b)), (2 * a.width, 0))
    joined.save(path)
