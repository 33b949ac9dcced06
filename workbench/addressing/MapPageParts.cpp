#include "workbench/addressing/MapPageParts.h"

namespace tq::map_page {

const std::string_view kStyle = R"css(
:root { color-scheme: light dark; --ink: #1b1f24; --paper: #fff; --line: #d0d7de; --lit: #ddf4ff;
  --bad: #b3261e; --soft: #57606a; --hole: #f6f8fa; }
@media (prefers-color-scheme: dark) {
  :root { --ink: #e6edf3; --paper: #0d1117; --line: #3a424c; --lit: #12304a; --bad: #ff8a80;
    --soft: #9aa4af; --hole: #161b22; }
}
* { box-sizing: border-box; }
body { font: 14px/1.4 Helvetica, Arial, sans-serif; color: var(--ink); background: var(--paper);
  margin: 0; display: flex; flex-direction: column; height: 100vh; }
header { display: flex; flex-wrap: wrap; gap: 8px 12px; align-items: center; padding: 8px 12px;
  border-bottom: 1px solid var(--line); }
h1 { font-size: 16px; margin: 0; overflow-wrap: anywhere; }
input, select, button { font: inherit; color: inherit; background: var(--paper);
  border: 1px solid var(--line); border-radius: 4px; padding: 4px 8px; max-width: 100%; }
#query { flex: 1 1 220px; }
#place { padding: 6px 12px; display: flex; gap: 8px; align-items: center; flex-wrap: wrap;
  overflow-wrap: anywhere; }
#list { flex: 1; overflow: auto; outline-offset: -2px; border-top: 1px solid var(--line);
  position: relative; min-height: 0; }
#space { position: relative; }
.row { position: absolute; left: 0; right: 0; height: 26px; display: grid; padding: 3px 12px;
  grid-template-columns: minmax(150px, 14em) minmax(160px, 2fr) minmax(70px, 9em) minmax(100px, 3fr);
  gap: 0 12px; align-items: baseline; white-space: nowrap; border-bottom: 1px solid var(--line);
  cursor: default; }
.row span { overflow: hidden; text-overflow: ellipsis; }
#space:not(.text) span:first-child { font: 12px/1.4 "DejaVu Sans Mono", Menlo, monospace; }
.text .row { position: static; height: auto; white-space: normal; overflow-wrap: anywhere;
  grid-template-columns: minmax(120px, 20em) 1fr; }
.text .row.whole { grid-template-columns: 1fr; }
.row.link { cursor: pointer; }
.row.at, .row.link:hover { background: var(--lit); }
.row.hole { background: var(--hole); color: var(--soft); }
.row.bad span:last-child { color: var(--bad); font-weight: bold; }
.row.off { color: var(--soft); }
.soft { color: var(--soft); }
@media (max-width: 700px) {
  .row { grid-template-columns: 9em 1fr 5em; gap: 0 8px; height: 46px; }
  .row span:nth-child(4) { grid-column: 1 / -1; color: var(--soft); }
  .text .row { grid-template-columns: 1fr; }
}
@media print {
  :root { color-scheme: light; --ink: #000; --paper: #fff; --line: #aaa; --lit: #fff; --soft: #444;
    --bad: #b3261e; --hole: #fff; }
  body { height: auto; display: block; } #query, #up { display: none; }
  select { appearance: none; border: 0; padding: 0; }
  #list { overflow: visible; border: 0; } #space { height: auto !important; }
  .row { position: static; height: auto; white-space: normal; overflow-wrap: anywhere;
    break-inside: avoid; }
}
)css";

const std::string_view kBody = R"html(<header>
<h1 id="title"></h1>
<select id="config" aria-label="Config"></select>
<select id="view" aria-label="Initiator"></select>
<input id="query" type="search" placeholder="Name, 0xADDRESS or 0xFIRST-0xLAST ( / )"
 aria-label="Search" autocomplete="off" spellcheck="false">
</header>
<div id="place"><button id="up" type="button" hidden>Back to the map</button>
<span id="where"></span> <span id="count" class="soft"></span></div>
<div id="list" tabindex="0" role="listbox" aria-label="Rows"><div id="space"></div></div>
)html";

const std::string_view kScript = R"js(
// Members of the data's arrays.
const PATH = 0, BASE = 1, SIZE = 2, USAGE = 3, ON = 4, REGISTERS = 5;
const NAME = 0, OFFSET = 1, WIDTH = 2, ACCESS = 3, RESET = 4, VALUE = 5;
const FIRST = 0, LAST = 1, ORIGIN = 2, BLOCK = 3, ASSIGN = 4;
const ACCESSES = ['read and write', 'read only', 'write only'];
const MOST_DRAWN = 5000, MOST_REGISTERS = 2 ** 30;
const OFF = 'off', FINDINGS = 'findings';
const UNITS = [['T', 40n], ['G', 30n], ['M', 20n], ['K', 10n]];

