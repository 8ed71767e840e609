"""Readers, and what a card answers."""
from __future__ import annotations

import ctypes
import enum
import pathlib
import warnings
from dataclasses import dataclass
from types import TracebackType
from typing import Callable, Dict, List, Optional, Set, Type, Union

from . import library
from .conversions import to_hex, to_octets
from .errors import DataError, ReaderError
from .library import area, lock, native


class ReaderKind(enum.IntEnum):
    TY_USB = 1
    TY_COM = 2
    PCSC = 3
    WD = 4
    D8 = 5
    FM8201 = 6
    S5009 = 7
    S5009_ATS = 8
    TCP = 10
    ICR = 11
    BSIT = 12


_KEEPS_STATUS_WORD = (ReaderKind.WD, ReaderKind.S5009, ReaderKind.S5009_ATS)
_REPLIES_DATA = (ReaderKind.TY_USB, ReaderKind.TY_COM)


def has_status_word(kind: int) -> bool:
    """True for the kinds whose answers end in a status word."""
    return kind not in (ReaderKind.FM8201, ReaderKind.TCP, ReaderKind.ICR)


def longest_command(kind: int) -> int:
    """The most octets of a command to a reader of this kind."""
    if kind in (ReaderKind.D8, ReaderKind.WD):
        return 255
    return 133 if kind in (ReaderKind.S5009, ReaderKind.S5009_ATS) else 4096


def most_data(kind: int) -> int:
    """The most octets of data in an answer, without its status word."""
    if kind in (ReaderKind.S5009, ReaderKind.S5009_ATS):
        return 126
    return 256 if kind in _REPLIES_DATA else 254


@dataclass(frozen=True)
class ReaderInfo:
    kind: int
    port: Optional[int]
    name: str


@dataclass(frozen=True)
class Response:
    """A card's answer. data is hexadecimal text; status_word is four digits, empty if it is not known
    or the kind has none. ok is true if the exchange ended in 9000 or, for a kind without status words,
    succeeded. Otherwise status_word is the answer's first two octets: the beginning of the data, if
    there is any."""
    data: str
    status_word: str
    ok: bool

    @property
    def octets(self) -> bytes:
        return to_octets(self.data)

    @staticmethod
    def read(kind: int, result: int, text: str) -> Optional["Response"]:
        """Splits the text from SendCommand by the rules of the kind; none if there was no answer."""
        if not has_status_word(kind):
            return Response(text, "", True) if result else None
        if not result:
            # This answer does not end in 9000: if it begins so, it must not look like success.
            return Response("", "" if text == "9000" else text, False) if text else None
        # For the kinds 1 and 2 all text is data; the others give 9000 if there is no data.
        ends = (text.endswith("9000") if kind in _KEEPS_STATUS_WORD
                else kind not in _REPLIES_DATA and text == "9000")
        return Response(text[:-4] if ends else text, "9000", True)


