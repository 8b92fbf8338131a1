"""The piano strip's geometry, shared by the painted strip and the lit-key shapes that must cover its keys.

Units: pixels of a strip 336 wide and 36 high, so that one white key's step is 12. A key's body is seven eighths of
its step, a black key half a step wide and 20/33 of the height, standing where the keyboard component lights it.
"""
STEP = 12.0
HEIGHT = 36.0
BODY = STEP * 0.875
WHITE_KEYS = 28
BLACK_WIDTH = STEP * 0.5
BLACK_HEIGHT = HEIGHT * 20 / 33
BLACK_ADVANCES = (8, 10, 7, 7, 10)       # sixths of a step from one black key to the next, from C sharp
CLEARANCE = 1.0                          # the dark gap between a black key and the white keys it cuts
NOTCH_HEIGHT = 23.0                      # the black key's length and a gap, to a whole pixel
CORNER = 1.0                             # the white key's lower corners


def black_key_positions():
    x = 0.5 * STEP
    for index in range(WHITE_KEYS // 7 * 5):
        yield x
        x += BLACK_ADVANCES[index % 5] / 6 * STEP


def notches(index):
    """What the black keys cut from the upper part of a white key: (left, right) edges, from the body's left."""
    start = index * STEP
    left, right = 0.0, BODY
    for black in black_key_positions():
        low, high = black - CLEARANCE - start, black + BLACK_WIDTH + CLEARANCE - start
        if low <= 0 < high:
            left = max(left, high)
        elif 0 < low < BODY:
            right = min(right, low)
    return left, right


def white_key_path(index, x=0.0):
    left, right = notches(index)
    data = f"M{x + left:g} 0H{x + right:g}"
    if right < BODY:
        data += f"V{NOTCH_HEIGHT:g}H{x + BODY:g}"
    data += (f"V{HEIGHT - CORNER:g}Q{x + BODY:g} {HEIGHT:g} {x + BODY - CORNER:g} {HEIGHT:g}"
             f"H{x + CORNER:g}Q{x:g} {HEIGHT:g} {x:g} {HEIGHT - CORNER:g}")
    if left > 0:
        data += f"V{NOTCH_HEIGHT:g}H{x + left:g}"
    return data + "Z"
