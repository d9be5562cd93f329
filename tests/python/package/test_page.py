"""The code of docs/python.md, run from its beginning to its end."""

import re
import shutil

import pytest
from conftest import TOP

import morlen

PAGE = (TOP / "docs" / "python.md").read_text(encoding="utf-8")
# Classes whose objects users get and never make.
WITHOUT_CALLS = ("Cases", "Envelope", "Extremes", "Finding", "Materials", "SolvedCases", "Units")
BLOCK = re.compile(r"(?ms)^```(python|text)\n(.*?)^```$")


def test_code_of_the_page(tmp_path, monkeypatch, capsys):
    for module in ("scipy", "pandas", "meshio", "matplotlib"):
        pytest.importorskip(module)
    monkeypatch.chdir(tmp_path)
    shutil.copy(TOP / "examples" / "portal_frame.dat", "frame.dat")
    for name in ("hall.cases", "hall_frame.dat"):
        shutil.copy(TOP / "examples" / name, name)
    names = {}
    outputs = 0
    printed = ""
    for language, content in BLOCK.findall(PAGE):
        if language == "python":
            line = PAGE[: PAGE.index(content)].count("\n")
            exec(compile("\n" * line + content, "python.md", "exec"), names)
            printed = capsys.readouterr().out
        else:
            outputs += 1
            assert [row.rstrip() for row in printed.splitlines()] == [
                row.rstrip() for row in content.splitlines()
            ]
    assert outputs >= 8
    for name in ("frame.txt", "frame.morlen.res", "frame.vtu", "frame.html", "study.png", "moments.png"):
        assert (tmp_path / name).stat().st_size > 500


def test_the_page_names_what_there_is():
    for name in morlen.__all__:
        if not name.endswith("Results") and name not in ("Elements", "Material", "Nodes"):
            assert re.search(rf"\b{name}\b", PAGE) or name in WITHOUT_CALLS, name
    for method in vars(morlen.Builder):
        if not method.startswith("_"):
            assert re.search(rf"\b{method}\(", PAGE), method
    for line in (
        "displacements",
        "reactions",
        "residual",
        "error_estimate",
        "to_pandas",
        "to_meshio",
        "plot",
    ):
        assert f"r.{line}" in PAGE or f"`{line}" in PAGE, line
    for key in (n for n in vars(morlen.Material) if not n.startswith("_") and n not in ("number",)):
        assert f"`{key}" in PAGE, key
