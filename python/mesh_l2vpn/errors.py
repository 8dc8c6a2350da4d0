"""Every exception of the package: one family, so that `except mesh_l2vpn.Error` catches them all."""


class Error(Exception):
    """What the package raises."""


class LibraryMissing(Error, ImportError):
    """A shared library was not found."""


class UnknownMessage(Error, LookupError, AttributeError):
    """There is no message of this name or identifier."""


class FieldError(Error, ValueError):
    """A value does not fit its field. `path` names the field, as "f1.f8"."""

    def __init__(self, path: str, text: str):
        super().__init__(path, text)
        self.path = path
        self.text = text

    def __str__(self) -> str:
        return f"{self.path}: {self.text}" if self.path else self.text


class Rejected(Error, ValueError):
    """Receivers reject these bytes: the first byte at fault, the field's path, what is wrong with it."""

    def __init__(self, message: str, position: int, path: str, text: str):
        super().__init__(message, position, path, text)
        self.message = message
        self.position = position
        self.path = path
        self.text = text

    def __str__(self) -> str:
        place = f"byte {self.position}" + (f", {self.path}" if self.path else "")
        return f"{self.message} rejects {place}: {self.text}"


class BadInput(Error, ValueError):
    """The input has a fault that is no field's: no JSON, no table, a record too large to encode."""


class WrongUse(Error, ValueError):
    """A call that cannot work, as the fixed arrangement of a message that has none."""


class OutOfMemory(Error, MemoryError):
    """The call needs more memory than the limit allows, or than there is."""
