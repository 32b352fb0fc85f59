"""Colours, easing, SVG paths and curves for make_art.py."""

import math
import os
import re
import xml.etree.ElementTree as ElementTree

import numpy as np

HERE = os.path.dirname(os.path.abspath(__file__))

BACKGROUND = np.array([0x1B, 0x25, 0x30], float)
TEAL = np.array([0x02, 0xF1, 0xD3], float)
BLUE = np.array([0x0E, 0x90, 0xE7], float)
WHITE = np.array([0xFF, 0xFF, 0xFF], float)


def mix(a, b, t):
    return a + (b - a) * t


def smooth(t, start, end):
    """0 before start, 1 after end, and a smooth step between."""
    x = np.clip((t - start) / (end - start), 0.0, 1.0)
    return x * x * x * (x * (6 * x - 15) + 10)


def ease_out(t, start, end):
    x = np.clip((t - start) / (end - start), 0.0, 1.0)
    return 1 - (1 - x) ** 3


def make_palette():
    """64 colours: the full gradient, ramps of it into the background, white and pale tints. One table for all frames."""
    colours = [BACKGROUND]
    colours += [mix(TEAL, BLUE, i / 20) for i in range(21)]
    for hue in (0.0, 0.25, 0.5, 0.75, 1.0):
        full = mix(TEAL, BLUE, hue)
        colours += [mix(BACKGROUND, full, level) for level in (0.14, 0.28, 0.42, 0.58, 0.78)]
    colours += [mix(BACKGROUND, WHITE, level) for level in (0.10, 0.22, 0.36, 0.5, 0.64, 0.78, 0.9, 1.0)]
    colours += [mix(BACKGROUND, mix(TEAL, WHITE, 0.5), level) for level in (0.35, 0.55, 0.75, 0.9, 1.0)]
    colours += [mix(BACKGROUND, mix(BLUE, WHITE, 0.5), level) for level in (0.45, 0.7, 1.0)]
    colours += [mix(TEAL, WHITE, 0.75)]
    return np.rint(np.array(colours)).astype(np.uint8)


def make_lookup(palette):
    """Nearest colour of the palette for each colour of 6 bits per channel."""
    steps = (np.arange(64) * 255 / 63).astype(np.float32)
    grid = np.stack(np.meshgrid(steps, steps, steps, indexing="ij"), -1).reshape(-1, 3)
    weights = np.array([0.8, 1.2, 1.0], np.float32)
    nearest = np.empty(len(grid), np.uint8)
    colours = palette.astype(np.float32)
    for begin in range(0, len(grid), 65536):
        part = grid[begin : begin + 65536, None, :] - colours[None]
        nearest[begin : begin + 65536] = ((part * weights) ** 2).sum(-1).argmin(-1)
    # The background is the first entry, and must win for its own cell.
    r, g, b = (int(c) >> 2 for c in BACKGROUND)
    nearest[(r << 12) | (g << 6) | b] = 0
    return nearest


def arc_points(x0, y0, radius, large, sweep, x1, y1):
    """Points of a circular arc in the end point form of SVG."""
    dx, dy = (x0 - x1) / 2, (y0 - y1) / 2
    half = math.hypot(dx, dy)
    radius = max(radius, half)
    away = math.sqrt(max(radius**2 - half**2, 0)) / half
    if large == sweep:
        away = -away
    cx, cy = (x0 + x1) / 2 + away * dy, (y0 + y1) / 2 - away * dx
    a0, a1 = math.atan2(y0 - cy, x0 - cx), math.atan2(y1 - cy, x1 - cx)
    if sweep and a1 < a0:
        a1 += 2 * math.pi
    if not sweep and a1 > a0:
        a1 -= 2 * math.pi
    count = max(8, int(abs(a1 - a0) * 24))
    return [(cx + radius * math.cos(a), cy + radius * math.sin(a)) for a in np.linspace(a0, a1, count + 1)[1:]]


