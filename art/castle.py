"""The castle of Drossmere and its picture.

Run: blender -b --factory-startup -P art/castle.py

The game draws it three times as large; all measures here are model units above
its ground. The gate and the two low walls of its approach face +x, the town.
"""
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))

import numpy as np

from building import (SLATE_LIGHT, TILE_RED, Atlas, Builder, Panel, ashlar, blot, centred, cut_out, ears, limb,
                      outward, solid)
from shared import PALETTE, blur, box, loft, mix, rgb, ring, smoothstep, write_bmp

GROUND = -1.567
SIZE, BORDER = 1024, 4
LOW = 0.80                         # up to here a player comes near: above it the picture is coarser
COURSE, STONE = 0.19, (0.24, 0.46)

CURTAIN_TOP, CURTAIN_THICK = 1.90, 0.34
MERLON, GAP = 0.34, 0.34         # width of a merlon and of the gap beside it
FRONT, BACK, SIDE = 3.60, -2.50, 3.78
GATE_X, GATE_HALF, GATE_TOP, GATE_ARCH, GATE_ARCH_TOP = 4.12, 0.86, 2.35, 0.50, 1.45
COPING, PROUD = 0.16, 0.035      # width of the dressed stones, how far they stand out at the gate
LAMP_Z, LAMP_Y = 0.75, 1.24
SEAT = 0.11                      # by so much the throne stands lower than it is painted

STONES = [PALETTE["stone"] * 1.3, rgb("9c8f86"), rgb("827b85"), rgb("a5948a"), PALETTE["stone"] * 1.1]
FRAME = rgb("6d5f5a")
SLATES = [PALETTE["slate"] * 1.3, PALETTE["slate"] * 1.05, SLATE_LIGHT, rgb("505a72")]
PLUMS = [PALETTE["plum"] * 1.35, PALETTE["plum"] * 1.05, TILE_RED * 1.05, rgb("744a68")]


# The picture ------------------------------------------------------------------

def strip(height, density, seed, columns=SIZE):
    """A wall as long as the picture is wide; it goes on from its right end to its left."""
    return Panel(columns / density, height, density, seed)


def weathered(panel):
    """Stains that run down and broad differences of tone."""
    stain = smoothstep(0.50, 0.75, panel.grain(0.9, 3))
    panel.shade(stain * 0.6, np.array((0.80, 0.78, 0.84)))
    streak = smoothstep(0.55, 0.8, panel.grain(0.22, 4, stretch=5.0))
    panel.shade(streak * 0.4, 0.76)
    panel.mottle(2.5, 0.16, 5)
    return panel


def hewn(panel):
    """A panel of the castle's common masonry."""
    return weathered(ashlar(panel, panel.seed, COURSE, STONE, STONES))


def masonry(height, density, seed, columns=SIZE):
    return hewn(strip(height, density, seed, columns))


def slit(panel, x, y, width=0.20, height=0.46):
    panel.window(x, y, width, height, columns=1, rows=2, arched=True, halo=0.40, frame=0.05, trim=FRAME)


def low():
    """The foot of all walls up to a player's eyes: the finest masonry, under a string course."""
    panel = masonry(LOW, 192, 1)
    joints = smoothstep(0.02, -0.004, panel.edge)
    level = panel.y + 0.35 * (panel.grain(0.35, 21) - 0.5)
    panel.shade(smoothstep(0.5, 0.0, level) * 0.8, np.array((0.72, 0.68, 0.64)))
    patch = panel.grain(0.22, 22) + 0.25 * joints + 0.30 * smoothstep(0.45, 0.0, panel.y)
    moss = smoothstep(0.74, 0.80, patch) * smoothstep(0.75, 0.3, panel.y)
    tuft = mix(rgb("2b3120"), rgb("69733a"), smoothstep(0.25, 0.75, panel.grain(0.03, 23, octaves=2)))
    panel.blend(moss * (0.55 + 0.4 * joints), tuft)
    blades = panel.grain(0.014, 24, octaves=1) * (0.35 + panel.grain(0.25, 25))   # grass against the stones
    grass = smoothstep(0.012, -0.004, panel.y - 0.11 * blades)
    panel.blend(grass * 0.92, mix(rgb("20260f"), rgb("66703a"), smoothstep(0.0, 0.10, panel.y) * panel.grain(0.012, 28, octaves=1)))
    string_course(panel, LOW - 0.085, LOW)
    return panel


def string_course(panel, foot, head):
    """A band of long dressed stones: light above, its shadow below."""
    panel.shade(smoothstep(foot - 0.07, foot, panel.y) * (panel.y < foot), 0.50)
    across = (panel.x + 0.02 * (panel.grain(0.3, 26) - 0.5)) / (panel.width / round(panel.width / 0.47))
    joint = np.abs(across - np.round(across)) * 0.47
    tone = 0.92 + 0.25 * (panel.grain(0.12, 27) - 0.5) + 0.22 * (panel.fine - 0.5)
    rise = (panel.y - foot) / (head - foot)
    tone = tone * (1 + 0.30 * smoothstep(0.72, 0.9, rise) - 0.34 * smoothstep(0.25, 0.05, rise))
    tone = tone * (1 - 0.6 * smoothstep(0.010, 0.004, joint))
    panel.blend(smoothstep(foot - 0.004, foot + 0.002, panel.y) * (panel.y < head), rgb("a89a8c") * tone[..., None])


