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


def moved(a, b, limit):
    """How far the second page's ink lies right of and below the first's, in pixels, at most the limit."""
    size = (max(a.height, b.height) + limit, max(a.width, b.width) + limit)
    spectra = [np.fft.rfft2(1 - np.asarray(page, dtype=np.float32) / 255, size) for page in (a, b)]
    match = np.fft.irfft2(np.conj(spectra[0]) * spectra[1], size)
    near = np.concatenate((match[:limit + 1], match[-limit:]))
    near = np.concatenate((near[:, :limit + 1], near[:, -limit:]), axis=1)
    y, x = np.unravel_index(np.argmax(near), near.shape)
    offsets = []
    for line, at in ((near[y], x), (near[:, x], y)):
        # The peak lies between pixels, where a parabola through its neighbours has its top.
        before, here, after = np.take(line, (at - 1, at, at + 1), mode="wrap")
        bend = before - 2 * here + after
        whole = int(at) if at <= limit else int(at) - 2 * limit - 1
        offsets.append(whole + (0.5 * float(before - after) / float(bend) if bend else 0.0))
    return offsets


def shifted(page, x, y):
    """The grey or coloured page, so many pixels further left and up, which need not be whole."""
    return page.transform(page.size, Image.AFFINE, (1, 0, x, 0, 1, y), Image.BICUBIC, fillcolor="white")


def picture(a, b, path):
    factor = max(1, a.width // 850)
    a, b = a.reduce(factor), b.reduce(factor).crop((0, 0, a.width // factor, a.height // factor))
    b = b.crop((0, 0, a.width, a.height))
    joined = Image.new(a.mode, (3 * a.width, a.height), "white")
    joined.paste(a, (0, 0))
    joined.paste(b, (a.width, 0))
    joined.paste(ImageChops.invert(ImageChops.difference(a, b)), (2 * a.width, 0))
    joined.save(path)
