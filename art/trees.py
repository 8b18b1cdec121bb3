"""The burnt tree of the streets and the forest that stands behind the castle.

Both are drawn in the game's model axes. The tree's ground is at y = -3.6, the
forest's at y = -0.5; the forest is drawn half as tall as it shall look, for the
game stretches it, and its front faces -z.
"""
import sys
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parent))
from shared import SEED, Mesh, Sheet, blur, loft, mix, noise, rgb, ring, smoothstep, write_bmp  # noqa: E402

SIZE = 512
TREE_GROUND = -3.6
FOREST_GROUND = -0.5
WOOD = Sheet(SIZE, 100)
TRUNK_WIDTH = 384          # the trunk's bark is this wide and meets itself; twigs wear the rest
FOREST = Sheet(SIZE, 40)

# fmt: off
CHAR, CHAR_LIGHT, ASH = rgb("2e2523"), rgb("5d4c44"), rgb("9a8b84")
EMBERS = [rgb("4a120a"), rgb("d2440f"), rgb("ff9a2c"), rgb("ffe08a")]
NEEDLE_DARK, NEEDLE, NEEDLE_LIGHT = rgb("22352f"), rgb("47684a"), rgb("b3b867")
LEAF_DARK, LEAF, LEAF_LIGHT = rgb("3a3322"), rgb("8a7030"), rgb("eab552")
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
    spikes = [(0, 3), (1, 3), (2, 3), (3, 3), (4, 3), (3, 1), (4, 1), (1, 2)]
    for limb_index, at in spikes:
        start = np.array(LIMBS[limb_index][0][at])
        tip = start + rng.normal(size=3) * (0.55, 0.12, 0.55) + (0, 0.75, 0)
        mesh.add(limb([start, tip], [LIMBS[limb_index][1] * 0.34, 0], sides=3, turn=rng.random()))
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

# Places on the picture, in pixels: x, y, width, height.
NEEDLES, LEAVES = (0, 0, 256, 250), (256, 0, 256, 250)
STEM, SCRUB, DEEP = (0, 256, 60, 120), (68, 256, 444, 120), (0, 384, 512, 128)
UNDERSIDE = [FOREST.uv(20, 440), FOREST.uv(50, 440), FOREST.uv(35, 460)]  # a dark spot


def place(region, s, t):
    """uv at s across and t down a region, half a pixel clear of its neighbours."""
    x, y, width, height = region
    return FOREST.uv(x + 1.5 + s * (width - 3), y + 1.5 + t * (height - 3))


class Foliage(Mesh):
    """A mesh whose crowns are lit like soft lumps: normals lean outwards and up."""

    def __init__(self):
        super().__init__()
        self.hearts = {}  # smooth name -> middle of the crown

    def _normals(self):
        bent = []
        for (points, _, smooth), normals in zip(self.polygons, super()._normals()):
            heart = self.hearts.get(smooth)
            if heart is not None:
                outward = points - heart
                outward /= np.linalg.norm(outward, axis=1, keepdims=True)
                normals = [n * 0.6 + o + (0, 0.35, 0) for n, o in zip(normals, outward)]
                normals = [n / np.linalg.norm(n) for n in normals]
            bent.append(normals)
        return bent


def stem(forest, x, z, top, radius):
    low, high = ring(radius * 1.3, FOREST_GROUND, 3, x, z), ring(radius, top, 3, x, z)
    forest.add(loft([low, high], lambda s, i: place(STEM, s, 1 - i), smooth=("stem", x, z)))


def conifer(forest, rng, x, z, tall, wide, tiers, sides, closed, region=NEEDLES):
    """Drooping tiers with ragged hems, each tucked under the next."""
    name = ("conifer", x, z)
    forest.hearts[name] = np.array([x, FOREST_GROUND + tall * 0.30, z])
    lowest = FOREST_GROUND + tall * (0.12 if closed else 0.06)
    for tier in range(tiers):
        at = tier / tiers
        hem = lowest + (tall + FOREST_GROUND - lowest) * at * 0.92
        tip = min(FOREST_GROUND + tall, hem + tall * (1.35 / tiers)) if tier < tiers - 1 else FOREST_GROUND + tall
        radius = wide * (1 - at * 0.82)
        turn, around = rng.random() * 6.28, []
        for k in range(sides):
            angle = turn + k * 2 * np.pi / sides
            long = k % 2 == 0  # every second bough reaches out and hangs lower
            r = radius * rng.uniform(0.95, 1.12) * (1.0 if long else 0.76)
            drop = tall * (rng.uniform(-0.045, -0.015) if long else rng.uniform(0.01, 0.04))
            around.append((x + r * np.cos(angle), hem + drop, z - r * np.sin(angle)))
        peak = (x + rng.normal() * 0.03, tip, z + rng.normal() * 0.03)
        for k in range(sides):
            a, b, n = k / sides, (k + 1) / sides, (k + 1) % sides
            forest.face([around[k], around[n], peak], [place(region, a, 1), place(region, b, 1),
                        place(region, (a + b) / 2, 0.0 if tier == tiers - 1 else 0.25)], name)
            if closed and tier == 0:
                under = (x, hem + tall * 0.03, z)
                forest.face([around[n], around[k], under], UNDERSIDE)
    if closed:
        stem(forest, x, z, lowest + 0.1, 0.10)