def curtain():
    panel = masonry(1.95 - LOW, 104, 2)
    for x in np.arange(-4.6, 4.6, 1.3):
        slit(panel, x + 0.2 * np.sin(5 * x), 0.98 - LOW, 0.13, 0.42)
    string_course(panel, 1.66 - LOW, 1.76 - LOW)
    return panel


def tower():
    panel = masonry(3.2 - LOW, 72, 3)
    for k in range(12):
        slit(panel, -6.4 + 1.185 * k, (0.42, 1.50, 0.30, 1.62)[k % 4], 0.24, 0.50)
    return panel


def upper():
    panel = masonry(2.0, 48, 4)
    for k in range(18):
        slit(panel, -10.1 + 1.185 * k, 0.42 + 0.75 * (k % 2), 0.25, 0.52)
    return panel


def drum():
    """The top storey of a tower: a ring of lit windows under the roof."""
    panel = masonry(0.62, 80, 5, 504)
    for x in np.arange(-2.97, 3.0, 0.54):
        slit(panel, x, 0.14, 0.17, 0.34)
    panel.eaves_shadow(0.66, 0.25, 0.5)
    return panel


def corbel():
    panel = masonry(0.30, 80, 6, 504)
    tooth = np.abs(((panel.x / 0.20) % 1) - 0.5) * 2
    arch = smoothstep(0.30, 0.36, tooth) * smoothstep(0.22, 0.18, panel.y)
    panel.blend(arch * 0.85, PALETTE["soot"] * 1.3)
    panel.shade(smoothstep(0.15, 0.0, panel.y), 0.7)
    return panel


def parapet():
    """Merlons: light on their upper edge."""
    panel = masonry(0.42, 80, 7, 504)
    panel.glow(smoothstep(0.33, 0.40, panel.y) * 0.28, PALETTE["cream"])
    return panel


def paving():
    panel = Panel(2.9, 2.9, 28, 8)
    panel.stones(0.3, (0.3, 0.6), [PALETTE["stone"], PALETTE["stone_dark"] * 1.2], mortar=0.04, raised=0.3)
    return panel


def roof(colours, seed):
    panel = Panel(2.2, 2.6, 52, seed)
    panel.shingles(0.20, 0.20, colours)
    panel.shade(smoothstep(0.12, 0.0, panel.y), 0.7)
    panel.glow(smoothstep(1.2, 2.6, panel.y) * 0.12, PALETTE["cream"])
    return panel


def slate():
    return roof(SLATES, 9)


def plum():
    return roof(PLUMS, 10)


def coping():
    """Long dressed stones: the gate's arch and the top of the approach's walls."""
    panel = ashlar(strip(COPING, 192, 11), 11, course=COPING, lengths=(0.17, 0.26), joint=0.012, bevel=0.030,
                   colours=[rgb("b5a797"), rgb("a49584"), rgb("bdb0a2"), rgb("9a8d84")])
    panel.mottle(0.7, 0.14, 5)
    return panel


def gate_front():
    """The wall over the gate, from the string course up."""
    panel = hewn(Panel(1.74, GATE_TOP + 0.02 - LOW, 160, 12))
    away = np.hypot(panel.x, panel.y - (GATE_ARCH_TOP - GATE_ARCH - LOW))
    panel.shade(smoothstep(GATE_ARCH + 0.26, GATE_ARCH + 0.14, away), 0.58)   # under the arch's ring
    for side in (-1, 1):
        panel.glow(0.75 * np.exp(-np.hypot(panel.x - side * LAMP_Z, panel.y - LAMP_Y - 0.1 + LOW) / 0.20), PALETTE["ember"])
    panel.shade(smoothstep(0.34, 0.20, np.maximum(np.abs(panel.x), np.abs(panel.y - 1.98 + LOW))), 0.7)
    panel.eaves_shadow(GATE_TOP - LOW, 0.22, 0.62)
    return panel


def shield():
    """The town's arms: a golden paw on plum."""
    panel = Panel(0.46, 0.56, 184, 13)
    outline = lambda grow: np.maximum(np.abs(panel.x) - 0.20 - grow, np.maximum(
        panel.y - 0.53 - grow, 0.23 - grow * 1.4 - panel.y - (0.20 - np.abs(panel.x)) * 1.05))
    panel.picture = np.ones_like(panel.picture) * PALETTE["glow"] * 0.86
    panel.picture = panel.picture * (0.8 + 0.35 * panel.y / 0.56)[..., None]
    panel.shade(smoothstep(-0.052, -0.045, outline(0.0)) * smoothstep(-0.02, -0.045, outline(0.0)), 0.55)
    field = smoothstep(-0.040, -0.047, outline(0.0))
    panel.blend(field, mix(rgb("5e2138"), rgb("8f3450"), smoothstep(0.1, 0.5, panel.y + 0.5 * panel.x)))
    paw(panel, 0, 0.315, 0.118, rgb("3a1526"), 0.014)
    paw(panel, 0, 0.325, 0.118, PALETTE["glow"])
    return panel


def paw(panel, x, y, size, colour, shift=0.0):
    """The town's device, a paw: one pad and four toes."""
    spots = [(0, -0.25, 0.55)] + [(np.sin(a) * 0.95, np.cos(a) * 0.85 - 0.05, 0.27) for a in (-1.0, -0.35, 0.35, 1.0)]
    pixel = 1 / panel.density
    for dx, dy, r in spots:
        away = np.hypot(panel.x - x - dx * size - shift, panel.y - y - dy * size)
        panel.blend(smoothstep(r * size + 0.6 * pixel, r * size - 0.6 * pixel, away), colour)


