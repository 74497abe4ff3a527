#!/usr/bin/python3
"""ImageEval's comparison written with OpenCV and numpy: the reference the benchmark measures.

Usage: imageeval_opencv.py REFERENCE CURRENT DISPLACEMENT MARGIN (the area: the picture less MARGIN on each side)
Prints: FIRST_SECONDS BEST_SECONDS RESULT DX DY (the first call, the best of several, the result).
"""
import math
import sys
import time

import cv2
import numpy as np

T = np.array([v / 3294.6 if v < 11 else ((v / 255 + 0.055) / 1.055) ** 2.4 for v in range(256)])


def clip(r, w, h):
    x, y, rw, rh = r
    left, top = max(0, x), max(0, y)
    return left, top, max(0, min(x + rw, w) - left), max(0, min(y + rh, h) - top)


def grid(lin, r, s):
    x, y, w, h = r
    rows, cols = -(-h // s), -(-w // s)
    padded = np.zeros((rows * s, cols * s, 3))
    padded[:h, :w] = lin[y:y + h, x:x + w]
    return padded.reshape(rows, s, cols, s, 3).sum(axis=(1, 3)) / (s * s)


def block_difference(a, b, dx, dy):
    h, w = min(a.shape[0], b.shape[0]), min(a.shape[1], b.shape[1])
    if h < 3 or w < 3:
        return 1.0
    inner_a = a[1:h - 1, 1:w - 1]
    inner_b = b[1 + dy:h - 1 + dy, 1 + dx:w - 1 + dx]
    return cv2.norm(inner_a, inner_b, cv2.NORM_L2) / math.sqrt(h * w * 3)


def pixel_difference(ref, cur, area, dx, dy):
    a = clip(area, ref.shape[1], ref.shape[0])
    b = clip((area[0] + dx, area[1] + dy, area[2], area[3]), cur.shape[1], cur.shape[0])
    w, h = min(a[2], b[2]), min(a[3], b[3])
    if w <= 0 or h <= 0:
        return 1.0
    pa = ref[a[1]:a[1] + h, a[0]:a[0] + w]
    pb = cur[b[1]:b[1] + h, b[0]:b[0] + w]
    return cv2.norm(pa, pb, cv2.NORM_L2) / math.sqrt(w * h * 3)


def compare(ref_bytes, cur_bytes, d, m):
    ref, cur = T[ref_bytes], T[cur_bytes]
    area = (m, m, cur.shape[1] - 2 * m, cur.shape[0] - 2 * m)
    n = min(2 * d, max(ref.shape[1], ref.shape[0])) + 1
    sx = sy = 0
    while n > 4:
        s = -(-n // 3)
        ga = grid(ref, clip((area[0] - s, area[1] - s, area[2] + 2 * s, area[3] + 2 * s), ref.shape[1], ref.shape[0]), s)
        gb = grid(cur, clip((area[0] + sx - s, area[1] + sy - s, area[2] + 2 * s, area[3] + 2 * s),
                            cur.shape[1], cur.shape[0]), s)
        best, step = 1.0, (0, 0)
        for dy in (-1, 0, 1):
            for dx in (-1, 0, 1):
                diff = block_difference(ga, gb, dx, dy)
                if diff < best:
                    best, step = diff, (dx, dy)
        sx, sy = sx + s * step[0], sy + s * step[1]
        n = -(-2 * n // 3)
        sx, sy = max(-d, min(d, sx)), max(-d, min(d, sy))
    best, offset = 1.0, (sx, sy)
    for dy in (-1, 0, 1):
        for dx in (-1, 0, 1):
            ox, oy = sx + dx, sy + dy
            if abs(ox) > d or abs(oy) > d:
                continue
            diff = pixel_difference(ref, cur, area, ox, oy)
            if diff < best:
                best, offset = diff, (ox, oy)
    return 100.0 - 100.0 * best, offset


def main():
    ref = cv2.imread(sys.argv[1], cv2.IMREAD_COLOR)
    cur = cv2.imread(sys.argv[2], cv2.IMREAD_COLOR)
    d, margin = int(sys.argv[3]), int(sys.argv[4])
    times = []
    for _ in range(4):
        start = time.perf_counter()
        result, offset = compare(ref, cur, d, margin)
        times.append(time.perf_counter() - start)
    print(f"{times[0]:.6f} {min(times):.6f} {result:.17g} {offset[0]} {offset[1]}")


if __name__ == "__main__":
    main()
