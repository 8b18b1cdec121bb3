"""The painted map under the town: one picture stretched over the whole ground.

Ten texels make one unit and the camera looks from less than two units above, so a
texel may fill thirty pixels of the screen. What is straight (streets, kerbs, beds,
steps) is therefore laid texel by texel: joints are one whole texel wide, lit and shaded
edges are the texels beside them. What is round or oblique has soft lines of two texels,
which show no steps, and grass and earth have their blades and pebbles, of one texel.

The main street leads from the start in the square to the castle's gate, between warm
borders and along a trail of golden paw prints; the other streets have their own stones
and furniture.
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
APRON = (-20.0, 16.0, -0.55, 10.55)               # low and high x and z of the setts round it
GATE_X, COURT_RADIUS = -66.0, 14.0                # the fan of paving before the castle gate
TREES = ((-3, 0), (-10, 0), (30, 0))
TREE_PIT = 1.2                                    # radius of the earth within each tree's kerb
DOORS = (0.60, 0.22, -0.50)                       # x of each kind's door from its house, on the +z side
WALLS = ((-1.6, 1.6, 2.1), (-2.15, 2.15, 3.3), (-4.05, 3.95, 4.46))  # x and z reach of the walls
WINDOW_LIGHT = np.array([0.22, 0.11, -0.08], np.float32)  # what the warm pools of light add
FIRE_LIGHT = np.array([0.30, 0.10, -0.08], np.float32)
DUSK = np.array([0.86, 0.80, 0.66], np.float32)    # what the ground keeps of its colour under the panels
CASTLE = ((-90, -66, -14, 14), (-66, -61, -2.5, -1.9), (-66, -61, 1.9, 2.5))
FOREST_EDGE = -83.0

# fmt: off
GRASS, GRASS_LIGHT, GRASS_DARK = rgb("87914a"), rgb("b9b45c"), rgb("5f6d3c")
EARTH, EARTH_LIGHT, EARTH_DARK = rgb("b08a63"), rgb("cfaa7c"), rgb("7d5f49")
STONE, STONE_LIGHT, STONE_WARM, STONE_COOL = rgb("c3b7ad"), rgb("e6dac6"), rgb("cfb092"), rgb("a69e9a")
JOINT, MOSS, SOOT, ASH = rgb("7a6a61"), rgb("86904c"), rgb("3a3031"), rgb("a0958f")
FOREST_FLOOR, LEAVES = rgb("6e6340"), rgb("b0743c")
BLOOMS = [rgb("e0806a"), rgb("efc060"), rgb("c090c0"), rgb("f2e6c4")]
BED_BLOOMS = [rgb("f2705c"), rgb("ffc648"), rgb("e59ad4"), rgb("fff2d6")]
SOIL, HERB, LEAF, LEAF_LIGHT = rgb("7a6250"), rgb("a0b05a"), rgb("64803c"), rgb("b2c662")
GOLD, GOLD_LIGHT, GOLD_DARK = rgb("ffae34"), rgb("ffd98a"), rgb("b06a22")
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


def groove(distance, texels=2.0):
    """As line, for lines that run round or askew: soft enough to show no steps."""
    return np.exp(-(distance / (0.6 * texels * TEXEL)) ** 2)


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


def texels(low_x, high_x, low_z, high_z):
    """Slices of the whole texels of a rectangle."""
    columns = np.round((np.clip([low_x, high_x], -HALF, HALF) + HALF) / TEXEL).astype(int)
    rows = np.round((HALF - np.clip([high_z, low_z], -HALF, HALF)) / TEXEL).astype(int)
    return slice(*rows), slice(*columns)


def near(x, z, reach):
    """Slices of the square of texels within `reach` of a place."""
    return texels(x - reach, x + reach, z - reach, z + reach)


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

# The streets are darker than kerbs, yards and beds: the panels of the game add blue to them.
STONES = [STONE * 0.84, STONE_LIGHT * 0.77, STONE_WARM * 0.84, STONE * 0.73, STONE_WARM * 0.75, STONE * 0.79,
          STONE_WARM * 0.80, STONE_COOL * 0.84]
FLAGS = [STONE * 0.85, STONE * 0.92, STONE_LIGHT * 0.78, STONE * 0.79]
BRICKS = [rgb("b87556"), rgb("c5865f"), rgb("a66c55"), rgb("ba7d5a")]
BORDER = [rgb("b87f4c"), rgb("c99a5e"), rgb("a97046"), rgb("c08c56")]
SAND = [rgb("b09a78"), rgb("a08a6e"), rgb("bba27a"), rgb("938069")]
SLABS = [rgb("8f897f"), rgb("7f7a74"), rgb("99907f"), rgb("86807a")]
COURSE, SHORT, LONG = 7, 8, 12        # texels: breadth of a course, lengths of its stones
joints = np.zeros((SIZE, SIZE), np.float32)  # where the paving laid so far has joints


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

    def colours(self, part, stones, moss):
        """Lit edges, shaded edges, chipped corners, cracks, and joints with earth or moss in them."""
        chance = self.chance
        kind = np.minimum((chance[..., 4] * len(stones)).astype(int), len(stones) - 1)
        picture = np.array(stones, np.float32)[kind]
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
        mossy = smoothstep(0.25, 0.6, PATCH[part] + 0.35 * TUFT[part] + 0.2 * GRIT[part] + moss)
        filled = blended(filled, MOSS * 0.8, mossy)
        over(picture, filled, joint)
        return picture


def blended(a, b, mask):
    return (a + (b - a) * np.asarray(mask)[..., None]).astype(np.float32)


def touched(mask):
    """Slices of the rows and columns that a mask touches."""
    rows, columns = np.where(mask.max(axis=1) > 0.002)[0], np.where(mask.max(axis=0) > 0.002)[0]
    return slice(rows[0], rows[-1] + 1), slice(columns[0], columns[-1] + 1)


def lay(picture, mask, u, v, seed, stones=STONES, moss=0.0, **measures):
    """Lays setts where the mask is; u and v as in Setts, for the whole ground."""
    part = touched(mask)
    setts = Setts(u[part], v[part], seed, **measures)
    over(picture[part], setts.colours(part, stones, moss), mask[part])
    joints[part] += (np.float32(setts.inside < 0) - joints[part]) * mask[part]
    return part, setts


def lay_box(picture, box, seed, along_x=True, stones=STONES, moss=0.0, **measures):
    """Lays setts over a rectangle of texels, in courses along x or z that begin at its edge."""
    u, v = (ROW - box[0].start, COLUMN) if along_x else (COLUMN - box[1].start, ROW)
    setts = Setts(u[box], v[box], seed, **measures)
    picture[box] = setts.colours(box, stones, moss)
    joints[box] = setts.inside < 0


# z of a street -> how it is paved.
PAVING = {
    71: dict(stones=SLABS, moss=0.45, course=8, lengths=(9, 14)),
    49: dict(stones=SLABS),
    27: dict(stones=SAND, course=6, lengths=(6, 9)),
    5: {},
    -17: dict(stones=STONES[:4], moss=0.25, course=9, lengths=(12, 16)),
    -39: dict(stones=BRICKS, course=5, lengths=(9, 10)),
    -61: dict(stones=STONES, moss=0.45, course=8, lengths=(9, 14)),
}


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
    lay(picture, inside, u, v, seed, **(PAVING[centre] if along_x else {}))
    # Grass and dirt creep in from the kerb; wheels and feet have polished the middle.
    creep = smoothstep(0.9, 0.0, frayed - side - 0.55) * (1 - kerbless)
    creep *= smoothstep(-0.3, 0.5, PATCH + 0.5 * DAB + 0.35 * GRIT)
    moss = inside * creep * (0.15 + 0.75 * joints)
    over(picture, MOSS, moss)
    grassy(picture, moss * joints)
    tint(picture, inside * np.exp(-((side - 1.25) / 0.55) ** 2) * (0.7 + 0.3 * DRIFT), 0.91)
    tint(picture, inside * np.exp(-(side / 0.5) ** 2), 1.06)
    length = length * (1 - kerbless)
    kerb = edge(np.abs(side - half + 0.02) - 2.6 * TEXEL) * length
    part = touched(kerb)
    stones = Setts(u[part] + 3, 0 * v[part] + 1, seed + 1, course=15, lengths=(40, 41))
    top = blended(STONE_LIGHT, STONE, stones.chance[..., 1]) * (0.98 + 0.16 * stones.chance[..., 0])[..., None]
    top *= (1 + 0.05 * np.clip(GRIT[part], -2, 2))[..., None]
    top *= np.where(stones.first_u < 0, 0.5, np.where(stones.first_u == 0, 1.15, 1))[..., None]
    over(picture[part], top.astype(np.float32), kerb[part])
    for reach, factor in ((2.6, 0.5), (-3.2, 0.55)):
        tint(picture, line(side - half - reach * TEXEL) * length, factor)
    tint(picture, smoothstep(0.7, 0.0, np.abs(side - half - 0.55)) * (1 - inside) * length * (1 - kerb), 0.85)


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


def soft_setts(part, across, place, course, length, seed, sun, stones=STONES):
    """Stones whose courses run round or askew, with joints that show no steps.

    `across` counts units across the courses; place(row) counts stones along a course and
    length(row) is their length; `sun` tells how far the edges towards greater `across` and
    greater place face the sun.
    """
    table = np.random.default_rng(SEED * 1000 + seed).random((64, 512, 3)).astype(np.float32)
    row = np.floor(across / course).astype(np.int32)
    at = place(row) + table[row & 63, 0, 0]
    stone = np.floor(at).astype(np.int32)
    chance = table[row & 63, stone & 511]
    before_u, after_u = across - row * course, (row + 1) * course - across
    before_v, after_v = (at - stone) * length(row), (stone + 1 - at) * length(row)
    nearest_u, nearest_v = np.minimum(before_u, after_u), np.minimum(before_v, after_v)
    nearest = np.minimum(nearest_u, nearest_v)
    kind = np.minimum((chance[..., 1] * len(stones)).astype(int), len(stones) - 1)
    picture = np.array(stones, np.float32)[kind]
    band = [np.exp(-((d / TEXEL - 2.2) / 1.0) ** 2) for d in (before_u, after_u, before_v, after_v)]
    relief = sun[0] * (band[1] - band[0]) + sun[1] * (band[3] - band[2])
    tone = 0.88 + 0.24 * chance[..., 2] + 0.22 * relief + 0.06 * np.clip(GRIT[part], -2, 2) + 0.05 * DAB[part]
    tone -= 0.26 * ((GRIT[part] > 1.75) & (nearest > 3 * TEXEL))
    picture *= tone[..., None]
    filled = blended(JOINT * 0.62, MOSS * 0.7, smoothstep(0.25, 0.6, PATCH[part] + 0.35 * TUFT[part]))
    corner = np.maximum(nearest_u + nearest_v - 0.6 * TEXEL, 0)
    over(picture, filled, np.maximum(groove(nearest), groove(corner)))
    return picture.astype(np.float32)


def round_paving(picture, x, z, mask, seed, course=0.78, length=1.0, stones=STONES):
    """Rings of stones about a centre, within a mask."""
    part = touched(mask)
    dx, dz = X[part] - x, Z[part] - z
    ring, angle = np.hypot(dx, dz) + 1e-3, np.arctan2(dz, dx) / (2 * np.pi) + 0.5

    def count(row):
        return np.maximum(np.round((row + 0.5) * course * 2 * np.pi / length), 3)

    sun = (-dx + dz) / (ring * 1.42), (-dx - dz) / (ring * 1.42)
    rings = soft_setts(part, ring, lambda row: angle * count(row), course,
                       lambda row: 2 * np.pi * ring / count(row), seed, sun, stones)
    over(picture[part], rings, mask[part])
    joints[part] *= 1 - mask[part]


def kerb_ring(picture, x, z, radius, width, count, seed):
    """A ring of kerb stones, its outside at `radius`."""
    part = near(x, z, radius + 1)
    dx, dz = X[part] - x, Z[part] - z
    away = np.hypot(dx, dz) + 1e-3
    stone = (np.arctan2(dz, dx) / (2 * np.pi) + 0.5) * count
    tone = np.random.default_rng(SEED * 1000 + seed).uniform(0.92, 1.12, count + 1)[np.floor(stone).astype(int)]
    from_middle = away - radius + width / 2
    facing = (dz - dx) / (away * 1.42) * np.sign(from_middle)  # how far each edge faces the sun
    tone = tone + 0.05 * np.clip(GRIT[part], -2, 2) + 0.14 * facing * smoothstep(0.2, 0.45, np.abs(from_middle) / width)
    rim = edge(np.abs(from_middle) - width / 2, 0.9)
    over(picture[part], blended(STONE_WARM, STONE_LIGHT, 0.5 + 0 * away) * tone[..., None], rim)
    over(picture[part], JOINT * 0.6, groove(np.abs(stone - np.round(stone)) / count * 2 * np.pi * radius) * rim)
    for ring in (radius - width, radius):
        over(picture[part], JOINT * 0.5, groove(away - ring))


def apron(picture):
    """The setts round the start square, over the main street."""
    lay_box(picture, texels(*APRON), 120, along_x=False)


def square(picture):
    """The start square: a round of rings with a many-pointed star laid in pale stone.
    The star's ray to the west, where the castle stands, is gilded."""
    x, z, radius = SQUARE
    away = np.hypot(X - x, Z - z)
    round_paving(picture, x, z, edge(away - radius).astype(np.float32), 124)
    kerb_ring(picture, x, z, radius, 0.84, 36, 44)
    for point in range(8):  # short points first, so that the long ones lie over them
        bearing = (point % 4) * np.pi / 2 + (np.pi / 4 if point < 4 else 0.0)
        west = point == 6
        reach = 3.4 if point < 4 else radius - (0.86 if west else 1.0)
        forward = (X - x) * np.cos(bearing) + (Z - z) * np.sin(bearing)
        aside = (Z - z) * np.cos(bearing) - (X - x) * np.sin(bearing)
        waist = 1.15
        half = np.minimum(forward * 0.4142, (reach - forward) * waist * 0.4142 / (reach - waist))
        outline = np.abs(aside) - half
        over(picture, JOINT * 0.5, edge(outline - 1.8 * TEXEL, 0.9))
        light, dark = (GOLD * 1.02, GOLD_DARK) if west else (STONE_LIGHT * 0.96, rgb("6f6870"))
        slabs = groove((forward + 0.35) % 0.9 - 0.45) * 0.45 * (forward > waist)
        colour = blended(light, dark, edge(-aside, 0.9))
        colour = colour * (1 + 0.045 * np.clip(GRIT, -2, 2) + 0.04 * DAB - 0.4 * slabs)[..., None]
        if west:  # a bright ridge between its two sides
            over(colour, GOLD_LIGHT, groove(aside, 1.6) * 0.8)
        over(picture, colour.astype(np.float32), edge(outline, 0.9))


