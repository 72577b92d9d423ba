"""The exceptions of the module."""

from __future__ import annotations

from zdkvision._records import Status


class Error(Exception):
    """A call that failed: where, and with which status."""

    status: int  #: a Status wherever there is one for it
    function: str  #: qualified C++ name of the function that failed; empty when it is not known
    file: str  #: its source file
    line: int  #: and line
    message: str  #: what the function has to say beyond the status, as a rule nothing

    def __init__(
        self, text: str, status: int = 0, function: str = "", file: str = "", line: int = 0, message: str = ""
    ) -> None:
        super().__init__(text, status, function, file, line, message)
        try:
            self.status = Status(status)
        except ValueError:
            self.status = status
        self.function = function
        self.file = file
        self.line = line
        self.message = message

    def __str__(self) -> str:
        return str(self.args[0])


class OutOfMemoryError(Error, MemoryError):
    """The platform had no memory, or the size that was asked for cannot exist."""
