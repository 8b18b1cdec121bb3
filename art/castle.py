"""The castle of Drossmere and its picture.

Run: blender -b --factory-startup -P art/castle.py

The game draws it three times as large; all measures here are model units above
its ground. The gate and the two low walls of its approach face +x, the town.
"""
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))

import numpy as np

from building import SLATE_LIGHT, TILE_RED, Atlas, Builder, Panel, centred, ears, outward
from shared import PALETTE, Sheet, box, loft, mix, rgb, ring, smoothstep, write_bmp

GROUND = -1.567
DENSITY = 40                       # pixels a unit: a strip is as long as the castle is wide
LENGTH = 12.5                      # of the strips
COURSE, STONE = 0.19, (0.22, 0.48)

CURTAIN_TOP, CURTAIN_THICK = 1.90, 0.34
MERLON, GAP = 0.34, 0.34         # width of a merlon and of the gap beside it
FRONT, BACK, SIDE = 3.60, -2.50, 3.78
GATE_X, GATE_HALF, GATE_TOP, GATE_ARCH, GATE_ARCH_TOP = 4.12, 0.86, 2.35, 0.50, 1.45

STONES = [PALETTE["stone"] * 1.3, rgb("9c8f86"), rgb("827b85"), rgb("a5948a"), PALETTE["stone"] * 1.1]
FRAME = rgb("6d5f5a")
SLATES = [PALETTE["slate"] * 1.3, PALETTE["slate"] * 1.05, SLATE_LIGHT, rgb("505a72")]
PLUMS = [PALETTE["plum"] * 1.35, PALETTE["plum"] * 1.05, TILE_RED * 1.05, rgb("744a68")]


# The picture ------------------------------------------------------------------

def masonry(height, seed):
    panel = Panel(LENGTH, height, DENSITY, seed)
    panel.stones(COURSE, STONE, STONES, mortar=0.022, joint=0.95, raised=0.7)
    stain = smoothstep(0.50, 0.75, panel.grain(0.9, 3))
    panel.shade(stain * 0.7, np.array((0.76, 0.74, 0.80)))
    streak = smoothstep(0.52, 0.8, panel.grain(0.22, 4, stretch=7.0))
    panel.shade(streak * 0.5, 0.72)
    panel.mottle(2.5, 0.20, 5)
    return panel


def slit(panel, x, y, width=0.20, height=0.46):
    panel.window(x, y, width, height, columns=1, rows=2, arched=True, halo=0.40, frame=0.05, trim=FRAME)


def curtain():
    panel = masonry(1.95, 1)
    for x in np.arange(-5.6, 6, 1.62):
        slit(panel, x + 0.3 * np.sin(5 * x), 0.98, 0.13, 0.42)
    band = panel.box(-9, 1.66, 9, 1.76, soft=0.015)
    panel.shade(panel.box(-9, 1.50, 9, 1.68, soft=0.06), 0.62)
    panel.blend(band, rgb("a2968a") * (0.8 + 0.3 * panel.grain(0.2, 7))[..., None])
    panel.ground_dirt(0.6, 0.8)
    return panel


def tower():
    panel = masonry(3.2, 2)
    for x, y in ((-5.3, 1.3), (-4.1, 2.35), (-2.9, 1.15), (-1.75, 2.2), (-0.5, 1.45),
                 (0.75, 2.45), (1.8, 1.2), (3.05, 2.1), (4.2, 1.35), (5.35, 2.4)):
        slit(panel, x, y, 0.24, 0.50)
    panel.ground_dirt(0.8, 0.8)
    return panel


def upper():
    panel = masonry(2.0, 3)
    for x in np.arange(-5.5, 6, 1.22):
        slit(panel, x, 0.42 + 0.75 * (round(x / 1.22) % 2), 0.25, 0.52)
    return panel


def drum():
    """The top storey of a tower: a ring of lit windows under the roof."""
    panel = masonry(0.62, 4)
    for x in np.arange(-6.0, 6.1, 0.54):
        slit(panel, x, 0.14, 0.17, 0.34)
    panel.eaves_shadow(0.66, 0.25, 0.5)
    return panel