def throne_room():
    """What shows behind the grating: a vaulted hall, and on his throne the king, a white poodle."""
    panel = Panel(1.08, 1.48, 190, 14)
    panel.y += SEAT
    panel.sway_y += SEAT
    x, y = panel.x, panel.y
    away = np.hypot(x * 1.1, y - 0.88)
    panel.picture = mix(rgb("ffe9a8"), rgb("f4b055"), smoothstep(0.22, 0.50, away))
    panel.picture = mix(panel.picture, rgb("b5602e"), smoothstep(0.45, 0.85, away))
    vault = np.hypot(x, np.maximum(y - 0.72, 0)) / 0.115
    rib = np.abs(vault - np.round(vault))
    hall = smoothstep(0.28, 0.30, y) * smoothstep(0.28, 0.32, np.hypot(x, np.maximum(y - 0.72, 0)))
    panel.shade(hall * smoothstep(0.20, 0.10, rib), 0.78)
    panel.glow(hall * smoothstep(0.24, 0.36, rib) * 0.14, PALETTE["glow"])
    throne_floor(panel)
    for side in (-1, 1):
        candles(panel, side * 0.435)
    throne(panel)
    king(panel)
    return panel


def throne_floor(panel):
    """Flags that run to the dais, three steps, and a red carpet over them all."""
    x, y = panel.x, panel.y
    joint = np.abs(x / (0.75 - y) / 0.26 - np.round(x / (0.75 - y) / 0.26)) * 0.15
    floor = mix(rgb("c98a48"), rgb("94592f"), smoothstep(0.1, 0.5, np.abs(x)))
    floor = floor * (1 - 0.4 * smoothstep(0.012, 0.005, joint))[..., None]
    panel.blend(smoothstep(0.215, 0.205, y), floor)
    for k, (foot, half) in enumerate(((0.20, 0.40), (0.26, 0.36), (0.32, 0.32))):
        step = panel.box_distance(-half, foot, half, foot + 0.06)
        tread = smoothstep(foot + 0.034, foot + 0.046, panel.sway_y)
        panel.shade(smoothstep(0.04, 0.0, step), 0.6)
        panel.blend(solid(step), mix(rgb("9a7355"), rgb("ecd0a0"), tread))
    wide = 0.13 + 0.75 * np.maximum(0.20 - y, 0)
    edge = np.abs(x) - wide
    carpet = smoothstep(0.006, -0.006, edge) * smoothstep(0.385, 0.375, y)
    tread = ((y - 0.20) / 0.06) % 1
    tone = np.where(y > 0.20, 0.72 + 0.5 * smoothstep(0.52, 0.72, tread), 1.0)
    panel.blend(carpet, rgb("a3263a") * tone[..., None])
    panel.blend(carpet * smoothstep(0.008, 0.004, np.abs(edge + 0.022)), PALETTE["glow"] * tone[..., None])


def candles(panel, x):
    """A tall stand with three lights."""
    iron = rgb("6a4424")
    stand = np.minimum.reduce([panel.box_distance(x - 0.010, 0.24, x + 0.010, 0.86), blot(panel, x, 0.235, 0.05, 0.02),
                               panel.box_distance(x - 0.062, 0.80, x + 0.062, 0.82), blot(panel, x, 0.56, 0.02, 0.02)])
    panel.blend(solid(stand), iron)
    for dx, top in ((-0.055, 0.0), (0.055, 0.0), (0.0, 0.05)):
        panel.blend(solid(panel.box_distance(x + dx - 0.012, 0.82, x + dx + 0.012, 0.90 + top)), PALETTE["cream"])
        panel.glow(0.9 * np.exp(-np.hypot(panel.x - x - dx, panel.y - 0.93 - top) / 0.055), rgb("ffd070"))
        panel.blend(solid(blot(panel, x + dx, 0.935 + top, 0.013, 0.030)), rgb("fffbe0"))


def throne(panel):
    """A high back of plum velvet in a gold frame, with arms."""
    gold, dark = PALETTE["glow"] * 0.95, rgb("7a4a1c")
    x, y = panel.sway_x, panel.sway_y
    back = np.maximum(np.where(y > 1.07, np.hypot(x, y - 1.07), np.abs(x)) - 0.31, 0.36 - y)
    panel.shade(smoothstep(0.10, 0.0, back), 0.5)
    panel.blend(solid(back), mix(dark, gold, smoothstep(0.3, 1.1, y)))
    velvet = back + 0.045
    row = np.floor(y / 0.085)
    away = np.hypot((x / 0.105 + 0.5 * (row % 2)) % 1 - 0.5, y / 0.085 - row - 0.5)
    panel.blend(solid(velvet - 0.012), rgb("4a1226"))
    panel.blend(solid(velvet), mix(rgb("8a3058"), rgb("562044"), smoothstep(0.15, 0.6, away)))
    panel.shade(solid(velvet) * smoothstep(-0.08, 0.0, velvet), 0.6)
    for x in (-0.31, 0.31):
        cut_out(panel, blot(panel, x, 1.10, 0.036, 0.036), gold, rim=0.010)
    cut_out(panel, blot(panel, 0, 1.40, 0.044, 0.044), gold, rim=0.010)
    for side in (-1, 1):
        post = panel.box_distance(side * 0.29 - 0.035, 0.37, side * 0.29 + 0.035, 0.64)
        cut_out(panel, post, mix(dark, gold, 0.7), rim=0.012)
        cut_out(panel, blot(panel, side * 0.29, 0.655, 0.060, 0.036), gold, rim=0.012)


