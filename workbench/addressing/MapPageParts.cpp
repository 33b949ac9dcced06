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
  grid-template-columns: minmax(150px, 17em) minmax(160px, 2fr) minmax(90px, 1fr) minmax(100px, 2fr);
  gap: 12px; white-space: nowrap; border-bottom: 1px solid var(--line); cursor: default; }
.row span { overflow: hidden; text-overflow: ellipsis; }
.row span:first-child { font-family: "DejaVu Sans Mono", Menlo, monospace; font-size: 12px; }
.row.link { cursor: pointer; }
.row.at, .row.link:hover { background: var(--lit); }
.row.hole { background: var(--hole); color: var(--soft); }
.row.bad span:last-child { color: var(--bad); font-weight: bold; }
.row.off { color: var(--soft); }
.soft { color: var(--soft); }
@media (max-width: 700px) {
  .row { grid-template-columns: 8.5em 1fr 5em; gap: 8px; } .row span:last-child { display: none; }
  .row.bad span:nth-child(2) { color: var(--bad); }
}
@media print {
  body { height: auto; display: block; } header select, header input, header button { display: none; }
  #list { overflow: visible; } #space { height: auto !important; }
  .row { position: static; break-inside: avoid; }
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
const HEIGHT = 26, MOST_PRINTED = 5000;
const OFF = 'off', FINDINGS = 'findings';

const $ = id => document.getElementById(id);
const big = text => text === null ? null : BigInt(text);
const hex = number => number === null ? '?' : '0x' + number.toString(16).toUpperCase();
const sizeText = number => {
  if (number === null) return '?';
  for (const [unit, bits] of [['T', 40n], ['G', 30n], ['M', 20n], ['K', 10n]])
    if (number !== 0n && number % (1n << bits) === 0n) return (number >> bits) + unit;
  return hex(number);
};

// --- the list: only the rows in sight are in the document ---

let rows = [], at = -1;

function rowNode(i) {
  const row = rows[i], node = document.createElement('div');
  node.className = 'row' + (row.go ? ' link' : '') + (row.kind ? ' ' + row.kind : '') +
    (i === at ? ' at' : '');
  node.setAttribute('role', 'option');
  node.style.top = i * HEIGHT + 'px';
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
  const list = $('list');
  const from = all ? 0 : Math.max(0, Math.floor(list.scrollTop / HEIGHT) - 5);
  const to = all ? Math.min(rows.length, MOST_PRINTED)
    : Math.min(rows.length, Math.ceil((list.scrollTop + list.clientHeight) / HEIGHT) + 5);
  const nodes = [];
  for (let i = from; i < to; ++i) nodes.push(rowNode(i));
  $('space').replaceChildren(...nodes);
}

function show(fresh, selected) {
  rows = fresh;
  at = selected;
  $('space').style.height = rows.length * HEIGHT + 'px';
  $('list').scrollTop = at < 0 ? 0 : Math.max(0, at * HEIGHT - $('list').clientHeight / 2);
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

function go(change) {
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
  for (const region of view.regions) {
    const first = big(region[FIRST]), last = big(region[LAST]);
    if (first > end)
      made.push({cells: [hex(end), 'free', sizeText(first - end), ''], kind: 'hole'});
    const note = (region[ASSIGN] ? ', assign ' + region[ASSIGN] : '') +
      (first < end ? ', overlaps the one before' : '');
    made.push(blockRow(map, map.blocks[region[BLOCK]], first, last, note, first < end ? 'bad' : ''));
    if (last + 1n > end) end = last + 1n;
  }
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

/// The names of all blocks and registers in small letters, made once for each map.
function indexOf(map) {
  if (!map.index) {
    map.index = [];
    map.blocks.forEach(block => {
      const path = block[PATH].toLowerCase();
      map.index.push([path, block, null]);
      for (const register of block[REGISTERS])
        map.index.push([path + '/' + register[NAME].toLowerCase(), block, register]);
    });
  }
  return map.index;
}

/// The rows of blocks and registers with the addresses of their blocks, made when they come into sight.
function lazyRows(map, found) {
  return new Proxy(found, {get: (all, key) => {
    const item = typeof key === 'string' && /^\d+$/.test(key) ? all[key] : undefined;
    if (!item) return all[key];
    const [block, register, base] = item, size = big(block[SIZE]);
    return register ? registerRow(block, register, base)
      : blockRow(map, block, base, base === null || size === null ? null : base + size - 1n, '');
  }});
}

function searchRange(map, view, first, last) {
  const made = [];
  for (const region of view.regions) {
    const from = big(region[FIRST]), to = big(region[LAST]);
    if (to < first || from > last) continue;
    const block = map.blocks[region[BLOCK]], origin = big(region[ORIGIN]);
    made.push([block, null, origin]);
    for (const register of block[REGISTERS]) {
      if (register[OFFSET] === null) continue;
      const start = origin + big(register[OFFSET]);
      const bytes = BigInt(Math.max(1, Math.ceil(register[WIDTH] / 8)));
      if (start <= last && start + bytes > first) made.push([block, register, origin]);
    }
  }
  return lazyRows(map, made);
}

function searchNames(map, view, text) {
  const words = text.toLowerCase().split(/\s+/).filter(word => word), made = [];
  const bases = new Map();
  for (const [name, block, register] of indexOf(map)) {
    if (!words.every(word => name.includes(word))) continue;
    if (!bases.has(block)) bases.set(block, baseIn(map, view, block));
    made.push([block, register, bases.get(block)]);
  }
  return lazyRows(map, made);
}

function search(map, view, text) {
  const match = /^(0x[0-9a-f]+|\d+)(?:\s*(-|\+)\s*(0x[0-9a-f]+|\d+))?$/i.exec(text);
  if (!match) return searchNames(map, view, text);
  const first = BigInt(match[1]);
  const last = !match[2] ? first : match[2] === '-' ? BigInt(match[3])
    : first + BigInt(match[3]) - 1n;
  return view ? searchRange(map, view, first, last) : [];
}

// --- the page ---

function fill(select, names, chosen) {
  select.replaceChildren(...names.map(([value, text]) => new Option(text, value)));
  select.value = chosen;
}

function render() {
  const part = place(), map = mapAt(part), view = viewAt(map, part);
  const shown = part.v === OFF || part.v === FINDINGS ? part.v : view ? view.path : '';
  fill($('config'), DATA.maps.map(one => [one.name, one.name]), map.name);
  fill($('view'), [...map.views.map(one => [one.path, one.path]),
    [OFF, 'Switched off (' + map.off.length + ')'],
    [FINDINGS, 'Findings (' + map.findings.length + ')']], shown);
  if (document.activeElement !== $('query')) $('query').value = part.q || '';
  $('up').hidden = !part.b && !part.q;
  const block = part.b && map.blocks.find(one => one[PATH] === part.b);
  if (part.q) {
    $('where').textContent = 'Search for "' + part.q + '"';
    show(search(map, view, part.q.trim()), -1);
  } else if (part.b) {
    if (!block) {
      $('where').textContent = 'This map has no block ' + part.b;
      show([], -1);
    } else {
      const base = baseIn(map, view, block);
      const off = map.off.find(([path]) => (block[PATH] + '/').startsWith(path + '/'));
      $('where').textContent = block[PATH] + ' at ' + hex(base) + ', ' + sizeText(big(block[SIZE])) +
        (block[ON] ? '' : ', off: ' + (off ? off[1] : ''));
      show(block[REGISTERS].map(register => registerRow(block, register, base)),
        block[REGISTERS].findIndex(register => register[NAME] === part.r));
    }
  } else if (part.v === OFF) {
    $('where').textContent = 'What the config switched off';
    show(map.off.map(([path, reason]) => ({cells: ['', path, '', reason], kind: 'off'})), -1);
  } else if (part.v === FINDINGS) {
    $('where').textContent = 'What the checks found';
    show(map.findings.map(text => ({cells: ['', text, '', '']})), -1);
  } else {
    $('where').textContent = view ? 'As seen from ' + view.path : 'No initiator sees anything';
    show(view ? viewRows(map, view) : [], -1);
  }
  $('count').textContent = rows.length + (rows.length === 1 ? ' row' : ' rows');
}

function move(step) {
  if (!rows.length) return;
  at = Math.min(rows.length - 1, Math.max(0, at + step));
  const list = $('list'), top = at * HEIGHT;
  if (top < list.scrollTop) list.scrollTop = top;
  if (top + HEIGHT > list.scrollTop + list.clientHeight)
    list.scrollTop = top + HEIGHT - list.clientHeight;
  draw(false);
}

const KEYS = {ArrowDown: () => move(1), ArrowUp: () => move(-1), PageDown: () => move(20),
  PageUp: () => move(-20), Home: () => move(-rows.length), End: () => move(rows.length),
  Enter: () => { const row = rows[Math.max(at, 0)]; if (row && row.go) go(row.go); }};

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
  const part = place(), change = {c: part.c, v: part.v, q: $('query').value};
  history.replaceState(null, '', fragment(change) === '#' ? '#' : fragment(change));
  render();
});
$('config').addEventListener('change', () => go({...place(), c: $('config').value}));
$('view').addEventListener('change', () => go({v: $('view').value, b: '', r: '', q: ''}));
$('up').addEventListener('click', () => { $('query').value = ''; go({}); });
$('list').addEventListener('scroll', () => draw(false), {passive: true});
addEventListener('resize', () => draw(false));
addEventListener('hashchange', render);
addEventListener('beforeprint', () => draw(true));
addEventListener('afterprint', () => draw(false));
render();
// The index is ready before the first search, and doesn't delay the first paint.
setTimeout(() => DATA.maps.forEach(indexOf), 50);
)js";

} // namespace tq::map_page
