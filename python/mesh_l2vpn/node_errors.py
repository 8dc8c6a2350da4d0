"""What a node raises: one exception for each result of the middleware, all of them mesh_l2vpn.Error."""
from .errors import Error, OutOfMemory


class NodeError(Error):
    """A call of the middleware failed."""


class NoDestination(NodeError):
    """Nobody receives at the destination, or no longer: its process has ended."""


class QueueFull(NodeError):
    """The destination did not take calls for the whole send timeout."""


class NotOpen(NodeError):
    """The node is closed, or it is a parent process's."""


class Refused(NodeError):
    """The call is above a limit of the node."""


class AddressInUse(NodeError):
    """Another node receives at this address."""


class NodeOutOfMemory(NodeError, OutOfMemory):
    """The middleware found no memory."""


class SystemFailure(NodeError):
    """The operating system failed, for example because no descriptors are left."""


class BadArgument(NodeError, ValueError):
    """A value is out of range."""


class Busy(NodeError):
    """Another thread is receiving on the node."""


class BadConfiguration(NodeError):
    """The address book, the directory, an endpoint or the keys have a fault."""


class Undelivered(NodeError):
    """The node is closed, but not every call is known to have arrived."""


class NothingArrived(NodeError, TimeoutError):
    """Nothing arrived in time."""
