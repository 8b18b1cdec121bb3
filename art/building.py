"""Masonry, timber, plaster, shingles and windows for everything that is built.

A Panel is a flat piece of picture measured in units: x runs from its middle
to the right, y from its foot upwards, so that it can be painted with the same
measures as the wall that wears it.
"""
import numpy as np

from shared import PALETTE, SEED, Mesh, Sheet, mix, polygon_normal, rgb, smoothstep

DETAIL = 2                      # painted finer than kept, then averaged: soft edges
TILE_RED, SLATE_LIGHT = rgb("7d4a4c"), rgb("5f6880")
STRAW, STRAW_DARK = rgb("a9854b"), rgb("6b5030")
CHAR, CHAR_LIGHT = rgb("1d1719"), rgb("4a3a35")
FIGURE = rgb("4a2416")           # what outlines people and animals


class Panel:
    def __init__(self, width, height, density, seed):
        """width and height in units; density in pixels a unit."""
        self.seed, self.density = seed, density
        self.pixels = (round(height * density), round(width * density))
        rows, columns = self.pixels[0] * DETAIL, self.pixels[1] * DETAIL
        step = 1.0 / (density * DETAIL)
        self.x, self.y = np.meshgrid((np.arange(columns) + 0.5) * step - width / 2,
                                     height - (np.arange(rows) + 0.5) * step)
        self.width, self.height = width, height
        self.rng = np.random.default_rng(SEED * 100 + seed)
        self.picture = np.zeros((rows, columns, 3))
        # Hand-drawn lines: everything is drawn at slightly swaying places.
        self.sway_x = self.x + 0.07 * (self.grain(0.9, 1) - 0.5) + 0.02 * (self.grain(0.2, 2) - 0.5)
        self.sway_y = self.y + 0.07 * (self.grain(0.9, 3) - 0.5) + 0.02 * (self.grain(0.2, 4) - 0.5)

    def grain(self, cell, seed, stretch=1.0, octaves=3):
        """Noise 0..1 with lumps of `cell` units, `stretch` times as tall as wide; it goes on
        from the right end to the left, and only the panel's own rows are worked out."""
        rows, columns = self.x.shape
        side = max(rows, columns)
        cells = max(1, round(side / (self.density * DETAIL) / cell))
        rng = np.random.default_rng(SEED * 1000 + self.seed * 40 + seed)
        total, weight = np.zeros((rows, columns)), 0.0
        for octave in range(octaves):
            n = cells << octave
            lattice = rng.random((n, n))
            y = (np.arange(rows) / stretch + 0.5) / side * n
            x = (np.arange(columns) + 0.5) / side * n
            y0, x0 = np.floor(y).astype(int), np.floor(x).astype(int)
            fy, fx = smoothstep(0, 1, y - y0)[:, None], smoothstep(0, 1, x - x0)[None, :]
            low, high = lattice[y0 % n], lattice[(y0 + 1) % n]
            along = lambda line: line[:, x0 % n] * (1 - fx) + line[:, (x0 + 1) % n] * fx
            total += (along(low) * (1 - fy) + along(high) * fy) * 0.5 ** octave
            weight += 0.5 ** octave
        return total / weight

    # Masks, 0..1 -------------------------------------------------------------

    def box(self, x0, y0, x1, y1, soft=0.02, round_by=0.0):
        return smoothstep(soft, -soft, self.box_distance(x0, y0, x1, y1, round_by))

    def box_distance(self, x0, y0, x1, y1, round_by=0.0):
        dx = np.abs(self.sway_x - (x0 + x1) / 2) - (x1 - x0) / 2 + round_by
        dy = np.abs(self.sway_y - (y0 + y1) / 2) - (y1 - y0) / 2 + round_by
        outside = np.hypot(np.maximum(dx, 0), np.maximum(dy, 0))
        return outside + np.minimum(np.maximum(dx, dy), 0) - round_by

    def arch_distance(self, x, y, width, height):
        """A door's shape: an upright with a half-round head, standing at y."""
        r = width / 2
        rise = self.sway_y - (y + height - r)
        aside, below = np.abs(self.sway_x - x) - r, y - self.sway_y
        upright = np.hypot(np.maximum(aside, 0), np.maximum(below, 0)) + np.minimum(np.maximum(aside, below), 0)
        return np.where(rise > 0, np.hypot(self.sway_x - x, rise) - r, upright)

    def line_distance(self, xa, ya, xb, yb):
        """Distance across and place along (units) of a straight line."""
        dx, dy = xb - xa, yb - ya
        length = np.hypot(dx, dy)
        px, py = self.sway_x - xa, self.sway_y - ya
        along = (px * dx + py * dy) / length
        across = (px * dy - py * dx) / length
        beyond = np.maximum(np.maximum(-along, along - length), 0)
        return np.hypot(across, beyond), along, across

    def convex_distance(self, points):
        """A convex polygon given counter-clockwise."""
        out = np.full(self.x.shape, -9.0)
        for (xa, ya), (xb, yb) in zip(points, points[1:] + points[:1]):
            out = np.maximum(out, self.line_distance(xa, ya, xb, yb)[2])
        return out

    # Brushes -----------------------------------------------------------------

    def blend(self, mask, colour):
        self.picture = mix(self.picture, colour, mask)

    def shade(self, mask, factor):
        self.picture = self.picture * (1 + (np.asarray(factor) - 1) * mask[..., None])

    def glow(self, mask, colour):
        """Light added like a screen: never burns out flat."""
        self.picture = 1 - (1 - self.picture) * (1 - mask[..., None] * colour)

    def mottle(self, cell, strength, seed):
        self.picture = self.picture * (1 + strength * 2 * (self.grain(cell, seed) - 0.5))[..., None]

    # Materials ---------------------------------------------------------------

    def plaster(self):
        tone = self.grain(0.8, 11)
        self.picture = mix(PALETTE["plaster"] * 1.12, PALETTE["plaster_dark"], smoothstep(0.35, 0.75, tone))
        self.mottle(0.12, 0.10, 12)
        streaks = smoothstep(0.55, 0.8, self.grain(0.25, 13, stretch=6.0))
        self.shade(streaks * 0.6, PALETTE["plaster_dark"] * 1.15)

    def stones(self, course, lengths, colours, where=None, mortar=0.04, joint=0.78, seed=0, raised=1.0):
        """Courses of stones about `course` tall, `lengths` (least, most) units long;
        joint is how dark the mortar is, raised how far the stones stand out."""
        rng = np.random.default_rng(SEED * 300 + self.seed * 7 + seed)
        where = np.ones_like(self.x) if where is None else where
        edges = [-course * rng.random() - 0.2]
        while edges[-1] < self.height + course:
            edges.append(edges[-1] + course * rng.uniform(0.8, 1.2))
        row = np.clip(np.searchsorted(edges, self.sway_y) - 1, 0, len(edges) - 2)
        out = np.zeros_like(self.picture)
        for r in range(len(edges) - 1):
            here = row == r
            if not here.any():
                continue
            joints = [self.sway_x.min() - rng.random() * lengths[1]]
            while joints[-1] < self.sway_x.max():
                joints.append(joints[-1] + rng.uniform(*lengths))
            x, y = self.sway_x[here], self.sway_y[here]
            k = np.clip(np.searchsorted(joints, x) - 1, 0, len(joints) - 2)
            joints = np.array(joints)
            tones = np.array([self.stone_tone(rng, colours) for _ in joints])
            left, right, low, high = joints[k], joints[k + 1], edges[r], edges[r + 1]
            corner = 0.28 * (high - low)
            dx = np.maximum(np.abs(x - (left + right) / 2) - (right - left) / 2 + corner + mortar / 2, 0)
            dy = np.maximum(np.abs(y - (low + high) / 2) - (high - low) / 2 + corner + mortar / 2, 0)
            edge = corner - np.hypot(dx, dy)               # > 0 inside the stone
            rise = (y - low) / (high - low)
            lit = 1 + raised * (0.30 * smoothstep(0.55, 1.0, rise) - 0.28 * smoothstep(0.4, 0.0, rise))
            face = tones[k] * lit[:, None]
            joint_colour = PALETTE["stone_dark"] * joint
            solid = smoothstep(-0.05 * course, 0.16 * course, edge)[:, None]
            out[here] = joint_colour * (1 - solid) + face * solid
        out = out * (1 + 0.35 * (self.grain(0.09, 21) - 0.5) + 0.25 * (self.grain(0.5, 22) - 0.5))[..., None]
        self.blend(where, out)

    @staticmethod
    def stone_tone(rng, colours):
        a, b = colours[rng.integers(len(colours))], colours[rng.integers(len(colours))]
        return mix(a, b, rng.random()) * rng.uniform(0.86, 1.14)

    def shingles(self, course, width, colours, seed=0):
        """Rows of round-ended shingles, the upper ones lapping over the lower."""
        rng = np.random.default_rng(SEED * 500 + self.seed * 7 + seed)
        count_y = int(self.height / course) + 3
        count_x = int(self.width / width) + 4
        tones = np.array([[self.stone_tone(rng, colours) for _ in range(count_x)] for _ in range(count_y)])
        drops = rng.uniform(-0.10, 0.14, (count_y, count_x)) * course
        v = self.sway_y / course + 1
        best = np.full(self.x.shape, -1.0)
        out = np.zeros_like(self.picture)
        for lap in (0, 1):                    # this row, then the one above lapping over it
            r = np.clip(np.floor(v).astype(int) + lap, 0, count_y - 1)
            u = (self.sway_x + self.width / 2) / width + 1 + 0.5 * (r % 2)
            k = np.clip(np.floor(u).astype(int), 0, count_x - 1)
            side = np.abs(u - np.floor(u) - 0.5) * 2                # 0 middle, 1 joint
            low = (r - 1) * course - 0.22 * course + drops[r, k] + 0.30 * course * side ** 3
            above = (self.sway_y - low) / course                     # 0 at the shingle's lip
            covers = (above > 0) if lap else np.ones_like(above, dtype=bool)
            rim = smoothstep(0.0, 0.10, above) * smoothstep(0.22, 0.10, above)
            under = smoothstep(1.05, 0.62, above)                    # shadow of the row above
            lit = 0.55 + 0.45 * under + 0.28 * rim
            lit = lit * (1 - 0.5 * smoothstep(0.86, 1.0, side))
            face = tones[r, k] * lit[..., None]
            out[covers], best[covers] = face[covers], above[covers]
        self.picture = out
        self.shade(smoothstep(0.05, 0.0, best), 0.6)
        self.mottle(0.7, 0.22, 31)
        self.mottle(0.06, 0.12, 32)

    def thatch(self, course=0.52, width=0.36):
        """Bundles of straw in rows, the upper ones lapping over the lower with frayed ends."""
        rng = np.random.default_rng(SEED * 600 + self.seed)
        count_y, count_x = int(self.height / course) + 3, int(self.width / width) + 4
        tones = rng.uniform(0.84, 1.16, (count_y, count_x))
        drops = rng.uniform(-0.12, 0.12, (count_y, count_x)) * course
        straw = 0.6 * self.grain(0.030, 41, stretch=9.0, octaves=2) + 0.4 * self.grain(0.10, 42, stretch=7.0)
        frayed = (self.grain(0.028, 43, stretch=5.0, octaves=2) - 0.5) * 0.34 * course
        base = mix(STRAW_DARK, STRAW * 1.18, smoothstep(0.28, 0.72, straw))
        for lap in (0, 1):                    # this row, then the one above lapping over it
            r = np.clip(np.floor(self.sway_y / course + 1).astype(int) + lap, 0, count_y - 1)
            u = (self.sway_x + self.width / 2) / width + 1 + 0.5 * (r % 2)
            k = np.clip(np.floor(u).astype(int), 0, count_x - 1)
            side = np.abs(u - np.floor(u) - 0.5) * 2                 # 0 middle, 1 between bundles
            lip = (r - 1) * course - 0.10 * course + drops[r, k] + 0.26 * course * side ** 2.5
            above = (self.sway_y - lip + frayed) / course
            covers = (above > 0) if lap else np.ones_like(above, dtype=bool)
            lit = 0.62 + 0.44 * smoothstep(1.08, 0.45, above)        # in the shade of the row above
            lit = lit + 0.30 * smoothstep(0.02, 0.10, above) * smoothstep(0.34, 0.12, above)
            lit = lit * (1 - 0.42 * smoothstep(0.62, 1.0, side))
            self.picture[covers] = (base * (tones[r, k] * lit)[..., None])[covers]
        self.mottle(0.9, 0.18, 44)

    def planks(self, width, colour, where=None, level=False, seed=0):
        """Boards `width` wide, upright or level."""
        rng = np.random.default_rng(SEED * 700 + self.seed * 7 + seed)
        across = (self.sway_y if level else self.sway_x) / width + 40.0
        k = np.floor(across).astype(int) % 97
        tones = rng.uniform(0.78, 1.18, 97)[k]
        part = across - np.floor(across)
        gap = smoothstep(0.09, 0.02, np.minimum(part, 1 - part))
        fibre = self.grain(0.06, 51, stretch=0.12 if level else 8.0)
        face = colour * (tones * (0.78 + 0.44 * fibre) * (1 - 0.7 * gap))[..., None]
        self.blend(np.ones_like(self.x) if where is None else where, face)

    # Building parts ----------------------------------------------------------

    def beam(self, xa, ya, xb, yb, width=0.2, colour=None):
        """A timber of the frame: shadow below it, light upper edge, grain along it."""
        colour = PALETTE["oak"] * 1.05 if colour is None else colour
        distance, along, across = self.line_distance(xa, ya, xb, yb)
        half = width / 2
        self.shade(smoothstep(half + 0.10, half * 0.8, distance), 0.62)
        upward = 1 if xb >= xa else -1
        tone = 0.85 + 0.35 * self.grain(0.10, 61) + 0.12 * np.sin(across / width * 9 + along * 2)
        tone += 0.45 * smoothstep(0.15, 0.5, -across * upward / width) * smoothstep(0.55, 0.4, -across * upward / width)
        tone -= 0.25 * smoothstep(0.2, 0.5, across * upward / width)
        mask = smoothstep(half + 0.012, half - 0.012, distance)
        self.blend(mask, colour * tone[..., None])

    def window(self, x, y, width, height, columns=2, rows=2, shutters=None, arched=False, halo=0.32,
               frame=0.085, trim=PALETTE["oak"]):
        """A lit window with a frame and a sill of colour `trim`; (x, y) is the middle of its foot."""
        if arched:
            distance = self.arch_distance(x, y, width, height)
        else:
            distance = self.box_distance(x - width / 2, y, x + width / 2, y + height)
        self.glow(halo * np.exp(-np.maximum(distance, 0) / (3.3 * frame)), PALETTE["ember"])
        if shutters is not None:
            for side in (-1, 1):
                near, far = x + side * (width / 2 + 0.09), x + side * (width / 2 + 0.09 + width * 0.42)
                self.shutter(min(near, far), y, max(near, far), y + height, shutters)
        self.shade(smoothstep(2.4 * frame, 0.5 * frame, distance), 0.7)
        rim = smoothstep(frame + 0.01, frame - 0.01, distance)
        rise = (self.sway_y - y) / height
        self.blend(rim, trim * (0.8 + 0.55 * smoothstep(0.95, 1.1, rise))[..., None])
        glass = smoothstep(0.012, -0.012, distance)
        warm = np.clip(np.hypot((self.sway_x - x) / width * 1.5, (rise - 0.42) * 1.3), 0, 1)
        pane = mix(rgb("ffe493"), PALETTE["glow"], smoothstep(0.0, 0.45, warm))
        pane = mix(pane, PALETTE["ember"] * 0.95, smoothstep(0.4, 1.0, warm))
        pane = pane * (0.92 + 0.16 * self.grain(0.1, 71))[..., None]
        self.blend(glass, pane)
        u, v = (self.sway_x - x + width / 2) / width * columns, rise * rows
        bar = np.minimum(np.abs(u - np.round(u)) * width / columns, np.abs(v - np.round(v)) * height / rows)
        self.blend(glass * smoothstep(0.37 * frame, 0.21 * frame, bar), PALETTE["oak_dark"] * 1.2)
        self.sill(x, y, width, frame / 0.085, trim)

    def sill(self, x, y, width, size=1.0, colour=PALETTE["oak"]):
        x0, x1 = x - width / 2 - 0.14 * size, x + width / 2 + 0.14 * size
        self.shade(self.box(x0, y - 0.32 * size, x1, y - 0.08 * size, soft=0.10 * size), 0.62)
        board = self.box(x0, y - 0.16 * size, x1, y - 0.04 * size, soft=0.012, round_by=0.02 * size)
        tone = 0.8 + 0.8 * smoothstep(y - 0.10 * size, y - 0.05 * size, self.sway_y)
        self.blend(board, colour * tone[..., None])

    def shutter(self, x0, y0, x1, y1, colour):
        self.shade(self.box(x0 - 0.05, y0 - 0.10, x1 + 0.05, y1 + 0.02, soft=0.07), 0.55)
        leaf = self.box(x0, y0 - 0.03, x1, y1 + 0.03, soft=0.012, round_by=0.02)
        boards = (self.sway_x - x0) / (x1 - x0) * 3
        gap = smoothstep(0.10, 0.03, np.abs(boards - np.round(boards)))
        tone = (0.85 + 0.3 * self.grain(0.2, 81, stretch=3.0)) * (1 - 0.45 * gap)
        tone = tone + 0.25 * smoothstep(y1 - 0.08, y1 + 0.02, self.sway_y)
        self.blend(leaf, colour * tone[..., None])
        for y in (y0 + 0.15 * (y1 - y0), y0 + 0.85 * (y1 - y0)):
            self.blend(leaf * smoothstep(0.05, 0.03, np.abs(self.sway_y - y)), PALETTE["soot"] * 1.4)

    def door(self, x, width, height, colour, surround=None, double=False, y=0.0):
        """An arched plank door with iron straps, its foot at y."""
        distance = self.arch_distance(x, y, width, height)
        surround = PALETTE["stone"] * 1.15 if surround is None else surround
        self.shade(smoothstep(0.42, 0.12, distance), 0.62)
        angle = np.arctan2(self.sway_y - (y + height - width / 2), self.sway_x - x)
        upright = self.sway_y < y + height - width / 2
        block = np.where(upright, self.sway_y / 0.30, angle / 0.42)
        joint = smoothstep(0.10, 0.04, np.abs(block - np.round(block)))
        tone = (0.9 + 0.3 * self.grain(0.25, 91)) * (1 - 0.4 * joint)
        tone = tone + 0.2 * smoothstep(0.10, 0.19, distance) * (1 - 0.8 * upright)
        self.blend(smoothstep(0.215, 0.19, distance), surround * tone[..., None])
        inside = smoothstep(0.012, -0.012, distance)
        self.planks(0.17, colour, inside, seed=3)
        self.shade(inside * smoothstep(-0.16, 0.0, distance), 0.45)
        self.shade(inside * smoothstep(y + 0.5, y, self.sway_y), 0.7)
        for strap in (0.26, 0.68):
            level = smoothstep(0.055, 0.035, np.abs(self.sway_y - (y + strap * height)))
            reach = smoothstep(width * 0.44, width * 0.40, np.abs(self.sway_x - x))
            self.shade(inside * reach * smoothstep(0.10, 0.04, np.abs(self.sway_y - (y + strap * height) + 0.03)), 0.6)
            self.blend(inside * level * reach, rgb("3a3538"))
        if double:
            self.blend(inside * smoothstep(0.035, 0.015, np.abs(self.sway_x - x)), PALETTE["soot"])
        knob = np.hypot(self.sway_x - x - (0.12 if double else width * 0.32), self.sway_y - y - height * 0.46)
        self.blend(smoothstep(0.065, 0.045, knob), PALETTE["glow"] * 0.85)

    def lantern(self, x, y, side=1):
        """A lamp under its small roof, hung from an iron arm whose plate is on its `side`,
        with its pool of light on the wall; (x, y) is the middle of its panes."""
        away = np.hypot(self.sway_x - x, self.sway_y - y)
        self.picture = self.picture * (1 + 0.9 * np.exp(-(away / 0.62) ** 2)[..., None] * np.array((1.0, 0.82, 0.5)))
        self.glow(0.75 * np.exp(-away / 0.30), PALETTE["ember"])
        self.glow(0.30 * np.exp(-(away / 0.42) ** 2), PALETTE["glow"])
        iron, fine = rgb("2b2226"), 0.010
        over, plate = y + 0.36, x + side * 0.19
        arms = [self.box_distance(min(x, plate), over, max(x, plate), over + 0.045),
                self.box_distance(plate - 0.03, over - 0.24, plate + 0.03, over + 0.09, round_by=0.02),
                self.line_distance(plate, over - 0.19, x + side * 0.05, over)[0] - 0.020,
                self.box_distance(x - 0.018, y + 0.22, x + 0.018, over + 0.02)]
        arm = np.minimum.reduce(arms)
        self.shade(smoothstep(0.07, 0.0, arm) * smoothstep(0.3, 0.0, self.sway_y - over), 0.66)
        self.blend(smoothstep(fine, -fine, arm), iron)
        taper = lambda low, half_low, high, half_high: self.convex_distance(
            [(x - half_low, y + low), (x + half_low, y + low), (x + half_high, y + high), (x - half_high, y + high)])
        body = taper(-0.15, 0.085, 0.12, 0.125)
        roof = np.minimum(taper(0.11, 0.18, 0.24, 0.05), taper(-0.20, 0.12, -0.145, 0.12))
        self.blend(smoothstep(0.03 + fine, 0.03 - fine, body), iron)
        heart = np.clip(np.hypot(self.sway_x - x, self.sway_y - y + 0.02) / 0.15, 0, 1)
        self.blend(smoothstep(fine, -fine, body), mix(rgb("fff6d0"), rgb("ffb94e"), heart))
        bars = np.minimum(np.abs(self.sway_x - x), np.abs(self.sway_y - y - 0.02)) - 0.011
        self.blend(smoothstep(fine, -fine, np.maximum(bars, body)) * 0.9, iron)
        lit = smoothstep(y + 0.13, y + 0.24, self.sway_y)
        self.blend(smoothstep(fine, -fine, roof), mix(rgb("352b33"), rgb("6a5d72"), lit))

    def flower_box(self, x, y, width, seed=0):
        """A box of flowers whose rim is at y, below a window's sill."""
        rng = np.random.default_rng(SEED * 800 + self.seed * 7 + seed)
        half, tall = width / 2, 0.20
        self.shade(self.box(x - half, y - tall - 0.14, x + half + 0.05, y - tall + 0.06, soft=0.07), 0.55)
        rise = smoothstep(y - tall, y, self.sway_y)
        wood = PALETTE["oak"] * 1.25 * (0.62 + 0.6 * rise + 0.25 * (self.grain(0.08, 121, stretch=0.2) - 0.5))[..., None]
        self.blend(self.box(x - half, y - tall, x + half, y, soft=0.012, round_by=0.02), wood)
        self.glow(self.box(x - half + 0.03, y - 0.035, x + half - 0.03, y - 0.015, soft=0.01) * 0.35, PALETTE["plaster"])
        for side in (-0.62, 0.62):
            self.shade(self.box(x + side * half - 0.02, y - tall, x + side * half + 0.02, y, soft=0.01), 0.5)
        leaf = lambda low, high: mix(rgb("2f3d1c"), rgb("7d8c3a"), rng.uniform(low, high))
        for k in range(round(width * 34)):
            r = rng.uniform(0.035, 0.06)
            at = x + rng.uniform(-half - 0.02, half + 0.02), y + rng.uniform(-0.07, 0.10)
            self.dot(at, r, leaf(0, 0.5) if k % 3 else leaf(0.5, 1))
        for k in range(round(width * 15)):
            at = x + rng.uniform(-half, half), y + rng.uniform(-0.07, 0.13)
            self.blossom(at, rng.uniform(0.030, 0.042), (rgb("d8433a"), rgb("f0b13c"), rgb("f3dfc4"))[k % 3])

    def dot(self, at, radius, colour):
        """A small round spot; only the picture about it is touched."""
        step, reach = 1 / (self.density * DETAIL), radius + 0.08
        column, row = (at[0] - self.x[0, 0]) / step, (self.y[0, 0] - at[1]) / step
        here = tuple(slice(max(0, round(k - reach / step)), max(0, round(k + reach / step))) for k in (row, column))
        away = np.hypot(self.sway_x[here] - at[0], self.sway_y[here] - at[1])
        self.picture[here] = mix(self.picture[here], colour, smoothstep(radius + 0.01, radius - 0.01, away))

    def blossom(self, at, radius, colour):
        """Five petals round a yellow heart, over their shade; from afar a spot of colour."""
        self.dot((at[0] + 0.006, at[1] - 0.012), 1.15 * radius, colour * 0.40)
        for k in range(5):
            angle = 1.257 * k + 40 * at[0]
            petal = at[0] + 0.58 * radius * np.cos(angle), at[1] + 0.58 * radius * np.sin(angle)
            self.dot(petal, 0.50 * radius, colour * (0.88 + 0.14 * np.sin(angle)))
        self.dot(at, 0.34 * radius, rgb("ffe08a") if colour[2] > 0.3 else rgb("5a2a1c"))

    def steps(self, x, width, count=2, rise=0.10):
        """Stone steps seen from in front, under a door `width` wide whose foot is at count * rise."""
        for k in range(count):
            half, low = width / 2 + 0.16 + 0.13 * (count - k), k * rise
            self.shade(self.box(x - half - 0.04, low - 0.05, x + half + 0.05, low + rise * 0.6, soft=0.05), 0.55)
            slab = self.box(x - half, low, x + half, low + rise, soft=0.010, round_by=0.02)
            tread = smoothstep(low + 0.50 * rise, low + 0.68 * rise, self.sway_y)
            tone = (0.72 + 0.52 * tread) * (0.9 + 0.2 * self.grain(0.12, 125))
            tone = tone * (1 - 0.35 * smoothstep(0.2 * rise, 0, self.sway_y - low))
            self.blend(slab, rgb("a39789") * tone[..., None])

    def kerb(self, height=0.15):
        """A course of light dressed stones along the foot of a wall, a dark joint above it."""
        x = (self.x + 0.02 * (self.grain(0.3, 126) - 0.5)) / 0.52
        joint = np.abs(x - np.round(x)) * 0.52
        tone = 0.86 + 0.30 * (self.grain(0.5, 127) - 0.5) + 0.30 * (self.grain(0.05, 128, octaves=2) - 0.5)
        rise = self.sway_y / height
        tone = tone * (0.78 + 0.42 * smoothstep(0.62, 0.82, rise)) * (1 - 0.55 * smoothstep(0.024, 0.010, joint))
        self.shade(smoothstep(height + 0.07, height, self.sway_y), 0.6)
        self.blend(smoothstep(height + 0.01, height - 0.01, self.sway_y), rgb("8f867c") * tone[..., None])

    def planting(self, height=0.34, doors=(), seed=0):
        """Grass and flowers that grow against the foot of a wall, clear of its doors (x, width)."""
        rng = np.random.default_rng(SEED * 850 + self.seed * 7 + seed)
        patch = smoothstep(0.42, 0.62, self.grain(0.85, 131, octaves=2))
        for x, width in doors:
            patch = patch * smoothstep(width / 2 + 0.30, width / 2 + 0.60, np.abs(self.x - x))
        blades = self.grain(0.040, 132, octaves=2)[-1:]              # one height per column
        tall = height * (0.16 + patch[-1:] * (0.25 + 0.9 * blades))
        part = self.y / tall
        lit = smoothstep(0.15, 1.0, part * (0.55 + 0.9 * self.grain(0.030, 134, octaves=1)))
        green = mix(rgb("222c14"), rgb("76853a"), lit)
        self.shade(smoothstep(0.16, 0.0, self.y - tall), 0.72)
        self.blend(smoothstep(1.06, 0.94, part), green)
        columns = self.x.shape[1]
        for k in range(round(self.width * 9)):
            column = rng.integers(columns)
            if patch[-1, column] > 0.5:
                at = self.x[0, column], tall[0, column] * rng.uniform(0.55, 1.0)
                self.blossom(at, rng.uniform(0.024, 0.036), rgb(("e2574a", "f1bf4d", "efe0cf", "b86aa8")[k % 4]))

    def ground_dirt(self, height=0.7, moss=0.5):
        """Splashed earth and moss at the foot of a wall."""
        level = self.sway_y + 0.5 * (self.grain(0.3, 101) - 0.5)
        self.shade(smoothstep(height, 0.0, level), np.array((0.78, 0.72, 0.66)))
        green = smoothstep(0.50, 0.72, self.grain(0.35, 102)) * smoothstep(height * 1.3, 0.1, level)
        self.blend(green * moss, PALETTE["moss"] * 0.8)

    def eaves_shadow(self, line, depth=0.7, factor=0.42):
        """Shade below a level given per column or as one height."""
        drop = line - self.sway_y
        self.shade(smoothstep(depth, 0.0, drop), np.array((factor, factor * 0.95, factor * 1.1)))

    def scorch(self, mask):
        self.blend(np.clip(mask, 0, 1) * (0.75 + 0.25 * self.grain(0.1, 111)), CHAR)

    def kept(self):
        """The picture at its kept size."""
        h, w = self.pixels
        return self.picture.reshape(h, DETAIL, w, DETAIL, 3).mean(axis=(1, 3))


