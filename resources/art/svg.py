"""A few lines of SVG writing shared by the art generators, and the colours of the house."""
import math

INK = "#060a10"            # engraved lettering and marks
ORANGE = "#f97e04"         # the one accent; also the lit keys, rgb(249,126,4)
WINDOW_TOP, WINDOW_BOTTOM = "#0b1017", "#1a2430"


class Drawing:
    def __init__(self, width, height, title):
        self.width, self.height, self.title = width, height, title
        self.defs, self.body = [], []

    def linear(self, name, y0, y1, stops):
        """A vertical gradient in user units; stops are (offset, colour, opacity)."""
        self.defs.append(f'<linearGradient id="{name}" gradientUnits="userSpaceOnUse" x1="0" y1="{num(y0)}" x2="0" '
                         f'y2="{num(y1)}">{_stops(stops)}</linearGradient>')

    def radial(self, name, cx, cy, r, stops):
        self.defs.append(f'<radialGradient id="{name}" gradientUnits="userSpaceOnUse" cx="{num(cx)}" cy="{num(cy)}" '
                         f'r="{num(r)}">{_stops(stops)}</radialGradient>')

    def add(self, *elements):
        self.body += elements

    def save(self, path):
        with open(path, "w", encoding="ascii") as file:
            file.write(f'<?xml version="1.0" encoding="UTF-8"?>\n<svg xmlns="http://www.w3.org/2000/svg" version="1.1" '
                       f'width="{self.width}" height="{self.height}" viewBox="0 0 {self.width} {self.height}">\n'
                       f"<title>{self.title}</title>\n")
            if self.defs:
                file.write("<defs>\n" + "\n".join(self.defs) + "\n</defs>\n")
            file.write("\n".join(self.body) + "\n</svg>\n")


def _stops(stops):
    def stop(offset, colour, opacity=1):
        extra = "" if opacity == 1 else f' stop-opacity="{num(opacity)}"'
        return f'<stop offset="{num(offset)}" stop-color="{colour}"{extra}/>'
    return "".join(stop(*s) for s in stops)


def num(value):
    return f"{value:.3f}".rstrip("0").rstrip(".")


def attributes(**values):
    return "".join(f' {key.replace("_", "-")}="{num(v) if isinstance(v, float) else v}"' for key, v in values.items())


def group(elements, **values):
    return f"<g{attributes(**values)}>" + "\n".join(elements) + "</g>"


def circle(cx, cy, r, **paint):
    return f'<circle cx="{num(cx)}" cy="{num(cy)}" r="{num(r)}"{attributes(**paint)}/>'


def rect(x, y, width, height, radius=0, **paint):
    corner = f' rx="{num(radius)}"' if radius else ""
    return (f'<rect x="{num(x)}" y="{num(y)}" width="{num(width)}" height="{num(height)}"{corner}'
            f"{attributes(**paint)}/>")


def path(data, **paint):
    return f'<path d="{data}"{attributes(**paint)}/>'


def polar(cx, cy, r, degrees):
    """The point at radius r, the angle counted clockwise from straight up as rotary controls do."""
    angle = math.radians(degrees)
    return cx + r * math.sin(angle), cy - r * math.cos(angle)


def arc(cx, cy, r, start, end, **paint):
    """A clockwise arc from start to end degrees (end > start)."""
    (x0, y0), (x1, y1) = polar(cx, cy, r, start), polar(cx, cy, r, end)
    large = int(end - start > 180)
    return path(f"M{num(x0)} {num(y0)}A{num(r)} {num(r)} 0 {large} 1 {num(x1)} {num(y1)}", fill="none", **paint)


def spoke(cx, cy, inner, outer, degrees, **paint):
    (x0, y0), (x1, y1) = polar(cx, cy, inner, degrees), polar(cx, cy, outer, degrees)
    return path(f"M{num(x0)} {num(y0)}L{num(x1)} {num(y1)}", fill="none", **paint)
