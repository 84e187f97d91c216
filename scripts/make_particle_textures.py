#!/usr/bin/env python3
"""Writes the particle textures shipped under content/content/materials/particle/.

A "*.timg" texture is a PNG image. These are white shapes whose alpha (and brightness)
make the look; each particle's colour tints them. They are smooth fields rather than the
shapes of the tool images, but go through the same canvas and PNG writer. Run it again
after a change; the textures are committed next to it:

    python3 scripts/make_particle_textures.py

The output is the same on every run (no randomness).
"""

import math
import os

from draw_tool_images import Canvas

OUT_DIR = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "content", "content", "materials", "particle")


def clamp01(v):
    return 0.0 if v < 0.0 else 1.0 if v > 1.0 else v


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
            row.append((1.0, 1.0, 1.0, alpha))
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
            row.append((brightness, brightness, brightness, alpha))
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
            row.append((1.0, 1.0, 1.0, alpha))
        rows.append(row)
    return size, size, rows


def main():
    for name, make in (("soft_disc", soft_disc), ("flame", flame), ("spark", spark)):
        width, height, rows = make()
        canvas = Canvas(width, height)
        for y, row in enumerate(rows):
            for x, (r, g, b, a) in enumerate(row):
                a = clamp01(a)
                canvas.pixels[y * width + x] = [clamp01(r) * a, clamp01(g) * a, clamp01(b) * a, a]
        path = os.path.normpath(os.path.join(OUT_DIR, name + ".timg"))
        canvas.save(path)
        print("wrote %s (%dx%d)" % (path, width, height))


if __name__ == "__main__":
    main()
