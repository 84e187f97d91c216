#!/usr/bin/env python3
"""Draws the small images of the editor's panels into content/game/tools/images/.

Every picture is made here from plain shapes (polygons, circles, strokes), rasterised with
4x4 supersampling and written as PNG with the standard library only. Run it again after a
change; the images are committed next to it.
"""

import math
import os
import struct
import zlib

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "content", "game", "tools", "images")
SAMPLES = 4


class Canvas:
    def __init__(self, width, height):
        self.width = width
        self.height = height
        self.pixels = [[0.0, 0.0, 0.0, 0.0] for _ in range(width * height)]

    def _blend(self, x, y, color, coverage):
        if coverage <= 0.0:
            return
        r, g, b, a = color
        a *= coverage
        p = self.pixels[y * self.width + x]
        # Premultiplied "over".
        p[0] = r * a + p[0] * (1.0 - a)
        p[1] = g * a + p[1] * (1.0 - a)
        p[2] = b * a + p[2] * (1.0 - a)
        p[3] = a + p[3] * (1.0 - a)

    def fill(self, inside, color, bounds=None):
        """Fills the points for which inside(x, y) holds, measured per sub-sample."""
        x0, y0, x1, y1 = bounds or (0, 0, self.width, self.height)
        x0, y0 = max(0, int(math.floor(x0))), max(0, int(math.floor(y0)))
        x1, y1 = min(self.width, int(math.ceil(x1))), min(self.height, int(math.ceil(y1)))
        for y in range(y0, y1):
            for x in range(x0, x1):
                hits = 0
                for sy in range(SAMPLES):
                    for sx in range(SAMPLES):
                        if inside(x + (sx + 0.5) / SAMPLES, y + (sy + 0.5) / SAMPLES):
                            hits += 1
                self._blend(x, y, color, hits / float(SAMPLES * SAMPLES))

    def polygon(self, points, color):
        def inside(px, py):
            result = False
            j = len(points) - 1
            for i in range(len(points)):
                xi, yi = points[i]
                xj, yj = points[j]
                if (yi > py) != (yj > py) and px < (xj - xi) * (py - yi) / (yj - yi) + xi:
                    result = not result
                j = i
            return result

        xs = [p[0] for p in points]
        ys = [p[1] for p in points]
        self.fill(inside, color, (min(xs), min(ys), max(xs) + 1, max(ys) + 1))

    def circle(self, cx, cy, radius, color):
        self.fill(lambda x, y: (x - cx) ** 2 + (y - cy) ** 2 <= radius * radius, color,
                  (cx - radius - 1, cy - radius - 1, cx + radius + 1, cy + radius + 1))

    def ring(self, cx, cy, radius, width, color):
        inner, outer = radius - width / 2.0, radius + width / 2.0
        self.fill(lambda x, y: inner * inner <= (x - cx) ** 2 + (y - cy) ** 2 <= outer * outer, color,
                  (cx - outer - 1, cy - outer - 1, cx + outer + 1, cy + outer + 1))

    def line(self, x0, y0, x1, y1, width, color, round_caps=True):
        dx, dy = x1 - x0, y1 - y0
        length_sq = dx * dx + dy * dy or 1e-9
        half = width / 2.0

        def inside(px, py):
            t = ((px - x0) * dx + (py - y0) * dy) / length_sq
            if not round_caps and (t < 0.0 or t > 1.0):
                return False
            t = min(1.0, max(0.0, t))
            qx, qy = x0 + t * dx - px, y0 + t * dy - py
            return qx * qx + qy * qy <= half * half

        self.fill(inside, color, (min(x0, x1) - width, min(y0, y1) - width, max(x0, x1) + width, max(y0, y1) + width))

    def rect(self, x0, y0, x1, y1, color):
        self.fill(lambda x, y: x0 <= x <= x1 and y0 <= y <= y1, color, (x0, y0, x1 + 1, y1 + 1))

    def rounded_rect(self, x0, y0, x1, y1, radius, color):
        def inside(px, py):
            if not (x0 <= px <= x1 and y0 <= py <= y1):
                return False
            cx = min(max(px, x0 + radius), x1 - radius)
            cy = min(max(py, y0 + radius), y1 - radius)
            return (px - cx) ** 2 + (py - cy) ** 2 <= radius * radius

        self.fill(inside, color, (x0, y0, x1 + 1, y1 + 1))

    def mirrored(self):
        out = Canvas(self.width, self.height)
        for y in range(self.height):
            for x in range(self.width):
                out.pixels[y * self.width + x] = list(self.pixels[y * self.width + (self.width - 1 - x)])
        return out

    def save(self, relative):
        path = os.path.join(ROOT, relative)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        rows = bytearray()
        for y in range(self.height):
            rows.append(0)
            for x in range(self.width):
                r, g, b, a = self.pixels[y * self.width + x]
                if a > 0.0:
                    r, g, b = r / a, g / a, b / a
                rows.extend(int(round(max(0.0, min(1.0, c)) * 255)) for c in (r, g, b, a))

        def chunk(kind, data):
            body = kind + data
            return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

        png = b"\x89PNG\r\n\x1a\n"
        png += chunk(b"IHDR", struct.pack(">IIBBBBB", self.width, self.height, 8, 6, 0, 0, 0))
        png += chunk(b"IDAT", zlib.compress(bytes(rows), 9))
        png += chunk(b"IEND", b"")
        with open(path, "wb") as out:
            out.write(png)


