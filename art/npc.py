"""The townsperson: a stout somebody in hat, scarf, coat and apron, with a lantern in one
hand and a bucket of water in the other. Writes NPC.obj and NPC.bmp.

The picture is painted in space: every texel knows the point of the model that it
covers, so that folds, seams and the face run on over the edges of the unwrapped pieces.

blender -b --factory-startup -P art/npc.py
"""
import sys
from pathlib import Path

import bpy
import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parent))
from shared import SEED, Mesh, blur, loft, mix, rgb, smoothstep, write_bmp  # noqa: E402

TRIANGLES = 500
SIZE = 512

# Model units; the front is -z, the ground is at GROUND, the hat's tip at -GROUND.
GROUND = -7 / 3
ROOM = 1.65                     # half the width; the bucket reaches it
DEPTH = 1.16                    # half the depth; the lantern reaches it
EYE_X, EYE_Y = 0.235, 0.93
MOUTH_Y = 0.565
HEM_Y, BELT_Y, COLLAR_Y = -2.10, -0.66, 0.34

SKIN, CHEEK, HAIR = rgb("f8c79c"), rgb("ee7458"), rgb("9c7c5e")
COAT, COAT_DARK, TRIM = rgb("899a52"), rgb("4f5d34"), rgb("d9a04a")
LINEN, SCARF, HAT = rgb("f4e7c8"), rgb("e8702e"), rgb("8a5484")
LEATHER, BRASS, WOOD = rgb("83522f"), rgb("e6b656"), rgb("a87444")
DIRT, INK = rgb("4a382a"), rgb("2b1b18")

# Where the pieces lie on the picture: left, top, width, height of unrolled skins ...
STRIPS = {
    "coat": (4, 4, 504, 150), "head": (4, 158, 384, 120), "nose": (396, 158, 108, 50),
    "tail": (396, 212, 108, 66), "crown": (256, 282, 252, 92), "sleeve+": (256, 378, 100, 54),
    "sleeve-": (360, 378, 100, 54), "hand+": (464, 378, 44, 26), "hand-": (464, 408, 44, 26),
    "scarf": (4, 438, 250, 34), "bucket": (258, 438, 130, 34), "glass": (392, 438, 112, 34),
    "boot+": (4, 476, 120, 32), "boot-": (128, 476, 120, 32), "cap": (252, 476, 100, 32),
    "bail": (356, 476, 60, 32),
}
# ... and middle and pixels per unit of those seen from above.
DISCS = {"brim": (80, 358, 70), "under": (206, 326, 40), "water": (206, 394, 58)}

# Shoulder, elbow, wrist, end of the hand; + is the lantern's arm.
ARMS = {
    "+": [(0.50, 0.08, 0.0), (1.06, -0.34, -0.10), (1.22, -0.24, -0.56), (1.22, -0.14, -0.90)],
    "-": [(-0.50, 0.08, 0.0), (-1.06, -0.42, -0.06), (-1.24, -0.80, -0.24), (-1.28, -1.08, -0.30)],
}
LANTERN = (1.22, -0.90)         # x, z
BUCKET = (-1.28, -0.30)
SQUARE = [(-1, 1), (1, 1), (1, -1), (-1, -1)]     # counter-clockwise seen from above, from the back


# --- the model ------------------------------------------------------------------

def oval(y, rx, rz, sides, x=0.0, z=0.0, tilt=0.0):
    """A level ring that starts at the back; `tilt` raises its front."""
    angle = -np.pi / 2 + np.arange(sides) * 2 * np.pi / sides
    return [(x + rx * np.cos(a), y + tilt * rz * np.sin(a), z - rz * np.sin(a)) for a in angle]


def square(y, half_x, half_z, x, z):
    return [(x + a * half_x, y, z + b * half_z) for a, b in SQUARE]


def tube(points, radii, sides):
    """Rings along a bent path, each across the path's direction there; a radius of 0 is a tip."""
    points = np.array(points, dtype=float)
    rings = []
    for i, (point, radius) in enumerate(zip(points, radii)):
        along = points[min(i + 1, len(points) - 1)] - points[max(i - 1, 0)]
        along /= np.linalg.norm(along)
        u = np.cross(along, (0.3, 0.1, 1.0))
        u /= np.linalg.norm(u)
        v = np.cross(along, u)
        angles = np.arange(sides) * 2 * np.pi / sides
        rings.append([point + radius * (np.cos(a) * u + np.sin(a) * v) for a in angles] if radius else [point])
    return rings


def skin(name, rings, steps=None, smooth=True):
    """A loft unrolled onto its strip; steps are the rings' places on it, 0 (low) to 1."""
    left, top, width, height = STRIPS[name]
    steps = np.linspace(0, 1, len(rings)) if steps is None else steps
    return loft(rings, lambda s, i: ((left + s * width) / SIZE, 1 - (top + height * (1 - steps[i])) / SIZE),
                name if smooth else None)


