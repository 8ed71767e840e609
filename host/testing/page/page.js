"use strict";
const report = JSON.parse(document.getElementById("report").textContent);
const looks = {
  passed: ["\u2713", "passed"], unchecked: ["\u2013", "without an expectation"], failed: ["\u2715", "failed"],
  broken: ["!", "broken off"], idle: ["\u25CB", "not run"],
};

// Makes an element with a class and with texts or elements in it.
function make(tag, name, ...content) {
  const element = document.createElement(tag);
  if (name) element.className = name;
  element.append(...content.filter((each) => each !== null && each !== ""));
  return element;
}

function duration(milliseconds) {
  if (milliseconds < 1) return `${(milliseconds * 1000).toFixed(0)} \u00B5s`;
  if (milliseconds < 1000) return `${milliseconds.toFixed(milliseconds < 100 ? 1 : 0)} ms`;
  if (milliseconds < 60000) return `${(milliseconds / 1000).toFixed(2)} s`;
  return `${Math.floor(milliseconds / 60000)} min ${Math.floor(milliseconds / 1000) % 60} s`;
}

const counted = (count, noun) => `${count.toLocaleString("en")} ${noun}${count === 1 ? "" : "s"}`;
const octets = (digits) => digits.replace(/..(?=.)/g, "$& ");
const characters = (digits) => digits.replace(/../g, (each) => {
  const code = parseInt(each, 16);
  return code >= 0x20 && code < 0x7F ? String.fromCharCode(code) : ".";
});

const files = report.files;
const cases = files.flatMap((file) => file.cases.map((each) => ({ ...each, file })));
const exchanges = [];
cases.forEach((each, index) => {
  each.index = index;
  for (const step of each.steps) {
    if (step.exchange) exchanges.push(Object.assign(step.exchange, { number: exchanges.length, case: each }));
  }
});
const count = (state) => cases.filter((each) => each.state === state).length;

function header() {
  const bad = count("failed") + count("broken");
  const ran = cases.length - count("idle");
  const title = make("h1", bad ? "failed" : "passed",
    bad ? `${bad} of ${counted(ran, report.counted)} failed` : count("passed") ? `${counted(count("passed"), report.counted)} passed` : "Nothing was checked");
  const facts = [files.map((file) => file.name).join(", "), new Date(files[0].begin).toLocaleString(),
    duration(report.duration), ...(exchanges.length ? [counted(exchanges.length, "command")] : []), ...report.readers];
  const share = make("div", "share");
  for (const state of ["failed", "broken", "passed", "unchecked", "idle"]) {
    if (!count(state)) continue;
    const part = make("i", state);
    part.style.flexGrow = count(state);
    part.title = `${count(state)} ${looks[state][1]}`;
    share.append(part);
  }
  return make("header", "", title, make("p", "facts num", ...facts.map((fact) => make("span", "", fact))), share);
}

// ---- times

