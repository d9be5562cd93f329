// Takes the picture of a report for the README.
//
//     node docs/images/draw_report.mjs CHROMIUM REPORT.html PICTURE.png [CONTROL=VALUE...]
//
// A control is named by its id in the page; "member=7" chooses a member.

import { writeFileSync } from "node:fs";
import { Browser } from "../../tests/companions/report_browser/browser.mjs";

const [chromium, report, picture, ...controls] = process.argv.slice(2);
const browser = await Browser.start(chromium);
const page = await browser.open(report, { width: 1360, height: 860 });
for (const control of controls) {
  const [id, value] = control.split("=");
  if (id === "member") await page.evaluate(`morlenReport.choose("element", ${Number(value)})`);
  else await page.set(id, value === "false" ? false : value === "true" ? true : value);
}
await page.frame();
writeFileSync(picture, await page.screenshot());
await browser.close();
