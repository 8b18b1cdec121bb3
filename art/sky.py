"""The dusk sky: six pictures of one box, painted by direction.

Every texel is turned into the direction in which the eye in the middle of the
town sees it, and its colour depends on that direction alone, so the pictures
meet without a seam. Angles are in degrees; azimuth 0 looks along +x, 90 along +z.
"""
import sys
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parent))
from shared import SEED, mix, rgb, smoothstep, write_bmp  # noqa: E402

SIZE = 1024
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

def face_points(name):
    """World positions of a picture's texels, (SIZE, SIZE, 3); row 0 is t = 1."""
    s, t = np.meshgrid((np.arange(SIZE) + 0.5) / SIZE, 1 - (np.arange(SIZE) + 0.5) / SIZE)
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
    return s * SIZE - 0.5, (1 - t) * SIZE - 0.5


def direction_of(azimuth, height):
    a, h = np.radians(azimuth), np.radians(height)
    return np.array([np.cos(h) * np.cos(a), np.sin(h), np.cos(h) * np.sin(a)])


def turn(azimuth, centre):
    """Signed difference of two azimuths, -180..180."""
    return (azimuth - centre + 180.0) % 360.0 - 180.0


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
    """A cloud in three tones whose borders stay soft, like broad brush strokes."""
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
PLUMES = [(38, 0.55, 15, 1.0), (74, 0.40, 11, 0.7), (112, 0.5, 19, 1.2), (158, 0.35, 13, 0.8),
          (203, -0.45, 16, 1.1), (251, -0.5, 12, 0.8), (287, -0.35, 20, 1.3), (330, 0.4, 13, 0.9)]


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


def ridge(sky, view, top, colour_top, colour_low, depth):
    """Everything below the line `top`, lighter at its upper edge, hazy at its foot."""
    inside = smoothstep(-EDGE, EDGE, top - view.height)
    down = np.clip((top - view.height) / depth, 0, 1)
    return blend(sky, blend(colour_top, colour_low, down), inside)


def roofs(seed, count, tallest):
    """Gables and towers strung along the horizon in clusters: azimuth, half width, wall, roof, is tower."""
    rng = np.random.default_rng(SEED * 1000 + seed)
    houses = []
    for centre in rng.permutation(np.arange(0, 360, 360 / count)) + rng.random(count) * 20:
        for _ in range(rng.integers(4, 9)):
            tower = rng.random() < 0.3
            half = rng.uniform(0.22, 0.34) if tower else rng.uniform(0.4, 0.85)
            wall = rng.uniform(0.9, tallest) if tower else rng.uniform(0.25, 0.55)
            roof = wall * 0.5 + 0.45 if tower else half * 0.9
            houses.append((centre + rng.normal() * 4.0, half, wall, roof, tower))
    return houses


def far_town(sky, view, ground, houses, colours):
    """Silhouettes standing on the line `ground`, each with a lit window or two."""
    sky = sky.copy()
    lit = []
    for azimuth, half, wall, roof, tower in houses:
        near = (np.abs(turn(view.azimuth, azimuth)) < half + 0.6) & (view.height < 9) & (view.height > -2)
        if not near.any():
            continue
        v = view.only(near)
        side = turn(v.azimuth, azimuth) * np.cos(np.radians(v.height))
        foot = ground(np.array([azimuth]))[0] - 0.15
        up = v.height - foot
        body = np.minimum(half - np.abs(side), wall - up)
        eave = half * (1.25 if tower else 1.12)
        slope = np.minimum((eave * (1 - (up - wall) / roof) - np.abs(side)) * 0.7, up - wall + 0.04)
        inside = smoothstep(-EDGE, EDGE, np.maximum(body, slope)) * smoothstep(-0.3, 0.0, up + 0.3)
        sun = turn(SUN_AZIMUTH, azimuth)
        sunny = -side / half * np.sign(sun) * smoothstep(0, 40, abs(sun))
        base = by_side(v, *colours)
        shade = blend(base * 1.10, base * 1.42 + 0.03, smoothstep(0.25, -0.05, sunny))
        shade = blend(shade, base * 0.68, smoothstep(-0.05, 0.05, slope) * smoothstep(0.10, -0.05, body))
        sky[near] = blend(sky[near], shade, inside)
        lit.append((azimuth + half * 0.3, foot + wall * 0.62, 0.10 if tower else 0.13))
    for azimuth, height, size in lit[::2]:
        near = (np.abs(turn(view.azimuth, azimuth)) < 1.5) & (np.abs(view.height - height) < 1.5)
        v = view.only(near)
        away = (turn(v.azimuth, azimuth)) ** 2 + ((v.height - height) * 0.8) ** 2
        light = np.exp(-away / size ** 2) * 0.95 + np.exp(-away / (size * 4) ** 2) * 0.16
        sky[near] += light[..., None] * np.array([1.0, 0.66, 0.25])
    return sky


