"""The title cube: a carved oak box whose four sides are a painted cover and three
sheets of singed parchment. Writes introCube.obj and intro.bmp.

blender -b --factory-startup -P art/intro_cube.py
"""
import sys
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parent))
from lettering import Font, Mask  # noqa: E402
from shared import (SEED, Mesh, blur, mix, noise, polygon_normal, rgb,  # noqa: E402
                    smoothstep, write_bmp)

TRIANGLES = 100

# The box, in world units: it stands 2.9 in front of the title camera.
HALF = 0.6
CHAMFER = 0.045
FLAT = HALF - CHAMFER           # half of a side's flat part
RECESS = 0.02                   # how deep the panel lies in its frame

# The picture, in pixels: three sides in the upper row, the fourth in two halves and the
# edges' strip below. A side shows about 620 pixels wide on a window 1024 high, so its
# letters come to the screen nearly one to one.
# Cells begin at multiples of 16 pixels, and the fourth side's halves overlap by 32: along
# their seam every mipmap down to a sixteenth holds the same texels in both.
WIDTH, HEIGHT = 2048, 1024
SIDE = 662
GUTTER = 5                      # repeated border pixels between the parts, against bleeding
CELL = SIDE + 2 * GUTTER
FRAME = 50
PANEL = SIDE - 2 * FRAME
EDGE = 40                       # height of the strip that the chamfers show

INK = rgb("2e1c14")
RUBRIC = rgb("9c2a16")
BRASS = rgb("d9a548")
CANDLE = rgb("fff0c4")
DUSK = np.array((1.12, 1.02, 0.92))     # makes up for the title light, which is cool and dim


# --- shapes -----------------------------------------------------------------

def grid(height, width):
    """Pixel centres: y, x."""
    return np.mgrid[0:height, 0:width] + 0.5


def inside(distance):
    """Anti-aliased mask of where a distance in pixels is negative."""
    return np.clip(0.5 - distance, 0, 1)


def ellipse(y, x, cx, cy, rx, ry):
    return (np.hypot((x - cx) / rx, (y - cy) / ry) - 1) * min(rx, ry)


def capsule(y, x, a, b, radius):
    ax, ay, bx, by = *a, *b
    t = ((x - ax) * (bx - ax) + (y - ay) * (by - ay)) / ((bx - ax) ** 2 + (by - ay) ** 2)
    t = np.clip(t, 0, 1)
    return np.hypot(x - ax - t * (bx - ax), y - ay - t * (by - ay)) - radius


def rounded(y, x, left, top, width, height, radius):
    dx = np.abs(x - left - width / 2) - width / 2 + radius
    dy = np.abs(y - top - height / 2) - height / 2 + radius
    return np.hypot(np.maximum(dx, 0), np.maximum(dy, 0)) + np.minimum(np.maximum(dx, dy), 0) - radius


def polygons(shape, *outlines):
    mask = Mask(*shape)
    for outline in outlines:
        mask.polygon(outline)
    return mask.picture()


def streaks(size, cells, seed, stretch=4):
    """Noise drawn out along x."""
    return noise(size, size * stretch, cells, seed=seed)[:, :size]


# --- wood and brass -----------------------------------------------------------

def oak(height, width, seed):
    """A plank, grain along x."""
    y, x = grid(height, width)
    size = 1024
    bend = noise(size, size, 3, seed=seed)[:height, :width]
    fibre = noise(size, size * 8, 48, octaves=3, seed=seed + 1)[:height, :width]
    rings = 0.5 + 0.5 * np.sin((y * 0.32 + bend * 26 + x * 0.006))
    tone = 0.30 + 0.34 * rings + 0.55 * (fibre - 0.5) + 0.5 * (bend - 0.5)
    return mix(rgb("4a2c1a"), rgb("b07844"), np.clip(tone, 0, 1))


def frame_side(seed):
    """The upper side of the frame, SIDE long and FRAME deep, outer edge on top, without its
    light: a rounded oak moulding with a brass fillet towards the panel."""
    y, _ = grid(FRAME, SIDE)
    wood = oak(FRAME, SIDE, seed)
    fillet = smoothstep(FRAME - 11, FRAME - 9.5, y) * (1 - smoothstep(FRAME - 4, FRAME - 2.5, y))
    return mix(wood, BRASS * np.ones_like(wood), fillet)


def moulding_slope():
    """How far the moulding leans outward (1) or towards the panel (-1), per pixel of depth."""
    d = np.arange(FRAME) + 0.5
    slope = 1 - smoothstep(2, 14, d)                       # outer round
    slope -= 0.8 * smoothstep(20, 30, d) * (1 - smoothstep(33, 38, d))
    slope += 0.7 * smoothstep(37, 39, d) * (1 - smoothstep(40, 42, d))   # fillet, outer half
    slope -= smoothstep(42, 44, d) * (1 - smoothstep(46, 47, d))         # fillet, inner half
    groove = np.exp(-((d - 37) / 1.6) ** 2) + np.exp(-((d - 18) / 1.4) ** 2) * 0.7
    groove += smoothstep(46, 50, d)
    return slope, groove


