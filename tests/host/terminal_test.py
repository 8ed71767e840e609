#!/usr/bin/env python3
"""A person at a terminal: terminal_test.py PROGRAM..., the program and what it takes to start it.

Each row is a command of the system's shell, in which {} stands for the program, and steps: what the
terminal shows sooner or later, and what is typed then.
"""
import os
import pty
import select
import shlex
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time

PROGRAM = " ".join(map(shlex.quote, sys.argv[1:]))
UNDER_WINE = sys.argv[-1].endswith(".exe")
CTRL_C, CTRL_D, BACKSPACE, UP = "\x03", "\x04", "\x7f", "\x1b[A"
PROMPT = "orvane>"


class Terminal:
    def __init__(self, command):
        self.screen = b""
        self.child, self.terminal = pty.fork()
        if self.child == 0:
            os.environ["TERM"] = "xterm"
            os.execvp("sh", ["sh", "-c", command.replace("{}", PROGRAM)])

    def read(self, seconds):
        ready, _, _ = select.select([self.terminal], [], [], max(0, seconds))
        try:
            octets = os.read(self.terminal, 4096) if ready else b""
        except OSError:  # the last one has closed it
            octets = b""
        self.screen += octets
        return octets

    def wait_for(self, text):
        end = time.monotonic() + 10
        while text.encode() not in self.screen:
            assert self.read(end - time.monotonic()), f"{text!r} is missing in {self.screen!r}"
        self.screen = self.screen[self.screen.index(text.encode()) + len(text.encode()) :]

    def type(self, text):
        time.sleep(0.2)  # what shows a prompt takes a moment to read
        os.write(self.terminal, text.encode())

    def exit_code(self):
        while self.read(10):
            pass
        return os.waitstatus_to_exitcode(os.waitpid(self.child, 0)[1])


def run(command, *steps, code=0):
    terminal = Terminal(command)
    for shown, typed in steps:
        terminal.wait_for(shown)
        terminal.type(typed)
    exit_code = terminal.exit_code()
    assert exit_code == code, f"{command}: exit code {exit_code}, not {code}"


class SlowMachine:
    """A payment HSM that answers its first command only when it is told to."""

    def __init__(self):
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.address = f"127.0.0.1:{self.listener.getsockname()[1]}"
        self.asked, self.answers = threading.Event(), threading.Event()
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        connection, _ = self.listener.accept()
        while octets := connection.recv(100):
            self.asked.set()
            self.answers.wait()
            connection.send(octets)


def interrupt_a_command():
    for answers in (True, False):
        machine = SlowMachine()
        terminal = Terminal(f"exec {{}} shell -r 10:{machine.address}")
        terminal.wait_for(PROMPT)
        terminal.type("AB CD EF 01\r")
        assert machine.asked.wait(30)
        terminal.type(CTRL_C)
        terminal.wait_for("^C")
        if answers:
            machine.answers.set()
            terminal.wait_for("<<")
            terminal.wait_for(PROMPT)
            terminal.type("quit\r")
            assert terminal.exit_code() == 0
        else:
            terminal.type(CTRL_C)
            assert terminal.exit_code() == -signal.SIGINT


def interrupt_a_test_run():
    with open("checks", "w") as checks:
        checks.write("$ Asks\nABCDEF01\n; expect AB .. EF01\n$ Asks again\nAB\n")
    for answers in (True, False):
        machine = SlowMachine()
        terminal = Terminal(f"exec {{}} test -r 10:{machine.address} --junit junit checks")
        terminal.wait_for("0 of 2 cases, 0 failed")
        assert machine.asked.wait(30)
        terminal.type(CTRL_C)
        if answers:
            machine.answers.set()
            terminal.wait_for("interrupted")
            assert terminal.exit_code() == 130
            assert b'skipped message="the run was interrupted"' in open("junit", "rb").read()
        else:
            terminal.wait_for("^C")
            terminal.type(CTRL_C)
            assert terminal.exit_code() == -signal.SIGINT


def lose_input_in_the_middle():
    # What reads from a terminal's other end is told of an error once nobody is at the terminal.
    other_end, terminal = pty.openpty()
    os.write(terminal, b"%A = 1\n")
    os.close(terminal)
    done = subprocess.run(sys.argv[1:] + ["run", "-"], stdin=other_end, capture_output=True)
    assert done.returncode == 5 and b"can't read <stdin>: " in done.stderr and not done.stdout, done


os.chdir(tempfile.mkdtemp())
store, show, leave = (PROMPT, "%A = Müller中\r"), (PROMPT, "%A\r"), (PROMPT, "quit\r")
run("exec {} shell", (PROMPT, "@compare(1,2,1)\r"), ("FAIL", ""), leave)
if UNDER_WINE:  # whose console keeps the line
    run("exec {} shell", store, (PROMPT, "%A = 12"), ("12", CTRL_C), ("", "\r"), store, show, ("Müller中", ""), leave)
else:
    run("exec {} shell", store, (PROMPT, "%A = 12"), ("12", CTRL_C), show, ("Müller中", ""),
        (PROMPT, CTRL_D), ("\n", ""))
    # Tab completes; lines come back in the next session, but none with a secret, in any line before.
    state = os.environ["XDG_STATE_HOME"] = os.getcwd() + "/state"
    run("exec {} shell --simulate", (PROMPT, "%AIDÄ = 00A40400\r"), (PROMPT, "%ai\t\r"), ("00A40400", "@STRLEN\t\t"),
        ("@strlenh(", "h(%ai\t)\r"), ("4\r\n", "%A = @x\t11, 22)\r"), ("33\r\n", ":dec\t sw 9000\r"),
        ("success", "%PIN = 1234\r"), leave)
    run("exec {} shell", (PROMPT, UP + UP), ("%A = @xor(11, 22)", BACKSPACE + "\r"), (PROMPT, "%X = 2412FF\r"),
        (PROMPT, "00200080 03 %X\r"), ("", ""), (PROMPT, "%Z = 1\r"), leave)
    history = open(state + "/orvane/history").read()
    assert history.endswith("@strlenh(%AIDÄ)\n%A = @xor(11, 22)\n:decode sw 9000\n%Z = 1\n"), history
    assert os.stat(state + "/orvane/history").st_mode & 0o777 == 0o600
    interrupt_a_command()
    interrupt_a_test_run()
    lose_input_in_the_middle()
    run("{} shell | tee log", (PROMPT, "%A = 1x" + BACKSPACE + "2\r"), show, ("=    12", CTRL_D))
    log = open("log").read()
    assert "%A = 12\n" in log and "=    12\n" in log, log
    run("exec {} shell < /dev/null > log")
    assert open("log").read() == "", "no person is at the terminal"
