"""The painted map under the town: one picture stretched over the whole ground.

Ten texels make one unit and the camera looks from less than two units above, so
everything here is broad and soft-edged; nothing is finer than about two texels.
Distances are world units; arrays are indexed [row, column] with row 0 at z = +100.
"""
import sys
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parent))
from shared import SEED, blur, noise, rgb, smoothstep, write_bmp  # noqa: E402

SIZE = 2048
HALF = 100.0

ROWS = (60, 38, 16, -6, -28, -50)                 # z of the rows of houses
GROUPS = (80, 59, 38, 17, -4, -25)                # x of the first house of each group
STREETS = (71, 49, 27, 5, -17, -39, -61)          # z between and outside the rows
CROSSINGS = (88.5, -49.5)                         # x of the streets at both ends of the rows
STREET_HALF, CROSSING_HALF = 4.1, 4.2
SQUARE = (0.0, 5.0, 5.9)                          # x, z, radius of the round in the start square
GATE_X, COURT_RADIUS = -66.0, 14.0                # the fan of paving before the castle gate
TREES = ((-3, 0), (-10, 0), (30, 0))
SCORCHED_TREE, SCORCHED_HOUSE = 3.4, 5.2          # reach of the soot
WINDOW_LIGHT = np.array([0.26, 0.12, -0.10], np.float32)  # what the warm pools of light add
FIRE_LIGHT = np.array([0.42, 0.12, -0.14], np.float32)
CASTLE = ((-90, -66, -14, 14), (-66, -61, -2.5, -1.9), (-66, -61, 1.9, 2.5))
FOREST_EDGE = -83.0

# fmt: off
GRASS, GRASS_LIGHT, GRASS_DARK = rgb("87914a"), rgb("b9b45c"), rgb("5f6d3c")
EARTH, EARTH_LIGHT, EARTH_DARK = rgb("b08a63"), rgb("cfaa7c"), rgb("7d5f49")
STONE, STONE_LIGHT, STONE_WARM, STONE_COOL = rgb("c3b7ad"), rgb("e6dac6"), rgb("cfb092"), rgb("a3a3bb")
JOINT, MOSS, SOOT, ASH = rgb("7a6a61"), rgb("86904c"), rgb("3a3031"), rgb("a0958f")
FOREST_FLOOR, LEAVES = rgb("6e6340"), rgb("b0743c")
BLOOMS = [rgb("e0806a"), rgb("efc060"), rgb("c090c0"), rgb("f2e6c4")]
# What the sky's pictures show below their woods, as it looks in the light that falls on the ground.
HAZE_SUNWARD, HAZE_ACROSS, HAZE_FAR = rgb("ab8655"), rgb("807a5f"), rgb("566763")
# fmt: on

X, Z = np.meshgrid(((np.arange(SIZE) + 0.5) / SIZE * 2 - 1).astype(np.float32) * HALF,
                   (1 - (np.arange(SIZE) + 0.5) / SIZE * 2).astype(np.float32) * HALF)


def clouds(cells, seed, octaves=3):
    """Soft noise, -1..1."""
    return (noise(SIZE, SIZE, cells, octaves, seed).astype(np.float32) - 0.5) * 2


def dabs(radius, seed):
    """Round soft blots of about `radius` units, -1..1, that show no direction."""
    field = blur(np.random.default_rng(SEED * 1000 + seed).standard_normal((SIZE, SIZE)).astype(np.float32),
                 radius / (2 * HALF) * SIZE)
    return np.clip(field / (2.2 * field.std()), -1, 1).astype(np.float32)


WOBBLE_X, WOBBLE_Z = clouds(90, 31, 2), clouds(90, 32, 2)  # bends straight lines a little
PATCH = clouds(14, 33, 4)                                  # garden-sized variation
DRIFT = clouds(5, 34, 3)                                   # field-sized variation
DAB = dabs(0.55, 35)                                       # brush-sized variation
TUFT = dabs(0.27, 36)                                      # tufts and tussocks


def over(picture, colour, mask):
    """Paints a colour (or picture) through a mask, in place."""
    picture += (colour - picture) * np.clip(mask, 0, 1)[..., None].astype(np.float32)


def tint(picture, mask, factor):
    """Lightens or darkens in place: the picture times `factor` where the mask is 1."""
    picture *= (1 + (factor - 1) * np.clip(mask, 0, 1))[..., None].astype(np.float32)


