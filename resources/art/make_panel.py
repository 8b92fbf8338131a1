"""Draws the panel behind the controls, in the editor's design units: two complete halves of 512 x 576; and once more
with lettering for the smallest windows, which show a unit as half a pixel."""
import math
import pathlib
from typing import NamedTuple

import controls
import keyboard
import lettering
from svg import INK, ORANGE, WINDOW_BOTTOM, WINDOW_TOP, Drawing, arc, circle, group, num, path, rect, spoke

HERE = pathlib.Path(__file__).parent
HALF, HEIGHT = controls.HALF, 576.0

WHEEL = controls.place("mainWheelSlider")
KNOBS = {name: controls.place(f"pitch{name.title()}Slider") for name in ("GRAVITY", "INERTIA", "SMOOTH")}
MIXER = controls.place("mixerSlider")
# These stand on whole pixels, as the text in them does.
RANGE = controls.whole_place("pitchRangeBox")
SNAP = controls.whole_place("pitchSnapButton")
MIDI = controls.whole_place("midiModeButton")
KEYS = controls.whole_place("keyboard")
SIZE = controls.whole_place("sizeButton")

# Every rotary control sweeps from 1.2 to 2.8 pi: 144 degrees to either side of straight up.
SWEEP_START, SWEEP_END = -144.0, 144.0
PUCK_ORBIT = 0.416 * WHEEL[2]
GROOVE_HALF_WIDTH = 25.0         # the puck and a little play; its rim ends below radius 165
DIAL_RADIUS = controls.PLACES["pitchDial"][2] / 2
BAND_INNER, BAND_OUTER = 82.5, 105.0      # of the dial, in which its index mark runs

FLUTES = 60                # grip flutes round a knob's skirt
GRAIN = 0.042              # opacity of the coat's grain
PARTIAL_STEP = 6.0         # between two lines of a spectrum
# Even, so that at half size, in which the window first opens, letters stand on whole pixels.
TITLE_BASELINE, WINDOW_LABEL_BASELINE, LABEL_BASELINE, LAST_BASELINE = 20.0, 88.0, 512.0, 566.0


class Lettering(NamedTuple):
    """Lengths in units; strokes start on the lines of the grid."""
    cap: float
    stem: float
    grid: float
    tracking: int                # 1/1000 em, here and below
    title_tracking: int


LARGE = Lettering(cap=10.0, stem=2.0, grid=1.0, tracking=50, title_tracking=260)
SMALL = Lettering(cap=12.0, stem=2.6, grid=2.0, tracking=40, title_tracking=160)


def centre(box):
    x, y, width, height = box
    return x + width / 2, y + height / 2


def engraved(data):
    """Dark lettering cut into the panel: its lower edge catches the light from above."""
    return [path(data, fill="#ffffff", fill_opacity=0.3, transform="translate(0 1)"), path(data, fill=INK)]


def label(text, x, baseline, style, tracking=None):
    tracking = style.tracking if tracking is None else tracking
    stem = style.stem * lettering.CAP_HEIGHT / style.cap
    return engraved(lettering.text_path(text, x, baseline, style.cap, stem, tracking, "middle", style.grid))


