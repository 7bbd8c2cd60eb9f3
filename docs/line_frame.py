#!/usr/bin/python3
"""Draws a word on an I/O line from the transitions that line_frame prints.

    build/release/bench/tools/line_frame 0x392 10 | docs/line_frame.py docs/line-frame.png

Needs the Debian package python3-cairo.
"""
import sys

import cairo

HALF_US = 2000  # half period of the sender
WIDTH, HEIGHT = 1640, 470
LEFT, RIGHT = 90, 30
HIGH, LOW, AXIS = 190, 270, 390  # heights of the two levels and of the axis of time
FONT = "DejaVu Sans"
INK, FAINT, TRACE = (0.13, 0.15, 0.18), (0.45, 0.48, 0.52), (0.05, 0.32, 0.65)
SYMBOL, PARITY = (0.88, 0.93, 0.99), (0.99, 0.92, 0.80)


def read(lines):
    """The times of the transitions and the end of the frame, in microseconds."""
    times, end = [], None
    for line in lines:
        time, what = line.split()
        if what == "end":
            end = int(time)
        else:
            assert what == ("1" if len(times) % 2 == 0 else "0"), "levels must alternate"
            times.append(int(time))
    return times, end


def bursts(times):
    """The transitions of each symbol: a longer rest parts them."""
    groups = [[times[0]]]
    for before, time in zip(times, times[1:]):
        if time - before > 10 * HALF_US:
            groups.append([])
        groups[-1].append(time)
    return groups


class Picture:
    """A drawing whose horizontal positions are times in microseconds."""

    def __init__(self, end):
        self.surface = cairo.ImageSurface(cairo.FORMAT_RGB24, WIDTH, HEIGHT)
        self.context = cairo.Context(self.surface)
        self.end = end
        self.context.set_source_rgb(1, 1, 1)
        self.context.paint()

    def x(self, time):
        return LEFT + (WIDTH - LEFT - RIGHT) * time / self.end

    def line(self, points, colour, width=1.5, dash=()):
        c = self.context
        c.set_source_rgb(*colour)
        c.set_line_width(width)
        c.set_dash(dash)
        c.move_to(*points[0])
        for point in points[1:]:
            c.line_to(*point)
        c.stroke()

    def box(self, middle, width, colour):
        self.context.set_source_rgb(*colour)
        self.context.rectangle(middle - width / 2, 82, width, LOW + 14 - 82)
        self.context.fill()

    def text(self, x, y, text, size=17, colour=INK, bold=False, align=0.5):
        c = self.context
        weight = cairo.FONT_WEIGHT_BOLD if bold else cairo.FONT_WEIGHT_NORMAL
        c.select_font_face(FONT, cairo.FONT_SLANT_NORMAL, weight)
        c.set_font_size(size)
        c.set_source_rgb(*colour)
        c.move_to(x - align * c.text_extents(text).x_advance, y)
        c.show_text(text)

    def span(self, begin, end, y, text):
        """A length between two times, with arrows at both ends."""
        left, right = self.x(begin), self.x(end)
        self.line([(left, y), (right, y)], FAINT)
        for tip, way in ((left, 1), (right, -1)):
            self.line([(tip + 7 * way, y - 4), (tip, y), (tip + 7 * way, y + 4)], FAINT)
            self.line([(tip, LOW + 6), (tip, y + 6)], FAINT, 1, (2, 3))
        self.text((left + right) / 2, y - 8, text, 15, FAINT)


def draw_axis(picture):
    right = picture.x(picture.end)
    picture.line([(LEFT, AXIS), (right, AXIS)], INK)
    for ms in range(0, picture.end // 1000 + 1, 10):
        x, major = picture.x(ms * 1000), ms % 50 == 0
        picture.line([(x, AXIS), (x, AXIS + (10 if major else 5))], INK)
        if major:
            picture.text(x, AXIS + 30, str(ms))
    picture.text((LEFT + right) / 2, AXIS + 60, "time in ms")
    picture.text(LEFT - 20, HIGH + 6, "high", align=1)
    picture.text(LEFT - 20, LOW + 6, "low", align=1)


def draw_symbols(picture, groups):
    word = 0
    for number, group in enumerate(groups):
        value, isParity = len(group) // 2 - 1, number == len(groups) - 1
        middle = (picture.x(group[0]) + picture.x(group[-1])) / 2
        picture.box(middle, 124 if isParity else 92, PARITY if isParity else SYMBOL)
        picture.text(middle, 117, f"parity {value}" if isParity else f"{value:02b}", 24, bold=True)
        pulses = "1 pulse" if value == 0 else f"{value + 1} pulses"
        picture.text(middle, 145, pulses, 15, FAINT)
        if not isParity:
            word = 4 * word + value
    return word


def draw_trace(picture, times):
    points, level = [(LEFT - 8, LOW)], LOW
    for time in times:
        x, other = picture.x(time), HIGH + LOW - level
        points += [(x, level), (x, other)]
        level = other
    points.append((picture.x(picture.end), level))
    picture.line(points, TRACE, 2.5)


def main():
    times, end = read(sys.stdin)
    groups = bursts(times)
    picture = Picture(end)
    word = draw_symbols(picture, groups)
    bits = 2 * (len(groups) - 1)
    picture.text(LEFT, 46, f"The word 0x{word:X} of {bits} bits on a line that rests low", 25,
                 bold=True, align=0)
    draw_axis(picture)
    draw_trace(picture, times)
    picture.span(groups[0][-1], groups[1][0], 320, "rest 20 h")
    picture.span(groups[-1][-1], end, 320, "end of the frame 41 h")
    picture.text(LEFT, 360, "h = 2 ms: each level of a pulse", 15, FAINT, align=0)
    picture.surface.write_to_png(sys.argv[1])


if __name__ == "__main__":
    main()
