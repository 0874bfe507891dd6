"""A picture of how the time of a block grows, without any library: two log-log diagrams side by side, as SVG."""

import math

CONTROLS = {
    "type1": ("view, 2 channels", "#1f6fb2"),
    "type2": ("level meter", "#c0392b"),
    "type3": ("spectrum analyser", "#2e8b57"),
}
DIAGRAMS = {
    "growth-with-N": ("blocks of N frames", "N"),
    "growth-with-frames": ("longer blocks, N = 1024", "frames in the block"),
}
WIDTH, HEIGHT = 860, 400
TOP, BOTTOM = 46, 330
PANELS = ((64, 404), (484, 824))  # left and right edge of each diagram


class Axis:
    """Takes the logarithms of values from `low` to `high` to pixels from `start` to `end`."""

    def __init__(self, low, high, start, end):
        self.low, self.scale = math.log(low), (end - start) / (math.log(high) - math.log(low))
        self.start = start

    def __call__(self, value):
        return round(self.start + (math.log(value) - self.low) * self.scale, 1)


def text(x, y, content, anchor="middle", colour="#333", extra=""):
    return f'<text x="{x}" y="{y}" text-anchor="{anchor}" fill="{colour}"{extra}>{content}</text>'


def line(x1, y1, x2, y2, colour):
    return f'<line x1="{x1}" y1="{y1}" x2="{x2}" y2="{y2}" stroke="{colour}"/>'


def points_of(times, name, control):
    """[(size, microseconds), ...]"""
    return sorted((size, row[control] / 1000) for (work, size), row in times.items() if work == name and control in row)


def short(size):
    return str(size) if size < 1024 else f"{size // 1024} K"


def diagram(times, name, panel, y, decades):
    title, unit = DIAGRAMS[name]
    curves = {control: points_of(times, name, control) for control in CONTROLS}
    sizes = sorted({size for points in curves.values() for size, _ in points})
    x = Axis(sizes[0], sizes[-1], *panel)
    parts = [text((panel[0] + panel[1]) / 2, TOP - 16, title, extra=' font-weight="bold"')]
    for size in sizes:
        parts += [line(x(size), TOP, x(size), BOTTOM, "#eee"), text(x(size), BOTTOM + 18, short(size))]
    for microseconds in decades:
        row = y(microseconds)
        parts += [line(panel[0], row, panel[1], row, "#ccc"), text(panel[0] - 8, row + 4, f"{microseconds:g}", "end")]
    parts.append(text((panel[0] + panel[1]) / 2, BOTTOM + 38, unit))
    for control, points in curves.items():
        colour = CONTROLS[control][1]
        path = " ".join(f"{x(size)},{y(time)}" for size, time in points)
        parts.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="2"/>')
        parts += [f'<circle cx="{x(size)}" cy="{y(time)}" r="3" fill="{colour}"/>' for size, time in points]
    return parts


def legend():
    parts = []
    for place, (name, colour) in enumerate(CONTROLS.values()):
        x = 180 + 190 * place
        parts += [f'<line x1="{x}" y1="{HEIGHT - 12}" x2="{x + 24}" y2="{HEIGHT - 12}" stroke="{colour}" stroke-width="2"/>',
                  text(x + 32, HEIGHT - 8, name, "start")]
    return parts


def plot(times):
    """`times`: {(diagram, size): {control: nanoseconds}}"""
    all_times = [time for name in DIAGRAMS for control in CONTROLS for _, time in points_of(times, name, control)]
    low, high = math.floor(math.log10(min(all_times))), math.ceil(math.log10(max(all_times)))
    decades = [10.0**exponent for exponent in range(low, high + 1)]
    y = Axis(decades[0], decades[-1], BOTTOM, TOP)
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{HEIGHT}" viewBox="0 0 {WIDTH} {HEIGHT}" '
             'font-family="sans-serif" font-size="12">',
             f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>',
             text(18, (TOP + BOTTOM) / 2, "µs a block", extra=f' transform="rotate(-90 18 {(TOP + BOTTOM) / 2})"')]
    for name, panel in zip(DIAGRAMS, PANELS):
        parts += diagram(times, name, panel, y, decades)
    return "\n".join(parts + legend() + ["</svg>"]) + "\n"