const $ = id => document.getElementById(id);
const big = text => text === null ? null : BigInt(text);
const hex = number => number === null ? '?' : '0x' + number.toString(16).toUpperCase();
const sizeText = number => {
  if (number === null) return '?';
  for (const [unit, bits] of UNITS)
    if (number !== 0n && number % (1n << bits) === 0n) return (number >> bits) + unit;
  return hex(number);
};
/// Of a hole, whose exact end is the row below.
const roughText = number => {
  const exact = sizeText(number);
  const [unit, bits] = UNITS.find(([, some]) => number >> some) || ['', 0n];
  return exact.length < 7 ? exact
    : 'about ' + (Number(number * 100n >> bits) / 100).toPrecision(3) * 1 + unit;
};

// --- the list: only the rows in sight are in the document, but for texts, which take lines ---

const narrow = matchMedia('(max-width: 700px)');
const height = () => narrow.matches ? 46 : 26; // as in the style
const listOf = all => ({length: all.length, at: i => all[i]});

let rows = listOf([]), at = -1, isText = false;

function rowNode(i) {
  const row = rows.at(i), node = document.createElement('div');
  node.className = 'row' + (row.go ? ' link' : '') + (row.kind ? ' ' + row.kind : '') +
    (i === at ? ' at' : '');
  node.setAttribute('role', 'option');
  node.setAttribute('aria-selected', i === at);
  if (!isText) node.style.top = i * height() + 'px';
  for (const cell of row.cells) {
    const span = document.createElement('span');
    span.textContent = cell;
    span.title = cell;
    node.append(span);
  }
  if (row.go) node.addEventListener('click', () => go(row.go));
  return node;
}

function draw(all) {
  const list = $('list'), most = Math.min(rows.length, MOST_DRAWN);
  const from = all || isText ? 0 : Math.max(0, Math.floor(list.scrollTop / height()) - 5);
  const to = all || isText ? most
    : Math.min(rows.length, Math.ceil((list.scrollTop + list.clientHeight) / height()) + 5);
  const nodes = [];
  for (let i = from; i < to; ++i) nodes.push(rowNode(i));
  $('space').replaceChildren(...nodes);
  $('space').style.height = isText ? '' : rows.length * height() + 'px';
  $('count').textContent = rows.length + (rows.length === 1 ? ' row' : ' rows') +
    ((all || isText) && most < rows.length ? ', of which the first ' + most + ' follow' : '');
}

function show(fresh, selected, areTexts = false) {
  rows = fresh;
  at = selected;
  isText = areTexts;
  $('space').className = isText ? 'text' : '';
  $('space').style.height = rows.length * height() + 'px';
  $('list').scrollTop = at < 0 ? 0 : Math.max(0, at * height() - $('list').clientHeight / 2);
  draw(false);
}

// --- the place: what the fragment says ---

function place() {
  const part = {};
  for (const piece of location.hash.slice(1).split('&')) {
    const cut = piece.indexOf('=');
    if (cut > 0) {
      try { part[piece.slice(0, cut)] = decodeURIComponent(piece.slice(cut + 1)); }
      catch (error) { /* a damaged link leads to the start */ }
    }
  }
  return part;
}

const fragment = parts => '#' + Object.entries(parts).filter(([, value]) => value)
  .map(([key, value]) => key + '=' + encodeURIComponent(value)).join('&');

/// The address follows what is typed a moment later, as browsers limit how often it changes.
let typed = null, timer = 0;
function settle() {
  clearTimeout(timer);
  if (typed !== null) history.replaceState(null, '', typed);
  typed = null;
}

function go(change) {
  settle();
  const now = place();
  const next = {c: now.c, v: now.v, ...change};
  if (fragment(next) === location.hash) render(); else location.hash = fragment(next);
}

const mapAt = part => DATA.maps.find(map => map.name === part.c) || DATA.maps[0];
const viewAt = (map, part) => map.views.find(view => view.path === part.v) || map.views[0];

// --- rows ---

const blockRow = (map, block, first, last, note, kind) => ({
  cells: [hex(first), block[PATH], sizeText(last === null ? null : last - first + 1n),
    (block[ON] ? block[USAGE] : 'off') + note],
  kind: kind || (block[ON] ? '' : 'off'), go: {b: block[PATH]}});

