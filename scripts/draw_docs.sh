#!/bin/sh
# Draws every figure of the documents again, from the results of the program.
#
#   scripts/draw_docs.sh [BUILD] [chromium]
#
# BUILD has the program, its companions and the Python package; without it, build/release. The pictures of reports need
# Node and Chromium. The same results give the same SVG files; PNG files depend on the version of the browser.
set -eu
cd "$(dirname "$0")/.."
build=$(realpath "${1:-build/release}")
browser=${2:-chromium}
images=$PWD/docs/images
python=/usr/bin/python3
export PYTHONDONTWRITEBYTECODE=1

scripts/install_tools.sh nodejs chromium gmsh python3-numpy python3-matplotlib

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT INT TERM

# The report of an example: report_of NAME
report_of() {
  cp "examples/$1.dat" "$work"
  (cd "$work" && "$build/companions/morlen-run" "$1.dat")
}

# A picture of a report: picture REPORT PICTURE [CONTROL=VALUE...]
picture() {
  report=$1 name=$2
  shift 2
  node docs/images/draw_report.mjs "$(command -v "$browser")" "$report" "$images/$name" "$@"
}

"$python" docs/images/draw_signs.py "$images"  # plane_beams.svg space_beams.svg euler_angles.svg end_forces.svg
                                               # diagram_signs.svg shell_signs.svg families.svg
"$python" docs/images/draw_cookbook.py "$images"  # cookbook.svg
"$python" docs/images/draw_results.py "$build/morlen" >"$work/results.svg"
"$python" docs/images/draw_hinges.py "$build/morlen" >"$work/hinges.svg"
mv "$work/results.svg" "$work/hinges.svg" "$images"
PYTHONPATH=$build/python "$python" docs/images/draw_python_study.py  # python_study.svg

report_of space_frame
picture "$work/space_frame.html" report.png member=7
report_of cylindrical_vault
picture "$work/cylindrical_vault.html" vault.png "colours=Nx'" loads=false
for page in tutorial tutorial_slabs tutorial_solid; do
  "$python" tests/companions/check_tutorial.py --tolerance 0.01 --keep "$work/$page" "docs/$page.md" \
    "$build" "$build/companions"
done
picture "$work/tutorial/portal.html" portal.png "diagram=Bending moment Mz" member=2
picture "$work/tutorial_slabs/pavilion.html" pavilion.png "colours=My'" loads=false
picture "$work/tutorial_solid/cylinder.html" cylinder.png "colours=von Mises" loads=false
