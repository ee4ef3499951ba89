'use strict';

const byId = id => document.getElementById(id);
const bodyOf = id => byId(id).querySelector('tbody');

/** An element with properties, of which `class` and `data` are special, and children. */
function make(name, properties = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    if (key === 'class') element.className = value;
    else if (key.includes('-')) element.setAttribute(key, value);
    else element[key] = value;
  }
  element.append(...children);
  return element;
}

const hexByte = number => number.toString(16).toUpperCase().padStart(2, '0');
const twoDigits = number => String(number).padStart(2, '0');
const plural = (count, word) => `${count.toLocaleString('en')} ${word}${count === 1 ? '' : 's'}`;

// --- Talking to the simulator

let saidTimer = 0;

/** Tells what came of something that somebody did. */
function say(text, bad = false) {
  const said = byId('said');
  said.textContent = text;
  said.className = bad ? 'bad' : '';
  said.hidden = false;
  clearTimeout(saidTimer);
  saidTimer = setTimeout(() => { said.hidden = true; }, bad ? 15000 : 5000);
}

async function ask(path, body) {
  const answer = await fetch(path, body === undefined ? {} : {method: 'POST', body}).catch(() => {
    throw new Error('The simulator does not answer. Has it ended?');
  });
  const json = await answer.json();
  if (!answer.ok) throw new Error(json.error);
  return json;
}

/** Asks for a change; says what came of it, and in front of what is wrong where. */
async function change(path, body, done, where = '') {
  try {
    const json = await ask(path, typeof body === 'string' ? body : JSON.stringify(body));
    if (done) say(typeof done === 'function' ? done(json) : done);
    return true;
  } catch (error) {
    say(where + error.message, true);
    return false;
  }
}

const writeBytes = (at, bytes, done) => change('/api/write', {at, bytes: bytes.map(hexByte).join('')}, done);

// --- The trace

const kept = 2000;     // requests that filters look at
const shownRows = 300; // of which the newest stand in the page
const filters = {
  all: () => true,
  reads: row => row.a && !row.w,
  writes: row => row.w,
  bad: row => row.f || row.missed,
  notes: row => !row.a && !row.missed,
};
let rows = [];
let pausedRows = null;
let requests = 0;
let notShown = 0;
let lastNumber = 0; // of a request that was told
let started = 0;    // when the simulator was, which counts its requests from then on

function timeOf(ms) {
  const time = new Date(ms);
  return [time.getHours(), time.getMinutes(), time.getSeconds()].map(twoDigits).join(':') + '.' +
      String(time.getMilliseconds()).padStart(3, '0');
}

function rowElement(row) {
  if (row.missed) return make('li', {class: 'missed'}, `${plural(row.missed, 'request')} not shown`);
  const what = make('span', {class: 'all'}, make('span', {class: 'what'}, row.q));
  if (row.r !== undefined) what.append(make('span', {class: 'answer'}, ' -> ' + row.r));
  return make('li', {class: (row.f ? 'bad ' : '') + (row.w ? 'write' : '')},
      make('span', {class: 'when'}, timeOf(row.t)),
      make('span', {class: 'who', title: row.c ? `connection ${row.c}` : 'the controller or this page'}, row.c ? '#' + row.c : '–'),
      what);
}

function isWanted(row) {
  const text = byId('trace-text').value.trim().toLowerCase();
  return filters[byId('trace-kind').value](row) &&
      (!text || `${row.q} ${row.r || ''} #${row.c}`.toLowerCase().includes(text));
}

function countRequests() {
  byId('trace-count').textContent = plural(requests, 'request') + (notShown ? `, ${notShown.toLocaleString('en')} not shown` : '');
  if (pausedRows) byId('trace-pause').textContent = `Go on (${(requests - pausedRows.at).toLocaleString('en')} new)`;
}

function appendRows(added) {
  const list = byId('trace-rows');
  const scroll = byId('trace-scroll');
  const atEnd = scroll.scrollTop + scroll.clientHeight >= scroll.scrollHeight - 30;
  const wanted = added.filter(isWanted).slice(-shownRows);
  list.append(...wanted.map(rowElement));
  while (list.childElementCount > shownRows) list.firstElementChild.remove();
  byId('trace-empty').hidden = list.childElementCount > 0;
  if (atEnd && wanted.length) scroll.scrollTop = scroll.scrollHeight;
}

