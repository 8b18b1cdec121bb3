"""The three houses of Drossmere and their picture.

Run: blender -b --factory-startup -P art/houses.py

house1 is a thatched cottage, house2 an inn with a jettied upper floor, house3
the hall whose roof has fallen in and burns. All measures are units above the
ground, gables of house1 and house2 face the streets (+z and -z); `settled`
moves each model to the height that the game expects.
"""
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))

import numpy as np

from building import (CHAR, CHAR_LIGHT, FIGURE, TILE_RED, Atlas, Builder, Panel, Part,
                      ashlar, blot, centred, cut_out, ears, limb, outward, solid)
from shared import PALETTE, Mesh, mix, rgb, ring, smoothstep, write_bmp

GROUND = -1.7
WALL_DENSITY, ROOF_DENSITY = 67, 48           # pixels a unit
FRONT_DENSITY = 142          # of the end of the hall's front that is seen first; half of it beyond
FRONT_SPLIT = -1.32          # where that end ends: the middle of a post

STONES = [PALETTE["stone"] * 1.1, PALETTE["stone"] * 0.85, rgb("8a7a6a"), rgb("6c6a72")]
PLUM_TILES = [PALETTE["plum"] * 1.25, PALETTE["plum"], TILE_RED, rgb("6d4a63")]
# Dark and grey: the fires add red, which blue slates turn pink.
SLATES = [rgb("3f3f46"), rgb("33333a"), rgb("4b4a4e"), rgb("3a3836")]

# Cottage: x half width, z half length, heights
COTTAGE = dict(eave_x=1.92, eave_z=2.45, eave_y=1.30, ridge_y=3.75, thick=0.38,
               wall_x=1.50, wall_z=2.05, hip_x=0.85, hip_z=1.40)
INN = dict(eave_x=2.70, eave_z=3.88, eave_y=3.20, ridge_y=5.65, thick=0.24,
           wall_x=2.36, wall_z=3.58, low_x=2.08, low_z=3.22, floor_low=1.92, floor=2.20)
# Its -x end stays 1.0 short of its footprint: a townsperson stands in that alley.
HALL = dict(eave_x=4.15, eave_z=4.85, eave_y=2.00, ridge_y=5.85, thick=0.28,
            wall_x=3.95, wall_z=4.40, middle=-0.05)
# The fallen part of the hall's roof: places along the ridge (x, from the hall's
# middle) and up the slope (0 eaves .. 1 ridge), from the +x end of the gap.
GAP_FRONT = [(2.25, 1.0), (1.40, 0.80), (2.00, 0.58), (0.75, 0.36), (-0.10, 0.54), (-1.25, 0.60), (-1.75, 1.0)]
GAP_BACK = [(2.25, 1.0), (1.80, 0.62), (0.10, 0.38), (-1.35, 0.52), (-0.85, 0.78), (-1.75, 1.0)]


# The picture ------------------------------------------------------------------

def cottage_gable():
    panel = Panel(3.4, 3.2, WALL_DENSITY, 1)
    panel.plaster()
    panel.beam(-1.6, 1.86, 1.6, 1.86, 0.24)
    for side in (-1, 1):
        panel.beam(side * 1.50, 0.5, side * 1.42, 1.9, 0.24)
        panel.beam(side * 1.45, 1.9, side * 0.45, 3.15, 0.22)
        panel.beam(side * 0.62, 1.9, side * 0.62, 2.9, 0.16)
    panel.beam(0.0, 2.75, 0.0, 3.2, 0.15)
    panel.window(0.0, 2.08, 0.62, 0.62)
    panel.stones(0.27, (0.3, 0.62), STONES, panel.box(-2, -1, 2, 0.46, soft=0.03))
    panel.shade(panel.box(-2, 0.45, 2, 0.54, soft=0.05), 0.7)
    panel.eaves_shadow(1.865 + (1.5 - np.abs(panel.sway_x)) * 1.256, 0.75, 0.5)     # the roof's slope
    panel.ground_dirt(0.55)
    company(panel, -0.82, 1.00, 0.66, 0.62, "plant", shutters=PALETTE["moss"] * 1.15)
    panel.kerb()
    panel.planting(doors=[(0.52, 0.84)])
    panel.flower_box(-0.82, 0.90, 0.98)
    panel.door(0.52, 0.82, 1.48, rgb("6f3f35"), y=0.10)
    panel.steps(0.52, 0.82, count=1)
    panel.lantern(1.30, 1.30)
    return panel


def cottage_side():
    panel = Panel(4.3, 1.95, WALL_DENSITY, 2)
    panel.plaster()
    for x in (-2.0, -0.72, 0.72, 2.0):
        panel.beam(x, 0.4, x * 0.985, 1.95, 0.2)
    panel.beam(-2.0, 0.6, -0.75, 1.8, 0.17)
    panel.beam(2.0, 0.6, 0.75, 1.8, 0.17)
    panel.stones(0.27, (0.3, 0.62), STONES, panel.box(-3, -1, 3, 0.46, soft=0.03))
    panel.eaves_shadow(1.87, 0.7)
    panel.ground_dirt(0.55)
    company(panel, 0.0, 0.90, 0.7, 0.6, "cat", shutters=PALETTE["moss"] * 1.15)
    panel.kerb()
    panel.planting()
    panel.flower_box(0.0, 0.80, 1.0)
    panel.lantern(1.92, 1.22, side=-1)
    return panel


def thatch_slope():
    panel = Panel(5.0, 4.0, ROOF_DENSITY, 3)
    panel.thatch()
    moss = smoothstep(0.50, 0.70, panel.grain(0.6, 5)) * smoothstep(2.6, 0.2, panel.sway_y)
    panel.blend(moss * 0.45, PALETTE["moss"] * 0.95)
    # The ridge's own layer, sewn down with hazel rods.
    ridge = 3.24 + 0.07 * np.abs(((panel.x / 0.55) % 1) - 0.5) * 2
    panel.shade(smoothstep(0.22, 0.0, ridge - panel.sway_y) * (panel.sway_y < ridge), 0.5)
    panel.shade(smoothstep(0.0, 0.02, panel.sway_y - ridge), 1.12)
    rods = [np.abs(panel.sway_y - y) for y in (3.42, 3.74)]
    zigzag = panel.sway_y - 3.58 - 0.13 * (np.abs(((panel.x / 0.5) % 1) - 0.5) * 4 - 1)
    rod = np.minimum.reduce(rods + [np.abs(zigzag) * 0.7]) - 0.022
    panel.shade(smoothstep(0.05, 0.0, rod), 0.62)
    panel.blend(smoothstep(0.012, -0.006, rod), rgb("c79a5c"))
    panel.glow(smoothstep(0.26, 0.02, panel.y) * 0.10, rgb("a9854b"))
    return panel


def thatch_edge():
    """The cut ends of the straw: light above, frayed over a deep shade below."""
    panel = Panel(5.2, 0.36, ROOF_DENSITY * 1.5, 4)
    straw = panel.grain(0.035, 1, stretch=4.0, octaves=2)
    bundle = np.abs(((panel.sway_x / 0.36) % 1) - 0.5) * 2
    panel.picture = mix(rgb("5c4329"), rgb("bb9252"), smoothstep(0.25, 0.75, straw))
    panel.picture = panel.picture * (0.60 + 0.5 * smoothstep(0.08, 0.34, panel.y))[..., None]
    panel.shade(smoothstep(0.72, 1.0, bundle), 0.62)
    hem = 0.055 + 0.075 * bundle ** 2 + 0.13 * (panel.grain(0.045, 2, octaves=2)[-1:] - 0.35)
    panel.shade(smoothstep(0.10, 0.0, panel.y - hem) * (panel.y > hem), 0.72)
    panel.blend(smoothstep(0.008, -0.008, panel.y - hem), rgb("1d1411"))
    return panel


