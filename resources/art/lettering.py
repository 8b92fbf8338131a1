"""The house alphabet: one set of stroke skeletons behind the font, the panel's lettering and the wordmark.

A glyph is a body width and a list of strokes. A stroke is a string of points, each an x name and a y name, run as a
polyline whose corners are rounded; "!" after a point keeps that corner sharp, a final "z" closes the stroke. A stroke
starting with "/" is a straight bar cut off level at both ends. Names (units of 1/1000 em):

    x   L l c r R   left edge, left stem's centre line, middle, right stem's centre line, right edge
        p q         stem centre lines moved in, so that a level-cut bar ends flush with the body's edge
        1..9        tenths of the width
    y   _ B         baseline, centre line of a stroke that stands on it
        m X x       half the x-height, centre line of a stroke below the x-height, x-height
        M C ^       half the cap height, centre line of a stroke below the cap height, cap height
        D d         the same two below the baseline for descenders
        1..9        tenths of the cap height
"""
import math

EM = 1000
CAP_HEIGHT = 700
X_HEIGHT = 530
DESCENT = -150
STEM = 92                # regular weight; the panel's small labels use a heavier one
CORNER = 150             # corner radius on the centre line, limited by the room a corner has
BAR_INSET = 1.16         # half the level cut of a steep bar, in half stems
SIDE_BEARING = 58
DIGIT_WIDTH = 490        # body; every figure, plus and minus has the same advance

