"""Builds the wheel of the package karmp: what CMake lays out, and what pip wants to know, in a zip file.

The standard library and the programs of the C++ build are enough; no network is needed.
"""

import base64
import hashlib
import pathlib
import re
import shutil
import subprocess
import sys
import sysconfig
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/wheel"
VERSION = re.search(r"^ *VERSION ([0-9.]+)$", (ROOT / "CMakeLists.txt").read_text("utf-8"), re.MULTILINE)[1]
PYTHON = f"{sys.version_info.major}{sys.version_info.minor}"
INFORMATION = f"karmp-{VERSION}.dist-info"
TAG = f"cp{PYTHON}-cp{PYTHON}-{re.sub('[-.]', '_', sysconfig.get_platform())}"

METADATA = f"""\
Metadata-Version: 2.1
Name: karmp
Version: {VERSION}
Summary: Models of multibody mechanisms: built, edited, checked, loaded and saved
License-File: LICENSE
Requires-Python: =={sys.version_info.major}.{sys.version_info.minor}.*
Requires-Dist: numpy
Description-Content-Type: text/markdown

"""
WHEEL = f"""\
Wheel-Version: 1.0
Generator: karmp_wheel ({VERSION})
Root-Is-Purelib: false
Tag: {TAG}
"""


def run(*command):
    subprocess.run([str(part) for part in command], cwd=ROOT, check=True)


def lay_out():
    """The folder with the package, its libraries in the module."""
    stage = BUILD / "stage"
    shutil.rmtree(stage, ignore_errors=True)
    run("cmake", "--preset", "wheel", f"-DPython3_EXECUTABLE={sys._base_executable}")
    run("cmake", "--build", "--preset", "wheel", "--target", "karmp_python_stubs")
    run("cmake", "--install", BUILD, "--component", "python", "--prefix", stage, "--strip")
    return stage


def record(name, data):
    digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
    return f"{name},sha256={digest},{len(data)}\n"


def information():
    return {
        "METADATA": METADATA.encode() + (ROOT / "docs/python.md").read_bytes(),
        "WHEEL": WHEEL.encode(),
        "LICENSE": (ROOT / "LICENSE").read_bytes(),
    }


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    folder = pathlib.Path(metadata_directory, INFORMATION)
    folder.mkdir()
    for name, data in information().items():
        (folder / name).write_bytes(data)
    return INFORMATION


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    stage = lay_out()
    files = {
        path.relative_to(stage).as_posix(): path.read_bytes()
        for path in sorted(stage.rglob("*"))
        if path.is_file()
    }
    files |= {f"{INFORMATION}/{name}": data for name, data in information().items()}
    listed = "".join(record(name, data) for name, data in files.items())
    files[f"{INFORMATION}/RECORD"] = f"{listed}{INFORMATION}/RECORD,,\n".encode()
    name = f"karmp-{VERSION}-{TAG}.whl"
    with zipfile.ZipFile(pathlib.Path(wheel_directory, name), "w", zipfile.ZIP_DEFLATED) as archive:
        for path, data in files.items():
            # Of one date, so that the same files make the same wheel.
            entry = zipfile.ZipInfo(path)
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, data, zipfile.ZIP_DEFLATED, 9)
    return name


def build_sdist(sdist_directory, config_settings=None):
    raise NotImplementedError("the wheel is built from the checkout, of which the package is a part")
