"""The fixture card: an open reader whose card is awake."""
from __future__ import annotations

import os
from typing import Iterator

import pytest

from . import Reader, ReaderKind, load_simulators


def pytest_addoption(parser: pytest.Parser) -> None:
    group = parser.getgroup("orvane")
    group.addoption("--orvane-reader", metavar="KIND:NAME",
                    help="the reader of the fixture card, such as '3:ACME Reader 00'; else it is simulated")
    group.addoption("--orvane-recording", metavar="FILE",
                    help="a recording whose answers the simulated card gives")


def pytest_configure(config: pytest.Config) -> None:
    address, recording = config.getoption("--orvane-reader"), config.getoption("--orvane-recording")
    if address and recording:
        raise pytest.UsageError("--orvane-reader and --orvane-recording exclude each other")
    kind, colon, name = (address or "3:Simulated Reader 0").partition(":")
    if not (colon and name and kind in (str(int(each)) for each in ReaderKind)):
        raise pytest.UsageError(f"--orvane-reader {address}: not KIND:NAME")
    if recording:
        if not os.path.isfile(recording):
            raise pytest.UsageError(f"--orvane-recording {recording}: there is no such file")
        os.environ["ORVANE_CARD"] = os.path.abspath(recording)


@pytest.fixture(scope="session")
def _orvane_address(pytestconfig: pytest.Config) -> str:
    address: str = pytestconfig.getoption("--orvane-reader")
    if not address:
        load_simulators()
    return address or "3:Simulated Reader 0"


@pytest.fixture
def card(_orvane_address: str) -> Iterator[Reader]:
    """An open reader that has been reset; it is closed behind the test."""
    kind, _, name = _orvane_address.partition(":")
    of_kind = ReaderKind(int(kind))
    with (Reader.open_port(of_kind, int(name)) if name.isdigit()
          else Reader.open(of_kind, name)) as reader:
        reader.reset()
        yield reader