def far_fires(sky, view):
    """Small flames at the feet of the smoke columns."""
    rng = np.random.default_rng(SEED * 1000 + 51)
    sky = sky.copy()
    for azimuth, _, _, wide in PLUMES:
        foot = town_ridge(np.array([float(azimuth)]))[0]
        for _ in range(7):
            place, tall = azimuth + rng.normal() * 0.75 * wide, rng.uniform(0.35, 0.9) * wide
            near = (np.abs(turn(view.azimuth, place)) < 2) & (np.abs(view.height - foot) < 3)
            v = view.only(near)
            rise = np.clip((v.height - foot + 0.25) / tall, -1, 1)
            flame = np.exp(-(turn(v.azimuth, place) / (0.16 * wide * (1.1 - rise))) ** 2)
            flame *= smoothstep(-0.2, 0.15, rise) * smoothstep(1, 0.2, rise)
            sky[near] += flame[..., None] * np.array([0.95, 0.42, 0.10])
    return sky


def far_ridge(azimuth):
    return 3.0 + 2.2 * skyline(azimuth, 1, 3, 90, 0.9)


def back_ridge(azimuth):
    return 2.1 + 1.2 * skyline(azimuth, 6, 4, 70, 1.0)


def town_ridge(azimuth):
    return 1.25 + 0.85 * skyline(azimuth, 2, 4, 60, 1.15)


def near_ridge(azimuth):
    return 0.35 + 0.5 * skyline(azimuth, 3, 5, 40, 1.1)


def treeline(azimuth, seed, size):
    """Heads of trees in clumps along a ridge, round or pointed: how far they rise over it."""
    heads = np.zeros_like(azimuth)
    for layer in range(4):
        rng = np.random.default_rng(SEED * 1000 + seed + layer)
        count = round(360 / size * rng.uniform(0.8, 1.1))
        tall, shift = rng.random(count) ** 1.6, rng.uniform(-0.3, 0.3, count)
        pointed = rng.random(count) < 0.45
        place = (azimuth / 360.0) % 1.0 * count + layer * 0.29
        tree = np.floor(place).astype(int) % count
        away = np.clip(np.abs(place - np.floor(place) - 0.5 + shift[tree] * 0.3) * 2.2, 0, 1)
        shape = np.where(pointed[tree], (1 - away) * 1.35, np.sqrt(1 - away ** 2))
        heads = np.maximum(heads, shape * (0.25 + tall[tree]) * size * 0.75)
    return heads * smoothstep(-0.35, 0.3, skyline(azimuth, seed + 5, 4, 30, 0.7))


