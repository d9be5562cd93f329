"""The map: a TOML file that says what becomes of every group of a mesh."""

import math
import re
import tomllib
from dataclasses import dataclass, field

from morlen_import import units
from morlen_import.fault import Fault, Faults, did_you_mean, shown
from morlen_import.writer import number_text

MATERIAL_KEYS = (
    "E",
    "Ex",
    "Ey",
    "nu",
    "nuXY",
    "nuYX",
    "G",
    "Gxy",
    "Gxz",
    "Gyz",
    "A",
    "Iy",
    "Iz",
    "J",
    "Weight",
    "t",
    "widthY",
    "widthZ",
    "Euler1",
    "Euler2",
    "Euler3",
)
EULER = ("Euler1", "Euler2", "Euler3")
LOAD_KINDS = ("pressure", "traction", "total", "each")
# Settings with the kinds of values that they take.
SETTINGS = {
    "NumOfDivisions": "integer",
    "Solver": "text",
    "GravityDirection": "vector",
    "DoSmoothing": "number",
    "CoplanarityAngle": "number",
    "MainStresses": "switch",
    "MainAndLocalStresses": "switch",
    "ConvertTo6Nodes": "switch",
    "ShellFormulation": "text",
}
SECTIONS = ("units", "materials", "supports", "hinges", "loads", "settings")


@dataclass
class Rule:
    """One table of the map: its key, its groups and its values."""

    key: str
    name: str
    groups: list
    values: dict = field(default_factory=dict)


@dataclass
class GroupMap:
    """All rules of a map."""

    path: str
    length: str = ""
    force: str = ""
    materials: list = field(default_factory=list)
    supports: list = field(default_factory=list)
    hinges: list = field(default_factory=list)
    loads: list = field(default_factory=list)
    settings: list = field(default_factory=list)


def read_map(path, data):
    """The map in the contents of a file; all faults of its contents at once."""
    return _Reader(path).read(_parse(path, data))


def _parse(path, data):
    try:
        text = data.decode("utf-8-sig")
    except UnicodeDecodeError as error:
        line = data.count(b"\n", 0, error.start) + 1
        raise Fault(path, "the text is not UTF-8", line=line) from None
    try:
        return tomllib.loads(text)
    except tomllib.TOMLDecodeError as error:
        message = str(error)
        place = re.search(r"\(at line (\d+), column \d+\)\s*\Z", message)
        line = int(place.group(1)) if place else text.count("\n") + 1
        message = re.sub(r"\s*\(at (line \d+, column \d+|end of document)\)\s*\Z", "", message)
        at_end = "" if place else " at the end of the file"
        raise Fault(path, f"no TOML: {shown(message)}{at_end}", line=line) from None
    except RecursionError:
        raise Fault(path, "no TOML: nested too deeply", line=1) from None


def key_text(*parts):
    """A key of the map as it is written in TOML."""
    return ".".join(p if re.fullmatch(r"[A-Za-z0-9_-]+", p) else f'"{shown(p)}"' for p in parts)


def _is_number(value):
    return isinstance(value, (int, float)) and not isinstance(value, bool) and math.isfinite(value)