def corbel():
    panel = masonry(0.30, 5)
    tooth = np.abs(((panel.x / 0.20) % 1) - 0.5) * 2
    arch = smoothstep(0.28, 0.38, tooth) * smoothstep(0.24, 0.16, panel.y)
    panel.blend(arch * 0.75, PALETTE["soot"] * 1.3)
    panel.shade(smoothstep(0.15, 0.0, panel.y), 0.7)
    return panel


def parapet():
    """Merlons: light on their upper edge."""
    panel = masonry(0.42, 6)
    panel.glow(smoothstep(0.30, 0.40, panel.y) * 0.28, PALETTE["cream"])
    return panel


def paving():
    panel = Panel(2.9, 2.9, DENSITY * 0.72, 7)
    panel.stones(0.3, (0.3, 0.6), [PALETTE["stone"], PALETTE["stone_dark"] * 1.2], mortar=0.04, raised=0.3)
    return panel


def roof(colours, seed):
    panel = Panel(2.2, 2.6, DENSITY, seed)
    panel.shingles(0.20, 0.20, colours)
    panel.shade(smoothstep(0.12, 0.0, panel.y), 0.7)
    panel.glow(smoothstep(1.2, 2.6, panel.y) * 0.12, PALETTE["cream"])
    return panel


def slate():
    return roof(SLATES, 8)


def plum():
    return roof(PLUMS, 9)


def gate_front():
    """The wall round the gate: an arch of large stones, torches, a coat of arms."""
    panel = Panel(1.8, 2.4, DENSITY, 10)
    panel.stones(COURSE, STONE, STONES, mortar=0.022, joint=0.95, raised=0.7)
    distance = panel.arch_distance(0, 0, GATE_ARCH * 2, GATE_ARCH_TOP)
    angle = np.arctan2(panel.sway_y - (GATE_ARCH_TOP - GATE_ARCH), panel.sway_x)
    upright = panel.sway_y < GATE_ARCH_TOP - GATE_ARCH
    block = np.where(upright, panel.sway_y / 0.19, angle / 0.30)
    joint = smoothstep(0.10, 0.03, np.abs(block - np.round(block)))
    panel.shade(smoothstep(0.30, 0.14, distance), 0.6)
    panel.blend(smoothstep(0.17, 0.15, distance), (rgb("b0a294") * (1 - 0.5 * joint)[..., None]))
    panel.shade(smoothstep(0.05, 0.0, distance), 0.5)
    shield = np.maximum(np.abs(panel.sway_x) / 0.20, np.abs(panel.sway_y - 1.98) / 0.24
                        + np.maximum(0, 1.9 - panel.sway_y) * np.abs(panel.sway_x) * 14)
    panel.blend(smoothstep(1.15, 1.08, shield), PALETTE["glow"] * 0.9)
    panel.blend(smoothstep(0.93, 0.86, shield), rgb("7a2f45"))
    paw(panel, 0, 1.95, 0.11, PALETTE["glow"])
    for side in (-1, 1):
        panel.lantern(side * 0.76, 1.25)
    panel.ground_dirt(0.5, 0.8)
    return panel


def paw(panel, x, y, size, colour):
    """The town's device, a paw: one pad and four toes."""
    spots = [(0, -0.25, 0.55)] + [(np.sin(a) * 0.95, np.cos(a) * 0.85 - 0.05, 0.27) for a in (-1.0, -0.35, 0.35, 1.0)]
    for dx, dy, r in spots:
        away = np.hypot(panel.sway_x - x - dx * size, panel.sway_y - y - dy * size)
        panel.blend(smoothstep(r * size * 1.12, r * size * 0.88, away), colour)