def define_materials(art):
    """All light comes from above: raised things are light at their upper edge, sunk ones at their lower edge."""
    cx, cy = centre(WHEEL)
    # Luminance 0.20 to 0.23: both the dark ticks and the cream numbers of the scale need 3:1 against it. Lighter below
    # the scale, where lettering is all that stands on it.
    art.linear("ground", 0, HEIGHT, [(0, "#76889b"), (0.05, "#728497"), (0.69, "#718295"), (0.85, "#7d8fa2"),
                                     (1, "#7b8da0")])
    # The coat's grain: a grey noise of about two levels, which also keeps the long gradients from banding.
    art.defs.append('<filter id="grain" x="0" y="0" width="1" height="1" color-interpolation-filters="sRGB">'
                    '<feTurbulence type="fractalNoise" baseFrequency="0.85" numOctaves="2" seed="7"/>'
                    '<feColorMatrix type="matrix" values="1 0 0 0 -0.06  1 0 0 0 -0.02  1 0 0 0 0.04  0 0 0 0 1"/>'
                    "</filter>")
    art.linear("plateRim", 17, 400, [(0, "#ffffff", 0.5), (0.45, "#ffffff", 0.22), (0.95, "#ffffff", 0)])
    art.linear("plateCut", 17, 400, [(0, "#1c2733", 0.55), (0.45, "#1c2733", 0.3), (0.95, "#1c2733", 0)])
    art.linear("grooveRim", 62, 400, [(0, "#35424f"), (0.4, "#5c6c7d"), (0.75, "#a9b7c4"), (1, "#d3dce4")])
    art.radial("grooveFloor", cx, cy + 5, PUCK_ORBIT + GROOVE_HALF_WIDTH + 5,
               [(0.63, "#0c1218"), (0.70, "#18212b"), (0.80, "#25303c"), (0.9, "#202a35"), (0.955, "#121a22"),
                (1, "#080c11")])
    art.linear("grooveLight", 62, 400, [(0, "#000000", 0.4), (0.5, "#3d4d5f", 0.0), (1, "#6d8299", 0.38)])
    art.radial("dialSeat", cx, cy + 4, DIAL_RADIUS + 7,
               [(0, "#000000", 0.9), (0.93, "#000000", 0.75), (1, "#000000", 0)])
    art.radial("dialBand", cx, cy, BAND_OUTER + 1.5,
               [(0.775, "#05080b"), (0.79, "#52647a"), (0.80, "#3a495a"), (0.89, "#45566a"), (0.96, "#3a495a"),
                (0.97, "#5f7288"), (0.98, "#1a232d"), (1, "#1a232d")])
    art.radial("knobShadow", 0, 3, 42, [(0.7, "#0a1016", 0.6), (0.9, "#0a1016", 0.3), (1, "#0a1016", 0)])
    art.linear("knobSeat", -39, 39, [(0, "#2c3744"), (0.5, "#5b6b7c"), (1, "#b3c0cc")])
    art.linear("knobSkirt", -36, 36, [(0, "#5a6a7b"), (0.12, "#465463"), (0.6, "#242e39"), (1, "#121920")])
    art.linear("knobRim", -36, 36,
               [(0, "#e6edf3", 0.85), (0.3, "#b9c6d2", 0.2), (0.6, "#000000", 0), (1, "#000000", 0.4)])
    art.linear("knobCap", -27, 27, [(0, "#1d2630"), (1, "#384553")])
    art.linear("knobCapRim", -27, 27, [(0, "#0a0f14"), (0.5, "#1d2630"), (1, "#6c7d8e")])
    for name, box in (("range", RANGE), ("snap", SNAP), ("midi", MIDI), ("keys", KEYS)):
        y, height = box[1], box[3]
        art.linear(f"{name}Bezel", y, y + height, [(0, "#3c4957"), (0.5, "#66778a"), (1, "#b9c6d2")])
        art.linear(f"{name}Glass", y, y + height, [(0, "#06090d"), (0.1, WINDOW_TOP), (1, WINDOW_BOTTOM)])
        art.linear(f"{name}Key", y, y + height, [(0, "#4a5765"), (0.5, "#33404d"), (1, "#232d38")])
    y = SIZE[1]
    art.linear("capEdge", y, y + 96, [(0, "#2f3b48"), (1, "#1a232d")])
    art.linear("capFace", y + 2, y + 94, [(0, "#8899aa"), (0.5, "#75879a"), (1, "#647588")])
    art.linear("capRim", y, y + 96, [(0, "#4a5867"), (1, "#b9c6d2")])
    art.linear("whiteKey", 0, KEYS[3], [(0, "#8e98a3"), (0.1, "#cfd6dc"), (0.35, "#e6eaee"), (0.9, "#f6f8f9"),
                                        (0.92, "#c4ccd4"), (1, "#aab4be")])
    art.linear("blackKey", 0, keyboard.BLACK_HEIGHT, [(0, "#06090c"), (0.2, "#1c242d"), (0.84, "#38444f"),
                                                      (0.86, "#11171d"), (1, "#0a0e13")])


def plate():
    """The half's ground with a bevel along its own four edges."""
    return [rect(0, 0, HALF, HEIGHT, fill="url(#ground)"),
            rect(0, 0, HALF, HEIGHT, filter="url(#grain)", opacity=GRAIN),
            rect(0, 0, HALF, 1, fill="#ffffff", fill_opacity=0.4),
            rect(0, 1, 1, HEIGHT - 2, fill="#ffffff", fill_opacity=0.16),
            rect(HALF - 1, 0, 1, HEIGHT, fill="#0c131a", fill_opacity=0.62),
            rect(0, HEIGHT - 2, HALF, 2, fill="#0c131a", fill_opacity=0.5)]