def soffit():
    """Dark boards under the eaves, lighter outside where the sky reaches them."""
    panel = Panel(9.4, 0.44, ROOF_DENSITY, 5)
    panel.planks(0.22, PALETTE["oak"] * 0.9)
    panel.shade(smoothstep(0.0, 0.44, panel.y), 0.42)
    return panel


def bargeboard():
    panel = Panel(9.4, 0.28, ROOF_DENSITY, 6)
    panel.planks(0.5, PALETTE["oak"] * 1.1, level=True)
    panel.shade(smoothstep(0.16, 0.0, panel.y), 0.62)
    panel.glow(smoothstep(0.20, 0.26, panel.y) * 0.22, PALETTE["plaster"])
    return panel


def inn_ground_front():
    panel = Panel(4.3, 2.0, WALL_DENSITY, 7)
    panel.stones(0.30, (0.34, 0.72), STONES)
    panel.eaves_shadow(1.95, 0.62, 0.45)
    panel.ground_dirt(0.5, 0.5)
    company(panel, -1.26, 0.82, 0.94, 0.74, "somebody", columns=3)
    company(panel, 1.42, 0.82, 0.78, 0.74, "candle")
    panel.kerb()
    panel.planting(doors=[(0.30, 0.96)])
    for x, width in ((-1.26, 1.2), (1.42, 1.0)):
        panel.flower_box(x, 0.72, width, seed=round(x))
    panel.door(0.30, 0.96, 1.60, rgb("35504a"), y=0.10)
    panel.steps(0.30, 0.96, count=1)
    panel.lantern(-0.48, 1.28, side=-1)
    return panel


def inn_ground_side():
    panel = Panel(6.5, 2.0, WALL_DENSITY, 8)
    panel.stones(0.30, (0.34, 0.72), STONES)
    panel.eaves_shadow(1.95, 0.62, 0.45)
    panel.ground_dirt(0.5, 0.5)
    for x in (-1.9, 1.7):
        panel.window(x, 0.82, 0.85, 0.72)
    panel.kerb()
    panel.planting(0.42)
    panel.lantern(-0.1, 1.28)
    return panel


def jetty():
    """The coving under the upper floor: beam ends in shadow."""
    panel = Panel(7.2, 0.46, WALL_DENSITY, 9)
    panel.planks(0.24, PALETTE["oak_dark"] * 1.0)
    ends = np.abs(((panel.sway_x / 0.62) % 1) - 0.5) * 0.62
    panel.blend(smoothstep(0.13, 0.11, ends), PALETTE["oak"] * 0.95)
    panel.shade(smoothstep(0.34, 0.0, panel.y), 0.45)
    panel.blend(panel.box(-9, 0.33, 9, 0.50), PALETTE["oak"] * 1.05)
    return panel


def inn_gable():
    panel = Panel(4.8, 3.5, WALL_DENSITY, 10)
    panel.plaster()
    slope, eave, top = 0.907, 1.31, 3.45          # heights above the upper floor
    panel.beam(-2.4, 0.12, 2.4, 0.12, 0.26)
    for side in (-1, 1):
        panel.beam(side * 2.26, 0.1, side * 2.26, 1.4, 0.24)
        panel.beam(side * 2.30, eave - 0.02, 0, top - 0.06, 0.26)
        panel.beam(side * 0.74, 0.2, side * 0.74, 2.72, 0.18)
        panel.beam(side * 2.16, 0.22, side * 0.84, 1.26, 0.17)
        panel.beam(side * 0.80, 1.45, side * 1.56, 1.95, 0.15)
    panel.beam(-2.3, 1.34, 2.3, 1.34, 0.22)
    panel.beam(-1.1, 2.42, 1.1, 2.42, 0.18)
    panel.beam(0.0, 2.5, 0.0, 3.4, 0.16)
    company(panel, 0.0, 0.42, 0.92, 0.72, "candle", columns=3, shutters=rgb("6b3a44"))
    panel.window(0.0, 1.64, 0.62, 0.60)
    panel.eaves_shadow(eave + (2.36 - np.abs(panel.sway_x)) * slope + 0.02, 0.6, 0.5)
    return panel


def inn_side():
    panel = Panel(7.3, 1.45, WALL_DENSITY, 11)
    panel.plaster()
    panel.beam(-3.6, 0.12, 3.6, 0.12, 0.26)
    for x in (-3.5, -2.1, -0.7, 0.7, 2.1, 3.5):
        panel.beam(x, 0.1, x, 1.5, 0.2)
    panel.beam(-3.4, 0.25, -2.2, 1.3, 0.16)
    panel.beam(3.4, 0.25, 2.2, 1.3, 0.16)
    for x in (-1.4, 1.4):
        panel.window(x, 0.36, 0.62, 0.62)
    panel.eaves_shadow(1.36, 0.55)
    return panel


def plum_roof():
    panel = Panel(7.9, 3.75, ROOF_DENSITY, 12)
    panel.shingles(0.34, 0.36, PLUM_TILES)
    roof_weather(panel, 3.7)
    return panel


def slate_roof():
    panel = Panel(8.7, 6.25, ROOF_DENSITY, 13)
    panel.shingles(0.29, 0.33, SLATES)
    roof_weather(panel, 6.2)
    slope = np.hypot(HALL["eave_z"], HALL["ridge_y"] - HALL["eave_y"])
    gap = np.full(panel.x.shape, 99.0)
    for points in (GAP_FRONT, [(-x, t) for x, t in GAP_BACK]):
        corners = [(x, t * slope) for x, t in points]
        for (xa, ya), (xb, yb) in zip(corners, corners[1:]):
            gap = np.minimum(gap, panel.line_distance(xa, ya, xb, yb)[0])
    inside = smoothstep(2.5, 1.2, np.abs(panel.x)) * smoothstep(0.30, 0.45, panel.y / slope)
    ragged = gap + 0.5 * (panel.grain(0.3, 7) - 0.5)
    panel.scorch(np.maximum(0.95 * smoothstep(1.25, 0.1, ragged), 0.6 * inside))
    soot = smoothstep(1.7, 0.3, np.abs(panel.x + 0.3 * (panel.grain(0.8, 9) - 0.5)) - 0.4)
    panel.shade(soot * smoothstep(0.05, 0.5, panel.y / slope), 0.55)
    embers = smoothstep(0.55, 0.68, panel.grain(0.16, 8)) * smoothstep(0.24, 0.0, ragged)
    panel.blend(embers, mix(PALETTE["ember"], PALETTE["glow"], smoothstep(0.6, 0.8, panel.grain(0.16, 8))))
    panel.glow(0.22 * np.exp(-gap / 0.25), PALETTE["ember"])
    dormer(panel, -3.05, 0.95)
    gutter_embers(panel)
    return panel


def dormer(panel, x, y):
    """A small gabled window in the roof, lit, with a cat in it; the middle of its foot is at (x, y)."""
    gable = [(x - 0.74, y + 0.95), (x + 0.74, y + 0.95), (x, y + 1.85)]
    hood = panel.convex_distance(gable)
    cheeks = panel.box_distance(x - 0.58, y, x + 0.58, y + 1.05)
    front = np.minimum(panel.convex_distance([(x - 0.58, y + 0.95), (x + 0.58, y + 0.95), (x, y + 1.62)]), cheeks)
    shape = np.minimum(hood, cheeks)
    panel.shade(smoothstep(0.30, 0.0, shape), 0.5)
    panel.glow(0.30 * np.exp(-np.hypot((panel.sway_x - x) / 0.9, (panel.sway_y - y + 0.15) / 0.55) ** 2), PALETTE["ember"])
    panel.blend(solid(shape - 0.02), CHAR)
    panel.blend(solid(hood), rgb("6a3f3c") * (0.8 + 0.5 * smoothstep(y + 0.9, y + 1.9, panel.sway_y))[..., None])
    panel.blend(solid(front + 0.02), PALETTE["plaster"] * (0.72 + 0.3 * panel.grain(0.2, 151))[..., None])
    for side in (-1, 1):
        panel.beam(x + side * 0.52, y, x + side * 0.52, y + 1.0, 0.14)
        panel.beam(x + side * 0.72, y + 0.93, x, y + 1.78, 0.14)
    panel.beam(x - 0.56, y + 0.98, x + 0.56, y + 0.98, 0.13)
    company(panel, x, y + 0.16, 0.66, 0.68, "cat")
    panel.blend(panel.box(x - 0.62, y - 0.05, x + 0.62, y + 0.06), PALETTE["oak"] * 1.25)