def box_distance(low_x, high_x, low_z, high_z, part=np.s_[:, :]):
    """Distance outside a rectangle, negative inside, over all or a part of the ground."""
    dx = np.abs(X[part] - (low_x + high_x) / 2) - (high_x - low_x) / 2
    dz = np.abs(Z[part] - (low_z + high_z) / 2) - (high_z - low_z) / 2
    return np.hypot(np.maximum(dx, 0), np.maximum(dz, 0)) + np.minimum(np.maximum(dx, dz), 0)


def houses():
    """(kind, x, z, footprint) of all houses; kind 2 is the one whose roof burns."""
    for z in ROWS:
        for x in GROUPS:
            yield 0, x, z, (x - 1.9, x + 2.0, z - 2.5, z + 2.5)
            yield 1, x - 5, z, (x - 8.2, x - 2.2, z - 3.9, z + 3.9)
            yield 2, x - 13, z, (x - 18.2, x - 8.7, z - 4.9, z + 4.9)


def near(x, z, reach):
    """Slices of the square of texels within `reach` of a place."""
    c0, c1 = ((np.clip([x - reach, x + reach], -HALF, HALF) + HALF) / (2 * HALF) * SIZE).astype(int)
    r0, r1 = ((HALF - np.clip([z + reach, z - reach], -HALF, HALF)) / (2 * HALF) * SIZE).astype(int)
    return slice(r0, r1), slice(c0, c1)


# ---- open country ---------------------------------------------------------

def meadow():
    picture = np.broadcast_to(GRASS, (SIZE, SIZE, 3)).astype(np.float32).copy()
    over(picture, GRASS_LIGHT, smoothstep(-0.1, 0.7, PATCH + 0.5 * DAB + 0.35 * TUFT) * 0.8)
    over(picture, GRASS_DARK, smoothstep(0.0, 0.7, -PATCH + 0.5 * DAB + 0.35 * TUFT) * 0.75)
    over(picture, EARTH, smoothstep(0.25, 0.7, DRIFT + 0.35 * PATCH + 0.3 * DAB) * 0.6)
    tint(picture, smoothstep(-0.6, 0.6, DRIFT), 1.12)
    tint(picture, smoothstep(0.15, 0.6, TUFT + 0.4 * DAB), 1.14)
    tint(picture, smoothstep(0.15, 0.6, -TUFT), 0.86)
    for i, bloom in enumerate(BLOOMS):  # drifts of flowers
        where = np.roll(PATCH, 331 * (i + 1), axis=i % 2) + 0.4 * np.roll(DRIFT, 177 * i, axis=1)
        heads = smoothstep(0.42, 0.62, np.roll(TUFT, 97 * i, axis=0))
        over(picture, bloom, smoothstep(0.42, 0.7, where) * heads * 0.8)
    return picture


def fields(picture):
    """A patchwork of ploughed and sown strips between the town and the edge of the land."""
    rng = np.random.default_rng(SEED * 1000 + 41)
    beyond = np.maximum(np.maximum(X - 93.5, Z - 76.5), -Z - 66.5)
    outside = np.minimum(smoothstep(1.0, 2.4, beyond), smoothstep(-60, -50, X))
    crops = [rgb("c4ae5e"), rgb("8d994e"), rgb("a57f57"), rgb("d3b266"), rgb("7a8a49"), rgb("b08e5a")]
    strip = np.floor((X + 0.35 * Z + 2 * DRIFT) / 17).astype(int)
    block = np.floor((Z - 0.18 * X + 2 * DRIFT) / 13).astype(int)
    for i in np.unique(strip):
        for j in np.unique(block):
            here = (strip == i) & (block == j) & (outside > 0)
            crop, lengthwise = crops[rng.integers(len(crops))], rng.random() < 0.5
            if not here.any():
                continue
            a, b = (X + 0.35 * Z + 2 * DRIFT) / 17 - i, (Z - 0.18 * X + 2 * DRIFT) / 13 - j
            along = (b * 13 if lengthwise else a * 17)
            rim = np.minimum(np.minimum(a, 1 - a) * 17, np.minimum(b, 1 - b) * 13) + 0.35 * WOBBLE_X
            furrow = 0.5 + 0.5 * np.cos(along * 2 * np.pi / 1.5 + 0.8 * WOBBLE_Z)
            colour = crop * (0.80 + 0.28 * furrow + 0.10 * PATCH + 0.08 * TUFT)[..., None]
            over(picture, colour.astype(np.float32), here * outside * smoothstep(0.5, 1.3, rim) * 0.85)


