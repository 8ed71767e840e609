"""The fixture card: an open reader, ready for commands."""
from __future__ import annotations

import ctypes
import os
from typing import Iterator, Optional

import pytest

from . import Reader, ReaderKind, load_simulators
from .readers import simulators


def pytest_addoption(parser: pytest.Parser) -> None:
    group = parser.getgroup("orvane")
    group.addoption("--orvane-reader", metavar="KIND:NAME",
                    help="the reader of the fixture card, such as '3:ACME Reader 00'; else it is simulated")
    group.addoption("--orvane-recording", metavar="FILE",
                    help="a recording that each test finds in the simulated card's place, from its beginning")
    group.addoption("--orvane-any-order", action="store_true",
                    help="commands that are recorded later may come earlier")


def pytest_configure(config: pytest.Config) -> None:
    address, recording = config.getoption("--orvane-reader"), config.getoption("--orvane-recording")
    if address and recording:
        raise pytest.UsageError("--orvane-reader and --orvane-recording exclude each other")
    kind, colon, name = (address or "3:Simulated Reader 0").partition(":")
    if not (colon and name and kind in (str(int(each)) for each in ReaderKind)):
        raise pytest.UsageError(f"--orvane-reader {address}: not KIND:NAME")


class _Recording:
    """The recording that PC/SC's simulator replays."""

    def __init__(self, file: str, any_order: bool) -> None:
        load_simulators()
        self._module = simulators["winscard"]
        self._module.SimulatorReplay.restype = ctypes.c_char_p
        self._module.SimulatorDiffered.restype = ctypes.c_int64
        self._file, self._any_order = os.path.abspath(file), any_order

    def begin(self) -> None:
        trouble = self._module.SimulatorReplay(self._file.encode(), int(self._any_order))
        if trouble:
            raise pytest.UsageError(f"--orvane-recording {trouble.decode()}")

    def check(self) -> None:
        line = self._module.SimulatorDiffered()
        if line:
            pytest.fail(f"a command was not as recorded: {self._file}:{line}", pytrace=False)


@pytest.fixture(scope="session")
def _orvane_recording(pytestconfig: pytest.Config) -> Optional[_Recording]:
    file = pytestconfig.getoption("--orvane-recording")
    return _Recording(file, pytestconfig.getoption("--orvane-any-order")) if file else None


@pytest.fixture
def card(pytestconfig: pytest.Config, _orvane_recording: Optional[_Recording]) -> Iterator[Reader]:
    """An open reader after reset(). It is closed after the test. If the card is a recording, a command
    that differs from it is an error after the test."""
    address = pytestconfig.getoption("--orvane-reader")
    if not address:
        load_simulators()
    if _orvane_recording:
        _orvane_recording.begin()
    kind, _, name = (address or "3:Simulated Reader 0").partition(":")
    of_kind = ReaderKind(int(kind))
    with (Reader.open_port(of_kind, int(name)) if name.isdigit()
          else Reader.open(of_kind, name)) as reader:
        reader.reset()
        yield reader
    if _orvane_recording:
        _orvane_recording.check()
