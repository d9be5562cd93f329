"""Builds the wheel of the Python package, for `pip install .`; needs nothing from a network.

The package is built by CMake with the Python that runs this. An existing build folder can be given:
pip install . --config-settings build=FOLDER
"""

import base64
import hashlib
import os
import re
import subprocess
import sys
import sysconfig
import tempfile
import zipfile
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]


def _version():
    text = (TOP / "CMakeLists.txt").read_text(encoding="utf-8")
    return re.search(r"project\(morlen VERSION (\S+)", text).group(1)


def _tag():
    python = f"cp{sys.version_info.major}{sys.version_info.minor}"
    platform = re.sub(r"[^a-z0-9]", "_", sysconfig.get_platform().lower())
    return f"{python}-{python}-{platform}"


def _metadata():
    return (
        "Metadata-Version: 2.1\nName: morlen\n"
        f"Version: {_version()}\n"
        "Summary: Static linear analysis of structures by finite elements\n"
        "Requires-Python: >=3.11\nRequires-Dist: numpy\n"
    )


def _build(folder):
    """Configures and builds the package in a folder."""
    subprocess.run(
        [
            "cmake", "-S", str(TOP), "-B", str(folder), "-DCMAKE_BUILD_TYPE=Release",
            "-DMORLEN_TESTS=OFF", "-DMORLEN_PYTHON=ON", "-DMORLEN_MPI=OFF",
            f"-DMORLEN_PYTHON_EXECUTABLE={sys.executable}",
        ],
        check=True,
    )  # fmt: skip
    jobs = str(len(os.sched_getaffinity(0)))
    subprocess.run(["cmake", "--build", str(folder), "--target", "morlen_python", "-j", jobs], check=True)


def _record(name, content):
    digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
    return f"{name},sha256={digest},{len(content)}\n"


def _info():
    """The folder with the facts of the wheel, and its files."""
    head = f"Wheel-Version: 1.0\nGenerator: morlen\nRoot-Is-Purelib: false\nTag: {_tag()}\n"
    return f"morlen-{_version()}.dist-info", {"METADATA": _metadata(), "WHEEL": head}


def _write(wheel, package):
    info, facts = _info()
    suffix = sysconfig.get_config_var("EXT_SUFFIX")
    files = {
        f"morlen/{path.name}": path.read_bytes()
        for path in sorted(package.iterdir())
        if path.suffix in (".py", ".pyi", ".typed") or path.name == f"_core{suffix}"
    }
    if f"morlen/_core{suffix}" not in files:
        raise SystemExit(f"no package for this Python in {package.parents[1]}")
    files |= {f"{info}/{name}": text.encode() for name, text in facts.items()}
    record = "".join(_record(name, content) for name, content in files.items())
    files[f"{info}/RECORD"] = (record + f"{info}/RECORD,,\n").encode()
    with zipfile.ZipFile(wheel, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, content in files.items():
            entry = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))  # the same files, the same wheel
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = (0o755 if name.endswith(suffix) else 0o644) << 16
            archive.writestr(entry, content)


def get_requires_for_build_wheel(config_settings=None):
    return []


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    info, facts = _info()
    folder = Path(metadata_directory) / info
    folder.mkdir()
    for name, text in facts.items():
        (folder / name).write_text(text, encoding="utf-8")
    return info


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    name = f"morlen-{_version()}-{_tag()}.whl"
    given = (config_settings or {}).get("build")
    with tempfile.TemporaryDirectory() as temporary:
        folder = Path(given).resolve() if given else Path(temporary)
        if not given:
            _build(folder)
        _write(Path(wheel_directory) / name, folder / "python" / "morlen")
    return name
