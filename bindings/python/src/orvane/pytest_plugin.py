"""The fixture card: an open reader whose card is awake."""
from __future__ import annotations

import os
from typing import Iterator

import pytest

import orvane


def pytest_addoption(parser: pytest.Parser) -> None:
    group = parser.getgroup("orvane")
    group.addoption("--orvane-reader", metavar="KIND:NAME",
                    help="the reader of the fixture card, such as '3:ACME Reader 00'; else it is simulated")
    group.addoption("--orvane-recording", metavar="FILE",
                    help="a recording whose answers the simulated card gives")


@pytest.fixture(scope="session")
def _orvane_address(pytestconfig: pytest.Config) -> str:
    address, recording = (pytestconfig.getoption(name)
                          for name in ("--orvane-reader", "--orvane-recording"))
    if address and recording:
        raise pytest.UsageError("--orvane-reader and --orvane-recording exclude each other")
    if recording:
        os.environ["ORVANE_CARD"] = os.path.abspath(recording)
    if not address:
        orvane.load_simulators()
    return address or "3:Simulated Reader 0"


@pytest.fixture
def card(_orvane_address: str) -> Iterator[orvane.Reader]:
    """An open reader that has been reset; it is closed behind the test."""
    kind, _, name = _orvane_address.partition(":")
    if not kind.isdigit():
        kind, name = "3", _orvane_address
    of_kind = orvane.ReaderKind(int(kind))
    with (orvane.Reader.open_port(of_kind, int(name)) if name.isdigit()
          else orvane.Reader.open(of_kind, name)) as reader:
        reader.reset()
        yield reader