def king(panel):
    """A white poodle in a red mantle, crowned, a sceptre in one paw."""
    white, shade, red, gold = rgb("fffaf0"), rgb("d9c6b4"), rgb("c02a36"), rgb("ffcf52")
    mantle = panel.convex_distance([(-0.275, 0.37), (0.275, 0.37), (0.245, 0.62), (0.15, 0.86), (-0.15, 0.86),
                                    (-0.245, 0.62)])
    folds = 0.80 + 0.22 * np.cos(panel.sway_x / (0.05 + 0.10 * (1 - panel.y)) * 2.2)
    cut_out(panel, mantle - 0.01, red * folds[..., None])
    for side in (-1, 1):                                   # the ermine down its front edges and its hem
        fur = limb(panel, side * 0.085, 0.82, side * 0.145, 0.39, 0.030, 0.034)
        panel.blend(solid(fur), white)
        for k in range(5):
            at = side * (0.094 + 0.0125 * k), 0.77 - 0.083 * k
            panel.dot(at, 0.010, rgb("3a2a30"))
    for side in (-1, 1):                                   # the hind paws on the top step
        cut_out(panel, blot(panel, side * 0.085, 0.405, 0.066, 0.042), white)
    cut_out(panel, blot(panel, 0, 0.66, 0.090, 0.15), white)
    panel.blend(solid(limb(panel, 0, 0.52, 0, 0.74, 0.006, 0.006)) * 0.5, shade)
    cut_out(panel, limb(panel, 0.275, 0.44, 0.325, 1.03, 0.012, 0.012), gold, rim=0.010)
    cut_out(panel, blot(panel, 0.33, 1.075, 0.042, 0.045), gold, rim=0.012)
    panel.dot((0.318, 1.090), 0.014, rgb("fff6cf"))
    for side in (-1, 1):                                   # the arms and the paws on the throne's
        cut_out(panel, limb(panel, side * 0.165, 0.79, side * 0.25, 0.68, 0.062, 0.050), red * 1.05)
        cut_out(panel, blot(panel, side * 0.262, 0.665, 0.050, 0.046), white)
    collar = np.minimum.reduce([blot(panel, dx, 0.835 - 0.9 * dx * dx, 0.070, 0.058)
                                for dx in (-0.15, -0.075, 0.0, 0.075, 0.15)])
    cut_out(panel, collar, white)
    for dx in (-0.16, -0.09, 0.09, 0.16):
        panel.dot((dx, 0.82), 0.011, rgb("3a2a30"))
    cut_out(panel, blot(panel, 0, 0.825, 0.032, 0.034), gold, rim=0.010)
    # The head: ears, topknot, face
    for side in (-1, 1):
        ear = np.minimum(blot(panel, side * 0.145, 1.00, 0.058, 0.095), blot(panel, side * 0.158, 0.925, 0.066, 0.066))
        cut_out(panel, ear, shade * 1.04)
    cut_out(panel, blot(panel, 0, 1.015, 0.122, 0.125), white)
    muzzle = np.minimum(blot(panel, 0, 0.950, 0.070, 0.055), blot(panel, 0, 0.915, 0.045, 0.040))
    cut_out(panel, muzzle, rgb("f6e6d2"), rim=0.006)
    panel.blend(solid(blot(panel, 0, 0.972, 0.032, 0.023)), rgb("20161a"))
    panel.dot((-0.010, 0.980), 0.007, rgb("cbb8b0"))
    panel.blend(solid(np.abs(blot(panel, 0, 0.945, 0.034, 0.030)) - 0.003) * (panel.sway_y < 0.935), rgb("6a2a2a"))
    for side in (-1, 1):
        panel.blend(solid(blot(panel, side * 0.056, 1.025, 0.019, 0.026)), rgb("20161a"))
        panel.dot((side * 0.056 - 0.006, 1.036), 0.007, white)
    topknot = np.minimum.reduce([blot(panel, dx, 1.125, 0.062, 0.056) for dx in (-0.065, 0.0, 0.065)])
    cut_out(panel, topknot, white, rim=0.010)
    crown = np.minimum.reduce([panel.box_distance(-0.108, 1.145, 0.108, 1.195)] +
                              [panel.convex_distance([(dx - 0.045, 1.18), (dx + 0.045, 1.18), (dx * 1.22, tip)])
                               for dx, tip in ((-0.078, 1.275), (0.0, 1.305), (0.078, 1.275))])
    cut_out(panel, crown, mix(rgb("f0a22e"), rgb("ffe27a"), smoothstep(1.15, 1.26, panel.y)), rim=0.014)
    for dx, tip in ((-0.095, 1.280), (0.0, 1.312), (0.095, 1.280)):
        cut_out(panel, blot(panel, dx, tip, 0.018, 0.018), rgb("fff0b0"), rim=0.008)
    for dx, colour in ((-0.065, "c02a36"), (0.0, "3f7f8c"), (0.065, "c02a36")):
        panel.dot((dx, 1.170), 0.014, rgb(colour))


