"""The stub tells what is there."""

import ast
import importlib.util
import pathlib
import re
import subprocess
import sys

import pytest

import zdkvision as zv
from conftest import text_of

STUB = pathlib.Path(zv.__file__).with_name("_core.pyi")
needs_mypy = pytest.mark.skipif(importlib.util.find_spec("mypy") is None, reason="mypy is not there")


def signatures_of_stub():
    """The arguments of every function of the stub: for each overload names, and which have a default."""
    def arguments(function):
        plain = [argument.arg for argument in function.args.args]
        defaults = len(plain) - len(function.args.defaults)
        return [(name, index >= defaults) for index, name in enumerate(plain) if name != "self"]

    found = {}
    for node in ast.parse(STUB.read_text()).body:
        if isinstance(node, ast.FunctionDef):
            found.setdefault(node.name, []).append(arguments(node))
        elif isinstance(node, ast.ClassDef):
            for member in node.body:
                properties = [d.id for d in getattr(member, "decorator_list", []) if isinstance(d, ast.Name)]
                if isinstance(member, ast.FunctionDef) and "property" not in properties:
                    found.setdefault(f"{node.name}.{member.name}", []).append(arguments(member))
    return found


def split_arguments(text):
    """Cuts at the commas that stand in no bracket."""
    parts, depth = [""], 0
    for letter in text:
        depth += (letter in "([{<") - (letter in ")]}>")
        if letter == "," and depth == 0:
            parts.append("")
        else:
            parts[-1] += letter
    return [part.strip() for part in parts if part.strip()]


def signatures_of_docstring(text, name):
    """The same, as the extension itself tells them in its docstrings."""
    found = []
    for match in re.finditer(rf"^(?:\d+\. )?{re.escape(name)}\((.*)\) -> .*$", text, re.M):
        if match[1] != "*args, **kwargs":
            parts = [part for part in split_arguments(match[1]) if not re.match(r"self\b|arg0: zdkvision", part)]
            found.append([(part.split(":")[0], " = " in part) for part in parts])
    return found


@pytest.mark.parametrize("name, stub", signatures_of_stub().items(), ids=text_of)
def test_arguments_have_the_names_and_defaults_of_the_stub(name, stub):
    item = zv
    for part in name.split("."):
        item = getattr(item, part)
    found = signatures_of_docstring(item.__doc__, name.split(".")[-1])
    if name == "RefFrame.apply":  # the stub tells tuples from points
        assert len(found) == 2
    else:
        assert found == stub


@needs_mypy
def test_the_stub_and_the_module_have_the_same_names():
    command = [sys.executable, "-m", "mypy.stubtest", "--concise", "zdkvision"]
    result = subprocess.run(command, capture_output=True, text=True)
    expected = (
        "metaclass differs",  # of all classes of the extension
        'stub does not have *args argument "args"',  # of those that cannot be made
        "_records.NamedTuple is not a type",
        "_records.Surface is not present at runtime",  # an import for the checker alone
    )
    lines = [line for line in result.stdout.splitlines() if not any(text in line for text in expected)]
    assert lines == [] and "metaclass differs" in result.stdout, result.stderr


SAMPLE = '''
import numpy as np
import zdkvision as zv

surface = zv.Surface(np.zeros((3, 3), np.int16), scale=(1, 1, 1), offset=(0, 0, 0))
region: zv.ROI = zv.CircleROI((0, 0), 0, 1, frame=surface)
mask = region.mask
assert mask is not None
zv.threshold_height(surface, 0, None, region.bounding_box, mask)
fit = zv.fit_circle(zv.get_points_from_roi(surface, region.bounding_box, mask)[:, :2], 5, zv.CircleType.MZC)
radius: float = fit.min_radius or 0.0
plane = zv.fit_plane(surface, (0, 0, 3, 3), mask)
reveal_type(plane)
reveal_type(zv.fit_sphere([(1, 2, 3)]))
reveal_type(zv.RefFrame().apply((1.0, 2.0)))
'''

MISTAKES = '''
import numpy as np
import zdkvision as zv

zv.fit_circle([(1, 2)], "five")
zv.CircleROI((0, 0), 0)
zv.Surface(np.zeros((3, 3), np.int16)).scales
zv.mask_operation(np.ones((1, 1), np.uint8), np.ones((1, 1), np.uint8), 1)
'''


def check(source, tmp_path):
    sample = tmp_path / "sample.py"
    sample.write_text(source)
    package = pathlib.Path(zv.__file__).parents[1]
    return subprocess.run([sys.executable, "-m", "mypy", "--strict", "--cache-dir", str(tmp_path), str(sample)],
                          capture_output=True, text=True, env={"MYPYPATH": str(package)}).stdout


@needs_mypy
def test_a_typed_program_passes_and_mistakes_are_found(tmp_path):
    output = check(SAMPLE, tmp_path)
    assert "error" not in output, output
    revealed = re.findall(r'Revealed type is "(.*)"', output)
    endings = ["fallback=zdkvision._records.Plane], None]", "fallback=zdkvision._records.SphereFit]",
               "fallback=zdkvision._records.Point2]"]
    assert len(revealed) == 3 and all(map(str.endswith, revealed, endings)), output
    mistakes = [line for line in check(MISTAKES, tmp_path).splitlines() if ": error:" in line]
    assert [int(line.split(":")[1]) for line in mistakes] == [5, 6, 7, 8], mistakes