def frame(picture, seed):
    """Paints the frame round a side: four mitred pieces, light falling from above and the left."""
    slope, groove = moulding_slope()
    towards_light = {0: 0.30, 1: -0.16, 2: -0.26, 3: 0.20}       # top, right, bottom, left
    y, x = grid(SIDE, SIDE)
    for turn, light in towards_light.items():
        piece = frame_side(seed + 10 * turn)
        shade = 1.0 + light * slope - 0.55 * groove
        piece = piece * shade[:, None, None]
        whole = np.zeros((SIDE, SIDE, 3))
        whole[:FRAME] = piece
        mitre = (y < x) & (y < SIDE - x) & (y < FRAME)
        whole, mitre = np.rot90(whole, -turn), np.rot90(mitre, -turn)
        picture[mitre] = whole[mitre]
    seam = np.abs(np.minimum(x, SIDE - x) - np.minimum(y, SIDE - y))
    depth = np.minimum(np.minimum(x, SIDE - x), np.minimum(y, SIDE - y))
    picture *= (1 - 0.45 * np.exp(-(seam / 1.2) ** 2) * (depth < FRAME))[..., None]
    return corner_plates(picture, seed)


def brass(height, width, seed):
    tone = 0.58 + 0.6 * (noise(1024, 1024, 40, seed=seed)[:height, :width] - 0.5)
    tone += 0.35 * (noise(1024, 1024, 9, seed=seed + 1)[:height, :width] - 0.5)
    return mix(rgb("7a4a18"), rgb("f2c264"), np.clip(tone, 0, 1))


def corner_plates(picture, seed):
    """Scalloped brass plates with a stud over the frame's four corners."""
    reach = 92
    y, x = grid(SIDE, SIDE)
    fx, fy = np.minimum(x, SIDE - x), np.minimum(y, SIDE - y)
    arm = np.minimum(np.maximum(fx - reach, fy - FRAME + 13), np.maximum(fy - reach, fx - FRAME + 13))
    lobes = [ellipse(fy, fx, reach - 4, (FRAME - 13) / 2, 15, 15),
             ellipse(fy, fx, (FRAME - 13) / 2, reach - 4, 15, 15),
             ellipse(fy, fx, FRAME - 8, FRAME - 8, 15, 15)]
    bites = [ellipse(fy, fx, reach - 27, FRAME - 9, 10, 10), ellipse(fy, fx, FRAME - 9, reach - 27, 10, 10)]
    plate = arm
    for lobe in lobes:
        plate = np.minimum(plate, lobe)
    for bite in bites:
        plate = np.maximum(plate, -bite)
    shadow = smoothstep(9, -2, np.roll(plate, (3, 2), (0, 1)))
    picture = mix(picture, picture * 0.35, shadow)
    metal = brass(SIDE, SIDE, seed + 50)
    height = smoothstep(1, -5, plate) * 3.0
    height += 5.0 * np.sqrt(np.clip(1 - ((fx - 23) ** 2 + (fy - 23) ** 2) / 11.0 ** 2, 0, 1))
    for cx, cy in ((reach - 4, 18.5), (18.5, reach - 4), (FRAME - 7, FRAME - 7)):
        height += 3.0 * np.sqrt(np.clip(1 - ((fx - cx) ** 2 + (fy - cy) ** 2) / 5.5 ** 2, 0, 1))
    groove = np.exp(-((plate + 5.5) / 1.1) ** 2)
    dy, dx = np.gradient(blur(height, 0.7))
    shade = 1 + 0.55 * np.clip(dy * 0.8 + dx * 0.6, -1, 1) - 0.35 * groove
    return mix(picture, metal * shade[..., None], inside(plate))


def edge_strip(seed):
    """What the chamfers show: worn oak, lighter along its middle, brass at both ends."""
    y, x = grid(EDGE, SIDE)
    wood = oak(EDGE, SIDE, seed)
    wear = np.exp(-((y - EDGE / 2) / 9) ** 2) * (0.25 + 0.5 * streaks(1024, 24, seed + 5)[:EDGE, :SIDE])
    wood = mix(wood, rgb("e3b57c") * np.ones_like(wood), np.clip(wear, 0, 1))
    fx = np.minimum(x, SIDE - x)
    metal = brass(EDGE, SIDE, seed + 7)
    metal *= (0.9 + 0.35 * np.exp(-((y - EDGE / 2) / 7) ** 2))[..., None]
    scallop = fx - 86 - 10 * np.cos((y / EDGE - 0.5) * np.pi)
    wood *= (1 - 0.5 * np.exp(-np.clip(scallop, 0, 99) / 4))[..., None]
    return mix(wood, metal, inside(scallop))


def boards(seed):
    """The lid and the floor: plain planks, which the title camera never sees."""
    height = CELL // 2 - EDGE - 2 * GUTTER
    planks = oak(height, SIDE, seed)
    y, _ = grid(height, SIDE)
    joint = np.exp(-((y % (height / 4)) / 2.0) ** 2)
    return planks * (1 - 0.6 * joint)[..., None]


# --- the poodle -----------------------------------------------------------------

