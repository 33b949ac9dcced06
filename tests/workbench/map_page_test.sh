#!/bin/sh
# map_page_test.sh HBS SOURCE_DIR: opens the page of the sample's maps in a headless Chromium. A script
# that is added to a copy of the page acts as a person does and leaves what it saw in the document.
set -eu
hbs=$1 source_dir=$2
command -v chromium >/dev/null || { echo "chromium isn't installed; ./run test installs it"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -R "$source_dir/examples/device" "$work/device"
for name in cpu ddr eth noc ps uart; do
    "$hbs" define "$work/device/mirrel/hardblocks" "sorrel_$name" --write >/dev/null
done
# Two configs that differ: the status says so.
"$hbs" addressing kestrom:hardblock:sorrel_ps:1.0 --data "$work/device" \
    --config "$work/device/config_linux.json" --config "$work/device/config_bare_metal.json" \
    --html "$work/page.html" >/dev/null || [ $? = 1 ]

# open PAGE#FRAGMENT: the document after its scripts ran; the console goes to "$work/console".
open() {
    chromium --headless --no-sandbox --disable-gpu --disable-background-networking \
        --disable-component-update --disable-sync --no-first-run --disable-dev-shm-usage \
        --host-resolver-rules='MAP * ~NOTFOUND' --user-data-dir="$work/profile" \
        --enable-logging=stderr --virtual-time-budget=5000 --dump-dom "file://$1" 2>"$work/console"
}

# expect TEXT FILE
expect() {
    grep -qF -- "$1" "$2" || { echo "expected $1 in:"; cat "$2"; exit 1; }
}

sed 's|</body>||; s|</html>||' "$work/page.html" >"$work/acted.html"
cat >>"$work/acted.html" <<'SCRIPT'
<script>
const seen = [];
const note = name => seen.push(name + ': ' + $('where').textContent + ' / ' +
  [...document.querySelectorAll('.row')].slice(0, 3).map(row => row.textContent).join(' ; '));
const wait = () => new Promise(done => setTimeout(done, 20));
const type = text => { $('query').value = text; $('query').dispatchEvent(new Event('input')); };
const choose = (id, value) => { $(id).value = value; $(id).dispatchEvent(new Event('change')); };
(async () => {
  note('start');
  seen.push('end: ' + [...document.querySelectorAll('.row')].at(-1).textContent);
  type('uart0 baud'); note('name');
  type('0xFF000004'); note('address');
  type('0xFF000000-0xFF000007'); note('range');
  document.querySelector('.row.link').click(); await wait(); note('block');
  document.querySelectorAll('.row.link')[1].click(); await wait(); note('register');
  const link = location.hash;
  $('up').click(); await wait(); note('up');
  choose('view', 'off'); await wait(); note('off');
  choose('config', DATA.maps[1].name); await wait(); note('config');
  choose('view', 'cpu0/data'); await wait();
  document.dispatchEvent(new KeyboardEvent('keydown', {key: 'Escape', bubbles: true})); await wait();
  document.dispatchEvent(new KeyboardEvent('keydown', {key: 'ArrowDown', bubbles: true}));
  document.dispatchEvent(new KeyboardEvent('keydown', {key: 'Enter', bubbles: true})); await wait();
  note('keys');
  // A hundred thousand registers, each of which is found; the browser allows 200 changes of the
  // address in a while.
  choose('view', 'cpu0/data'); await wait();
  DATA.maps[1].blocks[0][REGISTERS] = Array.from({length: 1e5}, (_, i) =>
    ['MANY_' + i, '0x' + (4 * i).toString(16), 32, 0, null, null]);
  DATA.maps[1].index = null;
  const times = [];
  for (let i = 0; i < 210; ++i) {
    const start = performance.now();
    type(i % 2 ? 'many_' : 'many'); document.body.offsetHeight;
    times.push(performance.now() - start);
  }
  times.sort((a, b) => a - b);
  note('many, ' + (times[105] < 200 ? 'soon' : 'after ' + times[105] + ' ms'));
  $('list').scrollTop = 1e9; await wait(); draw(false);
  const names = [...document.querySelectorAll('.row')].map(row => row.children[1].textContent);
  seen.push('last: ' + names.at(-1) + (names.length < 200 ? ' of few' : ''));
  type('0x0-0xFFFFF'); seen.push('wide: ' + $('count').textContent);
  choose('view', 'findings'); await wait();
  note('findings');
  choose('view', 'cpu0/data'); await wait(); type('many');
  dispatchEvent(new Event('beforeprint'));
  seen.push('print: ' + document.querySelectorAll('.row').length + ' ' + $('count').textContent);
  const result = document.createElement('pre');
  result.id = 'seen';
  result.textContent = seen.join('\n') + '\nlink: ' + link + '\nrequests: ' +
    performance.getEntriesByType('resource').length;
  document.body.append(result);
})();
</script></body></html>
SCRIPT
open "$work/acted.html" >"$work/dom"
mv "$work/console" "$work/console.acted"
sed -n '/<pre id="seen">/,/<\/pre>/p' "$work/dom" >"$work/seen"
expect 'start: As seen from cpu0/data / 0x0ddr0/memory/ddr_low2G' "$work/seen"
expect 'end: 0x980000000free26G' "$work/seen"
expect '0xFF000018UART_BAUD32 bits' "$work/seen"
expect 'address: Search for "0xFF000004" / 0xFF000000uart0/sorrel_uart/regs4Kregister' \
    "$work/seen"
expect '0xFF000004UART_MODE' "$work/seen"
expect 'range: Search for "0xFF000000-0xFF000007"' "$work/seen"
expect 'block: uart0/sorrel_uart/regs at 0xFF000000, 4K / 0xFF000000UART_CTRL' "$work/seen"
expect 'link: #b=uart0%2Fsorrel_uart%2Fregs' "$work/seen"
expect 'up: As seen from ' "$work/seen"
expect 'off: What the config switched off / UART_1' "$work/seen"
expect '(0x0 &amp; 0x1) == 1 is false' "$work/seen"
expect 'config: What the config switched off / ' "$work/seen"
expect 'keys: ddr0/memory/ddr_low at ' "$work/seen"
expect 'many, soon: Search for "many' "$work/seen"
expect 'last: MANY_99999 of few' "$work/seen"
expect 'wide: 100001 rows' "$work/seen"
expect 'findings: What the checks found / ' "$work/seen"
expect '[aperture-size:ddr0/memory/ddr_high]' "$work/seen"
expect 'print: 5000 100000 rows, of which the first 5000 follow' "$work/seen"
expect 'requests: 0' "$work/seen"

open "$work/page.html#v=S_AXI_LPD&b=uart0/sorrel_uart/regs&r=UART_MODE" >"$work/linked"
expect 'class="row link at"' "$work/linked"
if grep -E 'CONSOLE|Refused|ERR_' "$work/console" "$work/console.acted"; then
    echo "the console isn't empty"
    exit 1
fi