def iron():
    """A round bar of the grating, its rims warm from the hall's light behind."""
    panel = Panel(0.44, 0.056, 190, 24)
    across = (panel.y - 0.028) / 0.028
    tone = 0.70 + 0.70 * np.sqrt(np.clip(1 - (across - 0.35) ** 2, 0, 1)) + 0.3 * (panel.grain(0.03, 1) - 0.5)
    rim = 0.32 * smoothstep(0.5, 1.0, np.abs(across))
    panel.picture = rgb("302a2f") * tone[..., None] + rgb("c9702e") * rim[..., None]
    return panel


def carpet():
    """The floor of the gate's passage: flags and the end of the king's carpet."""
    panel = Panel(1.04, 0.74, 92, 25)
    panel.stones(0.17, (0.16, 0.28), [rgb("a9713f"), rgb("8d5a36"), rgb("bb8148")], mortar=0.02, raised=0.5)
    panel.shade(smoothstep(0.1, 0.74, 0.74 - panel.y), 0.72)
    edge = np.abs(panel.x) - 0.197
    panel.shade(smoothstep(0.06, 0.0, edge), 0.6)
    panel.blend(smoothstep(0.01, -0.01, edge), rgb("9c2438") * (0.9 + 0.25 * (panel.grain(0.03, 3) - 0.5))[..., None])
    panel.blend(smoothstep(0.016, 0.008, np.abs(edge + 0.033)), PALETTE["glow"] * 0.95)
    return panel


def reveal():
    """The inside of the arch, warm from the passage's light at its inner edge."""
    panel = ashlar(strip(0.38, 128, 15, 504), 15, 0.127, (0.17, 0.26), STONES)
    panel.picture = mix(panel.picture * np.array((1.0, 0.72, 0.52)), panel.picture, smoothstep(0.0, 0.38, panel.y))
    panel.glow(smoothstep(0.22, 0.0, panel.y) * 0.22, PALETTE["ember"])
    return panel


def banner():
    """Hangs from the battlements: a paw of gold on plum."""
    panel = Panel(0.44, 1.24, 200, 16)
    panel.picture = np.ones_like(panel.picture) * rgb("8a3350")
    weave = panel.grain(0.012, 7, octaves=1)
    fold = np.sin(panel.sway_x * 24 + 1.2 * panel.sway_y)
    panel.picture = panel.picture * (0.90 + 0.22 * fold + 0.12 * (weave - 0.5))[..., None]
    gold = PALETTE["glow"] * 0.9 * (0.9 + 0.2 * fold)[..., None]
    edge = np.abs(np.abs(panel.x) - 0.18)
    panel.shade(smoothstep(0.030, 0.020, edge), 0.6)
    panel.blend(smoothstep(0.018, 0.013, edge), gold)
    paw(panel, 0, 0.735, 0.13, rgb("4a1a2c"), 0.010)
    paw(panel, 0, 0.74, 0.13, PALETTE["glow"])
    for y in (0.30, 0.42):
        panel.blend(smoothstep(0.022, 0.016, np.abs(panel.y - y)), gold)
    panel.shade(smoothstep(1.05, 1.24, panel.y), 0.7)
    return panel


def pennant():
    panel = Panel(0.9, 0.42, 60, 17)
    panel.picture = mix(rgb("a5405c"), rgb("d9893c"), smoothstep(-0.03, 0.03, 0.07 - np.abs(panel.y - 0.21))) \
        * (0.9 + 0.2 * np.sin(panel.x * 14))[..., None]
    return panel


def wood():
    panel = Panel(2.2, 0.4, 48, 18)
    panel.planks(0.16, PALETTE["oak"], level=True)
    return panel


def verge():
    panel = Panel(2.2, 0.12, 48, 19)
    panel.planks(0.5, PALETTE["oak"] * 1.1, level=True)
    return panel


def underside():
    panel = strip(0.22, 80, 20, 504)
    panel.planks(0.2, PALETTE["oak_dark"] * 1.25)
    panel.shade(smoothstep(0.0, 0.22, panel.y), 0.5)
    return panel


def lamp_post():
    """One side of a lamp's post: quoins, light at the top where the lamp hangs over."""
    panel = ashlar(Panel(0.36, 0.86, 250, 21), 21, course=0.165, lengths=(0.17, 0.19), joint=0.009, bevel=0.020, rough=0.8,
                   colours=[rgb("a2958a"), rgb("8c8078"), rgb("b0a294"), rgb("7f7679")])
    panel.mottle(0.3, 0.16, 5)
    panel.shade(smoothstep(0.45, 0.0, panel.y + 0.2 * (panel.grain(0.2, 6) - 0.5)), np.array((0.70, 0.66, 0.62)))
    patch = panel.grain(0.12, 22) + 0.35 * smoothstep(0.30, 0.0, panel.y)
    panel.blend(smoothstep(0.80, 0.88, patch) * 0.7,
                mix(rgb("2b3120"), rgb("69733a"), smoothstep(0.25, 0.75, panel.grain(0.02, 23, octaves=2))))
    panel.glow(smoothstep(0.50, 0.86, panel.y) * 0.16, PALETTE["ember"])
    return panel