/// What an initiator sees, with the holes between and the overlaps marked.
function viewRows(map, view) {
  const made = [];
  let end = 0n;
  const addHole = to => {
    if (to > end) made.push({cells: [hex(end), 'free', roughText(to - end), ''], kind: 'hole'});
  };
  for (const region of view.regions) {
    const first = big(region[FIRST]), last = big(region[LAST]);
    addHole(first);
    const note = (region[ASSIGN] ? ', assign ' + region[ASSIGN] : '') +
      (first < end ? ', overlaps the one before' : '');
    made.push(blockRow(map, map.blocks[region[BLOCK]], first, last, note, first < end ? 'bad' : ''));
    if (last + 1n > end) end = last + 1n;
  }
  if (view.range !== null) addHole(big(view.range));
  return made;
}

function registerRow(block, register, base) {
  const offset = big(register[OFFSET]);
  const address = base === null || offset === null ? null : base + offset;
  const value = register[VALUE] === null ? '' : ', value ' + hex(big(register[VALUE]));
  return {cells: [hex(address), register[NAME], register[WIDTH] + ' bits',
    ACCESSES[register[ACCESS]] + (register[RESET] === null ? '' : ', reset ' +
      hex(big(register[RESET]))) + value], kind: block[ON] ? '' : 'off',
    go: {b: block[PATH], r: register[NAME]}};
}

/// Where the view sees the block, else its own address.
function baseIn(map, view, block) {
  const region = view && view.regions.find(one => map.blocks[one[BLOCK]] === block);
  return big(region ? region[ORIGIN] : block[BASE]);
}

// --- search ---

/// What searches compare with, for each block, made once: names in small letters, and the offsets
/// of the first byte of each register and of the one behind it.
function indexOf(map) {
  map.index = map.index || map.blocks.map(block => ({path: block[PATH].toLowerCase(),
    names: block[REGISTERS].map(register => register[NAME].toLowerCase()),
    starts: block[REGISTERS].map(register => big(register[OFFSET])),
    ends: block[REGISTERS].map(register => register[OFFSET] === null ? null
      : big(register[OFFSET]) + BigInt(Math.max(1, Math.ceil(register[WIDTH] / 8))))}));
  return map.index;
}

/// What a search found: the numbers of blocks, or of regions where `blockOf` says so, each with that
/// of a register, -1 for the block, in one number. Rows are made when they come into sight.
class Found {
  constructor(map, baseOf, blockOf = owner => owner) {
    Object.assign(this, {map, baseOf, blockOf, keys: []});
  }
  get length() { return this.keys.length; }
  add(owner, register) { this.keys.push(owner * MOST_REGISTERS + register + 1); }
  at(i) {
    const owner = Math.floor(this.keys[i] / MOST_REGISTERS);
    const register = this.keys[i] % MOST_REGISTERS - 1;
    const block = this.map.blocks[this.blockOf(owner)], base = this.baseOf(owner);
    const size = big(block[SIZE]);
    return register >= 0 ? registerRow(block, block[REGISTERS][register], base)
      : blockRow(this.map, block, base, base === null || size === null ? null : base + size - 1n, '');
  }
}

function searchRange(map, view, first, last) {
  const found = new Found(map, owner => big(view.regions[owner][ORIGIN]),
    owner => view.regions[owner][BLOCK]), index = indexOf(map);
  view.regions.forEach((region, number) => {
    if (big(region[LAST]) < first || big(region[FIRST]) > last) return;
    found.add(number, -1);
    const {starts, ends} = index[region[BLOCK]], origin = big(region[ORIGIN]);
    const low = first - origin, high = last - origin;
    for (let i = 0; i < starts.length; ++i)
      if (starts[i] !== null && starts[i] <= high && ends[i] > low) found.add(number, i);
  });
  return found;
}

/// Each word has to be in the block's path or the register's name, or across the "/" between.
function searchNames(map, view, text) {
  const words = text.toLowerCase().split(/\s+/).filter(word => word);
  const found = new Found(map, owner => baseIn(map, view, map.blocks[owner]));
  indexOf(map).forEach(({path, names}, number) => {
    const left = words.filter(word => !path.includes(word));
    if (!left.length) found.add(number, -1);
    const isIn = name => left.every(word => name.includes(word) ||
      word.includes('/') && (path + '/' + name).includes(word));
    for (let i = 0; i < names.length; ++i)
      if (isIn(names[i])) found.add(number, i);
  });
  return found;
}

function search(map, view, text) {
  const match = /^(0x[0-9a-f]+|\d+)(?:\s*(-|\+)\s*(0x[0-9a-f]+|\d+))?$/i.exec(text);
  if (!match) return searchNames(map, view, text);
  const first = BigInt(match[1]);
  const last = !match[2] ? first : match[2] === '-' ? BigInt(match[3])
    : first + BigInt(match[3]) - 1n;
  return view ? searchRange(map, view, first, last) : listOf([]);
}

