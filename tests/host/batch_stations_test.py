"""Four stations with two readers each work through a database, and one of them is killed in the
middle: afterwards every row has one final state, and the cards got what the database says.

  batch_stations_test.py PROGRAM EXAMPLES ROWS
"""
import collections, glob, json, os, re, shutil, signal, subprocess, sys, tempfile, time

program, examples, rows = sys.argv[1], sys.argv[2], int(sys.argv[3])
script = os.path.join(examples, "personalise.orv")
servers = sorted(glob.glob("/usr/lib/postgresql/*/bin"))
if not servers:
    sys.exit("there is no PostgreSQL server: script/bootstrap test installs it")
# The server refuses to run as root.
user = "postgres" if os.getuid() == 0 else None


def server(folder, tool, *arguments):
    subprocess.run([os.path.join(servers[-1], tool), "-D", folder + "/data", *arguments], check=True,
                   user=user, cwd="/", stdout=subprocess.DEVNULL)


def run(*arguments, **options):
    return subprocess.run([program, "batch", *arguments], text=True, capture_output=True, **options)


def check(address):
    """What the recordings of all readers have, beside what the database has."""
    wrote, cards = collections.Counter(), collections.Counter()
    for name in glob.glob("recording-*"):
        for line in open(name):
            if '"00D6' in line and line.endswith("\n"):
                digits = next(v for v in json.loads(line).values()
                              if isinstance(v, str) and v.startswith("00D6"))
                wrote[int(digits[10:26])] += 1
    query = "SELECT row, state, card FROM orvane_jobs ORDER BY row"
    listed = subprocess.run(["psql", address, "-AtF,", "-c", query], check=True, text=True,
                            capture_output=True).stdout.split()
    assert len(listed) == rows
    counts = collections.Counter()
    for line in listed:
        row, state, card = line.split(",")
        counts[state] += 1
        cards[card] += 1
        assert wrote[int(row)] == 1 or (state == "abandoned" and wrote[int(row)] == 0), line
    assert max(cards[card] for card in cards if card) == 1
    return counts


with tempfile.TemporaryDirectory() as folder:
    if user:
        os.chmod(folder, 0o755)
        os.makedirs(folder + "/server")
        shutil.chown(folder + "/server", user)
    place = folder + "/server" if user else folder
    server(place, "initdb", "-A", "trust", "-U", "orvane", "--no-sync")
    server(place, "pg_ctl", "-w", "-l", place + "/log", "-o",
           f"-c listen_addresses= -c unix_socket_directories={place}", "start")
    try:
        os.chdir(folder)
        address = f"postgresql:///postgres?host={place}&user=orvane"
        with open("table", "w") as table:
            table.write("NUMBER,NAME,LIMITS\n")
            table.writelines(f"{row:016},N{row},{'00' * 16}\n" for row in range(1, rows + 1))
        load = ["load", script, "--table", "table", "--jobs", address]
        assert run(*load).stdout == f"{rows} rows loaded\n"
        assert run(*load).returncode == 5  # there is a batch already
        station = [script, "--simulate", "--jobs", address, "-q", "-r", "3:1", "-r", "3:1",
                   "--record", "recording-%p"]
        begin = time.monotonic()
        stations = [subprocess.Popen([program, "batch", *station], start_new_session=True)
                    for _ in range(4)]
        done = 0
        while done < rows // 3:
            time.sleep(0.02)
            found = re.search(r"(\d+) done", run("--status", "--jobs", address).stdout)
            done = int(found[1]) if found else 0
        os.killpg(stations[0].pid, signal.SIGKILL)
        codes = [each.wait() for each in stations]
        seconds = time.monotonic() - begin
        left = run("--status", "--jobs", address).stdout.count("begun  row")
        assert codes[0] == -signal.SIGKILL and left <= 2, (codes, left)
        assert codes[1:] == [4 if left else 0] * 3, codes
        again = run(*station)
        assert again.returncode == (2 if left else 0), again
        assert run(*station, "--skip-begun").returncode == 0
        failing = address.replace("postgres?", "failing?")
        subprocess.run(["psql", address, "-qc", "CREATE DATABASE failing"], check=True)
        with open("script", "w") as file:
            file.write("@reset()\n00A40000\n@compare(%NUMBER,0000000000000020,0)\n")
        run("load", "script", "--table", "table", "--jobs", failing, check=True)
        stations = [subprocess.Popen([program, "batch", "script", "--simulate", "--fail-fast", "--jobs", failing],
                                     env={**os.environ, "ORVANE_CARD_TIME": "50000"}) for _ in range(2)]
        assert [each.wait() for each in stations] == [1, 1]
        assert re.search(r", 1 failed, \d+ waiting\n", run("--status", "--jobs", failing).stdout)
        slow = address.replace("postgres?", "slow?")
        subprocess.run(["psql", address, "-qc", "CREATE DATABASE slow"], check=True)
        with open("table", "w") as file:
            file.write("NUMBER\n1\n2\n")
        with open("script", "w") as file:
            file.write("@compare(%NUMBER,0,0)\n@reset()\n00A40000\n")
        run("load", "script", "--table", "table", "--jobs", slow, check=True)
        works = ["script", "--simulate", "-q", "--jobs", slow]
        other = subprocess.Popen([program, "batch", *works],
                                 env={**os.environ, "ORVANE_CARD_TIME": "2000000"})
        while "1 begun" not in run("--status", "--jobs", slow).stdout:
            time.sleep(0.02)
        assert run(*works).returncode == 0  # the row of the other station is not left
        assert other.wait() == 0
        print(f"{rows} rows in {seconds:.1f} s: {dict(check(address))}")
    finally:
        server(place, "pg_ctl", "-m", "immediate", "stop")
