#!/usr/bin/env bash
# Runs the quillon tool's main job on the bundled example batch, writing every file under
# build/demo/. Usage: scripts/demo.sh [path to the quillon executable]
set -euo pipefail

quillon=${1:-build/dev/tools/quillon/quillon}
report=examples/Chlorpromazine_HLM_batch.txt
out=build/demo
sample=4

rm -rf "$out"
mkdir -p "$out"

step() { printf '\n== %s\n' "$*"; }

step "quillon info $report"
"$quillon" info "$report" | tee "$out/info.txt"

step "quillon metabolites $report --sample $sample --hide-high-energy"
"$quillon" metabolites "$report" --sample "$sample" --hide-high-energy | tee "$out/metabolites.txt"
"$quillon" metabolites "$report" --sample "$sample" --format csv -o "$out/metabolites.csv"

step "quillon summary $report"
"$quillon" summary "$report" | tee "$out/summary.txt"

step "quillon plot: a trace and a spectrum of sample $sample"
"$quillon" plot "$report" --sample "$sample" --trace 1 -o "$out/trace.svg"
"$quillon" plot "$report" --sample "$sample" --spectrum 1 -o "$out/spectrum.svg"

step "quillon export $report --format json"
"$quillon" export "$report" --format json -o "$out/batch.json"
"$quillon" export "$report" --format csv -o "$out/tables"

step "quillon edit, then check of the edited copy"
"$quillon" edit "$report" -o "$out/edited.txt" --sample "$sample" --metabolite 3 --confirm \
    --label "N-desmethyl"
"$quillon" check "$out/edited.txt"

step "Files written under $out/"
find "$out" -type f | sort | sed 's/^/  /'