GLYPHS = {
    " ": (134, []),
    "A": (540, ["l_ lC rC r_", "l3 r3"]),
    "B": (530, ["lM! lC! rC rM z", "lB! lM! rM rB z"]),
    "C": (520, ["r7 rC lC lB rB r3"]),
    "D": (540, ["lB! lC! rC rB z"]),
    "E": (470, ["RC lC! lB! RB", "lM 9M"]),
    "F": (460, ["RC lC! l_", "lM 9M"]),
    "G": (545, ["r7 rC lC lB rB rM! 5M"]),
    "H": (540, ["l_ l^", "r_ r^", "lM rM"]),
    "I": (92, ["c_ c^"]),
    "J": (470, ["r^ rB lB l3"]),
    "K": (530, ["l_ l^", "/q^ 3M", "/q_ 3M", "lM 4M"]),
    "L": (440, ["l^ lB! RB"]),
    "M": (660, ["l_ l^", "r_ r^", "/p^ c2", "/q^ c2"]),
    "N": (560, ["l_ l^", "r_ r^", "/p^ q_"]),
    "O": (560, ["lB lC rC rB z"]),
    "P": (520, ["l_ lC! rC r4 l4"]),
    "Q": (560, ["lB lC rC rB z", "/52 9_"]),
    "R": (530, ["l_ lC! rC r4 l4", "/54 q_"]),
    "S": (520, ["r7 rC lC lM rM rB lB l3"]),
    "T": (520, ["LC RC", "c_ cC"]),
    "U": (540, ["l^ lB rB r^"]),
    "V": (580, ["/p^ c_", "/q^ c_"]),
    "W": (860, ["/p^ 3_", "/5^ 3_", "/5^ 7_", "/q^ 7_"]),
    "X": (560, ["/p^ q_", "/q^ p_"]),
    "Y": (560, ["/p^ c3", "/q^ c3", "c_ c4"]),
    "Z": (520, ["LC RC", "/q^ p_", "LB RB"]),
    "a": (480, ["1X rX r_", "rm lm lB rB"]),
    "b": (490, ["l_ l^", "lB! lX! rX rB z"]),
    "c": (450, ["RX lX lB RB"]),
    "d": (490, ["r_ r^", "rB! rX! lX lB z"]),
    "e": (490, ["lm rm! rX lX lB 9B"]),
    "f": (320, ["3_ 3C RC", "LX 9X"]),
    "g": (490, ["rB! rX! lX lB z", "rX rD 1D"]),
    "h": (480, ["l_ l^", "lX rX r_"]),
    "i": (92, ["c_ cx", "c9 c^"]),
    "j": (230, ["rx rD LD", "r9 r^"]),
    "k": (470, ["l_ l^", "/qx 3m", "/q_ 3m", "lm 4m"]),
    "l": (180, ["l^ lB RB"]),
    "m": (740, ["l_ lx", "lX rX r_", "c_ cX"]),
    "n": (480, ["l_ lx", "lX rX r_"]),
    "o": (490, ["lB lX rX rB z"]),
    "p": (490, ["ld lx", "lB! lX! rX rB z"]),
    "q": (490, ["rd rx", "rB! rX! lX lB z"]),
    "r": (330, ["l_ lx", "lX RX"]),
    "s": (450, ["9X lX lm rm rB LB"]),
    "t": (330, ["39 3B RB", "LX RX"]),
    "u": (480, ["lx lB rB", "rx r_"]),
    "v": (500, ["/px c_", "/qx c_"]),
    "w": (740, ["/px 3_", "/5x 3_", "/5x 7_", "/qx 7_"]),
    "x": (480, ["/px q_", "/qx p_"]),
    "y": (480, ["lx lB rB", "rx rD 1D"]),
    "z": (450, ["LX RX", "/qx p_", "LB RB"]),
    "0": (DIGIT_WIDTH, ["lB lC rC rB z"]),
    "1": (DIGIT_WIDTH, ["1C cC", "c_ c^"]),
    "2": (DIGIT_WIDTH, ["LC rC r6", "/q6 p_", "LB RB"]),      # open on both sides: no 8 at any size
    "3": (DIGIT_WIDTH, ["LC rC rM 3M", "LB rB rM 3M"]),
    "4": (DIGIT_WIDTH, ["l^ l2! R2", "7_ 76"]),
    "5": (DIGIT_WIDTH, ["9C lC! lM! rM rB LB"]),
    "6": (DIGIT_WIDTH, ["9C lC lB rB rM lM"]),
    "7": (DIGIT_WIDTH, ["LC RC", "/q^ 3_"]),
    "8": (DIGIT_WIDTH, ["lM lC rC rM z", "lB lM rM rB z"]),
    "9": (DIGIT_WIDTH, ["1B rB rC lC lM rM"]),
    "+": (DIGIT_WIDTH, ["1M 9M", "c2 c8"]),
    "-": (DIGIT_WIDTH, ["1M 9M"]),
    ".": (112, ["c_ c."]),
    ",": (112, ["c. cv"]),
    ":": (112, ["c_ c.", "c5 c:"]),
    ";": (112, ["c. cv", "c5 c:"]),
    "!": (112, ["c_ c.", "c3 c^"]),
    "?": (470, ["l7 lC rC rM cM c3", "c_ c."]),
    "'": (92, ["c7 c^"]),
    '"': (250, ["l7 l^", "r7 r^"]),
    "#": (600, ["/1_ 3^", "/7_ 9^", "L2 R2", "L5 R5"]),
    "$": (520, ["r7 rC lC lM rM rB lB l3", "cu c^"]),
    "%": (760, ["/p_ q^", "l7 lC 3C 37 z", "7B 73 r3 rB z"]),
    "&": (600, ["r4 rB lB lM 6M 6C 1C 1M", "5M RM"]),
    "(": (230, ["RC lC lB RB"]),
    ")": (230, ["LC rC rB LB"]),
    "*": (400, ["c5 c^", "L6 R9", "L9 R6"]),
    "/": (440, ["/p_ q^"]),
    "<": (440, ["97 1M! 93"]),
    "=": (DIGIT_WIDTH, ["14 94", "16 96"]),
    ">": (440, ["17 9M! 13"]),
    "@": (760, ["9B lB lC rC r3 63", "33 36 66 63 z"]),
    "[": (230, ["RC lC! lB! RB"]),
    "\\": (440, ["/p^ q_"]),
    "]": (230, ["LC rC! rB! LB"]),
    "^": (460, ["/p5 c^", "/q5 c^"]),
    "_": (500, ["LD RD"]),
    "`": (220, ["/p^ q8"]),
    "{": (260, ["RC cC cM LM", "RB cB cM LM"]),
    "|": (92, ["cd c^"]),
    "}": (260, ["LC cC cM RM", "LB cB cM RM"]),
    "~": (520, ["l2 l4 c4 c2 r2 r4"]),
}


class Outline:
    """A closed contour: a start point, then straight lines (x, y) and quadratic curves (cx, cy, x, y)."""

    def __init__(self, start, segments):
        self.start, self.segments = start, segments


def advance(char):
    return GLYPHS[char][0] + 2 * SIDE_BEARING


