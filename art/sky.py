"""The dusk sky: six pictures of one box, painted by direction.

Every texel is turned into the direction in which the eye in the middle of the
town sees it, and its colour depends on that direction alone, so the pictures
meet without a seam. Angles are in degrees; azimuth 0 looks along +x, 90 along +z.

A player at the edge of the world sees the wall there at a grazing angle, its far end
squeezed into a crease. What is bright or upright therefore stands in the middles of
the walls; their corners have only haze, long low hills and hedges.
"""
import sys
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parent))
from shared import SEED, blur, mix, rgb, smoothstep, write_bmp  # noqa: E402

SIZES = {"sky": (512, 512), "floor": (16, 16)}  # columns, rows; the floor is never in view
SIDE_SIZE = (2048, 512)   # a wall is twice as wide as it is tall
HALF = 100.0              # half the box's width
LOW, HIGH = -45.0, 55.0   # floor and ceiling of the box
EYE = 1.8
SUN = np.array([-45.0, 40.0, 40.0]) / np.linalg.norm([-45.0, 40.0, 40.0])
SUN_AZIMUTH = np.degrees(np.arctan2(40.0, -45.0))
MOON_AZIMUTH, MOON_HEIGHT, MOON_RADIUS = -16.7, 11.0, 1.25  # where the faint second light comes from
EDGE = 0.07               # degrees over which a drawn edge softens: about a texel
STARS = 900
REACH = 8                 # texels round a star within which its light is drawn

# Elevation -> colour, on the sun's side, square to it, and on the far side.
# fmt: off
HEIGHTS = [-90, 0, 3, 8, 15, 26, 42, 90]
SUNWARD = ["6d3a2e", "f2a24c", "e67c42", "c4524b", "833d5b", "4f3163", "2b2757", "171a40"]
ACROSS  = ["3a2a3c", "a8606a", "985670", "764a72", "54406f", "352f60", "20234e", "14183c"]
FARSIDE = ["1c1f38", "3b3a64", "47416c", "403a68", "2b2d58", "1b2148", "12183a", "0f1434"]
# fmt: on


# ---- directions ---------------------------------------------------------

def size_of(name):
    return SIZES.get(name, SIDE_SIZE)


def face_points(name, across=0.5, down=0.5):
    """World positions of a picture's texels, (rows, columns, 3); row 0 is t = 1.

    (across, down) is the place within each texel, its middle if not given.
    """
    columns, rows = size_of(name)
    s, t = np.meshgrid((np.arange(columns) + across) / columns, 1 - (np.arange(rows) + down) / rows)
    across, back, up = 2 * HALF * s - HALF, HALF - 2 * HALF * s, LOW + (HIGH - LOW) * t
    flat = np.full_like(s, HALF)
    x, y, z = {
        "sky": (HALF - 2 * HALF * t, np.full_like(s, HIGH), across),
        "floor": (back, np.full_like(s, LOW), 2 * HALF * t - HALF),
        "north": (back, up, flat),
        "south": (across, up, -flat),
        "west": (flat, up, across),
        "east": (-flat, up, back),
    }[name]
    return np.stack([x, y, z], axis=-1)


def texel_of(name, direction):
    """(column, row) where a direction meets a face's plane, or None behind it."""
    axis, side = {"sky": (1, 1), "floor": (1, -1), "north": (2, 1), "south": (2, -1),
                  "west": (0, 1), "east": (0, -1)}[name]
    reach = {"sky": HIGH - EYE, "floor": EYE - LOW}.get(name, HALF)
    if direction[axis] * side <= 1e-6:
        return None
    x, y, z = direction * (reach / abs(direction[axis]))
    u = {"sky": z, "floor": -x, "north": -x, "south": x, "west": z, "east": -z}[name]
    s = (u + HALF) / (2 * HALF)
    t = {"sky": (HALF - x) / (2 * HALF), "floor": (z + HALF) / (2 * HALF)}.get(
        name, (y + EYE - LOW) / (HIGH - LOW))
    columns, rows = size_of(name)
    return s * columns - 0.5, (1 - t) * rows - 0.5


def direction_of(azimuth, height):
    a, h = np.radians(azimuth), np.radians(height)
    return np.array([np.cos(h) * np.cos(a), np.sin(h), np.cos(h) * np.sin(a)])


def turn(azimuth, centre):
    """Signed difference of two azimuths, -180..180."""
    return (azimuth - centre + 180.0) % 360.0 - 180.0


def calm(azimuth, first=30.0, full=17.0):
    """1 about the box's corners, 0 farther than `first` degrees from them."""
    return smoothstep(first, full, np.abs(turn(azimuth, 45.0 + 90.0 * np.round((azimuth - 45.0) / 90.0))))


def level(azimuth):
    """How much lower than in the middle of a wall that is seen which lies level along it, and lower
    still about the corners, where every slope kinks."""
    return np.cos(np.radians(turn(azimuth, 90.0 * np.round(azimuth / 90.0)))) * (1 - 0.45 * calm(azimuth, 40.0, 15.0))


# ---- noise --------------------------------------------------------------

class Noise3:
    """Gradient noise in space, about -1..1, as a sum of octaves."""

    def __init__(self, seed):
        rng = np.random.default_rng(SEED * 1000 + seed)
        self.order = np.tile(rng.permutation(256).astype(np.int32), 3)
        ball = rng.normal(size=(256, 3))
        self.slope = (ball / np.linalg.norm(ball, axis=1, keepdims=True)).astype(np.float32)

    def octave(self, p):
        cell = np.floor(p).astype(np.int32)
        f = (p - cell).astype(np.float32)
        w = f * f * f * (f * (f * 6 - 15) + 10)
        cell &= 255
        total = np.zeros(p.shape[:-1], np.float32)
        for corner in range(8):
            bit = np.array([corner & 1, corner >> 1 & 1, corner >> 2 & 1])
            c = cell + bit
            index = self.order[self.order[self.order[c[..., 0]] + c[..., 1]] + c[..., 2]]
            weight = np.prod(np.where(bit, w, 1 - w), axis=-1)
            total += weight * np.einsum("...k,...k", self.slope[index], f - bit.astype(np.float32))
        return total * 1.6

    def __call__(self, p, octaves):
        total, strength = 0.0, 1.0
        for _ in range(octaves):
            total = total + strength * self.octave(p)
            p, strength = p * 2.03 + 17.3, strength * 0.5
        return total


