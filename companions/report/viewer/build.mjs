// Bundles the viewer into one page, dist/report.html, with the marks @TITLE@ and @DATA@.
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
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
const style = await build({ ...options, entryPoints: ["src/style.css"] });
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
mkdirSync("dist", { recursive: true });
writeFileSync("dist/report.html", page);
console.log(`dist/report.html: ${Math.round(page.length / 1000)} kB`);