class _Reader:
    def __init__(self, path):
        self._path = path
        self._faults = []
        self._map = GroupMap(str(path))

    def read(self, table):
        for key in table:
            if key not in SECTIONS:
                self._fault(key_text(key), f"unknown key{did_you_mean(key, SECTIONS)}")
        self._read_units(table.get("units"))
        for section, read in (
            ("materials", self._material),
            ("supports", self._support),
            ("hinges", self._hinge),
            ("loads", self._load),
        ):
            for name, content in self._table(table.get(section, {}), section).items():
                self._read_rule(section, name, content, read)
        self._read_settings(self._table(table.get("settings", {}), "settings"))
        if not self._map.materials and "materials" not in table:
            self._fault("materials", "no material is given: elements need one")
        self._check_weight()
        if self._faults:
            raise Faults(self._faults)
        return self._map

    def _fault(self, key, text):
        self._faults.append(Fault(self._path, text, key=key))

    def _table(self, value, key):
        if isinstance(value, dict):
            return value
        self._fault(key, "a table is needed")
        return {}

    def _read_units(self, value):
        if value is None:
            self._fault("units", 'the units are missing, as in: units = { length = "mm", force = "N" }')
            return
        content = self._table(value, "units")
        for key in content:
            if key not in ("length", "force"):
                self._fault(key_text("units", key), f"unknown key{did_you_mean(key, ('length', 'force'))}")
        for key, known in (("length", units.LENGTHS), ("force", units.FORCES)):
            unit = content.get(key)
            if unit is None:
                self._fault(f"units.{key}", "this unit is missing")
            elif not isinstance(unit, str) or unit not in known:
                self._fault(
                    f"units.{key}", f"'{shown(unit)}' is no unit of {key}: use one of {', '.join(known)}"
                )
            else:
                setattr(self._map, key, unit)

    def _read_rule(self, section, name, content, read):
        key = key_text(section, name)
        if not isinstance(content, dict):
            self._fault(key, f"a table is needed, as in: [{section}.name]")
            return
        groups = content.get("groups")
        if not isinstance(groups, list) or not groups or not all(isinstance(g, str) and g for g in groups):
            self._fault(f"{key}.groups", 'a list of names is needed, as in: groups = ["top"]')
            groups = []
        rule = Rule(key, name, list(dict.fromkeys(groups)))
        read(rule, {k: v for k, v in content.items() if k != "groups"})
        getattr(self._map, section).append(rule)

    def _unknown(self, rule, content, known):
        for key in content:
            if key not in known:
                self._fault(
                    f"{rule.key}.{key_text(key)}", f"unknown key{did_you_mean(key, (*known, 'groups'))}"
                )

    def _number(self, key, value):
        if _is_number(value):
            return value
        self._fault(key, f"a finite number is needed, not {shown(repr(value))}")
        return None

    def _numbers(self, key, value, counts):
        if isinstance(value, list) and len(value) in counts and all(map(_is_number, value)):
            return value
        wanted = " or ".join(map(str, counts))
        self._fault(key, f"a list of {wanted} finite numbers is needed, not {shown(repr(value))}")
        return None

    def _material(self, rule, content):
        self._unknown(rule, content, MATERIAL_KEYS)
        for key in content:
            if key in MATERIAL_KEYS:
                rule.values[key] = self._number(f"{rule.key}.{key}", content[key])
        if not rule.values:
            self._fault(rule.key, "the material has no values")

    def _support(self, rule, content):
        self._unknown(rule, content, ("flags", "values", *EULER))
        flags = content.get("flags")
        if not isinstance(flags, str) or not re.fullmatch(r"[012]{3}|[012]{6}", flags):
            self._fault(f"{rule.key}.flags", 'three or six digits 0, 1 or 2 are needed, as in: flags = "111"')
            return
        rule.values["flags"] = flags
        if "values" in content:
            rule.values["values"] = self._numbers(f"{rule.key}.values", content["values"], (len(flags),))
        elif "2" in flags:
            self._fault(f"{rule.key}.values", "flag 2 needs the stiffness of its spring")
        for flag, value, place in zip(flags, rule.values.get("values") or [], range(6)):
            if flag == "0" and value != 0:
                self._fault(
                    f"{rule.key}.values", f"value {place + 1} is of a component that flag 0 leaves free"
                )
        for key in EULER:
            if key in content:
                rule.values[key] = self._number(f"{rule.key}.{key}", content[key])

    def _hinge(self, rule, content):
        self._unknown(rule, content, ("code",))
        code = content.get("code")
        if code not in ("00", "01", "10", "11"):
            self._fault(
                f"{rule.key}.code",
                'the code is "00", "01", "10" or "11": a digit for each end, 0 for a hinge',
            )
        rule.values["code"] = code

    def _load(self, rule, content):
        self._unknown(rule, content, LOAD_KINDS)
        kinds = [kind for kind in LOAD_KINDS if kind in content]
        if len(kinds) != 1:
            self._fault(
                rule.key, f"one of {', '.join(LOAD_KINDS)} is needed" + (", not several" if kinds else "")
            )
            return
        kind = kinds[0]
        key = f"{rule.key}.{kind}"
        rule.values["kind"] = kind
        if kind == "pressure":
            rule.values["value"] = self._number(key, content[kind])
        else:
            rule.values["value"] = self._numbers(key, content[kind], (3,) if kind == "traction" else (3, 6))

    def _read_settings(self, content):
        for name, value in content.items():
            key = key_text("settings", name)
            if name not in SETTINGS:
                self._fault(key, f"unknown key{did_you_mean(name, SETTINGS)}")
                continue
            text = self._setting_text(key, SETTINGS[name], value)
            if text is not None:
                self._map.settings.append((name, text))

    def _setting_text(self, key, kind, value):
        if kind == "switch":
            if isinstance(value, bool):
                return "1" if value else "0"
            self._fault(key, "true or false is needed")
        elif kind == "integer":
            if isinstance(value, int) and not isinstance(value, bool):
                return str(value)
            self._fault(key, "a whole number is needed")
        elif kind == "number":
            return None if self._number(key, value) is None else number_text(value)
        elif kind == "vector":
            numbers = self._numbers(key, value, (3,))
            if numbers and not any(numbers):
                self._fault(key, "a direction is not 0 0 0")
            return " ".join(map(number_text, numbers)) if numbers else None
        elif isinstance(value, str) and re.fullmatch(r"[A-Za-z0-9.+\- ]+", value):
            return value
        else:
            self._fault(key, "a text of one line is needed")
        return None

    def _check_weight(self):
        if any(name == "GravityDirection" for name, _ in self._map.settings):
            return
        for rule in self._map.materials:
            if rule.values.get("Weight"):
                self._fault(
                    f"{rule.key}.Weight",
                    "a weight needs its direction, as in [settings]:" " GravityDirection = [0, 0, -1]",
                )