def gutter_embers(panel):
    """What the fire has let fall glows along the eave."""
    heap = panel.grain(0.55, 152) * smoothstep(4.35, 3.6, np.abs(panel.x + 0.4))
    bed = smoothstep(0.03, -0.03, panel.sway_y - 0.26 * smoothstep(0.38, 0.66, heap))
    panel.blend(bed, CHAR)
    lumps = panel.grain(0.12, 153, octaves=2)
    hot = smoothstep(0.52, 0.70, lumps)
    panel.blend(bed * hot, mix(rgb("a83a12"), PALETTE["ember"], smoothstep(0.62, 0.80, lumps)))
    panel.glow(0.30 * np.exp(-np.maximum(panel.y, 0) / 0.30) * smoothstep(0.36, 0.6, heap), PALETTE["ember"])


def roof_weather(panel, ridge):
    """Ridge tiles, moss and damp toward the eaves."""
    panel.shade(panel.box(-9, ridge - 0.34, 9, ridge - 0.20, soft=0.05), 0.55)
    tile = np.abs(((panel.x / 0.5) % 1) - 0.5)
    cap = smoothstep(ridge - 0.26, ridge - 0.22, panel.sway_y)
    tone = (0.85 + 0.6 * smoothstep(ridge - 0.22, ridge, panel.sway_y)) * (1 - 0.5 * smoothstep(0.44, 0.49, tile))
    panel.blend(cap, rgb("57505f") * tone[..., None])
    moss = smoothstep(0.52, 0.70, panel.grain(0.5, 33)) * smoothstep(ridge * 0.6, 0.1, panel.sway_y)
    panel.blend(moss * 0.55, PALETTE["moss"] * 0.8)
    streak = smoothstep(0.5, 0.8, panel.grain(0.3, 34, stretch=8.0))
    panel.shade(streak * 0.5, 0.72)


def hall_front():
    """The long side. Its left end is the first thing that a player sees: the sign that shows the
    way to the castle and a window whose woman points there. Then the great door between its
    lamps, and two smaller windows."""
    panel = Panel(8.1, 2.45, FRONT_DENSITY, 14)
    panel.plaster()
    for x in (-3.84, 3.84):
        panel.beam(x, 0.6, x, 2.45, 0.26)
    panel.beam(-4.0, 2.22, 4.0, 2.22, 0.26)
    stone_foot(panel)
    for x in (FRONT_SPLIT, 1.36):
        panel.beam(x, -0.2, x, 2.45, 0.28)
    plume = smoothstep(1.5, 0.2, np.abs(panel.sway_x - 0.2) - 0.5 * panel.grain(0.4, 3))
    panel.scorch(0.6 * plume * smoothstep(1.6, 2.3, panel.sway_y + 0.5 * (panel.grain(0.3, 4) - 0.5)))
    panel.eaves_shadow(2.38, 0.62, 0.5)
    panel.ground_dirt(0.6)
    lamplight(panel, ((-3.3, 1.40, 1.0), (FRONT_SPLIT, 1.3, 0.6), (1.36, 1.3, 0.6), (-2.1, 1.35, 0.7)))
    panel.kerb()
    panel.planting(doors=[(0.02, 1.8)])
    way_sign(panel, -3.37, 1.40)
    pointing_window(panel, -2.03, 0.93, 1.0, 0.92)
    panel.flower_box(-2.03, 0.80, 1.28)
    company(panel, 2.08, 0.98, 0.72, 0.80, "candle")
    company(panel, 3.14, 0.98, 0.66, 0.80, "cat")
    for x, width in ((2.08, 1.0), (3.14, 0.94)):
        panel.flower_box(x, 0.86, width, seed=round(x))
    panel.door(0.02, 1.8, 1.86, rgb("74492f"), double=True, y=0.18)
    panel.steps(0.02, 1.8, count=2, rise=0.09)
    doorlight = np.exp(-np.hypot((panel.sway_x - 0.02) / 0.8, (panel.sway_y - 1.3) / 0.8) ** 2)
    panel.glow(0.20 * doorlight * panel.box(-0.88, 0.18, 0.92, 2.1, soft=0.1), PALETTE["glow"])
    panel.lantern(FRONT_SPLIT, 1.36, side=-1)
    panel.lantern(1.36, 1.36)
    return panel


def stone_foot(panel):
    """Three courses of dressed stones below the hall's timbers."""
    course, wall = panel.height / round(panel.height / 0.272), panel.picture
    ashlar(panel, panel.seed, course, (0.36, 0.72), STONES, joint=0.022, bevel=0.045)
    stones, top = panel.picture, 3 * course
    panel.picture = mix(wall, stones, smoothstep(top + 0.015, top - 0.015, panel.sway_y))
    panel.shade(smoothstep(top + 0.10, top, panel.sway_y) * (panel.sway_y > top), 0.65)


def lamplight(panel, places):
    """Pools of warm light on a wall: x, y and strength of each."""
    for x, y, strength in places:
        away = np.hypot(panel.sway_x - x, (panel.sway_y - y) * 0.9)
        panel.picture = panel.picture * (1 + strength * 0.55 * np.exp(-(away / 0.95) ** 2)[..., None]
                                         * np.array([1.0, 0.80, 0.48]))
        panel.glow(strength * 0.16 * np.exp(-(away / 0.55) ** 2), PALETTE["glow"])


def pane_mask(panel, x, y, width, height, columns, rows, bar):
    """The glass of a window less its bars."""
    glass = panel.box(x - width / 2, y, x + width / 2, y + height, soft=0.012)
    u = (panel.sway_x - x + width / 2) / width * columns
    v = (panel.sway_y - y) / height * rows
    near = np.minimum(np.abs(u - np.round(u)) * width / columns, np.abs(v - np.round(v)) * height / rows)
    return glass * smoothstep(bar * 0.7, bar * 1.2, near)


DRAPE, DRAPE_LIGHT = rgb("8c2f2a"), rgb("c9503a")


def room(panel, glass, y, height, fire_x):
    """What shows through a window: a warm room, brightest about its lamp."""
    away = np.hypot(panel.sway_x - fire_x, (panel.sway_y - y - height * 0.62) * 1.1)
    wall = mix(rgb("fff0b4"), rgb("f6b14c"), smoothstep(0.04, 0.42, away))
    wall = mix(wall, rgb("c8682c"), smoothstep(0.35, 0.85, away))
    panel.blend(glass, wall * (0.94 + 0.12 * panel.grain(0.12, 72))[..., None])


def drapes(panel, glass, x, y, width, height, reach=0.17):
    """Curtains drawn to both sides, gathered below the middle."""
    rise = (panel.sway_y - y) / height
    half = width / 2
    hang = reach * width * (0.55 + 0.75 * smoothstep(0.35, 1.0, rise) + 0.25 * smoothstep(0.35, 0.0, rise))
    inward = half - np.abs(panel.sway_x - x)
    fold = 0.5 + 0.5 * np.cos(inward / hang * 13)
    panel.blend(glass * smoothstep(0.012, -0.012, inward - hang), mix(DRAPE, DRAPE_LIGHT, fold))
    frill = y + height - 0.085 - 0.022 * np.cos((panel.sway_x - x) / 0.075 * np.pi)
    panel.blend(glass * smoothstep(-0.012, 0.012, panel.sway_y - frill), mix(DRAPE * 0.9, DRAPE_LIGHT, fold))


