"""Kills orvane batch with kill -9 at random moments and goes on, over and over: what the cards got
agrees with the journal, and no row goes to a card twice.

  batch_kill_test.py PROGRAM EXAMPLES KILLS
"""
import collections, glob, json, os, random, signal, subprocess, sys, tempfile, time

program, examples, kills = sys.argv[1], sys.argv[2], int(sys.argv[3])
ROWS = 60
command = [program, "batch", "--simulate", os.path.join(examples, "personalise.orv"), "--table",
           "table", "--journal", "journal", "--record", "recording-%p", "-r", "3:1", "-r", "3:1",
           "--skip-begun", "-q"]


def number(row):
    return f"{9999000000000000 + row}"


def written():
    """How often each row's note was accepted by a card, by what the readers' recordings have."""
    rows = collections.Counter()
    for name in glob.glob("recording-*"):
        for line in open(name):
            if '"00D6' not in line or not line.endswith("\n"):
                continue
            digits = next(v for v in json.loads(line).values()
                          if isinstance(v, str) and v.startswith("00D6"))
            rows[int(digits[10:26]) - 9999000000000000] += 1
    return rows


def states():
    """Each row's state, and how often it was begun."""
    state, begun = {}, collections.Counter()
    for line in open("journal"):
        if not line.endswith("\n"):
            break
        entry = json.loads(line)
        state[entry["row"]] = entry["state"]
        begun[entry["row"]] += entry["state"] == "begun" and "atr" in entry
    return state, begun


def check():
    state, begun = states()
    for row, count in written().items():
        assert count == 1, f"row {row} went to {count} cards"
        assert state[row] != "waiting", f"row {row} went to a card and waits"
    assert max(begun.values(), default=0) <= 1, begun
    done = [row for row in state if state[row] == "done"]
    assert set(done) <= set(written()), "a row is done that no card got"


random.seed(int(os.environ.get("SEED", time.time_ns())))
with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    done = batches = 0
    while done < kills:
        batches += 1
        for name in glob.glob("recording-*") + glob.glob("journal"):
            os.remove(name)
        with open("table", "w") as table:
            table.write("NUMBER,NAME,LIMITS\n")
            table.writelines(f"{number(row)},N{row},{'00' * 16}\n" for row in range(1, ROWS + 1))
        code = None
        while code is None and done < kills:
            batch = subprocess.Popen(command, start_new_session=True, stderr=subprocess.PIPE)
            time.sleep(random.expovariate(1 / 0.04))
            code = batch.poll()
            if code is None:
                done += 1
                # The supervisor alone, or all at once, as a power cut does.
                (os.kill if random.random() < 0.5 else os.killpg)(batch.pid, signal.SIGKILL)
            error = batch.communicate()[1].decode()
            assert code in (None, 0), (code, error)
            if os.path.exists("journal"):
                check()
        subprocess.run(command, check=True)
        check()
        assert set(states()[0].values()) <= {"done", "abandoned"}, states()
    print(f"{done} kills in {batches} batches")

    # The first interrupt lets rows end, the second one halts them.
    for interrupts, most in ((1, 0), (2, 2)):
        os.remove("journal")
        batch = subprocess.Popen(command, env={**os.environ, "ORVANE_CARD_TIME": "50000"},
                                 stderr=subprocess.PIPE)
        while not os.path.exists("journal") or "begun" not in open("journal").read():
            time.sleep(0.01)
        for _ in range(interrupts):
            batch.send_signal(signal.SIGINT)
            time.sleep(0.15)
        batch.communicate()
        left = list(states()[0].values()).count("begun")
        assert batch.returncode == 130 and left <= most and (left > 0) == (most > 0), left

    # A card that stays in its reader is none for the next row, nor for the next run. Simulators that
    # are found as makers' libraries are change no cards.
    held = {**os.environ, "LD_LIBRARY_PATH": os.path.join(os.path.dirname(program), "simulators")}
    pair = ["-r", "3:1", "-r", "SimulatedReader 0"]
    batch = subprocess.run([*command[:2], *command[3:8], *pair], env=held, capture_output=True, text=True)
    assert batch.returncode == 2 and "named twice: 3:1, SimulatedReader 0" in batch.stderr, batch
    for reader in ("3:Simulated Reader 0", "5:COM1"):
        os.remove("journal")
        for _ in range(2):
            batch = subprocess.run([*command[:2], *command[3:8], "-r", reader, "--timeout", "1"],
                                   env=held, capture_output=True, text=True)
            assert batch.returncode == 4 and "was not taken out" in batch.stderr, batch
            assert list(states()[0].values()) == ["done"] + ["waiting"] * (ROWS - 1)
