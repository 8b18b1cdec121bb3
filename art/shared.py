"""What every asset script shares: the palette, painting helpers, the model and
picture writers with their checks.

Pictures are numpy arrays (height, width, 3) of floats in 0..1 in display
(sRGB) values; row 0 is the TOP row while painting, the writer turns it over.
"""
import struct
from pathlib import Path

import numpy as np

DATA = Path(__file__).resolve().parent.parent / "data"
SEED = 20


def rgb(text):
    """'c87f3a' -> array of three floats."""
    return np.array([int(text[i:i + 2], 16) / 255.0 for i in (0, 2, 4)])


PALETTE = {
    "slate": rgb("3d4257"), "plum": rgb("5a3a52"), "plaster": rgb("c9a77c"),
    "plaster_dark": rgb("9a7a5a"), "oak": rgb("5b3d28"), "oak_dark": rgb("33231a"),
    "moss": rgb("59632f"), "ember": rgb("e8762b"), "glow": rgb("ffc765"),
    "stone": rgb("7d7570"), "stone_dark": rgb("4b4749"), "soot": rgb("1f1b1d"),
    "dusk_blue": rgb("1b2347"), "dusk_rose": rgb("b5616a"), "cream": rgb("efe0bd"),
}


def mix(a, b, t):
    """Blend of two pictures or colours; t is a number or a (height, width) mask."""
    t = np.asarray(t, dtype=float)
    if t.ndim == 2:
        t = t[..., None]
    return a * (1.0 - t) + b * t


def smoothstep(lo, hi, x):
    t = np.clip((x - lo) / (hi - lo), 0.0, 1.0)
    return t * t * (3.0 - 2.0 * t)


def noise(height, width, cells, octaves=4, seed=0):
    """Seamless value noise, 0..1: `cells` lattice cells across, halving in strength per octave."""
    rng = np.random.default_rng(SEED * 1000 + seed)
    total, weight = np.zeros((height, width)), 0.0
    for octave in range(octaves):
        n = cells << octave
        lattice = rng.random((n, n))
        y = (np.arange(height) + 0.5) / height * n
        x = (np.arange(width) + 0.5) / width * n
        y0, x0 = np.floor(y).astype(int), np.floor(x).astype(int)
        fy, fx = y - y0, x - x0
        fy, fx = (fy * fy * (3 - 2 * fy))[:, None], (fx * fx * (3 - 2 * fx))[None, :]
        y1, x1, y0, x0 = (y0 + 1) % n, (x0 + 1) % n, y0 % n, x0 % n
        top = lattice[np.ix_(y0, x0)] * (1 - fx) + lattice[np.ix_(y0, x1)] * fx
        low = lattice[np.ix_(y1, x0)] * (1 - fx) + lattice[np.ix_(y1, x1)] * fx
        total += (top * (1 - fy) + low * fy) * 0.5 ** octave
        weight += 0.5 ** octave
    return total / weight


def blur(picture, radius):
    """Wrapping gaussian blur of a (height, width[, 3]) array; radius in pixels."""
    if radius <= 0:
        return picture
    r = int(3 * radius) + 1
    kernel = np.exp(-0.5 * (np.arange(-r, r + 1) / radius) ** 2)
    kernel /= kernel.sum()
    for axis in (0, 1):
        picture = sum(k * np.roll(picture, i - r, axis) for i, k in enumerate(kernel))
    return picture


def write_bmp(name, picture):
    """data/NAME: 24-bit, bottom-up, pixel data at byte 54; sides are powers of two."""
    height, width = picture.shape[:2]
    assert width & (width - 1) == 0 and height & (height - 1) == 0, (name, width, height)
    pixels = (np.clip(picture[::-1, :, ::-1], 0, 1) * 255 + 0.5).astype(np.uint8).tobytes()
    header = struct.pack("<2sIHHI", b"BM", 54 + len(pixels), 0, 0, 54)
    header += struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
    (DATA / name).write_bytes(header + pixels)
    print(f"{name}: {width} x {height}")


def write_obj(name, vertices, normals, uvs, triangles, budget):
    """data/NAME from shared arrays.

    vertices, normals: triples, y up; uvs: pairs; triangles: three corners each,
    a corner being (vertex, normal, uv) zero-based, counter-clockwise from outside.
    Checks the triangle budget and that the bounds are symmetric on every axis, so
    that the game, which centres models, leaves the model where it was drawn.
    """
    assert len(triangles) <= budget, f"{name}: {len(triangles)} triangles, budget {budget}"
    points = np.array(vertices, dtype=float)
    low, high = points.min(axis=0), points.max(axis=0)
    assert np.allclose(low, -high, atol=2e-4), f"{name}: bounds {low} .. {high} are not symmetric"
    lines = [f"# {name}: {len(triangles)} triangles"]
    lines += ["v %.4f %.4f %.4f" % tuple(v) for v in vertices]
    lines += ["vt %.5f %.5f" % tuple(uv) for uv in uvs]
    lines += ["vn %.4f %.4f %.4f" % tuple(n) for n in normals]
    lines += ["f " + " ".join(f"{v + 1}/{t + 1}/{n + 1}" for v, n, t in tri) for tri in triangles]
    assert max(map(len, lines)) < 79
    (DATA / name).write_text("\n".join(lines) + "\n")
    print(f"{name}: {len(triangles)} of {budget} triangles, half extents {high.round(3)}")


