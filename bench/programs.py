# Measures the program: programs.py BUILD [FILTER] runs each row once with the orvane of that folder,
# and prints it as the benchmarks' own programs do, in nanoseconds or KiB.
import os
import re
import subprocess
import sys
import tempfile

program = os.path.join(os.path.abspath(sys.argv[1]), 'orvane')
wanted = re.compile(sys.argv[2] if len(sys.argv) > 2 else '')


# As generators: what this process holds counts for the programs that it starts.
def lines(count, line):
    return (line(number) + '\n' for number in range(count))


def chain(length):
    yield '%A0 = 31\n'
    yield from lines(length, lambda n: f'%A{n + 1} = %A{n}')
    yield f'%PIN = %A{length}\n'


FILES = {
    'script': lines(100000, lambda n: (f'%V{n % 500} = 00A4040007A0000000031010',
                                       f'%L{n % 7} = 00B0 %V0 @strmid(%V0,10,4)')[n % 2]),
    'tags': lines(10000, lambda n: f'DF{n:04X} A name of common length | {"d" * 120}'),
    'chain4000': chain(4000),
    'chain8000': chain(8000),
    'calls4000': ['%A =' + ' @strlen(ABCD)' * 4000],
    'calls8000': ['%A =' + ' @strlen(ABCD)' * 8000],
}
# What is measured, how often, the command line, and what runs before it.
ROWS = [
    ('Script of 100,000 lines', 1, 'run -q script', None),
    ('Script of 100,000 lines, trace', 1, 'run script', None),
    ('Chain of 4,000 to a secret', 3, 'run -q chain4000', None),
    ('Chain of 8,000 to a secret', 3, 'run -q chain8000', None),
    ('4,000 calls in a line', 3, 'run -q calls4000', None),
    ('8,000 calls in a line', 3, 'run -q calls8000', None),
    ('tags import of 10,000 into 10,000', 1, 'tags import tags', 'tags import tags'),
    ('apdu --simulate, one command', 30, 'apdu --simulate 0084000008', None),
]


def run(arguments):
    with open('trace', 'w') as trace:
        child = subprocess.Popen([program, *arguments.split()], stdout=trace, stderr=trace)
        _, status, usage = os.wait4(child.pid, 0)
    if status != 0:
        sys.exit(f'orvane {arguments}: failed')
    return usage


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    for name, text in FILES.items():
        with open(name, 'w') as file:
            file.writelines(text)
    for name, times, arguments, before in ROWS:
        if not wanted.search(name):
            continue
        if before:
            run(before)
        for _ in range(times):
            usage = run(arguments)
            time = (usage.ru_utime + usage.ru_stime) * 1e9
            print(f'"{name}/Orvane",1,{time},{time},ns')
            if name.startswith('Script'):
                print(f'"{name}, KiB/Orvane",1,{usage.ru_maxrss},{usage.ru_maxrss},KiB')
