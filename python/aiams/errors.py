"""The exceptions of the package. Their texts are sentences, with the file's name, as the programs say them."""


class Error(Exception):
    """Any failure that the package reports."""


class ReadError(Error, OSError):
    """A file, or what is asked of it, can't be read."""


class WriteError(Error, OSError):
    """A file can't be written. What was at its place is still there."""


class ClosedError(Error, ValueError):
    """A run is used that was closed, or that was opened in another process."""