def forest_floor(picture):
    edge = FOREST_EDGE + 3.0 * PATCH + 1.5 * DAB
    belt = smoothstep(2.5, -3.0, X - edge) * smoothstep(58, 46, np.abs(Z) + 3 * PATCH)
    over(picture, FOREST_FLOOR, belt)
    over(picture, LEAVES, belt * smoothstep(0.25, 0.7, DAB + 0.5 * PATCH) * 0.45)
    tint(picture, belt * smoothstep(0.2, 0.7, TUFT + 0.3 * DAB), 1.2)
    tint(picture, belt * smoothstep(2.0, -9.0, X - edge), 0.62)


def lanes(picture):
    """Earthen cart roads that leave the paved streets for the far country."""
    north, south = Z - STREETS[0], STREETS[-1] - Z
    east = X - CROSSINGS[0]
    for across, along in ((Z - STREETS[3], east), (X - CROSSINGS[1], north), (X - CROSSINGS[0], south)):
        bent = across + 1.6 * np.sin(along * 0.16) * smoothstep(2, 14, along) + 0.35 * DAB
        lane = smoothstep(2.4, 1.5, np.abs(bent)) * (along > 0)
        over(picture, EARTH, lane * 0.9)
        over(picture, EARTH_LIGHT, lane * smoothstep(0.1, 0.8, PATCH + 0.5 * DAB + 0.3 * TUFT) * 0.7)
        tint(picture, lane * np.exp(-((np.abs(bent) - 0.85) / 0.30) ** 2), 0.72)
        over(picture, GRASS, lane * np.exp(-(bent / 0.35) ** 2) * smoothstep(-0.3, 0.3, TUFT + DAB) * 0.8)


def far_haze(picture):
    """Towards its edge the land takes the tone of the fields painted on the sky."""
    from_sun = (X * -45 + Z * 40) / (60.2 * np.hypot(X, Z) + 1e-3)
    haze = np.broadcast_to(HAZE_ACROSS, X.shape + (3,)).astype(np.float32).copy()
    over(haze, HAZE_SUNWARD, from_sun)
    over(haze, HAZE_FAR, -from_sun)
    over(picture, haze, smoothstep(13.0, 0.0, HALF - np.maximum(np.abs(X), np.abs(Z)) + 1.5 * DAB) * 0.85)


# ---- paving ---------------------------------------------------------------

class Paving:
    """Stones in courses: u runs along the courses' order, v along each course."""

    def __init__(self, u, v, course, length, seed, grain):
        self.grain = grain
        rng = np.random.default_rng(SEED * 1000 + seed)
        table = rng.random((512, 512, 2)).astype(np.float32)
        row = np.floor(u / course).astype(np.int32)
        place = v / length + table[row & 511, 0, 0] * 7.0
        stone = np.floor(place).astype(np.int32)

        def joint(index):
            return index + 0.42 * (table[row & 511, index & 511, 0] - 0.5)

        stone += (place > joint(stone + 1)).astype(np.int32) - (place < joint(stone)).astype(np.int32)
        self.before_u, self.after_u = u - row * course, (row + 1) * course - u
        self.before_v, self.after_v = (place - joint(stone)) * length, (joint(stone + 1) - place) * length
        self.tone = table[(row * 3 + 7) & 511, (stone * 5 + row) & 511, 1]
        self.hue = table[(row * 7 + 3) & 511, (stone * 3 + row) & 511, 0]
        soft = 0.10  # a soft minimum rounds the stones' corners
        inset = sum(np.exp(-d / soft) for d in (self.before_u, self.after_u, self.before_v, self.after_v))
        self.inset = -soft * np.log(inset)

    def colours(self, light_u, light_v):
        """The stones lit from the side given by (light_u, light_v), joints between them."""
        picture = np.broadcast_to(STONE, self.tone.shape + (3,)).astype(np.float32).copy()
        over(picture, STONE_WARM, smoothstep(0.55, 0.95, self.hue) * 0.75)
        over(picture, STONE_COOL, smoothstep(0.45, 0.05, self.hue) * 0.65)
        over(picture, STONE_LIGHT, smoothstep(0.78, 0.95, self.tone) * 0.55)
        edge = 0.20
        mottle = self.grain
        relief = light_u * (np.exp(-self.after_u / edge) - np.exp(-self.before_u / edge)) + \
            light_v * (np.exp(-self.after_v / edge) - np.exp(-self.before_v / edge))
        picture *= (0.84 + 0.22 * self.tone + 0.22 * relief + 0.07 * mottle)[..., None]
        over(picture, JOINT, smoothstep(0.15, -0.03, self.inset) * 0.9)
        return picture