def skyline(azimuth, seed, lowest, highest, roughness):
    """Height profile round the whole horizon, about -1..1, without a start or end."""
    rng = np.random.default_rng(SEED * 1000 + seed)
    total = np.zeros_like(azimuth)
    for n in range(lowest, highest):
        wave = np.sin(np.radians(azimuth) * n + rng.random() * 6.283)
        total += wave * (lowest / n) ** roughness * rng.normal()
    return np.tanh(total / 2.2)


# ---- the layers, back to front -------------------------------------------

class View:
    """The directions of some texels and what the layers keep asking about them."""

    def __init__(self, points):
        d = points - np.array([0.0, EYE, 0.0])
        self.direction = (d / np.linalg.norm(d, axis=-1, keepdims=True)).astype(np.float32)
        self.height = np.degrees(np.arcsin(self.direction[..., 1]))
        self.azimuth = np.degrees(np.arctan2(self.direction[..., 2], self.direction[..., 0]))
        self.sunward = np.cos(np.radians(self.azimuth - SUN_AZIMUTH))  # 1 towards the sun .. -1 away

    def only(self, mask):
        part = object.__new__(View)
        for name, values in vars(self).items():
            setattr(part, name, values[mask])
        return part


def ramp(heights, colours, height):
    table = np.array([rgb(c) for c in colours])
    return np.stack([np.interp(height, heights, table[:, i]) for i in range(3)], axis=-1)


def blend(a, b, t):
    return a + (b - a) * np.asarray(t)[..., None]


def by_side(view, sunward, across, farside):
    """Blends three pictures or colours by how far a direction turns from the sun."""
    near = smoothstep(0.0, 1.0, view.sunward)
    far = smoothstep(0.1, -0.9, view.sunward)
    return blend(blend(across, sunward, near), farside, far)


def open_sky(view):
    # The warm band reaches higher straight above the sunken sun than beside it.
    lifted = view.height / (1.0 + 0.25 * np.clip(view.sunward, 0, 1) ** 6)
    return by_side(view, *(ramp(HEIGHTS, c, lifted) for c in (SUNWARD, ACROSS, FARSIDE)))


def moon(view):
    """Light that the moon and its halo add, and how much of the disc is there."""
    near = np.degrees(np.arccos(np.clip(view.direction @ direction_of(MOON_AZIMUTH, MOON_HEIGHT), -1, 1)))
    side = turn(view.azimuth, MOON_AZIMUTH) * np.cos(np.radians(MOON_HEIGHT))
    up = view.height - MOON_HEIGHT
    disc = smoothstep(MOON_RADIUS + EDGE, MOON_RADIUS - EDGE, near)
    seas = sum(0.16 * np.exp(-(((side - x) / w) ** 2 + ((up - y) / w) ** 2))
               for x, y, w in ((-0.35, 0.4, 0.42), (0.3, 0.1, 0.36), (-0.1, -0.5, 0.3), (0.55, -0.4, 0.22)))
    face = rgb("f4e3bd") * (0.96 - seas)[..., None]
    halo = np.exp(-near / 1.6) * 0.30 + np.exp(-near / 7.0) * 0.16
    return disc, face, halo[..., None] * rgb("c9b8c8")


def cloud_colours(view):
    """Lit edge, body and shaded underside of a cloud by its place in the sky."""
    low = smoothstep(22.0, 3.0, view.height)
    lit = by_side(view, blend(rgb("bd7570"), rgb("ffc06a"), low), blend(rgb("8f5f7e"), rgb("d08478"), low),
                  blend(rgb("4a4673"), rgb("7a6288"), low))
    body = by_side(view, blend(rgb("744a6b"), rgb("c0604f"), low), blend(rgb("4a3c69"), rgb("7a4c6c"), low),
                   blend(rgb("262a55"), rgb("3c3a66"), low))
    shade = by_side(view, blend(rgb("42345f"), rgb("7b3f54"), low), blend(rgb("302c57"), rgb("4d385f"), low),
                    blend(rgb("191e44"), rgb("272a52"), low))
    return lit, body, shade


def paint_cloud(sky, view, cover, light):
    """A cloud in three tones whose borders stay soft, like broad brush strokes. None crosses a
    corner of the box, where its lines would kink; behind the castle they reach farthest."""
    behind = np.abs(turn(view.azimuth, 180.0)) < 45.0
    still = np.where(behind, calm(view.azimuth, 34.0, 14.0), calm(view.azimuth, 42.0, 24.0))
    cover = cover * (1 - still * smoothstep(52.0, 30.0, view.height))
    lit, body, shade = cloud_colours(view)
    tone = blend(shade, body, smoothstep(-0.32, 0.02, light))
    tone = blend(tone, lit, smoothstep(0.05, 0.5, light))
    return blend(sky, tone, cover)


def high_clouds(sky, view, noise):
    """A broken sheet on a shell high above, the same seen overhead and at the sides."""
    ground = 9.0  # radius of the world in heights of the sheet
    up = view.direction[..., 1:2]
    reach = np.sqrt(ground * ground * up * up + 2 * ground + 1) - ground * up
    p = view.direction * reach * np.array([0.62, 1.0, 0.62], np.float32)
    p = p + 0.45 * noise.octave(p * 0.9 + 40.0)[..., None]
    thick = noise(p * np.array([1.0, 1.0, 1.5], np.float32), 5)
    toward = noise(p * np.array([1.0, 1.0, 1.5], np.float32) + (SUN * 0.22).astype(np.float32), 4)
    cover = smoothstep(0.10, 0.62, thick) * smoothstep(2.0, 12.0, view.height) * 0.85
    return paint_cloud(sky, view, cover, (thick - toward) * 1.5 - 0.10 + 0.25 * smoothstep(0.5, 0.15, thick))


def cloud_banks(sky, view, noise, base, top, wide, tall, amount):
    """Long heaped clouds with flat undersides between two heights above the horizon."""
    band = (view.height > base - 4) & (view.height < top + 8)
    v = view.only(band)
    stretch = np.array([wide, tall, wide], np.float32)
    p = v.direction * stretch
    p = p + 0.30 * noise.octave(p * 0.7 + 11.0)[..., None]
    thick = noise(p, 5)
    lightwards = (SUN * np.array([1.0, 2.0, 1.0])).astype(np.float32)
    toward = noise(p + lightwards * 0.16, 4)
    middle = (v.height - base) / (top - base)
    room = smoothstep(-0.35, 0.12, middle) * smoothstep(1.35, 0.2, middle)
    body = thick + (room - 1.0) * 1.1 + amount
    cover = smoothstep(0.0, 0.20, body)
    light = (thick - toward) * 1.3 + 0.42 * (middle - 0.55) + 0.3 * smoothstep(0.28, 0.0, body)
    result = sky.copy()
    result[band] = paint_cloud(sky[band], v, cover * 0.92, light)
    return result