def rgb(r, g, b, a=255):
    return (r / 255.0, g / 255.0, b / 255.0, a / 255.0)


WHITE = rgb(255, 255, 255)
LIGHT = rgb(214, 214, 214)
DISABLED = rgb(95, 98, 102)
OUTLINE = rgb(20, 22, 24, 200)


def plus_badge(fill):
    c = Canvas(16, 16)
    c.circle(8, 8, 7.2, OUTLINE)
    c.circle(8, 8, 6.4, fill)
    c.line(8, 4.6, 8, 11.4, 2.0, WHITE, round_caps=False)
    c.line(4.6, 8, 11.4, 8, 2.0, WHITE, round_caps=False)
    return c


def remove_cross():
    c = Canvas(16, 16)
    c.line(4.5, 4.5, 11.5, 11.5, 2.6, OUTLINE)
    c.line(11.5, 4.5, 4.5, 11.5, 2.6, OUTLINE)
    c.line(4.5, 4.5, 11.5, 11.5, 1.6, rgb(226, 120, 110))
    c.line(11.5, 4.5, 4.5, 11.5, 1.6, rgb(226, 120, 110))
    return c


def dropdown():
    c = Canvas(16, 16)
    for y in (3.5, 6.5):
        c.line(3, y, 13, y, 1.4, LIGHT)
    c.polygon([(3.5, 9.0), (12.5, 9.0), (8.0, 13.5)], LIGHT)
    return c


def arrow(color, left):
    c = Canvas(16, 16)
    pts = [(3, 8), (9, 2.5), (9, 5.5), (13.5, 5.5), (13.5, 10.5), (9, 10.5), (9, 13.5)]
    if not left:
        pts = [(16 - x, y) for x, y in pts]
    c.polygon(pts, color)
    return c


def filter_match_in_text():
    # A page of text with a highlighted line: the match is in the description.
    c = Canvas(16, 16)
    c.polygon([(3, 1.5), (10, 1.5), (13, 4.5), (13, 14.5), (3, 14.5)], rgb(90, 90, 90))
    c.polygon([(4, 2.5), (9.5, 2.5), (12, 5), (12, 13.5), (4, 13.5)], rgb(250, 250, 246))
    for y in (5.5, 11.5):
        c.line(5.5, y, 10.5, y, 1.0, rgb(150, 150, 150), round_caps=False)
    c.rect(4.6, 7.4, 11.4, 9.6, rgb(255, 200, 40))
    c.line(5.5, 8.5, 10.5, 8.5, 1.0, rgb(60, 60, 60), round_caps=False)
    return c