def round_tree(forest, rng, x, z, tall, wide, closed):
    """A lumpy crown on a short stem."""
    name = ("crown", x, z)
    base = FOREST_GROUND + tall * (0.34 if closed else 0.04)
    top = FOREST_GROUND + tall
    forest.hearts[name] = np.array([x, base + (top - base) * 0.38, z])
    rings = [[(x, base + tall * 0.04, z)]] if closed else []
    for level, bulge in ((0.10 if closed else 0.0, 0.82), (0.42, 1.0), (0.80, 0.78)):
        turn = rng.random() * 6.28
        rings.append([(x + wide * bulge * rng.uniform(0.84, 1.16) * np.cos(turn + a),
                       base + (top - base) * (level + rng.uniform(0.0, 0.06)),
                       z - wide * bulge * rng.uniform(0.84, 1.16) * np.sin(turn + a))
                      for a in np.arange(6) * 2 * np.pi / 6])
    rings = [spun(r, rings[-1]) if len(r) > 1 else r for r in rings]
    rings.append([(x, top, z)])
    last = len(rings) - 1
    # Mirrored half way round: no seam, and the leaves are about as wide as tall.
    forest.add(loft(rings, lambda s, i: place(LEAVES, 1 - abs(2 * s - 1), 1 - i / last), smooth=name))
    if closed:
        stem(forest, x, z, base + 0.25, 0.12)


def spun(points, model):
    """The ring started at the corner nearest the model's first, so that skins do not twist."""
    away = [np.hypot(p[0] - model[0][0], p[2] - model[0][2]) for p in points]
    first = int(np.argmin(away))
    return points[first:] + points[:first]


def bush(forest, rng, x, z, tall, wide):
    name = ("bush", x, z)
    forest.hearts[name] = np.array([x, FOREST_GROUND - 0.1, z])
    turn = rng.random() * 6.28
    rings = [[(x + r * wide * rng.uniform(0.85, 1.15) * np.cos(turn + a), FOREST_GROUND + y * tall,
               z - r * wide * 0.6 * rng.uniform(0.85, 1.15) * np.sin(turn + a)) for a in np.arange(5) * 2 * np.pi / 5]
             for r, y in ((1.0, 0.0), (0.85, 0.6))] + [[(x, FOREST_GROUND + tall, z)]]
    forest.add(loft(rings, lambda s, i: place(SCRUB, s * 0.5 + (x % 1) * 0.5, 1 - i / 2), smooth=name))


def deep_wood(forest, rng):
    """The dark between the trunks: a ragged wall of far trees, low at both ends."""
    track = [(x, 2.1) for x in np.linspace(-7.4, 7.4, 15)]
    steps = lengths([(x, 0, z) for x, z in track])
    tops = [FOREST_GROUND + (rng.uniform(2.5, 3.3) if i % 2 else rng.uniform(1.5, 2.0)) for i in range(len(track))]
    tops[0] = tops[-1] = FOREST_GROUND + 0.3
    tops[1] = tops[-2] = FOREST_GROUND + 1.3
    for i in range(len(track) - 1):
        (x0, z0), (x1, z1) = track[i], track[i + 1]
        s0, s1 = steps[i] / steps[-1], steps[i + 1] / steps[-1]
        corners = [(x1, FOREST_GROUND, z1), (x0, FOREST_GROUND, z0), (x0, tops[i], z0), (x1, tops[i + 1], z1)]
        uvs = [place(DEEP, s, 1 - (c[1] - FOREST_GROUND) / 3.3) for s, c in zip((s1, s0, s0, s1), corners)]
        forest.face(corners, uvs, "deep")
    forest.hearts["deep"] = np.array([0.0, -1.0, 9.0])