def candle(panel, glass, x, y):
    panel.glow(glass * 0.8 * np.exp(-np.hypot(panel.sway_x - x, panel.sway_y - y - 0.20) / 0.10), rgb("fff4c8"))
    panel.blend(glass * solid(panel.box_distance(x - 0.022, y, x + 0.022, y + 0.13)), PALETTE["cream"])
    panel.blend(glass * solid(blot(panel, x, y + 0.185, 0.022, 0.05)), rgb("fffbe6"))


def cat(panel, glass, x, y, size=1.0):
    """A cat that sits on the sill, looking out."""
    shape = np.minimum.reduce([
        blot(panel, x, y + 0.10 * size, 0.085 * size, 0.12 * size),
        blot(panel, x, y + 0.255 * size, 0.068 * size, 0.06 * size),
        blot(panel, x - 0.045 * size, y + 0.32 * size, 0.018 * size, 0.045 * size),
        blot(panel, x + 0.045 * size, y + 0.32 * size, 0.018 * size, 0.045 * size),
        np.abs(blot(panel, x + 0.13 * size, y + 0.05 * size, 0.075 * size, 0.05 * size)) - 0.016 * size,
    ])
    panel.blend(glass * solid(shape), rgb("2e1710"))
    for side in (-1, 1):
        eye = blot(panel, x + side * 0.026 * size, y + 0.262 * size, 0.013, 0.015)
        panel.blend(glass * solid(eye), rgb("ffe27a"))


def person(panel, glass, x, y, size, coat, hat=None, look=0.0):
    """Head and shoulders of somebody in the room, the eyes `look` aside."""
    shoulders = np.maximum(blot(panel, x, y, 0.20 * size, 0.27 * size), y - 0.05 - panel.sway_y)
    panel.blend(glass * solid(shoulders), coat)
    lit = smoothstep(0.0, 0.2, panel.sway_y - y) * solid(shoulders)
    panel.glow(glass * lit * 0.25, PALETTE["glow"])
    panel.blend(glass * solid(blot(panel, x, y + 0.34 * size, 0.090 * size, 0.105 * size)), rgb("c98a5a"))
    if hat is not None:
        panel.blend(glass * solid(blot(panel, x, y + 0.415 * size, 0.145 * size, 0.026 * size)), hat)
        panel.blend(glass * solid(blot(panel, x, y + 0.46 * size, 0.080 * size, 0.075 * size)), hat)
    else:
        hair = np.minimum(np.maximum(blot(panel, x, y + 0.36 * size, 0.105 * size, 0.11 * size),
                                     y + 0.36 * size - panel.sway_y),
                          blot(panel, x + 0.02 * size, y + 0.485 * size, 0.05 * size, 0.045 * size))
        panel.blend(glass * solid(hair), FIGURE)
    for side in (-1, 1):
        panel.blend(glass * solid(blot(panel, x + look + side * 0.034 * size, y + 0.335 * size, 0.012, 0.016)), FIGURE)


def crisp(distance):
    """As solid, for what is seen from close by: its edge is one texel of the hall's front."""
    return solid(distance, 0.5 / FRONT_DENSITY)


def crisp_out(panel, shape, colour, rim=2 / FRONT_DENSITY):
    cut_out(panel, shape, colour, rim, 0.5 / FRONT_DENSITY)


def pointing_window(panel, x, y, width, height):
    """An open window: a woman leans out and points to the left, a man in a hat sits behind her
    at his candle, and a cat on the sill looks on."""
    panel.window(x, y, width, height, columns=1, rows=1, halo=0.5)
    glass = pane_mask(panel, x, y, width, height, 1, 1, 0.030)
    room(panel, glass, y, height, x + 0.06)
    person(panel, glass, x + 0.27, y + 0.16, 0.95, rgb("3f5534"), hat=rgb("2c2430"), look=-0.02)
    panel.blend(glass * solid(panel.box_distance(x - 0.1, y, x + 0.7, y + 0.12)), rgb("6e3d20"))
    candle(panel, glass, x + 0.10, y + 0.11)
    drapes(panel, glass, x, y, width, height, reach=0.09)
    cat(panel, np.ones_like(panel.x), x + 0.36, y - 0.04, 0.85)
    pointing_woman(panel, x - 0.20, y)


def pointing_woman(panel, x, y):
    """She leans on the sill at height y with one arm and points left with the other."""
    skin, dress, apron, hair = rgb("efb888"), rgb("7a3568"), rgb("f1dfc0"), rgb("5a2a18")
    panel.shade(smoothstep(0.09, 0.0, limb(panel, x - 0.10, y + 0.12, x - 0.56, y + 0.26, 0.08, 0.05)), 0.6)
    crisp_out(panel, blot(panel, x + 0.09, y + 0.66, 0.070, 0.065), hair)
    crisp_out(panel, blot(panel, x + 0.025, y + 0.50, 0.135, 0.15), hair)
    torso = np.maximum(blot(panel, x + 0.01, y + 0.04, 0.20, 0.29), y - 0.035 - panel.sway_y)
    crisp_out(panel, torso, dress)
    panel.blend(crisp(np.maximum(blot(panel, x - 0.01, y + 0.05, 0.095, 0.20), torso + 0.02)), apron)
    crisp_out(panel, limb(panel, x + 0.15, y + 0.20, x + 0.21, y + 0.02, 0.058, 0.050), dress)
    crisp_out(panel, blot(panel, x + 0.17, y - 0.015, 0.070, 0.040), skin)
    # The head, turned to the left
    crisp_out(panel, limb(panel, x - 0.01, y + 0.30, x - 0.015, y + 0.38, 0.05, 0.05), skin * 0.85, rim=0.0)
    crisp_out(panel, blot(panel, x - 0.025, y + 0.47, 0.105, 0.125), skin)
    parting = y + 0.535 + 0.5 * (x - 0.02 - panel.sway_x)
    fringe = np.maximum(blot(panel, x - 0.005, y + 0.50, 0.125, 0.125), parting - panel.sway_y)
    crisp_out(panel, fringe, hair, rim=0.008)
    panel.blend(crisp(blot(panel, x - 0.124, y + 0.455, 0.026, 0.019)), skin * 0.93)
    for dx in (-0.088, -0.018):
        panel.blend(crisp(blot(panel, x + dx, y + 0.482, 0.014, 0.022)), rgb("2b1410"))
    for dx in (-0.07, 0.02):
        panel.blend(0.55 * smoothstep(0.02, -0.02, blot(panel, x + dx, y + 0.43, 0.020, 0.016)), rgb("e0604a"))
    panel.blend(crisp(np.maximum(blot(panel, x - 0.060, y + 0.410, 0.034, 0.024), panel.sway_y - y - 0.410)), rgb("a0302c"))
    # The arm that points
    crisp_out(panel, limb(panel, x - 0.50, y + 0.292, x - 0.655, y + 0.318, 0.026, 0.019), skin)
    crisp_out(panel, blot(panel, x - 0.475, y + 0.275, 0.062, 0.050), skin)
    panel.blend(crisp(limb(panel, x - 0.505, y + 0.246, x - 0.465, y + 0.232, 0.016, 0.014)), skin * 0.82)
    panel.blend(crisp(limb(panel, x - 0.50, y + 0.292, x - 0.65, y + 0.318, 0.020, 0.013)), skin)
    crisp_out(panel, limb(panel, x - 0.11, y + 0.185, x - 0.38, y + 0.250, 0.082, 0.060), dress)
    crisp_out(panel, limb(panel, x - 0.385, y + 0.250, x - 0.415, y + 0.258, 0.066, 0.064), apron)


