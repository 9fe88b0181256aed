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
echo
echo "Demo files in $out/:"
ls -1 "$out" | sed 's/^/  /'