function redrawTrace() {
  byId('trace-rows').replaceChildren();
  byId('trace-empty').textContent = rows.length ? 'Nothing of this kind.' : 'Nothing has been asked yet.';
  appendRows(pausedRows || rows);
}

function traced(data) {
  // A connection that begins anew tells some once more, and there may be a gap before them.
  const told = data.rows.filter(row => row.n > lastNumber);
  const missed = told.length && lastNumber ? told[0].n - lastNumber - 1 : data.missed;
  if (told.length) lastNumber = told.at(-1).n;
  else if (missed && lastNumber) lastNumber += missed;
  const added = missed ? [{missed}, ...told] : told;
  requests += told.length + missed;
  notShown += missed;
  rows = rows.concat(added).slice(-kept);
  if (!pausedRows) appendRows(added);
  countRequests();
  for (const row of told.slice(-shownRows)) if (row.a) touch(row);
}

byId('trace-tools').addEventListener('submit', event => event.preventDefault());
byId('trace-kind').addEventListener('change', redrawTrace);
byId('trace-text').addEventListener('input', redrawTrace);
byId('trace-pause').addEventListener('click', () => {
  pausedRows = pausedRows ? null : Object.assign(rows.slice(), {at: requests});
  const button = byId('trace-pause');
  button.setAttribute('aria-pressed', pausedRows ? 'true' : 'false');
  if (pausedRows) return countRequests();
  button.textContent = 'Pause';
  redrawTrace();
});
byId('trace-clear').addEventListener('click', () => {
  rows = [];
  if (pausedRows) pausedRows = Object.assign([], {at: requests});
  requests = notShown = 0;
  if (pausedRows) pausedRows.at = 0;
  redrawTrace();
  countRequests();
});

// --- The memory: lines of 16 bytes by area and address, things as runs of bytes

const lineSize = 16;
let lines = {};             // "V 0510": 16 bytes
let things = [];            // with `cell`, their place on the map
const thingsAt = new Map(); // "V 05": the runs of a page
let chosen = null;
const lit = new Map();      // "V 0510": {until, written}
const litCells = new Map(); // likewise, by elements of the map
const litFor = 1500;        // ms

const keyOf = (area, page, offset) => `${area} ${hexByte(page)}${hexByte(offset)}`;
const zeros = () => new Array(lineSize).fill(0);
const lineAt = key => lines[key] || zeros();
const byteAt = (area, page, offset) => lineAt(keyOf(area, page, offset & 0xF0))[offset & 15];

/** Takes lines as the simulator tells them. */
function takeLines(data) {
  const changed = [];
  for (const [area, byAddress] of Object.entries(data)) {
    for (const [address, digits] of Object.entries(byAddress)) {
      const key = `${area} ${address.toUpperCase()}`;
      lines[key] = digits.match(/../g).map(pair => parseInt(pair, 16));
      changed.push(key);
    }
  }
  return changed;
}

function thingAt(area, page, offset) {
  return (thingsAt.get(`${area} ${hexByte(page)}`) || [])
      .find(run => offset >= run.offset && offset < run.offset + run.count)?.thing;
}

/** The bytes of a transfer: the V areas go on in the next page, a page of the H areas begins anew. */
function bytesOf(row) {
  return Array.from({length: row.k}, (_, i) => {
    const carry = row.a.startsWith('V') ? row.o + i >> 8 : 0;
    return [row.a, row.p + carry & 255, row.o + i & 255];
  });
}

let newlyTouched = null;

function touch(row) {
  for (const [area, page, offset] of bytesOf(row)) {
    light(lit, keyOf(area, page, offset), row.w);
    const thing = thingAt(area, page, offset);
    if (!thing) continue;
    newlyTouched = thing;
    const {written} = light(litCells, thing.cell, row.w);
    thing.cell.classList.toggle('written', written);
    thing.cell.classList.toggle('read', !written);
  }
  if (lit.size > 20000) lit.clear();
}