# Models ---------------------------------------------------------------------

class Sheet:
    """Places on a picture of `size` pixels a side, painted at `density` pixels a unit.

    Pixel places count from the picture's top left corner, like painting does.
    """

    def __init__(self, size, density):
        self.size, self.density = size, density

    def uv(self, x, y):
        return (x / self.size, 1.0 - y / self.size)

    def rect(self, x, y, width, height):
        """uv of a rectangle's corners: low left, low right, high right, high left."""
        return [self.uv(x, y + height), self.uv(x + width, y + height),
                self.uv(x + width, y), self.uv(x, y)]

    def flat(self, points, x, y, anchor=None):
        """uv of a flat polygon laid on the picture unstretched, as seen from outside.

        The polygon's lower left end (or `anchor`, a point) comes to pixel (x, y);
        floors and roofs seen straight from above keep +x to the right.
        """
        points = np.array(points, dtype=float)
        normal = polygon_normal(points)
        right = np.cross((0, 1, 0), normal)
        right = np.array((1.0, 0, 0)) if np.linalg.norm(right) < 1e-3 else right / np.linalg.norm(right)
        up = np.cross(normal, right)
        across, along = points @ right, points @ up
        if anchor is None:
            left, low = across.min(), along.min()
        else:
            left, low = np.dot(anchor, right), np.dot(anchor, up)
        return [self.uv(x + (a - left) * self.density, y - (b - low) * self.density)
                for a, b in zip(across, along)]


def polygon_normal(points):
    """Unit normal of a polygon whose corners run counter-clockwise as seen from outside."""
    points = np.asarray(points, dtype=float)
    normal = np.cross(points, np.roll(points, -1, axis=0)).sum(axis=0)
    length = np.linalg.norm(normal)
    return normal / length if length > 1e-12 else np.array((0.0, 1.0, 0.0))


class Mesh:
    """Polygons in the game's axes (y up, counter-clockwise from outside), each
    corner with its own place on the picture. A polygon with a `smooth` name
    shares its normals with touching polygons of that name; others are hard.
    """

    def __init__(self):
        self.polygons = []    # (points (n, 3), uvs (n, 2), smooth name or None)

    def face(self, points, uvs, smooth=None):
        """One convex polygon of three or more corners."""
        points, uvs = np.array(points, dtype=float), np.array(uvs, dtype=float)
        assert points.shape == (len(uvs), 3) and len(points) >= 3
        self.polygons.append((points, uvs, smooth))
        return self

    def add(self, *others):
        for other in others:
            self.polygons += other.polygons
        return self

    def bent(self, place):
        """A copy with every point moved to place(point); place keeps insides inside."""
        out = Mesh()
        out.polygons = [(np.array([place(p) for p in points]), uvs, smooth)
                        for points, uvs, smooth in self.polygons]
        return out

    def moved(self, x=0.0, y=0.0, z=0.0):
        return self.bent(lambda p: p + (x, y, z))

    def turned(self, degrees, axis="y"):
        """A copy turned about an axis through the origin, the right-handed way."""
        c, s = np.cos(np.radians(degrees)), np.sin(np.radians(degrees))
        i, j = {"x": (1, 2), "y": (2, 0), "z": (0, 1)}[axis]
        turn = np.eye(3)
        turn[i, i], turn[i, j], turn[j, i], turn[j, j] = c, -s, s, c
        return self.bent(lambda p: turn @ p)

    def scaled(self, x=1.0, y=1.0, z=1.0):
        """A copy scaled per axis; a mirroring scale turns the corners' order over."""
        out = self.bent(lambda p: p * (x, y, z))
        if x * y * z < 0:
            out.polygons = [(p[::-1], uv[::-1], smooth) for p, uv, smooth in out.polygons]
        return out

    def anchor(self, x, y, z):
        """A speck of a triangle that stretches the bounds to (x, y, z) and shows nothing."""
        speck = 0.001
        points = [(x, y, z), (x, y, z + (speck if z <= 0 else -speck)),
                  (x + (speck if x <= 0 else -speck), y, z)]
        return self.face(points, [(0, 0)] * 3)

    def triangle_count(self):
        return sum(len(points) - 2 for points, _, _ in self.polygons)

    def _normals(self):
        """Unit normals per polygon corner."""
        flat = [polygon_normal(points) for points, _, _ in self.polygons]
        sums = {}
        for (points, _, smooth), normal in zip(self.polygons, flat):
            if smooth is None:
                continue
            for i, p in enumerate(points):
                a, b = points[i - 1] - p, points[(i + 1) % len(points)] - p
                cosine = a @ b / (np.linalg.norm(a) * np.linalg.norm(b) + 1e-12)
                key = (smooth, *np.round(p, 3))
                sums[key] = sums.get(key, 0.0) + normal * np.arccos(np.clip(cosine, -1, 1))
        out = []
        for (points, _, smooth), normal in zip(self.polygons, flat):
            corners = []
            for p in points:
                n = normal if smooth is None else sums[(smooth, *np.round(p, 3))]
                length = np.linalg.norm(n)
                # At a spire's tip the sum points past every side: keep the side's own.
                keep = length > 1e-9 and n @ normal > 0.4 * length
                corners.append(n / length if keep else normal)
            out.append(corners)
        return out

    def write(self, name, budget):
        """data/NAME; equal points, normals and uv become one entry each."""
        tables = ({}, {}, {})

        def index(table, values, digits):
            key = tuple(float(v) + 0.0 for v in np.round(values, digits))
            return table.setdefault(key, len(table))

        triangles = []
        for (points, uvs, _), normals in zip(self.polygons, self._normals()):
            corners = [(index(tables[0], p, 4), index(tables[1], n, 4), index(tables[2], uv, 5))
                       for p, n, uv in zip(points, normals, uvs)]
            triangles += [(corners[0], corners[i], corners[i + 1]) for i in range(1, len(corners) - 1)]
        assert all(len({c[0] for c in t}) == 3 for t in triangles), f"{name}: a triangle has no area"
        write_obj(name, *map(list, tables), triangles, budget)


