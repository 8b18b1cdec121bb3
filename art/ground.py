"""The painted map under the town: one picture stretched over the whole ground.

Ten texels make one unit and the camera looks from less than two units above, so a
texel may fill thirty pixels of the screen. What is straight (streets, kerbs, paths)
is therefore laid texel by texel: joints are one whole texel wide, lit and shaded
edges are the texels beside them. What is round has lines of one texel, and grass and
earth have their blades and pebbles, of one texel too.
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
SCORCHED_TREE = 3.4                               # reach of the soot
DOORS = (0.60, 0.22, -0.50)                       # x of each kind's door from its house, on the +z side
WALLS = ((-1.6, 1.6, 2.1), (-2.15, 2.15, 3.3), (-4.05, 3.95, 4.46))  # x and z reach of the walls
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
GRIT = np.random.default_rng(SEED * 1000 + 37).standard_normal((SIZE, SIZE)).astype(np.float32)  # single texels
ROW, COLUMN = np.mgrid[0:SIZE, 0:SIZE].astype(np.int32)
TEXEL = 2 * HALF / SIZE


def strokes(directions, length, seed):
    """Short strokes a texel wide, about -1..1, in steps of (rows, columns) a texel."""
    out = np.zeros((SIZE, SIZE), np.float32)
    for k, (down, right) in enumerate(directions):
        seeds = np.random.default_rng(SEED * 1000 + seed + k).standard_normal((SIZE, SIZE)).astype(np.float32)
        run = sum(np.roll(seeds, (down * i, right * i), (0, 1)) for i in range(length)) / np.sqrt(length)
        out = np.where(np.abs(run) > np.abs(out), run, out)
    return np.clip(out / 2.4, -1, 1)


BLADES = strokes(((1, 0), (1, 1), (1, -1), (0, 1)), 3, 140)


def line(distance, texels=1.0):
    """1 on a line, 0 a texel beside it; distance in units."""
    return np.clip(0.5 + texels / 2 - np.abs(distance) / TEXEL, 0, 1)


def edge(distance, soft=0.5):
    """1 where distance < 0, 0 where it is positive; what runs askew to the texels needs
    a softness of about one of them, or its edge shows steps."""
    return np.clip(0.5 - distance / (2 * soft * TEXEL), 0, 1)


def groove(distance, texels=1.0):
    """As line, for lines that run askew: as wide, but without steps."""
    return np.exp(-(distance / (0.62 * (0.4 + texels) * TEXEL)) ** 2)


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

def grassy(picture, mask, strength=1.0):
    """Blades of grass a texel wide, light and dark, where the mask is."""
    clump = 0.65 + 0.35 * np.clip(TUFT + DAB, -1, 1)
    tint(picture, mask * strength * smoothstep(0.35, 0.75, BLADES) * clump, 1.42)
    tint(picture, mask * strength * smoothstep(0.35, 0.75, -BLADES), 0.66)


def pebbles(picture, mask, amount, seed):
    """Small stones on bare earth: a light texel, and its shadow away from the sun."""
    chance = np.random.default_rng(SEED * 1000 + seed).random((SIZE, SIZE)).astype(np.float32)
    here = (chance < amount) * mask
    wide = np.maximum(here, np.roll(here * (chance < amount * 0.4), 1, 1))
    shadow = np.clip(np.roll(wide, (1, 1), (0, 1)) + np.roll(wide, 1, 0) - wide, 0, 1) * mask
    tint(picture, shadow, 0.66)
    over(picture, STONE * (0.85 + 0.25 * np.roll(chance, 7, 0))[..., None], wide * 0.8)
    tint(picture, mask * smoothstep(0.6, 1.8, GRIT), 1.16)
    tint(picture, mask * smoothstep(0.6, 1.8, -GRIT), 0.84)


def blooms(picture, mask, colours, amount, seed):
    """Heads of flowers: single texels, and leaves below them."""
    chance = np.random.default_rng(SEED * 1000 + seed).random((SIZE, SIZE)).astype(np.float32)
    heads = (chance < amount) * mask
    tint(picture, np.clip(np.roll(heads, 1, 0) + np.roll(heads, 1, 1), 0, 1), 0.7)
    for i, colour in enumerate(colours):
        over(picture, colour * 1.08, heads * (np.floor(chance / amount * len(colours)) == i))


def meadow():
    picture = np.broadcast_to(GRASS, (SIZE, SIZE, 3)).astype(np.float32).copy()
    over(picture, GRASS_LIGHT, smoothstep(-0.1, 0.7, PATCH + 0.5 * DAB + 0.35 * TUFT) * 0.8)
    over(picture, GRASS_DARK, smoothstep(0.0, 0.7, -PATCH + 0.5 * DAB + 0.35 * TUFT) * 0.75)
    bare = smoothstep(0.25, 0.7, DRIFT + 0.35 * PATCH + 0.3 * DAB) * 0.6
    over(picture, EARTH, bare)
    tint(picture, smoothstep(-0.6, 0.6, DRIFT), 1.12)
    tint(picture, smoothstep(0.15, 0.6, TUFT + 0.4 * DAB), 1.12)
    tint(picture, smoothstep(0.15, 0.6, -TUFT), 0.88)
    grassy(picture, 1 - 0.7 * bare)
    for i, bloom in enumerate(BLOOMS):  # drifts of flowers
        where = np.roll(PATCH, 331 * (i + 1), axis=i % 2) + 0.4 * np.roll(DRIFT, 177 * i, axis=1)
        blooms(picture, smoothstep(0.40, 0.6, where), [bloom], 0.07, 60 + i)
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
            furrow = along / 0.98 + 0.12 * WOBBLE_Z
            furrow = furrow - np.floor(furrow)     # rises slowly from its shaded side, falls at once
            ploughed = 0.70 + 0.42 * furrow - 0.16 * (furrow > 0.9)
            tone = ploughed + 0.10 * PATCH + 0.07 * TUFT + 0.10 * np.clip(BLADES + 0.4 * GRIT, -1, 1)
            colour = crop * tone[..., None]
            over(picture, colour.astype(np.float32), here * outside * smoothstep(0.6, 0.9, rim) * 0.92)


def forest_floor(picture):
    edge = FOREST_EDGE + 3.0 * PATCH + 1.5 * DAB
    belt = smoothstep(2.5, -3.0, X - edge) * smoothstep(58, 46, np.abs(Z) + 3 * PATCH)
    over(picture, FOREST_FLOOR, belt)
    over(picture, LEAVES, belt * smoothstep(0.25, 0.7, DAB + 0.5 * PATCH) * 0.35)
    over(picture, LEAVES * 1.25, belt * smoothstep(1.3, 1.9, GRIT + 0.6 * DAB) * 0.8)
    tint(picture, belt * smoothstep(0.35, 0.75, BLADES), 0.72)
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
        middle = lane * np.exp(-(bent / 0.35) ** 2) * smoothstep(-0.3, 0.3, TUFT + DAB + 0.5 * GRIT)
        over(picture, GRASS, middle * 0.8)
        grassy(picture, middle)
        pebbles(picture, lane * (1 - middle), 0.022, 47)


def far_haze(picture):
    """Towards its edge the land takes the tone of the fields painted on the sky."""
    from_sun = (X * -45 + Z * 40) / (60.2 * np.hypot(X, Z) + 1e-3)
    haze = np.broadcast_to(HAZE_ACROSS, X.shape + (3,)).astype(np.float32).copy()
    over(haze, HAZE_SUNWARD, from_sun)
    over(haze, HAZE_FAR, -from_sun)
    over(picture, haze, smoothstep(13.0, 0.0, HALF - np.maximum(np.abs(X), np.abs(Z)) + 1.5 * DAB) * 0.85)


# ---- paving ---------------------------------------------------------------

STONES = [STONE * 1.08, STONE_LIGHT, STONE_WARM * 1.05, STONE_COOL, STONE * 0.92]
COURSE, SHORT, LONG = 7, 8, 12        # texels: breadth of a course, lengths of its stones


class Setts:
    """Stones laid texel by texel in courses: u counts texels across the courses, v along
    them, both towards the side that lies away from the sun."""

    def __init__(self, u, v, seed, course=COURSE, lengths=(SHORT, LONG)):
        rng = np.random.default_rng(SEED * 1000 + seed)
        table = rng.random((512, 512, 5)).astype(np.float32)
        row = np.floor_divide(u, course)
        mean = (lengths[0] + lengths[1]) / 2
        start = np.floor(table[row & 511, 0, 0] * mean).astype(np.int32)
        sway = (lengths[1] - lengths[0]) / 2

        def joint(index):
            return np.round(index * mean + sway * (table[row & 511, index & 511, 1] - 0.5)).astype(np.int32)

        along = v + start
        stone = np.floor(along / mean).astype(np.int32)
        stone += (along >= joint(stone + 1)).astype(np.int32) - (along < joint(stone)).astype(np.int32)
        self.chance = table[(row * 3 + 7) & 511, (stone * 5 + row) & 511]
        a, b = u - row * course, along - joint(stone)
        length = joint(stone + 1) - joint(stone)
        # The joint is the stone's first texel; some stones are cut shorter by one at a side.
        cut = (self.chance[..., :4] < 0.09).astype(np.int32)
        self.first_u, self.last_u = a - 1 - cut[..., 0], course - 1 - a - cut[..., 1]
        self.first_v, self.last_v = b - 1 - cut[..., 2], length - 1 - b - cut[..., 3]
        self.inside = np.minimum(np.minimum(self.first_u, self.last_u), np.minimum(self.first_v, self.last_v))

    def colours(self, part):
        """Lit edges, shaded edges, chipped corners, cracks, and joints with earth or moss in them."""
        chance = self.chance
        kind = np.minimum((chance[..., 4] * len(STONES)).astype(int), len(STONES) - 1)
        picture = np.array(STONES, np.float32)[kind]
        tone = 0.86 + 0.25 * chance[..., 0] + 0.075 * np.clip(GRIT[part], -2, 2) + 0.05 * DAB[part]
        lit = (self.first_u == 0) | (self.first_v == 0)
        dim = (self.last_u == 0) | (self.last_v == 0)
        tone += 0.20 * lit - 0.20 * dim
        worn = (self.first_u > 0) & (self.last_u > 0) & (self.first_v > 0) & (self.last_v > 0)
        tone += 0.07 * worn * smoothstep(0.4, 0.9, chance[..., 1])
        slant = (chance[..., 3] - 0.5) * 2.4
        crack = worn & (chance[..., 2] > 0.93) & (np.abs(self.first_u - 2 - slant * (self.first_v - 3)) < 0.55)
        tone -= 0.22 * crack
        pits = worn & (GRIT[part] > 1.75)
        tone -= 0.34 * pits
        picture *= tone[..., None]
        corner = (np.minimum(self.first_u, self.last_u) == 0) & (np.minimum(self.first_v, self.last_v) == 0)
        joint = np.where(self.inside < 0, 0.95, 0.55 * corner * (GRIT[part] > -0.6))
        filled = blended(JOINT * 0.62, EARTH_DARK * 0.9, smoothstep(0.2, 1.0, DAB[part] + 0.4 * GRIT[part]))
        mossy = smoothstep(0.25, 0.6, PATCH[part] + 0.35 * TUFT[part] + 0.2 * GRIT[part])
        filled = blended(filled, MOSS * 0.8, mossy)
        over(picture, filled, joint)
        return picture


def blended(a, b, mask):
    return (a + (b - a) * np.asarray(mask)[..., None]).astype(np.float32)


def touched(mask):
    """Slices of the rows and columns that a mask touches."""
    rows, columns = np.where(mask.max(axis=1) > 0.002)[0], np.where(mask.max(axis=0) > 0.002)[0]
    return slice(rows[0], rows[-1] + 1), slice(columns[0], columns[-1] + 1)


def lay(picture, mask, u, v, seed, **measures):
    """Lays setts where the mask is; u and v as in Setts, for the whole ground."""
    part = touched(mask)
    stones = Setts(u[part], v[part], seed, **measures)
    over(picture[part], stones.colours(part), mask[part])
    return part, stones


def street(picture, along_x, centre, half, ends, seed, kerbless=0.0):
    """One paved street with kerbs, but for where the mask `kerbless` opens it to another.

    along_x tells whether it runs along x or z; its middle lies at `centre` on the other axis.
    """
    along, across = (X, Z - centre) if along_x else (Z, X - centre)
    u, v = (COLUMN, ROW) if along_x else (ROW, COLUMN)
    frayed = half + 0.25 * PATCH
    side = np.abs(across)
    length = edge(-np.minimum(along - ends[0], ends[1] - along))
    inside = np.minimum(edge(side - half), length)
    part, stones = lay(picture, inside, u, v, seed)
    # Grass and dirt creep in from the kerb; wheels and feet have polished the middle.
    creep = smoothstep(0.9, 0.0, frayed - side - 0.55) * (1 - kerbless)
    creep *= smoothstep(-0.3, 0.5, PATCH + 0.5 * DAB + 0.35 * GRIT)
    joints = np.zeros_like(inside)
    joints[part] = stones.inside < 0
    moss = inside * creep * (0.15 + 0.75 * joints)
    over(picture, MOSS, moss)
    grassy(picture, moss * joints)
    tint(picture, inside * np.exp(-((side - 1.25) / 0.55) ** 2) * (0.7 + 0.3 * DRIFT), 0.91)
    tint(picture, inside * np.exp(-(side / 0.5) ** 2), 1.06)
    length = length * (1 - kerbless)
    kerb = edge(np.abs(side - half + 0.02) - 2.6 * TEXEL) * length
    part = touched(kerb)
    stones = Setts(u[part] + 3, 0 * v[part] + 1, seed + 1, course=15, lengths=(40, 41))
    top = blended(STONE_LIGHT, STONE_COOL, stones.chance[..., 1]) * (0.98 + 0.16 * stones.chance[..., 0])[..., None]
    top *= (1 + 0.05 * np.clip(GRIT[part], -2, 2))[..., None]
    top *= np.where(stones.first_u < 0, 0.5, np.where(stones.first_u == 0, 1.15, 1))[..., None]
    over(picture[part], top.astype(np.float32), kerb[part])
    for reach, factor in ((2.6, 0.5), (-3.2, 0.55)):
        tint(picture, line(side - half - reach * TEXEL) * length, factor)
    tint(picture, smoothstep(0.7, 0.0, np.abs(side - half - 0.55)) * (1 - inside) * length * (1 - kerb), 0.78)


def streets(picture):
    low, high = CROSSINGS[1], CROSSINGS[0]
    for i, z in enumerate(STREETS):
        street(picture, True, z, STREET_HALF, (low, high), 50 + 4 * i)
    for i, x in enumerate(CROSSINGS):
        outward = (X > x) if i == 0 else (X < x)  # the side away from the rows keeps its kerb
        from_street = np.min([np.abs(Z - z) for z in STREETS], axis=0)
        mouths = edge(from_street - STREET_HALF + 0.3) * ~outward
        if i:
            mouths = np.maximum(mouths, edge(np.abs(Z) - 12.0) * (X < x))
        street(picture, False, x, CROSSING_HALF, (STREETS[-1] - CROSSING_HALF, STREETS[0] + CROSSING_HALF),
               90 + 4 * i, mouths)


def round_paving(picture, x, z, mask, seed, course=0.78, length=1.0):
    """Rings of stones about a centre, within a mask: joints of one texel, edges lit from the sun."""
    part = touched(mask)
    dx, dz = X[part] - x, Z[part] - z
    ring, angle = np.hypot(dx, dz) + 1e-3, np.arctan2(dz, dx) / (2 * np.pi) + 0.5
    table = np.random.default_rng(SEED * 1000 + seed).random((64, 512, 3)).astype(np.float32)
    row = np.floor(ring / course).astype(np.int32)
    count = np.maximum(np.round((row + 0.5) * course * 2 * np.pi / length), 3)
    place = angle * count + table[row & 63, 0, 0]
    stone = np.floor(place).astype(np.int32)
    chance = table[row & 63, np.mod(stone, count.astype(np.int32)) & 511]
    before_r, after_r = ring - row * course, (row + 1) * course - ring
    before_a, after_a = (place - stone) / count * 2 * np.pi * ring, (stone + 1 - place) / count * 2 * np.pi * ring
    nearest = np.minimum(np.minimum(before_r, after_r), np.minimum(before_a, after_a))
    corner = np.minimum(np.minimum(before_r, after_r) + np.minimum(before_a, after_a), 9)
    kind = np.minimum((chance[..., 1] * len(STONES)).astype(int), len(STONES) - 1)
    picture_here = np.array(STONES, np.float32)[kind]
    outer = (-dx + dz) / (ring * 1.42)          # how far the outer edges face the sun
    beside = (-dx - dz) / (ring * 1.42)         # and the edges towards greater angles
    band = [np.exp(-((d / TEXEL - 1.7) / 0.9) ** 2) for d in (before_r, after_r, before_a, after_a)]
    relief = outer * (band[1] - band[0]) + beside * (band[3] - band[2])
    tone = 0.88 + 0.24 * chance[..., 2] + 0.24 * relief + 0.07 * np.clip(GRIT[part], -2, 2) + 0.05 * DAB[part]
    tone -= 0.32 * ((GRIT[part] > 1.75) & (nearest > 2 * TEXEL))
    picture_here *= tone[..., None]
    filled = blended(JOINT * 0.60, MOSS * 0.7, smoothstep(0.25, 0.6, PATCH[part] + 0.35 * TUFT[part]))
    over(picture_here, filled, np.maximum(groove(nearest, 1.1), groove(np.maximum(corner - 0.6 * TEXEL, 0), 1.1)))
    over(picture[part], picture_here, mask[part])


def square(picture):
    """The start square: a round of rings with a many-pointed star laid in pale stone."""
    x, z, radius = SQUARE
    away = np.hypot(X - x, Z - z)
    apron = edge((np.abs((X + 2) / 17.5) ** 4 + np.abs((Z - z) / 6.0) ** 4) ** 0.25 * 6 - 6)
    lay(picture, apron.astype(np.float32), COLUMN, ROW, 120)
    round_paving(picture, x, z, edge(away - radius).astype(np.float32), 124)
    rim = edge(np.abs(away - radius + 0.42) - 0.42, 0.9)
    stone = (np.arctan2(Z - z, X - x) / (2 * np.pi) + 0.5) * 36
    tone = np.random.default_rng(SEED * 1000 + 44).uniform(0.92, 1.12, 37)[np.floor(stone).astype(int)]
    facing = (Z - X + x - z) / (radius * 1.42)  # how far the rim's outside faces the sun
    tone = tone + 0.05 * np.clip(GRIT, -2, 2) + 0.14 * (np.abs(away - radius + 0.42) > 0.3) * facing
    over(picture, blended(STONE_WARM, STONE_LIGHT, 0.3 + 0 * away) * tone[..., None], rim)
    near_joint = np.abs(stone - np.round(stone)) / 36 * 2 * np.pi * radius
    over(picture, JOINT * 0.6, groove(near_joint) * rim)
    for point in range(8):  # short points first, so that the long ones lie over them
        bearing = (point % 4) * np.pi / 2 + (np.pi / 4 if point < 4 else 0.0)
        reach = 3.4 if point < 4 else radius - 1.0
        forward = (X - x) * np.cos(bearing) + (Z - z) * np.sin(bearing)
        aside = (Z - z) * np.cos(bearing) - (X - x) * np.sin(bearing)
        waist = 1.15
        half = np.minimum(forward * 0.4142, (reach - forward) * waist * 0.4142 / (reach - waist))
        outline = np.abs(aside) - half
        over(picture, JOINT * 0.5, edge(outline - 1.6 * TEXEL, 0.65))
        colour = blended(STONE_LIGHT * 1.02, rgb("77718f"), edge(-aside, 0.65))
        slabs = groove((forward + 0.35) % 0.9 - 0.45, 0.8) * 0.45 * (forward > waist)
        colour = colour * (1 + 0.045 * np.clip(GRIT, -2, 2) + 0.04 * DAB - 0.4 * slabs)[..., None]
        over(picture, colour.astype(np.float32), edge(outline, 0.65))
    for ring in (radius - 0.84, radius):
        over(picture, JOINT * 0.5, groove(away - ring, 1.2))


def wear(picture):
    """What years have left on the streets: stains, blown leaves, and puddles that hold the sky."""
    rng = np.random.default_rng(SEED * 1000 + 43)
    street_at = np.min([np.abs(Z - z) for z in STREETS], axis=0)
    paved = smoothstep(STREET_HALF, STREET_HALF - 1.0, street_at) * (X > CROSSINGS[1]) * (X < CROSSINGS[0])
    tint(picture, paved * smoothstep(0.0, 0.8, PATCH + 0.3 * DAB), 0.87)
    tint(picture, paved * smoothstep(0.1, 0.8, -PATCH + 0.3 * DAB), 1.07)
    over(picture, LEAVES, paved * smoothstep(STREET_HALF - 2.2, STREET_HALF - 0.6, street_at) *
         smoothstep(1.5, 1.9, GRIT + 1.2 * TUFT + 0.4 * PATCH) * 0.85)
    for _ in range(26):
        x, z = rng.uniform(CROSSINGS[1] + 5, CROSSINGS[0] - 5), rng.choice(STREETS) + rng.uniform(-2.6, 2.6)
        wide, deep = rng.uniform(0.7, 1.5), rng.uniform(0.35, 0.7)
        if np.hypot(x - SQUARE[0], z - SQUARE[1]) < SQUARE[2] + 2:
            continue
        part = near(x, z, 5)
        away = np.hypot((X[part] - x) / wide, (Z[part] - z) / deep) + 0.35 * DAB[part]
        tint(picture[part], smoothstep(1.55, 1.0, away), 0.70)
        over(picture[part], rgb("847a9a"), smoothstep(1.0, 0.9, away) * 0.88)
        over(picture[part], rgb("e0a898"), smoothstep(0.75, 0.3, away + (Z[part] - z) / deep * 0.25) * 0.6)
        tint(picture[part], smoothstep(0.12, 0.0, np.abs(away - 0.95)) * (Z[part] < z), 1.25)


def castle_road(picture):
    """The fan of paving before the gate and the road that joins it to the town."""
    away = np.hypot(X - GATE_X, Z)
    court = edge(away - COURT_RADIUS) * (X > GATE_X - 1.0)
    round_paving(picture, GATE_X, 0.0, court.astype(np.float32), 130, course=0.88, length=1.1)
    over(picture, JOINT * 0.5, groove(away - COURT_RADIUS, 1.5) * (X > GATE_X))
    road = edge(np.abs(Z) - 2.6) * (X > -70) * (X < CROSSINGS[1] - CROSSING_HALF)
    lay(picture, road.astype(np.float32), COLUMN, ROW, 134)
    outside = (X > -70) * (X < CROSSINGS[1] - CROSSING_HALF)
    kerb = edge(np.abs(np.abs(Z) - 2.6) - 2 * TEXEL) * outside
    over(picture, STONE_LIGHT * (0.94 + 0.06 * np.clip(GRIT, -2, 2) - 0.4 * (COLUMN % 13 == 0))[..., None], kerb)
    for reach in (-2.5, 2.5):
        over(picture, JOINT * 0.5, line(np.abs(Z) - 2.6 - reach * TEXEL) * outside * 0.9)


# ---- yards ----------------------------------------------------------------

def yards(picture):
    """Trodden earth along every row, then each house's own piece of garden."""
    for z in ROWS:
        strip = smoothstep(0.5, -0.5, np.abs(Z - z) - 6.6 + 0.3 * DAB) * \
            smoothstep(-1.0, 1.0, np.minimum(X + 45.0, 84.0 - X))
        over(picture, EARTH, strip * 0.85)
        over(picture, EARTH_LIGHT, strip * smoothstep(0.1, 0.8, PATCH + 0.4 * DAB) * 0.6)
        over(picture, EARTH_DARK, strip * smoothstep(0.2, 0.9, -PATCH + 0.4 * DAB) * 0.5)
        grown = strip * smoothstep(0.25, 0.6, DAB * 0.7 + DRIFT + 0.25 * GRIT) * 0.7
        over(picture, GRASS, grown)
        grassy(picture, grown)
        pebbles(picture, strip * (1 - grown), 0.030, 48)
    rng = np.random.default_rng(SEED * 1000 + 42)
    for kind, x, z, (low_x, high_x, low_z, high_z) in houses():
        for side in (-1, 1):
            front = high_z if side > 0 else -low_z
            depth = (z + side * 6.5) * side - front
            garden(picture, rng, kind, (low_x + high_x) / 2, (high_x - low_x) / 2 - 0.15,
                   side * (front + depth / 2), depth / 2 - 0.25, x + side * DOORS[kind])


