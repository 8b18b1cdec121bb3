"""The burnt tree of the streets and the forest that stands behind the castle.

Both are drawn in the game's model axes. The tree's ground is at y = -3.6, the
forest's at y = -0.5; the forest is drawn half as tall as it shall look, for the
game stretches it, and its front faces -z.
"""
import sys
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parent))
from shared import SEED, Mesh, Sheet, blur, loft, mix, noise, polygon_normal, rgb, smoothstep, write_bmp  # noqa: E402

SIZE = 512
TREE_GROUND = -3.6
FOREST_GROUND = -0.5
WOOD = Sheet(SIZE, 100)
TRUNK_WIDTH = 384          # the trunk's bark is this wide and meets itself; twigs wear the rest
FOREST_SIZE = 1024
FOREST = Sheet(FOREST_SIZE, 40)

# fmt: off
CHAR, CHAR_LIGHT, ASH = rgb("2e2523"), rgb("5d4c44"), rgb("9a8b84")
EMBERS = [rgb("4a120a"), rgb("d2440f"), rgb("ff9a2c"), rgb("ffe08a")]
# fmt: on


# ---- the burnt tree ---------------------------------------------------------

def frame(direction):
    """Two vectors square to a direction."""
    side = np.cross(direction, (0.31, 0.17, 0.93))
    side /= np.linalg.norm(side)
    return side, np.cross(direction, side)


def tube(path, radii, sides, turn, wear):
    """A round skin along a path; a radius of 0 ends it in a point. wear(s, i) places the bark."""
    path, rings = [np.array(p, dtype=float) for p in path], []
    for i, (p, r) in enumerate(zip(path, radii)):
        ahead = path[min(i + 1, len(path) - 1)] - path[max(i - 1, 0)]
        a, b = frame(ahead / np.linalg.norm(ahead))
        if r == 0:
            rings.append([p])
            continue
        angles = turn + 0.5 * i + np.arange(sides) * 2 * np.pi / sides
        rings.append([p + r * (a * np.cos(t) + b * np.sin(t)) for t in angles])
    return loft(rings, wear, smooth=("bark", tuple(path[0])))


def lengths(path):
    steps = np.linalg.norm(np.diff(np.array(path), axis=0), axis=1)
    return np.concatenate([[0], np.cumsum(steps)])


def limb(path, radii, sides=4, turn=0.0):
    """A branch: its bark is mirrored half way round, so it shows no seam."""
    along = lengths(path)
    end = along[-1]

    def wear(s, i):
        half_round = np.pi * radii[0] * (1 - abs(2 * s - 1)) * WOOD.density
        return WOOD.uv(TRUNK_WIDTH + 8 + half_round, 8 + (end - along[i]) * WOOD.density)

    return tube(path, radii, sides, turn, wear)


def trunk():
    """Fluted and twisted, spreading into roots at its foot."""
    # fmt: off
    steps = [  # y, x, z, radius, how deep the flutes are
        (-3.60, 0.00,  0.00, 0.70, 0.36),
        (-3.15, 0.02,  0.02, 0.52, 0.22),
        (-2.10, 0.16, -0.06, 0.42, 0.16),
        (-0.90, 0.02,  0.12, 0.39, 0.16),
        ( 0.30, -0.16, 0.04, 0.37, 0.14),
        ( 1.20, -0.04, -0.06, 0.26, 0.10),
    ]
    # fmt: on
    sides, rings = 6, []
    for i, (y, x, z, radius, flute) in enumerate(steps):
        angles = 0.34 * i + np.arange(sides) * 2 * np.pi / sides
        r = radius * (1 + flute * np.where(np.arange(sides) % 2, -1, 1))
        rings.append([(x + r[k] * np.cos(angles[k]), y, z - r[k] * np.sin(angles[k])) for k in range(sides)])
    return loft(rings, lambda s, i: WOOD.uv(s * TRUNK_WIDTH, SIZE - 8 - (steps[i][0] - TREE_GROUND) * WOOD.density),
                smooth="trunk")


LIMBS = [  # path, then radius at its start
    ([(-0.15, 0.2, 0.05), (-0.75, 1.25, 0.35), (-1.05, 2.35, 0.15), (-1.75, 3.35, 0.45), (-1.85, 4.45, 0.2)], 0.25),
    ([(-0.05, 0.9, -0.05), (0.25, 2.0, -0.30), (0.02, 3.1, -0.45), (0.40, 4.2, -0.25), (0.22, 5.2, -0.4)], 0.25),
    ([(0.00, -0.4, 0.05), (0.85, 0.55, 0.15), (1.15, 1.65, 0.50), (1.95, 2.45, 0.35), (2.25, 3.6, 0.6)], 0.23),
    ([(-0.10, 0.5, 0.0), (-0.35, 1.35, -0.85), (-0.85, 2.15, -1.15), (-0.80, 3.05, -1.75), (-1.3, 4.0, -1.95)], 0.21),
    ([(-0.05, 0.7, 0.05), (0.20, 1.55, 0.85), (0.05, 2.45, 1.25), (0.45, 3.35, 1.65), (0.35, 4.3, 2.05)], 0.21),
]


def tree():
    rng = np.random.default_rng(SEED * 1000 + 61)
    mesh = trunk()
    for path, radius in LIMBS:
        mesh.add(limb(path, [radius, radius * 0.82, radius * 0.6, radius * 0.38, 0]))
    boughs = [(0, 1), (0, 2), (1, 1), (1, 2), (2, 1), (2, 2), (3, 2), (4, 2)]
    for limb_index, at in boughs:
        start = np.array(LIMBS[limb_index][0][at])
        out = start * (1, 0, 1) + rng.normal(size=3) * (0.5, 0, 0.5)
        side = out / np.linalg.norm(out)
        bend = np.array([-side[2], 0, side[0]]) * rng.choice((-0.55, 0.55))
        middle = start + (side * 0.55 + bend * 0.7) * rng.uniform(0.9, 1.2) + (0, 0.45, 0)
        tip = middle + (side * 0.35 - bend * 0.25) * 1.1 + (0, rng.uniform(0.75, 1.15), 0)
        thick = LIMBS[limb_index][1] * (0.62 if at == 1 else 0.46)
        mesh.add(limb([start, middle, tip], [thick, thick * 0.6, 0], sides=3, turn=rng.random()))
    spikes = [(0, 3), (1, 3), (2, 3), (4, 3)]
    for limb_index, at in spikes:
        start = np.array(LIMBS[limb_index][0][at])
        tip = start + rng.normal(size=3) * (0.55, 0.12, 0.55) + (0, 0.75, 0)
        mesh.add(limb([start, tip], [LIMBS[limb_index][1] * 0.34, 0], sides=3, turn=rng.random()))
    for angle in np.radians((20, 95, 160, 235, 305)):  # roots as wide as what stops a walker
        out = np.array((np.cos(angle), 0, np.sin(angle)))
        mesh.add(limb([out * 0.28 + (0, -3.08, 0), out * 1.02 + (0, -3.58, 0)], [0.27, 0], sides=3, turn=angle))
    return balanced(mesh)