def level(name, mesh, x=0.0, z=0.0):
    """Gives a level piece, whose middle is x, z, its place as seen from above."""
    cx, cy, scale = DISCS[name]
    mesh.polygons = [(points, np.array([((cx + (p[0] - x) * scale) / SIZE, 1 - (cy + (p[2] - z) * scale) / SIZE)
                                        for p in points]), smooth) for points, _, smooth in mesh.polygons]
    return mesh


def body():
    yield "coat", skin("coat", [
        oval(HEM_Y, 0.98, 0.92, 10), oval(-1.50, 0.87, 0.83, 10), oval(-0.92, 0.84, 0.82, 10, z=-0.05),
        oval(-0.42, 0.74, 0.74, 10, z=-0.06), oval(0.06, 0.66, 0.54, 10), oval(COLLAR_Y, 0.40, 0.36, 10)],
        [0, 0.24, 0.47, 0.67, 0.87, 1])
    yield "head", skin("head", [
        [(0, 0.26, -0.08)], oval(0.44, 0.45, 0.43, 10, z=-0.05), oval(0.72, 0.65, 0.60, 10, z=-0.03),
        oval(0.98, 0.66, 0.63, 10), oval(1.22, 0.52, 0.50, 10, z=-0.02)], [0, 0.22, 0.48, 0.75, 1])
    yield "nose", skin("nose", tube([(0, 0.84, -0.48), (0, 0.80, -0.76), (0, 0.745, -0.92), (0, 0.73, -0.97)],
                                    [0.13, 0.17, 0.11, 0], 6), [0, 0.55, 0.9, 1])
    yield "scarf", skin("scarf", [
        oval(0.08, 0.60, 0.52, 8, z=-0.03), oval(0.30, 0.74, 0.69, 8, z=-0.05, tilt=-0.04),
        oval(0.50, 0.50, 0.48, 8, z=-0.05, tilt=-0.05)])
    yield "tail", skin("tail", [square(-0.58, 0.18, 0.05, 0.36, -0.80), square(0.22, 0.14, 0.06, 0.28, -0.68)],
                       smooth=False)
    for end, x in (("+", 0.40), ("-", -0.40)):
        yield "boot" + end, skin("boot" + end, [
            oval(GROUND, 0.30, 0.44, 6, x=x, z=-0.62), oval(GROUND + 0.19, 0.27, 0.40, 6, x=x, z=-0.62),
            [(x, GROUND + 0.36, -0.48)]])


def hat():
    inner, outer = oval(1.15, 0.56, 0.54, 10, tilt=0.17), oval(1.05, 1.06, 0.96, 10, z=0.06, tilt=0.24)
    yield "brim", level("brim", loft([outer, inner], lambda s, i: (0, 0), "brim"))
    lining = [(x, y - 0.07, z) for x, y, z in inner]      # a wedge: touching sheets would bake each other black
    yield "under", level("under", loft([lining, outer], lambda s, i: (0, 0), "under"))
    yield "crown", skin("crown", [
        oval(1.13, 0.67, 0.65, 10, tilt=0.17), oval(1.50, 0.48, 0.47, 10, x=-0.02, z=0.02, tilt=0.06),
        oval(1.93, 0.28, 0.28, 10, x=0.10, z=0.10), [(0.42, -GROUND, 0.18)]], [0, 0.34, 0.68, 1])


def arms():
    for end, joints in ARMS.items():
        shoulder, elbow, wrist, tip = map(np.array, joints)
        cuff = wrist + 0.10 * (wrist - elbow)
        yield "sleeve" + end, skin("sleeve" + end, tube([shoulder, elbow, cuff], [0.30, 0.27, 0.28], 6))
        yield "hand" + end, skin("hand" + end, tube([wrist, (wrist + tip) / 2, tip], [0.15, 0.19, 0], 6))


def burdens():
    x, z = LANTERN
    yield "glass", skin("glass", [square(-0.80, 0.19, 0.19, x, z), square(-0.34, 0.22, 0.22, x, z)], smooth=False)
    yield "cap", skin("cap", [square(-0.36, 0.28, 0.26, x, z), [(x, -0.06, z)]], smooth=False)
    x, z = BUCKET
    yield "bucket", skin("bucket", [oval(-1.94, 0.27, 0.27, 8, x=x, z=z), oval(-1.38, 0.36, 0.36, 8, x=x, z=z)])
    water = Mesh().face(oval(-1.45, 0.35, 0.35, 8, x=x, z=z), [(0, 0)] * 8)
    yield "water", level("water", water, x, z)
    yield "bail", skin("bail", tube([(x, -1.40, z - 0.35), (x, -1.05, z), (x, -1.40, z + 0.35)], [0.035] * 3, 3))


