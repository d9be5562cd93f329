// All tests of the pages, in one browser.
//
//     node all_tests.mjs MORLEN MORLEN_EXPORT MORLEN_REPORT MORLEN_CASES EXAMPLES CHROMIUM [PICTURES]
//
// MORLEN_CASES is empty in a build without load cases. With a folder PICTURES the tests leave the
// pictures of the pages there, to be looked at. REPORT_TESTS names the files to run, by the first
// part of their names: REPORT_TESTS="report members".

import { CASES } from "./context.mjs";

const chosen = process.env.REPORT_TESTS?.split(" ");
const files = ["report", "layout", "view", "members", ...(CASES ? ["case_report"] : [])];
for (const name of files.filter((one) => chosen?.includes(one) ?? true))
  await import(`./${name}_test.mjs`);