# azimuth, lean (degrees sideways per degree up), height of the smoke, width
PLUMES = [(2, 0.45, 15, 1.0), (83, 0.40, 13, 0.8), (176, 0.35, 13, 0.8), (262, -0.45, 17, 1.1), (277, -0.30, 11, 0.7)]


def smoke(sky, view, noise):
    """Columns rising where the country beyond the town burns, and the glow at their feet."""
    sky = sky.copy()
    for azimuth, lean, tall, wide in PLUMES:
        near = (np.abs(turn(view.azimuth, azimuth)) < 25) & (view.height > -1) & (view.height < tall + 6)
        v = view.only(near)
        rise = np.clip((v.height - 0.5) / tall, 0, 1.3)
        billow = noise(v.direction * 26 + azimuth, 3)
        path = lean * tall * rise ** 1.6 + billow * (0.4 + 2.2 * rise)
        spread = wide * (0.45 + 2.4 * rise)
        body = np.exp(-(turn(v.azimuth, azimuth) - path) ** 2 / spread ** 2)
        body *= smoothstep(1.25, 0.25, rise) * (0.75 + 0.45 * billow) * 0.8
        colour = by_side(v, rgb("6a3c48"), rgb("43334f"), rgb("232744"))
        glow = np.exp(-(turn(v.azimuth, azimuth) / (1.6 * wide)) ** 2 - np.clip(v.height, 0, 90) / 1.7)
        painted = blend(sky[near], colour, np.clip(body, 0, 1))
        sky[near] = painted + glow[..., None] * np.array([0.60, 0.24, 0.05])
    return sky


# ---- the country: one panorama round the horizon --------------------------

STEP = 0.025                    # degrees from pixel to pixel, finer than any texel of the walls
FOOT, HEAD = -3.0, 13.0         # heights between which the country is drawn
COLUMNS, LINES = round(360 / STEP), round((HEAD - FOOT) / STEP)
AZIMUTH = (np.arange(COLUMNS) + 0.5) * STEP
HEIGHT = HEAD - (np.arange(LINES) + 0.5) * STEP


class Bearing:
    """What by_side asks of a direction, for azimuths alone."""

    def __init__(self, azimuth):
        self.sunward = np.cos(np.radians(np.asarray(azimuth, float) - SUN_AZIMUTH))


def sunny_side(azimuth):
    """Which side of a thing the sun lights: 1 that of greater azimuth, -1 the other, 0 neither."""
    away = turn(SUN_AZIMUTH, azimuth)
    return np.sign(away) * smoothstep(0, 30, np.abs(away)) * smoothstep(180, 150, np.abs(away))


def texture(across, up, octaves, seed):
    """Soft noise on the panorama, about -1..1, without a seam; lumps in degrees."""
    rng = np.random.default_rng(SEED * 1000 + 300 + seed)
    total, weight = np.zeros((LINES, COLUMNS), np.float32), 0.0
    for octave in range(octaves):
        columns, rows = round(360 / across * 2 ** octave), round((HEAD - FOOT) / up * 2 ** octave) + 2
        lattice = rng.random((rows, columns)).astype(np.float32) * 2 - 1
        x, y = np.arange(COLUMNS) / COLUMNS * columns, np.arange(LINES) / LINES * (rows - 2)
        x0, y0 = x.astype(int), y.astype(int)
        fx, fy = (x - x0).astype(np.float32), (y - y0).astype(np.float32)[:, None]
        fx, fy = fx * fx * (3 - 2 * fx), fy * fy * (3 - 2 * fy)
        left, right = lattice[:, x0 % columns], lattice[:, (x0 + 1) % columns]
        level = left + (right - left) * fx
        total += (level[y0] * (1 - fy) + level[y0 + 1] * fy) * 0.6 ** octave
        weight += 0.6 ** octave
    return total / weight


class Panorama:
    """Colours, already multiplied by how much they cover of the sky behind them."""

    def __init__(self):
        self.colour = np.zeros((LINES, COLUMNS, 3), np.float32)
        self.cover = np.zeros((LINES, COLUMNS), np.float32)

    def patch(self, azimuth, reach, low, high):
        """A place to draw on: its rows and columns, and x, y in degrees from (azimuth, 0)."""
        first, last = int(np.floor((azimuth - reach) / STEP)), int(np.ceil((azimuth + reach) / STEP))
        columns = np.arange(first, last + 1)
        top = max(0, int((HEAD - high) / STEP))
        rows = np.arange(top, min(LINES, int((HEAD - low) / STEP) + 1))
        x, y = np.meshgrid((columns + 0.5) * STEP - azimuth, HEAD - (rows + 0.5) * STEP)
        return np.ix_(rows, columns % COLUMNS), x, y

    def paint(self, place, colour, mask):
        mask = np.clip(mask, 0, 1).astype(np.float32)
        self.colour[place] = blend(self.colour[place], np.asarray(colour, np.float32), mask)
        self.cover[place] += (1 - self.cover[place]) * mask

    def shine(self, azimuth, height, size, colour, tall=1.0):
        """Light added round a place."""
        place, x, y = self.patch(azimuth, 3.5 * size, height - 3.5 * size * tall, height + 3.5 * size * tall)
        light = np.exp(-(x / size) ** 2 - ((y - height) / (size * tall)) ** 2)
        self.colour[place] += (light[..., None] * colour).astype(np.float32)

    def seen(self, view):
        """Colour and cover in some directions."""
        column = (view.azimuth / STEP).astype(int) % COLUMNS
        row = np.clip((HEAD - view.height) / STEP, 0, LINES - 1).astype(int)
        return self.colour[row, column], self.cover[row, column]


def cut(distance):
    """1 inside a shape (distance < 0), 0 outside, with a rim of about a pixel."""
    return np.clip(0.5 - distance / STEP, 0, 1)