def company(panel, x, y, width, height, who, columns=2, **kept):
    """A smaller window with a candle, a cat, a plant or somebody in it."""
    panel.window(x, y, width, height, columns=columns, halo=0.4, **kept)
    glass = pane_mask(panel, x, y, width, height, columns, 2, 0.026)
    room(panel, glass, y, height, x)
    if who == "cat":
        cat(panel, glass, x + 0.10, y + 0.005, 1.1)
    elif who == "candle":
        candle(panel, glass, x + 0.09, y + 0.01)
    elif who == "plant":
        panel.blend(glass * solid(panel.box_distance(x - 0.14, y, x + 0.02, y + 0.13)), rgb("9a4a2a"))
        leaves = np.minimum.reduce([blot(panel, x - 0.06 + dx, y + 0.20 + dy, 0.05, 0.07)
                                    for dx, dy in ((0, 0.06), (-0.08, 0.0), (0.08, 0.01))])
        panel.blend(glass * solid(leaves), rgb("4d5a26"))
    else:
        person(panel, glass, x, y + 0.06, 0.85 * min(1, height / 0.7), rgb("5d2f52"))
    drapes(panel, glass, x, y, width, height)


def way_sign(panel, x, y):
    """A board on an iron arm: the castle in the evening light, and an arrow that breaks out of
    the frame to the left."""
    iron = PALETTE["soot"]
    panel.blend(panel.box(x - 0.46, y + 0.535, x + 0.50, y + 0.575, soft=0.01), iron)
    for side in (-0.34, 0.34):
        panel.blend(panel.box(x + side - 0.016, y + 0.46, x + side + 0.016, y + 0.55, soft=0.008), iron)
    panel.shade(panel.box(x - 0.44, y - 0.60, x + 0.60, y + 0.42, soft=0.07), 0.5)
    frame = panel.box_distance(x - 0.49, y - 0.52, x + 0.49, y + 0.49, round_by=0.06)
    wood = 0.78 + 0.34 * smoothstep(y - 0.5, y + 0.5, panel.sway_y) + 0.25 * (panel.grain(0.08, 141, stretch=0.3) - 0.5)
    panel.blend(crisp(frame), rgb("c98f3f") * wood[..., None])
    panel.shade(crisp(np.abs(frame + 0.055) - 0.010), 0.5)
    field = crisp(frame + 0.058)
    rise = smoothstep(y - 0.45, y + 0.45, panel.sway_y)
    panel.blend(field, mix(rgb("a03a4c"), rgb("3a1b40"), rise))
    panel.glow(field * 0.40 * np.exp(-np.hypot(panel.sway_x - x, (panel.sway_y - y - 0.06) * 1.2) / 0.24), PALETTE["ember"])
    castle_device(panel, x, y - 0.06)
    shaft = panel.box_distance(x - 0.40, y - 0.36, x + 0.37, y - 0.18, round_by=0.02)
    head = panel.convex_distance([(x - 0.585, y - 0.27), (x - 0.15, y - 0.495), (x - 0.15, y - 0.045)])
    arrow = np.minimum(shaft, head)
    panel.shade(smoothstep(0.07, 0.0, arrow), 0.6)
    panel.blend(crisp(arrow - 0.020), rgb("3a1526"))
    panel.blend(crisp(arrow), mix(rgb("f79a2c"), rgb("ffed9c"), smoothstep(y - 0.46, y - 0.14, panel.sway_y)))
    panel.glow(crisp(np.abs(arrow + 0.022) - 0.006) * 0.5 * smoothstep(y - 0.28, y - 0.2, panel.sway_y), PALETTE["cream"])


def castle_device(panel, x, y):
    """A castle of three towers, 0.7 wide and half as tall, its foot at y."""
    part = lambda x0, y0, x1, y1: panel.box_distance(x + x0, y + y0, x + x1, y + y1)
    peak = lambda at, half, low, high: panel.convex_distance([(x + at - half, y + low), (x + at + half, y + low),
                                                              (x + at, y + high)])
    walls = [part(-0.30, 0, 0.30, 0.19), part(-0.115, 0, 0.115, 0.33)]
    walls += [part(k - 0.028, 0.17, k + 0.028, 0.235) for k in (-0.165, 0.165)]
    walls += [part(side - 0.075, 0, side + 0.075, 0.285) for side in (-0.30, 0.30)]
    roofs = [peak(-0.30, 0.115, 0.275, 0.475), peak(0.30, 0.115, 0.275, 0.475), peak(0.0, 0.155, 0.325, 0.535)]
    wall, roof = np.minimum.reduce(walls), np.minimum.reduce(roofs)
    panel.blend(crisp(np.minimum(wall, roof) - 0.016), rgb("2a1020"))
    panel.blend(crisp(wall), mix(rgb("fff1d0"), rgb("d9b48c"), smoothstep(x - 0.3, x + 0.4, panel.sway_x)))
    panel.blend(crisp(roof - 0.006), mix(rgb("e2803a"), rgb("8c3348"), smoothstep(x - 0.05, x + 0.07, panel.sway_x)))
    gate = panel.arch_distance(x, y, 0.12, 0.17)
    panel.blend(crisp(gate), rgb("4a1a2c"))
    for at, level in ((-0.30, 0.15), (0.30, 0.15), (0.0, 0.225)):
        panel.blend(crisp(panel.box_distance(x + at - 0.018, y + level, x + at + 0.018, y + level + 0.065)), rgb("4a1a2c"))


def hall_gable():
    """Half of it, from the middle post outward: the other half is its mirror."""
    panel = Panel(4.5, 6.0, ROOF_DENSITY, 15)
    panel.x += 2.25                               # x runs from the middle post
    panel.sway_x += 2.25
    panel.plaster()
    slope = (HALL["ridge_y"] - HALL["eave_y"]) / HALL["eave_z"]
    eave = HALL["ridge_y"] - HALL["wall_z"] * slope
    roof = HALL["ridge_y"] - panel.sway_x * slope
    panel.beam(0.0, 0.6, 0.0, 6.0, 0.30)
    panel.beam(4.24, 0.5, 4.24, 2.5, 0.28)
    panel.beam(4.45, eave - 0.16, 0.0, HALL["ridge_y"] - 0.14, 0.30)
    panel.beam(2.1, 0.7, 2.1, 4.1, 0.22)
    for y, reach in ((2.3, 4.4), (3.9, 2.4)):
        panel.beam(0, y, reach, y, 0.24)
    panel.beam(2.2, 2.4, 3.4, 3.0, 0.18)
    panel.beam(0.15, 4.0, 0.9, 4.9, 0.16)
    panel.beam(4.1, 1.0, 2.2, 2.2, 0.18)
    stone_foot(panel)
    panel.window(1.05, 2.72, 0.74, 0.80)
    panel.scorch(0.8 * smoothstep(1.5, 0.2, np.hypot(panel.sway_x, (panel.sway_y - 5.6) * 0.7)))
    panel.eaves_shadow(roof, 0.7, 0.5)
    panel.ground_dirt(0.7)
    company(panel, 1.06, 1.05, 0.86, 0.86, "candle")
    panel.kerb()
    panel.planting(0.45)
    panel.flower_box(1.06, 0.94, 1.12)
    panel.lantern(2.1, 1.42)
    return panel


