#!/usr/bin/env python3
"""Checks the reports of orvane test as their readers take them: reports_test.py ORVANE SCHEMA CHROMIUM XMLLINT PROVE"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import time

orvane, schema, chromium, xmllint, prove = sys.argv[1:]
HOSTILE = "</script><img src=x onerror=boom()> & \"#\" ]]> \\ \x01 \xef\xbf\xbf\udcff"
SCRIPT = f"""%PIN = 4711
$ Passes
@reset()
00A40400 08 F04F5256414E4501 00
; expect 6F .. 9000
$ {HOSTILE}
00200080 08 24 %PIN FFFFFFFFFF
; expect 9000
$ Breaks off
%A = @RSAPUBENC(FF,3,FF)
$ Ends the file
@stop()
$ Does not run
"""
# Stands behind the page's own script; what fails in either is told by the title.
PROBE = """<script>
const shown = () => cases.filter((each) => !each.row.hidden).length;
const field = document.getElementById("search");
const type = (text) => { field.value = text; field.dispatchEvent(new Event("input")); };
const result = {loaded: performance.now(), all: shown(), heading: document.querySelector("h1").textContent};
const failed = cases.find((each) => each.state === "failed");
result.before = document.querySelectorAll(".reason").length;
failed.button.click();
result.reason = document.querySelector(".reason").innerText;
result.octets = [...document.querySelectorAll(".octets pre")].map((each) => each.textContent);
type("a5 1d 50"); result.octetsFound = shown();
type("nowhere"); result.nothing = document.getElementById("none").innerText;
type("");
document.querySelector("svg a").dispatchEvent(new MouseEvent("click", {bubbles: true, cancelable: true}));
location.hash = document.querySelector("svg a").getAttribute("href");
setTimeout(() => {
  const box = document.querySelector(".exchange.hit");
  box.querySelector("details").open = true;
  setTimeout(() => {
    result.tlv = [...box.querySelectorAll(".tlv li")].map((each) => each.firstChild.textContent);
    result.word = box.querySelector(".word").textContent;
    result.errors = errors;
    document.body.textContent = `RES${"ULT"}${JSON.stringify(result)}END`;
  });
});
</script></body>"""
CATCH = '<head><script>const errors = []; window.boom = () => errors.push("boom"); ' \
        'window.addEventListener("error", (event) => { errors.push(event.message); document.title = errors; });</script>'


def run(*arguments, code, text=None):
    done = subprocess.run(arguments, input=text, capture_output=True)
    assert done.returncode == code, (arguments, done.returncode, done.stdout, done.stderr)
    return done.stdout


def look(page, folder):
    html = page.read_text().replace("<head>", CATCH, 1)
    at = html.rindex("</body>")
    probed = folder / "probed.html"
    probed.write_text(html[:at] + PROBE + html[at + len("</body>"):])
    dom = run(chromium, "--headless", "--no-sandbox", "--disable-gpu", "--virtual-time-budget=5000", "--dump-dom", probed.as_uri(), code=0)
    told = re.search("RESULT(.*)END", dom.decode(), re.S)
    assert told, re.findall("<title>.*", dom.decode())[:1]
    return json.loads(told[1].replace("&lt;", "<").replace("&gt;", ">").replace("&amp;", "&"))


def check_page(page, folder):
    seen = look(page, folder)
    assert seen["errors"] == [], seen["errors"]
    assert seen["heading"] == "2 of 5 cases failed" and seen["all"] == 6, seen
    assert seen["before"] == 0 and "expected  90 00" in seen["reason"], seen
    assert seen["octets"][0] == "00 20 00 80  08  ** (8 bytes)", seen
    assert seen["octetsFound"] == 1 and seen["nothing"], seen
    assert seen["tlv"] == ["6F", "84", "A5", "50", "87", "5F2D", "9F38"] and seen["word"] == "9000success", seen


with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    script, junit, html = folder / "checks.orv", folder / "junit.xml", folder / "page.html"
    script.write_bytes(SCRIPT.encode(errors="surrogateescape").replace(b"\xc3\xaf\xc2\xbf\xc2\xbf", b"\xef\xbf\xbf"))
    command = [orvane, "test", "--simulate", str(script)]
    table = run(*command, "--junit", str(junit), "--html", str(html), code=1)
    tap = run(*command, "--tap", code=1)
    run(xmllint, "--noout", "--schema", schema, str(junit), code=0)
    (folder / "checks.tap").write_bytes(tap)
    assert b"Tests: 6 Failed: 2" in run(prove, "--exec", "cat", str(folder / "checks.tap"), code=1)
    for report in [table, tap, junit.read_bytes(), html.read_bytes()]:
        assert b"4711" not in report, report
    check_page(html, folder)

    # A run that its output or a report's disk cuts off is no success in any report.
    with open("/dev/full", "wb") as full:
        cut = subprocess.run([*command, "-v", "--junit", str(junit)], stdout=full, stderr=subprocess.PIPE)
    assert cut.returncode == 5 and b'errors="1" skipped="4"' in junit.read_bytes(), (cut, junit.read_text())
    assert b"can't write /dev/full" in subprocess.run([*command, "--html", "/dev/full"], capture_output=True).stderr

    script.write_text("".join(f"$ Case {at}\n" + "00A40400 08 F04F5256414E4501 00\n; expect 9000\n" * 25 for at in range(400))
                      + "$ Fails\n00840000 01\n; expect 6700\n")
    run(*command, "--html", str(html), code=1)
    seen = look(html, folder)
    assert seen["errors"] == [] and seen["all"] == 401 and seen["loaded"] < 2000, seen
    print(f"a page of 10,000 exchanges opens in {seen['loaded']:.0f} ms")