def ashlar(panel, seed, course, lengths, colours, joint=0.013, bevel=0.026, rough=1.0):
    """Courses of dressed stones with worn edges, lit from the upper left; whole courses, ends that meet."""
    rng = np.random.default_rng(SEED * 900 + seed)
    pixel = 1.0 / panel.density
    joint, bevel = max(joint, 0.9 * pixel), max(bevel, 1.6 * pixel)
    wide, tall = panel.width, panel.height
    ragged = 0.016 * rough
    x = panel.x + 0.03 * (panel.grain(0.6, 61) - 0.5) + ragged * (panel.grain(0.045, 62) - 0.5)
    y = panel.y + 0.03 * (panel.grain(0.7, 63) - 0.5) + ragged * (panel.grain(0.045, 64) - 0.5)

    def cuts(length, count, uneven):
        parts = rng.uniform(1 - uneven, 1 + uneven, count)
        return np.concatenate([[0], np.cumsum(parts)]) * length / parts.sum()

    edges = cuts(tall, max(1, round(tall / course)), 0.16)
    row = np.clip(np.searchsorted(edges, y) - 1, 0, len(edges) - 2)
    inside, tone = np.zeros_like(x), np.zeros(x.shape + (3,))
    rise, kind = np.zeros_like(x), np.zeros_like(x)
    for r in range(len(edges) - 1):
        here = row == r
        count = max(2, round(2 * wide / sum(lengths)))
        ends = cuts(wide, count, (lengths[1] - lengths[0]) / sum(lengths))
        along = (x[here] + wide / 2 + rng.random() * wide) % wide
        k = np.clip(np.searchsorted(ends, along) - 1, 0, count - 1)
        aside = np.minimum(along - ends[k], ends[k + 1] - along)
        level = np.minimum(y[here] - edges[r], edges[r + 1] - y[here])
        corner = 0.035
        straight = np.minimum(aside, level)
        rounded = corner - np.hypot(np.maximum(corner - aside, 0), np.maximum(corner - level, 0))
        inside[here] = np.minimum(straight, np.where(straight < corner, rounded, straight))
        tones = np.array([Panel.stone_tone(rng, colours) for _ in range(count)])
        tone[here] = tones[k]
        kind[here] = rng.random(count)[k]
        rise[here] = (y[here] - edges[r]) / (edges[r + 1] - edges[r])
    edge = inside - joint / 2
    chips = panel.grain(0.10, 65)
    fine = panel.grain(0.028, 66, octaves=2)
    pits = smoothstep(0.68, 0.80, panel.grain(0.035, 67, octaves=2)) * rough
    # A height in units: bevelled sides, a hewn face; its slopes catch the light.
    height = 0.5 * bevel * smoothstep(0.0, bevel, edge) + rough * (0.012 * chips + 0.0035 * fine - 0.004 * pits) * smoothstep(0.0, bevel * 2, edge)
    step = pixel / 2
    up, right = -np.gradient(height, step, axis=0), (np.roll(height, -1, 1) - np.roll(height, 1, 1)) / (2 * step)
    light = 1 + np.clip(-0.62 * up, -0.42, 0.40) + np.clip(0.30 * right, -0.18, 0.16)
    light += 0.10 * (rise - 0.5)
    face = tone * light[..., None] * (1 + 0.26 * rough * (chips - 0.5) + 0.20 * rough * (fine - 0.5))[..., None]
    face = face * (1 - 0.26 * pits)[..., None]
    vein = np.abs(panel.grain(0.22, 68, octaves=4) - 0.5)
    crack = smoothstep(0.016, 0.004, vein) * (kind > 0.72) * smoothstep(0.2, 0.5, panel.grain(0.5, 69))
    face = face * (1 - 0.5 * crack * rough)[..., None]
    bed = PALETTE["stone_dark"] * 0.64 * (0.8 + 0.5 * fine)[..., None]
    solid = smoothstep(-0.55 * pixel, 0.75 * pixel, edge)
    panel.picture = mix(bed, face, solid)
    panel.edge, panel.fine = edge, fine
    return panel