# ---- the way to the castle --------------------------------------------------

BEND = (-60.0, -38.0)                 # x between which the main street bends to the gate
APPROACH_HALF = 1.9                   # and grows as narrow as the gate's approach
BORDER_IN, BORDER_OUT = 1.35, 0.35    # the warm border, units inside the edge of the street


def main_middle(x):
    """z of the middle of the main street."""
    return STREETS[3] * smoothstep(BEND[0], BEND[1], x)


def main_edge():
    """Distance from the edges of the main street, negative on it, for the whole ground."""
    half = APPROACH_HALF + (STREET_HALF - APPROACH_HALF) * smoothstep(BEND[0], BEND[1], X)
    step = 0.1
    slope = (main_middle(X + step) - main_middle(X - step)) / (2 * step)
    return np.abs(Z - main_middle(X)) / np.sqrt(1 + slope ** 2) - half


def castle_road(picture):
    """The fan of paving before the gate and the road that bends to it from the main street."""
    away = np.hypot(X - GATE_X, Z)
    court = edge(away - COURT_RADIUS, 0.9) * (X > GATE_X - 1.0)
    round_paving(picture, GATE_X, 0.0, court.astype(np.float32), 130, course=0.88, length=1.1)
    over(picture, JOINT * 0.5, groove(away - COURT_RADIUS) * (X > GATE_X))
    outside = (X > GATE_X) * (X < CROSSINGS[1] + CROSSING_HALF)
    road = edge(main_edge(), 0.9) * outside
    lay(picture, road.astype(np.float32), COLUMN, ROW, 134)


