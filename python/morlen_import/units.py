"""Units of length and force, and the system of a problem file that they make."""

LENGTHS = {"mm": "0.001", "cm": "0.01", "m": "1", "km": "1000", "in": "0.0254", "ft": "0.3048"}
FORCES = {"N": "1", "kN": "1000", "MN": "1000000", "lbf": "4.4482216152605", "kip": "4448.2216152605"}
_PRESSURES = {
    "N-mm": "MPa",
    "N-m": "Pa",
    "kN-m": "kPa",
    "MN-m": "MPa",
    "kN-mm": "GPa",
    "lbf-in": "psi",
    "kip-in": "ksi",
}


def fault_of(length, force):
    """What is wrong with a pair of units; empty when nothing is."""
    for name, known, quantity in ((length, LENGTHS, "length"), (force, FORCES, "force")):
        if name not in known:
            return f"'{name}' is no unit of {quantity}: use one of {', '.join(known)}"
    return ""


def unit_lines(length, force):
    """The lines of a problem file that name one system for everything."""
    name = f"{force}-{length}"
    pressure = _PRESSURES.get(name, f"{force}/{length}2")
    return [
        "units_names",
        "# system, force, length, pressure, size of the force (N), size of the length (m)",
        f"  {name}  {force} {length} {pressure}  {FORCES[force]} {LENGTHS[length]}",
        "end units_names",
        f"units_mesh {length}",
        f"units_mat_and_load {name}",
        f"units_res {name}",
    ]
