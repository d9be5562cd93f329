"""The text of a file of load cases."""

from morlen_import.fault import shown
from morlen_import.writer import loads_text, supports_text


def cases_text(model_name, model, cases):
    """A TOML file with one table for each case; its loads are in the grammar of the problem file."""
    lines = [
        f"# Made by morlen-import from {shown(model.source, 200)}.",
        f"model = {_quoted(model_name)}",
        "",
    ]
    for case in cases:
        lines.append(f"[cases.{_quoted(case.name)}]")
        if case.title:
            lines.append(f"title = {_quoted(shown(case.title, 200))}")
        if case.gravity:
            lines.append("gravity = true")
        text = loads_text(case.nodal, case.elements)
        if case.prescribed is not None:
            text += supports_text(case.prescribed, "constraints")
        if text or not case.gravity:
            # Labels come from a foreign file: none may end the text.
            lines.append("text = '''\n" + text.lstrip("\n").replace("'''", '"""') + "'''")
        lines.append("")
    return "\n".join(lines)


def _quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'