def lamp():
    """A pane of a lamp in its iron frame, the flame behind it."""
    panel = Panel(0.28, 0.34, 220, 22)
    x, y = panel.x, panel.y - 0.02
    flame = np.hypot(x / 0.55, (y - 0.11) / (1.0 + 0.8 * (y > 0.11)))
    panel.picture = mix(rgb("fff3bf"), rgb("ffc765"), smoothstep(0.03, 0.10, flame))
    panel.picture = mix(panel.picture, PALETTE["ember"], smoothstep(0.08, 0.24, flame))
    panel.shade(smoothstep(0.022, 0.0, np.abs(np.abs(x) - 0.105)), 0.6)
    iron = np.maximum(np.abs(x) - 0.100, np.abs(y - 0.14) - 0.125)
    bars = np.minimum(np.abs(np.abs(x) - 0.0), np.abs(y - 0.19))
    panel.blend(smoothstep(0.008, 0.005, bars) * 0.85, rgb("2a2227"))
    panel.blend(smoothstep(-0.010, -0.006, iron), rgb("2d262b") * (1.0 + 0.8 * smoothstep(0.0, 0.3, y))[..., None])
    return panel


def upper_gable():
    """A gable end with one large arched window."""
    panel = hewn(Panel(1.5, 2.3, 64, 23))
    panel.window(0.0, 0.85, 0.42, 0.80, columns=2, rows=3, arched=True, halo=0.40, frame=0.06, trim=FRAME)
    return panel


WRAPPED = [low, curtain, tower, upper, coping]   # as wide as the picture


class Plan(Atlas):
    """A picture with its panels at chosen places; wrapped strips have borders above and below only."""

    def put(self, paint, x, y):
        """The panel with its border's top left corner at (x, y); returns its border's far corner."""
        panel, b = paint(), self.border
        h, w = panel.pixels
        picture = panel.kept()
        picture = np.clip(picture + 0.45 * (picture - blur(picture, 0.8)), 0, 1)
        side = 0 if w == self.size else b
        block = np.pad(picture, ((b, b), (side, side), (0, 0)), mode="edge")
        far = x + w + 2 * side, y + h + 2 * b
        assert far[0] <= self.size and far[1] <= self.size, f"no room for {paint.__name__}"
        assert not self.taken[y:far[1], x:far[0]].any(), f"{paint.__name__} lies on another panel"
        self.taken[y:far[1], x:far[0]] = True
        self.picture[y:far[1], x:far[0]] = block
        self.places[paint.__name__] = (x + side, y + b, w, h)
        self.densities[paint.__name__] = panel.density
        return far


def picture():
    atlas = Plan(SIZE, BORDER)
    y = 0
    for paint in WRAPPED:
        y = atlas.put(paint, 0, y)[1]
    x, low_edge = atlas.put(drum, 0, y)
    _, lower = atlas.put(corbel, x, y)
    _, lower = atlas.put(underside, x, lower)
    y = max(low_edge, lower)
    x, low_edge = atlas.put(parapet, 0, y)
    _, lower = atlas.put(reveal, x, y)
    y, x = max(low_edge, lower), 0
    for column in ((throne_room,), (gate_front, wood), (lamp_post, iron), (banner,), (slate, plum),
                   (upper_gable, shield), (lamp, pennant, paving, carpet)):
        top, across = y, x
        for paint in column:
            far, top = atlas.put(paint, x, top)
            across = max(across, far)
        x = across
    x_wood, y_wood, w_wood, _ = atlas.places["wood"]
    atlas.put(verge, x_wood + w_wood + BORDER, y_wood - BORDER)
    print(f"brick.bmp: {SIZE - x} columns free right of its small panels, {SIZE - y} rows for them")
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
        sheet = self.atlas.sheet(panel)
        density, long = sheet.density, w / sheet.density
        left = x + (start % long if w == SIZE else start % max(long - length, 0.01)) * density
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
            self.barrel("low", x, z, [radius * 1.12, radius], [0, LOW], sides)
            self.barrel(shaft, x, z, [radius, radius * 0.95], [LOW, top], sides)
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

    def curtain(self, a, b, top=CURTAIN_TOP, thick=CURTAIN_THICK, merlons=True):
        """A battlemented wall along the line from a to b (x, z), its outer face to the left of the way."""
        a, b = np.array((a[0], 0, a[1]), dtype=float), np.array((b[0], 0, b[1]), dtype=float)
        length = np.linalg.norm(b - a)
        way = (b - a) / length
        out = np.array((way[2], 0, -way[0]))
        a, b = a + out * thick / 2, b + out * thick / 2
        up, ledge = np.array((0, top, 0)), np.array((0, LOW, 0)) + out * 0.03
        self.straight("low", a + out * 0.08, b + out * 0.08, a + ledge, b + ledge, out)
        self.straight("curtain", a + ledge, b + ledge, a + up, b + up, out, LOW)
        inner_a, inner_b = a - out * thick, b - out * thick
        self.straight("tower", inner_b, inner_a, inner_b + up, inner_a + up, -out)
        self.walk(a + up, b + up, inner_b + up, inner_a + up)
        count = int((length + GAP) / (MERLON + GAP)) if merlons else 0
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
    m.curtain((BACK, SIDE - 0.4), (BACK, -SIDE + 0.4), merlons=False)  # no player ever comes behind


def corner_towers(m):
    m.tower(FRONT, SIDE, 0.60, 2.75, tip=5.35, roof="plum")
    m.tower(FRONT, -SIDE, 0.66, 2.60, crown=1.16)
    m.tower(BACK, SIDE, 0.56, 3.0, tip=5.9, roof="slate", sides=7)
    m.tower(BACK, -SIDE, 0.56, 3.2, tip=6.4, roof="slate", sides=7)


