"""Every exported symbol has a counterpart or a reason to have none, and every counterpart is documented and typed."""

import enum
import inspect
import re

import numpy as np
import pytest

import comments
import names
import zdkvision as zv
from conftest import PROJECT, text_of

HEADERS = sorted((PROJECT / "include").rglob("*.h"))


def exported_names():
    """The qualified names of all exported symbols, without their arguments."""
    found = set()
    for listed in sorted((PROJECT / "tests" / "exports").glob("*.symbols")):
        for line in listed.read_text().splitlines():
            if re.match(r"(typeinfo|vtable)", line):
                found.add(line)
                continue
            name = re.split(r"\((?!anonymous)", line)[0]
            # The result of an instantiated template stands ahead of its name.
            found.add(re.search(r"(Zvl::operator.*|(?:\w+::)*(?:operator\S+|~?\w+)(?:<[^<>]*>)?)$", name)[0])
    return found


def attribute(dotted):
    """What is called so below the module; of what objects alone have, its type."""
    found = zv
    for part in dotted.split("."):
        found = getattr(found, part) if hasattr(found, part) else found.__annotations__[part]
    return found


def public_names():
    return sorted(name for name in vars(zv) if not name.startswith("_") and not inspect.ismodule(getattr(zv, name)))


def public_members():
    """All functions and classes, and what the classes themselves define."""
    for name in public_names():
        item = getattr(zv, name)
        yield name, item
        if inspect.isclass(item) and item.__module__ == "zdkvision":
            for member, value in vars(item).items():
                if not member.startswith("_"):
                    yield f"{name}.{member}", value


def test_the_lists_of_symbols_are_read():
    found = exported_names()
    assert {"Zvl::FitCircle", "Zvl::ROI::GetMask", "Zvl::RefFrame::operator*", "qArray2_Construct",
            "Zvl::GetPointsFromROI<short>", "Zo::Exception::what", "xxq16s_type"} <= found


@pytest.mark.parametrize("name", sorted(exported_names()))
def test_every_symbol_is_wrapped_or_left_out_for_a_reason(name):
    if names.reason_to_leave_out(name) is None:
        assert attribute(names.python_name(name)) is not None


def test_every_reason_is_still_needed():
    found = exported_names()
    for pattern in names.LEFT_OUT:
        assert any(re.fullmatch(pattern, name) for name in found), pattern


def test_every_special_name_is_still_there():
    documented = {name for name, _ in comments.comments_of(HEADERS)}
    known = {re.sub(r"<.*>$", "", name) for name in exported_names()} | exported_names() | documented
    assert {name for name in names._SPECIAL if name not in known} == set()


def test_everything_public_is_documented():
    undocumented = [name for name, item in public_members()
                    if not isinstance(item, (int, float)) and not (getattr(item, "__doc__", "") or "").strip()]
    assert undocumented == []


def first_sentence(comment):
    return " ".join(comment.split()).split(". ")[0]


OWN_TEXT = {  # what says something else than the headers, and why
    "Error": "defined in Python, with its parts",
    "RefFrame.mul": "a formula",
    "SurfaceMessage": "the headers tell of it in the comment on the file",
    "ArithmeticsPixelOperation.set_scale": "its field has another name",
    "ArithmeticsPixelOperation.set_offsets": "its fields have other names",
    "empty": "it makes what no single call of the platform makes",
}


def documented_names():
    """The comments of the headers by the name in Python whose docstring holds one of them."""
    found = {}
    for name, comment in comments.comments_of(HEADERS):
        if not name.startswith(comments._WRAPPED) or names.reason_to_leave_out(name):
            continue
        python = names.python_name(name)
        owner, _, member = python.partition(".")
        is_constructor = len(set(name.split("::")[1:])) < len(name.split("::")[1:])  # those stand in `__init__`
        if is_constructor or member.startswith("__") or python in OWN_TEXT:
            continue
        if owner in public_names() and (not member or member in vars(attribute(owner))):
            found.setdefault(python, []).append(comment)
    return found