def drag_item():
    c = Canvas(40, 16)
    c.rounded_rect(0.5, 0.5, 39.5, 15.5, 3, rgb(70, 96, 111, 210))
    c.rounded_rect(1.5, 1.5, 38.5, 14.5, 2.5, rgb(120, 160, 185, 160))
    for col in (5.5, 9.0):
        for row in (4.5, 8.0, 11.5):
            c.circle(col, row, 1.1, WHITE)
    c.line(14, 8, 34, 8, 1.6, rgb(240, 240, 240, 200), round_caps=False)
    return c


LINE = rgb(150, 156, 162)
CONNECTOR_W, CONNECTOR_H = 12, 23
MID_Y = CONNECTOR_H / 2.0
BRANCH_X = 4.5


def connector(place):
    c = Canvas(CONNECTOR_W, CONNECTOR_H)
    w = 1.5
    if place == "only":
        c.line(0, MID_Y, CONNECTOR_W, MID_Y, w, LINE, round_caps=False)
    elif place == "first":
        c.line(0, MID_Y, CONNECTOR_W, MID_Y, w, LINE, round_caps=False)
        c.line(BRANCH_X, MID_Y, BRANCH_X, CONNECTOR_H, w, LINE, round_caps=False)
    elif place == "mid":
        c.line(BRANCH_X, 0, BRANCH_X, CONNECTOR_H, w, LINE, round_caps=False)
        c.line(BRANCH_X, MID_Y, CONNECTOR_W, MID_Y, w, LINE, round_caps=False)
    elif place == "last":
        c.line(BRANCH_X, 0, BRANCH_X, MID_Y + w / 2, w, LINE, round_caps=False)
        c.line(BRANCH_X - w / 2, MID_Y, CONNECTOR_W, MID_Y, w, LINE, round_caps=False)
    elif place == "skip":
        c.line(BRANCH_X, 0, BRANCH_X, CONNECTOR_H, w, LINE, round_caps=False)
    elif place == "root":
        c.line(4, MID_Y, CONNECTOR_W, MID_Y, w, LINE, round_caps=False)
        c.circle(4, MID_Y, 3.2, rgb(142, 197, 224))
    return c


def function_icon(kind):
    c = Canvas(16, 16)
    if kind == "emitter":
        # A source with particles leaving it.
        c.circle(5, 11, 3.6, OUTLINE)
        c.circle(5, 11, 2.8, rgb(240, 150, 60))
        for x, y, r in ((10.5, 9.5, 1.6), (9.5, 4.5, 1.4), (13.5, 5.5, 1.2), (5.5, 3.5, 1.1)):
            c.circle(x, y, r + 0.6, OUTLINE)
            c.circle(x, y, r, rgb(255, 200, 110))
    elif kind == "initializer":
        # A sparkle: something given its first values.
        pts = []
        for i in range(8):
            angle = math.pi / 4 * i - math.pi / 2
            radius = 7.0 if i % 2 == 0 else 2.6
            pts.append((8 + radius * math.cos(angle), 8 + radius * math.sin(angle)))
        c.polygon([(8 + (x - 8) * 1.12, 8 + (y - 8) * 1.12) for x, y in pts], OUTLINE)
        c.polygon(pts, rgb(120, 210, 110))
    elif kind == "operator":
        # A cog: something that works on particles every step.
        teeth = []
        for i in range(16):
            angle = math.pi / 8 * i
            radius = 7.2 if i % 2 == 0 else 5.4
            teeth.append((8 + radius * math.cos(angle), 8 + radius * math.sin(angle)))
        c.polygon(teeth, rgb(90, 150, 210))
        c.circle(8, 8, 2.2, rgb(20, 30, 45))
    elif kind == "forcegenerator":
        # Gusts of wind.
        for y, x1 in ((4.5, 12), (8.5, 14), (12.5, 10.5)):
            c.line(2, y, x1, y, 2.6, OUTLINE)
            c.line(2, y, x1, y, 1.6, rgb(190, 140, 230))
        c.polygon([(11.5, 6.0), (15.5, 8.5), (11.5, 11.0)], rgb(190, 140, 230))
    elif kind == "constraint":
        # A bracket that holds particles in.
        c.line(3, 2.5, 3, 13.5, 2.6, OUTLINE)
        c.line(3, 13.5, 13, 13.5, 2.6, OUTLINE)
        c.line(3, 2.5, 3, 13.5, 1.7, rgb(225, 110, 95))
        c.line(3, 13.5, 13, 13.5, 1.7, rgb(225, 110, 95))
        c.circle(9.5, 8.0, 3.0, OUTLINE)
        c.circle(9.5, 8.0, 2.3, rgb(250, 200, 190))
    elif kind == "renderer":
        # An eye: what makes particles seen.
        eye = []
        for i in range(24):
            t = math.pi * 2 * i / 24
            eye.append((8 + 7.2 * math.cos(t), 8 + 4.4 * math.sin(t) * (1.0 if math.sin(t) > 0 else 1.0)))
        c.polygon(eye, OUTLINE)
        c.polygon([(8 + (x - 8) * 0.88, 8 + (y - 8) * 0.82) for x, y in eye], rgb(250, 225, 120))
        c.circle(8, 8, 2.7, rgb(60, 45, 20))
        c.circle(7.2, 7.2, 0.8, WHITE)
    return c


