"""The icon: the poodle's head before the burning dusk, in the title cube's frame. Writes
packaging/icons/SIZE.png. Four drawings, not one scaled down: what is too small to see is left
out, and what the eye looks for is larger.
"""
import struct
import sys
import zlib
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parent))
from shared import PALETTE, mix, noise, rgb, smoothstep  # noqa: E402

ICONS = Path(__file__).resolve().parent.parent / "packaging" / "icons"
SAMPLES = 4                                 # a side, per pixel
SKY = ["241a4a", "5d2f6e", "b5486a", "f0803c", "ffc765"]       # from above to the ground
LIGHT = np.array([-0.62, -0.66, 0.42])      # towards the low sun: x right, y down, z to the viewer
FUR = [rgb("5a3f6b"), rgb("b99bb0"), rgb("f3e4d2"), rgb("fffaf0")]   # from shade to light

# Places and sizes in a tile of side 1, y down. Drawn in this order, the head looks to the left:
# mane, neck, top-knot, skull, brow, ear.
# fmt: off
HEAD = {
    "large": [(0.76, 1.06, 0.27, 0.30), (0.66, 0.80, 0.19, 0.25), (0.53, 0.285, 0.225, 0.15),
              (0.50, 0.46, 0.17, 0.155), (0.40, 0.385, 0.075, 0.05), (0.655, 0.535, 0.125, 0.225)],
    "small": [(0.80, 1.04, 0.30, 0.30), (0.68, 0.80, 0.22, 0.27), (0.53, 0.27, 0.29, 0.19),
              (0.50, 0.47, 0.20, 0.18), (0.66, 0.56, 0.16, 0.26)],
    "tiny": [(0.86, 1.06, 0.30, 0.30), (0.72, 0.82, 0.22, 0.30), (0.56, 0.23, 0.34, 0.22),
             (0.52, 0.48, 0.24, 0.21), (0.73, 0.58, 0.17, 0.29)],
}
TINY_PIXELS = ((0, 8), (6, 6))              # nose and eye: columns and rows of 16
# fmt: on


def ellipse(x, y, cx, cy, rx, ry):
    return (np.hypot((x - cx) / rx, (y - cy) / ry) - 1) * min(rx, ry)


def tapered(x, y, a, b, ra, rb):
    """A capsule from point a to point b whose radius goes from ra to rb."""
    (ax, ay), (bx, by) = a, b
    t = np.clip(((x - ax) * (bx - ax) + (y - ay) * (by - ay)) / ((bx - ax) ** 2 + (by - ay) ** 2), 0, 1)
    return np.hypot(x - ax - t * (bx - ax), y - ay - t * (by - ay)) - (ra + (rb - ra) * t)


def rounded(x, y, margin, radius):
    dx, dy = np.abs(x - 0.5) - 0.5 + margin + radius, np.abs(y - 0.5) - 0.5 + margin + radius
    return np.hypot(np.maximum(dx, 0), np.maximum(dy, 0)) + np.minimum(np.maximum(dx, dy), 0) - radius


def ramp(values, colours):
    steps = np.linspace(0, 1, len(colours))
    return np.stack([np.interp(values, steps, [c[i] for c in colours]) for i in range(3)], axis=-1)


def flame(x, y, cx, foot, height, width):
    """Strength of one tongue of fire, 0..1."""
    rise = (foot - y) / height
    inside = np.clip(rise, 0, 1)
    half = width * 2.1 * (inside + 0.06) ** 0.5 * (1 - inside) ** 0.95 + 1e-4
    away = np.abs(x - cx - 0.05 * np.sin(inside * 6 + cx * 9) * inside) / half
    return np.clip(1 - away ** 2, 0, 1) * (rise < 1)