def warm_border(picture):
    """Two courses of warm bricks along both sides of the main street, up to the gate."""
    beyond = main_edge()
    ends = (X > GATE_X) * (X < CROSSINGS[0] - CROSSING_HALF)
    for side in (-1, 1):
        mask = edge(np.abs(beyond + (BORDER_IN + BORDER_OUT) / 2) - (BORDER_IN - BORDER_OUT) / 2, 0.9) * ends
        mask = (mask * (np.sign(Z - main_middle(X)) == side)).astype(np.float32)
        part = touched(mask)
        bricks = soft_setts(part, -beyond[part] - BORDER_OUT, lambda row: X[part] / 1.07, 0.5,
                            lambda row: 1.07, 136 + side, (-side * 0.7, -0.7), BORDER)
        over(picture[part], bricks, mask[part])
        joints[part] *= 1 - mask[part]
    for reach in (BORDER_IN, BORDER_OUT):
        over(picture, JOINT * 0.5, groove(beyond + reach) * ends)


TRAIL = [  # x, z: round the burning tree and the strays in the street, then down its middle
    (-0.6, 1.9), (-2.8, 2.4), (-5.0, 3.0), (-8.0, 3.9), (-11.0, 5.4), (-15.0, 7.0),
    (-19.0, 6.4), (-23.5, 5.2)] + [(x, main_middle(x)) for x in np.arange(-28.0, -66.0, -4.0)]