def reset_arrow(color):
    # A circular arrow: back to the default.
    c = Canvas(16, 16)
    pts = []
    for i in range(19):
        t = math.radians(-40 + i * 15)
        pts.append((8 + 5.2 * math.cos(t), 8 + 5.2 * math.sin(t)))
    for (x0, y0), (x1, y1) in zip(pts, pts[1:]):
        c.line(x0, y0, x1, y1, 2.8, OUTLINE)
    for (x0, y0), (x1, y1) in zip(pts, pts[1:]):
        c.line(x0, y0, x1, y1, 1.7, color)
    tip_x, tip_y = pts[0]
    c.polygon([(tip_x - 3.6, tip_y - 1.2), (tip_x + 2.2, tip_y - 3.0), (tip_x + 0.8, tip_y + 2.6)], color)
    return c


def link(color, broken):
    # Two chain links: inherited from a base; broken when the value overrides it.
    c = Canvas(16, 16)
    for cx, cy in ((5.5, 10.5), (10.5, 5.5)):
        c.ring(cx, cy, 3.4, 2.6, OUTLINE)
        c.ring(cx, cy, 3.4, 1.5, color)
    if broken:
        c.line(2.5, 2.5, 13.5, 13.5, 2.8, rgb(40, 40, 40))
        c.line(2.5, 2.5, 13.5, 13.5, 1.6, rgb(230, 110, 90))
    else:
        c.line(6.5, 9.5, 9.5, 6.5, 2.8, OUTLINE)
        c.line(6.5, 9.5, 9.5, 6.5, 1.5, color)
    return c


def alert():
    c = Canvas(16, 16)
    c.polygon([(8, 1.2), (15.2, 14.5), (0.8, 14.5)], OUTLINE)
    c.polygon([(8, 2.8), (13.9, 13.6), (2.1, 13.6)], rgb(250, 200, 50))
    c.line(8, 6.2, 8, 9.8, 1.8, rgb(40, 30, 10), round_caps=False)
    c.circle(8, 11.9, 1.0, rgb(40, 30, 10))
    return c


def remove_badge(fill):
    c = Canvas(16, 16)
    c.circle(8, 8, 7.2, OUTLINE)
    c.circle(8, 8, 6.4, fill)
    c.line(5.2, 5.2, 10.8, 10.8, 1.8, WHITE)
    c.line(10.8, 5.2, 5.2, 10.8, 1.8, WHITE)
    return c


