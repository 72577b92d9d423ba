#!/usr/bin/env python3
"""Turns the comments of the public C++ headers into the docstrings of the Python module.

    comments.py OUTPUT HEADER...

Writes a C++ table of pairs, the qualified C++ name and the text in Python's terms. Overloads follow each other under
the same name, in the order of the headers. The headers are declarations and short inline bodies, formatted by
clang-format: a brace or a semicolon ends a declaration, and the comment ahead of it is its own.
"""

import pathlib
import re
import sys

import names

_SCOPE = re.compile(r"(namespace|struct|class|enum(?: class)?)\s+(?:\w+_EXPORT\s+)?(\w+)[^;]*$")
_WRAPPED = ("Zvl::", "Zo::Exception", "ZvSurfaceMsg", "qThreadPool", "qPlane3d64f")
_TYPES = {
    "q8u": "uint8", "q16u": "uint16", "q16s": "int16", "q32s": "int32", "q64s": "int64", "q64f": "float64",
    "qBool": "bool", "qArray2": "two-dimensional array", "qArray1": "one-dimensional array", "qArrayList": "array",
    "qPoint64f": "point", "qPoint3d64f": "point", "qPoint32f": "float32", "nullptr": "None",
}


class Reader:
    """Collects the documented names of one header."""

    def __init__(self):
        self.entries = []  # (qualified name, comment)
        self.scopes = []  # names, one per open brace; None for a brace that opens no scope
        self.pending = None  # the comment ahead of a declaration
        self.group = ""  # the comment that a group of functions has in common
        self.body = None  # the function whose body is open
        self.last = ("", "")

    def read(self, text):
        for kind, piece in _pieces(text):
            if kind == "comment":
                self._comment(piece)
            elif kind == "end of group":
                self.group = ""
            elif kind == "member":
                declaration, comment = piece
                name = _declared_name(declaration)
                if declaration.endswith("}"):  # behind the body of a function
                    name = self.body
                    self._declaration("}")
                self._add(name, comment)
            else:
                self._declaration(piece)

    def _comment(self, comment):
        if "@file" in comment:
            self.pending = None
        elif "@name" in comment:
            self.group = re.sub(r"@name.*\n?|@\{", "", comment).strip()
            self.pending = None
        else:
            self.pending = comment

    def _declaration(self, text):
        scope = _SCOPE.search(text)
        if text == "}":
            self.scopes.pop()
            self.body = None
        elif text.endswith("{") and scope and "(" not in text:
            if scope[1] != "namespace":
                self._add(scope[2], self.pending)
            self.scopes.append(scope[2])
        else:
            name = _declared_name(text)
            if name:
                self._add(name, self.pending)
            if text.endswith("{"):
                self.scopes.append(None)
                self.body = name
        self.pending = None

    def _add(self, name, comment):
        if name is None or None in self.scopes:
            return
        qualified = "::".join(self.scopes + [name])
        if comment is None and self.last[0] == qualified:
            comment = self.last[1]  # an overload right below the one that is described
        if comment is None and not self.group:
            return
        self.last = (qualified, comment)
        self.entries.append((qualified, "\n\n".join(part for part in (comment, self.group) if part)))


def _pieces(text):
    """Cuts a header into comments, braces and declarations."""
    text = re.sub(r"^#.*(\\\n.*)*$", "", text, flags=re.M)
    text = re.sub(r"= \{[^{}]*\};", "= value;", text)  # an initialiser opens no scope
    pattern = re.compile(
        r"/\*\*(?P<comment>.*?)\*/"
        r"|//(?!/<)[^\n]*"
        r"|(?P<code>[^;{}/]*[;{}])(?:[ \t]*///<(?P<member>[^\n]*))?"
        r"|(?P<other>[^;{}]+?(?=/\*\*|//))", re.S)
    ahead = ""
    for match in pattern.finditer(text):
        if match["comment"] is not None:
            comment = "\n".join(re.sub(r"^\s*\* {0,2}", "", line) for line in match["comment"].split("\n")).strip()
            yield ("end of group", "") if comment == "@}" else ("comment", comment)
        elif match["other"] is not None:
            ahead += match["other"]
        elif match["code"] is not None:
            code = " ".join((ahead + match["code"]).split())
            ahead = ""
            if match["member"]:
                yield "member", (code, match["member"].strip())
            elif code.endswith("}"):
                yield "declaration", "}"
            else:
                yield "declaration", code


