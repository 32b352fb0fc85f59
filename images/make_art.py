#!/usr/bin/python3
"""Makes the pictures that are not drawn by hand as SVG:

    start.gif        the splash film, 1920 x 1080, 150 frames of 40 ms
    quivra_ico.png   the application icon in 256 x 256, for the desktop entry

Usage: python3 images/make_art.py [--still N file.png]

The marks and letters in the film are read from logo.svg and product_name.svg beside this script, so a change there shows
in the film. The room that it scans is in art_room.py, colours and curves are in art_shapes.py. The result depends on
nothing but these files: the same sources give the same pictures.

Debian packages: python3-numpy python3-cairo python3-pil gifsicle librsvg2-bin
"""

import math
import os
import subprocess
import sys
import tempfile

import cairo
import numpy as np
from PIL import Image

sys.dont_write_bytecode = True  # the folder of the pictures stays clean

from art_room import FOCAL, HEIGHT, PITCH, EYE, WIDTH, cast, front_of, project, sample_room, to_camera
from art_shapes import BACKGROUND, BLUE, TEAL, WHITE, around, ease_out, length_of, make_lookup, make_palette, mix
from art_shapes import part_of, read_shapes, smooth, smoothed, spline

HERE = os.path.dirname(os.path.abspath(__file__))
FRAMES, FPS = 150, 25
DELAY = 100 // FPS  # GIF counts in hundredths of a second
MAX_BYTES = 4_000_000

SCAN = (0.0, 1.95)
GATHER = 2.0
ZOOM = 1.14
MARK_SCALE = 3.0 * ZOOM
WORD_SCALE = 1.06 * ZOOM
LOCKUP_WIDTH = (282 + 74 + 626) * ZOOM
LEFT = (WIDTH - LOCKUP_WIDTH) / 2 - 7 * 3 * ZOOM / 2
TOP = 505 - 141 * ZOOM
WORD_AT = np.array([LEFT + (282 + 74 + 7) * ZOOM, TOP + 21 * ZOOM + 7 * WORD_SCALE])