/** Marks something as touched just now. What was just written stays so: hosts read it back at once. */
function light(marks, key, written) {
  const now = performance.now();
  const before = marks.get(key);
  if (!written && before?.written && before.until > now) return before;
  const mark = {until: now + litFor, written: Boolean(written)};
  marks.set(key, mark);
  return mark;
}

function putOut() {
  const now = performance.now();
  for (const [cell, mark] of litCells) {
    if (mark.until > now) continue;
    cell.classList.remove('read', 'written');
    litCells.delete(cell);
  }
  for (const [key, mark] of lit) if (mark.until <= now) lit.delete(key);
}

const letter = byte => byte >= 32 && byte < 127 ? String.fromCharCode(byte) : '·';

function lineKeys(thing) {
  const keys = new Map();
  for (const run of thing.runs) {
    for (let offset = run.offset & 0xF0; offset < run.offset + run.count; offset += lineSize) {
      keys.set(keyOf(run.area, run.page, offset), {area: run.area, page: run.page, offset});
    }
  }
  return keys;
}

/** Draws the chosen thing, only what differs once its lines stand there. */
function drawMemory() {
  if (!chosen) return;
  const table = byId('memory-lines');
  const keys = lineKeys(chosen);
  if (table.dataset.thing !== chosen.title) {
    table.dataset.thing = chosen.title;
    byId('memory-caption').textContent = chosen.title;
    table.replaceChildren(...[...keys].map(([key, at]) => lineElement(key, at)));
  }
  let i = 0;
  for (const [key, at] of keys) {
    const cells = table.children[i++].cells;
    const bytes = lineAt(key);
    bytes.forEach((byte, n) => {
      const mark = lit.get(keyOf(at.area, at.page, at.offset + n));
      const own = thingAt(at.area, at.page, at.offset + n) === chosen;
      const style = mark ? (mark.written ? 'written' : 'read') : own ? '' : 'other';
      const text = hexByte(byte);
      if (cells[n + 1].textContent !== text) cells[n + 1].textContent = text;
      if (cells[n + 1].className !== style) cells[n + 1].className = style;
    });
    const text = bytes.map(letter).join('');
    if (cells[17].textContent !== text) cells[17].textContent = text;
  }
}

function lineElement(key) {
  const button = make('button', {type: 'button', 'aria-label': `Change the line ${key}`, onclick: () => editLine(key)}, key);
  const row = make('tr', {}, make('th', {scope: 'row'}, button));
  for (let n = 0; n < lineSize; ++n) row.append(make('td'));
  row.append(make('td', {class: 'text', 'aria-hidden': 'true'}));
  return row;
}

function choose(thing) {
  if (chosen) chosen.cell.classList.remove('chosen');
  chosen = thing;
  chosen.cell.classList.add('chosen');
  if (byId('memory-kind').value !== thing.kind) {
    byId('memory-kind').value = thing.kind;
    listThings();
  }
  byId('memory-thing').value = thing.title;
  drawMemory();
}

function listThings() {
  const kind = byId('memory-kind').value;
  byId('memory-thing').replaceChildren(
      ...things.filter(thing => thing.kind === kind).map(thing => make('option', {value: thing.title}, thing.title)));
}

function stopFollowing() {
  byId('memory-follow').checked = false;
}

function drawMap() {
  thingsAt.clear();
  const byKind = new Map();
  for (const thing of things) {
    thing.cell = make('i', {title: thing.title, onclick: () => { stopFollowing(); choose(thing); }});
    if (!byKind.has(thing.kind)) byKind.set(thing.kind, []);
    byKind.get(thing.kind).push(thing.cell);
    for (const run of thing.runs) {
      const page = `${run.area} ${hexByte(run.page)}`;
      if (!thingsAt.has(page)) thingsAt.set(page, []);
      thingsAt.get(page).push({...run, thing});
    }
  }
  byId('memory-kind').replaceChildren(...[...byKind.keys()].map(kind => make('option', {value: kind}, kind)));
  byId('map').replaceChildren(...[...byKind].map(([kind, cells]) =>
      make('p', {}, make('span', {}, kind), make('span', {class: 'cells'}, ...cells))));
}

