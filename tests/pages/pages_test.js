// The built pages in a real browser: node tests/pages/pages_test.js build/docs
'use strict';
const { execFileSync } = require('node:child_process');
const fs = require('node:fs');
const path = require('node:path');
const { pathToFileURL, fileURLToPath } = require('node:url');
const { Browser } = require('./browser.js');
const ask = require('./in_page.js');

const root = path.resolve(process.argv[2]);
const files = fs.readdirSync(root, { recursive: true }).map((name) => path.join(root, name)).sort();
const pages = files.filter((name) => name.endsWith('.html'));
const version = execFileSync(path.join(__dirname, '../../tools/version'), { encoding: 'utf8' }).trim();
const pictures = files.filter((name) => /help.*\.svg$/.test(name));

const views = [360, 800, 1280].flatMap((width) => ['light', 'dark'].map((scheme) => ({ width, scheme })));
// On paper, and where no media query applies, as in an old browser.
views.push({ width: 800, scheme: 'dark', media: 'print' }, { width: 800, scheme: 'dark', media: 'tty' });

// What is typed into the filter box, and what of the list is left.
const filters = [
  { typed: 'executememory', left: (names) => names.includes('ExecuteMemoryMT') && names.length < 9 },
  { typed: 'MemoryBlock COMPILE', left: (names) => names.includes('CompileMemory') && names.length < 9 },
  { typed: 'no such member', left: (names) => names.length === 0 },
  { typed: '', left: (names) => names.length > 100 },
];

let failures = 0;
function check(where, complaints) {
  failures += complaints.length;
  for (const complaint of complaints.slice(0, 3)) console.log(`${where}: ${complaint}`);
  if (complaints.length > 3) console.log(`${where}: and ${complaints.length - 3} more`);
}

async function set(browser, { width, scheme, media = 'screen' }) {
  await browser.send('Emulation.setEmulatedMedia', { media, features: [{ name: 'prefers-color-scheme', value: scheme }] });
  await browser.send('Emulation.setDeviceMetricsOverride', { width, height: 900, deviceScaleFactor: 1, mobile: false });
}

async function look(browser, name, seen) {
  const where = path.relative(root, name);
  await browser.load(pathToFileURL(name).href);
  for (const view of views) {
    await set(browser, view);
    const found = [...await browser.run(ask.tooWide, view.width), ...await browser.run(ask.hardToRead)];
    check(`${where} at ${view.width}, ${view.media || view.scheme}`, found);
  }
  await set(browser, views[0]);
  if (pictures.includes(name)) return;

  check(where, await browser.run(ask.wronglyColoured));
  const content = await browser.run(ask.contents);
  seen.set(pathToFileURL(name).href, content);
  check(where, content.missing.map((image) => `shows no ${image}`));
  if (content.navigation < 5) check(where, ['has no navigation']);
  if (!content.foot.endsWith(` ${version}`)) check(where, [`is not of version ${version}`]);
}

function follow(seen) {
  for (const [page, { links }] of seen) {
    const dead = links.filter((link) => {
      const [file, anchor] = link.split('#');
      if (!file.startsWith('file:')) return false;
      return anchor && seen.has(file) ? !seen.get(file).ids.includes(decodeURIComponent(anchor)) : !fs.existsSync(fileURLToPath(file));
    });
    check(path.relative(root, fileURLToPath(page)), dead.map((link) => `leads nowhere: ${link}`));
  }
}

async function filter(browser, members) {
  await browser.load(members);
  for (const { typed, left } of filters) {
    await browser.run(() => { const box = document.querySelector('#filter input'); box.focus(); box.select(); });
    await browser.send('Input.dispatchKeyEvent', { type: 'keyDown', key: 'Delete', code: 'Delete', windowsVirtualKeyCode: 46 });
    await browser.send('Input.insertText', { text: typed });
    const names = await browser.run(ask.shownMembers);
    if (!left(names)) check('members', [`"${typed}" leaves ${names.length}: ${names.slice(0, 9)}`]);
  }
}

async function withoutScript(browser, seen) {
  await browser.send('Emulation.setScriptExecutionDisabled', { value: true });
  for (const [page, content] of seen) {
    await browser.load(page);
    const { words } = await browser.run(ask.contents);
    if (words < content.words - 40) check(page, [`without script ${words} characters of ${content.words}`]);
  }
}

async function main() {
  if (pages.length < 10 || pictures.length < 5) throw new Error(`few pages in ${root}; make docs builds them`);
  const browser = new Browser();
  try {
    await browser.open();
    browser.listeners.push((method, params) => {
      const said = method === 'Log.entryAdded' ? params.entry.text
        : method === 'Runtime.exceptionThrown' ? params.exceptionDetails.exception.description
        : method === 'Runtime.consoleAPICalled' ? params.args.map((value) => value.value).join(' ') : null;
      if (said) check('console', [said]);
    });
    const seen = new Map();
    for (const name of [...pages, ...pictures]) await look(browser, name, seen);
    follow(seen);
    await filter(browser, pathToFileURL(path.join(root, 'help/members.html')).href);
    await withoutScript(browser, seen);
  } finally {
    await browser.close();
  }
  console.log(`${pages.length} pages, ${pictures.length} pictures, ${views.length} views each: ${failures} complaints`);
  process.exitCode = failures ? 1 : 0;
}

setTimeout(() => { console.log('not done after five minutes'); process.exit(1); }, 300000).unref();
main().catch((error) => { console.log(error.stack); process.exit(1); });