def pieces():
    return [piece for part in (body, hat, arms, burdens) for piece in part()]


# --- from texels to points ---------------------------------------------------------

class Texels:
    """For every covered texel of the picture its piece, point and normal."""

    def __init__(self, parts):
        self.piece = np.full((SIZE, SIZE), -1)
        self.point = np.zeros((SIZE, SIZE, 3))
        self.normal = np.zeros((SIZE, SIZE, 3))
        for number, (_, mesh) in enumerate(parts):
            for (points, uvs, _), normals in zip(mesh.polygons, mesh._normals()):
                for i in range(1, len(points) - 1):
                    corners = [0, i, i + 1]
                    self.triangle(number, points[corners], uvs[corners], np.array(normals)[corners])

    def triangle(self, number, points, uvs, normals):
        pixels = uvs * (SIZE, -SIZE) + (0, SIZE) - 0.5
        low = np.maximum(np.floor(pixels.min(axis=0)).astype(int), 0)
        high = np.minimum(np.ceil(pixels.max(axis=0)).astype(int) + 1, SIZE)
        y, x = np.mgrid[low[1]:high[1], low[0]:high[0]]
        (ax, ay), (bx, by), (cx, cy) = pixels
        area = (bx - ax) * (cy - ay) - (by - ay) * (cx - ax)
        b = ((x - ax) * (cy - ay) - (y - ay) * (cx - ax)) / area
        c = ((bx - ax) * (y - ay) - (by - ay) * (x - ax)) / area
        weights = np.stack([1 - b - c, b, c], axis=-1)
        inside = weights.min(axis=-1) >= -1e-6
        self.piece[y[inside], x[inside]] = number
        self.point[y[inside], x[inside]] = weights[inside] @ points
        self.normal[y[inside], x[inside]] = weights[inside] @ normals


def lattice_noise(points, cell, seed, octaves=3):
    """Smooth noise in space, 0..1, from a hashed lattice."""
    total, weight = 0.0, 0.0
    for octave in range(octaves):
        scaled = points * 2.0 ** octave / cell + 100.0
        base = np.floor(scaled).astype(np.int64)
        f = scaled - base
        f = f * f * (3 - 2 * f)
        value = 0.0
        for corner in np.ndindex(2, 2, 2):
            at = base + corner
            h = (at[..., 0] * 73856093) ^ (at[..., 1] * 19349663) ^ (at[..., 2] * 83492791)
            h = (h ^ (seed + SEED) * 2654435761) & 0xFFFFFFFF
            h = ((h ^ (h >> 15)) * 2246822519) & 0xFFFFFFFF
            h = ((h ^ (h >> 13)) * 3266489917) & 0xFFFFFFFF
            share = np.prod(np.where(np.array(corner), f, 1 - f), axis=-1)
            value = value + share * (h >> 8 & 0xFFFF) / 65535.0
        total, weight = total + value * 0.5 ** octave, weight + 0.5 ** octave
    return total / weight


# --- paint ---------------------------------------------------------------------------

class Brush:
    """The texels of one piece, painted layer over layer."""

    def __init__(self, points, normals, colour):
        self.x, self.y, self.z = points.T
        self.points, self.normal_y, self.normal_z = points, normals[:, 1], normals[:, 2]
        self.around = np.arctan2(self.x, -self.z)          # 0 in front, grows towards +x
        self.colour = np.ones((len(points), 3)) * colour

    def lay(self, colour, amount):
        amount = np.broadcast_to(np.clip(amount, 0, 1), self.x.shape)[:, None]
        self.colour = self.colour * (1 - amount) + colour * amount

    def tone(self, factor):
        self.colour = self.colour * np.broadcast_to(factor, self.x.shape)[:, None]

    def noise(self, cell, seed, octaves=3):
        return lattice_noise(self.points, cell, seed, octaves)

    def weave(self, seed, strength=0.16):
        self.tone(1 - strength / 2 + strength * self.noise(0.11, seed))
        self.tone(0.92 + 0.16 * self.noise(0.7, seed + 1))

    def line(self, distance, width, colour, amount=1.0):
        self.lay(colour, amount * smoothstep(width, width * 0.45, np.abs(distance)))

    def stitches(self, distance, along, colour, pitch=0.075):
        dash = smoothstep(0.25, 0.4, np.abs((along / pitch) % 1 - 0.5))
        self.line(distance, 0.022, colour, 0.85 * (1 - dash))

    def dirt(self, top, seed):
        self.lay(DIRT, 0.75 * smoothstep(top, GROUND, self.y - 0.35 * (self.noise(0.35, seed) - 0.5)))


def between(value, low, high, soft=0.03):
    return smoothstep(low - soft, low + soft, value) * (1 - smoothstep(high - soft, high + soft, value))