function markUsed() {
  for (const thing of things) {
    thing.cell.classList.toggle('used', thing.runs.some(run => {
      for (let i = 0; i < run.count; ++i) if (byteAt(run.area, run.page, run.offset + i)) return true;
      return false;
    }));
  }
}

byId('memory-tools').addEventListener('submit', event => event.preventDefault());
byId('memory-kind').addEventListener('change', () => {
  stopFollowing();
  listThings();
  choose(things.find(thing => thing.kind === byId('memory-kind').value));
});
byId('memory-thing').addEventListener('change', event => {
  stopFollowing();
  choose(things.find(thing => thing.title === event.target.value));
});

let editedLine = null;

function editLine(key) {
  stopFollowing();
  const [, area, page, offset] = key.match(/^(\S+) (..)(..)$/);
  // What cannot be written by hand, such as a mailbox, ends the run of bytes.
  const start = {area, page: parseInt(page, 16), offset: parseInt(offset, 16)};
  const own = Array.from({length: lineSize}, (_, n) => thingAt(area, start.page, start.offset + n) === chosen);
  const first = own.indexOf(true);
  let count = 0;
  while (first + count < lineSize && own[first + count]) ++count;
  editedLine = {at: keyOf(area, start.page, start.offset + first), count};
  byId('line-title').textContent = `${chosen.title}, ${plural(count, 'byte')} from ${editedLine.at}`;
  byId('line-bytes').value = lineAt(key).slice(first, first + count).map(hexByte).join(' ');
  byId('line-form').hidden = false;
  byId('line-bytes').focus();
}

byId('line-form').addEventListener('submit', async event => {
  event.preventDefault();
  const digits = byId('line-bytes').value.replace(/[\s,]+/g, '');
  const wanted = editedLine.count;
  if (!/^([0-9a-f]{2})+$/i.test(digits) || digits.length !== wanted * 2) {
    return say(`${plural(wanted, 'byte')} of two hexadecimal digits are needed.`, true);
  }
  const bytes = digits.match(/../g).map(pair => parseInt(pair, 16));
  if (await writeBytes(editedLine.at, bytes, `${plural(wanted, 'byte')} written at ${editedLine.at}.`)) byId('line-form').hidden = true;
});
byId('line-cancel').addEventListener('click', () => { byId('line-form').hidden = true; });

// --- The clock

const days = ['', 'Monday', 'Tuesday', 'Wednesday', 'Thursday', 'Friday', 'Saturday', 'Sunday'];

function drawClock() {
  const bcd = offset => hexByte(byteAt('V', 255, offset));
  const held = byteAt('V', 255, 247) || byteAt('V', 255, 248);
  const text = `${days[byteAt('V', 255, 252)] || '?'} 20${bcd(255)}-${bcd(254)}-${bcd(253)} ${bcd(251)}:${bcd(250)}:${bcd(249)}`;
  byId('clock').textContent = text + (held ? ' (held)' : '');
}

byId('set-clock').addEventListener('click', () => {
  const now = new Date();
  const bcd = number => parseInt(String(number % 100), 16);
  writeBytes('V FFF7', [0, 0, bcd(now.getSeconds()), bcd(now.getMinutes()), bcd(now.getHours()), now.getDay() || 7,
    bcd(now.getDate()), bcd(now.getMonth() + 1), bcd(now.getFullYear())], 'The clock is set.');
});

// --- The house

function renameButton(title, at, text) {
  return make('button', {type: 'button', title: 'Change the text', onclick: () => {
    byId('rename-title').textContent = title;
    byId('rename-text').value = text;
    byId('rename').dataset.at = at;
    byId('rename').showModal();
  }}, text || '(none)');
}

byId('rename-form').addEventListener('submit', async event => {
  event.preventDefault();
  const codes = [...byId('rename-text').value].map(c => c.codePointAt(0));
  if (codes.some(code => code > 255)) return say('The controller keeps one byte for each character.', true);
  while (codes.length < lineSize) codes.push(32);
  byId('rename').close();
  await writeBytes(byId('rename').dataset.at, codes.slice(0, lineSize), 'The text is written.');
});
byId('rename-cancel').addEventListener('click', () => byId('rename').close());