def balanced(mesh, below=None):
    """Adds the speck under the ground that makes the bounds symmetric."""
    points = np.concatenate([p for p, _, _ in mesh.polygons])
    low, high = points.min(axis=0), points.max(axis=0)
    assert below is None or low[1] >= below - 1e-6
    reach = np.maximum(-low, high)
    corner = np.where(high >= -low, -reach, reach)
    assert corner[1] < 0  # the speck stays underground
    return mesh.add(Mesh().anchor(*corner))


# ---- bark ---------------------------------------------------------------------

def plates(width, height, across, down, seed):
    """Cracked plates over a picture that meets itself left to right.

    Returns how near each pixel is to a crack (0 on it) and a tone per plate.
    """
    rng = np.random.default_rng(SEED * 1000 + seed)
    places, tones = rng.random((down, across, 2)) * 0.8 + 0.1, rng.random((down, across))
    y, x = np.mgrid[0:height, 0:width]
    bend = (noise(SIZE, SIZE, 8, 3, seed)[:height, :width] - 0.5) * 0.9
    u, v = x / width * across, y / height * down + bend
    first, second = np.full(u.shape, 9.0), np.full(u.shape, 9.0)
    tone = np.zeros(u.shape)
    for dv in (-1, 0, 1):
        for du in (-1, 0, 1):
            column, row = np.floor(u).astype(int) + du, np.floor(v).astype(int) + dv
            place = places[row % down, column % across]
            away = np.hypot(u - column - place[..., 0], v - row - place[..., 1])
            nearer = away < first
            second = np.where(nearer, first, np.minimum(second, away))
            tone = np.where(nearer, tones[row % down, column % across], tone)
            first = np.minimum(first, away)
    return second - first, tone


def glow(heat):
    """Ember colour of a heat 0..1."""
    table = np.array(EMBERS)
    return np.stack([np.interp(heat, [0.0, 0.4, 0.75, 1.0], table[:, i]) for i in range(3)], axis=-1)


def bark(width, height, across, down, seed, heat):
    """Charred plates; `heat` (a column, top to bottom) says how much the cracks glow."""
    gap, tone = plates(width, height, across, down, seed)
    fibre = noise(SIZE, SIZE, 32, 3, seed + 5)[:height, :width]
    grain = noise(SIZE, SIZE, 4, 2, seed + 6)
    picture = mix(CHAR, CHAR_LIGHT, np.clip(0.15 + 0.55 * tone + 0.5 * (fibre - 0.5), 0, 1))
    picture = mix(picture, ASH, smoothstep(0.35, 0.9, gap) * smoothstep(0.45, 0.9, tone) * 0.35)
    lit = gap - np.roll(gap, 3, axis=1)  # one flank of every plate catches the light
    picture = picture * (1 + np.clip(lit * 1.1, -0.30, 0.35))[..., None]
    crack = smoothstep(0.17, 0.02, gap)
    picture = mix(picture, rgb("120c0c"), crack * 0.8)
    patchy = noise(SIZE, SIZE, 6, 2, seed + 7) * 0.7 + grain * 0.3
    patchy = smoothstep(0.30, 0.72, patchy[:height, :width])
    burning = np.clip(heat[:, None] * patchy * 1.25, 0, 1)
    ember = glow(np.clip(burning * smoothstep(0.13, 0.0, gap) * 1.15, 0, 1))
    picture = mix(picture, ember, crack * np.clip(burning * 1.6, 0, 1))
    return picture + (smoothstep(0.45, 0.0, gap) * burning)[..., None] * np.array([0.26, 0.08, 0.01])


def wood_picture():
    picture = np.zeros((SIZE, SIZE, 3))
    down = np.linspace(0, 1, SIZE)  # 0 at the top
    trunk_heat = 0.95 * smoothstep(0.62, 0.08, down) + 0.40 * smoothstep(0.80, 1.0, down) + 0.22
    picture[:, :TRUNK_WIDTH] = bark(TRUNK_WIDTH, SIZE, 7, 5, 62, trunk_heat)
    picture[:, :TRUNK_WIDTH] *= (1 - 0.45 * smoothstep(0.86, 1.0, down))[:, None, None]
    twig = bark(SIZE - TRUNK_WIDTH, SIZE, 4, 9, 68, 1.0 - 0.55 * smoothstep(0.05, 0.9, down))
    tip = smoothstep(70, 8, np.arange(SIZE))  # the ends of the twigs are burnt to a glow
    picture[:, TRUNK_WIDTH:] = twig + (rgb("d8622a") - twig) * 0.55 * tip[:, None, None]
    return picture


# ---- the forest -----------------------------------------------------------------

# All in world units here: x along the edge, y above the ground, z inwards, the
# front facing -z. The game draws the model twice as wide and four times as tall.
STRETCH = np.array((2.0, 4.0, 2.0))
FRONT = (-25.0, 205.0)  # the seen part of a tree, in degrees round it; the town's side is 90

# Places on the picture, in pixels: x, y, width, height.
DEEP = (0, 0, 1024, 352)                       # goes on from its right edge to its left, a thicket there
LEAVES = (0, 352, 416, 448)
BARK, SCALES = (416, 352, 176, 448), (592, 352, 176, 448)
BOUGHS = [(768, 352, 128, 448), (896, 352, 128, 448)]
SCRUB, CANOPY, FERN = (0, 800, 448, 224), (448, 800, 400, 224), (848, 800, 176, 224)
TEXELS = 62.0                                  # of leaves in a world unit


def place(region, s, t):
    """uv at s across and t down a region, clear of its neighbours."""
    x, y, width, height = region
    return FOREST.uv(x + 2 + s * (width - 4), y + 2 + t * (height - 4))


class Foliage(Mesh):
    """Crowns are lit like soft lumps: their normals lean away from the lump's heart."""

    def __init__(self):
        super().__init__()
        self.hearts = {}  # smooth name -> heart of the lump, how far normals lean away from it

    def _normals(self):
        out = []
        for (points, _, smooth), normals in zip(self.polygons, super()._normals()):
            if smooth in self.hearts:
                heart, lean = self.hearts[smooth]
                away = points - heart
                away /= np.linalg.norm(away, axis=1, keepdims=True)
                normals = [n * (1 - lean) + a * lean for n, a in zip(normals, away)]
            out.append(normals)
        return out

    def as_drawn(self):
        """The mesh in model units, its normals worked out in the world's."""
        drawn = Drawn()
        for (points, uvs, smooth), normals in zip(self.polygons, self._normals()):
            small = points / STRETCH + (0, FOREST_GROUND, 0)
            drawn.face(small, uvs, smooth)
            square = polygon_normal(small)
            kept = []
            for n in normals:
                n = n * STRETCH / np.linalg.norm(n * STRETCH)
                n = n + square * max(0.0, 0.15 - n @ square)  # never behind its face
                kept.append(n / np.linalg.norm(n))
            drawn.lit.append(kept)
        return drawn


