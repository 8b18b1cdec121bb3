"""Masonry, timber, plaster, shingles and windows for everything that is built.

A Panel is a flat piece of picture measured in units: x runs from its middle
to the right, y from its foot upwards, so that it can be painted with the same
measures as the wall that wears it.
"""
import numpy as np

from shared import PALETTE, SEED, Mesh, Sheet, mix, noise, polygon_normal, rgb, smoothstep

DETAIL = 2                      # painted finer than kept, then averaged: soft edges
TILE_RED, SLATE_LIGHT = rgb("7d4a4c"), rgb("5f6880")
STRAW, STRAW_DARK = rgb("a9854b"), rgb("6b5030")
CHAR, CHAR_LIGHT = rgb("1d1719"), rgb("4a3a35")


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
        """Noise 0..1 with lumps of `cell` units, `stretch` times as tall as wide."""
        rows, columns = self.x.shape
        side = max(rows, columns)
        cells = max(1, round(side / (self.density * DETAIL) / cell))
        field = noise(side, side, cells, octaves, self.seed * 40 + seed)
        if stretch != 1.0:
            picked = (np.arange(rows) / stretch).astype(int) % side
            return field[picked][:, :columns]
        return field[:rows, :columns]

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
        upright = self.box_distance(x - r, y, x + r, y + height - r)
        head = np.hypot(self.sway_x - x, self.sway_y - (y + height - r)) - r
        head = np.where(self.sway_y < y + height - r, 9.0, head)
        return np.minimum(upright, head)

    def line_distance(self, xa, ya, xb, yb):
        """Distance across and place along (units) of a straight line."""
        dx, dy = xb - xa, yb - ya
        length = np.hypot(dx, dy)
        px, py = self.sway_x - xa, self.sway_y - ya
        along = (px * dx + py * dy) / length
        across = (px * dy - py * dx) / length
        beyond = np.maximum(np.maximum(-along, along - length), 0)
        return np.hypot(across, beyond), along, across

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

    def thatch(self):
        """Straw laid down the slope in thick layers."""
        fine = self.grain(0.035, 41, stretch=9.0, octaves=2)
        coarse = self.grain(0.12, 42, stretch=6.0, octaves=3)
        tone = 0.55 * fine + 0.45 * coarse
        self.picture = mix(STRAW_DARK, STRAW * 1.12, smoothstep(0.25, 0.75, tone))
        layer = (self.sway_y + 0.10 * (self.grain(0.25, 43) - 0.5)) / 0.62
        part = layer - np.floor(layer)
        self.shade(smoothstep(0.80, 1.0, part), 0.66)
        self.glow(smoothstep(0.0, 0.08, part) * smoothstep(0.28, 0.08, part) * 0.20, STRAW)
        self.mottle(0.9, 0.22, 44)

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

    def lantern(self, x, y):
        """A lamp on the wall with its pool of light."""
        away = np.hypot(self.sway_x - x, self.sway_y - y)
        self.glow(0.6 * np.exp(-away / 0.28), PALETTE["ember"])
        self.blend(self.box(x - 0.10, y - 0.16, x + 0.10, y + 0.16, round_by=0.04), PALETTE["soot"])
        self.blend(self.box(x - 0.065, y - 0.11, x + 0.065, y + 0.09, round_by=0.02), rgb("ffd070"))

    def ground_dirt(self, height=0.7, moss=0.5):
        """Splashed earth and moss at the foot of a wall."""
        level = self.sway_y + 0.5 * (self.grain(0.3, 101) - 0.5)
        self.shade(smoothstep(height, 0.0, level), np.array((0.66, 0.60, 0.55)))
        green = smoothstep(0.50, 0.72, self.grain(0.35, 102)) * smoothstep(height * 1.3, 0.1, level)
        self.blend(green * moss, PALETTE["moss"] * 0.8)
        self.shade(smoothstep(0.16, 0.0, self.y), 0.68)

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


class Atlas:
    """One picture put together from named panels, packed on shelves, each with a
    border of repeated edge pixels so that mipmaps do not bleed."""

    def __init__(self, size, border):
        self.size, self.border = size, border
        self.picture = np.ones((size, size, 3)) * PALETTE["oak_dark"]
        self.places, self.densities = {}, {}
        self.shelves = []                # [top row, height, first free column]

    def place_all(self, panels):
        """The tallest first, each on the first shelf with room."""
        for name in sorted(panels, key=lambda n: (-panels[n].pixels[0], n)):
            self.place(name, panels[name])

    def place(self, name, panel):
        h, w = panel.pixels
        b = self.border
        full_h, full_w = h + 2 * b, w + 2 * b
        for shelf in self.shelves:
            if full_h <= shelf[1] and shelf[2] + full_w <= self.size:
                break
        else:
            top = sum(s[1] for s in self.shelves)
            assert top + full_h <= self.size, f"no room for {name} ({w} x {h}) at row {top}"
            shelf = [top, full_h, 0]
            self.shelves.append(shelf)
        y, _, x = shelf
        shelf[2] += full_w
        block = np.pad(panel.kept(), ((b, b), (b, b), (0, 0)), mode="edge")
        self.picture[y:y + full_h, x:x + full_w] = block
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