def wheel(title, style):
    cx, cy = centre(WHEEL)
    inner, outer = PUCK_ORBIT - GROOVE_HALF_WIDTH, PUCK_ORBIT + GROOVE_HALF_WIDTH
    shapes = []
    title_width = lettering.text_width(title, style.cap, style.title_tracking, style.grid)
    title_gap = math.degrees(math.atan2(title_width / 2 + 14.0, 214.0))    # the rim leaves the title free
    for radius, paint in ((213.5, "plateCut"), (214.5, "plateRim")):
        for start, end in ((-118.0, -title_gap), (title_gap, 118.0)):
            shapes.append(arc(cx, cy, radius, start, end, stroke=f"url(#{paint})", stroke_width="1"))
    shapes += label(title, cx, TITLE_BASELINE, style, style.title_tracking)
    groove = lambda width, **paint: arc(cx, cy, PUCK_ORBIT, SWEEP_START, SWEEP_END, stroke_width=float(width),
                                        stroke_linecap="round", **paint)
    width = 2 * GROOVE_HALF_WIDTH
    shapes += [groove(width + 4, stroke="url(#grooveRim)"), groove(width + 1, stroke="#070b10"),
               groove(width, stroke="url(#grooveFloor)"), groove(width, stroke="url(#grooveLight)")]
    for radius in range(118, 163, 4):                          # the lathe's traces
        shapes.append(arc(cx, cy, float(radius), SWEEP_START, SWEEP_END, stroke="#8fa3b8", stroke_opacity=0.055,
                          stroke_width=0.8))
    shapes += [groove(4.4, stroke="#05080b"), groove(2.4, stroke="#2b3744"),
               circle(cx, cy + 1, DIAL_RADIUS + 7, fill="url(#dialSeat)"),
               circle(cx, cy, DIAL_RADIUS + 1.5, fill="#070b10")]
    return shapes + dial_band()


def dial_band():
    """The graduation that the dial's index mark runs over. At every range each numbered tick of the scale outside has
    its fellow here, at the same angle."""
    cx, cy = centre(WHEEL)
    shapes = [circle(cx, cy, BAND_OUTER + 1.5, fill="url(#dialBand)")]
    for degrees in range(int(SWEEP_START), int(SWEEP_END) + 1, 6):
        inner, weight = (88.0, 1.6) if degrees % 72 == 0 else (91.5, 1.3) if degrees % 12 == 0 else (95.5, 1.0)
        shapes.append(spoke(cx, cy, inner, 101.0, degrees, stroke="#0d141c", stroke_width=weight))
    return shapes


def maker_mark():
    cx, cy = centre(WHEEL)
    letters, dot = lettering.wordmark(cx, cy + 151.5, 16.0, 112, "middle")
    return engraved(letters) + [path(dot, fill=ORANGE)]


def knob(box):
    cx, cy = centre(box)
    shapes = [circle(0, 6, 47, fill="url(#knobShadow)"), circle(0, 0, 37.6, fill="url(#knobSeat)"),
              circle(0, 0, 36.6, fill="#0b1016"), circle(0, 0, 35.6, fill="url(#knobSkirt)"),
              circle(0, 0, 35.0, fill="none", stroke="url(#knobRim)", stroke_width=1.2),
              *(spoke(0, 0, 29.6, 34.4, 360 / FLUTES * i, stroke="#05080c", stroke_opacity=0.3, stroke_width=1.0)
                for i in range(FLUTES)),
              circle(0, 0, 27, fill="url(#knobCap)"),
              circle(0, 0, 27, fill="none", stroke="url(#knobCapRim)", stroke_width="1")]
    body = group(shapes, transform=f"translate({num(cx)} {num(cy)}) scale({num(box[2] / 77.0)})")
    radius = 0.5 * box[2]
    marks = [spoke(cx, cy, radius + 2.4, radius + 6.8, angle, stroke=INK, stroke_width=1.8)
             for angle in (SWEEP_START, SWEEP_END)]
    return [body] + marks


def inset(box, by, radius, **paint):
    x, y, width, height = box
    return rect(x + by, y + by, width - 2 * by, height - 2 * by, radius, **paint)


def window(box, material):
    """A menu: a sunk display that fills the control's rectangle, with a mark under the number that says it opens."""
    cx, bottom = centre(box)[0], box[1] + box[3]
    return [inset(box, 0, 6, fill=f"url(#{material}Bezel)"), inset(box, 1.5, 4.8, fill="#06090d"),
            inset(box, 2.5, 4, fill=f"url(#{material}Glass)"),
            inset(box, 3, 3.5, fill="none", stroke="#8ea2b6", stroke_opacity=0.12, stroke_width="1"),
            path(f"M{num(cx - 4)} {num(bottom - 8)}h8l-4 4z", fill="#a9bccf")]


def key(box, material):
    """A switch: a raised key cap in a well that fills the control's rectangle."""
    x, y, width, height = box
    return [inset(box, 0, 6, fill=f"url(#{material}Bezel)"), inset(box, 1.2, 5, fill="#05080b"),
            inset(box, 2.4, 4, fill=f"url(#{material}Key)"),
            path(f"M{num(x + 6)} {num(y + 3)}h{num(width - 12)}", stroke="#ffffff", stroke_opacity=0.4,
                 stroke_width="1.2", fill="none"),
            path(f"M{num(x + 6)} {num(y + height - 3)}h{num(width - 12)}", stroke="#000000", stroke_opacity=0.5,
                 stroke_width="1.2", fill="none")]