def gatehouse(m):
    for side in (-1, 1):
        m.tower(GATE_X - 0.12, side * 1.26, 0.47, 2.45, tip=4.75, roof="plum", crown=1.14)
    arch = [(GATE_ARCH * np.cos(a), GATE_ARCH_TOP - GATE_ARCH + GATE_ARCH * np.sin(a))
            for a in np.linspace(np.pi, 0, 9)]
    # Outlines run in u, which is -z as seen from the town.
    point = lambda u, y, x=GATE_X: np.array((x, y, -u))
    outline = [(-GATE_HALF, LOW), (-GATE_ARCH, LOW)] + arch + [(GATE_ARCH, LOW), (GATE_HALF, LOW),
                                                            (GATE_HALF, GATE_TOP), (-GATE_HALF, GATE_TOP)]
    for triangle in ears(outline):
        m.wall("gate_front", [point(*outline[i]) for i in triangle], (1, 0, 0), (GATE_X, LOW, 0))
    for u0, u1 in ((-GATE_HALF, -GATE_ARCH), (GATE_ARCH, GATE_HALF)):
        m.straight("low", point(u0, 0), point(u1, 0), point(u0, LOW), point(u1, LOW), (1, 0, 0))
    gate_arch(m, point, [(-GATE_ARCH, 0.0)] + arch + [(GATE_ARCH, 0.0)])
    gate_roof(m)
    for side in (-1, 1):
        hang_banner(m, GATE_X + 0.36, side * 1.26, 2.30)


def gate_arch(m, point, inner):
    """The ring of dressed stones that stands out round the gate, its inside, and the grating."""
    wide, depth, face = COPING, 0.75, GATE_X + PROUD
    middle = GATE_ARCH_TOP - GATE_ARCH
    outer = [(u * (1 + wide / GATE_ARCH), y if y < middle else middle + (y - middle) * (1 + wide / GATE_ARCH)) for u, y in inner]
    run, inside = 0.0, 0.0
    for k in range(len(inner) - 1):
        (a0, b0), (a1, b1), (c0, d0), (c1, d1) = inner[k], inner[k + 1], outer[k], outer[k + 1]
        step = (np.hypot(a1 - a0, b1 - b0) + np.hypot(c1 - c0, d1 - d0)) / 2
        lip = np.array((0, (d0 + d1) / 2 - middle if d0 + d1 > 2 * middle else 0.0, -(c0 + c1) / 2))
        places = m.along("coping", run, step)
        m.face_towards([point(a0, b0, face), point(a1, b1, face), point(c1, d1, face), point(c0, d0, face)],
                       [places(0, 0), places(1, 0), places(1, wide), places(0, wide)], (1, 0, 0))
        m.face_towards([point(c0, d0, face), point(c1, d1, face), point(c1, d1), point(c0, d0)],
                       [places(0, wide - PROUD), places(1, wide - PROUD), places(1, wide), places(0, wide)], lip)
        length = np.hypot(a1 - a0, b1 - b0)
        places = m.along("reveal", 0.0, 3.7)
        s0, s1 = inside / 3.7, (inside + length) / 3.7
        m.face_towards([point(a0, b0, GATE_X - depth), point(a1, b1, GATE_X - depth), point(a1, b1, face), point(a0, b0, face)],
                       [places(s0, 0), places(s1, 0), places(s1, 0.38), places(s0, 0.38)], -lip)
        run, inside = run + step, inside + length
    m.wall("throne_room", [point(u, y, GATE_X - depth) for u, y in inner], (1, 0, 0), (GATE_X - depth, 0, 0))
    grating(m, point)
    floor = [(GATE_X - a, 0.02, b * GATE_ARCH) for a, b in ((0.02, 1), (0.02, -1), (depth, -1), (depth, 1))]
    sheet, (px, py, w, h) = m.atlas.sheet("carpet"), m.atlas.places["carpet"]
    m.face_towards(floor, sheet.rect(px, py, w, h), (0, 1, 0))
    x = GATE_X + 0.05
    m.wall("shield", [(x, 1.98 + y, z) for y, z in ((0.26, 0.22), (0.26, -0.22), (-0.04, -0.22), (-0.26, 0), (-0.04, 0.22))],
           (1, 0, 0), (x, 1.71, 0))
    for side in (-1, 1):
        lantern(m, GATE_X + 0.11, side * LAMP_Z, LAMP_Y, 0.055, 0.20)