LONG_PRINT, WIDE_PRINT, STRIDE, STRADDLE = 1.75, 1.25, 2.4, 0.42  # drawn long, as they are seen from low down
PADS = [  # forward, aside, half length, half width, in prints: the ball of the paw, then the toes
    (-0.13, 0.0, 0.22, 0.23), (-0.27, 0.16, 0.17, 0.17), (-0.27, -0.16, 0.17, 0.17),
    (0.33, 0.16, 0.155, 0.11), (0.33, -0.16, 0.155, 0.11), (0.10, 0.405, 0.14, 0.105), (0.10, -0.405, 0.14, 0.105)]


def footsteps():
    """x, z and bearing of each print along the trail, the paws to its left and right in turn."""
    knots = np.array(TRAIL)
    t = np.linspace(0, len(knots) - 1, 4000)
    i = np.clip(t.astype(int), 0, len(knots) - 2)
    f = (t - i)[:, None]
    before, after = knots[np.maximum(i - 1, 0)], knots[np.minimum(i + 2, len(knots) - 1)]
    here, there = knots[i], knots[i + 1]
    way = 0.5 * (2 * here + (there - before) * f + (2 * before - 5 * here + 4 * there - after) * f ** 2
                 + (3 * here - before - 3 * there + after) * f ** 3)
    walked = np.concatenate([[0], np.cumsum(np.hypot(*np.diff(way, axis=0).T))])
    for k, distance in enumerate(np.arange(1.25, walked[-1], STRIDE)):
        x, z = (np.interp(distance, walked, way[:, axis]) for axis in (0, 1))
        ahead = [np.interp(distance + 0.3, walked, way[:, axis]) for axis in (0, 1)]
        bearing = np.arctan2(ahead[1] - z, ahead[0] - x)
        side = STRADDLE * (1 if k % 2 else -1) * (k > 0)
        yield x - side * np.sin(bearing), z + side * np.cos(bearing), bearing


def paw_distance(dx, dz, bearing):
    """Distance from the outline of a paw print, negative inside."""
    forward = dx * np.cos(bearing) + dz * np.sin(bearing)
    aside = dz * np.cos(bearing) - dx * np.sin(bearing)
    nearest = 9.0
    for middle_f, middle_s, half_f, half_s in PADS:
        f, s = (forward - middle_f * LONG_PRINT), (aside - middle_s * WIDE_PRINT)
        a, b = half_f * LONG_PRINT, half_s * WIDE_PRINT
        reach = np.hypot(f / a, s / b)
        steep = np.hypot(f / a ** 2, s / b ** 2) / np.maximum(reach, 1e-3)
        nearest = np.minimum(nearest, (reach - 1) / np.maximum(steep, 0.5))
    return nearest