def lay(picture, mask, u, v, course, length, seed, light):
    """Lays paving where the mask is, computing only the rows and columns it touches."""
    rows, columns = np.where(mask.max(axis=1) > 0.002)[0], np.where(mask.max(axis=0) > 0.002)[0]
    part = (slice(rows[0], rows[-1] + 1), slice(columns[0], columns[-1] + 1))
    stones = Paving(u[part] + 0.13 * WOBBLE_X[part], v[part] + 0.13 * WOBBLE_Z[part], course, length, seed,
                    DAB[part] + TUFT[part])
    over(picture[part], stones.colours(*light), mask[part])
    return part, stones


def street(picture, along, across, half, ends, seed, light, kerbless=0.0):
    """One paved street with kerbs, but for where the mask `kerbless` opens it to another.

    `light` is the sun's side along and across it.
    """
    frayed = half + 0.25 * PATCH
    inside = np.minimum(smoothstep(0.12, -0.12, np.abs(across) - half),
                        smoothstep(-0.3, 0.3, np.minimum(along - ends[0], ends[1] - along)))
    part, stones = lay(picture, inside, along, across, 1.08, 1.35, seed, light)
    # Grass and dirt creep in from the kerb; wheels and feet have polished the middle.
    side = np.abs(across)
    creep = smoothstep(0.9, 0.0, frayed - side - 0.55) * (1 - kerbless)
    creep *= smoothstep(-0.3, 0.5, PATCH + 0.5 * DAB)
    joints = np.zeros_like(inside)
    joints[part] = smoothstep(0.26, 0.02, stones.inset)
    over(picture, MOSS, inside * creep * (0.30 + 0.6 * joints))
    tint(picture, inside * np.exp(-((side - 1.25) / 0.55) ** 2) * (0.7 + 0.3 * DRIFT), 0.91)
    tint(picture, inside * np.exp(-(side / 0.5) ** 2), 1.06)
    length = smoothstep(-0.3, 0.3, np.minimum(along - ends[0], ends[1] - along)) * (1 - kerbless)
    kerb = smoothstep(0.52, 0.38, np.abs(side - half + 0.05)) * length
    lay(picture, kerb.astype(np.float32), side - half + 0.6, along, 1.1, 1.9, seed + 1, (light[1], light[0]))
    tint(picture, smoothstep(0.7, 0.0, np.abs(side - half - 0.55)) * (1 - inside) * length, 0.78)


def streets(picture):
    low, high = CROSSINGS[1], CROSSINGS[0]
    for i, z in enumerate(STREETS):
        street(picture, X, Z - z, STREET_HALF, (low, high), 50 + 4 * i, (-0.7, 0.7))
    for i, x in enumerate(CROSSINGS):
        outward = (X > x) if i == 0 else (X < x)  # the side away from the rows keeps its kerb
        from_street = np.min([np.abs(Z - z) for z in STREETS], axis=0)
        mouths = smoothstep(0.2, -0.2, from_street - STREET_HALF + 0.5) * ~outward
        if i:
            mouths = np.maximum(mouths, smoothstep(0.2, -0.2, np.abs(Z) - 12.0) * (X < x))
        street(picture, Z, X - x, CROSSING_HALF, (STREETS[-1] - CROSSING_HALF, STREETS[0] + CROSSING_HALF),
               90 + 4 * i, (0.7, -0.7), mouths)


