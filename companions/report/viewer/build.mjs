// Bundles the viewer into one page with the marks @TITLE@ and @DATA@.
//
//     node build.mjs [PAGE]    PAGE: the file to write, dist/report.html when not given
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { dirname } from "node:path";
import { build } from "esbuild";

const options = {
  bundle: true,
  minify: true,
  write: false,
  charset: "ascii",
  legalComments: "none",
};
const script = await build({
  ...options,
  entryPoints: ["src/main.js"],
  format: "iife",
  target: "es2020",
});
const style = await build({ ...options, entryPoints: ["src/page.css"] });
const licence = readFileSync("node_modules/three/LICENSE", "utf8")
  .replaceAll("\u00a9", "(c)")
  .trim();

const parts = {
  "@LICENCE@": `three.js\n${licence}`,
  "@STYLE@": style.outputFiles[0].text.trim(),
  "@SCRIPT@": script.outputFiles[0].text.trim().replaceAll("</script", "<\\/script"),
};
let page = readFileSync("src/page.html", "utf8");
for (const [mark, text] of Object.entries(parts)) page = page.replace(mark, () => text);

for (const mark of ["@TITLE@", "@DATA@", "</script>", "<style>"]) {
  if (page.indexOf(mark) < 0) throw new Error(`${mark} is missing in the page`);
}
// Only what CMake can read and compile back byte by byte.
if (/[^\n\x20-\x7e]/.test(page.replaceAll("\t", " ")))
  throw new Error("a character that is not ASCII");
const output = process.argv[2] ?? "dist/report.html";
mkdirSync(dirname(output), { recursive: true });
writeFileSync(output, page);
console.log(`${output}: ${Math.round(page.length / 1000)} kB`);