const rowOf = (...cells) => make('tr', {}, ...cells.map((cell, i) => make(i ? 'td' : 'th', i ? {} : {scope: 'row'}, cell)));

function fill(section, list, toRow, word) {
  bodyOf(section).replaceChildren(...list.map(toRow));
  const count = byId(section).querySelector('h2 .count');
  if (count) count.textContent = list.length;
  if (!list.length) bodyOf(section).append(make('tr', {}, make('td', {colSpan: 5, class: 'quiet'}, word)));
}

function outputRow(output) {
  const at = keyOf('V', output.output, 64);
  const settings = make('span', {class: 'settings mono'}, ...output.items.map(item =>
      make('span', {}, make('b', {}, item.place + '='), String(item.value))));
  return rowOf(String(output.output), renameButton(`Name of output ${output.output}`, at, output.name),
      `${output.mode} ${output.meaning}`, settings);
}

function presetRow(preset) {
  const at = keyOf('V', preset.preset + 34, 40);
  const records = make('span', {class: 'settings mono'}, ...preset.records.map(record =>
      make('span', {}, make('b', {}, (record.record + ' ' + record.name).trim() + ': '), record.bytes.join(' '))));
  return rowOf(String(preset.preset), renameButton(`Text of preset ${preset.preset}`, at, preset.text),
      `${preset.delay1}${preset.delay2 ? ', ' + preset.delay2 : ''}`, preset.simulation ? 'yes' : 'no', records);
}

const textRow = kind => text => rowOf(String(text.number), renameButton(`${kind} text ${text.number}`, text.at.toUpperCase(), text.text));

function moduleRow(module) {
  const row = rowOf(module.serial, module.name || '(does not tell)', module.name ? String(module.cpu) : '', module.firmware);
  row.cells[2].className = 'number';
  return row;
}

function drawHouse(house) {
  fill('outputs', house.outputs, outputRow, 'No output has a mode or a name.');
  fill('presets', house.presets, presetRow, 'No preset is in use.');
  fill('display-texts', house.displayTexts, textRow('Display'), 'There is none.');
  fill('infrared-texts', house.infraredTexts, textRow('Infrared'), 'There is none.');
  fill('modules', house.modules, moduleRow, 'There is none.');
}

let houseTimer = 0;

/** Reads the house again, but not more often than somebody can see. */
function houseSoon() {
  if (!houseTimer) houseTimer = setTimeout(async () => {
    try {
      // What has the focus is not taken away under somebody's hands.
      if (!document.activeElement?.closest?.('#outputs td, #presets td, #texts td')) drawHouse(await ask('/api/house'));
    } catch {
      // The pill tells that the connection is lost, and everything is read again when it is back.
    } finally {
      houseTimer = 0;
    }
  }, 700);
}

byId('load').addEventListener('change', async event => {
  const file = event.target.files[0];
  if (!file) return;
  const text = await file.text().catch(() => null);
  if (text === null) say(`${file.name} cannot be read.`, true);
  else {
    await change('/api/backup', text, json => `${file.name} is loaded.` + (json.remark ? ` Mind: ${json.remark}.` : ''),
        `${file.name}: `);
  }
  event.target.value = '';
});

// --- Faults

/** Draws the faults; while only their counts change, the buttons stay, since somebody may be about to press one. */
function drawFaults(faults) {
  const list = byId('fault-list');
  const counts = list.querySelectorAll('.quiet');
  const told = fault => `${plural(fault.counted, fault.counts)} since then`;
  const ids = faults.map(fault => fault.id).join();
  if (ids && list.dataset.ids === ids) return faults.forEach((fault, i) => { counts[i].textContent = told(fault); });
  list.dataset.ids = ids;
  list.replaceChildren(...faults.map(fault => make('li', {},
      make('code', {}, fault.fault), make('span', {class: 'quiet'}, told(fault)),
      make('button', {type: 'button', 'aria-label': `Take ${fault.fault} back`,
        onclick: () => change('/api/faults/take-back', {id: fault.id}, 'The fault is taken back.')}, 'Take back'))));
  if (!ids) list.append(make('li', {class: 'none quiet'}, 'No fault is set.'));
}