def block(x, y, left, right, low, high):
    """How far outside a rectangle, negative inside."""
    return np.maximum(np.maximum(left - x, x - right), np.maximum(low - y, y - high))


def ridge(panorama, top, shade):
    """Everything below the line `top` (a height per column); shade(rows, down) gives its
    colours, `down` being degrees below the line."""
    rows = slice(max(0, int((HEAD - top.max()) / STEP) - 2), LINES)
    down = top[None, :] - HEIGHT[rows, None]
    panorama.paint((rows, slice(None)), shade(rows, down), cut(-down))


def far_ridge(azimuth):
    crests = 1.0 - np.abs(skyline(azimuth, 61, 7, 34, 0.8))     # pointed summits
    high = smoothstep(-0.7, 0.7, skyline(azimuth, 62, 2, 5, 1))
    rough = (0.4 + 1.5 * crests) * high + 0.10 * skyline(azimuth, 63, 40, 110, 0.5)
    return (2.6 + (1.6 * skyline(azimuth, 1, 3, 20, 1.0) + rough) * (1 - 0.85 * calm(azimuth))) * level(azimuth)


def back_ridge(azimuth):
    return (1.9 + 1.2 * skyline(azimuth, 6, 4, 40, 1.0) * (1 - 0.8 * calm(azimuth))) * level(azimuth)


def town_ridge(azimuth):
    return (1.15 + 0.85 * skyline(azimuth, 2, 4, 40, 1.15) * (1 - 0.8 * calm(azimuth))) * level(azimuth)


def near_ridge(azimuth):
    return (0.35 + 0.5 * skyline(azimuth, 3, 5, 30, 1.1) * (1 - 0.7 * calm(azimuth))) * level(azimuth)


def at(line, azimuth):
    return float(line(np.array([float(azimuth)]))[0])


def treeline(azimuth, seed, size):
    """Heads of trees in clumps along a ridge, round or pointed: how far they rise over it."""
    heads = np.zeros_like(azimuth)
    for layer in range(4):
        rng = np.random.default_rng(SEED * 1000 + seed + layer)
        count = round(360 / size * rng.uniform(0.8, 1.1))
        tall, shift = rng.random(count) ** 1.6, rng.uniform(-0.3, 0.3, count)
        pointed = rng.random(count) < 0.6
        place = (azimuth / 360.0) % 1.0 * count + layer * 0.29
        tree = np.floor(place).astype(int) % count
        away = np.clip(np.abs(place - np.floor(place) - 0.5 + shift[tree] * 0.3) * 2.2, 0, 1)
        steps = 0.10 * (np.ceil(away * 4) - away * 4) * away        # branches of a pointed one
        shape = np.where(pointed[tree], (1 - away) * 1.5 + steps, np.sqrt(1 - away ** 2))
        heads = np.maximum(heads, shape * (0.25 + tall[tree]) * size * 0.75)
    grown = smoothstep(-0.35, 0.3, skyline(azimuth, seed + 5, 4, 30, 0.7))
    return heads * grown * (1 - 0.85 * calm(azimuth))


def mountains(panorama):
    """Crests with a lit and a shaded side to every gully, hazier towards their feet."""
    side = Bearing(AZIMUTH)
    haze = by_side(side, rgb("e5884a"), rgb("96586a"), rgb("45436f"))
    dark = by_side(side, rgb("5a2f45"), rgb("3b2b4e"), rgb("1b2042"))
    lit = by_side(side, rgb("f3a45c"), rgb("b87079"), rgb("55528a"))
    line = far_ridge(AZIMUTH)
    slope = np.gradient(blur(line[None], 6)[0], STEP)
    facing = sunny_side(AZIMUTH)
    facing = np.where(np.abs(facing) < 0.35, 0.35, facing)
    sway = texture(1.6, 0.8, 3, 1)

    def shade(rows, down):
        # A summit's spurs run down and apart: every place is lit like the crest it hangs from.
        crest = ((AZIMUTH[None, :] + down * 0.55 * np.tanh(slope * 2)[None, :] + 0.5 * sway[rows]) / STEP).astype(int)
        light = slope[crest % COLUMNS] * facing[None, :] + 0.16 * sway[rows]
        body = blend(haze[None], dark[None], np.clip(0.50 - 0.08 * down, 0.2, 1))
        body = blend(body, dark[None], 0.26 * smoothstep(0.05, -0.45, light) * np.exp(-down / 2.6))
        body = blend(body, lit[None], 0.40 * smoothstep(0.0, 0.5, light) * np.exp(-down / 2.2))
        return blend(body, haze[None], smoothstep(0.6, 4.0, down) * 0.75)

    ridge(panorama, line, shade)


def wooded_hills(panorama):
    """Hills behind the far town, covered with woods that show row upon row of heads."""
    side = Bearing(AZIMUTH)
    haze = by_side(side, rgb("e08a4a"), rgb("96586a"), rgb("42406a"))
    dark = by_side(side, rgb("4e2b3f"), rgb("342746"), rgb("171b38"))
    grain = texture(0.8, 0.5, 3, 6)
    for k, drop in enumerate((0.0, 0.34, 0.72)):
        line = back_ridge(AZIMUTH) - drop + 0.25 * skyline(AZIMUTH, 70 + k, 9, 40, 0.8) * (k > 0)
        heads = treeline(AZIMUTH, 30 + 7 * k, 0.46) * 0.75

        def shade(rows, down, line=line, k=k):
            depth = line[None, :] - HEIGHT[rows, None]    # not below the heads: that would show as stripes
            tone = np.clip(0.62 + 0.07 * k - 0.5 * smoothstep(-0.2, 1.4, depth) + 0.12 * grain[rows], 0, 1)
            body = blend(haze[None], dark[None], tone)
            return blend(body, haze[None] * 1.12, 0.25 * np.exp(-down / 0.10))

        ridge(panorama, line + heads, shade)


def patchwork(down, seed, first, deepest, wide):
    """Strips of land on a slope seen from afar: a number 0..1 per field, how near its
    hedge is (degrees) and a place along its furrows."""
    rng = np.random.default_rng(SEED * 1000 + seed)
    depth = np.log1p(np.clip(down, 0, None) / first)
    lanes = np.log1p(deepest / first) / 5
    lean = skyline(AZIMUTH, seed, 3, 20, 0.9)[None, :]
    lane = depth / lanes + 0.55 * lean
    j = np.floor(lane).astype(int)
    count = round(360 / wide)
    along = AZIMUTH[None, :] / 360 * count + 0.37 * j + 0.8 * (lane - j) * np.where(j % 2, 1, -0.6)
    i = np.floor(along).astype(int)
    tones = rng.random((64, count))  # the last field of a strip meets its first: one horizon
    hedge = np.minimum(np.minimum(along - i, 1 - along + i) * wide,
                       np.minimum(lane - j, 1 - lane + j) * lanes * (first + np.clip(down, 0, None)))
    return tones[j % 64, i % count], hedge, along * wide