def round_paving(picture, x, z, radius, mask, seed):
    """Rings of stones about a centre, within a mask."""
    dx, dz = X - x, Z - z
    ring, angle = np.hypot(dx, dz) + 1e-3, np.arctan2(dz, dx)
    course = 1.15
    turns = np.maximum(np.round((np.floor(ring / course) + 0.5) * course * 2 * np.pi / 1.45), 3)
    around = (angle / (2 * np.pi) + 0.5) * turns * 1.45
    rows, columns = np.where(mask.max(axis=1) > 0.002)[0], np.where(mask.max(axis=0) > 0.002)[0]
    part = (slice(rows[0], rows[-1] + 1), slice(columns[0], columns[-1] + 1))
    stones = Paving(ring[part], around[part], course, 1.45, seed, DAB[part] + TUFT[part])
    towards = (-dx[part] + dz[part]) / (ring[part] * 1.42)  # how far the outer edges face the sun
    sideways = (dz[part] + dx[part]) / (ring[part] * 1.42)
    over(picture[part], stones.colours(towards, sideways), mask[part])


def square(picture):
    """The start square: a round of rings with a many-pointed star laid in pale stone."""
    x, z, radius = SQUARE
    away = np.hypot(X - x, Z - z)
    apron = smoothstep(0.2, -0.2, (np.abs((X + 2) / 17.5) ** 4 + np.abs((Z - z) / 6.0) ** 4) ** 0.25 * 6 - 6)
    lay(picture, apron.astype(np.float32), X, Z - z, 1.12, 1.45, 120, (-0.7, 0.7))
    disc = smoothstep(0.12, -0.12, away - radius)
    round_paving(picture, x, z, radius, disc, 124)
    for point in range(8):  # short points first, so that the long ones lie over them
        bearing = (point % 4) * np.pi / 2 + (np.pi / 4 if point < 4 else 0.0)
        reach = 3.4 if point < 4 else radius - 1.0
        forward = (X - x) * np.cos(bearing) + (Z - z) * np.sin(bearing)
        aside = (Z - z) * np.cos(bearing) - (X - x) * np.sin(bearing)
        waist = 1.15
        half = np.minimum(forward * 0.4142, (reach - forward) * waist * 0.4142 / (reach - waist))
        blade = smoothstep(-0.08, 0.08, half - np.abs(aside))
        over(picture, JOINT, smoothstep(-0.22, 0.0, half - np.abs(aside)) * 0.55)
        colour = STONE_LIGHT + (rgb("8b86a0") - STONE_LIGHT) * smoothstep(-0.06, 0.06, aside)[..., None]
        over(picture, (colour * (0.96 + 0.05 * (DAB + TUFT))[..., None]).astype(np.float32), blade * 0.88)
    for ring in (radius - 1.25, radius):
        over(picture, JOINT, np.exp(-((away - ring) / 0.14) ** 2) * 0.75)
    over(picture, STONE_WARM * 1.05, smoothstep(0.1, -0.1, np.abs(away - radius + 0.62) - 0.42) * 0.45)


def wear(picture):
    """What years have left on the streets: stains, blown leaves, and puddles that hold the sky."""
    rng = np.random.default_rng(SEED * 1000 + 43)
    street_at = np.min([np.abs(Z - z) for z in STREETS], axis=0)
    paved = smoothstep(STREET_HALF, STREET_HALF - 1.0, street_at) * (X > CROSSINGS[1]) * (X < CROSSINGS[0])
    tint(picture, paved * smoothstep(0.0, 0.8, PATCH + 0.3 * DAB), 0.87)
    tint(picture, paved * smoothstep(0.1, 0.8, -PATCH + 0.3 * DAB), 1.07)
    over(picture, LEAVES, paved * smoothstep(STREET_HALF - 2.2, STREET_HALF - 0.6, street_at) *
         smoothstep(0.45, 0.75, TUFT + 0.3 * PATCH) * 0.55)
    for _ in range(26):
        x, z = rng.uniform(CROSSINGS[1] + 5, CROSSINGS[0] - 5), rng.choice(STREETS) + rng.uniform(-2.6, 2.6)
        wide, deep = rng.uniform(0.7, 1.5), rng.uniform(0.35, 0.7)
        if np.hypot(x - SQUARE[0], z - SQUARE[1]) < SQUARE[2] + 2:
            continue
        part = near(x, z, 5)
        away = np.hypot((X[part] - x) / wide, (Z[part] - z) / deep) + 0.35 * DAB[part]
        tint(picture[part], smoothstep(1.55, 0.9, away), 0.74)
        over(picture[part], rgb("8a7f9c"), smoothstep(1.05, 0.85, away) * 0.85)
        over(picture[part], rgb("e0a898"), smoothstep(0.75, 0.1, away + (Z[part] - z) / deep * 0.25) * 0.6)


