#!/usr/bin/env python3
"""Draws the factory library's material swatches as small PNG files.

Standard library only: the pixels are computed here and written with zlib and
struct. A fixed seed per material makes every run produce the same pictures.

    make_swatches.py [OUTPUT_DIR ...]

Without arguments the swatches go to swatches/ beside this script.
"""

import math
import os
import random
import struct
import sys
import zlib

SIZE = 64


def clamp(v):
    return 0 if v < 0 else 255 if v > 255 else int(v)


def mix(a, b, t):
    return tuple(a[i] + (b[i] - a[i]) * t for i in range(3))


def shade(c, f):
    return tuple(clamp(v * f) for v in c)


class Noise:
    """Smooth value noise on a lattice, tileable over the swatch."""

    def __init__(self, rng, cells):
        self.cells = cells
        self.grid = [[rng.random() for _ in range(cells)] for _ in range(cells)]

    def __call__(self, x, y):
        fx = x / SIZE * self.cells
        fy = y / SIZE * self.cells
        x0, y0 = int(fx), int(fy)
        tx, ty = fx - x0, fy - y0
        tx = tx * tx * (3 - 2 * tx)
        ty = ty * ty * (3 - 2 * ty)
        n = self.cells
        g = self.grid
        a = g[y0 % n][x0 % n] + (g[y0 % n][(x0 + 1) % n] - g[y0 % n][x0 % n]) * tx
        b = g[(y0 + 1) % n][x0 % n] + (g[(y0 + 1) % n][(x0 + 1) % n] - g[(y0 + 1) % n][x0 % n]) * tx
        return a + (b - a) * ty


def plywood(rng):
    light, dark = (226, 190, 142), (176, 128, 80)
    warp = Noise(rng, 4)
    fine = Noise(rng, 32)
    def px(x, y):
        # Rings of a flat-sawn face: stripes bent by low-frequency noise.
        d = x * 0.55 + 5 * warp(x, y) + 0.003 * (y - 32) ** 2
        ring = (math.sin(d) + 1) / 2
        ring = ring ** 4
        c = mix(light, dark, 0.55 * ring + 0.15 * fine(x, y))
        return c
    return px


def mdf(rng):
    base = (150, 104, 66)
    fine = Noise(rng, 32)
    def px(x, y):
        return shade(base, 0.92 + 0.12 * fine(x, y) + rng.uniform(-0.04, 0.04))
    return px


def acrylic(rng):
    tint = (196, 224, 242)
    def px(x, y):
        c = tint
        # A glossy band across the sheet and a darker cut edge on two sides.
        band = abs((x + y) - 44)
        if band < 6:
            c = mix(c, (250, 253, 255), 0.8 * (1 - band / 6))
        elif abs((x + y) - 58) < 2:
            c = mix(c, (245, 250, 255), 0.5)
        if x > SIZE - 5 or y > SIZE - 5:
            c = mix(c, (120, 170, 205), 0.6)
        return c
    return px


def leather(rng):
    base = (128, 74, 40)
    grain = Noise(rng, 8)
    pebble = Noise(rng, 16)
    def px(x, y):
        f = 0.88 + 0.22 * grain(x, y)
        if abs(pebble(x, y) - 0.5) < 0.035:
            f *= 0.78  # creases between the pebbles
        return shade(base, f * rng.uniform(0.97, 1.03))
    return px


def paper(rng):
    base = (242, 237, 226)
    fibres = [(rng.uniform(0, SIZE), rng.uniform(0, SIZE), rng.uniform(0, math.pi))
              for _ in range(40)]
    def px(x, y):
        c = base
        for fx, fy, a in fibres:
            dx, dy = x - fx, y - fy
            along = dx * math.cos(a) + dy * math.sin(a)
            across = -dx * math.sin(a) + dy * math.cos(a)
            if abs(along) < 5 and abs(across) < 0.5:
                c = shade(c, 0.95)
        # Folded corner.
        if x + (SIZE - y) < 16:
            c = shade(base, 0.82) if x + (SIZE - y) > 13 else (214, 208, 196)
        return c
    return px