def town_hills(panorama):
    """The hills that carry the far town: fields parted by hedges, woods on their crests."""
    side = Bearing(AZIMUTH)
    haze = by_side(side, rgb("d9824c"), rgb("8c566a"), rgb("3d3f66"))
    dark = by_side(side, rgb("4e2b3f"), rgb("342746"), rgb("171b38"))
    grain = texture(1.4, 0.5, 3, 2)
    line = town_ridge(AZIMUTH)

    def shade(rows, down):
        depth = line[None, :] - HEIGHT[rows, None]
        tone, hedge, _ = patchwork(depth, 64, 0.5, 2.2, 4.6)
        body = blend(haze[None], dark[None], np.clip(0.62 + 0.30 * (tone - 0.5) + 0.10 * grain[rows], 0, 1))
        body = blend(body, dark[None] * 0.92, 0.6 * smoothstep(0.10, 0.03, hedge))
        body = blend(body, haze[None], 0.38 * smoothstep(0.5, 1.9, depth))
        return blend(body, haze[None] * 1.1, 0.35 * np.exp(-down / 0.10))

    ridge(panorama, line + treeline(AZIMUTH, 20, 0.62) * 0.65, shade)


# ---- trees, houses, fires -------------------------------------------------

def tree(panorama, azimuth, foot, size, colours, rng):
    """One tree, round or pointed, lighter where the sun or the open sky reaches it."""
    base, rim = colours
    side = sunny_side(azimuth) if abs(sunny_side(azimuth)) > 0.3 else 0.3
    place, x, y = panorama.patch(azimuth, size * 0.75, foot - 0.1, foot + size * 1.7)
    up = y - foot
    shade = np.broadcast_to(base * 0.75, x.shape + (3,)).astype(np.float32)
    trunk = cut(np.maximum(np.abs(x) - size * 0.05, np.maximum(up - size * 0.6, -up - 0.06)))
    mask, light = trunk, np.zeros_like(x)
    if rng.random() < 0.42:
        tall, wide = size * rng.uniform(1.25, 1.6), size * rng.uniform(0.26, 0.34)
        for k in range(5):
            low = tall * (0.10 + 0.17 * k)
            high = min(tall, low + tall * 0.34)
            half = wide * (1 - 0.18 * k) * rng.uniform(0.9, 1.1)
            rise = (up - low) / (high - low)
            edge = half * (1 - rise) * (1 + 0.22 * np.sin(x / size * 23 + k * 2.1 + azimuth))
            inside = cut(np.maximum(np.abs(x) - edge, np.maximum(low - up, up - high)))
            tone = 0.55 * smoothstep(-0.2, 1.0, x * side / half + 0.2) + 0.35 * rise - 0.25
            light = np.where(inside > mask * 0.99, tone, light)
            mask = np.maximum(mask, inside)
    else:
        crown = size * rng.uniform(0.50, 0.62)
        for k in range(18):
            angle, reach = rng.uniform(0, 6.283), np.sqrt(rng.random()) * size * 0.36 * (k > 0)
            cx, cy = reach * np.cos(angle) * 1.1, crown + reach * np.sin(angle) * 0.85
            r = size * (rng.uniform(0.13, 0.21) if k else 0.30)
            ragged = 1 + 0.10 * np.sin(np.arctan2(up - cy, x - cx) * 7 + angle * 9)
            inside = cut(np.hypot(x - cx, up - cy) - r * ragged)
            tone = 0.9 * ((x - cx) * side + (up - cy) * 1.1) / r * 0.5 + 0.35 * (cy - crown) / (0.3 * size)
            light = np.where(inside > 0.5, tone, light)
            mask = np.maximum(mask, inside)
    leaves = np.clip(light, -0.6, 1)
    shade = shade * (1 + 0.35 * leaves)[..., None]
    shade = blend(shade, rim, 0.55 * smoothstep(0.30, 0.85, leaves))
    panorama.paint(place, shade, mask)


WINDOW = np.array([1.0, 0.74, 0.30])


def lit_window(panorama, azimuth, height, half, tall):
    place, x, y = panorama.patch(azimuth, half * 2.2, height - tall * 2, height + tall * 2)
    frame = np.maximum(np.abs(x) - half - 0.02, np.abs(y - height) - tall - 0.02)
    panorama.paint(place, rgb("2a1a1e"), cut(frame) * 0.8)
    panorama.paint(place, WINDOW * 1.05, cut(np.maximum(np.abs(x) - half, np.abs(y - height) - tall)))
    panorama.shine(azimuth, height, half * 4.5, WINDOW * np.array([0.24, 0.15, 0.08]))