def garden(picture, rng, kind, x, half_x, z, half_z, door):
    """One plot before a house: a lawn, beds, flowers or bare earth, and a path to the door."""
    part = near(x, z, half_x + 2)
    px, pz = X[part] - x, Z[part] - z
    wobble = 0.22 * DAB[part] + 0.06 * GRIT[part]
    plot = smoothstep(0.12, -0.12, np.maximum(np.abs(px) - half_x, np.abs(pz) - half_z) + wobble)
    here = picture[part]
    blades = BLADES[part]
    choice = rng.integers(5) if kind < 2 else rng.integers(2) * 4

    def grow(mask):
        tint(here, mask * smoothstep(0.3, 0.7, blades), 1.38)
        tint(here, mask * smoothstep(0.3, 0.7, -blades), 0.68)

    if choice in (0, 1, 2):
        over(here, GRASS if choice else GRASS_LIGHT, plot * 0.85)
        over(here, GRASS_LIGHT, plot * smoothstep(0.0, 0.6, PATCH[part]) * 0.6)
        grow(plot)
    if choice == 1:
        bed = (pz + 40) % 0.98
        over(here, EARTH_DARK * (0.70 + 0.45 * smoothstep(0.0, 0.9, bed))[..., None].astype(np.float32), plot * 0.85)
        heads = (np.abs(bed - 0.6) < 0.12) & (GRIT[part] > -0.2)
        over(here, rgb("a0b05a") * (1 + 0.2 * blades)[..., None], plot * heads)
        tint(here, plot * np.roll(heads, 1, 0), 0.75)
    if choice == 2:
        for _ in range(9):
            fx, fz = rng.uniform(-half_x, half_x), rng.uniform(-half_z, half_z)
            bloom = BLOOMS[rng.integers(4)]
            away = np.hypot(px - fx, pz - fz)
            over(here, GRASS_DARK, np.exp(-(away / 0.75) ** 2) * plot * 0.8)
            heads = (away < 0.5) & (GRIT[part] > 0.3)
            over(here, bloom * 1.05, heads * plot)
    if choice == 4:
        over(here, EARTH_LIGHT, plot * 0.45)
        straw = smoothstep(0.2, 0.6, DAB[part] + 0.4 * PATCH[part])
        over(here, rgb("e0c07a"), plot * straw * 0.5)
        tint(here, plot * straw * smoothstep(0.3, 0.7, blades), 1.3)
        tint(here, plot * straw * smoothstep(0.3, 0.7, -blades), 0.72)
    # Slabs laid to the texel, each a little off the line.
    middle = int(np.round((door + HALF) / TEXEL))
    step = np.floor_divide(ROW[part], 9)
    across = COLUMN[part] - middle + (step * 7919 % 3 - 1)
    down = ROW[part] - step * 9
    path = (np.abs(across) <= 6) & (np.abs(pz) < half_z + 0.35)
    slab = path & (np.abs(across) <= 5) & (down >= 1) & (down <= 7)
    tint(here, path * 1.0, 0.62)
    tone = 0.86 + 0.04 * (step * 104729 % 5)
    tone = tone + 0.14 * ((down == 1) | (across == -5)) - 0.16 * ((down == 7) | (across == 5))
    over(here, STONE_WARM * (tone + 0.05 * np.clip(GRIT[part], -2, 2))[..., None].astype(np.float32), slab * 0.95)


