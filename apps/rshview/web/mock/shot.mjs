// Takes a screenshot of a running front-end: node mock/shot.mjs URL OUT.png [NODE] [classic]
import { launchBrowser, openPage } from '../tests/harness.mjs';

const [url, out, node, kind] = process.argv.slice(2);
const browser = await launchBrowser();
try {
  const page = await openPage(browser, url, { hash: node ? `#${encodeURIComponent(node)}` : '' });
  if (kind === 'classic') {
    await page.click('.switch [data-kind="classic"]');
    await page.waitForSelector('body[data-editor-kind="classic"]');
  }
  await page.waitForTimeout(300);
  await page.screenshot({ path: out });
  console.log(page.consoleErrors.join('\n') || 'no console errors');
} finally {
  await browser.close();
}