def poodle(shape, left, ground, height, flip=False, seed=0):
    """Mask of a poodle in profile, looking right (left when flipped): its place on the
    ground is the middle of its paws."""
    y, x = grid(*shape)
    u = (x - left) / height * (-1 if flip else 1)
    v = (ground - y) / height
    curly = [
        capsule(v, u, (-0.20, 0.54), (0.14, 0.57), 0.13),                                # body
        ellipse(v, u, 0.17, 0.58, 0.20, 0.21), ellipse(v, u, -0.22, 0.52, 0.17, 0.16),   # mane, haunch
        capsule(v, u, (0.22, 0.68), (0.29, 0.82), 0.10),                                 # neck
        ellipse(v, u, 0.28, 0.945, 0.125, 0.11), ellipse(v, u, 0.225, 0.79, 0.075, 0.15),  # top-knot, ear
        ellipse(v, u, -0.42, 0.86, 0.095, 0.09),                                         # tail
        ellipse(v, u, 0.105, 0.16, 0.080, 0.095), ellipse(v, u, 0.285, 0.18, 0.075, 0.09),
        ellipse(v, u, -0.165, 0.16, 0.075, 0.09), ellipse(v, u, -0.345, 0.17, 0.078, 0.092),
    ]
    plain = [
        ellipse(v, u, 0.335, 0.855, 0.095, 0.085),                                       # head
        capsule(v, u, (0.37, 0.84), (0.475, 0.815), 0.045), ellipse(v, u, 0.515, 0.832, 0.028, 0.026),
        capsule(v, u, (-0.30, 0.58), (-0.40, 0.80), 0.026),
        capsule(v, u, (0.11, 0.45), (0.10, 0.05), 0.042), ellipse(v, u, 0.135, 0.035, 0.070, 0.036),
        capsule(v, u, (0.23, 0.46), (0.29, 0.06), 0.042), ellipse(v, u, 0.325, 0.035, 0.068, 0.036),
        capsule(v, u, (-0.20, 0.42), (-0.15, 0.06), 0.045), ellipse(v, u, -0.115, 0.035, 0.070, 0.036),
        capsule(v, u, (-0.28, 0.45), (-0.36, 0.25), 0.055), capsule(v, u, (-0.36, 0.25), (-0.33, 0.06), 0.042),
        ellipse(v, u, -0.295, 0.035, 0.070, 0.036),
    ]
    curls = (noise(1024, 1024, 72, octaves=2, seed=seed)[:shape[0], :shape[1]] - 0.5) * 0.045
    distance = np.minimum(np.minimum.reduce(curly) + curls, np.minimum.reduce(plain))
    return inside(distance * height)


# --- the cover ------------------------------------------------------------------

def sky(size):
    y, x = grid(size, size) / size
    level = np.clip(y + 0.12 * (0.45 - x), 0, 1)
    stops = [(0.0, "2a3470"), (0.20, "4b4390"), (0.36, "8d5098"), (0.48, "d0626f"),
             (0.58, "f39450"), (0.68, "ffd27a"), (1.0, "ffd27a")]
    picture = np.stack([np.interp(level, [s for s, _ in stops], [rgb(c)[i] for _, c in stops])
                        for i in range(3)], axis=-1)
    cloud = streaks(size, 5, 31)
    lit = np.clip((np.roll(cloud, -7, 0) - cloud) * 7 + 0.35, 0, 1)
    colour = mix(rgb("5d3f7c"), rgb("ffb26b"), lit) * np.ones_like(picture)
    amount = smoothstep(0.5, 0.72, cloud) * smoothstep(0.02, 0.2, y) * 0.75
    picture = mix(picture, colour, amount)
    return stars(picture)


def stars(picture):
    rng = np.random.default_rng(SEED)
    size = picture.shape[0]
    y, x = grid(size, size)
    for _ in range(46):
        sx, sy, bright = rng.random() ** 0.6 * size, rng.random() ** 1.7 * size * 0.36, rng.random()
        shine = np.exp(-((x - sx) ** 2 + (y - sy) ** 2) / (0.7 + 1.3 * bright) ** 2)
        picture = picture + (shine * (0.45 + 0.55 * bright))[..., None] * CANDLE
    return np.clip(picture, 0, 1)


def hills(picture):
    size = picture.shape[0]
    y, x = grid(size, size)
    ridges = [(0.585, 0.030, 5.1, 0.4, "b56a78"), (0.61, 0.022, 8.0, 2.0, "8a4a6a")]
    for base, swing, waves, phase, colour in ridges:
        ridge = base - swing * np.sin(x / size * waves + phase) - swing * 0.4 * np.sin(x / size * waves * 2.7)
        body = rgb(colour) * (1.0 + 0.25 * smoothstep(0.06, 0.0, y / size - ridge))[..., None]
        picture = mix(picture, body, inside((ridge * size - y) * 0.9))
    return picture


def tower(cx, top, width, base, roof):
    """Outlines of a tower and its pointed roof."""
    w = width / 2
    return ([(cx - w, base), (cx - w * 0.92, top), (cx + w * 0.92, top), (cx + w, base)],
            [(cx - w * 1.45, top + 2), (cx + w * 0.1, top - roof), (cx + w * 1.45, top + 2)])


def castle(picture, cx, base, size):
    """The castle on its hill; `size` stretches measures that are given in pixels."""
    shape = picture.shape[:2]

    def at(dx, up):
        return cx + dx * size, base - up * size

    walls, roofs = [[at(-62, 0), at(-60, 42), at(60, 44), at(62, 0)]], []
    for dx, up, width, roof in ((-56, 78, 28, 44), (-18, 122, 28, 58), (20, 92, 34, 46), (58, 70, 26, 38)):
        wall, cone = tower(*at(dx, up), width * size, base, roof * size)
        walls.append(wall)
        roofs.append(cone)
    for left in range(-56, 61, 13):
        walls.append([at(left, 40), at(left, 50), at(left + 7, 50), at(left + 7, 40)])
    picture = mix(picture, rgb("533464") * np.ones_like(picture), polygons(shape, *walls))
    picture = mix(picture, rgb("3a2654") * np.ones_like(picture), polygons(shape, *roofs))
    spots = [(-18, 106), (-18, 84), (20, 76), (58, 56), (-56, 62), (-2, 30), (36, 28), (-36, 26)]
    return windows(picture, [(*at(dx, up), 4 * size, 8 * size) for dx, up in spots])