def castle_road(picture):
    """The fan of paving before the gate and the road that joins it to the town."""
    away = np.hypot(X - GATE_X, Z)
    court = smoothstep(0.2, -0.2, away - COURT_RADIUS) * (X > GATE_X - 1.0)
    round_paving(picture, GATE_X, 0.0, COURT_RADIUS, court, 130)
    over(picture, JOINT, np.exp(-((away - COURT_RADIUS) / 0.2) ** 2) * (X > GATE_X) * 0.8)
    road = smoothstep(0.1, -0.1, np.abs(Z) - 2.6) * (X > -70) * (X < CROSSINGS[1] - CROSSING_HALF)
    lay(picture, road.astype(np.float32), X, Z, 1.12, 1.4, 134, (-0.7, 0.7))
    outside = (X > GATE_X) * (X < CROSSINGS[1] - CROSSING_HALF)
    over(picture, JOINT, np.exp(-((np.abs(Z) - 2.6) / 0.16) ** 2) * outside * 0.8)


# ---- yards ----------------------------------------------------------------

def yards(picture):
    """Trodden earth along every row, then each house's own piece of garden."""
    for z in ROWS:
        strip = smoothstep(0.5, -0.5, np.abs(Z - z) - 6.6 + 0.3 * DAB) * \
            smoothstep(-1.0, 1.0, np.minimum(X + 45.0, 84.0 - X))
        over(picture, EARTH, strip * 0.85)
        over(picture, EARTH_LIGHT, strip * smoothstep(0.1, 0.8, PATCH + 0.4 * DAB) * 0.6)
        over(picture, EARTH_DARK, strip * smoothstep(0.2, 0.9, -PATCH + 0.4 * DAB) * 0.5)
        over(picture, GRASS, strip * smoothstep(0.25, 0.6, DAB * 0.7 + DRIFT) * 0.7)
    rng = np.random.default_rng(SEED * 1000 + 42)
    for kind, x, z, (low_x, high_x, low_z, high_z) in houses():
        for side in (-1, 1):
            front = high_z if side > 0 else -low_z
            depth = (z + side * 6.5) * side - front
            garden(picture, rng, kind, (low_x + high_x) / 2, (high_x - low_x) / 2 - 0.15,
                   side * (front + depth / 2), depth / 2 - 0.25)


def garden(picture, rng, kind, x, half_x, z, half_z):
    """One plot before a house: a lawn, beds, flowers or bare earth, and a path to the door."""
    part = near(x, z, half_x + 2)
    px, pz = X[part] - x, Z[part] - z
    wobble = 0.22 * DAB[part]
    plot = smoothstep(0.25, -0.25, np.maximum(np.abs(px) - half_x, np.abs(pz) - half_z) + wobble)
    here = picture[part]
    choice = rng.integers(5) if kind < 2 else rng.integers(2) * 4
    if choice in (0, 1, 2):
        over(here, GRASS if choice else GRASS_LIGHT, plot * 0.85)
        over(here, GRASS_LIGHT, plot * smoothstep(0.0, 0.6, PATCH[part]) * 0.6)
    if choice == 1:
        bed = 0.5 + 0.5 * np.cos(pz * 2 * np.pi / 1.15)
        over(here, EARTH_DARK * (0.75 + 0.35 * bed)[..., None].astype(np.float32), plot * 0.8)
        over(here, rgb("a0b05a"), plot * smoothstep(0.55, 0.95, bed) * smoothstep(-0.2, 0.4, DAB[part]))
    if choice == 2:
        for _ in range(9):
            fx, fz = rng.uniform(-half_x, half_x), rng.uniform(-half_z, half_z)
            bloom = BLOOMS[rng.integers(4)]
            away = np.hypot(px - fx, pz - fz)
            over(here, GRASS_DARK, np.exp(-(away / 0.75) ** 2) * plot * 0.8)
            over(here, bloom, np.exp(-(away / 0.30) ** 2) * plot * 0.9)
    if choice == 4:
        over(here, EARTH_LIGHT, plot * 0.45)
        over(here, rgb("e0c07a"), plot * smoothstep(0.2, 0.6, DAB[part] + 0.4 * PATCH[part]) * 0.6)
    path = smoothstep(0.72, 0.5, np.abs(px + 0.15 * np.sin(pz * 2))) * smoothstep(0.6, 0.1, np.abs(pz) - half_z)
    slab = np.minimum(smoothstep(0.05, 0.22, (pz % 1.1)), smoothstep(0.05, 0.22, 1.1 - pz % 1.1))
    over(here, STONE_WARM * (0.72 + 0.28 * slab)[..., None].astype(np.float32), path * 0.9)


