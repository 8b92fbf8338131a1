"""Where the controls lie, in the editor's design units, from the one table that says so: editor/ControlTables.cpp."""
import pathlib
import re

HALF = 512.0             # from a control of the pitch section to its fellow of the timbre section
TABLE = pathlib.Path(__file__).parents[2] / "editor" / "ControlTables.cpp"
ROW = re.compile(r"{\s*c\.(\w+),\s*{\s*([\d.]+)f,\s*([\d.]+)f,\s*([\d.]+)f,\s*([\d.]+)f\s*}")
PLACES = {name: tuple(map(float, numbers)) for name, *numbers in ROW.findall(TABLE.read_text())}


def place(control):
    """(x, y, width, height) of a control of the left half. The right half is painted as the left one, moved: a fellow
    that lies elsewhere would lie beside its picture."""
    x, *rest = PLACES[control]
    fellow = re.sub("^(pitch|main)", "timbre", control)
    if fellow != control and PLACES[fellow] != (x + HALF, *rest):
        raise SystemExit(f"{TABLE.name}: {fellow} does not lie {HALF:g} units right of {control}")
    return PLACES[control]


def whole_place(control):
    """The same on the pixels on which the control lies where a unit is one."""
    return tuple(float(round(number)) for number in place(control))