def windows(picture, places):
    """Lit windows: x, y of the middle, width, height."""
    shape = picture.shape[:2]
    panes = polygons(shape, *[[(x - w / 2, y + h / 2), (x - w / 2, y - h / 4), (x, y - h / 2),
                               (x + w / 2, y - h / 4), (x + w / 2, y + h / 2)] for x, y, w, h in places])
    picture = picture + blur(panes, 6)[..., None] * rgb("ff8a30") * 0.9
    return mix(picture, rgb("ffdc86") * np.ones_like(picture), panes)


def house(picture, left, base, width, wall, roof, lean=0):
    """A crooked house front, its left side in the afterglow."""
    shape = picture.shape[:2]
    right, top = left + width, base - wall
    front = polygons(shape, [(left, base), (left + lean * 0.5, top), (right + lean * 0.5, top), (right, base)],
                     [(left + lean * 0.5, top), (left + width * 0.45 + lean, top - roof), (right + lean * 0.5, top)])
    over = width * 0.10
    peak = (left + width * 0.45 + lean, top - roof - 4)
    eave = (left + lean * 0.5 - over, top + over * 0.6), (right + lean * 0.5 + over, top + over * 0.6)
    thick = 7
    shingles = polygons(shape, [eave[0], peak, eave[1], (eave[1][0] - 3, eave[1][1] + thick),
                                (peak[0], peak[1] + thick * 1.7), (eave[0][0] + 3, eave[0][1] + thick)])
    y, x = grid(*shape)
    glow = np.clip(1.05 - (x - left) / width * 0.75, 0, 1)
    plaster = mix(rgb("43263f"), rgb("96525a"), 0.25 + 0.75 * glow * smoothstep(base, top - roof, y))
    picture = mix(picture, plaster, front)
    beams = polygons(shape, *[[(bx, base), (bx + lean * 0.5, top), (bx + 4 + lean * 0.5, top), (bx + 4, base)]
                              for bx in np.linspace(left + 1, right - 5, 3)],
                     [(left, top), (right, top), (right, top + 4), (left, top + 4)])
    picture = mix(picture, rgb("2b1830") * np.ones_like(picture), beams)
    picture = mix(picture, mix(rgb("2c1c3a"), rgb("b4566a"), np.clip(glow * 0.9 - 0.15, 0, 1)), shingles)
    panes = [(left + width * 0.28 + lean * 0.4, base - wall * 0.52, width * 0.14, wall * 0.34),
             (left + width * 0.70 + lean * 0.4, base - wall * 0.52, width * 0.14, wall * 0.34),
             (left + width * 0.46 + lean * 0.7, top - roof * 0.28, width * 0.12, roof * 0.26)]
    return windows(picture, panes)


def smoke(picture, x0, y0, drift, seed):
    """A soft plume that leans to the right and thins out as it rises."""
    size = picture.shape[0]
    y, x = grid(size, size)
    rise = np.clip((y0 - y) / (size * 0.40), 0, 1)
    churn = noise(size, size, 7, seed=seed)
    centre = x0 + drift * rise ** 1.4 + (churn - 0.5) * 70 * rise
    width = 16 + 46 * rise
    body = np.exp(-((x - centre) / width) ** 2) * (y < y0) * smoothstep(1, 0.35, rise)
    amount = np.clip(body * (0.55 + 1.1 * (churn - 0.25)), 0, 1) * 0.9
    billow = np.clip((np.roll(churn, -8, 0) - churn) * 4 + 0.4, 0, 1)
    fire_lit = smoothstep(0.22, 0.0, rise) * (0.4 + 0.6 * billow)
    colour = mix(mix(rgb("3b2344"), rgb("7a4a66"), billow), rgb("c2542e"), fire_lit)
    return mix(picture, colour, amount)


def fire(picture, x0, y0, width, height, seed):
    """Torn tongues of flame with their glow on everything round them."""
    size = picture.shape[0]
    y, x = grid(size, size)
    distance = np.hypot(x - x0, (y - y0 + height * 0.3))
    picture = picture + (np.exp(-(distance / (height * 0.9)) ** 2) * 0.34)[..., None] * rgb("ff6a1c")
    lick = noise(size, size, 16, octaves=3, seed=seed) - 0.5
    torn = noise(size * 2, size, 40, octaves=3, seed=seed + 300)[:size]        # drawn out along y
    heat = np.zeros((size, size))
    for offset, share, phase in ((-0.36, 0.60, 0.3), (0.0, 1.0, 1.9), (0.20, 0.78, 5.0), (0.42, 0.52, 4.0)):
        t = np.clip((y0 - y) / (height * share), -0.2, 1)
        rise = np.clip(t, 0, 1)
        sway = (0.14 * np.sin(rise * 5 + phase) + lick * 0.6) * rise
        centre = x0 + width * (offset * (1 - 0.45 * rise) + sway)
        half = width * 0.36 * (1 - rise) ** 0.8 * (0.6 + 0.8 * np.sqrt(rise + 0.02)) + 0.01
        tongue = np.clip(1.2 - (x - centre) ** 2 / half ** 2, 0, 1.2) * (t > -0.1) * (1.0 - 0.35 * rise)
        heat = np.maximum(heat, tongue - (0.35 + 0.75 * rise) * 0.9 * torn)
    heat *= smoothstep(y0 + 6, y0 - 10, y)
    stops = [0.0, 0.22, 0.46, 0.72, 1.0]
    ramp = [rgb(c) for c in ("c22a12", "e8481a", "ff8a28", "ffc850", "fff6c8")]
    colour = np.stack([np.interp(heat, stops, [c[i] for c in ramp]) for i in range(3)], axis=-1)
    return mix(picture, colour, smoothstep(0.02, 0.16, heat))