def fabric(rng):
    warp_c, weft_c = (66, 92, 146), (92, 116, 168)
    def px(x, y):
        # Plain weave: threads 4 px wide, over and under in a checker.
        tx, ty = x // 4, y // 4
        over = (tx + ty) % 2 == 0
        if over:
            c, along = warp_c, y % 4
        else:
            c, along = weft_c, x % 4
        edge = 0.8 if along in (0, 3) else 1.0
        return shade(c, edge * rng.uniform(0.95, 1.05))
    return px


def cork(rng):
    base = (196, 146, 94)
    fine = Noise(rng, 24)
    def px(x, y):
        r = rng.random()
        if r < 0.08:
            f = 0.6
        elif r < 0.14:
            f = 1.15
        else:
            f = 0.9 + 0.2 * fine(x, y)
        return shade(base, f)
    return px


def rubber(rng):
    base = (38, 38, 42)
    fine = Noise(rng, 16)
    def px(x, y):
        return shade(base, 0.9 + 0.25 * fine(x, y) + rng.uniform(-0.05, 0.05))
    return px


def glass(rng):
    base = (214, 236, 230)
    def px(x, y):
        c = base
        for k in (18, 30):
            d = abs((x - y * 0.5) - k)
            if d < 3:
                c = mix(c, (252, 255, 254), 0.7 * (1 - d / 3))
        if x < 3 or y < 3 or x > SIZE - 4 or y > SIZE - 4:
            c = (140, 190, 170)  # the green of a glass edge
        return c
    return px


def slate(rng):
    base = (72, 78, 86)
    layers = Noise(rng, 8)
    fine = Noise(rng, 32)
    def px(x, y):
        band = math.sin(y * 0.9 + 2.5 * layers(x, y))
        f = 0.9 + 0.05 * band + 0.14 * fine(x, y) + rng.uniform(-0.03, 0.03)
        return shade(base, f)
    return px


def brushed(base, rng, strength):
    rows = [rng.uniform(-1, 1) for _ in range(SIZE)]
    streaks = Noise(rng, 32)
    def px(x, y):
        f = 1 + strength * rows[y] + 0.06 * (streaks(x * 0.1, y) - 0.5)
        sheen = 0.1 * math.exp(-((x - y - 10) / 18) ** 2)
        return shade(mix(base, (255, 255, 255), sheen), f)
    return px


def anodised_aluminium(rng):
    return brushed((44, 96, 176), rng, 0.05)


def stainless_steel(rng):
    return brushed((188, 191, 196), rng, 0.07)


def painted_metal(rng):
    paint = (184, 42, 36)
    metal = brushed((180, 183, 188), rng, 0.06)
    fine = Noise(rng, 16)
    def px(x, y):
        # A chipped corner shows the bare metal under the coat.
        if x + y > 96 + 14 * fine(x, y):
            return metal(x, y)
        return shade(paint, 0.93 + 0.1 * fine(x, y))
    return px


SWATCHES = [
    ("plywood", plywood),
    ("mdf", mdf),
    ("acrylic", acrylic),
    ("leather", leather),
    ("paper", paper),
    ("fabric", fabric),
    ("cork", cork),
    ("rubber", rubber),
    ("glass", glass),
    ("slate", slate),
    ("anodised_aluminium", anodised_aluminium),
    ("stainless_steel", stainless_steel),
    ("painted_metal", painted_metal),
]


def png(width, height, pixel):
    raw = bytearray()
    for y in range(height):
        raw.append(0)  # filter: none
        for x in range(width):
            raw.extend(clamp(v) for v in pixel(x, y))

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)  # 8-bit RGB
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(bytes(raw), 9)) + chunk(b"IEND", b""))


def main(argv):
    here = os.path.dirname(os.path.abspath(__file__))
    outputs = argv[1:] or [os.path.join(here, "swatches")]
    for name, make in SWATCHES:
        seed = zlib.crc32(name.encode("ascii"))
        data = png(SIZE, SIZE, make(random.Random(seed)))
        for out in outputs:
            os.makedirs(out, exist_ok=True)
            with open(os.path.join(out, name + ".png"), "wb") as f:
                f.write(data)
    print("wrote %d swatches to %s" % (len(SWATCHES), ", ".join(outputs)))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
