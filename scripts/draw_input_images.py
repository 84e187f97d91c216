#!/usr/bin/env python3
"""Draws the images of the input editors and the colour tools into content/game/tools/images/.

The type and map icons of the float and vector input editors (zol/), and the colour tools'
cursors and buttons (common/). Same plain shapes and writer as draw_tool_images.py; run it
again after a change and commit the images next to it.
"""

import math

from draw_tool_images import OUTLINE, WHITE, Canvas, detail_level_icon, rgb

INK = rgb(60, 62, 70)
BLUE = rgb(70, 140, 220)
GREEN = rgb(80, 180, 90)
ORANGE = rgb(240, 150, 50)
RED = rgb(210, 70, 60)
PURPLE = rgb(160, 110, 220)
TEAL = rgb(60, 170, 170)
YELLOW = rgb(240, 200, 60)
GREY = rgb(150, 150, 155)


def tag(c, color):
    # A luggage label: a named value.
    c.polygon([(1.5, 8), (5.5, 3), (14.5, 3), (14.5, 13), (5.5, 13)], OUTLINE)
    c.polygon([(2.6, 8), (6, 4), (13.5, 4), (13.5, 12), (6, 12)], color)
    c.circle(6.3, 8, 1.3, WHITE)


def die(c, color, pips=((5, 5), (8, 8), (11, 11))):
    c.rounded_rect(1.5, 1.5, 14.5, 14.5, 3, OUTLINE)
    c.rounded_rect(2.5, 2.5, 13.5, 13.5, 2.5, color)
    for x, y in pips:
        c.circle(x, y, 1.3, WHITE)


def clock(c, color, cx=8, cy=8, r=6.5):
    c.circle(cx, cy, r + 0.8, OUTLINE)
    c.circle(cx, cy, r, color)
    c.line(cx, cy, cx, cy - r * 0.7, 1.4, WHITE)
    c.line(cx, cy, cx + r * 0.55, cy, 1.4, WHITE)


def target(c, color, cx=8, cy=8, r=5.5):
    c.ring(cx, cy, r, 1.8, color)
    c.circle(cx, cy, 1.8, color)
    for dx, dy in ((1, 0), (-1, 0), (0, 1), (0, -1)):
        c.line(cx + dx * (r - 1), cy + dy * (r - 1), cx + dx * (r + 2.2), cy + dy * (r + 2.2), 1.3, color, round_caps=False)


def arrow_to(c, x0, y0, x1, y1, color, width=1.6, head=3.2):
    c.line(x0, y0, x1 - (x1 - x0) * 0.15, y1 - (y1 - y0) * 0.15, width, color)
    angle = math.atan2(y1 - y0, x1 - x0)
    left = (x1 - head * math.cos(angle - 0.6), y1 - head * math.sin(angle - 0.6))
    right = (x1 - head * math.cos(angle + 0.6), y1 - head * math.sin(angle + 0.6))
    c.polygon([(x1, y1), left, right], color)


def particle(c, x, y, color, r=2.4):
    c.circle(x, y, r + 0.7, OUTLINE)
    c.circle(x, y, r, color)


def camera(c, color, x=1, y=5):
    c.rect(x + 0.5, y, x + 8, y + 6, color)
    c.polygon([(x + 8, y + 2), (x + 11, y), (x + 11, y + 6), (x + 8, y + 4)], color)


def polyline(c, points, width, color):
    for (x0, y0), (x1, y1) in zip(points, points[1:]):
        c.line(x0, y0, x1, y1, width, color)


def bar01(c, color):
    # A small 0..1 bar under a glyph: "normalized".
    c.rect(2, 13.2, 14, 14.6, GREY)
    c.rect(2, 13.2, 9, 14.6, color)