def sparks(picture, seed, count, region):
    rng = np.random.default_rng(SEED + seed)
    size = picture.shape[0]
    y, x = grid(size, size)
    left, top, right, bottom = region
    for _ in range(count):
        sx, sy, r = rng.uniform(left, right), rng.uniform(top, bottom), rng.uniform(0.8, 1.9)
        shine = np.exp(-((x - sx) ** 2 + (y - sy) ** 2) / r ** 2)
        picture = picture + shine[..., None] * rgb("ffa040")
    return picture


def meadow(picture):
    """The dark hill in front; its edge catches the fire's light. Returns its height at x as well."""
    size = picture.shape[0]
    y, x = grid(size, size)

    def edge(at):
        return size * (0.705 - 0.028 * np.sin(at / size * 4.2 + 0.5) - 0.010 * np.sin(at / size * 11))

    tufts = (noise(size, size, 70, octaves=2, seed=44)[0] - 0.5) * 9
    depth = y - edge(x) - tufts[None, :]
    colour = mix(rgb("8a4232"), rgb("2c1a2e"), smoothstep(0, 16, depth))
    colour = mix(colour, rgb("1c1224") * np.ones_like(colour), smoothstep(10, 190, depth))
    colour = colour * (0.85 + 0.3 * streaks(size, 20, 45))[..., None]
    return mix(picture, colour, inside(-depth)), edge


def rim_light(picture, body, colour, light, shift):
    """Fills a silhouette and lights the edge that looks towards (-shift)."""
    rim = np.clip(body - np.roll(blur(body, 0.8), shift, (0, 1)), 0, 1)
    picture = mix(picture, colour * np.ones_like(picture), body)
    return mix(picture, light * np.ones_like(picture), np.clip(rim * 1.5, 0, 1))


def cover(fonts):
    """Side 0: the burning town at dusk, the title, the key that starts the game."""
    picture = hills(sky(PANEL))
    picture = castle(picture, PANEL * 0.835, PANEL * 0.655, 1.2)
    ground = PANEL * 0.72
    for place in ((0.40, 62, 44, 30, 3), (0.545, 66, 40, 34, -3)):
        at, width, wall, roof, lean = place
        picture = house(picture, PANEL * at, ground - 22, width, wall, roof, lean)
    picture = smoke(picture, PANEL * 0.70, PANEL * 0.60, 60, 51)
    picture = smoke(picture, PANEL * 0.475, PANEL * 0.60, 70, 52)
    picture = fire(picture, PANEL * 0.47, ground - 70, 62, 112, 53)
    for place in ((0.43, 90, 52, 44, -3), (0.60, 100, 58, 46, 4), (0.90, 74, 38, 34, -4)):
        at, width, wall, roof, lean = place
        picture = house(picture, PANEL * at, ground + 2, width, wall, roof, lean)
    picture = fire(picture, PANEL * 0.68, ground - 84, 80, 128, 54)
    picture = fire(picture, PANEL * 0.965, ground - 60, 30, 50, 55)
    picture = sparks(picture, 1, 60, (PANEL * 0.42, PANEL * 0.34, PANEL, PANEL * 0.66))
    picture, edge = meadow(picture)
    at = PANEL * 0.20
    dog = poodle(picture.shape[:2], at, edge(at) + 3, PANEL * 0.335, seed=46)
    picture = rim_light(picture, dog, rgb("22142a"), rgb("ffb25e"), (2, -3))
    picture = picture[:, ::-1]  # the castle lies to the left, as it does from where the game starts
    picture = title(picture, fonts)
    return np.clip(cover_keys(picture, fonts), 0, 1)


def title(picture, fonts):
    size = picture.shape[0]
    mask = Mask(size, size)
    fonts["title"].draw(mask, "Talvery", size / 2, size * 0.265, size * 0.288, "centre")
    letters = mask.picture()
    halo = np.clip(blur(letters, 2.2) * 2.6, 0, 1)
    picture = mix(picture, picture * 0.35 + rgb("301038") * 0.25, np.clip(blur(letters, 9) * 1.1, 0, 0.8))
    picture = mix(picture, rgb("241030") * np.ones_like(picture), halo)
    y, _ = grid(size, size)
    gold = mix(rgb("fff6d6"), rgb("ffb347"), smoothstep(size * 0.07, size * 0.31, y))
    light = np.clip(letters - np.roll(blur(letters, 0.6), (2, 2), (0, 1)), 0, 1)
    shade = np.clip(letters - np.roll(blur(letters, 0.6), (-2, -2), (0, 1)), 0, 1)
    picture = mix(picture, gold, letters)
    picture = mix(picture, rgb("fffdf0") * np.ones_like(picture), light * 0.9)
    return mix(picture, rgb("b4561c") * np.ones_like(picture), shade * 0.8)


def cover_keys(picture, fonts):
    size = picture.shape[0]
    row = Row(picture, fonts, size * 0.852, 60, CANDLE)
    picture = row.centre(["press ", ("p",), " to start"])
    row = Row(picture, fonts, size * 0.962, 37, rgb("ffdca8"))
    return row.centre([("n",), " ", ("m",), " turn the cube", "   ", ("Esc",), " ends the game"])


