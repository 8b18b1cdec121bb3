"""Letters and polygons turned into anti-aliased masks.

Letters are the outlines of Blender text objects. They are filled on a grid SAMPLES
times finer than the mask, so that strokes keep their weight at small sizes.
"""
from pathlib import Path

import bpy
import numpy as np

SAMPLES = 4
CURVE_STEPS = 8
OPENTYPE = Path("/usr/share/fonts/opentype")


class Font:
    """One font file of a Debian package; sizes are in pixels of the picture."""

    def __init__(self, path, package):
        file = OPENTYPE / path
        if not file.exists():
            raise SystemExit(f"{file} is missing: apt-get install --no-install-recommends {package}")
        self.face = bpy.data.fonts.load(str(file))
        self.cache = {}

    def outline(self, text):
        """The text's contours as directed edges (n, 2, 2): baseline at y 0, y up, size 1."""
        if not text.strip():
            return np.zeros((0, 2, 2))
        if text not in self.cache:
            curve = bpy.data.curves.new("line", "FONT")
            curve.font, curve.body, curve.size = self.face, text, 1.0
            curve.resolution_u, curve.fill_mode = CURVE_STEPS, "NONE"
            thing = bpy.data.objects.new("line", curve)
            mesh = thing.to_mesh()
            points = np.array([v.co[:2] for v in mesh.vertices]).reshape(-1, 2)
            ends = np.array([along_contour(*e.vertices) for e in mesh.edges], dtype=int).reshape(-1, 2)
            self.cache[text] = points[ends]
            thing.to_mesh_clear()
            bpy.data.objects.remove(thing)
            bpy.data.curves.remove(curve)
        return self.cache[text]

    def width(self, text, size):
        """From the pen's start to the end of the last stroke."""
        edges = self.outline(text)
        return float(edges[..., 0].max()) * size if len(edges) else 0.0

    def draw(self, mask, text, x, y, size, align="left"):
        """Adds the text to the mask with its baseline at y; x is its left end, middle or right end."""
        edges = self.outline(text)
        if not len(edges):
            return
        left, right = edges[..., 0].min(), edges[..., 0].max()
        x -= {"left": 0.0, "centre": (left + right) / 2, "right": right}[align] * size
        mask.fill(edges * (size, -size) + (x, y))


def along_contour(a, b):
    """A mesh edge does not keep its direction, but a contour's vertices lie in a row: the
    edge between neighbours runs upward, the one that closes the contour downward."""
    return (min(a, b), max(a, b)) if abs(a - b) == 1 else (max(a, b), min(a, b))


class Mask:
    """A coverage picture, 0..1, that outlines are added to."""

    def __init__(self, height, width):
        self.fine = np.zeros((height * SAMPLES, width * SAMPLES), dtype=bool)

    def fill(self, edges):
        """Fills directed edges (n, 2, 2) by the non-zero winding rule: each edge changes the
        winding number of everything to the right of where it crosses a sample row."""
        height, width = self.fine.shape
        edges = edges * SAMPLES - 0.5
        (x0, y0), (x1, y1) = edges[:, 0].T, edges[:, 1].T
        first = np.clip(np.ceil(np.minimum(y0, y1)), 0, height).astype(int)
        last = np.clip(np.ceil(np.maximum(y0, y1)), 0, height).astype(int)
        edge = np.repeat(np.arange(len(edges)), last - first)
        if not len(edge):
            return
        row = np.arange(len(edge)) - np.repeat(np.cumsum(last - first) - last, last - first)
        along = (row - y0[edge]) / (y1 - y0)[edge]
        column = np.ceil(x0[edge] + along * (x1 - x0)[edge]).astype(int)
        column = np.clip(column, 0, width)
        top, left = row.min(), column.min()
        change = np.zeros((row.max() + 1 - top, column.max() + 1 - left), dtype=int)
        np.add.at(change, (row - top, column - left), np.where(y1 > y0, 1, -1)[edge])
        inside = change.cumsum(axis=1)[:, :-1] != 0
        self.fine[top:top + inside.shape[0], left:left + inside.shape[1]] |= inside

    def polygon(self, points):
        points = np.asarray(points, dtype=float)
        self.fill(np.stack([points, np.roll(points, -1, axis=0)], axis=1))

    def picture(self):
        height, width = (n // SAMPLES for n in self.fine.shape)
        return self.fine.reshape(height, SAMPLES, width, SAMPLES).mean(axis=(1, 3))
