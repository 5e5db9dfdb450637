// Builds the front-end into dist/: one bundled, minified script, the style sheet and the page.
// `node build.mjs --watch` rebuilds on every change (for work against the mock server).
import * as esbuild from 'esbuild';
import { copyFile, mkdir, readdir, rm } from 'node:fs/promises';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const dist = join(here, 'dist');
const watch = process.argv.includes('--watch');

await rm(dist, { recursive: true, force: true });
await mkdir(join(dist, 'assets'), { recursive: true });
await copyFile(join(here, 'src', 'index.html'), join(dist, 'index.html'));
// The widgets' icons are the module's own resources, served beside the page.
const icons = join(here, '..', '..', '..', 'RenderingShader', 'KEPRshView.m', 'resources', 'icons');
await mkdir(join(dist, 'assets', 'icons'), { recursive: true });
const shipped = [];
for (const name of await readdir(icons)) {
  if (!name.endsWith('.png')) continue;
  await copyFile(join(icons, name), join(dist, 'assets', 'icons', name));
  shipped.push(name.slice(0, -4));
}

const options = {
  entryPoints: [join(here, 'src', 'main.js'), join(here, 'src', 'style.css')],
  outdir: dist,
  entryNames: 'assets/[name]',
  bundle: true,
  format: 'esm',
  target: ['chrome110', 'firefox115', 'safari16'],
  minify: !watch && !process.argv.includes('--dev'),
  sourcemap: true,
  logLevel: 'warning',
  define: { __RSHVIEW_ICONS__: JSON.stringify(shipped.sort()) },
};
if (watch) {
  const context = await esbuild.context(options);
  await context.watch();
  console.log('watching src/ ...');
} else {
  await esbuild.build(options);
  console.log(`built ${dist}`);
}