def folds(brush, count, seed, strength):
    """Long folds that hang from the belt and open towards the hem."""
    wobble = brush.noise(0.9, seed) * 3.0
    drop = smoothstep(BELT_Y + 0.1, HEM_Y, brush.y)
    wave = np.sin(brush.around * count + wobble + 0.6 * brush.y)
    brush.tone(1 + strength * drop * (wave - 0.35 * wave ** 2))


def paint_coat(b):
    b.weave(11)
    folds(b, 9, 13, 0.24)
    for turn in (-1.9, 1.9, np.pi, -np.pi):                     # side and back seams
        b.line((b.around - turn) * 0.8, 0.03, COAT_DARK, 0.7)
        b.stitches((b.around - turn) * 0.8 - 0.05, b.y, rgb("b9c27c"))
    hem = b.y - HEM_Y
    b.lay(TRIM, between(hem, 0.16, 0.30, 0.015))
    zigzag = np.abs((b.around * 7) % 1 - 0.5) * 0.28 > np.abs(hem - 0.23) * 1.9
    b.lay(COAT_DARK, between(hem, 0.16, 0.30, 0.015) * zigzag)
    b.line(hem - 0.15, 0.022, COAT_DARK)
    b.line(hem - 0.31, 0.022, COAT_DARK)
    patch(b, 1.35, -1.25, 0.17, rgb("a8643c"))
    patch(b, -2.5, -1.05, 0.20, rgb("6d6a80"))
    chest = (b.y > BELT_Y) & (b.z < 0)
    b.line(np.where(chest, b.x, 9), 0.026, COAT_DARK)
    for y in (-0.42, -0.18, 0.06):
        button(b, 0.09, y)
    apron(b)
    belt(b)
    b.dirt(HEM_Y + 0.55, 15)


def patch(b, turn, y, half, colour):
    """A sewn-on piece of other cloth."""
    u, v = (b.around - turn) * 0.85, b.y - y + 0.12 * (b.around - turn)
    reach = np.maximum(np.abs(u), np.abs(v)) - half
    b.lay(INK, 0.5 * between(reach, -0.02, 0.03, 0.02))
    b.lay(colour * 1.0, smoothstep(0.01, -0.01, reach))
    check = 0.88 + 0.12 * np.sign(np.sin(u * 40) * np.sin(v * 40))
    b.tone(np.where(reach < 0, check, 1.0))
    b.stitches(reach + 0.035, u + v, rgb("f0dcae"), 0.06)


def button(b, x, y):
    d = np.hypot(b.x - x, b.y - y) + 9 * (b.z > 0)
    b.lay(INK, 0.55 * smoothstep(0.085, 0.05, d))
    b.lay(BRASS, smoothstep(0.062, 0.045, d))
    b.lay(rgb("fff0b8"), 0.8 * smoothstep(0.03, 0.015, np.hypot(b.x - x + 0.015, b.y - y - 0.02) + 9 * (b.z > 0)))


def apron(b):
    """Linen from the belt nearly to the hem, with a pocket and its shadow on the coat."""
    half = 0.50 + 0.12 * smoothstep(BELT_Y, -1.9, b.y)
    front = np.where(b.z < 0, np.abs(b.x) - half, 9)
    reach = np.maximum(front, np.maximum(b.y - BELT_Y, -1.80 - b.y + 0.05 * np.cos(b.x * 9)))
    b.lay(INK, 0.5 * smoothstep(0.10, -0.02, reach))
    inside = smoothstep(0.012, -0.012, reach)
    cloth = Brush(b.points, np.zeros_like(b.points), LINEN)
    cloth.weave(17, 0.10)
    wave = np.sin(b.x * 11 + 2.2 * b.noise(0.8, 18) + b.y)
    cloth.tone(1 + 0.10 * wave * smoothstep(BELT_Y, -1.2, b.y))
    cloth.lay(rgb("c98a4c"), 0.55 * smoothstep(0.55, 0.75, b.noise(0.45, 19)) * smoothstep(-0.9, -1.7, b.y))
    hem = -reach
    for offset in (0.085, 0.125):
        cloth.line(np.where(hem < 0.3, hem - offset, 9), 0.018, rgb("b4482c"), 0.9)
    pocket = np.maximum(np.abs(b.x - 0.05) - 0.24, np.abs(b.y + 1.16) - 0.19)
    cloth.lay(rgb("8a7250"), 0.6 * between(pocket, -0.015, 0.03, 0.015))
    cloth.tone(np.where(pocket < 0, 0.95, 1.0))
    cloth.stitches(pocket + 0.04, b.x + b.y, rgb("a08050"), 0.055)
    cloth.lay(rgb("5a4630"), 0.8 * between(b.y, -1.005, -0.965, 0.01) * (np.abs(b.x - 0.05) < 0.235))
    b.lay(cloth.colour, inside)


