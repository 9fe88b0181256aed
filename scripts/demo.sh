#!/usr/bin/env bash
# Runs the quillon tool's main job on a report, writing every result under a folder.
# Usage: demo.sh QUILLON REPORT FOLDER
set -euo pipefail
quillon=$1
report=$2
out=$3
mkdir -p "$out"
run() {
    echo "\$ quillon $*"
    "$quillon" "$@"
}
run info "$report"
run metabolites "$report" --sample 4 -o "$out/metabolites-sample4.txt"
run summary "$report" -o "$out/summary.txt"
run fragments "$report" --sample 4 -o "$out/fragments-sample4.txt"
run stability "$report" -o "$out/stability.txt" --plot "$out/stability.svg"
run plot "$report" --sample 4 --trace 2 -o "$out/trace.svg"
run plot "$report" --sample 4 --combined all -o "$out/combined.svg"
run plot "$report" --sample 4 --combined unexpected -o "$out/combined-unexpected.svg"
run plot "$report" --sample 4 --spectrum 1 -o "$out/spectrum.svg"
run plot "$report" --sample 4 --spectrum 1 --function 2 -o "$out/spectrum-high-energy.svg"
run plot "$report" --sample 4 --fragments -o "$out/fragments.svg"
run molfiles "$report" -d "$out/molfiles"
run export "$report" --format json -o "$out/model.json"
run edit "$report" -o "$out/edited.txt" --sample 4 --metabolite 0 --unconfirm --label "reviewed"
run check "$out/edited.txt"
run html "$report" -o "$out/browser.html"
# A screenshot of the served page's sample view, taken by the browser test in headless Chromium.
if [ -x /usr/bin/chromedriver ] && /usr/bin/python3 -c "import pytest, selenium" 2>/dev/null; then
    echo "\$ quillon serve $report   (browser.png: the sample view in headless Chromium)"
    QUILLON=$quillon QUILLON_REPORT=$report QUILLON_BROWSER_OUTPUT=$out \
        /usr/bin/python3 -m pytest -q -p no:cacheprovider \
        "$(dirname "$0")/../tests/tools/serve/browser_test.py" -k served_page >/dev/null
else
    echo "(no browser.png: scripts/install-deps.sh installs chromium and the browser test's packages)"
fi
echo
echo "Demo files in $out/:"
ls -1 "$out" | sed 's/^/  /'
