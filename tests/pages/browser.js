// A headless Chromium with one page, driven over a pipe by its own protocol.
'use strict';
const { spawn } = require('node:child_process');
const fs = require('node:fs');
const os = require('node:os');
const path = require('node:path');

const flags = ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
  '--disable-background-networking', '--disable-component-update', '--disable-sync', '--remote-debugging-pipe'];

class Browser {
  constructor() {
    this.profile = fs.mkdtempSync(path.join(os.tmpdir(), 'zrk-pages-'));
    this.process = spawn('chromium', [...flags, `--user-data-dir=${this.profile}`],
      { stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe'] });
    this.calls = new Map();
    this.listeners = [];
    this.last = 0;
    this.gone = new Promise((_, reject) => {
      this.process.on('error', reject);
      this.process.on('exit', () => reject(new Error('the browser has ended')));
    });
    this.gone.catch(() => {});
    let received = '';
    this.process.stdio[4].setEncoding('utf8').on('data', (data) => {
      const messages = (received + data).split('\0');
      received = messages.pop();
      for (const message of messages) this.take(JSON.parse(message));
    });
  }

  take({ id, method, params, result, error }) {
    if (!id) return this.listeners.forEach((listener) => listener(method, params));
    const { resolve, reject } = this.calls.get(id);
    this.calls.delete(id);
    if (error) reject(new Error(error.message)); else resolve(result);
  }

  // Answers the result of a command of the protocol.
  send(method, params = {}) {
    const id = ++this.last;
    this.process.stdio[3].write(JSON.stringify({ id, method, params, sessionId: this.session }) + '\0');
    return Promise.race([this.gone, new Promise((resolve, reject) => this.calls.set(id, { resolve, reject }))]);
  }

  // Answers when an event has come, and says what it brought.
  event(name) {
    return Promise.race([this.gone, new Promise((resolve) => {
      this.listeners.push((method, params) => { if (method === name) resolve(params); });
    })]);
  }

  async open() {
    const { targetId } = await this.send('Target.createTarget', { url: 'about:blank' });
    this.session = (await this.send('Target.attachToTarget', { targetId, flatten: true })).sessionId;
    for (const domain of ['Page', 'Runtime', 'Log']) await this.send(`${domain}.enable`);
  }

  async load(url) {
    const loaded = this.event('Page.loadEventFired');
    await this.send('Page.navigate', { url });
    await loaded;
  }

  // Runs a function in the page; arguments and result go as JSON.
  async run(body, ...given) {
    const expression = `(${body})(...${JSON.stringify(given)})`;
    const { result, exceptionDetails } = await this.send('Runtime.evaluate', { expression, returnByValue: true });
    if (exceptionDetails) throw new Error(exceptionDetails.exception.description);
    return result.value;
  }

  async close() {
    const ended = new Promise((resolve) => { this.process.on('exit', resolve); });
    this.session = undefined;
    await this.send('Browser.close');
    await ended;
    fs.rmSync(this.profile, { recursive: true, maxRetries: 9, retryDelay: 100 });
  }
}

module.exports = { Browser };
