#!/usr/bin/env python3
"""Writes the images of our own making that the content ships:

- particle textures under content/content/materials/particle/: a "*.timg" texture is a
  PNG image; these are white shapes whose alpha (and brightness) make the look, and each
  particle's colour tints them;
- the preview's tool bar icons (16 by 16) under content/game/tools/images/.

Run from the repository root:

    python3 scripts/make_content_images.py

The output is the same on every run (no randomness), so the committed files can be
checked against it.
"""

import math
import os
import struct
import zlib

OUT_DIR = os.path.join("content", "content", "materials", "particle")
ICON_DIR = os.path.join("content", "game", "tools", "images")


def write_png(path, width, height, pixels):
    """pixels: rows of (r, g, b, a) tuples, 0..255, top row first."""
    raw = bytearray()
    for row in pixels:
        raw.append(0)  # filter: none
        for r, g, b, a in row:
            raw += bytes((r, g, b, a))

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    png = b"\x89PNG\r\n\x1a\n"
    png += chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0))
    png += chunk(b"IDAT", zlib.compress(bytes(raw), 9))
    png += chunk(b"IEND", b"")
    with open(path, "wb") as f:
        f.write(png)


def clamp01(v):
    return 0.0 if v < 0.0 else 1.0 if v > 1.0 else v


def to_byte(v):
    return int(round(clamp01(v) * 255.0))


def hash_noise(x, y, seed):
    """Smooth value noise from an integer hash, 0..1."""
    def lattice(ix, iy):
        n = (ix * 374761393 + iy * 668265263 + seed * 982451653) & 0xFFFFFFFF
        n = ((n ^ (n >> 13)) * 1274126177) & 0xFFFFFFFF
        return ((n ^ (n >> 16)) & 0xFFFF) / 65535.0

    ix, iy = math.floor(x), math.floor(y)
    fx, fy = x - ix, y - iy
    sx, sy = fx * fx * (3 - 2 * fx), fy * fy * (3 - 2 * fy)
    top = lattice(ix, iy) * (1 - sx) + lattice(ix + 1, iy) * sx
    bottom = lattice(ix, iy + 1) * (1 - sx) + lattice(ix + 1, iy + 1) * sx
    return top * (1 - sy) + bottom * sy


def soft_disc(size=64):
    """A round puff that fades to nothing at its rim: smoke, dust, glows."""
    rows = []
    for y in range(size):
        row = []
        for x in range(size):
            dx = (x + 0.5) / size * 2 - 1
            dy = (y + 0.5) / size * 2 - 1
            d = math.sqrt(dx * dx + dy * dy)
            alpha = clamp01(1 - d) ** 1.6
            row.append((255, 255, 255, to_byte(alpha)))
        rows.append(row)
    return size, size, rows


def flame(width=64, height=64):
    """A tongue of flame, square like every sprite: round and bright at the base, licking to
    a point at the top."""
    rows = []
    for y in range(height):
        row = []
        v = 1 - (y + 0.5) / height  # 0 at the bottom, 1 at the top
        for x in range(width):
            u = (x + 0.5) / width * 2 - 1
            wobble = (hash_noise(v * 5, 0.5, 3) - 0.5) * 0.3 * v
            # A soft teardrop: round at the base, widest a quarter of the way up, its tip
            # fading out, so that turned copies overlap as licks rather than spikes.
            half_width = 0.8 * (1 - v) ** 0.5 * min(1.0, (v + 0.15) * 3.0)
            d = abs(u - wobble) / max(half_width, 1e-3)
            edge = clamp01(1 - d)
            licks = 0.7 + 0.3 * hash_noise(u * 4 + 11, v * 7, 7)
            base = clamp01(v * 8)  # the bottom edge softens
            alpha = (edge ** 1.1) * licks * base * (1 - v) ** 0.6
            brightness = 0.55 + 0.45 * clamp01(1 - v * 1.2) * edge
            c = to_byte(brightness)
            row.append((c, c, c, to_byte(alpha)))
        rows.append(row)
    return width, height, rows


def spark(size=32):
    """A hot point with four thin rays: sparks, embers, glints."""
    rows = []
    for y in range(size):
        row = []
        for x in range(size):
            dx = (x + 0.5) / size * 2 - 1
            dy = (y + 0.5) / size * 2 - 1
            d = math.sqrt(dx * dx + dy * dy)
            core = clamp01(1 - d * 2.2) ** 1.5
            rays = clamp01(1 - abs(dx) * 10) * clamp01(1 - abs(dy)) + clamp01(1 - abs(dy) * 10) * clamp01(1 - abs(dx))
            glow = clamp01(1 - d) ** 3 * 0.5
            alpha = clamp01(core + rays * 0.6 + glow)
            row.append((255, 255, 255, to_byte(alpha)))
        rows.append(row)
    return size, size, rows


# Icons: shapes in a 16 by 16 box (coordinates 0..16, y down), sampled 4 by 4 per pixel.