def float_type_icon(name):
    c = Canvas(16, 16)
    if name == "float_literal":
        for x in (6, 10):
            c.line(x, 2.5, x - 1.2, 13.5, 1.6, BLUE)
        for y in (6, 10):
            c.line(2.5, y, 13.5, y, 1.6, BLUE)
    elif name == "float_named_value":
        tag(c, ORANGE)
    elif name == "float_random_uniform":
        die(c, PURPLE)
    elif name == "float_random_biased":
        die(c, PURPLE, ((5, 10.5), (8, 11), (11, 11.5)))
        polyline(c, [(3.5, 7), (7, 5.5), (12.5, 4)], 1.2, WHITE)
    elif name == "float_collection_age":
        clock(c, TEAL)
    elif name == "float_endcap_age":
        clock(c, TEAL, 7, 7, 5.5)
        c.rect(10.5, 10.5, 15, 15, RED)
    elif name == "float_cp":
        target(c, RED)
    elif name == "float_cp_age":
        target(c, RED, 6, 6, 4)
        clock(c, TEAL, 11.5, 11.5, 3.6)
    elif name == "float_cp_speed":
        target(c, RED, 10, 8, 4)
        for y in (5, 8, 11):
            c.line(1, y, 4.5, y, 1.2, INK)
    elif name == "detail_level":
        return detail_level_icon(2)
    elif name == "concurrent_collections":
        for x, y in ((5.5, 6), (10.5, 6), (8, 10.5)):
            c.circle(x, y, 3.8, OUTLINE)
            c.circle(x, y, 3.1, ORANGE)
    elif name == "cam_closest_distance":
        camera(c, INK, 0.5, 2)
        particle(c, 12.5, 12, BLUE, 2)
        arrow_to(c, 6, 9.5, 10.5, 11.5, BLUE, 1.2, 2.6)
    elif name == "snapshot_count":
        c.rect(1.5, 2.5, 14.5, 13.5, OUTLINE)
        c.rect(2.5, 3.5, 13.5, 12.5, rgb(235, 235, 240))
        for x in (5, 8, 11):
            for y in (6, 10):
                c.circle(x, y, 1.2, BLUE)
    elif name == "cam_distance":
        camera(c, INK, 0.5, 1.5)
        arrow_to(c, 4, 12, 14.5, 12, BLUE, 1.2, 2.6)
        arrow_to(c, 12, 12, 1.5, 12, BLUE, 1.2, 2.6)
    elif name == "cam_dot_product":
        camera(c, INK, 0.5, 1.5)
        c.line(3, 14, 14, 14, 1.3, BLUE)
        c.line(3, 14, 12, 8, 1.3, BLUE)
        c.ring(3, 14, 5, 1.0, ORANGE)
    elif name == "float_noise":
        pts = [(1, 9), (3, 5), (5, 10), (7, 4), (9, 11), (11, 6), (13, 9), (15, 5)]
        polyline(c, pts, 2.4, OUTLINE)
        polyline(c, pts, 1.4, TEAL)
    elif name in ("float_age", "float_age_normalized"):
        c.polygon([(3, 1.5), (13, 1.5), (8, 7.5)], OUTLINE)
        c.polygon([(3, 12.5 if name.endswith("normalized") else 14.5), (13, 12.5 if name.endswith("normalized") else 14.5), (8, 7.5)], OUTLINE)
        c.polygon([(4.5, 2.5), (11.5, 2.5), (8, 6.5)], YELLOW)
        if name.endswith("normalized"):
            bar01(c, YELLOW)
    elif name == "float_attr_float":
        particle(c, 5, 8, BLUE, 3)
        c.rect(10, 3, 12.5, 13, ORANGE)
    elif name == "float_attr_vec":
        particle(c, 5, 10, BLUE, 3)
        arrow_to(c, 7, 8, 14, 2, ORANGE)
    elif name == "float_speed":
        particle(c, 11, 8, BLUE, 3)
        for y in (5, 8, 11):
            c.line(1.5, y, 6.5, y, 1.3, INK)
    elif name in ("float_number", "float_number_normalized"):
        for i, x in enumerate((3, 8, 13)):
            particle(c, x, 10 - i * 2.5, BLUE, 1.3 + i * 0.4)
        if name.endswith("normalized"):
            bar01(c, BLUE)
    elif name in ("segment_number", "segment_number_normalized"):
        for x in (4, 8, 12):
            c.ring(x, 7, 2.6, 1.4, INK)
        if name.endswith("normalized"):
            bar01(c, INK)
    elif name == "disabled":
        c.ring(8, 8, 5.8, 2.0, GREY)
        c.line(4, 12, 12, 4, 2.0, GREY)
    return c