def portcullis():
    panel = Panel(1.1, 1.5, DENSITY, 11)
    away = np.hypot(panel.x * 1.5, panel.y - 0.55)
    panel.picture = mix(rgb("ffdf8e"), PALETTE["ember"] * 0.9, smoothstep(0.0, 0.7, away))
    panel.picture = mix(panel.picture, rgb("4a2320"), smoothstep(0.5, 1.15, away))
    panel.shade(smoothstep(0.25, 0.0, panel.y), 0.45)
    grid = np.minimum(np.abs(((panel.sway_x / 0.2) % 1) - 0.5) * 0.2, np.abs((((panel.sway_y - 0.1) / 0.24) % 1) - 0.5) * 0.24)
    panel.blend(smoothstep(0.040, 0.024, grid) * smoothstep(0.42, 0.46, panel.sway_y), PALETTE["soot"])
    tooth = np.abs(((panel.sway_x / 0.2) % 1) - 0.5) * 0.2
    panel.blend(smoothstep(0.035, 0.02, tooth + 0.3 * np.maximum(0, 0.42 - panel.sway_y)) * smoothstep(0.33, 0.36, panel.sway_y),
                PALETTE["soot"])
    return panel


def reveal():
    panel = Panel(3.6, 0.4, DENSITY, 12)
    panel.stones(0.2, (0.2, 0.34), STONES, mortar=0.03)
    panel.shade(smoothstep(0.4, 0.0, panel.y), np.array((0.75, 0.5, 0.38)))
    return panel


def banner():
    """Hangs from the battlements: a paw of gold on plum."""
    panel = Panel(0.44, 1.24, DENSITY * 1.5, 13)
    panel.picture = np.ones_like(panel.picture) * rgb("8a3350")
    fold = np.sin(panel.sway_x * 24 + 1.2 * panel.sway_y)
    panel.picture = panel.picture * (0.92 + 0.20 * fold)[..., None]
    edge = np.abs(np.abs(panel.sway_x) - 0.18)
    panel.blend(smoothstep(0.025, 0.012, edge), PALETTE["glow"] * 0.9)
    paw(panel, 0, 0.74, 0.13, PALETTE["glow"])
    for y in (0.30, 0.42):
        panel.blend(smoothstep(0.03, 0.015, np.abs(panel.sway_y - y)), PALETTE["glow"] * 0.85)
    panel.shade(smoothstep(1.05, 1.24, panel.y), 0.7)
    return panel


def pennant():
    panel = Panel(0.9, 0.42, DENSITY, 14)
    panel.picture = mix(rgb("a5405c"), rgb("d9893c"), smoothstep(-0.03, 0.03, 0.07 - np.abs(panel.y - 0.21))) \
        * (0.9 + 0.2 * np.sin(panel.x * 14))[..., None]
    return panel


def wood():
    panel = Panel(2.2, 0.4, DENSITY, 15)
    panel.planks(0.16, PALETTE["oak"], level=True)
    return panel


def verge():
    panel = Panel(2.2, 0.12, DENSITY, 19)
    panel.planks(0.5, PALETTE["oak"] * 1.1, level=True)
    return panel


def underside():
    panel = Panel(LENGTH, 0.22, DENSITY, 16)
    panel.planks(0.2, PALETTE["oak_dark"] * 1.25)
    panel.shade(smoothstep(0.0, 0.22, panel.y), 0.5)
    return panel


def lamp():
    panel = Panel(0.4, 0.4, DENSITY, 17)
    away = np.hypot(panel.x, panel.y - 0.2)
    panel.picture = mix(rgb("ffdc80"), PALETTE["ember"], smoothstep(0.03, 0.22, away))
    panel.blend(smoothstep(0.15, 0.18, np.abs(panel.x)), PALETTE["soot"])
    return panel


def upper_gable():
    """A gable end with one large arched window."""
    panel = Panel(1.5, 2.3, DENSITY, 18)
    panel.stones(COURSE, STONE, STONES, mortar=0.022, joint=0.95, raised=0.7)
    panel.window(0.0, 0.85, 0.42, 0.80, columns=2, rows=3, arched=True, halo=0.40, frame=0.06, trim=FRAME)
    return panel


PANELS = [verge, upper_gable, tower, slate, plum, upper, curtain, gate_front, portcullis, banner, paving,
          drum, parapet, corbel, underside, reveal, pennant, wood, lamp]


def picture():
    atlas = Atlas(512, border=2)
    atlas.place_all({paint.__name__: paint() for paint in PANELS})
    return atlas