def flatten(data):
    """The polylines of an SVG path made of M, L, H, V, C, A and Z with absolute coordinates."""
    tokens = re.findall(r"[MLHVCAZ]|-?\d*\.?\d+", data)
    lines, at, command, i = [], (0.0, 0.0), "", 0

    def take(count):
        nonlocal i
        values = [float(v) for v in tokens[i : i + count]]
        i += count
        return values

    while i < len(tokens):
        if tokens[i].isalpha():
            command = tokens[i]
            i += 1
        if command == "Z":
            lines[-1].append(lines[-1][0])
        elif command == "M":
            at = tuple(take(2))
            lines.append([at])
            command = "L"
        else:
            if command == "L":
                points = [tuple(take(2))]
            elif command == "H":
                points = [(take(1)[0], at[1])]
            elif command == "V":
                points = [(at[0], take(1)[0])]
            elif command == "C":
                c = np.array([*at, *take(6)]).reshape(4, 2)
                points = []
                for t in np.linspace(0, 1, 25)[1:]:
                    w = np.array([(1 - t) ** 3, 3 * t * (1 - t) ** 2, 3 * t * t * (1 - t), t**3])
                    points.append(tuple(w @ c))
            else:
                radius, _, _, large, sweep, x, y = take(7)
                points = arc_points(*at, radius, bool(large), bool(sweep), x, y)
            lines[-1] += points
            at = points[-1]
    return [np.array(line) for line in lines]


def read_shapes(name):
    """The paths and circles of a drawing by their ids, in the coordinates of their own group."""
    shapes = {}
    for element in ElementTree.parse(os.path.join(HERE, name)).iter():
        key = element.get("id")
        if element.tag.endswith("path"):
            offset = re.match(r"translate\(([-\d.]+) ([-\d.]+)\)", element.get("transform", ""))
            shift = np.array([float(v) for v in offset.groups()]) if offset else np.zeros(2)
            shapes[key] = [line + shift for line in flatten(element.get("d"))]
        elif element.tag.endswith("circle") and key:
            shapes[key] = tuple(float(element.get(a)) for a in ("cx", "cy", "r"))
    return shapes


def length_of(line):
    return np.hypot(*np.diff(line, axis=0).T).sum()


def part_of(line, begin, end):
    """The piece of a polyline between two fractions of its length."""
    steps = np.hypot(*np.diff(line, axis=0).T)
    at = np.concatenate([[0], np.cumsum(steps)])
    lo, hi = begin * at[-1], end * at[-1]
    inner = line[(at > lo) & (at < hi)]
    ends = [[np.interp(v, at, line[:, 0]), np.interp(v, at, line[:, 1])] for v in (lo, hi)]
    return np.concatenate([[ends[0]], inner, [ends[1]]])


def spline(keys, per_part):
    """Catmull-Rom through the keys."""
    p = np.concatenate([[2 * keys[0] - keys[1]], keys, [2 * keys[-1] - keys[-2]]])
    out = [keys[0]]
    for i in range(1, len(p) - 2):
        for u in np.linspace(0, 1, per_part + 1)[1:]:
            a, b, c, d = p[i - 1 : i + 3]
            out.append(0.5 * (2 * b + (c - a) * u + (2 * a - 5 * b + 4 * c - d) * u * u + (3 * b - a - 3 * c + d) * u**3))
    return np.array(out)


def around(points, centre):
    """The order of the points by their direction from the centre."""
    return np.argsort(np.arctan2(points[:, 1] - centre[1], points[:, 0] - centre[0]), kind="stable")


def smoothed(line, reach):
    """A polyline without kinks: a Gaussian of that many pixels along its length. The ends stay where they are."""
    steps = np.hypot(*np.diff(line, axis=0).T)
    at = np.concatenate([[0], np.cumsum(steps)])
    even = np.linspace(0, at[-1], int(at[-1] / 4))
    line = np.stack([np.interp(even, at, line[:, 0]), np.interp(even, at, line[:, 1])], 1)
    half = int(3 * reach / 4)
    kernel = np.exp(-0.5 * (np.arange(-half, half + 1) * 4 / reach) ** 2)
    kernel /= kernel.sum()
    # Mirrored through its end points, so that the curve still ends in them.
    before, after = 2 * line[0] - line[half:0:-1], 2 * line[-1] - line[-2 : -half - 2 : -1]
    long = np.concatenate([before, line, after])
    return np.stack([np.convolve(long[:, a], kernel, "valid") for a in (0, 1)], 1)