def map_icon(name):
    c = Canvas(16, 16)
    axis = rgb(150, 150, 155)
    c.line(2, 14, 14.5, 14, 1.0, axis, round_caps=False)
    c.line(2, 14, 2, 1.5, 1.0, axis, round_caps=False)
    if name == "float_map_direct":
        polyline(c, [(2.5, 13.5), (14, 2)], 1.8, GREEN)
    elif name == "float_map_mult":
        c.line(6, 5, 12, 11, 2.0, GREEN)
        c.line(12, 5, 6, 11, 2.0, GREEN)
    elif name == "float_map_remap":
        polyline(c, [(2.5, 12), (6, 12), (11, 4), (14.5, 4)], 1.8, GREEN)
    elif name == "float_map_remap_biased":
        polyline(c, [(2.5 + i * 12 / 10.0, 13 - 10 * (i / 10.0) ** 2.5) for i in range(11)], 1.8, GREEN)
    elif name == "float_map_curve":
        polyline(c, [(2.5 + i * 12 / 12.0, 8 - 5.5 * math.sin(math.pi * (i / 12.0 - 0.5))) for i in range(13)], 1.8, GREEN)
    elif name == "float_map_notched":
        polyline(c, [(2.5, 12), (6.5, 12), (6.5, 4), (10.5, 4), (10.5, 12), (14.5, 12)], 1.6, GREEN)
    elif name == "float_map_rounded":
        polyline(c, [(2.5, 12), (5.5, 12), (5.5, 9), (8.5, 9), (8.5, 6), (11.5, 6), (11.5, 3), (14.5, 3)], 1.6, GREEN)
    return c


def small_mode_icon(name):
    c = Canvas(16, 16)
    if name == "random_mode_constant":
        die(c, PURPLE, ((5, 5), (11, 5)))
        c.line(4, 10.5, 12, 10.5, 1.6, WHITE)
    elif name == "random_mode_varying":
        die(c, PURPLE, ((5, 5), (11, 5)))
        polyline(c, [(3.5, 11), (6, 9), (8, 12), (10, 9), (12.5, 11)], 1.3, WHITE)
    elif name == "input_mode_clamped":
        polyline(c, [(1, 12), (5, 12), (11, 4), (15, 4)], 1.8, BLUE)
        c.line(5, 2, 5, 14, 1.0, GREY)
        c.line(11, 2, 11, 14, 1.0, GREY)
    elif name == "input_mode_looped":
        polyline(c, [(1, 12), (5, 4), (5, 12), (10, 4), (10, 12), (15, 4)], 1.5, BLUE)
    elif name == "reverse_values":
        arrow_to(c, 3, 5.5, 14, 5.5, INK, 1.5, 3.0)
        arrow_to(c, 13, 10.5, 2, 10.5, INK, 1.5, 3.0)
    elif name == "round_type_nearest":
        polyline(c, [(2, 12), (6, 12), (6, 8), (10, 8), (10, 4), (14, 4)], 1.4, INK)
        c.circle(8, 8, 2.0, ORANGE)
    elif name == "round_type_floor":
        c.line(2, 13, 14, 13, 1.6, INK)
        arrow_to(c, 8, 2, 8, 11.8, ORANGE, 1.8, 5.5)
    elif name == "round_type_ceil":
        c.line(2, 3, 14, 3, 1.6, INK)
        arrow_to(c, 8, 14, 8, 4.2, ORANGE, 1.8, 5.5)
    return c