class Film:
    def __init__(self):
        self.random = np.random.default_rng(20230907)
        self.palette = make_palette()
        self.lookup = make_lookup(self.palette)
        self.prepare_lockup()
        self.prepare_room()
        self.prepare_flight()
        self.prepare_trail()

    # What stands at the end

    def prepare_lockup(self):
        shapes = read_shapes("logo.svg")
        names = read_shapes("product_name.svg")
        place = np.array([LEFT, TOP])
        self.arcs = [shapes[k][0] * MARK_SCALE + place for k in ("mark-upper", "mark-lower")]
        self.tail = shapes["mark-tail"][0] * MARK_SCALE + place
        self.dots = [
            (np.array(shapes[f"mark-dot{i}"][:2]) * MARK_SCALE + place, shapes[f"mark-dot{i}"][2] * MARK_SCALE)
            for i in range(4)
        ]
        self.word = [[l * WORD_SCALE + WORD_AT for l in shapes[f"letter-{c}"]] for c in "quivra"]
        word_right = max(l[:, 0].max() for letter in self.word for l in letter)
        letters = [names[k] for k in sorted(names, key=lambda k: int(k.split("-")[1]))]
        width = max(l[:, 0].max() for letter in letters for l in letter)
        # Both lines of letters end at the same places, strokes included.
        bold, thin = 14 * WORD_SCALE, 10.5
        self.name_scale = (word_right - WORD_AT[0] + bold) / (width + thin)
        foot = TOP + (47 + 34 + 6) * MARK_SCALE
        rim = thin / 2 * self.name_scale
        at = np.array([WORD_AT[0] - bold / 2 + rim, foot - 100 * self.name_scale - rim])
        self.name = [[l * self.name_scale + at for l in letter] for letter in letters]
        self.gradient = cairo.LinearGradient(
            LEFT + 16 * MARK_SCALE, TOP + 12 * MARK_SCALE, LEFT + 84 * MARK_SCALE, TOP + 86 * MARK_SCALE
        )
        self.gradient.add_color_stop_rgb(0, *TEAL / 255)
        self.gradient.add_color_stop_rgb(1, *BLUE / 255)

    # The room, seen once by the scan

    def prepare_room(self):
        self.points, weight = sample_room()
        order = np.argsort(-to_camera(self.points)[:, 2], kind="stable")
        self.points, weight = self.points[order], weight[order]
        self.depth = to_camera(self.points)[:, 2]
        self.screen = project(self.points)
        self.radius = np.clip(9.0 / self.depth, 1.3, 3.3) * (0.9 + 0.2 * weight)
        self.hue = np.clip((self.depth - 2.6) / 4.0, 0, 1)
        self.level = (0.32 + 0.55 * weight) * (1.12 - 0.25 * self.hue)
        front = front_of(self.points)
        self.front_range = (front.min() - 0.25, front.max() + 0.35)
        # The time at which the eased front passes each point, by table.
        times = np.linspace(*SCAN, 2000)
        self.seen = np.interp(front, self.front_at(times), times) + self.random.uniform(0, 0.05, len(front))

        ys, xs = np.mgrid[0:HEIGHT, 0:WIDTH]
        x, y = (xs.ravel() + 0.5 - WIDTH / 2) / FOCAL, (ys.ravel() + 0.5 - HEIGHT / 2) / FOCAL
        c, s = math.cos(PITCH), math.sin(PITCH)
        rays = np.stack([x, -y * c - s, c - y * s], 1)
        distance = cast(rays)
        self.front_map = front_of(EYE + rays * distance[:, None]).reshape(HEIGHT, WIDTH)
        self.line_width = (distance * 1.3 / FOCAL).reshape(HEIGHT, WIDTH)

    def front_at(self, t):
        x = np.clip((t - SCAN[0]) / (SCAN[1] - SCAN[0]), 0, 1)
        low, high = self.front_range
        return low + (high - low) * (0.55 * x + 0.45 * (3 * x * x - 2 * x**3))

    # From the room into the mark

    def prepare_flight(self):
        spots = []
        half = 6 * MARK_SCALE - 3
        for arc in self.arcs:
            count = int(length_of(arc) * half * 2 / 17)
            for f in (np.arange(count) + 0.5) / count:
                a, b = part_of(arc, f, min(1, f + 0.01))[[0, -1]]
                along = (b - a) / max(np.hypot(*(b - a)), 1e-9)
                spots.append(a + np.array([-along[1], along[0]]) * self.random.uniform(-half, half))
        for centre, radius in self.dots:
            for _ in range(34):
                a, r = self.random.uniform(0, 2 * math.pi), (radius - 2) * math.sqrt(self.random.uniform())
                spots.append(centre + r * np.array([math.cos(a), math.sin(a)]))
        spots = np.array(spots)
        centre = np.array([LEFT, TOP]) + 47 * MARK_SCALE
        self.centre = centre
        self.fade = GATHER + 0.08 + 0.5 * np.hypot(*(self.screen - centre).T) / 1400
        # The room stays as a trace, but not behind the letters.
        clear = np.hypot(*((self.screen - [WIDTH / 2, 510]) / [820, 330]).T)
        self.rest = np.clip((clear - 1) * 0.9, 0, 1) * 0.36 * (0.55 + 0.45 * self.level / self.level.max())
        # Points that stay as a trace do not fly.
        free = np.nonzero(self.rest <= 0.04)[0]
        fliers = self.random.choice(free, min(len(spots), len(free)), replace=False)
        spots = spots[self.random.permutation(len(spots))[: len(fliers)]]
        # The others keep their order around the mark on the way, so that the streams do not cross.
        fliers = fliers[around(self.screen[fliers], centre)]
        spots = spots[around(spots, centre)]
        self.fliers, self.spots = fliers, spots
        away = np.hypot(*(self.screen[fliers] - centre).T)
        self.leave = GATHER + 0.02 + 0.42 * away / away.max() + self.random.uniform(0, 0.14, len(fliers))
        self.arrive = self.leave + 0.78 + self.random.uniform(0, 0.16, len(fliers))
        start = self.screen[fliers]
        gap = spots - start
        side = np.stack([-gap[:, 1], gap[:, 0]], 1)
        self.bend = start + gap * 0.5 + side * 0.22 - np.array([0, 40])

    # The pose path, which ends as the tail of the mark

    def prepare_trail(self):
        keys = np.array(
            [
                (-2.9, 1.05, 2.6), (-2.3, 1.15, 2.75), (-1.5, 1.3, 2.7), (-0.7, 1.25, 2.9), (-0.1, 1.0, 3.4),
                (0.55, 0.85, 3.9), (1.15, 1.05, 3.6), (1.35, 1.35, 3.0), (0.95, 1.55, 2.6),
            ]
        )
        body = project(spline(keys, 40))
        tail = self.tail
        aim = (tail[1] - tail[0]) / np.hypot(*(tail[1] - tail[0]))
        last = body[-1]
        way = last - body[-8]
        way = way / np.hypot(*way)
        c = np.array([last, last + way * 420, tail[0] - aim * 640, tail[0]])
        t = np.linspace(0, 1, 160)[1:, None]
        link = (1 - t) ** 3 * c[0] + 3 * t * (1 - t) ** 2 * c[1] + 3 * t * t * (1 - t) * c[2] + t**3 * c[3]
        self.trail = np.concatenate([smoothed(np.concatenate([body, link]), 45), np.linspace(tail[0], tail[1], 40)[1:]])
        whole = length_of(self.trail)
        self.body_end = length_of(body) / whole
        self.tail_begin = 1 - length_of(tail) / whole
        times = np.linspace(0.25, 2.3, 400)
        self.key_frames = [i / 9 * self.body_end for i in range(1, 9)]
        self.key_times = np.interp(self.key_frames, self.head_at(times), times)

    def head_at(self, t):
        """How far the path has been drawn while the room is scanned."""
        return self.body_end * 0.985 * mix(ease_out(t, 0.25, 2.3), smooth(t, 0.25, 2.2), 0.6)

    # Drawing

    def frame(self, index):
        t = index / FPS
        surface = cairo.ImageSurface(cairo.FORMAT_RGB24, WIDTH, HEIGHT)
        ctx = cairo.Context(surface)
        ctx.set_source_rgb(*BACKGROUND / 255)
        ctx.paint()
        ctx.set_line_cap(cairo.LINE_CAP_ROUND)
        ctx.set_line_join(cairo.LINE_JOIN_ROUND)
        self.draw_points(ctx, t)
        self.draw_flight(ctx, t)
        self.draw_mark(ctx, t)
        self.draw_trail(ctx, t)
        self.draw_text(ctx, t)
        surface.flush()
        pixels = np.ndarray((HEIGHT, WIDTH, 4), np.uint8, surface.get_data())[..., 2::-1].copy()
        self.draw_scan_line(pixels, t)
        cell = pixels >> 2
        return self.lookup[(cell[..., 0].astype(np.int32) << 12) | (cell[..., 1].astype(np.int32) << 6) | cell[..., 2]]

    def draw_points(self, ctx, t):
        age = t - self.seen
        shown = age > 0
        if t > GATHER:
            gone = smooth(t, self.fade, self.fade + 0.65)
            taken = np.zeros(len(self.points), bool)
            taken[self.fliers[self.leave <= t]] = True
            shown &= ~taken & ((gone < 1) | (self.rest > 0.04))
        else:
            gone = np.zeros(len(self.points))
        # Steps of a fifth keep a point's colour still for some frames, which keeps the film small.
        flash = np.ceil(np.clip(1 - age / 0.4, 0, 1) ** 2 * 5) / 5
        level = mix(mix(self.level, 1.0, flash), np.minimum(self.rest, self.level), np.ceil(gone * 5) / 5)
        for i in np.nonzero(shown)[0]:
            colour = mix(mix(TEAL, BLUE, self.hue[i]), WHITE, 0.75 * flash[i])
            ctx.set_source_rgb(*mix(BACKGROUND, colour, level[i]) / 255)
            ctx.arc(*self.screen[i], self.radius[i] * (1 + 0.25 * flash[i]), 0, 2 * math.pi)
            ctx.fill()

    def draw_flight(self, ctx, t):
        end = smooth(t, 3.1, 3.5)
        if t < GATHER or end >= 1:
            return
        flying = np.nonzero(self.leave <= t)[0]
        x = np.clip((t - self.leave) / (self.arrive - self.leave), 0, 1)
        x = np.where(x < 0.5, 4 * x**3, 1 - (2 - 2 * x) ** 3 / 2)
        for i in flying:
            source, u = self.fliers[i], x[i]
            at = (1 - u) ** 2 * self.screen[source] + 2 * u * (1 - u) * self.bend[i] + u * u * self.spots[i]
            place = (self.spots[i] - self.centre) / (2 * 34 * MARK_SCALE)
            goal = mix(TEAL, BLUE, np.clip(0.5 + place.sum() * 0.7, 0, 1))
            colour = mix(mix(TEAL, BLUE, self.hue[source]), goal, u)
            ctx.set_source_rgb(*mix(BACKGROUND, colour, mix(self.level[source], 0.95, min(1, 8 * u))) / 255)
            ctx.arc(*at, mix(self.radius[source], 2.5, u), 0, 2 * math.pi)
            ctx.fill()

    def draw_mark(self, ctx, t):
        ctx.set_source(self.gradient)
        ctx.set_line_width(12 * MARK_SCALE)
        upper = smooth(t, 2.85, 3.55)
        if upper > 0:
            stroke(ctx, part_of(self.arcs[0], 1 - upper, 1))
        lower = smooth(t, 3.05, 3.5)
        if lower > 0:
            stroke(ctx, part_of(self.arcs[1], 0, lower))
        for i, (centre, radius) in enumerate(self.dots):
            grow = ease_out(t, 3.3 + 0.08 * i, 3.65 + 0.08 * i)
            if grow > 0:
                ctx.arc(*centre, radius * grow, 0, 2 * math.pi)
                ctx.fill()

    def draw_trail(self, ctx, t):
        head = mix(self.head_at(t), 1.0, smooth(t, 2.1, 3.35))
        back = mix(0, self.tail_begin, smooth(t, 2.05, 3.45))
        if t < 0.28:
            return
        width = mix(3.2, 12 * MARK_SCALE, smooth(t, 3.05, 3.6))
        line = part_of(self.trail, back, head)
        ctx.set_line_width(width)
        final = smooth(t, 2.8, 3.4)
        if final >= 1:
            ctx.set_source(self.gradient)
        else:
            ctx.set_source_rgb(*mix(WHITE, mix(TEAL, BLUE, 0.85), final) / 255)
        stroke(ctx, line)
        for at, begin in zip(self.key_frames, self.key_times):
            grow = ease_out(t, begin, begin + 0.3)
            if back < at < head and grow > 0:
                here = part_of(self.trail, at, min(1, at + 0.004))
                ctx.set_source_rgb(*BACKGROUND / 255)
                ctx.arc(*here[0], 6.5 * grow, 0, 2 * math.pi)
                ctx.fill_preserve()
                ctx.set_source_rgb(*WHITE / 255)
                ctx.set_line_width(2.6)
                ctx.stroke()
        show = 1 - smooth(t, 2.45, 2.75)
        if show > 0.02:
            self.draw_frustum(ctx, line, show * ease_out(t, 0.28, 0.6))

    def draw_frustum(self, ctx, line, size):
        """The device at the head of the path: a small pyramid that looks ahead."""
        tip = line[-1]
        back = part_of(line, max(0.0, 1 - 30 / max(length_of(line), 31)), 1)[0]
        way = tip - back
        way = way / max(np.hypot(*way), 1e-6)
        side = np.array([-way[1], way[0]])
        lift = np.array([0.0, -1.0])
        reach, half = 52 * size, 25 * size
        centre = tip + way * reach
        across = side * 0.55 + np.array([way[0], 0]) * 0.1
        corners = [centre + across * half * a * 1.5 + lift * half * b * 0.8 for a, b in ((-1, -1), (1, -1), (1, 1), (-1, 1))]
        ctx.set_source_rgb(*WHITE / 255)
        ctx.set_line_width(2.6)
        stroke(ctx, np.array(corners + corners[:1]))
        for corner in corners:
            stroke(ctx, np.array([tip, corner]))
        ctx.arc(*tip, 6 * size, 0, 2 * math.pi)
        ctx.fill()

    def draw_text(self, ctx, t):
        for i, letter in enumerate(self.word):
            draw = smooth(t, 3.2 + 0.1 * i, 3.85 + 0.1 * i)
            if draw > 0:
                ctx.set_source_rgb(*WHITE / 255)
                ctx.set_line_width(14 * WORD_SCALE)
                for line in letter:
                    stroke(ctx, part_of(line, 0, draw))
        for i, letter in enumerate(self.name):
            draw = smooth(t, 3.85 + 0.045 * i, 4.4 + 0.045 * i)
            if draw > 0:
                ctx.set_source_rgb(*mix(BACKGROUND, WHITE, 0.78) / 255)
                ctx.set_line_width(10.5 * self.name_scale)
                for line in letter:
                    stroke(ctx, part_of(line, 0, draw))

    def draw_scan_line(self, pixels, t):
        """The profile that the sheet of light cuts out of the room."""
        strength = 1 - smooth(t, SCAN[1] - 0.25, SCAN[1])
        if strength <= 0:
            return
        off = (self.front_map - self.front_at(t)) / self.line_width
        glow = np.exp(-0.5 * off * off) * strength
        where = glow > 0.12
        g = glow[where][:, None]
        light = mix(TEAL, WHITE, np.clip(g * 1.4 - 0.6, 0, 1))
        pixels[where] = mix(pixels[where].astype(float), light, g).astype(np.uint8)