def belt(b):
    rise = np.abs(b.y - BELT_Y - 0.02 * np.sin(b.around * 3)) - 0.085
    b.lay(INK, 0.55 * smoothstep(0.06, -0.01, rise))
    b.lay(LEATHER, smoothstep(0.01, -0.01, rise))
    b.tone(np.where(rise < 0, 1.0 + 0.25 * smoothstep(-0.03, -0.005, rise) * np.sign(b.y - BELT_Y), 1.0))
    buckle = np.maximum(np.abs(b.x), np.abs(b.y - BELT_Y) * 1.05) + 9 * (b.z > 0)
    b.lay(INK, 0.6 * smoothstep(0.18, 0.14, buckle))
    b.lay(BRASS, between(buckle, 0.075, 0.14, 0.01))
    b.lay(rgb("fff0b8"), 0.6 * between(buckle, 0.09, 0.12, 0.01) * (b.y > BELT_Y))


def paint_head(b):
    b.tone(0.95 + 0.10 * b.noise(0.35, 21))
    front = b.z < -0.1
    mirrored = np.abs(b.x)
    far = np.where(front, 0.0, 9.0)
    b.lay(CHEEK, 0.62 * smoothstep(0.23, 0.02, np.hypot((mirrored - 0.37), (b.y - 0.70) * 1.1) + far))
    b.lay(rgb("b9744e"), 0.35 * smoothstep(0.28, 0.05, np.hypot(mirrored - EYE_X, (b.y - EYE_Y) * 1.1) + far))
    mouth(b, far)
    eyes(b, mirrored, far)
    hair(b)


def mouth(b, far):
    curve = MOUTH_Y + 0.34 * b.x ** 2 + 0.05 * b.x
    width = smoothstep(0.27, 0.20, np.abs(b.x))
    b.lay(rgb("c98868"), 0.5 * width * smoothstep(0.11, 0.03, np.abs(b.y - curve + 0.09)) * (far < 1))
    lip = smoothstep(0.06, 0.03, np.abs(b.y - curve + 0.035)) * (far < 1) * (np.abs(b.x) < 0.17)
    b.lay(rgb("b8463a"), width * lip)
    b.line(b.y - curve + far, 0.034, rgb("5c221c"), width)
    for side in (-1, 1):
        dimple = np.hypot(b.x - side * 0.255, b.y - MOUTH_Y - 0.035) + far
        b.lay(rgb("9c4a36"), 0.7 * smoothstep(0.05, 0.02, dimple))


def eyes(b, mirrored, far):
    ex, ey = mirrored - EYE_X, b.y - EYE_Y
    white = np.hypot(ex / 0.140, ey / 0.145) + far
    b.lay(rgb("7a4632"), 0.75 * smoothstep(1.35, 1.0, white))
    b.lay(rgb("fffaf0"), smoothstep(1.06, 0.94, white))
    glance = b.x - np.sign(b.x) * EYE_X + 0.018
    iris = np.hypot(glance, ey + 0.008) + far
    b.lay(rgb("6a4a2a"), smoothstep(0.088, 0.076, iris))
    b.lay(INK, smoothstep(0.056, 0.044, iris))
    b.lay(np.ones(3), smoothstep(0.034, 0.022, np.hypot(glance + 0.03, ey - 0.034) + far))
    lid = (ey > 0.088 - 0.5 * ex * ex) & (white < 1.12)
    b.lay(SKIN * 0.86, np.where(lid, 1.0, 0.0))
    b.line(np.where(white < 1.12, ey - 0.088 + 0.5 * ex * ex, 9), 0.026, INK)
    brow = ey - 0.225 - 0.05 * np.cos(ex * 9) + 0.12 * ex
    b.line(np.where(np.abs(ex + 0.005) < 0.185, brow, 9) + far, 0.058, HAIR * 0.62)


def hair(b):
    """From temple to temple round the back, in strands, with a ragged edge and a fringe."""
    edge = 1.12 + 0.16 * np.sin(b.y * 16) * 0.5 + 0.25 * smoothstep(0.75, 0.45, b.y)
    amount = smoothstep(edge - 0.05, edge + 0.05, np.abs(b.around))
    strands = 0.78 + 0.34 * (0.5 + 0.5 * np.sin(b.around * 34 + 4 * b.noise(0.4, 23)))
    cloth = HAIR * strands[:, None] * (0.85 + 0.3 * b.noise(0.2, 24))[:, None]
    b.lay(INK, 0.35 * smoothstep(edge - 0.16, edge, np.abs(b.around)))
    b.lay(cloth, amount)