def shade_footprints(picture):
    """Contact shadows: the ground darkens towards every wall."""
    for kind, x, z, box in houses():
        part = near(x, z, 10)
        distance = box_distance(*box, part)
        tint(picture[part], np.exp(-np.maximum(distance, 0) / 0.75), 0.55)
    for box in CASTLE:
        distance = box_distance(*box)
        moss = np.exp(-np.maximum(distance, 0) / 1.2) * smoothstep(-0.4, 0.5, PATCH + DAB * 0.5)
        over(picture, MOSS * 0.8, moss * 0.6)
        tint(picture, np.exp(-np.maximum(distance, 0) / 1.3), 0.5)


def scorch(picture, x, z, reach, strength, distance=None):
    """Soot that thins outwards, a pale rim of ash, and embers that still glow."""
    part = near(x, z, reach * 2.4 + 6)
    if distance is None:
        away = np.hypot(X[part] - x, Z[part] - z)
    else:
        away = np.maximum(distance(part), 0)
    ragged = away / reach + 0.30 * PATCH[part] + 0.22 * DAB[part]
    over(picture[part], ASH, np.exp(-((ragged - 1.0) / 0.24) ** 2) * 0.35 * strength)
    over(picture[part], SOOT, smoothstep(1.05, 0.15, ragged) * 0.88 * strength)
    return part, ragged


def burns(picture):
    for kind, x, z, box in houses():
        if kind == 2:
            scorch(picture, x, z, 1.9, 0.45, lambda part, box=box: box_distance(*box, part))
    for x, z in TREES:
        part, ragged = scorch(picture, x, z, SCORCHED_TREE, 1.0)
        glow = smoothstep(0.35, 0.65, DAB[part]) * smoothstep(0.75, 0.2, ragged)
        over(picture[part], rgb("ff8a2a"), glow * 0.75)
        away = np.hypot(X[part] - x, Z[part] - z)
        over(picture[part], rgb("c25a1e"), np.exp(-(away / 1.1) ** 2) * 0.35)
        for root in range(6):  # dark roots running into the soil
            angle = np.arctan2(Z[part] - z, X[part] - x) - root * 1.047 - 0.25 * np.sin(away * 2 + root)
            bend = np.abs(np.arctan2(np.sin(angle), np.cos(angle))) * away
            over(picture[part], SOOT * 0.7, smoothstep(0.24, 0.08, bend) * smoothstep(2.2, 0.8, away) * 0.8)


def glow(picture):
    """Light of windows on the ground before the houses, and of the fires round the trees."""
    for kind, x, z, (low_x, high_x, low_z, high_z) in houses():
        part = near(x, z, 10)
        for front in (low_z - 0.9, high_z + 0.9):
            pool = np.exp(-((X[part] - (low_x + high_x) / 2) / (0.55 * (high_x - low_x))) ** 2
                          - ((Z[part] - front) / 1.9) ** 2)
            picture[part] *= 1 + pool[..., None] * WINDOW_LIGHT
    for x, z in TREES:
        part = near(x, z, 12)
        away = np.hypot(X[part] - x, Z[part] - z)
        picture[part] *= 1 + np.exp(-(away / 5.0) ** 2)[..., None] * FIRE_LIGHT


def main():
    picture = meadow()
    fields(picture)
    lanes(picture)
    forest_floor(picture)
    yards(picture)
    streets(picture)
    wear(picture)
    square(picture)
    castle_road(picture)
    burns(picture)
    shade_footprints(picture)
    glow(picture)
    tint(picture, smoothstep(0.1, 0.9, DRIFT), 1.07)
    far_haze(picture)
    write_bmp("stone.bmp", picture)


if __name__ == "__main__":
    main()