# --- lettered sheets ---------------------------------------------------------------

class Row:
    """One line of words, keys and little pictures, its baseline at y. An item is a text, a key
    as (label,) or a mouse as (None, lit button)."""

    def __init__(self, picture, fonts, y, size, colour, heavy=False):
        self.picture, self.fonts, self.y, self.size, self.colour = picture, fonts, y, size, colour
        self.face = fonts["bold" if heavy else "text"]

    def width(self, item):
        if isinstance(item, str):
            blanks = len(item) - len(item.strip())
            return self.face.width(item.strip(), self.size) + blanks * self.size * 0.24
        if item[0] is None:
            return self.size * 0.86
        return max(self.size * 1.02, self.fonts["text"].width(item[0], self.size * 0.82) + self.size * 0.5)

    def centre(self, items):
        return self.left(items, (self.picture.shape[1] - sum(map(self.width, items))) / 2)

    def left(self, items, x):
        for item in items:
            width = self.width(item)
            if isinstance(item, str):
                start = x + (len(item) - len(item.lstrip())) * self.size * 0.24
                self.word(item.strip(), start)
            elif item[0] is None:
                self.mouse(x, width, item[1])
            else:
                self.key(x, width, item[0])
            x += width
        return self.picture

    def word(self, text, x):
        mask = Mask(*self.picture.shape[:2])
        self.face.draw(mask, text, x, self.y, self.size)
        self.ink(mask.picture(), self.colour)

    def ink(self, amount, colour):
        self.picture = mix(self.picture, colour * np.ones_like(self.picture), amount)

    def key(self, x, width, label):
        """An ivory key with a worn cap; it shows the small letter because that is what counts."""
        y, xx = grid(*self.picture.shape[:2])
        height = self.size * 0.98
        top = self.y - self.size * 0.76
        body = rounded(y, xx, x, top, width, height, self.size * 0.17)
        cap = rounded(y, xx, x + 2.5, top + 1.5, width - 5, height - self.size * 0.17, self.size * 0.14)
        self.picture = mix(self.picture, self.picture * 0.45, smoothstep(6, -3, np.roll(body, (3, 1), (0, 1))))
        self.ink(inside(body), rgb("8a6238"))
        face = mix(rgb("fffaea"), rgb("eacf9a"), np.clip((y - top) / height, 0, 1))
        self.picture = mix(self.picture, face, inside(cap))
        mask = Mask(*self.picture.shape[:2])
        self.fonts["bold"].draw(mask, label, x + width / 2, self.y - self.size * 0.08, self.size * 0.82, "centre")
        self.ink(mask.picture(), INK)

    def mouse(self, x, width, lit):
        """A mouse with its tail; the lit button is red."""
        y, xx = grid(*self.picture.shape[:2])
        cx, cy, rx, ry = x + width / 2, self.y - self.size * 0.27, self.size * 0.30, self.size * 0.42
        body = ellipse(y, xx, cx, cy, rx, ry)
        tail = np.abs(xx - cx - 3 * np.sin((y - cy) * 0.45)) - 1.2 + 99 * ((y > cy - ry) | (y < cy - ry * 1.4))
        self.ink(inside(np.minimum(body - 1.5, tail)), INK)
        self.ink(inside(body + 1.5), rgb("fbf1d6"))
        upper = np.maximum(body + 2.5, y - cy + self.size * 0.06)
        if lit == "left":
            self.ink(inside(np.maximum(upper, xx - cx)), RUBRIC)
        if lit == "right":
            self.ink(inside(np.maximum(upper, cx - xx)), RUBRIC)
        split = np.minimum(np.abs(xx - cx) + 99 * (y > cy - self.size * 0.05), np.abs(y - cy + self.size * 0.05))
        self.ink(inside(np.maximum(split - 0.9, body)), INK)


def parchment(seed, burnt):
    """A sheet on soot-black wood, singed round its edge; `burnt` is how far the fire has come (0..1)."""
    y, x = grid(PANEL, PANEL)
    blotch = noise(PANEL, PANEL, 4, seed=seed)
    fibre = streaks(PANEL, 40, seed + 1)
    sheet = mix(rgb("f8eabf"), rgb("edcf96"), np.clip(0.45 * blotch + 0.55 * fibre * blotch + 0.1, 0, 1))
    border = np.minimum(np.minimum(x, PANEL - x), np.minimum(y, PANEL - y))
    corner = np.hypot(PANEL - x, PANEL - y)
    eaten = burnt * 70 * np.exp(-(corner / 90) ** 2) + burnt * 44 * np.exp(-(np.hypot(x, PANEL - y) / 60) ** 2)
    ragged = (noise(PANEL, PANEL, 12, octaves=4, seed=seed + 2) - 0.5) * (10 + 16 * burnt)
    depth = border - 6 - eaten + ragged
    sheet = mix(sheet, rgb("c98f4e") * np.ones_like(sheet), 0.85 * np.exp(-np.clip(depth, 0, 999) / 13))
    sheet = mix(sheet, rgb("3a1c0e") * np.ones_like(sheet), smoothstep(9, 1, depth))
    table = oak(PANEL, PANEL, seed + 3) * 0.22
    shadow = smoothstep(-14, 0, np.roll(depth, (3, 3), (0, 1)))
    picture = mix(table * (1 - 0.6 * shadow)[..., None], sheet, inside(-depth))
    ember = np.exp(-(depth / 1.7) ** 2) * smoothstep(0.38, 0.62, noise(PANEL, PANEL, 9, seed=seed + 4))
    glow = blur(ember, 6)
    picture = picture + glow[..., None] * rgb("ff6a1c") * 0.9
    picture = mix(picture, rgb("ffb043") * np.ones_like(picture), np.clip(ember * (0.55 + burnt), 0, 1))
    lip = np.clip(1 - np.minimum(x / 12, y / 14), 0, 1)         # the frame's shadow
    return np.clip(picture, 0, 1) * (1 - 0.45 * lip ** 1.5)[..., None]