def trail(picture):
    """Golden paw prints from the start to the gate, sunk into the paving and worn with it."""
    for x, z, bearing in footsteps():
        # Set on the lattice of texels, so that all that look west look alike.
        x, z = np.round(np.array([x, z]) / TEXEL) * TEXEL
        part = near(x, z, 1.6)
        dx, dz = X[part] - x, Z[part] - z
        outline = paw_distance(dx, dz, bearing)
        inside = edge(outline, 0.7)
        toward_sun = edge(paw_distance(dx - 0.9 * TEXEL, dz + 0.9 * TEXEL, bearing), 0.7)
        from_sun = edge(paw_distance(dx + 0.9 * TEXEL, dz - 0.9 * TEXEL, bearing), 0.7)
        here = picture[part]
        tint(here, edge(outline - 1.6 * TEXEL, 1.0), 0.40)                        # the stone is cut away round it
        tint(here, np.clip(edge(paw_distance(dx + 2.6 * TEXEL, dz - 2.6 * TEXEL, bearing), 1.0)
                           - edge(outline - 1.8 * TEXEL, 1.0), 0, 1), 0.9)
        gold = blended(GOLD, GOLD_LIGHT, 0.25 + 0.25 * DAB[part])
        gold = gold * (1 - 0.16 * joints[part] + 0.04 * np.clip(GRIT[part], -2, 2))[..., None]
        gold = blended(gold, GOLD_DARK, np.clip(inside - toward_sun, 0, 1) * 0.75)     # the near rim's shadow
        gold = blended(gold, GOLD_LIGHT * 1.1, np.clip(inside - from_sun, 0, 1) * 0.7)  # the far rim in the light
        worn = smoothstep(1.0, 1.9, GRIT[part] + 0.7 * TUFT[part])
        over(here, gold, inside * (1 - 0.30 * worn))


SLAB = rgb("3a2a26")
ARROWS = [  # x, z, bearing in degrees (180: west), length, width: one each in the first views, near, middle and far
    (-1.92, -1.80, 165, 1.15, 1.6), (-1.05, -4.2, 170, 1.15, 1.25), (-2.5, 7.6, 180, 1.9, 3.1)]


def arrow_distance(dx, dz, bearing, length, width):
    """Distance from the outline of an arrow, negative inside; its middle is at (0, 0)."""
    forward = dx * np.cos(bearing) + dz * np.sin(bearing)
    aside = np.abs(dz * np.cos(bearing) - dx * np.sin(bearing))
    neck, slope = -0.06 * length, width / 2 / (0.56 * length)
    head = np.maximum((aside - (length / 2 - forward) * slope) / np.hypot(1, slope), neck - forward)
    shaft = np.maximum(aside - 0.21 * width, np.maximum(-length / 2 - forward, forward - neck - 0.2))
    return np.minimum(head, shaft)


def arrows(picture):
    """Golden arrows let into dark slabs: they lead to the left, round the burning tree."""
    for x, z, degrees, length, width in ARROWS:
        bearing = np.radians(degrees)
        part = near(x, z, length + width)
        dx, dz = X[part] - x, Z[part] - z
        outline = arrow_distance(dx, dz, bearing, length, width)
        here = picture[part]
        forward, aside = dx * np.cos(bearing) + dz * np.sin(bearing), dz * np.cos(bearing) - dx * np.sin(bearing)
        slab = np.maximum(np.abs(forward) - length / 2, np.abs(aside) - width / 2) - 2.5 * TEXEL
        over(here, JOINT * 0.85, edge(slab - TEXEL, 0.9))
        over(here, SLAB * (1 + 0.05 * np.clip(GRIT[part], -2, 2))[..., None], edge(slab, 0.9))
        gold = blended(GOLD, GOLD_LIGHT, 0.12 + 0.1 * DAB[part])
        from_sun = edge(arrow_distance(dx + TEXEL, dz - TEXEL, bearing, length, width), 0.7)
        inside = edge(outline, 0.7)
        gold = blended(gold, GOLD_LIGHT * 1.1, np.clip(inside - from_sun, 0, 1) * 0.7)
        over(here, gold, inside)


# ---- what lies on the other streets -----------------------------------------

def wheel_tracks(picture, z):
    """Two rows of long slabs, polished by wheels, on which the carts roll."""
    for k, offset in enumerate((-1.2, 1.2)):
        box = texels(CROSSINGS[1] + CROSSING_HALF, CROSSINGS[0] - CROSSING_HALF, z + offset - 0.45, z + offset + 0.45)
        lay_box(picture, box, 150 + k, stones=FLAGS, course=9, lengths=(22, 30))
        rut = slice(box[0].start + 4, box[0].start + 6), box[1]
        picture[rut] *= (0.62 + 0.08 * np.clip(GRIT[rut], -2, 2))[..., None]
        picture[box[0].stop, box[1]] *= 0.5


CLOTHS = [(rgb("b4473c"), rgb("ecdcb4")), (rgb("3f6a72"), rgb("e6d3a0")), (rgb("c98a34"), rgb("7c3b3a")),
          (rgb("6f7a3c"), rgb("eadfb8")), (rgb("7b4a68"), rgb("e2b56a"))]
STRIPE = 6                            # texels, breadth of the cloths' stripes


def market(picture, z):
    """Striped cloths along both kerbs."""
    rng = np.random.default_rng(SEED * 1000 + 152)
    for side in (-1, 1):
        x = CROSSINGS[1] + 9.0
        while x < CROSSINGS[0] - 10:
            wide, deep = rng.uniform(2.4, 3.4), rng.uniform(1.3, 1.7)
            middle = z + side * rng.uniform(2.4, 2.7)
            cloth(picture, texels(x, x + wide, middle - deep / 2, middle + deep / 2), rng)
            x += wide + rng.choice([1.2, 2.6, 6.5])