def piano():
    x, y, width, height = KEYS
    shapes = [rect(x - 4, y - 4, width + 7, height + 8, 5, fill="url(#keysBezel)"),
              rect(x - 2, y - 2, width + 2.5, height + 4, 3, fill="#070a0e")]
    whites = "".join(keyboard.white_key_path(i, i * keyboard.STEP) for i in range(keyboard.WHITE_KEYS))
    keys = [path(whites, fill="url(#whiteKey)")]
    keys += [rect(left, 0, keyboard.BLACK_WIDTH, keyboard.BLACK_HEIGHT, 0.8, fill="url(#blackKey)")
             for left in keyboard.black_key_positions()]
    return shapes + [group(keys, transform=f"translate({x:g} {y:g})")]


def size_mark():
    """A key cap with two panels side by side and a pair of arrows: opens or closes the second half."""
    x, y, width, height = SIZE
    cx, cy = centre(SIZE)
    pair = group([rect(cx - 9.5, cy - 20.5, 9, 15, 1.5, fill=INK),
                  rect(cx + 1.2, cy - 19.8, 7.6, 13.6, 1, fill="none", stroke=INK, stroke_width=1.4),
                  path(f"M{num(cx - 3.5)} {num(cy + 6)}l-6 6.5l6 6.5M{num(cx + 3.5)} {num(cy + 6)}l6 6.5l-6 6.5",
                       fill="none", stroke=INK, stroke_width=2.0)])
    return [inset(SIZE, 0, 6, fill="url(#capRim)"), inset(SIZE, 1.2, 5, fill="url(#capEdge)"),
            inset(SIZE, 2.2, 4.2, fill="url(#capFace)"),
            path(f"M{num(x + 6)} {num(y + 3)}h{num(width - 12)}", stroke="#ffffff", stroke_opacity=0.55,
                 stroke_width="1.1", fill="none"),
            pair]


def formants(position):
    """Height 0..1 of a voice-like spectral envelope; position 0..1 along the frequency axis."""
    peak = lambda at, width, gain: gain * math.exp(-((position - at) / width) ** 2)
    return min(1.0, 0.1 + peak(0.0, 0.12, 0.75) + peak(0.34, 0.11, 0.62) + peak(0.66, 0.09, 0.3))


def comb(lines):
    """Partials cut into the panel, as (x, foot, height): one pixel wide in the smallest window, two in the largest."""
    cuts = "".join(f"M{num(x)} {num(foot)}v{num(-height)}" for x, foot, height in lines)
    stroke = {"fill": "none", "stroke_width": "2"}
    return [path(cuts, stroke="#ffffff", stroke_opacity=0.22, transform="translate(1 1)", **stroke),
            path(cuts, stroke=INK, stroke_opacity=0.85, **stroke)]


def timbre_mark():
    """The right wheel's counterpart of the maker's mark: a spectrum, symmetrical about the wheel's axis."""
    cx, cy = centre(WHEEL)
    return comb([(cx + 0.5 + PARTIAL_STEP * i, cy + 151.5, 16.0 * formants(abs(i) / 8)) for i in range(-8, 9)])


def strap(style):
    """Two spectra that fall towards each other, and between them what the product is."""
    cx = centre(WHEEL)[0]
    text = "PITCH AND TIMBRE SHIFTER"
    half_width = lettering.text_width(text, style.cap, style.tracking, style.grid) / 2 + 12
    places = [25.0 + PARTIAL_STEP * i for i in range(78)]
    lines = [(x, 562.0, 33.0 * formants(min(x - places[0], places[-1] - x) / 130)) for x in places
             if abs(x - cx) > half_width]
    return comb(lines) + label(text, cx, 562.0, style)


def half(title, style):
    shapes = plate() + wheel(title, style)
    shapes += window(RANGE, "range") + key(SNAP, "snap")
    for name, box in (("RANGE ST", RANGE), ("SNAP", SNAP)):
        shapes += label(name, centre(box)[0], WINDOW_LABEL_BASELINE, style)
    for name, box in KNOBS.items():
        shapes += knob(box) + label(name, centre(box)[0], LABEL_BASELINE, style)
    return shapes


def panel(style, name):
    art = Drawing(1024, 576, "Panel")
    define_materials(art)
    left = half("PITCH", style) + maker_mark()
    left += key(MIDI, "midi") + label("MIDI", centre(MIDI)[0], LABEL_BASELINE, style)
    left += piano() + knob(MIXER) + label("MIX", centre(MIXER)[0], LAST_BASELINE, style) + size_mark()
    right = half("TIMBRE", style) + timbre_mark() + strap(style)
    art.add(group(left), group(right, transform=f"translate({num(HALF)} 0)"))
    art.save(HERE / name)


if __name__ == "__main__":
    panel(LARGE, "background.svg")
    panel(SMALL, "backgroundSmall.svg")
