"""Two flames for additive drawing: the hot core bright, every border pure black.

The game draws each flame on many squares whose middle starts at the eave or in the
crown and rises. The flame therefore stands in the upper part of its picture and its
root is thin and faint: what hangs below the middle would burn before the windows.
"""
import sys
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parent))
from shared import blur, mix, noise, rgb, smoothstep, write_bmp  # noqa: E402

SIZE = 256
FOOT = 0.20              # height of the root in the picture, whose middle is at 0.5
# Heat 0..1 -> colour. The game multiplies it with random colours, red up to full, green and
# blue up to half, so the fire keeps hardly any blue. Where by chance many particles have little
# red, more green than this would turn the fires of the whole town green: count_green.py counts.
RED = ["000000", "6a1700", "d83f01", "ff6402", "ff8804", "ff9c05"]
BLUE = ["000000", "061c6a", "0f60d8", "40b0ff", "a4e8ff", "ecfcff"]
STEPS = [0.0, 0.16, 0.34, 0.52, 0.74, 0.95]


def tongue(x, y, centre, foot, tip, width, lean):
    """Heat of one tongue: a leaf, thin at `foot`, broad low down, that sways up to `tip`."""
    rise = (y - foot) / (tip - foot)
    inside = np.clip(rise, 0, 1)
    sway = lean * inside ** 1.5 + 0.07 * np.sin(inside * 7.0 + centre * 9.0) * inside
    path = centre * (0.15 + 0.85 * smoothstep(0.0, 0.8, inside)) + sway  # all tongues leave one hearth
    half = width * 3.5 * inside ** 0.95 * (1 - inside) ** 1.2 + 1e-4
    away = np.abs(x - path) / half
    body = np.clip(1 - away ** 1.8, 0, 1)
    return body * smoothstep(-0.02, 0.34, rise) * smoothstep(1.02, 0.55, rise)


def heat():
    """Heat over the square, x -1..1, y 0 at the foot to 1 at the top."""
    y, x = np.mgrid[0:SIZE, 0:SIZE]
    x, y = (x + 0.5) / SIZE * 2 - 1, 1 - (y + 0.5) / SIZE
    drift = noise(SIZE, SIZE, 4, 3, seed=5) - 0.5
    x = x + drift * 0.20 * smoothstep(FOOT, 1.0, y)
    # fmt: off
    tongues = [  # centre, foot, tip, width, lean, strength
        ( 0.02, FOOT,        0.99, 0.27,  0.05, 0.94),
        (-0.34, FOOT + 0.06, 0.74, 0.15, -0.06, 0.72),
        ( 0.38, FOOT + 0.08, 0.80, 0.15,  0.06, 0.72),
        (-0.20, FOOT + 0.03, 0.93, 0.15, -0.10, 0.72),
        ( 0.20, FOOT + 0.04, 0.90, 0.15,  0.10, 0.70),
    ]
    # fmt: on
    cold = np.ones_like(x)
    for centre, foot, tip, width, lean, strength in tongues:
        cold *= 1 - strength * tongue(x, y, centre, foot, tip, width, lean)
    total = 1 - cold
    lick = noise(SIZE, SIZE, 6, 3, seed=6)
    total *= 0.80 + 0.50 * (lick - 0.3) * smoothstep(FOOT, 0.85, y)
    core = np.exp(-(x / 0.22) ** 2 - ((y - FOOT - 0.30) / 0.20) ** 2)
    total *= (0.78 + 0.38 * core) * (1.02 - 0.20 * smoothstep(0.6, 0.98, y))
    border = smoothstep(1.0, 0.76, np.abs(x)) * smoothstep(1.0, 0.90, y)
    return blur(np.clip(total, 0, 1), 1.6) * border


def colour(values, steps):
    table = np.array([rgb(s) for s in steps])
    return np.stack([np.interp(values, STEPS, table[:, i]) for i in range(3)], axis=-1)


def main():
    values = heat()
    frame = np.zeros((SIZE, SIZE))
    frame[2:-2, 2:-2] = 1.0
    write_bmp("fire.bmp", mix(0.0, colour(values, RED), frame))
    blue = mix(0.0, colour(values, BLUE), frame)  # never seen from near
    write_bmp("fire_blue.bmp", blue.reshape(64, SIZE // 64, 64, SIZE // 64, 3).mean(axis=(1, 3)))


if __name__ == "__main__":
    main()
