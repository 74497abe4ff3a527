#!/usr/bin/python3
"""Writes the reference data of the ImageEval tests (data/imageeval/*).

Run from anywhere: /usr/bin/python3 tests/image/make_imageeval_refs.py
Needs numpy only. The pictures are BMP files made here; the expected results are computed here
from the written rules of the comparison, never from the C++ code.

results.txt, one row a line, tab-separated:
    reference  current  rect  displacement  mode  result  dx  dy
current is a picture file of the folder, compared with the picture reference (mode rms or max) or
judged alone (mode coverage, dx and dy then 0); rect is "left,top,width,height" or "-" for none
(the whole picture). The flat pictures make many offsets score alike, where only the rule that an
offset must be strictly better decides.
"""
import math
import os
import struct
import sys

import numpy as np

HERE = os.path.dirname(os.path.abspath(__file__))
DATA = os.path.join(HERE, "data", "imageeval")
WIDTH, HEIGHT = 80, 60

# Linear light of each byte: the sRGB decoding curve with its linear foot.
T = np.array([v / 3294.6 if v < 11 else ((v / 255 + 0.055) / 1.055) ** 2.4 for v in range(256)])


def scene(shift, noise, seed):
    """RGB bytes (HEIGHT, WIDTH, 3) of the scene with its content moved right/down by shift."""
    y, x = np.mgrid[0:HEIGHT, 0:WIDTH]
    sx, sy = x - shift[0], y - shift[1]
    wave = 0.5 + 0.25 * np.sin(sx / 7.0) * np.cos(sy / 5.0) + 0.2 * np.sin((sx + 2 * sy) / 11.0)
    block = ((sx // 9) * 7 + (sy // 7) * 3) % 5 == 0
    v = (255 * np.clip(np.where(block, 1 - wave, wave), 0, 1)).astype(np.int64)
    grain = np.random.default_rng(seed).integers(-noise, noise + 1, size=(HEIGHT, WIDTH)) if noise else 0
    rgb = np.stack([v + grain, (v * 3 + sx * 5) % 256, 255 - v + (sy * 2) % 40 + grain], axis=-1)
    return np.clip(rgb, 0, 255).astype(np.uint8)


def write_bmp(path, rgb):
    h, w, _ = rgb.shape
    stride = (w * 3 + 3) // 4 * 4
    rows = b"".join(rgb[y, :, ::-1].tobytes().ljust(stride, b"\0") for y in range(h - 1, -1, -1))
    header = b"BM" + struct.pack("<IHHI", 54 + len(rows), 0, 0, 54)
    info = struct.pack("<IiiHHIIiiII", 40, w, h, 1, 24, 0, len(rows), 2835, 2835, 0, 0)
    with open(path, "wb") as f:
        f.write(header + info + rows)


def flat(blob):
    """Uniform grey, with a 3 x 3 white blob at blob when given."""
    rgb = np.full((HEIGHT, WIDTH, 3), 118, dtype=np.uint8)
    if blob:
        rgb[blob[1]:blob[1] + 3, blob[0]:blob[0] + 3] = 255
    return rgb


def clip(rect, w, h):
    x, y, rw, rh = rect
    left, top = max(0, x), max(0, y)
    return left, top, max(0, min(x + rw, w) - left), max(0, min(y + rh, h) - top)


class Ties:
    """The closest call between two different candidates of one run; a run closer than rounding
    could decide differently in another implementation and is left out."""

    def __init__(self):
        self.closest = math.inf

    def pick(self, values):
        best, at = 1.0, None
        for i, v in enumerate(values):
            if v != best:
                self.closest = min(self.closest, abs(v - best) / max(abs(best), 1e-300))
            if v < best:
                best, at = v, i
        return best, at


def grid(lin, rect, s):
    x, y, w, h = rect
    rows, cols = -(-h // s), -(-w // s)
    padded = np.zeros((rows * s, cols * s, 3))
    padded[:h, :w] = lin[y:y + h, x:x + w]
    return padded.reshape(rows, s, cols, s, 3).sum(axis=(1, 3)) / (s * s)


def block_difference(a, b, dx, dy):
    h, w = min(a.shape[0], b.shape[0]), min(a.shape[1], b.shape[1])
    if h < 3 or w < 3:  # no inner cells: entirely different
        return 1.0
    d = a[1:h - 1, 1:w - 1] - b[1 + dy:h - 1 + dy, 1 + dx:w - 1 + dx]
    return math.sqrt(np.sum(d * d)) / math.sqrt(h * w * 3)


def pixel_difference(ref, cur, area, dx, dy, worst):
    ax, ay, aw, ah = clip(area, WIDTH, HEIGHT)
    bx, by, bw, bh = clip((area[0] + dx, area[1] + dy, area[2], area[3]), WIDTH, HEIGHT)
    w, h = min(aw, bw), min(ah, bh)
    if w <= 0 or h <= 0:
        return 1.0
    q = (ref[ay:ay + h, ax:ax + w] - cur[by:by + h, bx:bx + w]) ** 2
    if worst:
        return math.sqrt(q.sum(axis=2).max()) / math.sqrt(3)
    return math.sqrt(q.sum()) / math.sqrt(w * h * 3)


def compare(ref, cur, area, d, worst, ties):
    n = min(2 * d, max(WIDTH, HEIGHT)) + 1
    shift = [0, 0]
    offsets = [(dx, dy) for dy in (-1, 0, 1) for dx in (-1, 0, 1)]
    while n > 4:
        s = -(-n // 3)
        grown = lambda r: (r[0] - s, r[1] - s, r[2] + 2 * s, r[3] + 2 * s)
        a = grid(ref, clip(grown(area), WIDTH, HEIGHT), s)
        b = grid(cur, clip(grown((area[0] + shift[0], area[1] + shift[1], area[2], area[3])), WIDTH, HEIGHT), s)
        _, at = ties.pick([block_difference(a, b, dx, dy) for dx, dy in offsets])
        if at is not None:
            shift = [shift[0] + s * offsets[at][0], shift[1] + s * offsets[at][1]]
        n = -(-2 * n // 3)
        shift = [max(-d, min(d, shift[0])), max(-d, min(d, shift[1]))]
    tried = [(shift[0] + dx, shift[1] + dy) for dx, dy in offsets]
    tried = [(x, y) for x, y in tried if abs(x) <= d and abs(y) <= d]
    best, at = ties.pick([pixel_difference(ref, cur, area, x, y, worst) for x, y in tried])
    return 100 - 100 * best, tried[at] if at is not None else tuple(shift)


def coverage(cur, area, ties):
    x, y, w, h = clip(area, WIDTH, HEIGHT)
    if w == 0 or h == 0:
        return 0.0
    light = cur[y:y + h, x:x + w].sum(axis=2).ravel()
    if light.min() == light.max():  # uniform: the mean is the value itself, nothing is darker
        return 0.0
    mean = min(max(math.fsum(light) / light.size, light.min()), light.max())
    ties.closest = min(ties.closest, np.min(np.abs(light - mean)) / mean)
    return 100.0 * np.count_nonzero(light < mean) / (w * h)


def main():
    os.makedirs(DATA, exist_ok=True)
    reference = scene((0, 0), 0, 0)
    write_bmp(os.path.join(DATA, "reference.bmp"), reference)
    currents = {  # name: (shift of the content, noise, seed)
        "shift5m3_noise.bmp": ((5, -3), 6, 1),
        "shiftm4p2_noise.bmp": ((-4, 2), 6, 2),
        "still_noise.bmp": ((0, 0), 10, 3),
        "shift3p3.bmp": ((3, 3), 0, 0),
        "shiftm9p6.bmp": ((-9, 6), 0, 0),
        "shift12m10.bmp": ((12, -10), 0, 0),
    }
    rects = [(16, 12, 48, 36), (-10, 20, 50, 100), None, (30, 25, 6, 5), (0, 0, 80, 30)]
    runs = [(0, "rms"), (2, "rms"), (5, "rms"), (16, "rms"), (5, "max")]
    write_bmp(os.path.join(DATA, "flat.bmp"), flat(None))
    pairs = [("reference.bmp", name, scene(*made), rects) for name, made in currents.items()]
    pairs += [("flat.bmp", "flat.bmp", flat(None), [None, (16, 12, 48, 36)]),
              ("flat.bmp", "flat_blob.bmp", flat((40, 30)), [None, (16, 12, 48, 36)])]
    rows, dropped = [], 0
    for reference_name, name, current, rects_here in pairs:
        lin_ref = T[reference if reference_name == "reference.bmp" else flat(None)]
        write_bmp(os.path.join(DATA, name), current)
        lin_cur = T[current]
        for rect in rects_here:
            area = rect if rect else (0, 0, WIDTH, HEIGHT)
            rect_text = ",".join(map(str, rect)) if rect else "-"
            for d, mode in runs + [(0, "coverage")]:
                ties = Ties()
                if mode == "coverage":
                    result, offset = coverage(lin_cur, area, ties), (0, 0)
                else:
                    result, offset = compare(lin_ref, lin_cur, area, d, mode == "max", ties)
                if ties.closest < 1e-9:
                    dropped += 1
                    continue
                rows.append(f"{reference_name}\t{name}\t{rect_text}\t{d}\t{mode}\t{result!r}\t{offset[0]}\t{offset[1]}\n")
    with open(os.path.join(DATA, "results.txt"), "w") as f:
        f.write("# reference\tcurrent\trect\tdisplacement\tmode\tresult\tdx\tdy (written by make_imageeval_refs.py)\n")
        f.writelines(rows)
    print(f"{len(rows)} rows, {dropped} left out as too close to call", file=sys.stderr)


if __name__ == "__main__":
    main()