def paint_nose(b):
    b.lay(CHEEK, 0.85 * smoothstep(-0.62, -0.88, b.z))
    b.lay(rgb("fff0dc"), 0.75 * smoothstep(0.09, 0.02, np.hypot(b.x + 0.05, b.y - 0.90)) * (b.z < -0.7))
    for x in (-0.075, 0.075):
        b.lay(rgb("7c3428"), 0.8 * smoothstep(0.05, 0.03, np.hypot(b.x - x, b.z + 0.82)) * (b.y < 0.72))


def paint_scarf(b):
    b.weave(31, 0.26)
    b.tone(0.92 + 0.14 * np.sin(b.around * 16 + b.y * 26))
    b.lay(rgb("f9d28a"), 0.9 * between((b.around * 1.6 + b.y * 1.2) % 1.0, 0.30, 0.52, 0.05))
    rolled = 0.45 * smoothstep(0.12, 0.0, np.abs(b.y - 0.16)) + 0.3 * smoothstep(0.08, 0.0, np.abs(b.y - 0.43))
    b.lay(rgb("8c2f1a"), rolled)


def paint_tail(b):
    b.weave(33, 0.26)
    b.tone(0.94 + 0.12 * np.sin(b.x * 60))
    b.lay(rgb("f9d28a"), 0.9 * between((b.y * 3.4) % 1.0, 0.30, 0.60, 0.05) * (b.y > -0.44))
    fringe = smoothstep(-0.44, -0.46, b.y)
    b.tone(1 - fringe * 0.55 * (np.sin(b.x * 95) * np.sin(b.z * 95 + 1) > 0.2))


def paint_crown(b):
    b.weave(41, 0.24)
    b.tone(1 + 0.16 * np.sin(b.y * 15 + 3 * b.noise(0.5, 42) + b.around))
    b.lay(rgb("c9a0c0"), 0.25 * smoothstep(1.4, 2.3, b.y))
    base = b.y - 1.13 + 0.16 * b.z
    band = between(base, 0.03, 0.25, 0.015)
    b.lay(INK, 0.5 * between(base, -0.02, 0.30, 0.03))
    b.lay(SCARF, band)
    b.tone(np.where(band > 0.5, 0.9 + 0.2 * (np.sin(b.around * 26) > 0), 1.0))
    b.stitches(b.around - 0.5 * b.y + 0.5, b.y, rgb("d8b4cc"))
    hat_patch = np.maximum(np.abs((b.around + 0.75) * 0.45), np.abs(b.y - 1.62)) - 0.12
    b.lay(rgb("c8b26a"), np.where(b.y < 1.9, smoothstep(0.01, -0.01, hat_patch), 0))
    b.stitches(np.where(b.y < 1.9, hat_patch + 0.03, 9), b.around + b.y, INK, 0.06)
    feather = np.hypot((b.around - 1.25) * 0.55, (b.y - 1.42) * 0.42) + 0.05 * (b.around - 1.25)
    b.lay(rgb("f3ead2"), smoothstep(0.10, 0.08, feather))
    b.line(np.where(feather < 0.12, (b.around - 1.25) * 0.55, 9), 0.02, rgb("a5482a"))


def paint_brim(b):
    b.weave(43, 0.22)
    rim = np.hypot(b.x / 1.06, (b.z - 0.06) / 0.96)
    b.lay(rgb("d9b0cc"), 0.7 * smoothstep(0.93, 0.98, rim))
    b.stitches((rim - 0.90), b.around, rgb("e5c8da"), 0.07)
    b.tone(1 + 0.10 * np.sin(b.around * 7 + 4 * b.noise(0.6, 44)))


def paint_under(b):
    b.weave(45, 0.2)
    b.tone(1.25)


def paint_sleeve(b):
    b.weave(51)
    end = "+" if b.x.mean() > 0 else "-"
    shoulder, elbow, wrist, _ = map(np.array, ARMS[end])
    along = (b.points - elbow) @ (wrist - elbow) / ((wrist - elbow) @ (wrist - elbow))
    b.tone(1 + 0.16 * np.sin(b.points @ (elbow - shoulder) * 22 + 2 * b.noise(0.4, 52)))
    elbow_patch = np.linalg.norm(b.points - elbow - np.array((np.sign(elbow[0]) * 0.2, 0, 0.2)), axis=1)
    b.lay(LEATHER, smoothstep(0.21, 0.19, elbow_patch))
    b.stitches(elbow_patch - 0.165, b.y + b.x, rgb("f0dcae"), 0.06)
    b.lay(INK, 0.5 * between(along, 0.60, 0.72, 0.03))
    b.lay(TRIM, smoothstep(0.67, 0.71, along))
    b.line(along - 0.98, 0.04, rgb("8c5a22"))