def charred_wood():
    """The broken roof seen from inside the gap: burnt boards, embers below."""
    panel = Panel(3.0, 1.6, ROOF_DENSITY, 16)
    panel.planks(0.24, CHAR_LIGHT * 0.55)
    panel.shade(smoothstep(0.4, 0.7, panel.grain(0.3, 1)), 0.4)
    crack = smoothstep(0.60, 0.74, panel.grain(0.16, 2, stretch=2.5)) * smoothstep(1.1, 0.1, panel.sway_y)
    panel.blend(crack, PALETTE["ember"])
    bed = smoothstep(0.95, 0.25, panel.sway_y + 0.5 * (panel.grain(0.2, 4) - 0.5))
    panel.blend(bed, mix(PALETTE["ember"], rgb("ffd070"), smoothstep(0.45, 0.65, panel.grain(0.14, 5))))
    panel.glow(0.45 * smoothstep(1.3, 0.2, panel.y), PALETTE["ember"])
    panel.blend(smoothstep(1.42, 1.46, panel.sway_y) * (0.5 + 0.5 * panel.grain(0.1, 3)), PALETTE["plaster_dark"] * 0.55)
    return panel


def hurdle():
    """A fence of woven rods between stakes, dark where they part."""
    panel = Panel(1.3, 0.92, WALL_DENSITY, 17)
    course, stake = panel.sway_y / 0.105, panel.sway_x / 0.325
    row = np.floor(course).astype(int)
    bulge = np.cos(np.pi * (stake + row))                     # a rod runs before every other stake
    rise = np.abs(course - row - 0.5) * 2
    tone = (0.62 + 0.40 * bulge) * (1.05 - 0.75 * rise ** 2) * (0.85 + 0.3 * panel.grain(0.05, 1, stretch=0.2))
    panel.picture = rgb("b08a58") * np.clip(tone, 0.12, 1.2)[..., None]
    post = np.abs(stake - np.round(stake)) * 0.325
    before = smoothstep(0.2, -0.2, np.cos(np.pi * (np.round(stake) + row)))
    panel.blend(smoothstep(0.048, 0.030, post) * before, rgb("7a5636") * (1.1 - 4 * post)[..., None])
    panel.shade(smoothstep(0.25, 0.0, panel.y), 0.55)
    panel.glow(smoothstep(0.70, 0.79, panel.y) * 0.25, PALETTE["plaster"])
    panel.planting(0.30)
    return panel


def barrel():
    """Half of a rain barrel's staves, unrolled."""
    panel = Panel(1.5, 0.92, WALL_DENSITY, 23)
    panel.planks(0.19, PALETTE["oak"] * 1.45)
    belly = np.abs(panel.y / 0.92 - 0.5) * 2
    panel.shade(belly ** 2, 0.62)
    for y in (0.10, 0.30, 0.66, 0.84):
        panel.shade(panel.box(-2, y - 0.05, 2, y + 0.055, soft=0.03), 0.6)
        panel.blend(panel.box(-2, y - 0.028, 2, y + 0.032, soft=0.012), rgb("54535c"))
        panel.blend(panel.box(-2, y + 0.012, 2, y + 0.032, soft=0.010), rgb("8c8a90"))
    panel.ground_dirt(0.25, 0.8)
    return panel


def barrel_top():
    """Water in a barrel shows the evening."""
    panel = Panel(0.96, 0.96, WALL_DENSITY * 0.8, 24)
    away = np.hypot(panel.x, panel.y - 0.48)
    panel.planks(0.12, PALETTE["oak"] * 1.7)
    panel.blend(smoothstep(0.36, 0.34, away), mix(rgb("39304a"), rgb("d98a6a"), smoothstep(0.2, 0.8, panel.y)))
    panel.shade(smoothstep(0.05, 0.0, np.abs(away - 0.35)), 0.45)
    return panel


def burnt_beam():
    panel = Panel(3.6, 0.26, ROOF_DENSITY, 18)
    panel.planks(0.4, CHAR_LIGHT * 0.6, level=True)
    panel.blend(smoothstep(0.5, 1.5, panel.x) * smoothstep(0.45, 0.65, panel.grain(0.15, 1)), PALETTE["ember"])
    panel.glow(smoothstep(0.16, 0.24, panel.y) * 0.12, PALETTE["plaster_dark"])
    return panel


def chimney():
    panel = Panel(1.0, 2.6, WALL_DENSITY * 0.9, 19)
    panel.stones(0.24, (0.28, 0.52), STONES, mortar=0.03, joint=0.85)
    panel.scorch(0.9 * smoothstep(2.2, 2.6, panel.sway_y + 0.2 * (panel.grain(0.2, 1) - 0.5)))
    panel.shade(smoothstep(0.9, 0.2, panel.y), 0.6)
    return panel


def flue():
    panel = Panel(0.9, 0.9, WALL_DENSITY * 0.6, 20)
    panel.picture = np.ones_like(panel.picture) * PALETTE["stone"] * 0.8
    panel.mottle(0.1, 0.3, 1)
    panel.blend(panel.box(-0.26, 0.19, 0.26, 0.71, soft=0.06), PALETTE["soot"] * 0.5)
    return panel


def sign():
    """The inn's board: a golden jug."""
    panel = Panel(0.62, 0.70, WALL_DENSITY, 21)
    panel.planks(0.2, rgb("35504a"), level=True)
    edge = panel.box_distance(-0.31, 0.0, 0.31, 0.70)
    panel.blend(smoothstep(-0.075, -0.055, edge), PALETTE["oak"] * 1.1)
    gold = PALETTE["glow"]
    body = np.hypot(panel.sway_x + 0.03, (panel.sway_y - 0.29) * 0.95) - 0.155
    handle = np.abs(np.hypot(panel.sway_x - 0.14, panel.sway_y - 0.32) - 0.09) - 0.026
    panel.blend(smoothstep(0.015, -0.01, handle), gold * 0.75)
    panel.blend(smoothstep(0.015, -0.01, body), gold * (0.7 + 0.8 * smoothstep(0.1, 0.5, panel.sway_y))[..., None])
    panel.blend(panel.box(-0.11, 0.40, 0.05, 0.55, round_by=0.02), gold * 0.95)
    panel.blend(panel.box(-0.13, 0.52, 0.07, 0.58, round_by=0.02), PALETTE["cream"])
    return panel


def cupola():
    panel = Panel(1.2, 1.4, WALL_DENSITY * 0.8, 22)
    panel.planks(0.2, PALETTE["oak"] * 1.1)
    for y in (0.55, 0.75, 0.95):
        panel.shade(panel.box(-0.34, y, 0.34, y + 0.11), 0.3)
    for x in (-0.52, 0.52):
        panel.beam(x, 0, x, 1.4, 0.16)
    panel.eaves_shadow(1.25, 0.35)
    return panel


PANELS = [barrel, plum_roof, hall_gable, flue, inn_side, jetty, cupola, cottage_side, soffit, burnt_beam,
          inn_ground_side, barrel_top, inn_gable, charred_wood, thatch_edge, slate_roof, chimney, cottage_gable, sign,
          inn_ground_front, bargeboard, hurdle, thatch_slope]


def picture():
    front = hall_front()
    panels = {"hall_front": Part(front, FRONT_SPLIT, front.width / 2, coarser=2),
              "hall_welcome": Part(front, -front.width / 2, FRONT_SPLIT)}
    panels |= {paint.__name__: paint() for paint in PANELS}     # in an order in which they all fit
    atlas = Atlas(1024, border=4)
    atlas.place_all(panels)
    print(f"house.bmp: {1 - atlas.taken.mean():.0%} unused")
    return atlas


# The models -------------------------------------------------------------------

def on_both_ends(build, atlas):
    """build(builder) makes the parts at the +z end; the -z end is the same turned round."""
    one = Builder(atlas)
    build(one)
    return Mesh().add(one.mesh, one.mesh.turned(180))


def chimney_stack(builder, x, z, half, low, high, flare=0.09, cap=0.36):
    """A stack whose head widens; low is hidden in the roof."""
    square = lambda r, y: (x - r, x + r, z - r, z + r, y)
    builder.four_sides("chimney", square(half * 1.12, low), square(half, high - cap), high - 2.55)
    builder.four_sides("chimney", square(half, high - cap), square(half + flare, high), high - 2.55)
    r = half + flare
    builder.wall("flue", [(x - r, high, z - r), (x - r, high, z + r), (x + r, high, z + r), (x + r, high, z - r)],
                 (0, 1, 0), (x, high, z + 0.45))