def forest():
    rng = np.random.default_rng(SEED * 1000 + 71)
    mesh = Foliage()
    # fmt: off
    front = "CRCCRCRCCRC"       # conifers and round trees from left to right
    second = "CRCRCCRCC"
    # fmt: on
    for i, kind in enumerate(front):
        x = -7.3 + 14.6 * i / (len(front) - 1) + rng.uniform(-0.22, 0.22)
        z = -4.3 + rng.uniform(-0.55, 0.55)
        if kind == "C":
            conifer(mesh, rng, x, z, rng.uniform(2.7, 3.5), rng.uniform(0.9, 1.1), 3, 8, True)
        else:
            round_tree(mesh, rng, x, z, rng.uniform(1.75, 2.2), rng.uniform(1.1, 1.3), True)
    for i, kind in enumerate(second):
        x = -6.9 + 13.8 * i / (len(second) - 1) + rng.uniform(-0.3, 0.3)
        z = -2.2 + rng.uniform(-0.4, 0.4)
        if kind == "C":
            conifer(mesh, rng, x, z, rng.uniform(3.4, 4.1), rng.uniform(0.95, 1.2), 2, 6, False)
        else:
            round_tree(mesh, rng, x, z, rng.uniform(2.3, 2.8), rng.uniform(1.1, 1.35), False)
    for i in range(8):
        x = -7.3 + 14.6 * i / 7 + rng.uniform(-0.35, 0.35)
        conifer(mesh, rng, x, 0.1 + rng.uniform(-0.4, 0.4), rng.uniform(3.5, 4.5), rng.uniform(0.95, 1.2), 2, 4, False)
    for i in range(7):
        bush(mesh, rng, -7.1 + 14.2 * i / 6 + rng.uniform(-0.5, 0.5), -5.15 + rng.uniform(-0.2, 0.2),
             rng.uniform(0.30, 0.5), rng.uniform(0.75, 1.0))
    deep_wood(mesh, rng)
    return balanced(mesh, FOREST_GROUND)


# ---- leaves ---------------------------------------------------------------------

def strokes(region, count, size, stretch, tones, light, seed, hang=0.0):
    """Overlapping brush dabs, painted from the bottom row up; the picture meets itself left to right.

    tones: dark, middle, light; light(t) 0..1 says how bright dabs at t (0 top .. 1 bottom) are.
    """
    _, _, width, height = region
    rng = np.random.default_rng(SEED * 1000 + seed)
    under = np.array([light(t) for t in (np.arange(height) + 0.5) / height])  # shows between the dabs
    picture = mix(tones[0], tones[1], np.broadcast_to(0.5 * under[:, None], (height, width)))
    yy, xx = np.mgrid[0:height, 0:width]
    for t in np.sort(rng.random(count) * 1.04 - 0.02)[::-1]:
        cx, cy, s = rng.random() * width, t * height, size * rng.uniform(0.7, 1.35)
        r = int(s * max(1, stretch) * 1.6) + 2
        rows = slice(max(0, int(cy) - r), min(height, int(cy) + r))
        dx = (xx[rows] - cx + width / 2) % width - width / 2
        dy = yy[rows] - cy
        lean = hang * dy + rng.uniform(-0.25, 0.25) * dy
        away = np.hypot((dx + lean) / s, dy / (s * stretch))
        dab = smoothstep(1.0, 0.72, away)
        value = np.clip(light(t) + rng.uniform(-0.22, 0.22) - 0.33 * dy / (s * stretch) - 0.12 * (dx / s), 0, 1)
        colour = mix(mix(tones[0], tones[1], np.minimum(value * 2, 1)), tones[2], np.maximum(value * 2 - 1, 0))
        picture[rows] = mix(picture[rows], colour, dab * 0.93)
    return picture


def forest_picture():
    picture = np.zeros((SIZE, SIZE, 3))

    def put(region, part):
        x, y, width, height = region
        picture[y:y + height, x:x + width] = part

    put(NEEDLES, strokes(NEEDLES, 620, 8.5, 2.3, (NEEDLE_DARK, NEEDLE, NEEDLE_LIGHT),
                         lambda t: 0.75 - 0.55 * smoothstep(0.02, 0.45, t) + 0.42 * smoothstep(0.55, 1.0, t), 72))
    put(LEAVES, strokes(LEAVES, 640, 11.0, 1.05, (LEAF_DARK, LEAF, LEAF_LIGHT),
                        lambda t: 0.92 - 0.85 * t, 73))
    put(SCRUB, strokes(SCRUB, 620, 8.0, 1.5, (rgb("2a2c1e"), rgb("5b6130"), rgb("a79a4e")),
                       lambda t: 0.85 - 0.85 * t, 74))
    put(DEEP, strokes(DEEP, 800, 7.0, 1.7, (rgb("1a2323"), rgb("2b3b34"), rgb("5d7050")),
                      lambda t: 0.85 * smoothstep(0.55, 0.0, t), 75))
    _, _, width, height = STEM
    fibre = noise(SIZE, SIZE, 24, 3, 76)[:width, :height].T
    fibre = np.repeat(noise(SIZE, SIZE, 40, 2, 77)[:1, :width], height, axis=0) * 0.7 + fibre * 0.3
    put(STEM, mix(rgb("2b211c"), rgb("86684c"), smoothstep(0.30, 0.70, fibre)))
    return picture


def main():
    tree().write("Tree.obj", 300)
    write_bmp("wood.bmp", wood_picture())
    forest().write("TreeBackground.obj", 800)
    write_bmp("forest.bmp", forest_picture())


if __name__ == "__main__":
    main()