def glyph_outlines(char, stem=STEM, grid=0.0):
    """The contours of a glyph standing at x = 0 on the baseline, y upwards; they overlap, all filled by winding. With
    a grid the body's width is a multiple of it, and level strokes start on its lines."""
    width, strokes = GLYPHS[char]
    width = max(_on_grid(width, grid), stem) if grid else width
    outlines = []
    for stroke in strokes:
        if stroke.startswith("/"):
            (start, _), (end, _) = _points(stroke[1:].split(), width, stem, grid)
            outlines.append(_level_bar(start, end, stem / 2))
        else:
            outlines += _outline_stroke(stroke.split(), width, stem, grid)
    return outlines


def _on_grid(value, grid):
    return round(value / grid) * grid if grid else value


def _points(tokens, width, stem, grid):
    half = stem / 2
    xs = {"L": 0, "l": half, "c": _on_grid(width / 2 - half, grid) + half, "r": width - half, "R": width,
          "p": half * BAR_INSET, "q": width - half * BAR_INSET}
    ys = {"_": 0, "B": half, "m": X_HEIGHT / 2, "X": X_HEIGHT - half, "x": X_HEIGHT,
          "M": CAP_HEIGHT / 2, "C": CAP_HEIGHT - half, "^": CAP_HEIGHT, "D": DESCENT + half, "d": DESCENT,
          ".": 112, ":": 350 + 112, "v": -110, "u": -60, "9": CAP_HEIGHT - 106}
    for tenth in range(1, 10):
        xs[str(tenth)] = width * tenth / 10
        ys.setdefault(str(tenth), CAP_HEIGHT * tenth / 10)
    for level in "M12345678":
        ys[level] = _on_grid(ys[level] - half, grid) + half
    return [((xs[t[0]], ys[t[1]]), t.endswith("!")) for t in tokens]


def _level_bar(start, end, half):
    if start[1] < end[1]:
        start, end = end, start
    length = math.dist(start, end)
    cut = half * length / (start[1] - end[1])        # half the level cut of a slanting bar
    return Outline((start[0] - cut, start[1]), [(start[0] + cut, start[1]), (end[0] + cut, end[1]),
                                                (end[0] - cut, end[1]), (start[0] - cut, start[1])])


def _outline_stroke(tokens, width, stem, grid):
    closed = tokens[-1] == "z"
    marked = _points(tokens[:-1] if closed else tokens, width, stem, grid)
    points = [p for p, _ in marked]
    radii = [0.0 if sharp else _corner_radius(points, i, closed) for i, (_, sharp) in enumerate(marked)]
    left, right = (_offset(points, radii, side * stem / 2, closed) for side in (1, -1))
    if closed:
        outer, inner = (left, right) if abs(_area(left)) > abs(_area(right)) else (right, left)
        return [_rounded(_oriented(outer, clockwise=True)), _rounded(_oriented(inner, clockwise=False))]
    return [_rounded(_oriented(left + right[::-1], clockwise=True))]


def _corner_radius(points, i, closed):
    """The alphabet's radius, or less where the neighbouring corner needs half of the way between them."""
    count = len(points)
    if not closed and i in (0, count - 1):
        return 0.0
    room = []
    for j in (i - 1, i + 1):
        ends = not closed and j in (0, count - 1)
        room.append(math.dist(points[i], points[j % count]) * (0.85 if ends else 0.5))
    return min(CORNER, *room)


def _offset(points, radii, distance, closed):
    """The polyline moved sideways (to the left for positive distances), as (x, y, corner radius)."""
    count = len(points)
    moved = []
    for i, (x, y) in enumerate(points):
        before = points[i - 1] if closed or i > 0 else None
        after = points[(i + 1) % count] if closed or i < count - 1 else None
        normals = [_normal(a, b) for a, b in ((before, (x, y)), ((x, y), after)) if a and b]
        if len(normals) == 1:
            moved.append((x + normals[0][0] * distance, y + normals[0][1] * distance, 0.0))
            continue
        (nx, ny), (mx, my) = normals
        scale = distance / (1 + nx * mx + ny * my)
        turn = nx * my - ny * mx                     # positive: a left turn, whose left side is the inner one
        radius = radii[i] and max(0.0, radii[i] - distance if turn > 0 else radii[i] + distance)
        moved.append((x + (nx + mx) * scale, y + (ny + my) * scale, radius))
    return moved


def _normal(a, b):
    length = math.dist(a, b)
    return (-(b[1] - a[1]) / length, (b[0] - a[0]) / length)


def _area(corners):
    return sum(a[0] * b[1] - b[0] * a[1] for a, b in zip(corners, corners[1:] + corners[:1])) / 2


def _oriented(corners, clockwise):
    return corners if (_area(corners) < 0) == clockwise else corners[::-1]