def settled(mesh, lean):
    """Crooked a little, then put on the game's ground."""
    def place(p):
        x, y, z = p
        return np.array((x + lean * y * y * 0.02 + 0.02 * y * np.sin(z), y + GROUND, z))
    return centred(mesh.bent(place))


def cottage(atlas):
    m = COTTAGE
    slope = (m["ridge_y"] - m["eave_y"]) / m["eave_x"]
    under = lambda x: m["ridge_y"] - slope * abs(x)
    wall_top, verge_y = under(m["wall_x"]), under(m["hip_x"])
    hip_fall = (m["ridge_y"] - verge_y) / (m["eave_z"] - m["hip_z"])
    gable_top = verge_y + (m["eave_z"] - m["wall_z"]) * hip_fall
    gable_x = (m["ridge_y"] - gable_top) / slope
    up = np.array((0, m["thick"], 0))
    eave, verge = np.array((m["eave_x"], m["eave_y"], m["eave_z"])), np.array((m["hip_x"], verge_y, m["eave_z"]))
    ridge = np.array((0, m["ridge_y"], m["hip_z"]))
    wall, peak = np.array((m["wall_x"], wall_top, m["wall_z"])), np.array((gable_x, gable_top, m["wall_z"]))
    left = np.array((-1, 1, 1))

    def end(b):
        foot = (0, 0, m["wall_z"])
        base = np.array((1.6, 0, m["wall_z"] + 0.05))
        b.wall("cottage_gable", [base * left, base, wall, peak, peak * left, wall * left], (0, 0, 1), foot)
        hip = [verge * left + up, verge + up, ridge + up]
        b.on_slope("thatch_slope", hip, (0, 1), 1.2, 0.7)
        b.strip("thatch_edge", [verge * left, verge, verge + up, verge * left + up], 1.6)
        b.strip("thatch_edge", [verge, eave, eave + up, verge + up], 0.3)
        b.strip("thatch_edge", [eave * left, verge * left, verge * left + up, eave * left + up], 2.2)
        b.strip("soffit", [verge, verge * left, peak * left, peak], 1.0)
        b.strip("soffit", [eave, verge, peak, wall], 0.5)
        b.strip("soffit", [verge * left, eave * left, wall * left, peak * left], 3.0)
        # One long side with this end: the other comes with the other end.
        back = np.array((1, 1, -1))
        low_back = np.array((1.6, 0, -m["wall_z"] - 0.05))
        b.wall("cottage_side", [base, low_back, wall * back, wall], (1, 0, 0), (m["wall_x"], 0, 0))
        middle = np.array((0, m["ridge_y"] - 0.17, 0))
        slope_points = [eave, eave * back, verge * back, ridge * back, middle, ridge, verge]
        b.wall("thatch_slope", [p + up for p in slope_points], (1, 1, 0), eave * (1, 1, 0) + up)
        b.strip("thatch_edge", [eave, eave * back, eave * back + up, eave + up])
        b.strip("soffit", [eave * back, eave, wall, wall * back], 2.0)

    mesh = on_both_ends(end, atlas)
    stack = Builder(atlas)
    chimney_stack(stack, 0.52, -0.55, 0.34, 2.9, 4.75)
    return settled(mesh.add(stack.mesh), 0.6)


def gable_ends(b, m, under, up, panel_of_end):
    """Verges, soffits and gable of a plain roof at its +z end."""
    eave, ridge = np.array((m["eave_x"], m["eave_y"], m["eave_z"])), np.array((0, m["ridge_y"], m["eave_z"]))
    wall = np.array((m["wall_x"], under(m["wall_x"]), m["wall_z"]))
    peak = np.array((0, m["ridge_y"], m["wall_z"]))
    left, back = np.array((-1, 1, 1)), np.array((1, 1, -1))
    panel_of_end(b, wall, peak)
    b.strip("bargeboard", [ridge, eave, eave + up, ridge + up], 0.2)
    b.strip("bargeboard", [eave * left, ridge, ridge + up, eave * left + up], 3.4)
    b.strip("soffit", [eave, ridge, peak, wall], 0.4)
    b.strip("soffit", [ridge, eave * left, wall * left, peak], 2.0)
    b.strip("bargeboard", [eave, eave * back, eave * back + up, eave + up])
    b.strip("soffit", [eave * back, eave, wall, wall * back])


def inn(atlas):
    m = INN
    slope = (m["ridge_y"] - m["eave_y"]) / m["eave_x"]
    under = lambda x: m["ridge_y"] - slope * abs(x)
    up, left, back = np.array((0, m["thick"], 0)), np.array((-1, 1, 1)), np.array((1, 1, -1))

    def walls(b, wall, peak):
        low = np.array((m["low_x"], m["floor_low"], m["low_z"]))
        foot = np.array((m["low_x"] + 0.05, 0, m["low_z"] + 0.05))
        floor = np.array((m["wall_x"], m["floor"], m["wall_z"]))
        b.wall("inn_ground_front", [foot * left, foot, low, low * left], (0, 0, 1), (0, 0, m["low_z"]))
        b.wall("inn_ground_side", [foot, foot * back, low * back, low], (1, 0, 0), (m["low_x"], 0, 0))
        b.wall("jetty", [low * left, low, floor, floor * left], (0, -1, 1), low * (0, 1, 1))
        b.wall("jetty", [low, low * back, floor * back, floor], (1, -1, 0), low * (1, 1, 0))
        b.wall("inn_gable", [floor * left, floor, wall, peak, wall * left], (0, 0, 1), (0, m["floor"], m["wall_z"]))
        b.wall("inn_side", [floor, floor * back, wall * back, wall], (1, 0, 0), (m["wall_x"], m["floor"], 0))

    def end(b):
        gable_ends(b, m, under, up, walls)
        eave, ridge = np.array((m["eave_x"], m["eave_y"], m["eave_z"])), np.array((0, m["ridge_y"], m["eave_z"]))
        saddle = np.array((0, m["ridge_y"] - 0.25, 0))
        points = [eave, eave * back, ridge * back, saddle, ridge]
        b.wall("plum_roof", [p + up for p in points], (1, 1, 0), eave * (1, 1, 0) + up)
        hanging_sign(b, m)

    mesh = on_both_ends(end, atlas)
    stack = Builder(atlas)
    chimney_stack(stack, -1.05, 1.1, 0.42, 4.2, 6.7)
    return settled(mesh.add(stack.mesh), -0.5)


def hanging_sign(b, m):
    """A board across the street below the jetty, a hand's breadth thick."""
    x, thick, z0, z1, low, high = -1.75, 0.06, m["low_z"] + 0.06, m["low_z"] + 0.66, 1.24, 1.92
    for side in (-1, 1):
        face = [(x + side * thick, low, z0), (x + side * thick, low, z1),
                (x + side * thick, high, z1), (x + side * thick, high, z0)]
        b.wall("sign", face, (side, 0, 0), (x, low - 0.01, (z0 + z1) / 2))
    for z, out in ((z0, -1), (z1, 1)):
        b.strip_facing("bargeboard", [(x + thick, low, z), (x + thick, high, z),
                                      (x - thick, high, z), (x - thick, low, z)], (0, 0, out))
    for y, out in ((low, -1), (high, 1)):
        b.strip_facing("bargeboard", [(x - thick, y, z1), (x - thick, y, z0),
                                      (x + thick, y, z0), (x + thick, y, z1)], (0, out, 0))


