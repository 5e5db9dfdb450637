// What the browser tests share: the system's Chromium through playwright-core (nothing downloads
// a browser), an `rshview serve` on a temporary copy of the sample, and a screenshot of the page
// when a test fails (build/web-test-artifacts/).

import { spawn } from 'node:child_process';
import { cpSync, existsSync, mkdirSync, mkdtempSync, readFileSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import zlib from 'node:zlib';
import { chromium } from 'playwright-core';

const here = dirname(fileURLToPath(import.meta.url));
export const repo = join(here, '..', '..', '..', '..');
export const artifacts = join(repo, 'build', 'web-test-artifacts');

export function rshviewBinary() {
  const candidates = [process.env.RSHVIEW_BIN, join(repo, 'build', 'release', 'bin', 'rshview')].filter(Boolean);
  const found = candidates.find((c) => existsSync(c));
  if (!found) throw new Error(`no rshview binary (looked at ${candidates.join(', ')}); build it first`);
  return found;
}

export function chromiumPath() {
  const candidates = [process.env.CHROMIUM_PATH, '/usr/bin/chromium', '/usr/bin/chromium-browser'].filter(Boolean);
  const found = candidates.find((c) => existsSync(c));
  if (!found) throw new Error('no Chromium (install the Debian package chromium: scripts/install-deps.sh)');
  return found;
}

// playwright-core starts Chromium with a fresh profile of its own in a temporary directory (it
// refuses a --user-data-dir of ours) and removes it when the browser closes.
export async function launchBrowser() {
  const browser = await chromium.launch({
    executablePath: chromiumPath(),
    headless: true,
    args: ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync',
      '--enable-unsafe-swiftshader'],
  });
  return browser;
}

/**
 * Copies the sample library and document to a temporary directory, so that saving writes there
 * and the preferences (group states, units) stay out of the person's own.
 */
export function sampleCopy() {
  const dir = mkdtempSync(join(tmpdir(), 'rshview-web-test-'));
  cpSync(join(repo, 'samples'), join(dir, 'samples'), { recursive: true });
  return { dir, doc: join(dir, 'samples', 'documents', 'showroom.rshdoc.json'), prefs: join(dir, 'preferences.json') };
}

/** Starts `rshview serve --port 0` and resolves with {url, stop, output, dir, doc}. */
export async function startServer({ doc, dir, prefs, port = 0, extra = [] } = sampleCopy()) {
  const child = spawn(rshviewBinary(), ['serve', '--port', String(port), '--doc', doc, ...extra], {
    env: { ...process.env, KEPRSH_PREFERENCES: prefs, XDG_CONFIG_HOME: dir },
    stdio: ['ignore', 'pipe', 'pipe'],
  });
  let output = '';
  const url = await new Promise((resolve, reject) => {
    const timer = setTimeout(() => reject(new Error(`rshview serve printed no address in 20 s:\n${output}`)), 20000);
    const look = (chunk) => {
      output += chunk;
      const m = /https?:\/\/[\w.[\]:-]+:\d+\/?/.exec(output);
      if (m) {
        clearTimeout(timer);
        resolve(m[0].endsWith('/') ? m[0] : `${m[0]}/`);
      }
    };
    child.stdout.on('data', look);
    child.stderr.on('data', look);
    child.on('exit', (code) => reject(new Error(`rshview serve ended (${code}):\n${output}`)));
  });
  const stop = () => new Promise((resolve) => {
    if (child.exitCode !== null) return resolve();
    child.on('exit', resolve);
    child.kill('SIGTERM');
    setTimeout(() => child.exitCode === null && child.kill('SIGKILL'), 5000);
  });
  return { url, stop, child, dir, doc, prefs, output: () => output };
}

/** Opens the page, waits until the first node's editor is drawn; collects console errors. */
export async function openPage(browser, url, { hash = '' } = {}) {
  const context = await browser.newContext({ viewport: { width: 1360, height: 860 } });
  const page = await context.newPage();
  page.consoleErrors = [];
  page.on('console', (m) => { if (m.type() === 'error') page.consoleErrors.push(m.text()); });
  page.on('pageerror', (e) => page.consoleErrors.push(String(e)));
  page.failedRequests = [];
  page.on('response', (r) => {
    if (r.status() >= 400 && !new URL(r.url()).pathname.startsWith('/api/')) page.failedRequests.push(`${r.status()} ${r.url()}`);
  });
  await page.goto(url + hash);
  await page.waitForSelector('body[data-ready="true"]', { timeout: 20000 });
  return page;
}