def tangent_mode(kind):
    # A key in the middle and the curve through it as the mode shapes it.
    c = Canvas(16, 16)
    curve = rgb(200, 200, 200)
    handle = rgb(230, 230, 70)
    if kind == "linear":
        path = [(1.5, 13.5), (8, 8), (14.5, 13.5)]
    elif kind == "spline":
        path = [(1.5 + 13 * t, 8 + 5.5 * (2 * t - 1) ** 2) for t in [i / 12.0 for i in range(13)]]
    elif kind == "sine":
        path = [(1.5 + 13 * t, 8 + 5.5 * math.sin(math.pi * (t - 0.5)) ** 2) for t in [i / 12.0 for i in range(13)]]
    else:
        path = [(1.5 + 13 * t, 11 - 3 * math.sin(math.pi * t)) for t in [i / 12.0 for i in range(13)]]
    for (x0, y0), (x1, y1) in zip(path, path[1:]):
        c.line(x0, y0, x1, y1, 1.5, curve)
    if kind in ("free", "mirror"):
        left = (3.0, 4.0) if kind == "free" else (3.0, 8.0)
        right = (13.0, 6.0) if kind == "free" else (13.0, 8.0)
        c.line(left[0], left[1], 8, 8, 1.0, handle)
        c.line(8, 8, right[0], right[1], 1.0, handle)
        c.circle(left[0], left[1], 1.4, handle)
        c.circle(right[0], right[1], 1.4, handle)
    c.circle(8, 8, 2.6, OUTLINE)
    c.circle(8, 8, 1.9, rgb(80, 120, 230))
    return c


# The live preview's tool bar.
PLAY = rgb(60, 170, 70)
STOP = rgb(200, 60, 50)
GLYPH = rgb(70, 70, 80)
CAMERA_BLUE = rgb(50, 110, 200)


def preview_icon(kind):
    c = Canvas(16, 16)
    if kind == "play":
        c.polygon([(4, 2.5), (13.5, 8), (4, 13.5)], PLAY)
    elif kind == "pause":
        c.rect(3.5, 2.5, 6.5, 13.5, GLYPH)
        c.rect(9.5, 2.5, 12.5, 13.5, GLYPH)
    elif kind == "first":
        # Back to the start: a bar and a triangle pointing at it.
        c.rect(2.5, 2.5, 4.5, 13.5, GLYPH)
        c.polygon([(13.5, 2.5), (5, 8), (13.5, 13.5)], PLAY)
    elif kind == "stop":
        c.rect(3, 3, 13, 13, STOP)
    elif kind == "reload":
        c.ring(8, 8, 4.8, 2.4, CAMERA_BLUE)
        c.polygon([(10.5, 1.5), (15, 5.5), (9.5, 7)], CAMERA_BLUE)
    elif kind == "warning":
        c.polygon([(8, 1), (15.5, 15), (0.5, 15)], rgb(240, 200, 40))
        c.rect(7.2, 5, 8.8, 10.5, GLYPH)
        c.rect(7.2, 12, 8.8, 13.5, GLYPH)
    elif kind == "restart_global":
        # Restart, everywhere: the restart glyph on a globe.
        c.circle(8, 8, 7, CAMERA_BLUE)
        c.rect(4, 4.5, 5.5, 11.5, WHITE)
        c.polygon([(12, 4.5), (6.5, 8), (12, 11.5)], WHITE)
    elif kind == "stop_with_endcap":
        c.rect(2, 4, 10, 12, STOP)
        c.circle(12.5, 5, 3, rgb(235, 140, 40))
    elif kind == "reset_cam":
        c.rect(1.5, 5, 11, 13, GLYPH)
        c.polygon([(11, 8), (15, 5.5), (15, 12.5), (11, 10)], GLYPH)
        c.circle(6.2, 9, 2, CAMERA_BLUE)
    elif kind == "move_cam_to_origin":
        c.ring(8, 8, 5.25, 1.5, GLYPH)
        c.rect(7.3, 0.5, 8.7, 15.5, STOP)
        c.rect(0.5, 7.3, 15.5, 8.7, PLAY)
    return c


def detail_level_icon(level):
    # Four bars, as many lit as the level is high.
    c = Canvas(16, 16)
    for i in range(4):
        c.rect(1.5 + i * 3.6, 12.5 - i * 3.0, 4.3 + i * 3.6, 14.5, PLAY if i <= level else rgb(190, 190, 195))
    return c