def country(sky, view, noise):
    """Mountains, hills, the far town and the fields that run up to the ground's edge."""
    haze = by_side(view, rgb("e08a4a"), rgb("96586a"), rgb("42406a"))
    dark = by_side(view, rgb("4e2b3f"), rgb("342746"), rgb("171b38"))
    field = fields_beyond(view)  # the ground's picture ends in the same tone
    azimuth = view.azimuth
    place = view.direction * np.array([50.0, 0.0, 50.0], np.float32)
    place[..., 1] = view.height * 3.0
    patch = noise(place, 3)
    # The sides of the mountains that face the sun are lit: the slope tells which.
    slope = np.clip((far_ridge(azimuth + 0.5 + 0.3 * patch) - far_ridge(azimuth - 0.5)) * 0.9, -1, 1)
    sun = turn(SUN_AZIMUTH, azimuth)
    facing = slope * np.sign(sun) * smoothstep(0, 35, np.abs(sun))
    tall = blend(haze, dark, np.clip(0.46 - 0.16 * facing + 0.05 * patch, 0, 1))
    sky = ridge(sky, view, far_ridge(azimuth), tall, blend(haze, dark, 0.12 + 0 * azimuth), 4.2)
    sky = ridge(sky, view, back_ridge(azimuth) + treeline(azimuth, 30, 0.5) * 0.6,
                blend(haze, dark, 0.58 + 0.08 * patch), blend(haze, dark, 0.26 + 0 * azimuth), 2.6)
    sky = ridge(sky, view, town_ridge(azimuth) + treeline(azimuth, 20, 0.75) * 0.7,
                blend(haze, dark, 0.74 + 0.12 * patch), blend(haze, dark, 0.42 + 0.10 * patch), 2.0)
    sky = far_fires(sky, view)
    sky = far_town(sky, view, town_ridge, roofs(11, 7, 2.4), (rgb("61334a"), rgb("402c4e"), rgb("1e2144")))
    wooded = blend(dark, field, 0.22 + 0 * azimuth) * (0.9 + 0.15 * patch)[..., None]
    field = field * (1 + 0.12 * patch)[..., None]
    sky = ridge(sky, view, near_ridge(azimuth) + treeline(azimuth, 40, 1.0), wooded, field, 1.3)
    return far_town(sky, view, near_ridge, roofs(12, 9, 1.5), (rgb("472a33"), rgb("30243a"), rgb("181c33")))


def fields_beyond(view):
    """The land below the nearest woods; the ground's picture takes this tone at its edge."""
    return by_side(view, rgb("5d4733"), rgb("45413a"), rgb("2d363d"))


def stars(name, view):
    """Star light on one picture, before any cloud covers it."""
    rng = np.random.default_rng(SEED * 1000 + 77)
    picture = np.zeros((SIZE, SIZE, 3))
    for _ in range(STARS):
        direction = direction_of(rng.uniform(0, 360), np.degrees(np.arcsin(rng.uniform(0.05, 1.0))))
        strength = rng.random() ** 3.0 * 0.85 + 0.12
        tint = mix(rgb("ffe2c0"), rgb("c8d8ff"), rng.random())
        away = -direction @ np.array([SUN[0], -0.9, SUN[2]])  # first stars: far from the sun, or high
        strength *= smoothstep(-0.15, 0.75, away)
        spot = texel_of(name, direction)
        if spot is None or strength < 0.03:
            continue
        c0, r0 = (int(round(v)) for v in spot)
        if not (REACH <= c0 < SIZE - REACH and REACH <= r0 < SIZE - REACH):
            continue  # a star on an edge would be cut by it
        part = (slice(r0 - REACH, r0 + REACH + 1), slice(c0 - REACH, c0 + REACH + 1))
        away = np.degrees(np.arccos(np.clip(view.direction[part].astype(float) @ direction, -1, 1)))
        size = (0.125 if name == "sky" else 0.075) + 0.03 * strength
        picture[part] += (np.exp(-0.5 * (away / size) ** 2) * strength)[..., None] * tint
    return picture


# ---- putting it together -------------------------------------------------

def paint(name):
    view = View(face_points(name))
    picture = open_sky(view) + stars(name, view)
    disc, face, halo = moon(view)
    picture = blend(picture + halo, face, disc)
    above = view.height > -2.5  # nothing is drawn on what the ground hides
    seen, colours = view.only(above), picture[above]
    colours = high_clouds(colours, seen, Noise3(1))
    colours = cloud_banks(colours, seen, Noise3(2), 9.0, 19.0, 3.2, 9.0, 0.05)
    colours = cloud_banks(colours, seen, Noise3(3), 3.5, 9.0, 5.0, 21.0, 0.12)
    colours = smoke(colours, seen, Noise3(4))
    picture[above] = country(colours, seen, Noise3(5))
    picture[~above] = fields_beyond(view.only(~above))
    grain = np.random.default_rng(SEED).random(picture.shape) - 0.5
    write_bmp(f"{name}.bmp", picture + grain / 255.0)  # hides the steps between 8-bit shades


def main():
    for name in ("sky", "floor", "north", "south", "west", "east"):
        paint(name)


if __name__ == "__main__":
    main()
