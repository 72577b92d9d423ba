"""What the tests have in common: small surfaces, and where the project is."""

import pathlib
import sys

import numpy as np
import pytest

import zdkvision as zv

PROJECT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(PROJECT / "python" / "documentation"))


def text_of(value):
    """What a parametrised test is called by: the texts among its parameters."""
    return value if isinstance(value, str) else ""


@pytest.fixture
def surface():
    """4 rows by 5 columns of unit cells and counts of 0.5; cell (r, c) has count 10 r + c, cell (1, 1) is missing."""
    heights = np.add.outer(10 * np.arange(4), np.arange(5)).astype(np.int16)
    heights[1, 1] = zv.NULL_HEIGHT
    return zv.Surface(heights, scale=(1, 1, 0.5), offset=(0, 0, 100))


@pytest.fixture
def whole(surface):
    """The rectangle of the whole surface, and a mask that selects all of it."""
    return zv.Rect2d(0, 0, 5, 4), np.ones((4, 5), np.uint8)
