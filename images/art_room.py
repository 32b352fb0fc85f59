"""The furnished room that the splash film of make_art.py scans, and the eye that sees it."""

import math

import numpy as np

WIDTH, HEIGHT = 1920, 1080
FOCAL = 1180.0
EYE = np.array([0.0, 1.75, -0.55])
PITCH = math.radians(13)
FAR = 6.0
HALF_ROOM = 3.4
ROOM_HEIGHT = 2.75

# Least and greatest corner, in metres; x right, y up, z away from the eye.
BOXES = [
    # sofa
    ((-2.65, 0.0, 4.65), (-0.45, 0.44, 5.75)),
    ((-2.65, 0.44, 5.4), (-0.45, 0.92, 5.75)),
    ((-2.9, 0.0, 4.65), (-2.65, 0.64, 5.75)),
    ((-0.45, 0.0, 4.65), (-0.2, 0.64, 5.75)),
    # low table
    ((-2.05, 0.36, 3.1), (-0.75, 0.42, 3.85)),
    ((-2.02, 0.0, 3.13), (-1.96, 0.36, 3.19)),
    ((-0.84, 0.0, 3.13), (-0.78, 0.36, 3.19)),
    ((-2.02, 0.0, 3.76), (-1.96, 0.36, 3.82)),
    ((-0.84, 0.0, 3.76), (-0.78, 0.36, 3.82)),
    # desk, screen
    ((1.1, 0.72, 4.7), (3.1, 0.78, 5.6)),
    ((1.1, 0.0, 4.7), (1.16, 0.72, 5.6)),
    ((3.04, 0.0, 4.7), (3.1, 0.72, 5.6)),
    ((1.62, 0.94, 5.2), (2.58, 1.5, 5.25)),
    ((2.03, 0.78, 5.2), (2.17, 0.94, 5.25)),
    # chair
    ((1.62, 0.43, 3.55), (2.17, 0.5, 4.1)),
    ((1.62, 0.5, 3.55), (2.17, 1.02, 3.62)),
    ((1.64, 0.0, 3.57), (1.69, 0.43, 3.62)),
    ((2.1, 0.0, 3.57), (2.15, 0.43, 3.62)),
    ((1.64, 0.0, 4.03), (1.69, 0.43, 4.08)),
    ((2.1, 0.0, 4.03), (2.15, 0.43, 4.08)),
    # lamp
    ((0.43, 0.0, 5.43), (0.47, 1.42, 5.47)),
    ((0.28, 0.0, 5.28), (0.62, 0.04, 5.62)),
    # picture, shelf
    ((-2.2, 1.42, 5.94), (-0.9, 2.2, 6.0)),
    ((1.3, 1.86, 5.7), (2.9, 1.92, 6.0)),
]
SPHERES = [((0.45, 1.6, 5.45), 0.22), ((-1.2, 0.55, 3.45), 0.13)]


def to_camera(points):
    d = points - EYE
    c, s = math.cos(PITCH), math.sin(PITCH)
    return np.stack([d[..., 0], -(d[..., 1] * c + d[..., 2] * s), d[..., 2] * c - d[..., 1] * s], -1)


def project(points):
    c = to_camera(np.asarray(points, float))
    return np.stack([WIDTH / 2 + FOCAL * c[..., 0] / c[..., 2], HEIGHT / 2 + FOCAL * c[..., 1] / c[..., 2]], -1)


def cast(directions):
    """Distance along each ray from the eye to what it meets first."""
    best = np.full(directions.shape[0], np.inf)
    safe = np.where(np.abs(directions) < 1e-9, 1e-9, directions)
    with np.errstate(invalid="ignore"):
        for axis, value in ((1, 0.0), (1, ROOM_HEIGHT), (0, -HALF_ROOM), (0, HALF_ROOM), (2, FAR)):
            t = (value - EYE[axis]) / safe[:, axis]
            best = np.where((t > 0) & (t < best), t, best)
        for low, high in BOXES:
            a, b = (np.array(low) - EYE) / safe, (np.array(high) - EYE) / safe
            near, far = np.minimum(a, b).max(1), np.maximum(a, b).min(1)
            best = np.where((near < far) & (near > 0) & (near < best), near, best)
        for centre, radius in SPHERES:
            to = np.array(centre) - EYE
            aa, bb = (directions**2).sum(1), directions @ to
            under = bb**2 - aa * (to @ to - radius**2)
            t = (bb - np.sqrt(np.maximum(under, 0))) / aa
            best = np.where((under > 0) & (t > 0) & (t < best), t, best)
    return best