def paint_hand(b):
    b.tone(0.95 + 0.1 * b.noise(0.2, 55))
    tip = np.array(ARMS["+" if b.x.mean() > 0 else "-"][3])
    reach = np.linalg.norm(b.points - tip, axis=1)
    b.lay(rgb("a25e42"), 0.7 * (reach < 0.26) * (np.abs(((b.points @ (0.9, 0.2, 0.5)) * 9) % 1 - 0.5) < 0.10))
    b.lay(CHEEK, 0.3 * smoothstep(0.25, 0.05, reach))


def paint_boot(b):
    b.weave(61, 0.2)
    toe = b.z + 0.62
    b.lay(rgb("c08a5a"), 0.55 * smoothstep(-0.1, -0.35, toe) * smoothstep(GROUND + 0.1, GROUND + 0.25, b.y))
    b.lay(INK, 0.9 * smoothstep(GROUND + 0.075, GROUND + 0.06, b.y))
    b.stitches(b.y - GROUND - 0.10, b.z, rgb("e0b078"))
    b.lay(DIRT, 0.5 * smoothstep(0.45, 0.7, b.noise(0.2, 62)))


def paint_glass(b):
    """A flame behind four panes; the frame is dark brass."""
    x, z = LANTERN
    across = np.where(np.abs(b.x - x) > np.abs(b.z - z), b.z - z, b.x - x)
    low, high = -0.80, -0.34
    flame = np.hypot(across * 1.5, (b.y + 0.62) * 0.85)
    b.lay(rgb("ffe9a0"), smoothstep(0.20, 0.06, flame))
    b.lay(np.ones(3), smoothstep(0.10, 0.04, np.hypot(across * 2.2, b.y + 0.64)))
    frame = np.minimum(0.195 + 0.03 * (b.y - low) / (high - low) - np.abs(across), np.minimum(b.y - low, high - b.y))
    b.lay(rgb("6b4420"), smoothstep(0.062, 0.045, frame))
    b.lay(BRASS, 0.8 * between(frame, 0.008, 0.035, 0.008))


def paint_cap(b):
    b.weave(65, 0.2)
    b.tone(0.62 + 0.6 * smoothstep(-0.36, -0.1, b.y))
    b.line(b.y + 0.345, 0.03, rgb("fff0b0"), 0.8)


def paint_bucket(b):
    x, z = BUCKET
    turn = np.arctan2(b.x - x, b.z - z) * 8 / np.pi
    b.tone(0.84 + 0.3 * lattice_noise(np.stack([np.floor(turn), b.y * 0, b.y * 0], axis=1) * 7.7, 1.0, 71, 1))
    b.tone(0.92 + 0.16 * lattice_noise(b.points * (1, 0.15, 1), 0.06, 72))
    b.line((turn % 1 - 0.5) * 0.13 - 0.065, 0.014, INK, 0.8)
    b.line((turn % 1 - 0.5) * 0.13 + 0.065, 0.014, INK, 0.8)
    for y in (-1.82, -1.50):
        b.lay(INK, 0.6 * smoothstep(0.07, 0.04, np.abs(b.y - y)))
        b.lay(rgb("8c8a90"), smoothstep(0.045, 0.035, np.abs(b.y - y)))
        b.line(b.y - y - 0.02, 0.012, rgb("d8d8dc"), 0.8)
    b.line(b.y + 1.385, 0.03, rgb("dcb07a"))


def paint_water(b):
    x, z = BUCKET
    r = np.hypot(b.x - x, b.z - z)
    b.tone(0.85 + 0.3 * b.noise(0.16, 75))
    b.line((r - 0.15) + 0.03 * np.sin(8 * np.arctan2(b.x - x, b.z - z)), 0.022, rgb("d2ecf4"), 0.7)
    b.lay(rgb("f0a868"), 0.6 * smoothstep(0.13, 0.05, np.hypot(b.x - x - 0.08, (b.z - z + 0.1) * 1.6)))
    b.lay(WOOD * 0.45, smoothstep(0.29, 0.32, r))


def paint_bail(b):
    b.tone(0.8 + 0.4 * b.noise(0.1, 77))


PAINT = {
    "coat": (COAT, paint_coat), "head": (SKIN, paint_head), "nose": (SKIN, paint_nose),
    "scarf": (SCARF, paint_scarf), "tail": (SCARF, paint_tail), "crown": (HAT, paint_crown),
    "brim": (HAT, paint_brim), "under": (HAT, paint_under), "sleeve": (COAT, paint_sleeve),
    "hand": (SKIN, paint_hand), "boot": (LEATHER, paint_boot), "glass": (rgb("ffb03c"), paint_glass),
    "cap": (BRASS, paint_cap), "bucket": (WOOD, paint_bucket), "water": (rgb("5f95b4"), paint_water),
    "bail": (rgb("77757c"), paint_bail),
}


# --- baked light -----------------------------------------------------------------------

OCCLUSION_SAMPLES, OCCLUSION_REACH = 96, 0.5