def house(panorama, azimuth, foot, size, colours, rng, lit=0.6):
    """A gabled house: its gable on one side, its long wall and roof on the other."""
    wall, roof, rim = colours
    side = 1 if sunny_side(azimuth) >= 0 else -1
    gable_side = side if rng.random() < 0.6 else -side
    tall, steep = size * rng.uniform(0.42, 0.62), size * rng.uniform(0.50, 0.70)
    gable, long = size * rng.uniform(0.30, 0.38), size * rng.uniform(0.55, 0.85)
    place, x, y = panorama.patch(azimuth, gable * 2 + long + 0.2, foot - 0.25, foot + tall + steep * 1.5 + 0.3)
    x, up = x * gable_side, y - foot  # the long wall from -long to 0, the gable from 0 to 2 * gable
    lit_long, lit_gable = (0.82, 1.22) if gable_side == side else (1.15, 0.85)
    rise = 0.85 + 0.25 * smoothstep(0, tall, up)

    stack, half = -long * 0.55, size * 0.075
    panorama.paint(place, roof * 0.9, cut(block(x, up, stack - half, stack + half, tall, tall + steep * 1.22)))
    panorama.paint(place, wall * (lit_long * rise)[..., None], cut(block(x, up, -long, 0, -0.2, tall)))
    lean = (up - tall) / steep * gable  # the roof runs back as it rises
    slope = block(x, up, -long - 0.06 * size + lean * 0.55, lean + 0.02, tall - 0.05 * size, tall + steep)
    tiles = 0.92 + 0.10 * np.cos((up - tall) / (size * 0.085) * 2 * np.pi)
    panorama.paint(place, roof * (lit_long * tiles)[..., None], cut(slope))
    panorama.paint(place, rim, cut(np.maximum(slope, tall + steep - 0.035 - up)) * 0.6)

    away = np.abs(x - gable)
    under = up - tall - steep * (1 - away / gable)
    front = np.maximum(block(x, up, 0, 2 * gable, -0.2, 99), under)
    panorama.paint(place, wall * (lit_gable * rise)[..., None], cut(front))
    beams = np.minimum(np.abs(up - tall), np.minimum(away, gable - away))
    panorama.paint(place, roof * 0.75, cut(np.maximum(front, beams - 0.014 - 0.012 * size)) * 0.8)
    verge = np.maximum(np.abs(under) - 0.05 * size - 0.01, np.maximum(away - gable * 1.14, tall - 0.10 * size - up))
    panorama.paint(place, roof * 0.8 + rim * 0.25, cut(verge))
    middle = tall * 0.5
    windows = ((gable, tall + steep * 0.25), (gable * 0.5, middle), (-long * 0.33, middle), (-long * 0.7, middle))
    for wx, wy in windows:
        if rng.random() < lit:
            lit_window(panorama, azimuth + wx * gable_side, foot + wy, 0.045 * size + 0.018, 0.06 * size + 0.03)
    door = gable * 1.45
    if tall > 0.3:
        panorama.paint(place, roof * 0.6, cut(block(x, up, door - 0.06 * size, door + 0.06 * size, 0, tall * 0.54)))


def tower(panorama, azimuth, foot, size, colours, rng):
    """A round tower under a pointed cap with a gallery."""
    wall, roof, rim = colours
    side = sunny_side(azimuth) if abs(sunny_side(azimuth)) > 0.2 else 0.4
    half, tall = size * rng.uniform(0.15, 0.19), size * rng.uniform(1.1, 1.7)
    cap = tall * rng.uniform(0.42, 0.6)
    place, x, y = panorama.patch(azimuth, half * 2 + 0.1, foot - 0.25, foot + tall + cap + 0.3)
    up = y - foot
    width = half * (1.08 - 0.12 * np.clip(up / tall, 0, 1))
    light = 0.95 + 0.32 * np.clip(x / width, -1, 1) * side
    panorama.paint(place, wall * light[..., None], cut(block(x, up, -width, width, -0.2, tall)))
    gallery = block(x, up, -width * 1.22, width * 1.22, tall * 0.94 - 0.05 * size, tall * 0.94 + 0.05 * size)
    panorama.paint(place, wall * (0.8 * light)[..., None], cut(gallery))
    reach = half * 1.35 * np.clip(1 - (up - tall) / cap, 0, 1.1) ** 1.15
    spire = np.maximum(np.abs(x) - np.where(up < tall + cap, reach, -1), tall - 0.02 - up)
    tiles = roof * (0.95 + 0.3 * np.clip(x / half, -1, 1) * side)[..., None]
    panorama.paint(place, blend(tiles, rim, 0.55 * smoothstep(0.25, 0.7, x * side / (reach + 1e-3))), cut(spire))
    panorama.paint(place, roof, cut(block(x, up, -0.012, 0.012, tall + cap - 0.03, tall + cap + 0.15)))
    lit_window(panorama, azimuth, foot + tall * 0.74, 0.03 + 0.02 * size, 0.055 + 0.03 * size)
    if rng.random() < 0.6:
        lit_window(panorama, azimuth - half * 0.2, foot + tall * 0.42, 0.028 + 0.015 * size, 0.05 + 0.02 * size)


def windmill(panorama, azimuth, foot, size, colours, rng):
    wall, roof, rim = colours
    side = sunny_side(azimuth) if abs(sunny_side(azimuth)) > 0.2 else 0.4
    tall, half = size * 1.0, size * 0.26
    place, x, y = panorama.patch(azimuth, size * 1.1, foot - 0.25, foot + size * 2.1)
    up = y - foot
    width = half * (1 - 0.38 * np.clip(up / tall, 0, 1))
    light = 0.95 + 0.3 * np.clip(x / width, -1, 1) * side
    panorama.paint(place, wall * light[..., None], cut(block(x, up, -width, width, -0.2, tall)))
    dome = np.maximum(np.hypot(x / 1.15, up - tall) - half * 0.62, tall - 0.03 - up)
    shine = 0.4 * smoothstep(0.1, 0.5, (x * side + up - tall) / half)
    panorama.paint(place, blend(roof * np.ones(x.shape + (1,)), rim, shine), cut(dome))
    x, up = x + side * half * 0.1, up - tall * 0.98  # from the hub
    angle = rng.uniform(0.2, 0.5)
    for turned in np.arange(4) * np.pi / 2 + angle:
        along = x * np.cos(turned) + up * np.sin(turned)
        across = up * np.cos(turned) - x * np.sin(turned)
        sail = block(along, across, size * 0.2, size * 0.9, 0.01 * size, 0.14 * size)
        panorama.paint(place, blend(wall * 1.25, rim, 0.35), cut(sail) * 0.85)
        panorama.paint(place, roof * 0.7, cut(block(along, across, 0, size * 0.92, -0.016, 0.016)))
    lit_window(panorama, azimuth, foot + tall * 0.4, 0.04, 0.06)