def blot(panel, x, y, wide, tall):
    """Distance outside an ellipse, about."""
    return (np.hypot((panel.sway_x - x) / wide, (panel.sway_y - y) / tall) - 1) * min(wide, tall)


def limb(panel, xa, ya, xb, yb, thick_a, thick_b):
    """Distance outside a tapering limb."""
    away, along, _ = panel.line_distance(xa, ya, xb, yb)
    part = np.clip(along / np.hypot(xb - xa, yb - ya), 0, 1)
    return away - thick_a * (1 - part) - thick_b * part


def solid(distance, soft=0.010):
    return smoothstep(soft, -soft, distance)


def cut_out(panel, shape, colour, rim=0.014, soft=0.010):
    """A painted shape with a dark outline, a little lighter inside."""
    panel.blend(solid(shape - rim, soft), FIGURE * 0.8)
    panel.blend(solid(shape, soft), colour)
    panel.glow(solid(shape, soft) * 0.16 * smoothstep(-0.02, -0.06, shape), PALETTE["glow"])


class Part:
    """The stretch of a painted panel from x0 to x1, kept `coarser` times as coarse as the whole."""

    def __init__(self, panel, x0, x1, coarser=1):
        step, self.block = panel.density * DETAIL, DETAIL * coarser
        first, last = (round((x + panel.width / 2) * step) for x in (x0, x1))
        self.picture, self.density = panel.picture[:, first:last], panel.density / coarser
        self.pixels = (self.picture.shape[0] // self.block, (last - first) // self.block)

    def kept(self):
        h, w = self.pixels
        picture = self.picture[-h * self.block:, :w * self.block]
        return picture.reshape(h, self.block, w, self.block, 3).mean(axis=(1, 3))


class Atlas:
    """One picture put together from named panels, each with a border of repeated
    edge pixels so that mipmaps do not bleed."""

    def __init__(self, size, border):
        self.size, self.border = size, border
        self.picture = np.ones((size, size, 3)) * PALETTE["oak_dark"]
        self.places, self.densities = {}, {}
        self.taken = np.zeros((size, size), dtype=bool)

    def place_all(self, panels):
        """In the given order, each at the highest place where it meets edges of those before."""
        rows, columns = {0}, {0}
        for name, panel in panels.items():
            h, w = (side + 2 * self.border for side in panel.pixels)
            fits = [(y, x) for y in rows for x in columns if y + h <= self.size and x + w <= self.size
                    and not self.taken[y:y + h, x:x + w].any()]
            assert fits, f"no room for {name} ({w} x {h})"
            y, x = min(fits)
            self.place(name, panel, x, y)
            rows |= {y, y + h}
            columns |= {x, x + w}

    def place(self, name, panel, x, y):
        """The panel with its border's top left corner at (x, y)."""
        h, w = panel.pixels
        b = self.border
        block = np.pad(panel.kept(), ((b, b), (b, b), (0, 0)), mode="edge")
        self.picture[y:y + h + 2 * b, x:x + w + 2 * b] = block
        self.taken[y:y + h + 2 * b, x:x + w + 2 * b] = True
        self.places[name] = (x + b, y + b, w, h)
        self.densities[name] = panel.density

    def sheet(self, name):
        return Sheet(self.size, self.densities[name])

    def flat(self, name, anchor):
        """uv of flat polygons on panel `name`: `anchor` is the point at the middle of its foot."""
        x, y, w, h = self.places[name]
        sheet = self.sheet(name)
        return lambda points: sheet.flat(points, x + w / 2, y + h, anchor)

    def check_inside(self, name, uvs):
        """A polygon must not show the neighbours of its panel."""
        x, y, w, h = self.places[name]
        u, v = np.array(uvs).T * self.size
        over = max(x - u.min(), u.max() - x - w, self.size - y - h - v.min(), v.max() - self.size + y)
        assert over <= self.border, f"{name} overflows by {over:.1f} pixels"

    def strip(self, name, points, start=0.0):
        """uv of a long quad (low left, low right, high right, high left) that fills
        the height of a strip panel, its length measured along its lower edge, from
        `start` units on."""
        x, y, w, h = self.places[name]
        sheet, points = self.sheet(name), np.array(points, dtype=float)
        way = points[1] - points[0]
        along = (points - points[0]) @ way / np.linalg.norm(way) * sheet.density
        along -= along.min()
        assert along.max() <= w, f"strip {name} is too short"
        left = x + min(start * sheet.density, w - along.max())
        return [sheet.uv(left + a, y + (h if k < 2 else 0)) for k, a in enumerate(along)]



class Builder:
    """Puts polygons with their places on the picture into one mesh."""

    def __init__(self, atlas):
        self.atlas, self.mesh = atlas, Mesh()

    def wall(self, panel, points, towards, foot, smooth=None):
        points = outward(points, towards)
        uvs = self.atlas.flat(panel, foot)(points)
        self.atlas.check_inside(panel, uvs)
        self.mesh.face(points, uvs, smooth)

    def strip(self, panel, points, start=0.0):
        """points: low left, low right, high right, high left as seen from outside."""
        self.mesh.face(points, self.atlas.strip(panel, points, start))

    def face_towards(self, points, uvs, towards):
        """A polygon whose corners may run either way round: turned to face `towards`."""
        straight = polygon_normal(points) @ np.array(towards, dtype=float) > 0
        self.mesh.face(points if straight else points[::-1], uvs if straight else uvs[::-1])

    def strip_facing(self, panel, points, towards):
        self.face_towards(points, self.atlas.strip(panel, points), towards)

    def on_slope(self, panel, points, side, shift=0.0, up=0.0, smooth=None):
        """A flat piece of roof that faces `side` (x, z): the middle of its lower edge
        comes `shift` units right of the panel's middle and `up` units above its foot."""
        points = outward(points, (side[0], 0.3, side[-1]))
        low = min(p[1] for p in points)
        middle = np.mean([p for p in points if p[1] < low + 1e-6], axis=0)
        x, y, w, h = self.atlas.places[panel]
        sheet = self.atlas.sheet(panel)
        uvs = sheet.flat(points, x + w / 2 + shift * sheet.density, y + h - up * sheet.density, middle)
        self.atlas.check_inside(panel, uvs)
        self.mesh.face(points, uvs, smooth)

    def four_sides(self, panel, low, high, foot_y):
        """The sides between two level rectangles (x0, x1, z0, z1, y)."""
        for axis in (0, 1):
            for sign in (-1, 1):
                corners = []
                for (x0, x1, z0, z1, y), order in ((low, (0, 1)), (high, (1, 0))):
                    for k in order:
                        x = (x1 if sign > 0 else x0) if axis == 0 else (x0, x1)[k]
                        z = (z1 if sign > 0 else z0) if axis == 1 else (z0, z1)[k]
                        corners.append((x, y, z))
                towards = (sign, 0, 0) if axis == 0 else (0, 0, sign)
                middle = ((low[0] + low[1]) / 2, foot_y, (low[2] + low[3]) / 2)
                self.wall(panel, corners, towards, middle)


def outward(points, towards):
    """The polygon's corners in the order that faces `towards`."""
    points = [np.array(p, dtype=float) for p in points]
    return points if polygon_normal(points) @ np.array(towards, dtype=float) > 0 else points[::-1]


def ears(points):
    """Triangles (index triples) of a plain, maybe concave, polygon given in two
    dimensions, counter-clockwise."""
    left, out = list(range(len(points))), []
    points = np.asarray(points, dtype=float)

    def turn(a, b, c):
        (ax, ay), (bx, by), (cx, cy) = points[a], points[b], points[c]
        return (bx - ax) * (cy - ay) - (by - ay) * (cx - ax)

    while len(left) > 3:
        for i in range(len(left)):
            a, b, c = left[i - 1], left[i], left[(i + 1) % len(left)]
            others = [p for p in left if p not in (a, b, c)]
            inside = any(turn(a, b, p) >= 0 and turn(b, c, p) >= 0 and turn(c, a, p) >= 0 for p in others)
            if turn(a, b, c) > 1e-9 and not inside:
                out.append((a, b, c))
                left.pop(i)
                break
        else:
            raise ValueError("polygon crosses itself")
    return out + [tuple(left)]


def centred(mesh):
    """The mesh with a hidden speck below ground that makes its bounds symmetric."""
    points = np.concatenate([p for p, _, _ in mesh.polygons])
    low, high = points.min(axis=0), points.max(axis=0)
    reach = np.maximum(high, -low)
    speck = [-r if h > -l else r for r, l, h in zip(reach, low, high)]
    speck[1] = -reach[1]
    return mesh.anchor(*speck)