// --- the page ---

function fill(select, names, chosen) {
  select.replaceChildren(...names.map(([value, text]) => new Option(text, value)));
  select.value = chosen;
}

let shown = {};

function render(part = place()) {
  shown = part;
  const map = mapAt(part), view = viewAt(map, part);
  const chosen = part.v === OFF || part.v === FINDINGS ? part.v : view ? view.path : '';
  fill($('config'), DATA.maps.map(one => [one.name, one.name]), map.name);
  fill($('view'), [...map.views.map(one => [one.path, one.path]),
    [OFF, 'Switched off (' + map.off.length + ')'],
    [FINDINGS, 'Findings (' + map.found + ')']], chosen);
  if (document.activeElement !== $('query')) $('query').value = part.q || '';
  $('up').hidden = !part.b && !part.q;
  const block = part.b && map.blocks.find(one => one[PATH] === part.b);
  if (part.q) {
    $('where').textContent = 'Search for "' + part.q + '"';
    show(search(map, view, part.q.trim()), -1);
  } else if (part.b) {
    if (!block) {
      $('where').textContent = 'This map has no block ' + part.b;
      show(listOf([]), -1);
    } else {
      const base = baseIn(map, view, block);
      const off = map.off.find(([path]) => (block[PATH] + '/').startsWith(path + '/'));
      $('where').textContent = block[PATH] + ' at ' + hex(base) + ', ' + sizeText(big(block[SIZE])) +
        (block[ON] ? '' : ', off: ' + (off ? off[1] : ''));
      show({length: block[REGISTERS].length, at: i => registerRow(block, block[REGISTERS][i], base)},
        block[REGISTERS].findIndex(register => register[NAME] === part.r));
    }
  } else if (part.v === OFF) {
    $('where').textContent = 'What the config switched off';
    show(listOf(map.off.map(([path, reason]) => ({cells: [path, reason]}))), -1, true);
  } else if (part.v === FINDINGS) {
    $('where').textContent = 'What the checks found' +
      (map.findings.length < map.found ? ', the first of ' + map.found : '');
    show(listOf(map.findings.map(text => ({cells: [text], kind: 'whole'}))), -1, true);
  } else {
    $('where').textContent = view ? 'As seen from ' + view.path : 'No initiator sees anything';
    show(listOf(view ? viewRows(map, view) : []), -1);
  }
}

function move(step) {
  if (!rows.length) return;
  at = Math.min(rows.length - 1, Math.max(0, at + step));
  const list = $('list'), top = at * height();
  if (top < list.scrollTop && !isText) list.scrollTop = top;
  if (top + height() > list.scrollTop + list.clientHeight && !isText)
    list.scrollTop = top + height() - list.clientHeight;
  draw(false);
  if (isText && $('space').children[at]) $('space').children[at].scrollIntoView({block: 'nearest'});
}

const KEYS = {ArrowDown: () => move(1), ArrowUp: () => move(-1), PageDown: () => move(20),
  PageUp: () => move(-20), Home: () => move(-rows.length), End: () => move(rows.length),
  Enter: () => { if (rows.length && rows.at(Math.max(at, 0)).go) go(rows.at(Math.max(at, 0)).go); }};

$('title').textContent = DATA.title;
document.addEventListener('keydown', event => {
  const isTyping = event.target === $('query');
  if (event.key === '/' && !isTyping) { event.preventDefault(); $('query').focus(); }
  else if (event.key === 'Escape') { $('query').value = ''; $('list').focus(); go({}); }
  else if (event.target.tagName !== 'SELECT' && KEYS[event.key] &&
    !(isTyping && (event.key === 'Home' || event.key === 'End'))) {
    event.preventDefault();
    KEYS[event.key]();
  }
});
$('query').addEventListener('input', () => {
  const change = {c: shown.c, v: shown.v, q: $('query').value};
  render(change);
  clearTimeout(timer);
  typed = fragment(change);
  timer = setTimeout(settle, 200);
});
$('config').addEventListener('change', () => go({...shown, c: $('config').value}));
$('view').addEventListener('change', () => go({v: $('view').value, b: '', r: '', q: ''}));
$('up').addEventListener('click', () => { $('query').value = ''; go({}); });
$('list').addEventListener('scroll', () => isText || draw(false), {passive: true});
addEventListener('resize', () => draw(false));
addEventListener('hashchange', () => render());
addEventListener('beforeprint', () => draw(true));
addEventListener('afterprint', () => draw(false));
render();
// The index is ready before the first search, and doesn't delay the first paint.
setTimeout(() => DATA.maps.forEach(indexOf), 50);
)js";

} // namespace tq::map_page