def vec_icon(name):
    c = Canvas(16, 16)
    if name == "vec_literal":
        arrow_to(c, 3, 13, 14, 13, RED, 1.5, 2.8)
        arrow_to(c, 3, 13, 3, 2, GREEN, 1.5, 2.8)
        arrow_to(c, 3, 13, 11, 5, BLUE, 1.5, 2.8)
    elif name == "vec_literal_color":
        for (x, y), color in (((5.5, 6), rgb(235, 70, 60)), ((10.5, 6), rgb(80, 200, 90)), ((8, 10.5), rgb(70, 120, 235))):
            c.circle(x, y, 3.9, OUTLINE)
            c.circle(x, y, 3.2, color)
    elif name == "vec_named_value":
        tag(c, GREEN)
    elif name == "vec_particle_vector":
        particle(c, 5, 11, BLUE, 3)
        arrow_to(c, 7, 9, 14.5, 2, GREEN)
    elif name == "vec_particle_velocity":
        particle(c, 6, 10, BLUE, 3)
        for y in (7, 10, 13):
            c.line(0.5, y, 2.5, y, 1.1, INK)
        arrow_to(c, 8.5, 8, 15, 3, GREEN)
    elif name == "vec_cp_value":
        target(c, RED, 6, 10, 3.6)
        arrow_to(c, 8, 8, 15, 2, GREEN)
    elif name == "vec_cp_relative_pos":
        target(c, RED, 6, 10, 3.6)
        particle(c, 12.5, 3.5, BLUE, 2)
        c.line(7.5, 8.5, 11, 5, 1.0, GREY)
    elif name == "vec_cp_relative_dir":
        target(c, RED, 6, 10, 3.6)
        arrow_to(c, 7.5, 8.5, 15, 1.5, BLUE)
    elif name == "vec_float_components":
        for y, color in ((3.5, RED), (8, GREEN), (12.5, BLUE)):
            c.rounded_rect(1.5, y - 1.7, 14.5, y + 1.7, 1.2, color)
    elif name in ("vec_interp_clamp", "vec_interp_open"):
        if name == "vec_interp_open":
            c.line(0.5, 8, 15.5, 8, 1.0, GREY)
        for x in range(4, 13):
            t = (x - 4) / 8.0
            c.rect(x, 6, x + 1, 10, rgb(int(230 * (1 - t) + 60 * t), int(80 * (1 - t) + 140 * t), int(60 * (1 - t) + 230 * t)))
        particle(c, 3.5, 8, rgb(230, 80, 60), 2)
        particle(c, 12.5, 8, rgb(60, 140, 230), 2)
        if name == "vec_interp_clamp":
            c.line(1, 3, 1, 13, 1.2, INK)
            c.line(15, 3, 15, 13, 1.2, INK)
    elif name == "vec_gradient":
        c.rect(1, 4, 15, 12, OUTLINE)
        stops = [(0.0, (240, 220, 80)), (0.5, (230, 80, 50)), (1.0, (60, 40, 140))]
        for x in range(2, 14):
            t = (x - 2) / 11.0
            for (p0, c0), (p1, c1) in zip(stops, stops[1:]):
                if p0 <= t <= p1:
                    f = (t - p0) / (p1 - p0)
                    c.rect(x, 5, x + 1, 11, rgb(*[int(a + (b - a) * f) for a, b in zip(c0, c1)]))
                    break
    elif name == "vec_random_uniform_offset":
        die(c, PURPLE, ((4.5, 4.5), (8, 8)))
        arrow_to(c, 9, 9, 15, 15, ORANGE, 1.4, 2.6)
    return c


def cursor_base():
    # The select arrow, tip at (0, 0): the hot spot.
    c = Canvas(32, 32)
    pts = [(0.5, 0.5), (0.5, 15.5), (4.5, 11.8), (7.3, 17.5), (9.6, 16.4), (6.9, 10.9), (11.8, 10.9)]
    c.polygon([(x * 1.0, y * 1.0) for x, y in pts], rgb(0, 0, 0))
    c.polygon([(1.6, 2.8), (1.6, 13.0), (4.8, 10.0), (7.8, 16.0), (8.4, 15.7), (5.5, 9.8), (9.3, 9.8)], WHITE)
    return c