def flames(panorama, azimuth, foot, wide, rng):
    """A fire over roofs: tapering tongues that meet below, the tallest in the middle, over a glow."""
    panorama.shine(azimuth, foot + 0.3 * wide, 1.1 * wide, np.array([0.50, 0.19, 0.05]), 0.9)
    tongues = []
    for away in np.linspace(-0.62, 0.62, 9) + rng.uniform(-0.06, 0.06, 9):
        tongues.append((wide * (0.35 + 1.25 * np.exp(-(away / 0.36) ** 2)) * rng.uniform(0.65, 1.15), away * wide))
    for tall, away in sorted(tongues, reverse=True):
        half, lean = (0.10 + 0.08 * tall / wide) * wide, 0.16 * tall - 0.35 * away
        place, x, y = panorama.patch(azimuth + away, half + abs(lean) + 0.2, foot - 0.3, foot + tall + 0.1)
        rise = np.clip((y - foot + 0.12 * wide) / (tall + 0.12 * wide), 0, 1)
        sway = lean * rise ** 1.6 + 0.22 * half * np.sin(rise * 6 + away * 31)
        width = half * (1 - rise) ** 0.9 * smoothstep(-0.25, 0.25, rise) + 1e-3
        heat = np.clip(1.1 - np.abs(x - sway) / width, 0, 1) * smoothstep(1.0, 0.75, rise) * smoothstep(0.0, 0.12, rise)
        tone = np.clip(heat * (1.15 - 0.75 * rise), 0, 1)
        colour = blend(np.array([0.86, 0.26, 0.06]), np.array([1.0, 0.84, 0.42]), smoothstep(0.25, 0.80, tone))
        panorama.paint(place, colour, smoothstep(0.04, 0.32, heat) * 0.95)


def settlement(panorama, line, seed, places, size, colours_of, lit):
    """Clusters of houses, towers and trees that stand on a line of hills."""
    rng = np.random.default_rng(SEED * 1000 + seed)
    for azimuth, kind in places:
        wall, roof, rim, leaf, leaf_rim = (c[0] for c in colours_of(Bearing([azimuth])))
        things = []
        spread = size * (2.6 if kind == "town" else 1.5)
        for _ in range({"town": 13, "hamlet": 5, "farm": 2, "burning": 4, "mill": 2}[kind]):
            things.append((rng.normal() * spread, rng.uniform(0.02, 0.30) * size, "house"))
        for _ in range({"town": 4, "hamlet": 1, "burning": 1}.get(kind, 0)):
            things.append((rng.normal() * spread * 0.7, rng.uniform(0.1, 0.25) * size, "tower"))
        if kind == "mill":
            things.append((rng.uniform(-1, 1) * size, 0.0, "mill"))
        for _ in range({"town": 9, "hamlet": 7}.get(kind, 6)):
            things.append((rng.normal() * spread * 1.5, rng.uniform(0.0, 0.35) * size, "tree"))
        for away, drop, what in sorted(things, key=lambda t: t[1]):
            here = azimuth + away
            foot = at(line, here) - drop
            grown = size * rng.uniform(0.85, 1.15)
            if what == "house":
                house(panorama, here, foot, grown, (wall, roof, rim), rng, lit)
            elif what == "tower":
                tower(panorama, here, foot, grown, (wall, roof, rim), rng)
            elif what == "mill":
                windmill(panorama, here, foot, grown * 1.3, (wall, roof, rim), rng)
            else:
                tree(panorama, here, foot, grown * rng.uniform(0.6, 1.0), (leaf, leaf_rim), rng)
        if kind == "burning":
            flames(panorama, azimuth, at(line, azimuth) + 0.45 * size, size * 1.2, rng)


def far_colours(side):
    return (by_side(side, rgb("8a4a52"), rgb("5e4468"), rgb("34386a")),
            by_side(side, rgb("4a2438"), rgb("33234a"), rgb("1a1d40")),
            by_side(side, rgb("f0a060"), rgb("b07088"), rgb("6a70a4")),
            by_side(side, rgb("4f2c3a"), rgb("352a44"), rgb("1b2140")),
            by_side(side, rgb("c87848"), rgb("7c5468"), rgb("424a74")))


def near_colours(side):
    return (by_side(side, rgb("7a4a42"), rgb("544052"), rgb("353a58")),
            by_side(side, rgb("3c2028"), rgb("2a1e34"), rgb("181b34")),
            by_side(side, rgb("e8954c"), rgb("a06a70"), rgb("5f6a98")),
            by_side(side, rgb("3a2a26"), rgb("2b2a32"), rgb("182232")),
            by_side(side, rgb("b87a3c"), rgb("70604e"), rgb("3c5068")))


# fmt: off
FAR_PLACES = [
    (14, "town"), (-13, "hamlet"), (77, "burning"), (92, "hamlet"), (104, "town"), (168, "hamlet"), (182, "burning"),
    (193, "town"), (255, "hamlet"), (270, "burning"), (284, "hamlet"), (-3, "hamlet"),
]
NEAR_PLACES = [
    (5, "farm"), (-9, "hamlet"), (17, "mill"), (73, "mill"), (86, "burning"), (99, "hamlet"), (163, "farm"),
    (175, "hamlet"), (190, "mill"), (253, "farm"), (263, "burning"), (276, "hamlet"), (287, "mill"), (-17, "farm"),
]
# fmt: on


def fields_beyond(side):
    """The land below the nearest woods; the ground's picture takes this tone at its edge."""
    return by_side(side, rgb("5d4733"), rgb("45413a"), rgb("2d363d"))