def lattice(origin, u, v, step):
    origin, u, v = (np.array(a, float) for a in (origin, u, v))
    nu, nv = (max(1, round(np.linalg.norm(a) / step)) for a in (u, v))
    a, b = np.meshgrid((np.arange(nu) + 0.5) / nu, (np.arange(nv) + 0.5) / nv)
    return origin + a.reshape(-1, 1) * u + b.reshape(-1, 1) * v


def edge(a, b, step):
    a, b = np.array(a, float), np.array(b, float)
    count = max(2, round(np.linalg.norm(b - a) / step) + 1)
    return a + np.linspace(0, 1, count)[:, None] * (b - a)


def sample_room():
    """Points on everything that the eye sees, as (positions, weight): things weigh more than walls, edges most."""
    walls, faces, edges = [], [], []
    w, h = HALF_ROOM, ROOM_HEIGHT
    walls.append(lattice((-w, 0, 1.0), (2 * w, 0, 0), (0, 0, FAR - 1.0), 0.125))
    walls.append(lattice((-w, 0, FAR), (2 * w, 0, 0), (0, h, 0), 0.16))
    walls.append(lattice((-w, 0, 2.0), (0, 0, FAR - 2.0), (0, h, 0), 0.18))
    walls.append(lattice((w, 0, 2.0), (0, 0, FAR - 2.0), (0, h, 0), 0.18))
    for x in (-w, w):
        edges.append(edge((x, 0, FAR), (x, h, FAR), 0.05))
        edges.append(edge((x, 0, 2.0), (x, 0, FAR), 0.05))
        edges.append(edge((x, h, 2.0), (x, h, FAR), 0.05))
    edges.append(edge((-w, 0, FAR), (w, 0, FAR), 0.05))
    edges.append(edge((-w, h, FAR), (w, h, FAR), 0.05))
    for low, high in BOXES:
        low, high = np.array(low), np.array(high)
        size = high - low
        for axis in range(3):
            others = [a for a in range(3) if a != axis]
            u, v = np.eye(3)[others[0]] * size[others[0]], np.eye(3)[others[1]] * size[others[1]]
            if min(size[others[0]], size[others[1]]) > 0.15:
                faces.append(lattice(low, u, v, 0.075))
                faces.append(lattice(low + np.eye(3)[axis] * size[axis], u, v, 0.075))
            if size[axis] < 0.1:
                continue
            along = np.eye(3)[axis] * size[axis]
            for corner in (low, low + u, low + v, low + u + v):
                edges.append(edge(corner, corner + along, 0.036))
    for centre, radius in SPHERES:
        count = int(1300 * radius)
        k = np.arange(count) + 0.5
        y, turn = 1 - 2 * k / count, k * math.pi * (3 - math.sqrt(5))
        ring = np.sqrt(1 - y * y)
        faces.append(np.array(centre) + radius * np.stack([ring * np.cos(turn), y, ring * np.sin(turn)], 1))
    points = np.concatenate(walls + faces + edges)
    weight = np.repeat([0.0, 0.5, 1.0], [sum(map(len, part)) for part in (walls, faces, edges)])
    camera = to_camera(points)
    keep = camera[:, 2] > 0.6
    points, weight = points[keep], weight[keep]
    screen = project(points)
    keep = (np.abs(screen - [WIDTH / 2, HEIGHT / 2]) < [WIDTH / 2 + 4, HEIGHT / 2 + 4]).all(1)
    keep &= cast(points - EYE) > 0.995
    points, weight = points[keep], weight[keep]
    _, unique = np.unique(np.rint(project(points) / 4.5).astype(int) @ [1, 4096], return_index=True)
    return points[unique], weight[unique]


def front_of(points):
    """Where a point lies along the sweep of the scan."""
    return points[..., 0] + 0.16 * points[..., 2] + 0.06 * points[..., 1]
