"""Draws the moving parts and the small shapes: puck, following ring, lit keys, bars and logo."""
import pathlib

import keyboard
import lettering
from svg import INK, ORANGE, Drawing, circle, group, path, rect

HERE = pathlib.Path(__file__).parent
RESOURCES = HERE.parent                  # what is compiled in as it is

# The drop points up, that is outward from the wheel's centre at every angle. Its shading has no side, as it turns.
DROP = "M23 1.6C26.6 8.2 43.4 13.6 43.4 29.6A20.4 20.4 0 0 1 2.6 29.6C2.6 13.6 19.4 8.2 23 1.6Z"
POINTER = rect(20.6, 7.6, 4.8, 16.4, 2.4, fill=ORANGE)


def puck_shape():
    drawing = Drawing(46, 51, "Puck")
    drawing.add(group([group([path(DROP, fill="#ffffff", stroke="#16202b", stroke_width="2.2"), POINTER])]))
    drawing.save(RESOURCES / "puck.svg")


def puck_picture():
    width, height = 55, 59
    drawing = Drawing(width, height, "Puck with its contact shadow")
    drawing.radial("body", 23, 29, 22, [(0, "#ffffff"), (0.72, "#f7f9fa"), (0.9, "#dfe4e9"), (1, "#bcc5ce")])
    drawing.radial("dish", 23, 33, 10.5, [(0, "#ffffff"), (0.5, "#eef1f4"), (0.86, "#d3dae1"), (0.93, "#c3ccd5"),
                                          (1, "#ffffff")])
    drawing.add(group([
        path(DROP, fill="none", stroke="#000000", stroke_opacity=0.14, stroke_width=7.0, stroke_linejoin="round"),
        path(DROP, fill="none", stroke="#000000", stroke_opacity=0.2, stroke_width=4.6, stroke_linejoin="round"),
        path(DROP, fill="url(#body)", stroke="#16202b", stroke_width=1.8),
        circle(23, 35, 9.4, fill="url(#dish)"),
        rect(20.1, 7.1, 5.8, 17.4, 2.9, fill="#b95a00"), POINTER,
    ], transform=f"translate({(width - 46) / 2:g} {(height - 51) / 2:g})"))
    drawing.save(HERE / "puckPicture.svg")


def follow_wheel():
    """Hub and rim around a band that is cut out, so that the panel's graduation shows in it, and in the band the index
    mark. But for the mark the picture is the same at every angle: the dial turns the mark alone, and takes from the
    picture the rectangle (105, 7) to (117, 28), which holds nothing else."""
    size, centre, radius = 222, 111.0, 110.6
    hub, rim = 82.0 / radius, 104.7 / radius                   # the edges of the band
    drawing = Drawing(size, size, "Ring that follows the wheel")
    drawing.radial("ring", centre, centre, radius, [
        (0, "#12161b"), (0.69, "#12161b"), (0.715, "#161d26"), (hub - 0.014, "#05080b"), (hub, "#05080b"),
        (hub + 0.008, "#05080b", 0), (rim - 0.004, "#1a232d", 0), (rim + 0.003, "#1a232d"), (0.962, "#1a232d"),
        (0.97, "#8b9dae"), (0.979, "#ffffff"), (0.985, "#b4c1cd"), (1, "#4f6072")])
    shapes = [circle(centre, centre, radius, fill="url(#ring)")]
    half, edge, top, bottom = 3.0, 1.2, centre - 103.0, centre - 84.4
    shapes += [rect(centre - half - edge, top, 2 * (half + edge), bottom - top, half + edge, fill="#0b1118"),
               rect(centre - half, top + edge, 2 * half, bottom - top - 2 * edge, half, fill=ORANGE)]
    drawing.add(group([group(shapes)]))
    drawing.save(RESOURCES / "followWheel.svg")


def key_shapes():
    """The view boxes are 10 x 35 and 6 x 22; the key's own outline fills them, as it is stretched over the key."""
    first_of_kind = {"C": 0, "D": 1, "E": 2, "G": 4, "A": 5}
    scale = f"scale({10 / keyboard.BODY:.6f} {35 / keyboard.HEIGHT:.6f})"
    for name, index in first_of_kind.items():
        drawing = Drawing(10, 35, f"Lit {name} key")
        drawing.add(group([group([path(keyboard.white_key_path(index), fill="rgb(249,126,4)")])], transform=scale))
        drawing.save(RESOURCES / f"Key{name}.svg")
    drawing = Drawing(6, 22, "Lit black key")
    drawing.add(group([group([path("M0 0H6V22H0Z", fill="rgb(249,126,4)")])]))
    drawing.save(RESOURCES / "KeySharp.svg")
    for name, width, height in (("blackKey", 7, 20), ("whiteKey", 8, 39)):
        drawing = Drawing(width, height, "Key bar")
        drawing.add(group([group([rect(0.5, 0.5, width - 1.0, height - 1.0, fill="rgb(255,127,0)", stroke="#000000",
                                       stroke_width="1")])]))
        drawing.save(RESOURCES / f"{name}.svg")


def logo():
    width, height, margin = 398, 66, 5.0
    cap_height = min((width - 2 * margin) / lettering.wordmark_width(1.0), height - 2 * margin)
    baseline = (height + cap_height) / 2
    word, dot = lettering.wordmark(width / 2, baseline, cap_height, 98, "middle")
    drawing = Drawing(width, height, "Tarvelline")
    drawing.linear("face", baseline - cap_height, baseline, [(0, "#ffffff"), (1, "#c9d2db")])
    drawing.add(path(word + dot, fill="none", stroke=INK, stroke_opacity=0.9, stroke_width=3.0,
                     stroke_linejoin="round"),
                path(word, fill="url(#face)", stroke="url(#face)", stroke_width="0.6"), path(dot, fill=ORANGE))
    drawing.save(HERE / "TarvellineLogo.svg")


if __name__ == "__main__":
    puck_shape()
    puck_picture()
    follow_wheel()
    key_shapes()
    logo()