# The model --------------------------------------------------------------------

class Mason(Builder):
    """Builds the castle's repeated parts. Every round part takes its stretch of
    the strips from a new place, so that no two towers show the same stones."""

    def __init__(self, atlas):
        super().__init__(atlas)
        self.start = 0.0

    def along(self, panel, start, length):
        """uv(s, height): s 0..1 along `length` units of a strip from `start` on."""
        x, y, w, h = self.atlas.places[panel]
        density = self.atlas.densities[panel]
        sheet, left = Sheet(self.atlas.size, density), x + start % max(w / density - length, 0.01) * density
        return lambda s, up: sheet.uv(left + s * length * density, y + h - min(up * density, h))

    def barrel(self, panel, x, z, radii, heights, sides, foot=None):
        """A round wall through (radius, height) rings, unrolled onto a strip."""
        length = 2 * np.pi * max(radii[0], radii[-1])
        places = self.along(panel, self.start, length)
        base = heights[0] if foot is None else foot
        rings = [ring(r, y, sides, x, z, np.pi) for r, y in zip(radii, heights)]
        self.mesh.add(loft(rings, lambda s, i: places(s, heights[i] - base), f"barrel {x} {z} {heights[0]}"))

    def cone(self, panel, x, z, radius, eave, tip, sides):
        """A pointed roof with a kick at the eaves; each side lies flat on its shingles."""
        bend_y, bend_r = eave + 0.22 * (tip - eave), radius * 0.66
        low, high = ring(radius, eave, sides, x, z, np.pi), ring(bend_r, bend_y, sides, x, z, np.pi)
        _, _, w, _ = self.atlas.places[panel]
        rise = np.hypot(radius - bend_r, bend_y - eave)
        name = f"cone {x} {z}"
        for k in range(sides):
            n = (k + 1) % sides
            side = np.add(low[k], low[n]) / 2 - (x, eave, z)
            shift = ((k * 7) % 5 - 2) * 0.2
            self.on_slope(panel, [low[k], low[n], high[n], high[k]], side, shift, 0.0, name)
            self.on_slope(panel, [high[k], high[n], (x, tip, z)], side, shift, rise, name)

    def tower(self, x, z, radius, top, tip=None, roof="slate", sides=10, base=0.0, shaft="tower", crown=1.18):
        """A round tower whose shaft ends at `top`; tip is its roof's, or None for battlements."""
        if base == 0.0:
            self.barrel(shaft, x, z, [radius * 1.14, radius, radius * 0.95], [0, 0.55, top], sides)
        else:
            self.barrel(shaft, x, z, [radius * 0.95, radius * 0.95], [base, top], sides)
        wide = radius * crown
        self.barrel("corbel", x, z, [radius * 0.95, wide], [top, top + 0.24], sides)
        if tip is None:
            self.barrel("parapet", x, z, [wide, wide], [top + 0.24, top + 0.50], sides)
            self.crown(x, z, wide, top + 0.50, sides)
        else:
            self.barrel("drum", x, z, [wide, wide], [top + 0.24, top + 0.80], sides)
            eave = wide * 1.20
            places = self.along("underside", self.start, 2 * np.pi * eave)
            rings = [ring(wide, top + 0.80, sides, x, z, np.pi), ring(eave, top + 0.72, sides, x, z, np.pi)]
            self.mesh.add(loft(rings, lambda s, i: places(s, 0.22 * (1 - i)), None))
            self.cone(roof, x, z, eave, top + 0.72, tip, sides)
        self.start += 2.9

    def crown(self, x, z, radius, y, sides):
        """A tower's floor and its merlons, one on every other side."""
        self.wall("paving", ring(radius, y, sides, x, z, np.pi), (0, 1, 0), (x, y, z + 1.5))
        outer, inside = ring(radius, 0, sides, x, z, np.pi), ring(radius * 0.76, 0, sides, x, z, np.pi)
        for k in range(0, sides, 2):
            n = (k + 1) % sides
            self.merlon([outer[k], outer[n], inside[n], inside[k]], y, y + 0.28)

    def merlon(self, corners, low, high):
        """A block on four ground points, in order round it."""
        middle = np.mean(corners, axis=0)
        lift = lambda p, y: np.array((p[0], y, p[2]))
        strip_top = 0.42
        for i in range(4):
            a, b = corners[i], corners[(i + 1) % 4]
            places = self.along("parapet", self.start + i, np.linalg.norm(np.subtract(b, a)))
            foot = strip_top - (high - low)
            self.start += 0.37
            self.face_towards([lift(a, low), lift(b, low), lift(b, high), lift(a, high)],
                              [places(0, foot), places(1, foot), places(1, strip_top), places(0, strip_top)],
                              np.add(a, b) / 2 - middle)
        self.wall("paving", [lift(p, high) for p in corners], (0, 1, 0), lift(middle, high) + (0, 0, 1.0))

    def curtain(self, a, b, top=CURTAIN_TOP, thick=CURTAIN_THICK, panel="curtain"):
        """A battlemented wall from a to b (x, z), its outer face to the right of the way."""
        a, b = np.array((a[0], 0, a[1]), dtype=float), np.array((b[0], 0, b[1]), dtype=float)
        length = np.linalg.norm(b - a)
        way = (b - a) / length
        out = np.array((-way[2], 0, way[0]))
        up = np.array((0, top, 0))
        self.straight(panel, a + out * 0.08, b + out * 0.08, a + up, b + up, out)
        inner_a, inner_b = a - out * thick, b - out * thick
        self.straight(panel, inner_b, inner_a, inner_b + up, inner_a + up, -out)
        self.walk(a + up, b + up, inner_b + up, inner_a + up)
        count = int((length + GAP) / (MERLON + GAP))
        first = (length - count * MERLON - (count - 1) * GAP) / 2
        for k in range(count):
            p = a + way * (first + k * (MERLON + GAP))
            q = p + way * MERLON
            self.merlon([p, q, q - out * 0.16, p - out * 0.16], top, top + 0.26)

    def walk(self, a, b, inner_b, inner_a):
        """The level top of a wall, on the light upper part of the parapet's strip."""
        length, width = np.linalg.norm(np.subtract(b, a)), np.linalg.norm(np.subtract(inner_a, a))
        places = self.along("parapet", self.start, length)
        self.start += 1.9
        self.face_towards([a, b, inner_b, inner_a],
                          [places(s, 0.42 - width * (1 - t)) for s, t in ((0, 0), (1, 0), (1, 1), (0, 1))], (0, 1, 0))

    def straight(self, panel, low_a, low_b, high_a, high_b, out, foot=0.0):
        """A wall face on a strip."""
        length = np.linalg.norm(np.subtract(low_b, low_a))
        places = self.along(panel, self.start, length)
        self.start += 3.7
        points = [low_a, low_b, high_b, high_a]
        self.face_towards(points, [places(s, p[1] - foot) for s, p in zip((0, 1, 1, 0), points)], out)