def polygon(points):
    def inside(x, y):
        hit = False
        j = len(points) - 1
        for i in range(len(points)):
            xi, yi = points[i]
            xj, yj = points[j]
            if (yi > y) != (yj > y) and x < (xj - xi) * (y - yi) / (yj - yi) + xi:
                hit = not hit
            j = i
        return hit
    return inside


def rect(x0, y0, x1, y1):
    return lambda x, y: x0 <= x <= x1 and y0 <= y <= y1


def circle(cx, cy, r):
    return lambda x, y: (x - cx) ** 2 + (y - cy) ** 2 <= r * r


def ring(cx, cy, r0, r1, start_deg=0.0, end_deg=360.0):
    def inside(x, y):
        d2 = (x - cx) ** 2 + (y - cy) ** 2
        if not (r0 * r0 <= d2 <= r1 * r1):
            return False
        a = math.degrees(math.atan2(y - cy, x - cx)) % 360.0
        return start_deg <= a <= end_deg
    return inside


def icon(layers, size=16):
    """layers: (colour, shape) pairs, later ones on top."""
    rows = []
    for py in range(size):
        row = []
        for px in range(size):
            r = g = b = a = 0.0
            for colour, shape in layers:
                cover = 0
                for sy in range(4):
                    for sx in range(4):
                        if shape(px + (sx + 0.5) / 4, py + (sy + 0.5) / 4):
                            cover += 1
                if cover:
                    ca = cover / 16.0
                    r = colour[0] * ca + r * (1 - ca)
                    g = colour[1] * ca + g * (1 - ca)
                    b = colour[2] * ca + b * (1 - ca)
                    a = ca + a * (1 - ca)
            if a > 0:
                r, g, b = r / a * 1.0, g / a * 1.0, b / a * 1.0
            row.append((int(min(r, 255)), int(min(g, 255)), int(min(b, 255)), to_byte(a)))
        rows.append(row)
    return size, size, rows


GREEN = (60, 170, 70)
DARK = (70, 70, 80)
RED = (200, 60, 50)
BLUE = (50, 110, 200)
ORANGE = (235, 140, 40)
YELLOW = (240, 200, 40)
WHITE = (255, 255, 255)

ICONS = {
    "common/control_play_sm.png": [(GREEN, polygon([(4, 2.5), (13.5, 8), (4, 13.5)]))],
    "common/control_pause_sm.png": [(DARK, rect(3.5, 2.5, 6.5, 13.5)), (DARK, rect(9.5, 2.5, 12.5, 13.5))],
    "common/control_first_sm.png": [(DARK, rect(2.5, 2.5, 4.5, 13.5)), (GREEN, polygon([(13.5, 2.5), (5, 8), (13.5, 13.5)]))],
    "common/control_stop_sm.png": [(RED, rect(3, 3, 13, 13))],
    "common/reload_sm.png": [(BLUE, ring(8, 8, 3.5, 6, 40, 330)), (BLUE, polygon([(10.5, 1.5), (15, 5.5), (9.5, 7)]))],
    "common/generic_hud_warning.png": [(YELLOW, polygon([(8, 1), (15.5, 15), (0.5, 15)])), (DARK, rect(7.2, 5, 8.8, 10.5)), (DARK, rect(7.2, 12, 8.8, 13.5))],
    "zol/restart_global.png": [(BLUE, circle(8, 8, 7)), (WHITE, rect(4, 4.5, 5.5, 11.5)), (WHITE, polygon([(12, 4.5), (6.5, 8), (12, 11.5)]))],
    "zol/stop_with_endcap.png": [(RED, rect(2, 4, 10, 12)), (ORANGE, circle(12.5, 5, 3))],
    "zol/reset_cam.png": [(DARK, rect(1.5, 5, 11, 13)), (DARK, polygon([(11, 8), (15, 5.5), (15, 12.5), (11, 10)])), (BLUE, circle(6.2, 9, 2))],
    "zol/move_cam_to_origin.png": [(DARK, ring(8, 8, 4.5, 6)), (RED, rect(7.3, 0.5, 8.7, 15.5)), (GREEN, rect(0.5, 7.3, 15.5, 8.7))],
}
for level, name in enumerate(("Low", "Medium", "High", "Ultra")):
    ICONS["zol/detail_level_%s.png" % name] = [
        (GREEN if i <= level else (190, 190, 195), rect(1.5 + i * 3.6, 12.5 - i * 3.0, 4.3 + i * 3.6, 14.5)) for i in range(4)
    ]


def main():
    os.makedirs(OUT_DIR, exist_ok=True)
    for name, make in (("soft_disc", soft_disc), ("flame", flame), ("spark", spark)):
        width, height, rows = make()
        path = os.path.join(OUT_DIR, name + ".timg")
        write_png(path, width, height, rows)
        print("wrote %s (%dx%d)" % (path, width, height))
    for name, layers in sorted(ICONS.items()):
        path = os.path.join(ICON_DIR, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        width, height, rows = icon(layers)
        write_png(path, width, height, rows)
        print("wrote %s" % path)


if __name__ == "__main__":
    main()