def hall(atlas):
    """Built with its ridge along z like the others, then turned along x."""
    h = HALL
    m = dict(h, eave_x=h["eave_z"], eave_z=h["eave_x"], wall_x=h["wall_z"], wall_z=h["wall_x"])
    slope = (m["ridge_y"] - m["eave_y"]) / m["eave_x"]
    under = lambda x: m["ridge_y"] - slope * abs(x)
    up = np.array((0, m["thick"], 0))

    def walls(b, wall, peak):
        foot = np.array((m["wall_x"] + 0.06, 0, m["wall_z"] + 0.06))
        half = Builder(b.atlas)
        middle = np.array((0, 0, m["wall_z"] + 0.06))
        half.wall("hall_gable", [middle, foot, wall, peak], (0, 0, 1), (2.25, 0, m["wall_z"]))
        b.mesh.add(half.mesh, half.mesh.scaled(x=-1))

    mesh = on_both_ends(lambda b: gable_ends(b, m, under, up, walls), atlas)
    front = hall_long_side(atlas, m, under(m["wall_x"]))
    mesh.add(front, front.scaled(x=-1))           # the back is its mirror: both signs point west
    mesh.add(broken_roof(atlas, m, up))
    tower = Builder(atlas)
    lantern_turret(tower, 3.1, m["ridge_y"])
    mesh.add(tower.mesh)
    mesh = mesh.turned(90).moved(x=m["middle"])
    corner = alley_fence(atlas)
    return settled(mesh.add(corner, corner.scaled(z=-1)), 0.25)


def alley_fence(atlas):
    """A hurdle and a rain barrel in front of the alley at the -x end, where the footprint ends."""
    b = Builder(atlas)
    west, east, z, radius, tall = -5.18, -4.0, 4.47, 0.43, 0.72
    b.wall("hurdle", [(west, 0, z), (east, 0, z), (east, 0.80, z), (west, 0.80, z)], (0, 0, 1), ((west + east) / 2, 0, z))
    rim = ring(radius, tall, 6, -4.52, z)[3:] + ring(radius, tall, 6, -4.52, z)[:1]
    foot = [p * np.array((1, 0, 1)) for p in map(np.array, rim)]
    for k in range(3):
        b.mesh.face([foot[k], foot[k + 1], rim[k + 1], rim[k]],
                    b.atlas.strip("barrel", [foot[k], foot[k + 1], rim[k + 1], rim[k]], k * radius), "barrel")
    b.wall("barrel_top", rim, (0, 1, 0), (-4.52, tall, z + 0.48))
    return b.mesh


def hall_long_side(atlas, m, top):
    """The front, before the turn along x: its left end is at -z."""
    b, middle = Builder(atlas), 4.05                       # half the painted width
    low = lambda z: (-m["wall_x"] - 0.06, 0, z * (m["wall_z"] + 0.06) / m["wall_z"])
    high = lambda z: (-m["wall_x"], top, z)
    for panel, z0, z1, left, right in (("hall_welcome", -m["wall_z"], FRONT_SPLIT, -middle, FRONT_SPLIT),
                                       ("hall_front", FRONT_SPLIT, m["wall_z"], FRONT_SPLIT, middle)):
        b.wall(panel, [low(z0), low(z1), high(z1), high(z0)], (-1, 0, 0), (-m["wall_x"], 0, (left + right) / 2))
    return b.mesh


def broken_roof(atlas, m, up):
    """Both slopes around the gap, the gap's ragged thickness and what glows in it."""
    b = Builder(atlas)
    ring = []
    for side, gap in ((1, GAP_FRONT), (-1, GAP_BACK)):
        # After the turn along x, the ridge's z is -x; gaps are listed from +x.
        def point(x, t, s=side):
            return np.array((s * m["eave_x"] * (1 - t), m["eave_y"] + (m["ridge_y"] - m["eave_y"]) * t, x)) + up
        outline = [(-m["eave_z"], 0), (m["eave_z"], 0), (m["eave_z"], 1)] + gap + [(-m["eave_z"], 1)]
        for triangle in ears(outline):
            b.wall("slate_roof", [point(*outline[i]) for i in triangle], (side, 1, 0), point(0, 0))
        edge = [point(*g) for g in gap]
        ring += edge[:-1] if side > 0 else edge[::-1][:-1]
    crater(b, ring, np.array((0, 3.25, 0.2)))
    for foot, tip, end in RAFTERS:
        rafter(b, np.array(foot, dtype=float), np.array(tip, dtype=float), end)
    return b.mesh


# Burnt rafters that stand up out of the gap: foot, tip (before the turn along x), width at the tip
RAFTERS = [((1.9, 3.5, 1.35), (0.30, 6.1, 1.30), 0.6), ((-1.9, 3.5, 0.55), (-0.05, 5.75, 0.25), 0.6),
           ((1.7, 3.2, -0.35), (0.35, 5.2, -0.95), 0.0)]


def crater(b, ring, heart):
    """Slanting sides from the gap's edge down to one place, where all glows."""
    run = 0.0
    for p, q in zip(ring, ring[1:] + ring[:1]):
        wide = 0.6 * np.linalg.norm(q - p)
        left, right, high_right, high_left = b.atlas.strip(
            "charred_wood", [(0, 0, 0), (wide, 0, 0), (wide, 1, 0), (0, 1, 0)], run % 1.3)
        foot = (left[0] + right[0]) / 2, left[1]
        b.face_towards([heart, q, p], [foot, high_right, high_left], heart + (0, 1.2, 0) - (p + q) / 2)
        run += wide


def rafter(b, foot, tip, end):
    """A three-sided burnt timber; `end` is its width at the tip, 0 for a splinter."""
    across = np.cross(tip - foot, (0, 1.0, 0))
    across *= 0.17 / np.linalg.norm(across)
    over = np.cross(across, tip - foot)
    over *= 0.17 / np.linalg.norm(over)
    section = [-across - over * 0.6, across - over * 0.6, over]
    length = np.linalg.norm(tip - foot)
    for i in range(3):
        p, q = section[i], section[(i + 1) % 3]
        quad = outward([foot + p, tip + p * end, tip + q * end, foot + q], p + q)
        if end:
            b.mesh.face(quad, b.atlas.strip("burnt_beam", quad, 3.5 - length))
        else:
            points = outward([foot + p, tip, foot + q], p + q)
            uvs = b.atlas.strip("burnt_beam", [foot + p, tip, tip, foot + q], 3.5 - length)
            b.mesh.face(points, [uvs[0], uvs[1], uvs[3]])
    if end:
        cap = outward([tip + p * end for p in section], tip - foot)
        b.mesh.face(cap, b.atlas.strip("burnt_beam", [cap[0], cap[1], cap[2], cap[2]], 2.9)[:3])


def lantern_turret(b, z, ridge):
    """A louvred turret that straddles the ridge under a pointed cap."""
    half, base, eave, tip = 0.52, ridge - 0.45, ridge + 0.95, ridge + 2.15
    square = lambda r, y: (-r, r, z - r, z + r, y)
    b.four_sides("cupola", square(half, base), square(half * 0.94, eave), base + 0.02)
    corners = [(-1, 1), (1, 1), (1, -1), (-1, -1)]
    reach = half + 0.22
    b.strip_facing("soffit", [(sx * reach, eave - 0.1, z + sz * reach) for sx, sz in corners], (0, -1, 0))
    for i in range(4):
        (ax, az), (bx, bz) = corners[i], corners[(i + 1) % 4]
        points = [(ax * reach, eave - 0.1, z + az * reach), (bx * reach, eave - 0.1, z + bz * reach), (0, tip, z)]
        b.on_slope("plum_roof", points, (ax + bx, az + bz), 1.4 * i - 2, 0.4)


def main():
    atlas = picture()
    write_bmp("house.bmp", atlas.picture)
    cottage(atlas).write("house1.obj", 80)
    inn(atlas).write("house2.obj", 100)
    hall(atlas).write("house3.obj", 120)


main()