def meadows(panorama):
    """From the nearest ridge down to the ground's edge: fields, hedges and single trees."""
    side = Bearing(AZIMUTH)
    field = fields_beyond(side)
    dark = by_side(side, rgb("4e2b3f"), rgb("342746"), rgb("171b38"))
    straw = by_side(side, rgb("8a6238"), rgb("625242"), rgb("3d4650"))
    green = by_side(side, rgb("56502c"), rgb("404a38"), rgb("28403f"))
    grain, tufts = texture(1.3, 0.4, 3, 4), texture(0.30, 0.24, 2, 5)
    line = near_ridge(AZIMUTH)
    rng = np.random.default_rng(SEED * 1000 + 46)
    gold = by_side(side, rgb("c8803e"), rgb("7c5c5c"), rgb("465070"))

    def shade(rows, down):
        tone, hedge, along = patchwork(down, 67, 0.35, 1.9, 7.0)
        body = blend(green[None], straw[None], smoothstep(0.30, 0.75, tone))
        body = blend(body, dark[None], 0.40 * smoothstep(0.30, 0.05, tone))
        furrow = np.cos(along * 2 * np.pi / 0.6) * 0.10 * (tone > 0.6) * smoothstep(0.1, 0.3, hedge)
        body = body * (1 + 0.16 * grain[rows] + furrow + 0.12 * tufts[rows])[..., None]
        body = blend(body, gold[None], 0.5 * np.exp(-down / 0.09))
        near = smoothstep(0.40, -0.95, HEIGHT[rows])[:, None] * np.ones_like(down)
        return blend(body, field[None] * (1 + 0.16 * grain[rows] + 0.10 * tufts[rows])[..., None], 0.75 * near)

    ridge(panorama, line, shade)
    base, rim = near_colours(side)[3:]
    for k, drop in enumerate((0.20, 0.55, 1.00)):  # hedges along the slope, broken by gates
        foot = line - drop + 0.16 * skyline(AZIMUTH, 80 + k, 5, 24, 0.9)
        heads = (0.07 + 0.10 * k) * 0.6 + treeline(AZIMUTH, 84 + 9 * k, 0.40 + 0.2 * k) * 0.34
        growth = smoothstep(-0.15, 0.05, skyline(AZIMUTH, 88 + k, 7, 30, 0.6))
        top = foot + heads * growth - 0.02
        down = top[None, :] - HEIGHT[:, None]
        mask = cut(-down) * cut(foot[None, :] - 0.05 - HEIGHT[:, None]) * growth[None, :]
        light = np.exp(-down / 0.07) * 0.6
        panorama.paint((slice(None), slice(None)), blend(base[None] * 0.9, rim[None], np.clip(light, 0, 1)), mask)
    leaf = [near_colours(Bearing([a]))[3:] for a in range(360)]
    things = []
    for _ in range(52):  # clumps of trees on and below the ridge
        azimuth, drop = rng.uniform(0, 360), rng.random() ** 2 * 0.55
        for _ in range(rng.integers(2, 8)):
            place = azimuth + rng.normal() * 1.6, drop + rng.uniform(0, 0.10)
            if calm(place[0]) < 0.15:
                things.append(place)
    for azimuth, drop in sorted(things, key=lambda t: t[1]):
        colours = tuple(c[0] for c in leaf[int(azimuth) % 360])
        size = rng.uniform(0.55, 1.0) * (1 + 0.5 * drop)
        tree(panorama, azimuth, at(near_ridge, azimuth) - drop, size, colours, rng)


def country():
    """Mountains, hills, the far town and the fields that run up to the ground's edge."""
    panorama = Panorama()
    mountains(panorama)
    wooded_hills(panorama)
    town_hills(panorama)
    settlement(panorama, town_ridge, 11, FAR_PLACES, 0.62, far_colours, 0.5)
    meadows(panorama)
    settlement(panorama, near_ridge, 12, NEAR_PLACES, 0.95, near_colours, 0.8)
    return panorama


def lay_country(name, picture, panorama):
    """Draws the country over a picture. Every texel takes the mean of what lies about it,
    weighed by nearness: magnified, its edges then show no stairs."""
    middle = View(face_points(name))
    rows = np.where(((middle.height > FOOT) & (middle.height < HEAD)).any(axis=1))[0]
    part = slice(rows[0], rows[-1] + 1)
    colour, cover, total = 0.0, 0.0, 0.0
    for i in (-0.48, -0.16, 0.16, 0.48):
        for j in (-0.60, -0.36, -0.12, 0.12, 0.36, 0.60):
            weight = (0.8 - abs(i)) * (0.8 - abs(j))
            c, k = panorama.seen(View(face_points(name, 0.5 + i, 0.5 + j)[part]))
            colour, cover, total = colour + c * weight, cover + k * weight, total + weight
    picture[part] = picture[part] * (1 - cover / total)[..., None] + colour / total


def stars(name, view):
    """Star light on one picture, before any cloud covers it."""
    rng = np.random.default_rng(SEED * 1000 + 77)
    picture = np.zeros(view.height.shape + (3,))
    rows, columns = view.height.shape
    for _ in range(STARS):
        direction = direction_of(rng.uniform(0, 360), np.degrees(np.arcsin(rng.uniform(0.05, 1.0))))
        strength = rng.random() ** 3.0 * 0.85 + 0.12
        tint = mix(rgb("ffe2c0"), rgb("c8d8ff"), rng.random())
        away = -direction @ np.array([SUN[0], -0.9, SUN[2]])  # first stars: far from the sun, or high
        strength *= smoothstep(-0.15, 0.75, away)
        azimuth = np.degrees(np.arctan2(direction[2], direction[0]))
        strength *= 1 - calm(azimuth) * (direction[1] < 0.3)
        spot = texel_of(name, direction)
        if spot is None or strength < 0.03:
            continue
        c0, r0 = (int(round(v)) for v in spot)
        if not (REACH <= c0 < columns - REACH and REACH <= r0 < rows - REACH):
            continue  # a star on an edge would be cut by it
        part = (slice(r0 - REACH, r0 + REACH + 1), slice(c0 - REACH, c0 + REACH + 1))
        away = np.degrees(np.arccos(np.clip(view.direction[part].astype(float) @ direction, -1, 1)))
        size = (0.16 if name == "sky" else 0.06) + 0.03 * strength
        picture[part] += (np.exp(-0.5 * (away / size) ** 2) * strength)[..., None] * tint
    return picture


# ---- putting it together -------------------------------------------------

def dithered(picture):
    """The picture with noise of up to one eight-bit step, little of it coarse: rounding
    then leaves no visible steps in a gradient."""
    rng = np.random.default_rng(SEED)
    grain = rng.random(picture.shape) + rng.random(picture.shape) - 1.0
    grain = grain - 0.5 * blur(grain, 1.2)
    return picture + grain / 255.0


def paint(name, panorama):
    view = View(face_points(name))
    if name == "floor":
        return fields_beyond(view)
    picture = open_sky(view) + stars(name, view)
    disc, face, halo = moon(view)
    picture = blend(picture + halo, face, disc)
    above = view.height > FOOT  # nothing is drawn on what the ground hides
    seen, colours = view.only(above), picture[above]
    colours = high_clouds(colours, seen, Noise3(1))
    colours = cloud_banks(colours, seen, Noise3(2), 9.0, 19.0, 3.2, 9.0, 0.05)
    colours = cloud_banks(colours, seen, Noise3(3), 3.5, 9.0, 5.0, 21.0, 0.12)
    picture[above] = smoke(colours, seen, Noise3(4))
    picture[~above] = fields_beyond(view.only(~above))
    if name != "sky":
        lay_country(name, picture, panorama)
    return picture


def main():
    panorama = country()
    for name in ("sky", "floor", "north", "south", "west", "east"):
        write_bmp(f"{name}.bmp", dithered(paint(name, panorama)))


if __name__ == "__main__":
    main()