def stroke(ctx, line):
    ctx.move_to(*line[0])
    for point in line[1:]:
        ctx.line_to(*point)
    ctx.stroke()


def to_image(pixels, palette):
    image = Image.fromarray(pixels, "P")
    image.putpalette(palette.flatten().tolist())
    return image


def make_film(target):
    film = Film()
    with tempfile.TemporaryDirectory() as folder:
        names = []
        for index in range(FRAMES):
            names.append(os.path.join(folder, f"{index:03}.gif"))
            to_image(film.frame(index), film.palette).save(names[-1], optimize=False, interlace=0)
        # Empty frames must stay: without that, the still ones are merged and the film has fewer than FRAMES.
        options = ["--no-warnings", "-O3", "-Okeep-empty", "--delay", str(DELAY), "--no-loopcount"]
        subprocess.run(["gifsicle", *options, "-o", target, *names], check=True)
    size = os.path.getsize(target)
    print(f"{target}: {size} bytes")
    if size >= MAX_BYTES:
        sys.exit("the film is too large")


def main():
    if len(sys.argv) == 4 and sys.argv[1] == "--still":
        film = Film()
        to_image(film.frame(int(sys.argv[2])), film.palette).save(sys.argv[3])
        return
    icon = os.path.join(HERE, "quivra_ico")
    subprocess.run(["rsvg-convert", "-w", "256", "-h", "256", icon + ".svg", "-o", icon + ".png"], check=True)
    make_film(os.path.join(HERE, "start.gif"))


if __name__ == "__main__":
    main()