class Drawn(Mesh):
    """Polygons with their normals; those without, the last ones, are flat."""

    def __init__(self):
        super().__init__()
        self.lit = []

    def _normals(self):
        return self.lit + [[polygon_normal(p)] * len(p) for p, _, _ in self.polygons[len(self.lit):]]


def around(x, y, z, radius, angle):
    """The point at an angle (radians) of a level circle about (x, y, z)."""
    return np.array((x + radius * np.cos(angle), y, z - radius * np.sin(angle)))


def stem(wood, rng, x, z, tall, radius, skin, reach=FRONT, roots=True, sides=5):
    """A furrowed stem, bent a little, that may spread into roots."""
    lean = rng.normal(size=2) * 0.05
    levels = [(0.0, 1.5), (tall, 0.8)]
    if roots:
        levels = [(0.0, 2.0 * np.where(np.arange(sides) % 2, 0.72, 1.25)), (0.75, 1.06), (tall, 0.72)]
    angles = np.radians(np.linspace(*reach, sides))
    rings = [[around(x + lean[0] * y, y, z + lean[1] * y, radius * r, a) for r, a in zip(np.broadcast_to(spread, sides), angles)]
             for y, spread in levels]
    wear = lambda s, i: place(skin, s, 1 - min(levels[i][0] / 5.2, 1))
    wood.add(loft(rings, wear, ("stem", x, z), closed=False))


def shag(wood, rng, name, middle, wide, tall, reach, heart, count, below):
    """A lump of foliage: a crooked ring of so many steps under its top, then a hem with two leafy tips
    a step, drawn in under it. It is lit as a part of what has its heart at `heart`. The picture lies on
    it unstretched, from `below` world units under its upper edge.
    """
    x, y, z = middle
    wood.hearts[name] = (np.array(heart), 0.85)
    start, span = np.radians(reach[0]) + rng.uniform(-0.15, 0.15), np.radians(reach[1] - reach[0])
    at = lambda angle, out, up: around(x, y + up * tall, z, out * wide, angle)
    angles, step = start + span * np.arange(count + 1) / count, span / count
    top = at(rng.random() * 6, 0.18, rng.uniform(0.78, 0.94))
    waist = [at(a, rng.uniform(0.68, 0.88), rng.uniform(0.40, 0.62)) for a in angles]
    hem = []
    for k in range(4 * count + 1):  # notch, tip, notch, tip ...
        a = start + step * (k / 4 + (rng.uniform(-0.05, 0.05) if k % 4 else 0))
        hem.append(at(a, rng.uniform(0.74, 0.90), rng.uniform(-0.46, -0.32)) if k % 2
                   else at(a, rng.uniform(0.92, 1.06), rng.uniform(-0.24, -0.08)))
    spot = unrolled(LEAVES, rng, start, span, wide, below)
    for k in range(count):
        wa, wb, h = waist[k], waist[k + 1], hem[4 * k:4 * k + 5]
        a, b = angles[k], angles[k + 1]
        on_a, on_b = spot(a, top, wa), spot(b, top, wb)
        left = [spot(a + step * i / 4, top, wa, h[i]) for i in range(3)]
        right = [spot(a + step * i / 4, top, wb, h[i]) for i in range(2, 5)]
        wood.face([wa, wb, top], [on_a, on_b, spot((a + b) / 2, top)], name)
        wood.face([h[0], h[1], wa], [left[0], left[1], on_a], name)
        wood.face([h[1], h[2], wa], [left[1], left[2], on_a], name)
        wood.face([h[2], wb, wa], [left[2], on_b, on_a], name)
        wood.face([h[2], h[3], wb], [right[0], right[1], on_b], name)
        wood.face([h[3], h[4], wb], [right[1], right[2], on_b], name)


def unrolled(region, rng, start, span, wide, below=0.0):
    """Where a lump's points lie on a region: a function of the angle and the way down over points."""
    left, upper, width, height = region
    round_it = span * wide * 0.9 * TEXELS                      # pixels
    room = width - 8 - round_it
    shift, squeeze = max(0.0, room) * rng.random(), min(1.0, (width - 8) / round_it)

    def spot(angle, *points):
        across = shift + (angle - start + 0.12) / span * round_it * squeeze
        down = (below + sum(np.linalg.norm(b - a) for a, b in zip(points, points[1:]))) * TEXELS
        return FOREST.uv(left + np.clip(4 + across, 3, width - 3), upper + min(3 + down, height - 3))

    return spot


def round_tree(wood, rng, x, z, tall, wide, reach=FRONT):
    """Three lumps of leaves on a stem, lit and coloured as one crown."""
    base, high, swing = tall * 0.40, tall * 0.60, rng.choice((-1, 1))
    stem(wood, rng, x, z, base + 0.45 * high, 0.30, BARK, reach, sides=4)
    lumps = [  # aside, height over the base, inwards, half width, half height, steps of the hem
        (0.06, 0.50, 0.06, 0.82, 0.58, 4),
        (-0.48, 0.22, -0.16, 0.64, 0.44, 3),
        (0.50, 0.30, -0.12, 0.62, 0.44, 3),
    ]
    heart = (x, base + 0.25 * high, z + 0.3 * wide)
    for k, (dx, up, dz, half, thick, steps) in enumerate(lumps):
        middle = (x + dx * swing * wide, base + up * high, z + dz * wide)
        below = (0.50 + 0.58 - up - thick) * high * 0.4        # the lower lumps are a little darker
        shag(wood, rng, ("crown", x, k), middle, half * wide, thick * high, reach, heart, steps, below)


def conifer(wood, rng, x, z, tall, wide, tiers, reach=FRONT):
    """Tiers of so many drooping boughs each, the lowest first, on a scaly stem."""
    name = ("conifer", x, z)
    wood.hearts[name] = (np.array((x, tall * 0.30, z)), 0.45)
    lowest, span = 1.5, np.radians(reach[1] - reach[0])
    stem(wood, rng, x, z, lowest + 1.6, 0.26, SCALES, reach, roots=reach == FRONT, sides=4)
    for tier, count in enumerate(tiers):
        at, last = tier / len(tiers), tier == len(tiers) - 1
        hem = lowest + (tall - lowest) * at ** 1.05
        peak = tall if last else hem + (tall - lowest) * 1.30 / len(tiers)
        drop, radius = peak - hem, wide * (1 - 0.84 * at)
        start, step = np.radians(reach[0]) + rng.uniform(-0.25, 0.25), span / count
        apex = np.array((x + rng.normal() * 0.06, peak, z + rng.normal() * 0.06))
        notches = [around(x, hem + drop * rng.uniform(0.08, 0.20), z, radius * rng.uniform(0.66, 0.80), start + step * i)
                   for i in range(count + 1)]
        for i in range(count):
            tip = around(x, hem - drop * rng.uniform(0.0, 0.16), z, radius * rng.uniform(0.90, 1.16),
                         start + step * (i + rng.uniform(0.36, 0.64)))
            region = BOUGHS[int(rng.integers(2))]
            low, middle, high = place(region, 0.0, 0.84), place(region, 0.5, 1.0), place(region, 0.5, 0.0 if last else 0.12)
            wood.face([notches[i], tip, apex], [low, middle, high], name)
            wood.face([tip, notches[i + 1], apex], [middle, place(region, 1.0, 0.84), high], name)