def ring(radius, y, sides, x=0.0, z=0.0, turn=0.0):
    """Points of a level regular polygon, counter-clockwise as seen from above."""
    angles = turn + np.arange(sides) * 2 * np.pi / sides
    return [(x + radius * np.cos(a), y, z - radius * np.sin(a)) for a in angles]


def loft(rings, uv, smooth="round", closed=True):
    """The skin through rings of equally many points, the lowest first.

    A ring of one point is a tip. uv(s, i) gives the picture place at s (0..1
    around) and ring i. Rings run counter-clockwise as seen from above.
    """
    mesh, sides = Mesh(), max(map(len, rings))
    for i in range(len(rings) - 1):
        low, high = rings[i], rings[i + 1]
        for k in range(sides if closed else sides - 1):
            a, b, n = k / sides, (k + 1) / sides, (k + 1) % sides
            if len(high) == 1:
                mesh.face([low[k], low[n], high[0]],
                          [uv(a, i), uv(b, i), uv((a + b) / 2, i + 1)], smooth)
            elif len(low) == 1:
                mesh.face([low[0], high[n], high[k]],
                          [uv((a + b) / 2, i), uv(b, i + 1), uv(a, i + 1)], smooth)
            else:
                mesh.face([low[k], low[n], high[n], high[k]],
                          [uv(a, i), uv(b, i), uv(b, i + 1), uv(a, i + 1)], smooth)
    return mesh


def box(low, high, uv, bevel=0.0, skip=()):
    """A box from corner low to corner high, or with chamfered edges if bevel > 0.

    uv(points) gives the picture places of one polygon (Sheet.flat fits). skip
    names sides to leave out ("x-", "x+", "y-" ...), with the chamfers around them.
    """
    low, high = np.array(low, dtype=float), np.array(high, dtype=float)
    mesh, middle = Mesh(), (low + high) / 2

    def put(points):
        points = np.array(points)
        if polygon_normal(points) @ (points.mean(axis=0) - middle) < 0:
            points = points[::-1]
        mesh.face(points, uv(points))

    def corner(axis, signs):
        """The corner of the side across `axis` where the signs point."""
        point = np.where(np.array(signs) > 0, high, low)
        inward = -np.array(signs) * bevel
        inward[axis] = 0
        return point + inward

    def name(axis, sign):
        return "xyz"[axis] + ("+" if sign > 0 else "-")

    def signs_of(pairs):
        out = [0, 0, 0]
        for axis, sign in pairs:
            out[axis] = sign
        return out

    for axis in range(3):
        i, j = (axis + 1) % 3, (axis + 2) % 3
        for s in (-1, 1):
            if name(axis, s) in skip:
                continue
            put([corner(axis, signs_of([(axis, s), (i, a), (j, b)]))
                 for a, b in ((-1, -1), (1, -1), (1, 1), (-1, 1))])
        if bevel <= 0:
            continue
        for s in (-1, 1):
            for t in (-1, 1):
                if name(i, s) in skip or name(j, t) in skip:
                    continue
                ends = [signs_of([(axis, e), (i, s), (j, t)]) for e in (-1, 1)]
                put([corner(i, ends[0]), corner(i, ends[1]), corner(j, ends[1]), corner(j, ends[0])])
    if bevel > 0:
        for signs in [(a, b, c) for a in (-1, 1) for b in (-1, 1) for c in (-1, 1)]:
            if not any(name(axis, s) in skip for axis, s in enumerate(signs)):
                put([corner(axis, signs) for axis in range(3)])
    return mesh