def rule(picture, y0, half, colour=RUBRIC):
    """A tapering line with a diamond in its middle."""
    y, x = grid(*picture.shape[:2])
    middle = picture.shape[1] / 2
    dx = np.abs(x - middle)
    line = np.abs(y - y0) - 1.7 * (1 - dx / half)
    line = np.where((dx < half) & (dx > 14), line, 9)
    gem = np.minimum(dx + np.abs(y - y0) - 7, np.abs(dx - 20) + np.abs(y - y0) - 3)
    return mix(picture, colour * np.ones_like(picture), inside(np.minimum(line, gem)))


def heading(picture, fonts, text, y, size=76):
    mask = Mask(*picture.shape[:2])
    fonts["title"].draw(mask, text, picture.shape[1] / 2, y, size, "centre")
    letters = mask.picture()
    picture = mix(picture, picture * 0.75, np.clip(np.roll(blur(letters, 1.5), (2, 2), (0, 1)), 0, 1))
    return mix(picture, RUBRIC * np.ones_like(picture), letters)


def keys_sheet(fonts):
    """Side 1: the keys and the mouse."""
    picture = heading(parchment(61, 0.15), fonts, "The Keys", 82)
    picture = rule(picture, 106, 200)
    rows = [([("w",), " ", ("s",)], "walk"), ([("a",), " ", ("d",)], "turn"),
            ([(",",), " ", (".",)], "sidestep"), ([("space",)], "hold still"),
            ([("1",), " ", ("2",), " ", ("3",)], "near, middle, far"),
            ([(None, "")], "move it to look around"),
            ([(None, "left"), " ", (None, "right")], "hold to zoom in, out"),
            ([("Esc",)], "back to the title")]
    size, first, step, split = 46, 154, 52, PANEL * 0.385
    for i, (keys, text) in enumerate(rows):
        row = Row(picture, fonts, first + step * i, size, INK)
        picture = row.left(keys, split - 18 - sum(map(row.width, keys)))
        picture = Row(picture, fonts, first + step * i, size, INK).left([text], split + 10)
    return picture


def battle_sheet(fonts):
    """Side 2: how a battle goes."""
    picture = heading(parchment(71, 0.35), fonts, "Battle", 86)
    shape = picture.shape[:2]
    for at, flip, colour, seed in ((0.17, False, rgb("2b2230"), 72), (0.83, True, rgb("8a1f14"), 73)):
        dog = poodle(shape, PANEL * at, 104, 84, flip, seed)
        picture = mix(picture, colour * np.ones_like(picture), dog)
    picture = rule(picture, 122, 215)
    centred = [(160, ["Walk into an enemy poodle:"]),
               (206, [("w",), " ", ("s",), "  choose,  ", ("Enter",), "  moves."]),
               (248, ["Your move, then the enemy's;"]),
               (288, ["after a win the enemy begins."])]
    for y, items in centred:
        picture = Row(picture, fonts, y, 46, INK).centre(items)
    picture = rule(picture, 310, 120)
    moves = [("ATTACK", "takes 20 to 56"), ("DEFEND", "adds 20 health"), ("SPECIAL", "leaves 1 health, once")]
    for i, (name, effect) in enumerate(moves):
        y = 342 + 41 * i
        picture = Row(picture, fonts, y, 44, RUBRIC, heavy=True).left([name], 40)
        picture = Row(picture, fonts, y, 48, INK).left([effect], 232)
    picture = rule(picture, 442, 120)
    picture = Row(picture, fonts, 480, 48, INK).centre(["Win when its health is gone."])
    return Row(picture, fonts, 520, 48, INK).centre(["Nobody ever loses."])


def story_sheet(fonts):
    """Side 3: the story and who made the game."""
    picture = heading(parchment(81, 0.75), fonts, "Drossmere", 82)
    picture = rule(picture, 104, 215)
    story = ["is a kingdom that burns slowly.", "Its trees were burned by the",
             "TALVERYS; the roofs caught it", "like a rumour. The sun has been",
             "setting ever since: nobody has", "told it that it may stop. Through", "the sparks trots Quorvel, a poodle,",
             "to ask at the castle in the west", "who began it all."]
    for i, line in enumerate(story):
        picture = Row(picture, fonts, 146 + 38 * i, 45, INK).left([line], 46)
    picture = rule(picture, 468, 120)
    credit = ["Made by the Talvery developers. MIT licence.", "Lettering: Zainer Gotico-Antiqua, Junicode."]
    for i, line in enumerate(credit):
        picture = Row(picture, fonts, 498 + 33 * i, 32, INK).centre([line])
    return picture


# --- the whole -------------------------------------------------------------------

def side(panel, seed):
    picture = np.zeros((SIDE, SIDE, 3))
    picture[FRAME:-FRAME, FRAME:-FRAME] = panel
    return np.clip(frame(picture, seed) * DUSK, 0, 1)


def padded(part):
    return np.pad(part, ((GUTTER, GUTTER), (GUTTER, GUTTER), (0, 0)), mode="edge")