def curtain_walls(m):
    m.curtain((FRONT, 1.6), (FRONT, SIDE - 0.45))
    m.curtain((FRONT, -SIDE + 0.45), (FRONT, -1.6))
    m.curtain((FRONT - 0.4, SIDE), (BACK + 0.4, SIDE))
    m.curtain((BACK + 0.4, -SIDE), (FRONT - 0.4, -SIDE))
    m.curtain((BACK, SIDE - 0.4), (BACK, -SIDE + 0.4))


def corner_towers(m):
    m.tower(FRONT, SIDE, 0.60, 2.75, tip=5.35, roof="plum")
    m.tower(FRONT, -SIDE, 0.66, 2.60, crown=1.16)
    m.tower(BACK, SIDE, 0.56, 3.0, tip=5.9, roof="slate")
    m.tower(BACK, -SIDE, 0.56, 3.2, tip=6.4, roof="slate")


def gatehouse(m):
    for side in (-1, 1):
        m.tower(GATE_X - 0.12, side * 1.26, 0.47, 2.45, tip=4.75, roof="plum", crown=1.14)
    arch = [(GATE_ARCH * np.cos(a), GATE_ARCH_TOP - GATE_ARCH + GATE_ARCH * np.sin(a))
            for a in np.linspace(np.pi, 0, 8)]
    arch = [(-GATE_ARCH, 0.0)] + arch + [(GATE_ARCH, 0.0)]
    # The wall's outline runs round the arch; u is -z as seen from the town.
    outline = [(-GATE_HALF, 0.0)] + arch + [(GATE_HALF, 0.0), (GATE_HALF, GATE_TOP), (-GATE_HALF, GATE_TOP)]
    point = lambda u, y, x=GATE_X: np.array((x, y, -u))
    for triangle in ears(outline):
        m.wall("gate_front", [point(*outline[i]) for i in triangle], (1, 0, 0), (GATE_X, 0, 0))
    depth, run = 0.34, 0.0
    for (u0, y0), (u1, y1) in zip(arch, arch[1:]):
        quad = [point(u0, y0, GATE_X - depth), point(u1, y1, GATE_X - depth), point(u1, y1), point(u0, y0)]
        inward = np.array((0, 0.5 - (y0 + y1) / 2, (u0 + u1) / 2))
        points = outward(quad, inward)
        m.mesh.face(points, m.atlas.strip("reveal", points, run % 1.5))
        run += np.hypot(u1 - u0, y1 - y0)
    back = [point(u, y, GATE_X - depth) for u, y in arch]
    m.wall("portcullis", back, (1, 0, 0), (GATE_X - depth, 0, 0))
    gate_roof(m)
    for side in (-1, 1):
        hang_banner(m, GATE_X + 0.36, side * 1.26, 2.30)