def _rounded(corners):
    """Replaces each corner that has a radius by a circular arc, drawn as two quadratic curves."""
    start, segments = None, []
    for i, (x, y, radius) in enumerate(corners):
        before, after = corners[i - 1], corners[(i + 1) % len(corners)]
        if radius < 1:
            pieces = [(x, y)]
        else:
            ux, uy = _unit((x, y), before)
            vx, vy = _unit((x, y), after)
            half_angle = math.acos(max(-1.0, min(1.0, ux * vx + uy * vy))) / 2
            tangent = radius / math.tan(half_angle)
            enter, leave = (x + ux * tangent, y + uy * tangent), (x + vx * tangent, y + vy * tangent)
            bisector = _unit((0, 0), (ux + vx, uy + vy))
            apex_distance = radius / math.sin(half_angle) - radius
            apex = (x + bisector[0] * apex_distance, y + bisector[1] * apex_distance)
            lead = radius * math.tan((math.pi - 2 * half_angle) / 4)
            first = (enter[0] - ux * lead, enter[1] - uy * lead)
            second = (leave[0] - vx * lead, leave[1] - vy * lead)
            pieces = [enter, (*first, *apex), (*second, *leave)]
        if start is None:
            start, pieces = pieces[0], pieces[1:]
        segments += pieces
    return Outline(start, segments + [start])


def _unit(a, b):
    length = math.hypot(b[0] - a[0], b[1] - a[1])
    return ((b[0] - a[0]) / length, (b[1] - a[1]) / length)


def text_width(text, cap_height, tracking=0.0, grid=0.0):
    """Width of the inked text, without the side bearings of its ends; tracking is in 1/1000 em."""
    gap, bodies = _spacing(text, cap_height, tracking, grid)
    return sum(bodies) + gap * (len(text) - 1)


def _spacing(text, cap_height, tracking, grid):
    """The way between two glyphs and the glyphs' widths, to whole steps of the grid."""
    scale = cap_height / CAP_HEIGHT
    gap = _on_grid((2 * SIDE_BEARING + tracking) * scale, grid)
    return gap, [_on_grid(GLYPHS[c][0] * scale, grid) for c in text]


def text_path(text, x, baseline, cap_height, stem=STEM, tracking=0.0, anchor="start", grid=0.0):
    """SVG path data of a line of text, y downwards; anchor is "start", "middle" or "end". With a grid, which is in the
    drawing's units, upright and level strokes start on its lines: pixels, so that no stroke is smeared over two."""
    scale = cap_height / CAP_HEIGHT
    gap, bodies = _spacing(text, cap_height, tracking, grid)
    share = {"start": 0, "middle": 0.5, "end": 1}[anchor]
    pen = _on_grid(x - share * text_width(text, cap_height, tracking, grid), grid)
    data = []
    for char, body in zip(text, bodies):
        for outline in glyph_outlines(char, stem, grid / scale):
            place = lambda p: " ".join(f"{pen + p[i] * scale:.2f} {baseline - p[i + 1] * scale:.2f}"
                                       for i in range(0, len(p), 2))
            data.append("M" + place(outline.start))
            data += [("L" if len(s) == 2 else "Q") + place(s) for s in outline.segments]
            data.append("Z")
        pen += body + gap
    return "".join(data)


def wordmark(x, baseline, cap_height, stem=STEM, anchor="start"):
    """The product's name as two paths: the letters, and the dot of the i, which carries the accent."""
    scale = cap_height / CAP_HEIGHT
    rest, kern = "arvelline", TUCK * scale
    x -= {"start": 0, "middle": 0.5}[anchor] * wordmark_width(cap_height)
    rest_x = x + advance("T") * scale - kern
    dot_x = rest_x + (sum(advance(c) for c in rest[:rest.index("i")]) + GLYPHS["i"][0] / 2 - stem / 2) * scale
    dot = f"M{dot_x:.2f} {baseline - cap_height:.2f}h{stem * scale:.2f}v{106 * scale:.2f}h{-stem * scale:.2f}Z"
    letters = text_path("T", x, baseline, cap_height, stem)
    return letters + text_path(rest.replace("i", "\0"), rest_x, baseline, cap_height, stem), dot


def wordmark_width(cap_height):
    return text_width("Tarvelline", cap_height) - TUCK * cap_height / CAP_HEIGHT


TUCK = 62                                        # the wordmark's a stands under the T's arm
GLYPHS["\0"] = (GLYPHS["i"][0], ["c_ cx"])       # the wordmark's dotless i