class Drawing:
    def __init__(self, size):
        side = size * SAMPLES
        self.y, self.x = (np.mgrid[0:side, 0:side] + 0.5) / side
        self.size, self.edge = size, 1.0 / side
        self.detail = "large" if size >= 128 else "middle" if size >= 48 else "small" if size >= 24 else "tiny"
        self.picture = ramp(self.y, [rgb(c) for c in SKY])

    def put(self, distance, colour):
        mask = np.clip(0.5 - distance / self.edge, 0, 1)
        self.picture = mix(self.picture, colour * np.ones_like(self.picture), mask)

    def burn(self):
        """Stars above, fire below; on the smallest tile the sky alone."""
        if self.detail == "tiny":
            return
        if self.detail == "large":
            for cx, cy in ((0.16, 0.20), (0.27, 0.13), (0.83, 0.17), (0.89, 0.31), (0.13, 0.36)):
                self.put(ellipse(self.x, self.y, cx, cy, 0.007, 0.007), rgb("ffe9c8"))
        tongues = [(0.20, 0.42, 0.10), (0.90, 0.62, 0.09), (0.40, 0.34, 0.09)]
        if self.detail == "large":
            tongues += [(0.10, 0.28, 0.06), (0.30, 0.27, 0.06), (0.80, 0.38, 0.07)]
        heat = 1 - np.prod([1 - 0.85 * flame(self.x, self.y, cx, 0.99, height, width)
                            for cx, height, width in tongues], axis=0)
        glow = ramp(np.clip(heat * 1.15, 0, 1), [rgb(c) for c in ("c23a1c", "f2701f", "ffb545", "fff0b8")])
        self.picture = mix(self.picture, glow, smoothstep(0.05, 0.45, heat) * 0.95)

    def ball(self, cx, cy, rx, ry, outline):
        """A tuft of fur, round and lit, with a soft dark edge against what lies behind it."""
        x, y = self.x, self.y
        curl = 0
        if self.detail == "large":
            side = len(x)
            curl = (noise(side, side, 26, octaves=2, seed=7) - 0.5) * 0.032
        distance = ellipse(x, y, cx, cy, rx, ry) + curl
        self.picture = mix(self.picture, self.picture * 0.45, smoothstep(outline, 0, distance) * 0.8)
        nx, ny = (x - cx) / rx, (y - cy) / ry
        nz = np.sqrt(np.clip(1 - nx ** 2 - ny ** 2, 0, 1))
        light = np.clip((nx * LIGHT[0] + ny * LIGHT[1] + nz * LIGHT[2]) * 0.62 + 0.42, 0, 1)
        if self.detail == "large":
            light = np.clip(light + curl * 6, 0, 1)
        self.put(distance, ramp(light, FUR))

    def head(self):
        outline = {"tiny": 0.07, "small": 0.035}.get(self.detail, 0.03)
        tufts = HEAD.get(self.detail, HEAD["large"])
        for tuft in tufts[:-1]:
            self.ball(*tuft, outline)
        if self.detail == "tiny":
            self.tiny_muzzle()
        else:
            self.muzzle(self.detail == "small")
        self.ball(*tufts[-1], outline)

    def tiny_muzzle(self):
        """A snout with a nose and an eye of one dark pixel each."""
        snout = tapered(self.x, self.y, (0.46, 0.53), (0.13, 0.57), 0.14, 0.095)
        self.put(snout, ramp(np.clip(0.95 - (self.y - 0.46) * 2.2, 0, 1), FUR))
        for column, row in TINY_PIXELS:
            away = np.maximum(np.abs(self.x * self.size - column - 0.5), np.abs(self.y * self.size - row - 0.5))
            self.put((away - 0.5) / self.size, rgb("1a0e24"))

    def muzzle(self, small):
        x, y, ink = self.x, self.y, rgb("22142c")
        a, b = ((0.44, 0.52), (0.20, 0.57)) if small else ((0.44, 0.505), (0.215, 0.565))
        ra, rb = (0.125, 0.088) if small else (0.105, 0.066)
        if not small:
            self.put(tapered(x, y, (0.40, 0.60), (0.245, 0.655), 0.05, 0.03), rgb("a98698"))      # jaw
            self.put(tapered(x, y, (0.33, 0.615), (0.262, 0.675), 0.03, 0.034), rgb("c8384a"))    # tongue
        distance = tapered(x, y, a, b, ra, rb)
        self.picture = mix(self.picture, self.picture * 0.5, smoothstep(0.022, 0, distance) * 0.7)
        self.put(distance, ramp(np.clip(0.92 - (y - 0.46) * 2.6, 0, 1), FUR))
        nose, eye = ((0.135, 0.53, 0.085, 0.075), (0.395, 0.43, 0.062, 0.07)) if small else \
                    ((0.155, 0.535, 0.052, 0.046), (0.405, 0.445, 0.032, 0.038))
        self.put(ellipse(x, y, *nose), ink)
        self.put(ellipse(x, y, *eye), ink)
        if not small:
            self.put(ellipse(x, y, nose[0] - 0.012, nose[1] - 0.016, 0.014, 0.009), rgb("a58db0"))
            self.put(ellipse(x, y, eye[0] - 0.011, eye[1] - 0.013, 0.010, 0.010), rgb("ffffff"))

    def frame(self):
        """The cube's oak with its brass corners; on a small tile one line of brass, on the
        smallest none."""
        if self.detail == "tiny":
            return
        x, y = self.x, self.y
        width = {"large": 0.062, "middle": 0.055, "small": 1.0 / self.size}[self.detail]
        inner = rounded(x, y, width, 0.13)
        ring = np.clip(0.5 + inner / self.edge, 0, 1)
        if self.detail == "small":
            self.picture = mix(self.picture, rgb("e0a84a") * np.ones_like(self.picture), ring * 0.9)
            return
        self.picture = mix(self.picture, self.picture * 0.35, smoothstep(-0.04, 0, inner) * 0.8)
        slope = 0.5 + 0.5 * np.where(np.abs(x - 0.5) > np.abs(y - 0.5), np.sign(0.5 - x), np.sign(0.5 - y))
        wood = ramp(np.clip(0.25 + 0.5 * slope, 0, 1), [PALETTE["oak_dark"], PALETTE["oak"], rgb("a8743f")])
        self.picture = mix(self.picture, wood, ring)
        fillet = np.abs(inner - 0.006) - 0.006
        self.put(fillet, rgb("e9b95c"))
        corner = np.minimum(np.abs(x - 0.5), np.abs(y - 0.5))
        brass = np.maximum(0.345 - corner, -inner)
        self.put(brass, ramp(np.clip(1.1 - (x + y) / 2, 0, 1), [rgb("8a5a20"), rgb("d9a548"), rgb("ffe9a8")]))

    def tile(self):
        self.burn()
        self.head()
        self.frame()
        alpha = np.clip(0.5 - rounded(self.x, self.y, 0.0, 0.17) / self.edge, 0, 1)
        return np.dstack([np.clip(self.picture, 0, 1), alpha])


def write_png(path, picture):
    """An RGBA picture of floats in 0..1, row 0 on top; no time in it: the same file every time."""
    height, width = picture.shape[:2]
    rows = (np.clip(picture, 0, 1) * 255 + 0.5).astype(np.uint8)
    rows[1:] -= rows[:-1].copy()            # PNG's filter 2: each row as its difference from the last
    raw = b"".join(b"\2" + row.tobytes() for row in rows)

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
                     + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))
    print(f"{path.name}: {width} x {height}")


def main():
    ICONS.mkdir(exist_ok=True)
    for size in (16, 24, 32, 48, 64, 128, 256, 512):
        fine = Drawing(size).tile()
        cells = fine.reshape(size, SAMPLES, size, SAMPLES, 4).swapaxes(1, 2).reshape(size, size, -1, 4)
        alpha = cells[..., 3].mean(axis=-1)
        colour = (cells[..., :3] * cells[..., 3:]).mean(axis=2) / np.maximum(alpha, 1e-6)[..., None]
        write_png(ICONS / f"{size}.png", np.dstack([colour, alpha]))


main()