def spire(wood, rng, foot, out, tall, wide, low):
    """A far conifer, three flat tiers that face `out`, from `low` to `tall`."""
    name = ("spire", *foot)
    out = np.array(out, dtype=float) / np.linalg.norm(out)
    side = np.array((-out[2], 0, out[0]))
    wood.hearts[name] = (np.array(foot) - out * 3 + (0, low - 4, 0), 0.5)
    for tier in range(3):
        hem = low + (tall - low) * (tier / 3) ** 1.1
        peak = tall if tier == 2 else hem + (tall - low) * 0.46
        half = wide * (1 - 0.27 * tier) * rng.uniform(0.9, 1.1)
        at = lambda s, y: np.array((foot[0], y, foot[2])) + side * s - out * 0.10 * tier
        points = [at(-half, hem + rng.uniform(-0.3, 0.3)), at(half, hem + rng.uniform(-0.3, 0.3)), at(rng.normal() * 0.1, peak)]
        uvs = [place(BOUGHS[tier % 2], 0.04, 0.86), place(BOUGHS[tier % 2], 0.96, 0.86), place(BOUGHS[tier % 2], 0.5, 0.05)]
        if polygon_normal(points) @ out < 0:
            points, uvs = points[::-1], uvs[::-1]
        wood.face(points, uvs, name)


def bush(wood, rng, x, z, tall, wide, reach=(-8.0, 188.0), count=4):
    """A mound of leaves, its foot on the ground."""
    name = ("bush", x, z)
    wood.hearts[name] = (np.array((x, -0.45 * tall, z)), 0.6)
    start, span = np.radians(reach[0]) + rng.uniform(-0.15, 0.15), np.radians(reach[1] - reach[0])
    angles = start + span * np.arange(count + 1) / count
    at = lambda angle, out, up: around(x, up * tall, z, out * wide, angle)
    top = at(rng.random() * 6, 0.2, rng.uniform(0.9, 1.0))
    waist = [at(a, rng.uniform(0.66, 0.84), rng.uniform(0.42, 0.58) if k % 2 else rng.uniform(0.62, 0.80))
             for k, a in enumerate(angles)]
    foot = [at(a, rng.uniform(0.90, 1.08), 0) for a in angles]
    spot = unrolled(SCRUB, rng, start, span, wide)
    for k in range(count):
        a, b, wa, wb = angles[k], angles[k + 1], waist[k], waist[k + 1]
        on_a, on_b = spot(a, top, wa), spot(b, top, wb)
        wood.face([wa, wb, top], [on_a, on_b, spot((a + b) / 2, top)], name)
        wood.face([foot[k], foot[k + 1], wb, wa],
                  [spot(a, top, wa, foot[k]), spot(b, top, wb, foot[k + 1]), on_b, on_a], name)


def fern(wood, rng, x, z, size, fronds=5):
    """Fronds that spread from one place towards the town, each narrowing to its tip."""
    name = ("fern", x, z)
    wood.hearts[name] = (np.array((x, -0.6, z + 0.4)), 0.5)
    for k in range(fronds):
        a = np.radians(-5 + 190 * (k + rng.uniform(0.35, 0.65)) / fronds)
        way = np.array((np.cos(a), 0, -np.sin(a)))
        side = np.array((way[2], 0, -way[0])) * 0.24 * size
        length = size * rng.uniform(0.85, 1.2)
        root = np.array((x, 0.0, z)) - way * 0.15
        tip = root + way * length * rng.uniform(0.65, 0.9) + (0, length * rng.uniform(0.45, 0.9), 0)
        points, uvs = [root + side, tip, root - side], [place(FERN, 1, 1), place(FERN, 0.5, 0), place(FERN, 0, 1)]
        if polygon_normal(points)[1] < 0:
            points, uvs = points[::-1], uvs[::-1]
        wood.face(points, uvs, name)


def deep_wood(wood, rng):
    """The painted depth of the wood, drawn round both ends, and far conifers that look over it.

    The picture goes once round in 28.4 units, so that nothing on it shows twice; its thicket closes
    both ends.
    """
    # fmt: off
    west = [  # x, z, how far from the middle on the picture, height
        (-13.5, -4.4, -19.4, 6.8), (-13.6, -1.2, -16.2, 8.4), (-13.4, 2.6, -12.4, 7.2), (-11.8, 4.5, -10.0, 8.9),
    ]
    # fmt: on
    back = [(x, 4.5, x, tall) for x, tall in ((-7.4, 6.9), (-2.9, 8.8), (1.6, 7.1), (7.7, 8.6))]
    track = west + back + [(-x, z, -s, tall) for x, z, s, tall in west[::-1]]
    wood.hearts["deep"] = (np.array((0.0, -30.0, 50.0)), 0.75)
    on_picture = lambda s, y: (s / 28.4 + 0.5, place(DEEP, 0, 1 - y / 9.0)[1])
    for i, ((ax, az, a_on, a_top), (bx, bz, b_on, b_top)) in enumerate(zip(track, track[1:])):
        corners = [(bx, 0, bz), (ax, 0, az), (ax, a_top, az), (bx, b_top, bz)]
        wood.face(corners, [on_picture(b_on, 0), on_picture(a_on, 0), on_picture(a_on, a_top), on_picture(b_on, b_top)], "deep")
        out = np.array((bz - az, 0, ax - bx))
        for _ in range(0 if i in (1, len(track) - 3) else 1):
            t = rng.uniform(0.2, 0.8)
            middle = np.array((ax + (bx - ax) * t, 0, az + (bz - az) * t)) - out / np.linalg.norm(out) * 0.08
            spire(wood, rng, tuple(middle), out, rng.uniform(9.6, 13.0), rng.uniform(2.2, 3.0), rng.uniform(4.8, 6.0))
    for side in (-1, 1):  # sprays of leaves over the upright edges
        for low, high, reach in ((0.2, 2.5, 0.9), (1.9, 4.6, 1.3), (4.0, 6.8, 1.0)):
            x, z, middle = side * 13.5, -4.3, rng.uniform(0.3, 0.5) * (high - low) + low
            points = [(x, low, z), (x, high, z), (x + side * rng.uniform(-0.1, 0.3), middle, z - reach)]
            uvs = [on_picture(side * s, y) for s, y in ((19.3, low), (19.3, high), (19.3 + reach, middle))]
            wood.face(points if side < 0 else points[::-1], uvs if side < 0 else uvs[::-1], "deep")


