"""Two flames for additive drawing: the hot core bright, every border pure black."""
import sys
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parent))
from shared import blur, mix, noise, rgb, smoothstep, write_bmp  # noqa: E402

SIZE = 256
# Heat 0..1 -> colour. The game multiplies it with reddish tints, so hot parts keep all three channels.
RED = ["000000", "6a1c06", "d8600f", "ffb040", "ffe8a4", "fffcec"]
BLUE = ["000000", "061c6a", "0f60d8", "40b0ff", "a4e8ff", "ecfcff"]
STEPS = [0.0, 0.16, 0.34, 0.52, 0.74, 0.95]


def tongue(x, y, centre, foot, tip, width, lean):
    """Heat of one tongue: a teardrop from `foot` up to `tip`, swaying as it rises."""
    rise = (y - foot) / (tip - foot)
    inside = np.clip(rise, 0, 1)
    sway = lean * inside ** 1.5 + 0.06 * np.sin(inside * 6.5 + centre * 9.0) * inside
    path = centre * (0.35 + 0.65 * smoothstep(0.0, 0.6, inside)) + sway  # all tongues leave one hearth
    half = width * 2.15 * inside ** 0.55 * (1 - inside) ** 0.95 + 1e-4
    away = np.abs(x - path) / half
    body = np.clip(1 - away ** 1.8, 0, 1)
    return body * smoothstep(-0.02, 0.16, rise) * smoothstep(1.02, 0.55, rise)


def heat():
    """Heat over the square, x -1..1, y 0 at the foot to 1 at the top."""
    y, x = np.mgrid[0:SIZE, 0:SIZE]
    x, y = (x + 0.5) / SIZE * 2 - 1, 1 - (y + 0.5) / SIZE
    drift = noise(SIZE, SIZE, 4, 3, seed=5) - 0.5
    x = x + drift * 0.22 * y
    # fmt: off
    tongues = [  # centre, foot, tip, width, lean, strength
        (0.02, 0.04, 0.96, 0.36,  0.04, 0.92),
        (-0.34, 0.05, 0.62, 0.20, -0.10, 0.62),
        (0.36, 0.05, 0.70, 0.20,  0.10, 0.62),
        (-0.16, 0.06, 0.82, 0.19, -0.16, 0.62),
        (0.14, 0.06, 0.58, 0.22,  0.06, 0.55),
        (0.24, 0.30, 0.90, 0.09,  0.12, 0.40),
        (-0.30, 0.42, 0.88, 0.07, -0.06, 0.35),
    ]
    # fmt: on
    cold = np.ones_like(x)
    for centre, foot, tip, width, lean, strength in tongues:
        cold *= 1 - strength * tongue(x, y, centre, foot, tip, width, lean)
    total = 1 - cold
    lick = noise(SIZE, SIZE, 6, 3, seed=6)
    total *= 0.80 + 0.45 * (lick - 0.3) * smoothstep(0.15, 0.8, y)
    core = np.exp(-(x / 0.26) ** 2 - ((y - 0.26) / 0.26) ** 2)
    total *= (0.74 + 0.40 * core) * (1.02 - 0.30 * smoothstep(0.35, 0.95, y))
    border = smoothstep(1.0, 0.72, np.abs(x - drift * 0.22 * y)) * smoothstep(0.0, 0.12, y) * smoothstep(1.0, 0.84, y)
    return blur(np.clip(total, 0, 1), 2.0) * border


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