def cursor_overlay(kind):
    c = Canvas(32, 32)
    if kind == "add":
        c.circle(18, 18, 5.5, OUTLINE)
        c.circle(18, 18, 4.6, GREEN)
        c.line(18, 15.3, 18, 20.7, 1.6, WHITE, round_caps=False)
        c.line(15.3, 18, 20.7, 18, 1.6, WHITE, round_caps=False)
    else:
        for direction in (-1, 1):
            tip = 18 + direction * 7
            c.polygon([(tip, 18), (tip - direction * 4, 14.5), (tip - direction * 4, 21.5)], OUTLINE)
            c.polygon([(tip - direction * 0.9, 18), (tip - direction * 3.5, 15.8), (tip - direction * 3.5, 20.2)], WHITE)
        c.line(14.5, 18, 21.5, 18, 2.6, OUTLINE)
        c.line(14.5, 18, 21.5, 18, 1.2, WHITE)
    return c


def delete_light():
    c = Canvas(16, 16)
    c.rect(4.5, 5, 11.5, 14, LIGHTISH)
    c.rect(3, 3.2, 13, 4.6, LIGHTISH)
    c.rect(6.5, 1.8, 9.5, 3.2, LIGHTISH)
    for x in (6.5, 9.5):
        c.line(x, 6.5, x, 12.5, 1.0, rgb(90, 90, 95), round_caps=False)
    return c


LIGHTISH = rgb(200, 200, 205)


def color_wheel():
    c = Canvas(16, 16)
    for i in range(36):
        a0 = 2 * math.pi * i / 36
        a1 = 2 * math.pi * (i + 1) / 36
        h = i / 36.0
        r, g, b = [max(0.0, min(1.0, abs(((h * 6 + k) % 6) - 3) - 1)) for k in (0, 4, 2)]
        c.polygon([(8, 8), (8 + 7.5 * math.cos(a0), 8 + 7.5 * math.sin(a0)), (8 + 7.5 * math.cos(a1), 8 + 7.5 * math.sin(a1))],
                  (r, g, b, 1.0))
    c.circle(8, 8, 2.6, WHITE)
    return c


def add_highlight():
    c = Canvas(16, 16)
    c.circle(8, 8, 7.2, OUTLINE)
    c.circle(8, 8, 6.4, rgb(110, 190, 230))
    c.line(8, 4.6, 8, 11.4, 2.0, WHITE, round_caps=False)
    c.line(4.6, 8, 11.4, 8, 2.0, WHITE, round_caps=False)
    return c


FLOAT_TYPES = ("float_literal", "float_named_value", "float_random_uniform", "float_random_biased", "float_collection_age", "float_endcap_age", "float_cp",
               "float_cp_age", "float_cp_speed", "detail_level", "concurrent_collections", "cam_closest_distance", "snapshot_count", "cam_distance",
               "cam_dot_product", "float_noise", "float_age", "float_age_normalized", "float_attr_float", "float_attr_vec", "float_speed", "float_number",
               "float_number_normalized", "segment_number", "segment_number_normalized", "disabled")
MAP_TYPES = ("float_map_direct", "float_map_mult", "float_map_remap", "float_map_remap_biased", "float_map_curve", "float_map_notched", "float_map_rounded")
MODES = ("random_mode_constant", "random_mode_varying", "input_mode_clamped", "input_mode_looped", "reverse_values", "round_type_nearest", "round_type_floor",
         "round_type_ceil")
VEC_TYPES = ("vec_literal", "vec_literal_color", "vec_named_value", "vec_particle_vector", "vec_particle_velocity", "vec_cp_value", "vec_cp_relative_pos",
             "vec_cp_relative_dir", "vec_float_components", "vec_interp_clamp", "vec_interp_open", "vec_gradient", "vec_random_uniform_offset")


def main():
    for name in FLOAT_TYPES:
        float_type_icon(name).save("zol/%s.png" % name)
    for name in MAP_TYPES:
        map_icon(name).save("zol/%s.png" % name)
    for name in MODES:
        small_mode_icon(name).save("zol/%s.png" % name)
    for name in VEC_TYPES:
        vec_icon(name).save("zol/%s.png" % name)
    cursor_base().save("common/select_cursor_base.png")
    cursor_overlay("add").save("common/select_overlay_add.png")
    cursor_overlay("leftright").save("common/select_overlay_leftright.png")
    delete_light().save("common/delete_light_sm.png")
    color_wheel().save("common/color_wheel_sm.png")
    add_highlight().save("common/add_sm_highlight.png")


if __name__ == "__main__":
    main()