def canopy(wood, rng):
    """Leaves that hang between the rows of trees, ragged below and above."""
    count = 13
    xs = np.linspace(-13.2, 13.2, count)
    place_of = lambda x, lo, hi, z: np.array((x, rng.uniform(lo, hi), z + rng.uniform(-0.5, 0.5)))
    low = [place_of(x, *((4.5, 5.0) if i % 2 else (5.0, 5.6)), -1.2) for i, x in enumerate(xs)]
    high = [place_of(x, *((8.2, 10.8) if i % 2 else (7.0, 7.6)), -0.6) for i, x in enumerate(xs)]
    wood.hearts["canopy"] = (np.array((0.0, 3.0, 9.0)), 0.55)
    for i in range(count - 1):
        s = [abs((k + 3) % 6 - 3) / 3 for k in (i, i + 1)]  # to and fro on the picture
        notch = (high[i] + high[i + 1]) / 2 - (0, rng.uniform(0.2, 0.65), 0)
        corners = [low[i + 1], low[i], high[i], notch, high[i + 1]]
        uvs = [place(CANOPY, s[1], 1 - 0.25 * (i % 2)), place(CANOPY, s[0], 0.75 + 0.25 * (i % 2)),
               place(CANOPY, s[0], 0.2 - 0.2 * (i % 2)), place(CANOPY, (s[0] + s[1]) / 2, 0.25),
               place(CANOPY, s[1], 0.2 * (i % 2))]
        wood.face(corners, uvs, "canopy")


def forest():
    rng = np.random.default_rng(SEED * 1000 + 71)
    wood = Foliage()
    deep_wood(wood, rng)
    canopy(wood, rng)
    # fmt: off
    front = [  # boughs in a conifer's tiers, None for a round tree; x, z, height, half width
        ((5, 5, 4, 3), -14.4, -7.4, 10.8, 2.2), (None, -11.6, -8.4, 9.9, 2.1), ((5, 4, 4, 3, 3), -8.0, -7.7, 12.4, 2.7),
        (None, -2.9, -8.8, 7.3, 3.3), ((5, 4, 4, 3, 3), 2.2, -7.6, 10.4, 2.6), (None, 5.2, -8.3, 9.0, 2.3),
        ((5, 4, 4, 3, 3), 9.4, -8.2, 12.9, 2.8), (None, 13.7, -7.6, 7.2, 2.7),
    ]
    # fmt: on
    for i, (tiers, x, z, tall, wide) in enumerate(front):
        reach = (20.0, 270.0) if i == 0 else (-80.0, 160.0) if i == len(front) - 1 else FRONT
        if tiers:
            conifer(wood, rng, x, z, tall, wide, tiers, reach)
        else:
            round_tree(wood, rng, x, z, tall, wide, reach)
    for side, tall, behind in ((-1, 14.0, 10.5), (1, 12.5, 12.0)):  # what hides the edges of the deep wood
        turned = lambda low, high: (low, high) if side > 0 else (180 - high, 180 - low)
        conifer(wood, rng, side * 13.6, -4.7, tall, 2.0, (5, 4, 4, 3), turned(-100, 200))
        bush(wood, rng, side * 13.8, -4.9, 1.3, 1.5, turned(-80, 160))
        conifer(wood, rng, side * 13.5, 2.9, behind, 1.9, (4, 3, 3), turned(-110, 110))
    for i, x in enumerate((-9.2, -5.0, 3.6, 8.2)):  # stems between the canopy and the deep wood
        stem(wood, rng, x + rng.uniform(-0.4, 0.4), rng.uniform(0.0, 1.4), 6.3, 0.26, SCALES if i % 2 else BARK,
             (10.0, 170.0), roots=False, sides=3)
    for x in (-13.0, -4.8, 8.6):
        bush(wood, rng, x, -9.6 + rng.uniform(-0.4, 0.3), rng.uniform(0.9, 1.4), rng.uniform(1.4, 1.8))
    for x in (-8.8, -0.4, 12.4):
        fern(wood, rng, x, -9.8 + rng.uniform(-0.3, 0.3), rng.uniform(1.2, 1.6))
    for x in (-4.3, 7.2):
        fern(wood, rng, x, -5.8 + rng.uniform(-0.4, 0.4), rng.uniform(1.4, 1.8))
    return balanced(wood.as_drawn(), FOREST_GROUND)


# ---- leaves ---------------------------------------------------------------------

FINE = 2  # painted finer than kept