const svg = (tag, attributes, ...content) => {
  const element = document.createElementNS("http://www.w3.org/2000/svg", tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
  element.append(...content);
  return element;
};

// Without room for one bar per exchange, one bar shows the slowest of its neighbours.
function drawTimes(figure) {
  const width = figure.clientWidth - parseFloat(getComputedStyle(figure).paddingLeft) * 2, height = 104, right = 56;
  const room = Math.max(1, Math.floor((width - right) / 4));
  const step = Math.ceil(exchanges.length / room);
  const bars = [];
  for (let at = 0; at < exchanges.length; at += step) {
    bars.push(exchanges.slice(at, at + step).reduce((slow, each) => (each.time > slow.time ? each : slow)));
  }
  const most = Math.max(...bars.map((each) => each.time), 0.001);
  const pitch = Math.min(28, (width - right) / bars.length);
  const image = svg("svg", { viewBox: `0 0 ${width} 120`, role: "img", "aria-label": "Time of each command" });
  for (const part of [0, 0.5, 1]) {
    const y = 10 + height * (1 - part);
    image.append(svg("line", { x1: 0, x2: width - right, y1: y, y2: y }),
      svg("text", { x: width, y: y + 4, "text-anchor": "end" }, duration(most * part)));
  }
  bars.forEach((each, index) => {
    const tall = Math.max(2, height * each.time / most);
    const bad = each.case.state === "failed" || each.case.state === "broken";
    image.append(svg("a", { href: `#x${each.number}`, class: bad ? "bad" : "" },
      svg("title", {}, `${each.name || "command"} ${octets(each.header)}\n${duration(each.time)} \u00B7 ${each.case.name}`),
      svg("rect", { class: "hit", x: index * pitch, y: 10, width: pitch, height }),
      svg("rect", { class: "bar", x: index * pitch + pitch * 0.15, y: 10 + height - tall, width: pitch * 0.7, height: tall, rx: Math.min(2, pitch / 4) })));
  });
  figure.querySelector("svg")?.remove();
  figure.append(image);
}

function times() {
  const sorted = exchanges.map((each) => each.time).sort((a, b) => a - b);
  return make("figure", "", make("figcaption", "", make("b", "", "Time of each command"),
    make("span", "num", `median ${duration(sorted[sorted.length >> 1])} \u00B7 slowest ${duration(sorted[sorted.length - 1])}`)));
}

// ---- what a case did

function dump(digits) {
  const block = make("pre", "");
  for (let at = 0; at < digits.length; at += 32) {
    const row = digits.slice(at, at + 32);
    block.append(at ? "\n" : "", octets(row).padEnd(49), make("i", "", characters(row)));
  }
  return block;
}

function commandText(each) {
  const data = each.hidden ? `** (${counted(each.hidden, "byte")})` : octets(each.data);
  return [each.header, each.lengthField].map(octets).concat(data, octets(each.expectedLength)).filter(Boolean).join("  ");
}

// The list of elements is made only when it is opened.
function tree(each) {
  const list = make("ul", "tlv");
  const details = make("details", "", make("summary", "", "TLV"), list);
  details.addEventListener("toggle", () => {
    if (list.firstChild) return;
    for (const [level, tagAt, tagEnd, valueAt, valueEnd, constructed] of each.tlv) {
      const tag = each.response.slice(tagAt, tagEnd), value = each.response.slice(valueAt, valueEnd);
      const text = constructed ? counted(value.length / 2, "byte") : `${octets(value)}  `;
      const row = make("li", "", make("code", "", tag), make("span", "quiet", report.tags[tag] || ""),
        make("code", "", text, make("span", "quiet", constructed ? "" : characters(value))));
      row.style.setProperty("--level", level);
      list.append(row);
    }
  });
  return details;
}

function exchange(each) {
  const box = make("div", "exchange", make("div", "head", make("b", "", each.name || "Command"),
    make("span", "num", duration(each.time))),
    make("div", "octets", make("span", "", "\u2192"), make("pre", "", commandText(each))));
  box.id = `x${each.number}`;
  if (each.response) box.append(make("div", "octets", make("span", "", "\u2190"), dump(each.response)));
  if (!each.answered) box.append(make("div", "word error", "no answer"));
  if (each.word) box.append(make("div", `word ${report.words[each.word][0]}`, make("code", "", each.word), report.words[each.word][1]));
  if (each.note) box.append(make("div", "note", each.note));
  if (each.tlv) box.append(tree(each));
  return box;
}

function stepBox(step) {
  if (step.exchange) return exchange(step.exchange);
  const marks = { value: "= ", met: "\u2713 ", failed: "\u2715 ", atr: "ATR  ", reader: "" };
  const text = step.kind === "atr" ? octets(step.text) : step.text;
  return make("div", "step", step.line ? make("span", "line", String(step.line)) : "",
    make("code", step.kind === "statement" ? "" : step.kind in { met: 1, failed: 1 } ? step.kind : "quiet", (marks[step.kind] || "") + text));
}

// Fills a long case in pieces, but at once up to the number of steps in `least`.
function fill(each, least) {
  const end = Math.max(each.filled + 400, least);
  const piece = document.createDocumentFragment();
  for (; each.filled < Math.min(end, each.steps.length); ++each.filled) piece.append(stepBox(each.steps[each.filled]));
  each.panel.append(piece);
  if (each.filled < each.steps.length) setTimeout(() => fill(each, 0));
}

function open(each, least = 0) {
  if (!each.panel) {
    each.panel = make("div", "steps");
    each.filled = 0;
    if (each.reason) each.panel.append(make("pre", "reason", `${each.file.name}:${each.failedLine || each.line}: ${each.reason}`));
    each.row.append(each.panel);
  }
  if (each.filled < Math.max(least, 1)) fill(each, least);
  each.panel.hidden = false;
  each.button.setAttribute("aria-expanded", "true");
}

function close(each) {
  each.panel.hidden = true;
  each.button.setAttribute("aria-expanded", "false");
}

function row(each) {
  const [mark, word] = looks[each.state];
  const sign = make("span", "mark", mark);
  sign.title = word;
  sign.setAttribute("aria-label", word);
  each.button = make("button", "", sign,
    make("span", "name", each.name, each.reason ? make("span", "why", each.reason.split("\n")[0]) : ""),
    make("span", "right count num", each.commands ? counted(each.commands, "command") : ""),
    make("span", "right num", each.state === "idle" ? "" : duration(each.time)));
  each.button.setAttribute("aria-expanded", "false");
  each.button.addEventListener("click", () => (each.button.getAttribute("aria-expanded") === "true" ? close(each) : open(each)));
  each.row = make("section", `case ${each.state}`, each.button);
  return each.row;
}

// ---- search

let state = "";
let wanted = "";

const textOf = (each) => [each.name, each.reason, ...each.steps.map((step) => {
  const sent = step.exchange;
  if (!sent) return step.text;
  const digits = sent.header + sent.lengthField + sent.data + sent.expectedLength;
  return sent.text = [sent.name, digits, octets(digits), sent.response, octets(sent.response), sent.word,
    sent.word ? report.words[sent.word][1] : "", sent.hidden ? "**" : ""].join("\n").toLowerCase();
})].join("\n").toLowerCase();

function select() {
  let shown = 0;
  for (const each of cases) {
    const fits = (!state || each.state === state) && (!wanted || (each.text ??= textOf(each)).includes(wanted));
    each.row.hidden = !fits;
    shown += fits;
  }
  for (const each of document.querySelectorAll(".exchange.hit")) each.classList.remove("hit");
  if (wanted) {
    for (const each of exchanges) {
      if (each.text?.includes(wanted)) document.getElementById(`x${each.number}`)?.classList.add("hit");
    }
  }
  document.getElementById("none").hidden = shown > 0;
}

function search() {
  const bar = make("nav", "");
  const field = make("input", "");
  Object.assign(field, { type: "search", placeholder: "Search names, statements and octets", id: "search" });
  field.setAttribute("aria-label", "Search");
  field.addEventListener("input", () => { wanted = field.value.trim().toLowerCase(); select(); });
  bar.append(field);
  for (const each of ["", "failed", "broken", "passed", "unchecked", "idle"]) {
    const number = each ? count(each) : cases.length;
    if (!number) continue;
    const label = each ? looks[each][1] : "all";
    const button = make("button", "", label, make("b", "num", String(number)));
    button.setAttribute("aria-pressed", String(each === ""));
    button.addEventListener("click", () => {
      state = each;
      for (const other of bar.querySelectorAll("button")) other.setAttribute("aria-pressed", String(other === button));
      select();
    });
    bar.append(button);
  }
  return bar;
}

// Opens the case of the exchange that a link names.
function follow() {
  const number = /^#x(\d+)$/.exec(location.hash)?.[1];
  const each = exchanges[number];
  if (!each) return;
  each.case.row.hidden = false;
  open(each.case, each.case.steps.findIndex((step) => step.exchange === each) + 1);
  const box = document.getElementById(`x${number}`);
  box.scrollIntoView({ block: "center" });
  for (const other of document.querySelectorAll(".exchange.hit")) other.classList.remove("hit");
  box.classList.add("hit");
}

const body = make("main", "");
for (const file of files) {
  if (files.length > 1) body.append(make("h2", "", file.name));
  const list = make("div", "cases");
  for (const each of cases.filter((one) => one.file === file)) list.append(row(each));
  body.append(list);
}
const none = make("p", "none", `No ${report.counted} is like this.`);
Object.assign(none, { id: "none", hidden: true });
body.append(none);
document.body.prepend(header(), ...(exchanges.length ? [times()] : []), search(), body);
const figure = document.querySelector("figure");
if (figure) drawTimes(figure);
if (figure) window.addEventListener("resize", () => drawTimes(figure));
window.addEventListener("hashchange", follow);
window.addEventListener("beforeprint", () => {
  for (const each of cases) if (each.state === "failed" || each.state === "broken") open(each, each.steps.length);
});
document.addEventListener("click", (event) => {
  const link = event.target.closest("svg a");
  if (link && link.getAttribute("href") === location.hash) follow();
});
follow();