def _declared_name(text):
    """The name that a declaration declares: ahead of the first parenthesis, or of its value."""
    text = re.sub(r"\btemplate <[^>]*>|__attribute__\(\(.*?\)\)", "", text)
    text = re.sub(r"^(public|protected|private):", "", text.strip()).strip()
    if text.startswith(("using", "extern", "static_assert", "friend")):
        return None
    head = re.split(r"[({=;]", text)[0].strip() if "operator" not in text else text
    found = re.search(r"(operator[^\s(]+|[~\w]+)(?:<[^<>]*>)?\s*(?:\(|$)", head)
    return found[1] if found else None


def translate(comment):
    """A comment in Python's terms: names, types and headings."""
    text = re.sub(r"@tparam .*?(?=\n@|\n\n|\Z)", "", comment, flags=re.S)
    text = re.sub(r"@param (alloc|allocator)\b.*?(?=\n\s*@|\n\n|\Z)", "", text, flags=re.S)
    text = re.sub(r"@code\n(.*?)@endcode", r"\1", text, flags=re.S)
    text = re.sub(r"@\{|@\}", "", text)
    text = re.sub(r"@p (\w+)", lambda match: f"`{names.snake_case(match[1])}`", text)
    text = re.sub(r"@param ([\w,]+)", lambda match: f"- `{names.snake_case(match[1])}`:", text)
    text = re.sub(r"@return\b", "Returns", text)
    text = re.sub(r"@throws (\S+)", r"Raises \1", text)
    text = re.sub(r"#(STATUS_\w+)|\b(?<!\w)(STATUS_[A-Z_]+)",
                  lambda match: "Status." + (match[1] or match[2]).removeprefix("STATUS_"), text)
    text = re.sub(r"\bZo::Exception\b", "Error", text)
    text = re.sub(r"\bstd::bad_alloc\b", "MemoryError", text)
    text = re.sub(r"\bcv::Exception\b", "ValueError", text)
    text = re.sub(r"(?<![\w\"])(?:#|::)?(\w+(?:::\w+)*)\(\)", _call, text)
    text = re.sub(r"[#]?\b(" + "|".join(_TYPES) + r")\b", lambda match: _TYPES[match[1]], text)
    text = re.sub(r"\b([Aa]) (?=array|int)", r"\1n ", text).replace("array of point", "array of points")
    text = re.sub(r"#(\w+)", r"\1", text)
    text = re.sub(r"(?<![\w:\"])::(\w+)", r"\1", text)
    text = re.sub(r"\bZvl::(?=GetNull)", "", text)
    return re.sub(r"\n{3,}", "\n\n", text).strip()


def _call(match):
    """`Class::Method()` and `Function()` as they are called in Python; a name that is not ours stays."""
    name = match[1]
    qualified = name if name.startswith("Zvl::") else f"Zvl::{name}"
    if names.reason_to_leave_out(qualified) or not re.match(r"[A-Z]", name.removeprefix("Zvl::")):
        return match[0]
    return f"`{names.python_name(qualified)}`"


def comments_of(headers):
    entries = []
    for header in headers:
        reader = Reader()
        reader.read(pathlib.Path(header).read_text(encoding="utf-8"))
        entries += [(name, translate(comment)) for name, comment in reader.entries]
    return entries


def main(output, headers):
    lines = []
    for name, text in comments_of(headers):
        if not name.startswith(_WRAPPED) or names.reason_to_leave_out(name):
            continue
        literal = "\\n\"\n    \"".join(text.replace("\\", "\\\\").replace('"', '\\"').split("\n"))
        lines.append(f'{{"{name}",\n    "{literal}"}},\n')
    pathlib.Path(output).write_text("".join(lines), encoding="utf-8")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