class Reader:
    """One of the sixteen readers that a process can have open. Use it in a with statement, or close it:
    a forgotten reader stays open."""

    _taken: Set[int] = set()

    def __init__(self, kind: ReaderKind, what: str, opening: Callable[[], int]) -> None:
        """Called by open and open_port."""
        self.kind = ReaderKind(kind)
        self._number: Optional[int] = None
        with lock:
            free = [number for number in range(16) if number not in Reader._taken]
            if not free:
                raise ReaderError("sixteen readers are open")
            native.SetReader(free[0])
            if not opening():
                raise ReaderError(f"{what} doesn't open")
            self._number = free[0]
            Reader._taken.add(free[0])

    @staticmethod
    def list(kind: ReaderKind, ports: int = 0) -> "List[ReaderInfo]":
        """The readers of one kind. ports is how many to list if the kind cannot find its ports."""
        if not 0 <= ports <= 256:
            raise DataError("a list has 0 to 256 ports")
        records = (library.ReaderRecord * max(ports + 1, 64))()
        with lock:
            count = native.GetReaderList(kind, records, ports, len(records))
        return [ReaderInfo(each.kind, each.port if each.has_port else None,
                           library.decode_name(each.name)) for each in records[:count]]

    @staticmethod
    def open(kind: ReaderKind, name: str) -> "Reader":
        """Opens the reader of this name, as list gives it; a payment HSM by its address."""
        octets = library.encode_name(name)
        return Reader(kind, name, lambda: int(native.OpenReaderA(octets, kind)))

    @staticmethod
    def open_port(kind: ReaderKind, port: int) -> "Reader":
        """Opens the reader on this port."""
        return Reader(kind, f"port {port}", lambda: int(native.OpenReader(port, kind, 9600)))

    @property
    def is_open(self) -> bool:
        return self._number is not None

    def reset(self) -> str:
        """Wakes the card and gives its ATR in hexadecimal, or what the kind gives instead. Does not
        reset a card in a PC/SC reader."""
        atr = area(1025)
        with lock:
            self._select()
            if not native.Reset(atr):
                raise ReaderError("no answer to reset")
        return atr.value.decode()

    def choose_slot(self, slot: int) -> None:
        """Chooses a card slot, 0 to 255. Its meaning depends on the kind."""
        if not 0 <= slot <= 255:
            raise DataError(f"there is no slot {slot}")
        with lock:
            self._select()
            native.ChangeSlot(b"%02X" % slot)

    def send(self, command: Union[str, bytes, bytearray]) -> Response:
        """Sends a command: hexadecimal digits, blanks allowed, or octets. Raises DataError and sends
        nothing for any other text, for less than four octets (except for kinds without status words),
        and for more than the reader takes. If a payment HSM does not answer, the reader is closed, so
        that a late answer is not taken for the next command's."""
        octets = to_octets(command) if isinstance(command, str) else bytes(command)
        answer = area(8193)
        with lock:
            self._select()
            least, most = 4 if has_status_word(self.kind) else 1, longest_command(self.kind)
            if not least <= len(octets) <= most:
                raise DataError(f"a command of {len(octets)} octets: this reader takes {least} to {most}")
            digits = to_hex(octets).encode()
            result = native.SendCommand(digits, len(digits), answer)
            response = Response.read(self.kind, result, answer.value.decode())
            if response is None and self.kind == ReaderKind.TCP:
                self._release()
        if response is None:
            raise ReaderError("no answer from the card or its reader")
        return response

    def close(self) -> None:
        """Closes the reader. Raises if its library refuses, but the reader is then closed too. Does
        nothing on a closed reader."""
        with lock:
            if self.is_open and not self._release():
                raise ReaderError("the reader's library refuses to close it")

    def __enter__(self) -> "Reader":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    # Closing here could fall between two calls to another reader.
    def __del__(self) -> None:
        if getattr(self, "_number", None) is not None:
            warnings.warn("a reader was not closed", ResourceWarning, source=self)

    def _select(self) -> None:
        if self._number is None:
            raise ReaderError("the reader is closed")
        native.SetReader(self._number)

    def _release(self) -> bool:
        self._select()
        Reader._taken.discard(self._number)  # type: ignore[arg-type]
        self._number = None
        return bool(native.CloseReader())


# The loaded simulators, by the name of the vendor's library.
simulators: Dict[str, ctypes.CDLL] = {}


def load_simulators(folder: Union[str, pathlib.Path, None] = None) -> None:
    """Replaces the vendors' libraries by the simulators of the package or of a folder, for the rest of
    the process. Call it before a reader is listed or opened."""
    folder = pathlib.Path(folder) if folder else library.FOLDER / "simulators"
    modules = sorted(folder.glob("*.dll" if library.WINDOWS else "*.so"))
    if not modules:
        raise ReaderError(f"there are no simulators in {folder}")
    for module in modules:
        name = module.stem if library.WINDOWS else module.stem[len("lib"):]
        simulators.setdefault(name, ctypes.CDLL(str(module)))