@pytest.mark.parametrize("name, texts", documented_names().items(), ids=text_of)
def test_docstrings_are_made_from_the_headers(name, texts):
    docstring = " ".join(attribute(name).__doc__.split())
    assert any(first_sentence(text) in docstring for text in texts)


def test_most_of_what_is_public_has_its_text_from_the_headers():
    functions = [name for name in public_names() if inspect.isroutine(getattr(zv, name))]
    assert len(functions) > 50
    assert set(functions) - set(documented_names()) == {"array", "empty"} | {
        # Forms of templates have the text of the template.
        "get_cells_from_roi", "get_counts_from_roi", "get_heights_from_roi", "get_intensities_from_roi",
        "threshold_percentile_distances", "threshold_percentile_intensities"}
    assert len(documented_names()) > 120


def test_texts_are_in_the_terms_of_python():
    text = zv.fit_line_iterative.__doc__
    assert "`outlier_percent`" in text and "Status.BAD_PARAMETER" in text and "fit_line" in text
    for name, item in public_members():
        assert not re.search(r"@param|@p |@throws|@return|#STATUS|Zo::Exception", item.__doc__ or ""), name


def test_comments_are_read_with_their_names():
    reader = comments.Reader()
    reader.read("""
namespace A
{
/** A class.
 *  Of two lines. */
class B
{
public:
    /** Adds @p otherOne.
     *  @param otherOne what
     *  @throws Zo::Exception #STATUS_OK */
    int Add(int otherOne = 3) const;
    int Add(double otherOne);
    int field = 0; ///< a field
    int Get() const { return field; } ///< the field
};

/** @name Group
 *  In common.
 *  @{ */
/** First. */
void First();
void Second();
/** @} */
void Third();
}
""")
    assert [name for name, _ in reader.entries] == [
        "A::B", "A::B::Add", "A::B::Add", "A::B::field", "A::B::Get", "A::First", "A::Second"]
    assert reader.entries[0][1] == "A class.\nOf two lines."
    assert comments.translate(reader.entries[1][1]) == (
        "Adds `other_one`.\n- `other_one`: what\nRaises Error Status.OK")
    assert reader.entries[5][1] == "First.\n\nIn common." and reader.entries[6][1] == "In common."


@pytest.mark.parametrize("cpp, python", [
    ("FitCircleByRLTS", "fit_circle_by_rlts"), ("Rect2dTo3d", "rect2d_to_3d"), ("RLEToMask", "rle_to_mask"),
    ("GetPointsFromROI", "get_points_from_roi"), ("maxGapX", "max_gap_x"), ("PadArray2", "pad_array2"),
])
def test_names_in_snake_case(cpp, python):
    assert names.snake_case(cpp) == python


def enumerators():
    """Enumerators of the headers, by enumeration."""
    text = "\n".join(header.read_text() for header in HEADERS)
    for match in re.finditer(r"enum (?:class )?(\w+) : [\w:]+\s*\{(.*?)\}", text, re.S):
        yield match[1], dict(re.findall(r"(\w+) = (-?\d+)", match[2]))
    yield "Status", dict(re.findall(r"qStatus (STATUS_\w+) = (-?\d+);", text))


@pytest.mark.parametrize("name, values", enumerators())
def test_enumerations_have_the_values_of_the_headers(name, values):
    cls = getattr(zv, name)
    assert issubclass(cls, enum.IntEnum)
    assert sorted(map(int, values.values())) == sorted(member.value for member in cls)
    for cpp, value in values.items():
        member = cls(int(value)).name
        prefixes = ("STATUS_", name.removesuffix("Type"), name, "CIRCLE_", "CV_INPAINT_", "")
        assert any(cpp.startswith(prefix) and member == names.snake_case(cpp.removeprefix(prefix)).upper()
                   for prefix in prefixes), (cpp, member)


def test_nulls_are_those_of_the_library():
    assert zv.NULL == np.finfo(np.float64).min and zv.NULL_HEIGHT == np.iinfo(np.int16).min
    assert zv.anchor_polygon(zv.Anchor(), [(zv.NULL, 0)])[0, 0] == zv.NULL