def gate_roof(m):
    a, b, inner = (GATE_X, 0, GATE_HALF), (GATE_X, 0, -GATE_HALF), GATE_X - 0.9
    up = np.array((0, GATE_TOP, 0))
    m.wall("paving", [np.array(a) + up, np.array(b) + up, (inner, GATE_TOP, -GATE_HALF), (inner, GATE_TOP, GATE_HALF)],
           (0, 1, 0), (GATE_X - 0.4, GATE_TOP, 1.5))
    m.straight("upper", (inner, 0.6, -GATE_HALF), (inner, 0.6, GATE_HALF), (inner, GATE_TOP, -GATE_HALF),
               (inner, GATE_TOP, GATE_HALF), (-1, 0, 0), 0.6)
    for k in range(3):
        z = 0.62 - k * 0.62
        m.merlon([(GATE_X, 0, z + 0.16), (GATE_X, 0, z - 0.16), (GATE_X - 0.18, 0, z - 0.16), (GATE_X - 0.18, 0, z + 0.16)],
                 GATE_TOP, GATE_TOP + 0.28)


def hang_banner(m, x, z, top):
    """A cloth with a forked foot on a rail, a little way off the wall."""
    half, foot = 0.21, top - 1.2
    points = [(x, foot, z + half), (x, foot + 0.16, z), (x, top, z), (x, top, z + half)]
    m.wall("banner", points, (1, 0, 0), (x, foot, z))
    points = [(x, foot + 0.16, z), (x, foot, z - half), (x, top, z - half), (x, top, z)]
    m.wall("banner", points, (1, 0, 0), (x, foot, z))
    rail = box((x - 0.05, top - 0.02, z - 0.28), (x + 0.04, top + 0.05, z + 0.28),
               lambda p: m.atlas.flat("wood", (x, top, z))(p))
    m.mesh.add(rail)