const setFault = fault => change('/api/faults', {fault}, `${fault} is set.`);

function kindElement(kind) {
  const argument = kind.argument ? make('input', {type: 'number', min: 0, max: kind.highest,
    value: kind.fallback >= 0 ? kind.fallback : {status: 7, late: 1500, short: 2, busy: 3, pending: 3, code: 128}[kind.name] ?? 1,
    'aria-label': `${kind.name}: ${kind.argument}`}) : make('span');
  const form = make('form', {noValidate: true}, make('span', {}, kind.help), argument,
      make('button', {type: 'submit'}, kind.name));
  form.addEventListener('submit', event => {
    event.preventDefault();
    // What is no number at all a browser hands over as an empty text.
    if (kind.argument && !(/^\d+$/.test(argument.value) && Number(argument.value) <= kind.highest)) {
      argument.focus();
      return say(`${kind.name}: ${kind.argument} is a whole number from 0 to ${kind.highest}.`, true);
    }
    setFault(kind.name + (kind.argument ? '=' + argument.value : '') + '@' + byId('fault-which').value);
  });
  return make('li', {}, form);
}

byId('fault-where').addEventListener('submit', event => event.preventDefault());
byId('fault-text').addEventListener('submit', async event => {
  event.preventDefault();
  if (await setFault(byId('fault-line').value.trim())) byId('fault-line').value = '';
});
byId('fault-none').addEventListener('click', () => change('/api/faults/take-all-back', '', 'All faults are taken back.'));

// --- Connections

function drawConnections(data) {
  byId('connection-count').textContent = data.count;
  fill('connections', data.connections, one => {
    const row = rowOf('#' + one.id, one.interface, timeOf(one.since).slice(0, 8), one.requests.toLocaleString('en'));
    row.lastElementChild.className = 'number';
    return row;
  }, 'Nobody is connected.');
}

// --- Events

let held = []; // events that came before what they change was read

function handle(name, data) {
  if (held) return held.push([name, data]);
  if (name === 'trace') return traced(data);
  if (name === 'faults') return drawFaults(data);
  if (name === 'connections') return drawConnections(data);
  if (name === 'house') return houseSoon();
  const changed = takeLines(data);
  if (changed.includes('V FFF0')) drawClock();
  if (changed.some(key => key !== 'V FFF0')) {
    houseSoon();
    markUsed();
  }
  drawMemory();
}

async function start() {
  held = [];
  const [description, house, memory] = await Promise.all(
      [ask('/api/description'), ask('/api/house'), ask('/api/memory')]);
  byId('version').textContent = `velk-sim ${description.version}`;
  byId('interfaces').replaceChildren(...description.interfaces.map(text => make('li', {}, text)));
  byId('fault-kinds').replaceChildren(...description.faultKinds.map(kindElement));
  if (started !== description.started) lastNumber = 0;
  started = description.started;
  lines = {};
  takeLines(memory);
  const before = chosen?.title;
  things = description.things;
  chosen = null;
  drawMap();
  markUsed();
  listThings();
  byId('memory-lines').dataset.thing = '';
  choose(things.find(thing => thing.title === before) || things.find(thing => thing.title === 'output 5') || things[0]);
  drawClock();
  drawHouse(house);
  drawFaults(house.faults);
  drawConnections(house.connected);
  const waiting = held;
  held = null;
  for (const [name, data] of waiting) handle(name, data);
}

const live = byId('live');

function showLive(text, lost) {
  if (live.textContent === text) return;
  live.textContent = text;
  live.className = lost ? 'pill lost' : 'pill';
}

const events = new EventSource('/api/events');
events.addEventListener('hello', async () => {
  try {
    await start();
    showLive('live', false);
  } catch (error) {
    say(error.message, true);
  }
});
for (const name of ['trace', 'memory', 'house', 'faults', 'connections']) {
  events.addEventListener(name, event => handle(name, JSON.parse(event.data)));
}
events.addEventListener('error', () => showLive('connection lost', true));

setInterval(() => {
  putOut();
  if (newlyTouched && byId('memory-follow').checked && newlyTouched !== chosen) choose(newlyTouched);
  newlyTouched = null;
  drawMemory();
}, 250);