/** Runs a test body with a page; on failure saves a screenshot named after the test. */
export async function withScreenshot(t, page, body) {
  try {
    await body();
  } catch (e) {
    mkdirSync(artifacts, { recursive: true });
    const name = t.name.replace(/[^\w.-]+/g, '_');
    await page.screenshot({ path: join(artifacts, `${name}.png`), fullPage: true }).catch(() => {});
    writeFileSync(join(artifacts, `${name}.txt`), `${e.stack}\n\nconsole errors:\n${page.consoleErrors.join('\n')}\n`);
    throw e;
  }
}

/** The canvas's pixels as RGBA bytes (base64 through the page). */
export async function canvasPixels(page) {
  const b64 = await page.evaluate(() => {
    const c = document.getElementById('preview');
    const copy = document.createElement('canvas');
    copy.width = c.width;
    copy.height = c.height;
    const g = copy.getContext('2d');
    g.drawImage(c, 0, 0);
    const data = g.getImageData(0, 0, c.width, c.height).data;
    let s = '';
    for (let i = 0; i < data.length; i += 8192) s += String.fromCharCode(...data.subarray(i, i + 8192));
    return btoa(s);
  });
  return Buffer.from(b64, 'base64');
}

export function readDoc(file) {
  return JSON.parse(readFileSync(file, 'utf8'));
}

/** Decodes an 8-bit RGB or RGBA PNG (not interlaced) to {width, height, data: RGBA bytes}. */
export function decodePng(buffer) {
  const { inflateSync } = zlib;
  if (buffer.readUInt32BE(0) !== 0x89504e47) throw new Error('not a PNG');
  let at = 8;
  let width = 0, height = 0, colorType = 0;
  const idat = [];
  while (at < buffer.length) {
    const length = buffer.readUInt32BE(at);
    const type = buffer.toString('latin1', at + 4, at + 8);
    const chunk = buffer.subarray(at + 8, at + 8 + length);
    if (type === 'IHDR') {
      width = chunk.readUInt32BE(0);
      height = chunk.readUInt32BE(4);
      colorType = chunk[9];
      if (chunk[8] !== 8 || chunk[12] !== 0 || (colorType !== 2 && colorType !== 6)) throw new Error('unsupported PNG');
    } else if (type === 'IDAT') idat.push(chunk);
    at += 12 + length;
  }
  const channels = colorType === 6 ? 4 : 3;
  const raw = inflateSync(Buffer.concat(idat));
  const stride = width * channels;
  const out = Buffer.alloc(width * height * 4);
  let previous = Buffer.alloc(stride);
  for (let y = 0; y < height; y++) {
    const filter = raw[y * (stride + 1)];
    const line = Buffer.from(raw.subarray(y * (stride + 1) + 1, (y + 1) * (stride + 1)));
    for (let i = 0; i < stride; i++) {
      const a = i >= channels ? line[i - channels] : 0;
      const b = previous[i];
      const c = i >= channels ? previous[i - channels] : 0;
      let p = 0;
      if (filter === 1) p = a;
      else if (filter === 2) p = b;
      else if (filter === 3) p = (a + b) >> 1;
      else if (filter === 4) {
        const e = a + b - c;
        const pa = Math.abs(e - a), pb = Math.abs(e - b), pc = Math.abs(e - c);
        p = pa <= pb && pa <= pc ? a : pb <= pc ? b : c;
      }
      line[i] = (line[i] + p) & 255;
    }
    for (let x = 0; x < width; x++) {
      for (let k = 0; k < 4; k++) out[(y * width + x) * 4 + k] = k < channels ? line[x * channels + k] : 255;
    }
    previous = line;
  }
  return { width, height, data: out };
}

/** How many pixels differ by more than `tolerance` in some channel. */
export function differingPixels(a, b, tolerance = 0) {
  let count = 0;
  for (let i = 0; i < a.length; i += 4) {
    if (Math.abs(a[i] - b[i]) > tolerance || Math.abs(a[i + 1] - b[i + 1]) > tolerance || Math.abs(a[i + 2] - b[i + 2]) > tolerance) count++;
  }
  return count;
}

/** How many pixels lie within `tolerance` of the colour `rgb` in every channel. */
export function pixelsNear(pixels, rgb, tolerance = 0) {
  let count = 0;
  for (let i = 0; i < pixels.length; i += 4) {
    if (rgb.every((c, k) => Math.abs(pixels[i + k] - c) <= tolerance)) count++;
  }
  return count;
}