def shade_footprints(picture):
    """Contact shadows: the ground darkens towards every wall."""
    for kind, x, z in ((k, footprint_x, z) for k, footprint_x, z, _ in houses()):
        low, high, deep = WALLS[kind]
        part = near(x, z, 10)
        distance = box_distance(x + low, x + high, z - deep, z + deep, part)
        tint(picture[part], np.exp(-np.maximum(distance, 0) / 0.55), 0.50)
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
            scorch(picture, x, z, 1.6, 0.25, lambda part, box=box: box_distance(*box, part))
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
    """Light of windows and door lamps on the ground before the houses, of the fires round the trees."""
    for kind, x, z, (low_x, high_x, low_z, high_z) in houses():
        part = near(x, z, 10)
        for side, front in ((-1, low_z - 0.9), (1, high_z + 0.9)):
            pool = np.exp(-((X[part] - (low_x + high_x) / 2) / (0.55 * (high_x - low_x))) ** 2
                          - ((Z[part] - front) / 1.9) ** 2)
            wall = z + side * WALLS[kind][2]
            across, out = X[part] - x, (Z[part] - wall) * side
            lamp = np.exp(-((across - side * DOORS[kind]) / 1.5) ** 2 - ((out - 0.7) / 1.3) ** 2)
            if kind == 2:  # and the hall's big window
                lamp += 0.9 * np.exp(-((across + side * 3.05) / 0.9) ** 2 - ((out - 0.8) / 1.1) ** 2)
            picture[part] *= 1 + (pool + 1.5 * lamp)[..., None] * WINDOW_LIGHT
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