# The preview controls: configuration buttons and the icons of control point and variable rows.
def control_icon(kind):
    c = Canvas(16, 16)
    if kind == "save":
        # A floppy disk: commit.
        c.rounded_rect(1.5, 1.5, 14.5, 14.5, 1.5, OUTLINE)
        c.rounded_rect(2.2, 2.2, 13.8, 13.8, 1.2, rgb(70, 110, 180))
        c.rect(4.5, 2.2, 11.5, 6.2, rgb(235, 235, 235))
        c.rect(9.2, 2.9, 10.6, 5.5, rgb(70, 110, 180))
        c.rect(4, 8.8, 12, 13.8, rgb(245, 245, 240))
    elif kind in ("copy", "paste"):
        if kind == "copy":
            for dx, dy in ((0, 0), (4, 3)):
                c.rect(2 + dx, 1.5 + dy, 10 + dx, 11.5 + dy, OUTLINE)
                c.rect(2.8 + dx, 2.3 + dy, 9.2 + dx, 10.7 + dy, rgb(250, 250, 246))
        else:
            c.rounded_rect(2, 2.5, 12.5, 15, 1.2, rgb(150, 105, 60))
            c.rect(4.5, 1, 10, 4, GLYPH)
            c.rect(6.5, 6, 14.5, 15, OUTLINE)
            c.rect(7.3, 6.8, 13.7, 14.2, rgb(250, 250, 246))
    elif kind in ("lock", "unlock"):
        # A padlock; open, its shackle stands up on one leg.
        shackle = rgb(170, 170, 178)
        lift = 0.0 if kind == "lock" else 2.5
        c.ring(8, 4.8 - lift, 2.8, 1.6, shackle)
        c.line(10.8, 4.8 - lift, 10.8, 7.5, 1.6, shackle)
        if kind == "lock":
            c.line(5.2, 4.8, 5.2, 7.5, 1.6, shackle)
        c.rounded_rect(3, 7, 13, 14.5, 1.5, OUTLINE)
        c.rounded_rect(3.8, 7.8, 12.2, 13.7, 1.2, rgb(230, 190, 60))
        c.circle(8, 10.6, 1.1, GLYPH)
    elif kind == "dropdown_right":
        c.polygon([(5, 3.5), (11.5, 8), (5, 12.5)], LIGHT)
    elif kind == "subtract":
        c.line(3.5, 8, 12.5, 8, 2.2, LIGHT, round_caps=False)
    elif kind == "cp_position":
        # A point with arrows along two axes.
        c.line(8, 8, 14, 8, 1.6, rgb(220, 70, 60))
        c.polygon([(15.5, 8), (12, 5.8), (12, 10.2)], rgb(220, 70, 60))
        c.line(8, 8, 8, 2, 1.6, rgb(80, 190, 70))
        c.polygon([(8, 0.5), (5.8, 4), (10.2, 4)], rgb(80, 190, 70))
        c.circle(6, 10, 3.2, OUTLINE)
        c.circle(6, 10, 2.4, rgb(250, 220, 90))
    elif kind == "cp_orientation":
        # A ring with an arrow: turned.
        c.ring(8, 8, 5.0, 1.8, rgb(90, 150, 230))
        c.polygon([(13.5, 5.0), (15.5, 9.5), (10.5, 8.5)], rgb(90, 150, 230))
        c.circle(8, 8, 1.6, rgb(250, 220, 90))
    elif kind == "float_literal":
        # One number.
        c.rounded_rect(1.5, 4, 14.5, 12, 2, OUTLINE)
        c.rounded_rect(2.2, 4.7, 13.8, 11.3, 1.6, rgb(120, 190, 120))
        c.line(5, 8, 11, 8, 1.6, WHITE, round_caps=False)
    elif kind == "vec_cp_value":
        # Three numbers.
        for i, color in enumerate((rgb(220, 80, 70), rgb(90, 190, 80), rgb(80, 130, 230))):
            c.rounded_rect(1 + i * 5, 4, 5 + i * 5, 12, 1.2, color)
    elif kind == "float_named_value":
        # A tag: a value known by name.
        c.polygon([(1.5, 4), (10.5, 4), (15, 8), (10.5, 12), (1.5, 12)], OUTLINE)
        c.polygon([(2.3, 4.8), (10.2, 4.8), (13.8, 8), (10.2, 11.2), (2.3, 11.2)], rgb(200, 160, 230))
        c.circle(10.5, 8, 1.2, WHITE)
    elif kind == "bind_command_list":
        # Keys on a list: the commands and their keys.
        for row in range(3):
            c.rounded_rect(1.5, 1.5 + row * 4.8, 5.5, 5 + row * 4.8, 1, rgb(200, 200, 205))
            c.line(7.5, 3.3 + row * 4.8, 14.5, 3.3 + row * 4.8, 1.4, LIGHT, round_caps=False)
    return c