def keep(m):
    """The great block, eight-sided with short corners, and the towers that grow out of it."""
    x, z, half, cut, top = -0.75, 0.15, 1.32, 0.34, 4.15
    plan = [(half, -half + cut), (half - cut, -half), (-half + cut, -half), (-half, -half + cut),
            (-half, half - cut), (-half + cut, half), (half - cut, half), (half, half - cut)]
    rim = lambda grow, y: [np.array((x + px * grow, y, z + pz * grow)) for px, pz in plan]
    for low, high, panel, foot in ((rim(1.05, 0), rim(1, 2.2), "tower", 0), (rim(1, 2.2), rim(0.97, top), "upper", 2.2),
                                   (rim(0.97, top), rim(1.07, top + 0.26), "corbel", top),
                                   (rim(1.07, top + 0.26), rim(1.07, top + 0.5), "parapet", top + 0.18)):
        for k in range(8):
            n = (k + 1) % 8
            out = (low[k] + low[n]) / 2 - (x, low[k][1], z)
            m.straight(panel, low[k], low[n], high[k], high[n], out, foot)
    m.wall("paving", rim(1.07, top + 0.5), (0, 1, 0), (x, top, z + 1.5))
    crown = rim(1.07, 0)
    for k in (1, 3, 5, 7):
        corner, after = crown[k], crown[(k + 1) % 8]
        battlement(m, corner, after, (x, 0, z), top + 0.5, 4)
        battlement(m, crown[k - 1], corner, (x, 0, z), top + 0.5, 1)
    m.tower(-1.35, -0.35, 0.78, 5.35, tip=7.75, roof="slate", sides=12, base=4.3, shaft="upper")
    m.tower(0.42, 1.28, 0.40, 4.85, tip=6.85, roof="plum", sides=8, base=3.0, shaft="upper", crown=1.22)
    m.tower(0.45, -1.08, 0.34, 4.35, tip=6.0, roof="plum", sides=8, base=2.4, shaft="upper", crown=1.24)


def battlement(m, a, b, middle, y, count):
    """`count` merlons on the straight edge from a to b."""
    a, b = np.array(a), np.array(b)
    length = np.linalg.norm(b - a)
    way = (b - a) / length
    out = np.cross(way, (0, 1, 0))
    if out @ ((a + b) / 2 - middle) < 0:
        out = -out
    width = min(MERLON, length * 0.9)
    step = (length - width) / max(count - 1, 1) if count > 1 else 0
    for k in range(count):
        p = a + way * (k * step if count > 1 else (length - width) / 2)
        q = p + way * width
        m.merlon([p, q, q - out * 0.17, p - out * 0.17], y, y + 0.28)


def courtyard_house(m, x0, x1, z0, z1, eave, ridge, roof):
    """A gabled hall inside the walls, its ridge along x."""
    z = (z0 + z1) / 2
    for side, zs in ((1, z1), (-1, z0)):
        low_a, low_b = (x0, 1.1, zs), (x1, 1.1, zs)
        m.straight("upper", low_a, low_b, (x0, eave, zs), (x1, eave, zs), (0, 0, side), 1.1)
        edge = zs + side * 0.16
        drop = eave - 0.16 * (ridge - eave) / (abs(zs - z))
        verge = x1 + 0.12
        points = [(x0, drop, edge), (verge, drop, edge), (verge, ridge, z), (x0, ridge, z)]
        m.on_slope(roof, points, (0, side), 0.0, 0.1)
        down = lambda p: np.subtract(p, (0, 0.09, 0))
        front = [points[1], points[2]]
        m.strip_facing("verge", [down(front[0]), down(front[1]), front[1], front[0]], (1, 0, 0))
        under = [(x1, p[1], p[2]) for p in map(down, front)]
        m.strip_facing("verge", [down(front[0]), down(front[1]), under[1], under[0]], (0, -1, -side))
    for x, out in ((x1, 1), (x0, -1)):
        points = [(x, 1.1, z0), (x, eave, z0), (x, ridge, z), (x, eave, z1), (x, 1.1, z1)]
        points = outward(points, (out, 0, 0))
        m.wall("upper_gable", points, (out, 0, 0), (x, 1.1, z))


def approach(m):
    """Two low walls with lamps on the posts at their end."""
    for side in (-1, 1):
        z0, z1 = sorted((side * 0.63, side * 0.83))
        low_wall(m, GATE_X - 0.1, 6.02, z0, z1, 0.42)
        post(m, 6.33 - 0.17, side * 0.73, 0.17, 0.78)