def baked_occlusion(parts):
    """How open each texel lies to the sky, 0..1, by Cycles, with a floor under the feet."""
    picture = bpy.data.images.new("occlusion", SIZE, SIZE)
    picture.colorspace_settings.name = "Non-Color"
    person = blender_object(parts, picture)
    bpy.ops.mesh.primitive_plane_add(size=20, location=(0, GROUND - 0.001, 0), rotation=(-np.pi / 2, 0, 0))
    scene = bpy.context.scene
    scene.render.engine = "CYCLES"
    scene.render.threads_mode, scene.render.threads = "FIXED", 1
    scene.cycles.samples, scene.cycles.seed = OCCLUSION_SAMPLES, SEED
    scene.cycles.use_denoising = scene.cycles.use_adaptive_sampling = False
    scene.world.light_settings.distance = OCCLUSION_REACH
    scene.render.bake.margin = 0
    bpy.ops.object.select_all(action="DESELECT")
    bpy.context.view_layer.objects.active = person
    person.select_set(True)
    bpy.ops.object.bake(type="AO")
    return np.array(picture.pixels[:]).reshape(SIZE, SIZE, 4)[::-1, :, 0]


def blender_object(parts, picture):
    polygons = [p for _, mesh in parts for p in mesh.polygons]
    points = np.concatenate([p for p, _, _ in polygons])
    starts = np.cumsum([0] + [len(p) for p, _, _ in polygons])
    mesh = bpy.data.meshes.new("person")
    mesh.from_pydata(points.tolist(), [], [list(range(a, b)) for a, b in zip(starts, starts[1:])])
    layer = mesh.uv_layers.new()
    layer.data.foreach_set("uv", np.concatenate([uv for _, uv, _ in polygons]).ravel())
    material = bpy.data.materials.new("baked")
    material.use_nodes = True
    node = material.node_tree.nodes.new("ShaderNodeTexImage")
    node.image = picture
    material.node_tree.nodes.active = node
    mesh.materials.append(material)
    person = bpy.data.objects.new("person", mesh)
    bpy.context.collection.objects.link(person)
    return person


def spread(picture, known, steps):
    """Lets the pieces' borders bleed outward, so that no gap shows when the picture shrinks."""
    picture, known = np.where(known[..., None], picture, 0.0), known.astype(float)
    for _ in range(steps):
        total, count = np.zeros_like(picture), np.zeros_like(known)
        for shift in ((0, 1), (0, -1), (1, 0), (-1, 0), (1, 1), (1, -1), (-1, 1), (-1, -1)):
            total += np.roll(picture * known[..., None], shift, (0, 1))
            count += np.roll(known, shift, (0, 1))
        fresh = (known == 0) & (count > 0)
        picture[fresh] = total[fresh] / count[fresh][:, None]
        known[fresh] = 1.0
    return picture


def even_out(light, piece, radius):
    """Blurs within each piece only, which takes the sampling noise away."""
    out = light.copy()
    for number in range(piece.max() + 1):
        mine = (piece == number).astype(float)
        share = blur(mine, radius)
        out = np.where(mine > 0, blur(light * mine, radius) / np.maximum(share, 1e-6), out)
    return out


def painted(parts):
    texels = Texels(parts)
    picture = np.zeros((SIZE, SIZE, 3))
    for number, (name, _) in enumerate(parts):
        mine = texels.piece == number
        base, paint = PAINT[name.rstrip("+-")]
        brush = Brush(texels.point[mine], texels.normal[mine], base)
        paint(brush)
        picture[mine] = brush.colour
    open_sky = even_out(baked_occlusion(parts), texels.piece, 1.2)
    facing = texels.normal[..., 1] / np.maximum(np.linalg.norm(texels.normal, axis=-1), 1e-6)

    def covers(*names):
        return np.isin(texels.piece, [i for i, (name, _) in enumerate(parts) if name.rstrip("+-") in names])

    open_sky = np.where(covers("head", "nose", "hand"), open_sky ** 0.35, open_sky)    # skin glows through
    light = (0.38 + 0.70 * open_sky) * (1.0 + 0.10 * facing)
    light = np.where(covers("nose"), np.maximum(light, 0.92), light)                   # its root lies in the head
    light = np.where(covers("glass"), 1.0, light)
    tint = mix(rgb("5a3a5c") / 0.42, np.ones(3), np.clip(light, 0, 1))       # shadows lean to plum
    return spread(np.clip(picture * light[..., None] * tint, 0, 1), texels.piece >= 0, 24)


def main():
    parts = pieces()
    mesh = Mesh()
    for _, part in parts:
        mesh.add(part)
    mesh.anchor(ROOM, GROUND, DEPTH).anchor(-ROOM, GROUND, -DEPTH)
    mesh.write("NPC.obj", TRIANGLES)
    write_bmp("NPC.bmp", painted(parts))


main()