def main():
    for kind, path in (("play", "common/control_play_sm.png"), ("pause", "common/control_pause_sm.png"), ("first", "common/control_first_sm.png"),
                       ("stop", "common/control_stop_sm.png"), ("reload", "common/reload_sm.png"), ("warning", "common/generic_hud_warning.png"),
                       ("restart_global", "zol/restart_global.png"), ("stop_with_endcap", "zol/stop_with_endcap.png"), ("reset_cam", "zol/reset_cam.png"),
                       ("move_cam_to_origin", "zol/move_cam_to_origin.png")):
        preview_icon(kind).save(path)
    preview_icon("reload").save("common/reload.png")
    for level, name in enumerate(("Low", "Medium", "High", "Ultra")):
        detail_level_icon(level).save("zol/detail_level_%s.png" % name)
    plus_badge(rgb(64, 128, 160)).save("common/add_sm.png")
    plus_badge(rgb(82, 150, 64)).save("common/add_sm_green.png")
    remove_cross().save("common/remove_sm.png")
    dropdown().save("common/dropdown_menu.png")
    filter_match_in_text().save("common/filter_match_in_text.png")
    arrow(LIGHT, True).save("orvin_style/arrow_left.png")
    arrow(LIGHT, False).save("orvin_style/arrow_right.png")
    arrow(DISABLED, True).save("orvin_style/arrow_left_disabled.png")
    arrow(DISABLED, False).save("orvin_style/arrow_right_disabled.png")
    drag_item().save("propertyeditor/array_item_drag.png")
    for place in ("only", "first", "mid", "last", "skip", "root"):
        child = connector(place)
        child.save("common/parentchild_child_%s.png" % place)
        child.mirrored().save("common/parentchild_parent_%s.png" % place)
    for kind in ("emitter", "initializer", "operator", "forcegenerator", "constraint", "renderer"):
        function_icon(kind).save("zol/func_%s.png" % kind)
    reset_arrow(rgb(150, 200, 235)).save("propertyeditor/attr_reset.png")
    reset_arrow(rgb(230, 230, 120)).save("propertyeditor/attr_reset_hover.png")
    link(rgb(150, 200, 235), False).save("propertyeditor/overlay_inherit.png")
    link(rgb(230, 230, 120), False).save("propertyeditor/overlay_inherit_hover.png")
    link(rgb(150, 200, 235), True).save("propertyeditor/overlay_override.png")
    link(rgb(230, 230, 120), True).save("propertyeditor/overlay_override_hover.png")
    alert().save("propertyeditor/attr_alert.png")
    remove_badge(rgb(190, 70, 60)).save("propertyeditor/extra_attr_remove.png")
    remove_badge(rgb(235, 100, 80)).save("propertyeditor/extra_attr_remove_hover.png")
    for kind in ("linear", "spline", "free", "mirror", "sine"):
        tangent_mode(kind).save("common/curve_tangent_%s.png" % kind)
    for kind, path in (("save", "common/save_sm.png"), ("copy", "common/copy_sm.png"), ("paste", "common/paste_sm.png"), ("lock", "common/lock_sm.png"),
                       ("unlock", "common/unlock_sm.png"), ("dropdown_right", "common/dropdown_menu_right.png"), ("subtract", "common/subtract_sm.png"),
                       ("bind_command_list", "common/bind_command_list.png"), ("cp_position", "zol/cp_position.png"),
                       ("cp_orientation", "zol/cp_orientation.png"), ("float_literal", "zol/float_literal.png"), ("vec_cp_value", "zol/vec_cp_value.png"),
                       ("float_named_value", "zol/float_named_value.png")):
        control_icon(kind).save(path)


if __name__ == "__main__":
    main()