def grating(m, point):
    """Flat iron bars across the passage, the upright ones pointed, with a boss at every crossing."""
    half, low, x = 0.024, 0.13, GATE_X - 0.30
    uprights, levels = (-0.30, -0.10, 0.10, 0.30), (0.31, 0.70, 1.25)
    middle = GATE_ARCH_TOP - GATE_ARCH
    reach = lambda y: GATE_ARCH if y < middle else np.sqrt(GATE_ARCH ** 2 - (y - middle) ** 2)
    places = m.along("iron", 0.0, 0.43)
    for y in levels:
        a, b = point(-reach(y), y, x), point(reach(y), y, x)
        up = np.array((0, half, 0))
        m.face_towards([a - up, b - up, b + up, a + up],
                       [places(0, 0), places(1, 0), places(1, 0.056), places(0, 0.056)], (1, 0, 0))
    for u in uprights:
        top, near = middle + reach(0) * np.sqrt(1 - (u / GATE_ARCH) ** 2), x + 0.012
        points = [(u, low), (u + half, low + 0.09), (u + half, top), (u - half, top), (u - half, low + 0.09)]
        m.face_towards([point(a, y, near) for a, y in points],
                       [places(0, 0.028), places(0.08, 0), places(1, 0), places(1, 0.056), places(0.08, 0.056)], (1, 0, 0))
        for y in levels:
            boss = [(u, y - 0.044), (u + 0.044, y), (u, y + 0.044), (u - 0.044, y)]
            m.face_towards([point(a, b, near + 0.02) for a, b in boss],
                           [places(0.3, 0.016), places(0.4, 0.016), places(0.4, 0.044), places(0.3, 0.044)], (1, 0, 0))


def lantern(m, x, z, foot, half, tall):
    """A lamp of four panes, wider above, under a small roof."""
    wide = half * 1.25
    for axis in (0, 1):
        for sign in (-1, 1):
            corners, uvs = [], []
            for r, y, t in ((half, foot, 0.0), (wide, foot + tall, 1.0)):
                for aside in ((-1, 1) if t == 0.0 else (1, -1)):
                    p = (x + sign * r, y, z + aside * r) if axis == 0 else (x + aside * r, y, z + sign * r)
                    corners.append(p)
                    uvs.append((aside, t))
            px, py, w, h = m.atlas.places["lamp"]
            sheet = m.atlas.sheet("lamp")
            spots = [sheet.uv(px + w / 2 + a * w * 0.46, py + h * (0.97 - 0.94 * t)) for a, t in uvs]
            m.face_towards(corners, spots, (sign, 0, 0) if axis == 0 else (0, 0, sign))
    eave = foot + tall * 0.96
    tip, r = np.array((x, foot + tall * 1.75, z)), wide * 1.42
    corners = [(x + a * r, eave, z + b * r) for a, b in ((1, 1), (1, -1), (-1, -1), (-1, 1))]
    for k in range(4):
        a, b = corners[k], corners[(k + 1) % 4]
        m.on_slope("slate", [a, b, tip], np.add(a, b) / 2 - (x, eave, z), 0.31 * k - 0.4, 0.3)


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
    m.tower(0.45, -1.08, 0.34, 4.35, tip=6.0, roof="plum", sides=7, base=2.4, shaft="upper", crown=1.24)


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
    """A wall under a chamfered coping that stands out a little."""
    edge, inset, foot = 0.03, 0.018, 0.34
    for z, out in ((z0, -1), (z1, 1)):
        body, near = z - out * inset, z - out * edge
        m.straight("low", (x0, 0, body), (x1, 0, body), (x0, foot, body), (x1, foot, body), (0, 0, out))
        places = m.along("coping", 0.7 * out, x1 - x0)
        rows = ((foot, body, 0.0), (foot + 0.012, z, 0.02), (top - edge, z, 0.075), (top, near, 0.105))
        for (y0, za, t0), (y1, zb, t1) in zip(rows, rows[1:]):
            m.face_towards([(x0, y0, za), (x1, y0, za), (x1, y1, zb), (x0, y1, zb)],
                           [places(0, t0), places(1, t0), places(1, t1), places(0, t1)], (0, 0.3 if zb == near else -0.3, out))
    places, flat = m.along("coping", 0.7, x1 - x0), z1 - z0 - 2 * edge
    m.face_towards([(x0, top, z0 + edge), (x1, top, z0 + edge), (x1, top, z1 - edge), (x0, top, z1 - edge)],
                   [places(0, 0.01), places(1, 0.01), places(1, 0.01 + flat), places(0, 0.01 + flat)], (0, 1, 0))


def post(m, x, z, half, top):
    """Base, shaft and cap of a post, a lamp upon it."""
    square = lambda r, y: (x - r, x + r, z - r, z + r, y)
    shaft = half * 0.84
    levels = [(half, 0), (half, 0.10), (shaft, 0.14), (shaft * 0.97, top - 0.05), (half, top), (half, top + 0.055)]
    for (r0, y0), (r1, y1) in zip(levels, levels[1:]):
        m.four_sides("lamp_post", square(r0, y0), square(r1, y1), 0)
    m.wall("lamp_post", [(x + a * half, top + 0.055, z + b * half) for a, b in ((-1, -1), (1, -1), (1, 1), (-1, 1))],
           (0, 1, 0), (x, top, z + half))
    lantern(m, x, z, top + 0.055, half * 0.55, 0.26)


def flag(m, x, z, base, height, turn, length=0.75):
    """A pole with a pennant that the evening wind holds out."""
    pole = [ring(0.035, base, 3, x, z), ring(0.02, base + height, 3, x, z)]
    places = m.along("wood", 0.0, 0.3)
    m.mesh.add(loft(pole, lambda s, i: places(s, 0.3 * i), f"pole {x}"))
    top, cloth = base + height - 0.02, 0.34
    way = np.array((np.cos(turn), 0, np.sin(turn)))
    sway = np.array((-way[2], 0, way[0])) * 0.07
    at = lambda u, v: np.array((x, top - v, z)) + way * u + sway * np.sin(u * 7)
    sheet, (px, py, w, h) = m.atlas.sheet("pennant"), m.atlas.places["pennant"]
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