class Brush:
    """Stamps leaves and needles on a region, each shaded and set off from what lies under it."""

    def __init__(self, region, seed, ground, squeeze=1):
        """squeeze: how many times as wide as the region it is painted."""
        _, _, width, height = region
        self.kept_size = height, width
        self.height, self.width = height * FINE, width * squeeze * FINE
        self.picture = np.ones((self.height, self.width, 3)) * ground
        self.rng = np.random.default_rng(SEED * 1000 + seed)
        self.y, self.x = np.mgrid[0:self.height, 0:self.width] / FINE

    def dab(self, x, y, half, tall, colour, strength):
        """A soft round patch of a colour; like the leaves it goes on round the left and right edges."""
        x, y, half, tall = x * FINE, y * FINE, half * FINE, tall * FINE
        rows, columns = np.arange(int(y - tall), int(y + tall) + 1), np.arange(int(x - half), int(x + half) + 1)
        rows = rows[(rows >= 0) & (rows < self.height)]
        away = np.hypot(((rows - y) / tall)[:, None], ((columns - x) / half)[None, :])
        spots = np.ix_(rows, columns % self.width)
        self.picture[spots] = mix(self.picture[spots], colour, strength * smoothstep(1.0, 0.55, away))

    def leaf(self, x, y, angle, length, width, colour, shadow=0.5, pointed=1.0, relief=1.0):
        """One leaf with its middle at (x, y), lit from above; it goes on round the left and right edges."""
        x, y, length, width = x * FINE, y * FINE, length * FINE, width * FINE
        r = int(0.62 * length + 0.3 * width) + 3
        rows, columns = np.arange(int(y) - r, int(y) + r + 1), np.arange(int(x) - r, int(x) + r + 1)
        dy, dx = (rows - y)[:, None], (columns - x)[None, :]
        c, s = np.cos(angle), np.sin(angle)
        p = (dx * c + dy * s) / length + 0.5
        q = (dy * c - dx * s) / width
        inside = np.clip(p, 0, 1)
        profile = 1.02 * np.sqrt(inside) * (1 - inside) ** (0.75 * pointed)
        profile = profile * (p > 0) * (p < 1)
        edge = (profile - np.abs(q)) * width
        mask = smoothstep(-0.6, 1.4, edge)
        dark = smoothstep(-0.30 * width, 0.0, edge) * shadow
        up = -1.0 if c > 0 else 1.0
        tone = 1 + relief * (0.28 * np.clip(4 * q * up, -1, 1) * (0.6 + 0.4 * inside) - 0.26 * smoothstep(0.35, 0.0, inside))
        rib = smoothstep(1.6, 0.4, np.abs(q) * width) * (p < 0.9) * 0.22 * relief
        seen = (rows >= 0) & (rows < self.height)
        if not seen.any():
            return
        rows, mask, dark, tone, rib = rows[seen], mask[seen], dark[seen], tone[seen], rib[seen]
        spots = np.ix_(rows, columns % self.width)
        under = self.picture[spots] * (1 - dark)[..., None]
        self.picture[spots] = mix(under, colour * (tone + rib)[..., None], mask)

    def kept(self):
        height, width = self.kept_size
        return self.picture.reshape(height, self.height // height, width, self.width // width, 3).mean(axis=(1, 3))


def ramp(colours, value):
    """A colour from dark to light at value 0..1."""
    value = np.clip(value, 0, 1) * (len(colours) - 1)
    k = min(int(value), len(colours) - 2)
    return mix(colours[k], colours[k + 1], value - k)


def puff(brush, x, y, half, leaf, colours, glow, hue=None):
    """A round cluster of small leaves, shaded as one: light above, dark under its hem."""
    rng = brush.rng

    def colour_at(u, v):
        value = glow * np.clip(0.54 - 0.52 * v - 0.20 * u, 0.04, 1)
        colour = ramp(colours, value)
        return colour if hue is None else mix(colour, hue * (0.35 + 0.85 * value), 0.5)

    brush.dab(x, y + 0.30 * half, 1.15 * half, 0.95 * half, colours[0], 0.75)
    brush.dab(x, y, 0.95 * half, 0.75 * half, colour_at(0, 0.4), 0.9)
    turn, out = rng.random((2, int(4.5 * (half / leaf) ** 2) + 6))
    places = np.sqrt(out)[:, None] * np.stack([np.cos(2 * np.pi * turn), np.sin(2 * np.pi * turn)], axis=-1)
    for u, v in places[np.argsort(-places[:, 1])]:  # the upper leaves lap over the lower
        long = leaf * rng.uniform(0.8, 1.25)
        brush.leaf(x + u * half, y + v * half * 0.8, np.arctan2(v + 0.75, u * 1.3) + rng.uniform(-0.6, 0.6), long,
                   long * rng.uniform(0.52, 0.66), colour_at(u, v) * rng.uniform(0.88, 1.12), 0.22, relief=0.55)


def clumps(region, seed, colours, size, leaf, light, spots=()):
    """Clusters of leaves like tiles of a roof; light(t) is their light at t (0..1) down the region."""
    brush = Brush(region, seed, colours[0] * 0.7)
    rng, (_, _, width, height) = brush.rng, region
    for _ in range(int(width * height / leaf ** 2 * 0.7)):  # the dark inside
        y = rng.random() * height
        brush.leaf(rng.random() * width, y, rng.random() * 6.28, leaf * 1.2, leaf * 0.9,
                   ramp(colours, rng.uniform(0.08, 0.28) * light(y / height)), 0.2, relief=0.5)
    rows = max(2, round(height / (size * 0.62)))
    columns = max(2, round(width / (size * 1.05)))
    for row in range(rows - 1, -1, -1):
        for column in rng.permutation(columns):
            x = (column + 0.5 * (row % 2) + rng.uniform(-0.25, 0.25)) * width / columns
            y = (row + 0.5 + rng.uniform(-0.25, 0.25)) * height / rows
            hue = spots[int(rng.integers(len(spots)))] if len(spots) and rng.random() < 0.4 else None
            puff(brush, x, y, size * rng.uniform(0.55, 0.8), leaf, colours, light(y / height) + rng.uniform(-0.08, 0.08), hue)
    return brush


def needles(brush, x, y, angle, length, colours, value, size=22):
    """A twig of needles from (x, y) on, light at its end."""
    rng = brush.rng
    c, s = np.cos(angle), np.sin(angle)
    for along in np.arange(length, 0, -4.0):
        for side in (-1, 1):
            out = angle + side * rng.uniform(0.40, 0.80)
            reach = size * rng.uniform(0.75, 1.2)
            tone = value + 0.34 * (along / length) ** 2 + rng.uniform(-0.13, 0.13) - 0.08 * side * np.cos(angle)
            brush.leaf(x + along * c + np.cos(out) * reach / 2, y + along * s + np.sin(out) * reach / 2, out, reach, 4.6,
                       ramp(colours, tone), 0.30, 0.6)


def bough(region, seed, colours):
    """A spruce bough from above: its stem runs down the middle, dark at the tree, light at the tips."""
    brush = Brush(region, seed, colours[0] * 0.55, 2)
    rng, (_, _, width, height) = brush.rng, region
    width *= 2
    for _ in range(1500):
        y = rng.random() * height
        brush.leaf(rng.random() * width, y, np.pi / 2 + rng.normal() * 0.6, 24, 5.0,
                   ramp(colours, 0.03 + 0.26 * y / height + rng.uniform(0, 0.12)), 0.3, 0.6)
    twigs = []
    for y in np.arange(30, height - 16, 13.0):
        twigs += [(y + rng.uniform(-8, 8), side) for side in (-1, 1)]
    twigs += [(rng.uniform(0.3, 0.85) * height, side) for side in (-1, 1) for _ in range(14)]
    for i, (y, side) in enumerate(sorted(twigs, key=lambda t: -t[0])):  # the upper ones lie over the lower
        down = y / height
        angle = np.pi / 2 - side * rng.uniform(0.35, 0.85)
        aside = 0.0 if i % 3 else side * rng.uniform(0.05, 0.28) * width
        length = rng.uniform(60, 125) * (0.75 + 0.4 * down)
        needles(brush, width / 2 + aside, y, angle, length, colours, 0.06 + 0.34 * down + rng.uniform(-0.06, 0.10))
    for x in (0.38, 0.62, 0.5):
        needles(brush, width * x, height * 0.72, np.pi / 2, height * (0.2 if x != 0.5 else 0.28), colours, 0.42)
    shade = smoothstep(0.0, 0.60, brush.y / height)
    across = np.abs(brush.x / width - 0.5) * 2
    brush.picture = brush.picture * (0.42 + 0.58 * np.maximum(shade, 0.4 * across))[..., None]
    return brush.kept()


def frond(region, seed, colours):
    """A fern's frond, its root below: pairs of toothed leaflets that grow shorter to the tip."""
    brush = Brush(region, seed, colours[0] * 0.35)
    rng, (_, _, width, height) = brush.rng, region
    y = height - 6.0
    while y > 8:
        down = y / height
        for side in (-1, 1):
            angle = -np.pi / 2 + side * 1.15
            length = width * 0.56 * down + 6
            tooth = 7 + 13 * down
            for along in np.arange(length, 2, -0.38 * tooth):
                for lobe in (-1, 1):
                    turn = angle + lobe * 0.7
                    value = 0.42 - 0.22 * (1 - along / length) + 0.36 * (1 - down) + rng.uniform(-0.12, 0.14) - 0.10 * side
                    brush.leaf(width / 2 + np.cos(angle) * along + np.cos(turn) * tooth / 2,
                               y + np.sin(angle) * along + np.sin(turn) * tooth / 2, turn, tooth, 0.45 * tooth,
                               ramp(colours, value), 0.35, 0.7)
        y -= 7 + 16 * down
    rib = np.abs(brush.x - width / 2)
    brush.picture = mix(brush.picture, colours[2], smoothstep(2.6, 1.2, rib))
    return brush.kept()


def furrowed(region, seed, tones, grain, tall, moss_height):
    """Bark of lens-shaped ridges between deep furrows, moss at its foot; meets itself left to right.

    tones: from the furrows' dark to the ridges' light; grain: ridges round the stem,
    each `tall` times as high as wide.
    """
    _, _, width, height = region
    w, h = width * FINE, height * FINE
    side = max(w, h)
    y, x = np.mgrid[0:h, 0:w]

    def field(cells, tall, seed, octaves=2):
        """Noise of `cells` lumps round the stem, each `tall` times as high as wide."""
        full = noise(side, side, cells, octaves, seed)
        rows = (y / tall * side / w).astype(int) % side
        columns = (x * side // w) % side
        return full[rows, columns]

    wobble = (field(4, 2.0, seed + 1) - 0.5)
    full = noise(side, side, grain, 2, seed + 2)
    columns = ((x / w + 0.10 * wobble) * side).astype(int) % side
    rows = ((y / w / tall + 0.05 * wobble) * side).astype(int) % side
    plates = full[rows, columns]
    furrow = np.abs(plates - 0.5) * 2  # 0 in the furrow
    furrow = np.minimum(furrow * 2.2, 1.0)
    raised = smoothstep(0.0, 0.55, furrow)
    fibre = field(grain * 5, 7.0, seed + 4, 3)
    rise = raised + 0.30 * fibre
    soft = (rise + np.roll(rise, 1, 1) + np.roll(rise, -1, 1)) / 3
    slope = np.roll(soft, -2, 1) - np.roll(soft, 2, 1) + 0.6 * (np.roll(soft, -2, 0) - np.roll(soft, 2, 0))
    value = 0.12 + 0.44 * raised + 0.42 * (fibre - 0.5) + np.clip(1.5 * slope, -0.30, 0.42) + 0.22 * (field(5, 2.0, seed + 5) - 0.5)
    value = np.clip(value, 0, 1) * (len(tones) - 1)
    table = np.array(tones)
    picture = np.stack([np.interp(value, np.arange(len(tones)), table[:, i]) for i in range(3)], axis=-1)
    foot = 1 - y / h
    patch = 0.55 * field(6, 1.2, seed + 6, 4) + 0.45 * field(20, 0.9, seed + 7, 3) + 0.10 * raised
    moss = smoothstep(-0.04, 0.05, patch - 0.43 - 0.30 * smoothstep(0.0, moss_height, foot))
    tuft = np.clip(0.15 + 0.9 * field(60, 1.0, seed + 8, 2) + 1.2 * np.clip(slope, -0.3, 0.3) - 0.25 * (1 - raised), 0, 1)
    picture = mix(picture, mix(rgb("2a3219"), rgb("8d9440"), tuft), moss * 0.92)
    picture = stood(picture, foot)
    picture = picture.reshape(height, FINE, width, FINE, 3).mean(axis=(1, 3))
    return picture + 0.7 * (picture - blur(picture, 1.0))


def stood(picture, foot):
    """Darker at the ground and under the crown."""
    shade = (1 - 0.55 * smoothstep(0.05, 0.0, foot)) * (1 - 0.82 * smoothstep(0.52, 0.90, foot))
    return picture * shade[..., None]


def scaly(region, seed, tones):
    """Bark of small loose plates, each lit on its left flank."""
    _, _, width, height = region
    gap, tone = plates(width, height, 8, 13, seed)
    fibre = noise(SIZE, SIZE, 60, 3, seed + 1)[:height, :width]
    raised = smoothstep(0.02, 0.30, gap)
    slope = np.roll(raised, -1, 1) - np.roll(raised, 1, 1) + 0.8 * (np.roll(raised, -1, 0) - np.roll(raised, 1, 0))
    value = 0.05 + 0.36 * raised + 0.30 * (tone - 0.4) + 0.55 * (fibre - 0.5) + np.clip(0.5 * slope, -0.25, 0.38)
    value = np.clip(value, 0, 1) * (len(tones) - 1)
    picture = np.stack([np.interp(value, np.arange(len(tones)), np.array(tones)[:, i]) for i in range(3)], axis=-1)
    foot = 1 - (np.mgrid[0:height, 0:width][0] + 0.5) / height
    patch = noise(SIZE, SIZE, 18, 4, seed + 2)[:height, :width]
    moss = smoothstep(-0.05, 0.06, patch - 0.46 - 0.35 * smoothstep(0.0, 0.32, foot))
    tuft = np.clip(0.1 + 0.8 * noise(SIZE, SIZE, 128, 2, seed + 3)[:height, :width] + 0.4 * slope, 0, 1)
    return stood(mix(picture, mix(rgb("2a3219"), rgb("8d9440"), tuft), moss * 0.9), foot)


MIST = [rgb("e8964c"), rgb("cf6a40"), rgb("9a4b48"), rgb("553440"), rgb("231f26")]  # from the ground up
MIST_AT = [0.08, 0.20, 0.38, 0.58, 0.80]
SHADE = [rgb("0c1112"), rgb("16231f"), rgb("243629"), rgb("3d4a30"), rgb("5b5c3a")]


def mist(up):
    """The evening's colour at heights 0..1."""
    return np.stack([np.interp(up, MIST_AT, np.array(MIST)[:, i]) for i in range(3)], axis=-1)


def depth(region, seed):
    """The wood's inside: the evening's glow between far stems, nearer ones before it, a dark roof of leaves.

    Where its edges meet, a thicket closes it up to the roof.
    """
    brush = Brush(region, seed, rgb("000000"), 2)
    rng, (_, _, width, height) = brush.rng, region
    width *= 2
    up = 1 - brush.y / height
    w, h = brush.width, brush.height
    brush.picture = mist(up + 0.08 * (noise(w, w, 6, 3, seed + 1)[:h] - 0.5))
    brush.picture *= (0.80 + 0.40 * noise(w, w, 4, 3, seed + 2)[:h])[..., None]
    evenly = lambda k: (0.618 * k + rng.uniform(0, 0.05)) % 1 * width  # so that no cluster stands alone
    wave = lambda x, times, turn=0.0: np.sin(x / width * 2 * np.pi * times + turn)

    def stem(x, wide, colour, rim, haze):
        bend = rng.normal() * 5 * np.sin(brush.y / height * 3 + rng.random() * 6)
        spread = wide / 2 * (1 + 1.1 * smoothstep(0.12, 0.0, up - 0.04) + 0.2 * (1 - up))
        dx = (brush.x - x - bend + width / 2) % width - width / 2
        mask = smoothstep(spread + 0.5, spread - 0.5, np.abs(dx))
        ridges = 0.5 + 0.5 * np.sin(dx / wide * 19 + 1.3 * np.sin(brush.y / 23 + x) + 0.9 * np.sin(brush.y / 9 + 2 * x))
        tone = 0.8 + 0.26 * ridges * smoothstep(6, 20, wide) - 0.25 * dx / wide
        face = mix(colour * tone[..., None], brush.picture, haze * smoothstep(0.5, 0.0, up))
        lit = smoothstep(-0.30, -0.5, dx / (2 * spread)) * rim * smoothstep(0.60, 0.10, up)
        brush.picture = mix(brush.picture, mix(face, rgb("f0a050"), lit), mask)

    def growth(tall, colours, count, half, leaf, glow, turn):
        """Undergrowth, up to `tall` (0..1) high, the nearer clusters lower and before the others."""
        for k, t in enumerate(np.sort(rng.random(count))[::-1]):
            x = evenly(k)
            top = tall * (0.80 + 0.25 * wave(x, 3, turn) + 0.15 * wave(x, 8, 2 * turn))
            puff(brush, x, height * (1 - top * t) + 4, half * rng.uniform(0.7, 1.3), leaf, colours, glow * (0.35 + 0.65 * t))

    def crowns(hang, colours, count, half, leaf, glow):
        """Leaves from above, down to hang(x) (0..1), the lower ones first and lighter."""
        for k, t in enumerate(np.sort(rng.random(count))[::-1]):
            x = evenly(k)
            puff(brush, x, height * t * hang(x), half * rng.uniform(0.7, 1.3), leaf, colours, glow * (0.45 + 0.55 * t))

    def thicket(count, low, high, glow):
        """Leaves about the place where the edges meet, between two heights (0..1) from above."""
        for t in np.sort(rng.random(count)):  # the nearer clusters lower
            x = rng.uniform(-1, 1) * (400 + 25 * np.sin(9 * t) + 10 * np.sin(31 * t))
            y = low + (high - low) * t + 0.05 * np.sin(x / 23)
            puff(brush, x % width, height * y, rng.uniform(13, 22), 7, SHADE, glow * rng.uniform(0.75, 1.15))

    haze = [rgb("33252c"), rgb("54343a"), rgb("7a4743")]
    for _ in range(62):  # the far trees
        stem(rng.random() * width, rng.uniform(3, 8), rgb("6a4444"), 0.3, 0.55)
    crowns(lambda x: 0.55 + 0.04 * wave(x, 5) + 0.02 * wave(x, 13, 2), haze, 760, 13, 6, 0.9)
    growth(0.17, [rgb("53302c"), rgb("7a452f"), rgb("a86138")], 370, 9, 6, 0.9, 0.4)
    for _ in range(27):  # the middle ones
        stem(rng.random() * width, rng.uniform(9, 15), rgb("3a2a2c"), 0.5, 0.25)
    growth(0.14, [rgb("221c1a"), rgb("43301f"), rgb("6e4c2a")], 370, 11, 7, 0.9, 2.0)
    for k in range(12):  # the near ones
        stem((k + rng.uniform(0.2, 0.8)) * width / 12, rng.uniform(19, 30), rgb("2a2020"), 0.7, 0.03)
    crowns(lambda x: 0.43 + 0.07 * wave(x, 4, 1) + 0.035 * wave(x, 11), SHADE, 960, 17, 7, 0.8)
    aside = np.abs((brush.x + width / 2) % width - width / 2)
    brush.picture = mix(brush.picture, SHADE[0], smoothstep(375, 350, aside))
    thicket(880, 0.0, 1.0, 0.42)
    for x in (-330, -215, -62, 74, 146, 318):
        stem(x % width, rng.uniform(17, 24), rgb("33272a"), 0.12, 0.0)
    thicket(480, 0.0, 0.40, 0.80)
    thicket(440, 0.66, 1.0, 0.90)
    growth(0.12, SHADE, 610, 13, 7, 0.95, 4.1)
    foot = smoothstep(0.055, 0.0, up + 0.02 * (noise(w, w, 60, 2, seed + 3)[:h] - 0.5))
    brush.picture = mix(brush.picture, rgb("14100d"), 0.9 * foot)
    return brush.kept()


def forest_picture():
    picture = np.zeros((FOREST_SIZE, FOREST_SIZE, 3))

    def put(region, part):
        x, y, width, height = region
        picture[y:y + height, x:x + width] = part

    copper = [rgb("40261c"), rgb("8e5829"), rgb("cd8c3a"), rgb("ebb65a"), rgb("f0c97e")]
    green = [rgb("1c2a24"), rgb("35543e"), rgb("55784e"), rgb("8b9c5c"), rgb("b4b87a")]
    scrub = [rgb("1c2118"), rgb("374322"), rgb("5a672f"), rgb("88893f"), rgb("aca258")]
    put(DEEP, depth(DEEP, 75))
    crown_light = lambda t: max(0.60, 1.75 - 2.1 * t)
    put(LEAVES, clumps(LEAVES, 73, copper, 54, 7, crown_light, (rgb("c87036"), rgb("b8a04a"))).kept() * 1.2)
    put(BARK, furrowed(BARK, 76, [rgb("1d1614"), rgb("4a382c"), rgb("846a50"), rgb("c09d74"), rgb("dcbf95")], 9, 5.0, 0.42))
    put(SCALES, scaly(SCALES, 77, [rgb("1e1414"), rgb("5a382e"), rgb("8c5c46"), rgb("bd8862"), rgb("d6aa84")]))
    for seed, region in zip((72, 78), BOUGHS):
        put(region, bough(region, seed, green))
    put(SCRUB, clumps(SCRUB, 74, scrub, 44, 8, lambda t: 1.45 - 1.10 * t, (rgb("8a7038"),)).kept() * 1.2)
    put(CANOPY, clumps(CANOPY, 79, SHADE, 46, 8, lambda t: 1.35 - 0.9 * t + 2.6 * max(0, t - 0.72)).kept())
    put(FERN, frond(FERN, 81, scrub))
    return picture


def main():
    tree().write("Tree.obj", 300)
    write_bmp("wood.bmp", wood_picture())
    forest().write("TreeBackground.obj", 800)
    write_bmp("forest.bmp", forest_picture())


if __name__ == "__main__":
    main()