def low_wall(m, x0, x1, z0, z1, top):
    edge = 0.05
    for z, out in ((z0, -1), (z1, 1)):
        m.straight("curtain", (x0, 0, z), (x1, 0, z), (x0, top - edge, z), (x1, top - edge, z), (0, 0, out))
        near = z - out * edge
        m.straight("parapet", (x0, top - edge, z), (x1, top - edge, z), (x0, top, near), (x1, top, near), (0, 0, out), top - 0.42)
    m.walk((x0, top, z1 - edge), (x1, top, z1 - edge), (x1, top, z0 + edge), (x0, top, z0 + edge))


def post(m, x, z, half, top):
    square = lambda r, y: (x - r, x + r, z - r, z + r, y)
    m.four_sides("tower", square(half, 0), square(half * 0.92, top), 0)
    m.four_sides("corbel", square(half * 0.92, top), square(half * 1.0, top + 0.06), top)
    m.wall("paving", [(x + a * half, top + 0.06, z + b * half) for a, b in ((-1, -1), (1, -1), (1, 1), (-1, 1))],
           (0, 1, 0), (x, top, z + 1.0))
    r = half * 0.55
    m.four_sides("lamp", square(r, top + 0.06), square(r * 1.25, top + 0.32), top + 0.04)
    tip = (x, top + 0.55, z)
    corners = [(x + a * r * 1.6, top + 0.30, z + b * r * 1.6) for a, b in ((1, 1), (1, -1), (-1, -1), (-1, 1))]
    for k in range(4):
        a, b = corners[k], corners[(k + 1) % 4]
        side = np.add(a, b) / 2 - (x, top + 0.30, z)
        m.on_slope("slate", [a, b, tip], side, 0, 0)


def flag(m, x, z, base, height, turn, length=0.75):
    """A pole with a pennant that the evening wind holds out."""
    pole = [ring(0.035, base, 3, x, z), ring(0.02, base + height, 3, x, z)]
    places = m.along("wood", 0.0, 0.3)
    m.mesh.add(loft(pole, lambda s, i: places(s, 0.3 * i), f"pole {x}"))
    top, cloth = base + height - 0.02, 0.34
    way = np.array((np.cos(turn), 0, np.sin(turn)))
    sway = np.array((-way[2], 0, way[0])) * 0.07
    at = lambda u, v: np.array((x, top - v, z)) + way * u + sway * np.sin(u * 7)
    sheet, (px, py, w, h) = Sheet(m.atlas.size, DENSITY), m.atlas.places["pennant"]
    place = lambda u, v: sheet.uv(px + u / length * w, py + v / cloth * h)
    spots = [(0.0, 0.0, cloth), (length * 0.4, 0.05, cloth - 0.06), (length, cloth / 2 + 0.05, cloth / 2 + 0.05)]
    (u0, a0, b0), (u1, a1, b1), (u2, a2, _) = spots
    m.mesh.face([at(u0, b0), at(u1, b1), at(u1, a1), at(u0, a0)], [place(u0, b0), place(u1, b1), place(u1, a1), place(u0, a0)])
    m.mesh.face([at(u1, b1), at(u2, a2), at(u1, a1)], [place(u1, b1), place(u2, a2), place(u1, a1)])


def castle(atlas):
    m = Mason(atlas)
    curtain_walls(m)
    corner_towers(m)
    gatehouse(m)
    keep(m)
    courtyard_house(m, 0.9, 2.7, -3.0, -1.6, 2.15, 3.35, "slate")
    courtyard_house(m, 0.8, 2.5, 1.75, 3.05, 1.95, 3.0, "plum")
    approach(m)
    wind = 0.55
    for x, z, base, length in ((-1.35, -0.35, 7.6, 0.9), (FRONT, -SIDE, 3.0, 0.8), (FRONT, SIDE, 5.2, 0.7),
                               (BACK, -SIDE, 6.25, 0.7), (0.42, 1.28, 6.7, 0.7)):
        flag(m, x, z, base, 0.75 if base > 3.5 else 1.2, wind, length)
    return centred(m.mesh.moved(y=GROUND))


def main():
    atlas = picture()
    write_bmp("brick.bmp", atlas.picture)
    castle(atlas).write("castleMAPPED.obj", 2000)


main()