def cloth(picture, box, rng):
    rows, columns = box
    dark, light = CLOTHS[rng.integers(len(CLOTHS))]
    shadow = picture[rows.start + 1:rows.stop + 1, columns.start + 1:columns.stop + 2]
    shadow *= 0.5
    view = picture[box]
    height, width = view.shape[:2]
    stripe = ((np.arange(width) - width // 2 + STRIPE // 2) // STRIPE) % 2
    tone = 0.92 + 0.04 * np.clip(GRIT[box], -2, 2) + 0.06 * DAB[box]
    view[:] = np.where(stripe[None, :, None] == 0, dark, light) * tone[..., None]
    for hem in (view[:2], view[-2:], view[:, :2], view[:, -2:]):
        hem[:] = dark * 0.72


def street_beds(picture, z):
    """Long beds of flowers along both kerbs, a way left open before every door."""
    rng = np.random.default_rng(SEED * 1000 + 154)
    for side in (-1, 1):
        doors = [x - side * DOORS[kind] for kind, x, row, _ in houses() if row == z + side * 11]
        x = CROSSINGS[1] + 7.0
        while x < CROSSINGS[0] - 9:
            wide = rng.uniform(2.6, 4.2)
            if min(abs(x + wide / 2 - door) for door in doors) > wide / 2 + 0.9:
                bed(picture, texels(x, x + wide, *sorted((z + side * 2.2, z + side * 3.45))), rng)
                x += wide + 0.6
            x += 0.5


SKY_ROSE, GLINT = rgb("dc8f7c"), rgb("fff2cf")   # what water shows


def well(picture, x, z):
    """A well's mouth, level with the street, and the wet ring that the buckets leave."""
    part = near(x, z, 5)
    away = np.hypot(X[part] - x, Z[part] - z)
    wet = smoothstep(3.4, 2.5, away + 0.5 * DAB[part] + 0.3 * PATCH[part])
    tint(picture[part], wet, 0.56)
    over(picture[part], SKY_ROSE, wet * smoothstep(1.2, 1.7, GRIT[part] + 0.6 * TUFT[part]) * (1 - joints[part]) * 0.8)
    kerb_ring(picture, x, z, 1.9, 0.8, 14, 156)
    water = edge(away - 1.1, 0.9)
    over(picture[part], rgb("2c3046"), water)
    over(picture[part], SKY_ROSE * 0.9, water * edge(np.abs(away - 0.7) - 0.13, 0.9) * (Z[part] < z - 0.1) * 0.7)
    over(picture[part], GLINT, groove(np.hypot((X[part] - x + 0.3) / 1.6, Z[part] - z - 0.3), 1.6))


def wear(picture):
    """What years have left on the streets: stains and blown leaves."""
    street_at = np.min([np.abs(Z - z) for z in STREETS], axis=0)
    paved = smoothstep(STREET_HALF, STREET_HALF - 1.0, street_at) * (X > CROSSINGS[1]) * (X < CROSSINGS[0])
    tint(picture, paved * smoothstep(0.0, 0.8, PATCH + 0.3 * DAB), 0.90)
    tint(picture, paved * smoothstep(0.1, 0.8, -PATCH + 0.3 * DAB), 1.07)
    over(picture, LEAVES, paved * smoothstep(STREET_HALF - 2.2, STREET_HALF - 0.6, street_at) *
         smoothstep(1.5, 1.9, GRIT + 1.2 * TUFT + 0.4 * PATCH) * 0.85)


def furnish(picture):
    """Each street gets its own: carts, the market, flowers, wells; the main street its border."""
    wheel_tracks(picture, STREETS[1])
    market(picture, STREETS[2])
    street_beds(picture, STREETS[4])
    for x in (-22.0, 26.0, 66.0):
        well(picture, x, STREETS[5])


# ---- yards ----------------------------------------------------------------

BED_DEPTH = 0.94                      # of the beds at the foot of the walls
STEP_WIDE, STEP_DEEP = 15, 10         # texels, at every door
KERB_STONE = 9                        # texels, length of a stone of the low kerbs


def bed(picture, box, rng, kerb=2):
    """A bed set texel by texel: a low kerb, soil in its shadow, and bushes in flower."""
    kerb_frame(picture, box, kerb)
    inner = within(box, kerb)
    view = picture[inner]
    height, width = view.shape[:2]
    view[:] = SOIL * (1 + 0.10 * np.clip(GRIT[inner], -2, 2))[..., None]
    view[0] *= 0.6
    view[:, 0] *= 0.7
    size = int(np.clip(min(height, width), 5, 9))
    first_i, first_j = (height % size) // 2, (width % (size + 1)) // 2
    colours = rng.permutation(len(BED_BLOOMS))[:2]
    for i in range(first_i, height - size + 1, size):
        for k, j in enumerate(range(first_j, width - size + 1, size + 1)):
            bush(view[i:i + size, j:j + size + 1], BED_BLOOMS[colours[(i // size + k) % 2]], rng)


def within(box, rim):
    """A rectangle of texels without its rim."""
    return tuple(slice(side.start + rim, side.stop - rim) for side in box)


def bush(view, bloom, rng):
    """A round bush, lit from the upper left, with one wide head in flower."""
    height, width = view.shape[:2]
    i, j = np.mgrid[0:height, 0:width]
    reach = height / 2
    body = np.hypot(i - reach + 0.5, j - reach + 0.5) < reach + 0.2
    shadow = np.roll(body, (1, 1), (0, 1)) & ~body
    view[shadow] *= 0.5
    leaf = blended(LEAF, LEAF_LIGHT, np.clip(0.75 - 0.18 * (i + j - 2 * reach + 1), 0, 1))
    leaf *= (1 + 0.08 * rng.standard_normal((height, width)))[..., None]
    view[body] = leaf[body]
    away = np.hypot(i - reach + 1, j - reach + 1)
    view[away < 0.30 * height + 0.9] *= 0.62
    head = away < 0.30 * height
    view[head] = (bloom * np.clip(1.06 - 0.07 * (i + j - 2 * reach + 2), 0.7, 1.1)[..., None])[head]


def kerb_frame(picture, box, wide=2):
    """A kerb some texels wide round a rectangle, lit from the sun's side."""
    view = picture[box]
    height, width = view.shape[:2]
    i, j = np.mgrid[0:height, 0:width]
    from_edge = np.minimum(np.minimum(i, height - 1 - i), np.minimum(j, width - 1 - j))
    along = np.where(np.minimum(i, height - 1 - i) < wide, j, i)
    tone = 0.94 + 0.04 * (along // KERB_STONE * 7919 % 5) + 0.05 * np.clip(GRIT[box], -2, 2)
    tone += 0.14 * ((i == 0) | (j == 0)) - 0.25 * ((i == height - 1) | (j == width - 1))
    tone = np.where(along % KERB_STONE == KERB_STONE - 1, 0.55, tone)
    frame = from_edge < wide
    view[frame] = (STONE_LIGHT * tone[..., None])[frame]
    rows, columns = box
    for beside in ((rows.stop, columns), (rows.start - 1, columns), (rows, columns.stop), (rows, columns.start - 1)):
        picture[beside] *= 0.5


def lawn(picture, box):
    view = picture[box]
    view[:] = blended(GRASS, GRASS_LIGHT, smoothstep(-0.2, 0.5, PATCH[box] + 0.4 * DAB[box]))
    tint(view, smoothstep(0.3, 0.7, BLADES[box]), 1.32)
    tint(view, smoothstep(0.3, 0.7, -BLADES[box]), 0.72)
    daisies = GRIT[box] > 2.0
    view[daisies] = BLOOMS[3]
    view[0] *= 0.7


def vegetables(picture, box, rng):
    """Stripes of soil and of green, each five texels broad."""
    view = picture[box]
    i, j = np.mgrid[0:view.shape[0], 0:view.shape[1]]
    tone = np.array([1.16, 1.05, 1.0, 0.9, 0.66])[i % 5] + 0.06 * np.clip(GRIT[box], -2, 2)
    rows = np.array([HERB, rgb("7c9a52"), GRASS_LIGHT])[rng.integers(3, size=view.shape[0] // 5 + 1)]
    view[:] = np.where(((i // 5) % 2 == 0)[..., None], rows[i // 5], SOIL) * tone[..., None]


def yards(picture):
    """Pale flags along every row, bright enough for the alleys' shade; then each house's foot and plot."""
    for k, z in enumerate(ROWS):
        lay_box(picture, texels(GROUPS[-1] - 18.4, GROUPS[0] + 2.4, z - 7.0, z + 7.0), 160 + k, stones=FLAGS,
                moss=-0.1, course=10, lengths=(12, 19))
        for x in GROUPS:
            for low_x, high_x in ((-2.85, -1.6), (-9.05, -7.15), (-19.4, -17.05)):
                picture[texels(x + low_x, x + high_x, z - 4.6, z + 4.6)] *= 1.36
            hedged = texels(x - 19.3, x - 17.15, z - 4.3, z + 4.3)   # the alley that the hall's hurdles close
            kerb_frame(picture, hedged)
            lawn(picture, within(hedged, 2))
    rng = np.random.default_rng(SEED * 1000 + 42)
    for kind, x, z, _ in houses():
        for side in (-1, 1):
            plot(picture, rng, kind, x, z, side)
            house_foot(picture, rng, kind, x, z, side)


def plot(picture, rng, kind, x, z, side):
    """What lies between a house's bed and the kerb of its street: the path to the door, and
    beside it a lawn, vegetables or flowers, but for the hall, which keeps a paved forecourt."""
    low, high, deep = WALLS[kind]
    near_z, far_z = z + side * (deep + BED_DEPTH + 0.3), z + side * 6.55
    door = x + side * DOORS[kind]
    choice = rng.integers(3)
    for low_x, high_x in ((x + low + 0.1, door - 0.8), (door + 0.8, x + high - 0.1)):
        if high_x - low_x < 0.9 or kind == 2:
            continue
        box = texels(low_x, high_x, *sorted((near_z, far_z)))
        if choice == 2:
            bed(picture, box, rng)
            continue
        kerb_frame(picture, box)
        if choice == 0:
            lawn(picture, within(box, 2))
        else:
            vegetables(picture, within(box, 2), rng)
    path = texels(door - 0.6, door + 0.6, *sorted((z + side * deep, z + side * 6.6)))
    lay_box(picture, path, 168 + kind, stones=[STONE_LIGHT * 0.82, STONE_LIGHT * 0.75], moss=-0.3, course=8,
            lengths=(14, 14))


def house_foot(picture, rng, kind, x, z, side):
    """A flower bed along the front wall, with steps in it at the door."""
    low, high, deep = WALLS[kind]
    reach = sorted((z + side * (deep - 0.2), z + side * (deep + BED_DEPTH)))  # its back lies under the wall
    bed(picture, texels(x + low, x + high, *reach), rng, kerb=3)
    column = int(np.round((x + side * DOORS[kind] + HALF) / TEXEL)) - STEP_WIDE // 2
    row = int(np.round((HALF - z - side * deep) / TEXEL))
    rows = slice(row - STEP_DEEP, row) if side > 0 else slice(row, row + STEP_DEEP)
    steps = picture[rows, column:column + STEP_WIDE][::side]  # its first row is now the outermost
    grain = (1 + 0.05 * np.clip(GRIT[rows, column:column + STEP_WIDE], -2, 2))[..., None]
    steps[:] = STONE_LIGHT * 0.84 * grain
    steps[0], steps[1] = JOINT * 0.45, STONE_LIGHT * 1.02
    steps[4:, 2:-2] = (STONE_LIGHT * grain)[4:, 2:-2]
    steps[4, 2:-2], steps[5, 2:-2] = JOINT * 0.5, STONE_LIGHT * 1.12
    steps[:, -1] *= 0.6
    steps[:, 0] *= 1.1


def shade_footprints(picture):
    """Contact shadows: the ground darkens towards every wall."""
    for kind, x, z in ((k, footprint_x, z) for k, footprint_x, z, _ in houses()):
        low, high, deep = WALLS[kind]
        part = near(x, z, 10)
        distance = box_distance(x + low, x + high, z - deep, z + deep, part)
        tint(picture[part], np.exp(-np.maximum(distance, 0) / 0.30), 0.74)
    for box in CASTLE:
        distance = box_distance(*box)
        moss = np.exp(-np.maximum(distance, 0) / 1.2) * smoothstep(-0.4, 0.5, PATCH + DAB * 0.5)
        over(picture, MOSS * 0.8, moss * 0.6)
        tint(picture, np.exp(-np.maximum(distance, 0) / 1.3), 0.62)
        over(picture, STONE * 0.8 * (1 + 0.06 * GRIT)[..., None], edge(distance - 0.42, 0.9))   # a plinth
        tint(picture, groove(distance - 0.46, 2.4), 0.5)


def burns(picture):
    """The burnt trees stand in round pits with kerbs, in ash that still glows."""
    for x, z in TREES:
        part = near(x, z, 5)
        here = picture[part]
        away = np.hypot(X[part] - x, Z[part] - z)
        soot = smoothstep(3.4, 1.6, away + 0.5 * PATCH[part] + 0.5 * DAB[part])
        tint(here, soot, 0.72)
        pit = edge(away - TREE_PIT, 0.9)
        over(here, blended(SOOT, ASH * 0.8, smoothstep(0.0, 0.8, DAB[part] + 0.4 * GRIT[part])), pit)
        embers = smoothstep(0.9, 1.5, GRIT[part] + DAB[part]) * pit
        over(here, rgb("ff9a3a"), embers * 0.9)
        over(here, rgb("c25a1e"), np.exp(-(away / 0.8) ** 2) * 0.4)
        kerb_ring(picture, x, z, TREE_PIT + 0.46, 0.50, 11, 158)
        tint(here, groove(away - TREE_PIT - 0.56, 2.4), 0.45)


def dusk(picture):
    """Darker ground with less blue where the panels lie in the first and the last views."""
    main = smoothstep(0.8, -0.2, main_edge()) * (X > GATE_X) * (X < CROSSINGS[0])
    start = smoothstep(10.0, 7.0, np.hypot(X - 2.0, Z - 2.5))
    court = smoothstep(COURT_RADIUS + 1, COURT_RADIUS - 2, np.hypot(X - GATE_X, Z)) * (X > GATE_X - 1)
    where = np.maximum(np.maximum(main, start), court)[..., None]
    picture *= (1 - where * (1 - DUSK)).astype(np.float32)


def glow(picture):
    """Light of windows and door lamps on the ground before the houses, of the fires round the trees."""
    for kind, x, z, (low_x, high_x, low_z, high_z) in houses():
        part = near(x, z, 10)
        for side, front in ((-1, low_z - 0.9), (1, high_z + 0.9)):
            pool = np.exp(-((X[part] - (low_x + high_x) / 2) / (0.55 * (high_x - low_x))) ** 2
                          - ((Z[part] - front) / 1.9) ** 2)
            wall = z + side * WALLS[kind][2]
            across, out = X[part] - x, (Z[part] - wall) * side
            lamp = 0.4 * np.exp(-((across - side * DOORS[kind]) / 1.5) ** 2 - ((out - 0.7) / 1.3) ** 2)
            if kind == 2:  # and the hall's big window
                lamp += 0.35 * np.exp(-((across + side * 3.05) / 0.9) ** 2 - ((out - 0.8) / 1.1) ** 2)
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
    apron(picture)
    castle_road(picture)
    wear(picture)
    warm_border(picture)
    furnish(picture)
    square(picture)
    burns(picture)
    shade_footprints(picture)
    dusk(picture)
    trail(picture)
    arrows(picture)
    glow(picture)
    tint(picture, smoothstep(0.1, 0.9, DRIFT), 1.07)
    far_haze(picture)
    write_bmp("stone.bmp", picture)


if __name__ == "__main__":
    main()