def atlas(sides):
    picture = np.zeros((HEIGHT, WIDTH, 3))
    for k in range(3):
        picture[:CELL, k * CELL:(k + 1) * CELL] = padded(sides[k])
    fourth, low = padded(sides[3]), HEIGHT - CELL
    picture[CELL:, :CELL] = fourth[:low]
    picture[CELL:, CELL:2 * CELL] = fourth[-low:]
    strip, planks = padded(edge_strip(91)), padded(boards(95))
    rest = picture[CELL:, 2 * CELL:3 * CELL]
    rest[:len(strip)] = strip
    rest[len(strip):] = planks[np.minimum(np.arange(low - len(strip)), len(planks) - 1)]
    picture[:, 3 * CELL:] = picture[:, 3 * CELL - 1:3 * CELL]
    return picture


def place(x, y):
    """Texture coordinates of a pixel of the atlas."""
    return x / WIDTH, 1 - y / HEIGHT


def side_place(k, x, y, lower):
    """Texture coordinates of a point of side k, x and y from -FLAT to FLAT."""
    px, py = (x / FLAT + 1) * SIDE / 2, (1 - y / FLAT) * SIDE / 2
    if k < 3:
        return place(k * CELL + GUTTER + px, GUTTER + py)
    if lower:
        return place(CELL + GUTTER + px, HEIGHT - CELL + GUTTER + py)
    return place(GUTTER + px, CELL + GUTTER + py)


def side_mesh(k):
    """Side k as it stands in front: the panel and four sloping pieces of the frame. The fourth
    side's picture is stored in halves, so it is cut in the middle."""
    mesh = Mesh()
    inner = FLAT * (1 - 2 * FRAME / SIDE)

    def put(points, lower=False):
        depth = [HALF if max(abs(x), abs(y)) > inner + 1e-6 else HALF - RECESS for x, y in points]
        mesh.face([(x, y, z) for (x, y), z in zip(points, depth)],
                  [side_place(k, x, y, lower) for x, y in points])

    halves = [(-1, 1, False)] if k < 3 else [(-1, 0, True), (0, 1, False)]
    for bottom, top, lower in halves:
        b, t, ob, ot = bottom * inner, top * inner, bottom * FLAT, top * FLAT
        put([(-inner, b), (inner, b), (inner, t), (-inner, t)], lower)
        put([(-FLAT, ob), (-inner, b), (-inner, t), (-FLAT, ot)], lower)
        put([(inner, b), (FLAT, ob), (FLAT, ot), (inner, t)], lower)
    put([(-FLAT, -FLAT), (FLAT, -FLAT), (inner, -inner), (-inner, -inner)], True)
    put([(-inner, inner), (inner, inner), (FLAT, FLAT), (-FLAT, FLAT)])
    return mesh


def strip_place(along, across):
    """Texture coordinates on the edges' strip, both 0..1."""
    return place(2 * CELL + GUTTER + along * SIDE, CELL + GUTTER + across * EDGE)


def outward(points, uvs, mesh):
    if polygon_normal(points) @ np.mean(points, axis=0) < 0:
        points, uvs = points[::-1], uvs[::-1]
    mesh.face(points, uvs)


def edges_mesh():
    """Twelve chamfers, eight corners, the lid and the floor."""
    mesh = Mesh()
    for axis in range(3):
        i, j = (axis + 1) % 3, (axis + 2) % 3
        for s in (-1, 1):
            for t in (-1, 1):
                points = []
                for end, (a, b) in ((-1, (HALF, FLAT)), (1, (HALF, FLAT)), (1, (FLAT, HALF)), (-1, (FLAT, HALF))):
                    point = np.zeros(3)
                    point[axis], point[i], point[j] = end * FLAT, s * a, t * b
                    points.append(point)
                outward(points, [strip_place(*c) for c in ((0, 0), (1, 0), (1, 1), (0, 1))], mesh)
    for signs in [(a, b, c) for a in (-1, 1) for b in (-1, 1) for c in (-1, 1)]:
        points = [np.where(np.arange(3) == axis, HALF, FLAT) * signs for axis in range(3)]
        outward(points, [strip_place(*c) for c in ((0.005, 0.2), (0.06, 0.2), (0.03, 0.8))], mesh)
    top, low = CELL + EDGE + 3 * GUTTER, HEIGHT - GUTTER
    left = 2 * CELL + GUTTER
    for y in (-HALF, HALF):
        points = [(-FLAT, y, FLAT), (FLAT, y, FLAT), (FLAT, y, -FLAT), (-FLAT, y, -FLAT)]
        outward(points, [place(left, low), place(left + SIDE, low), place(left + SIDE, top), place(left, top)], mesh)
    return mesh


def main():
    text = "junicode/JunicodeTwoBeta-Semibold.otf"
    fonts = {"title": Font("gotico-antiqua/Zainer-GoticoAntiqua96G.otf", "fonts-gotico-antiqua"),
             "text": Font(text, "fonts-junicode"),
             "bold": Font(text.replace("Semibold", "Bold"), "fonts-junicode")}
    panels = [cover(fonts), keys_sheet(fonts), battle_sheet(fonts), story_sheet(fonts)]
    write_bmp("intro.bmp", atlas([side(panel, 100 + 7 * k) for k, panel in enumerate(panels)]))
    mesh = edges_mesh()
    for k in range(4):
        mesh.add(side_mesh(k).turned(-90 * k))     # a turn by 'n' brings the -x side to the front
    mesh.write("introCube.obj", TRIANGLES)


main()
