// Takes a picture of a report for the documents.
//
//     node docs/images/draw_report.mjs CHROMIUM REPORT.html PICTURE.png [CONTROL=VALUE...]
//
// A control is named by its id in the page, a value of a list by the text that the page shows; "member=7" chooses a
// member.

import { writeFileSync } from "node:fs";
import { Browser } from "../../tests/companions/report_browser/browser.mjs";

const [chromium, report, picture, ...controls] = process.argv.slice(2);
const browser = await Browser.start(chromium);
const page = await browser.open(report, { width: 1360, height: 860 });

/** The value of the option with a text; a switch or a number as it is given. */
async function valueFor(id, text) {
  if (text === "true" || text === "false") return text === "true";
  const value = await page.evaluate(`(() => {
    const control = document.getElementById(${JSON.stringify(id)});
    if (!control) return null;
    if (control.tagName !== "SELECT") return ${JSON.stringify(text)};
    return [...control.options].find((o) => o.text === ${JSON.stringify(text)})?.value ?? null;
  })()`);
  if (value === null) throw new Error(`${report} has no ${id}=${text}`);
  return value;
}

for (const control of controls) {
  const [id, text] = control.split("=");
  if (id === "member") await page.evaluate(`morlenReport.choose("element", ${Number(text)})`);
  else await page.set(id, await valueFor(id, text));
}
await page.frame();
writeFileSync(picture, await page.screenshot());
await browser.close();
