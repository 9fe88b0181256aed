#!/usr/bin/env bash
# End-to-end tests of the quillon tool on the example batch: every subcommand, the output formats,
# exit codes and messages for bad input, and the atomic save.
# Usage: run.sh QUILLON SOURCE_DIR WORK_DIR
set -u
quillon=$1
source_dir=$2
work=$3
example="$source_dir/examples/Chlorpromazine_HLM_batch.txt"
rm -rf "$work" && mkdir -p "$work"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
# expect CODE COMMAND...: the command exits with CODE.
expect() {
    local code=$1; shift
    "$@" >"$work/out" 2>"$work/err"
    local got=$?
    [ "$got" -eq "$code" ] || fail "$* exited $got, expected $code: $(head -c 300 "$work/err")"
}

# Every subcommand on the example batch, in each format where rows are printed.
expect 0 "$quillon" info "$example"
grep -q "total" "$work/out" || fail "info table has no totals"
expect 0 "$quillon" info "$example" --format csv
head -1 "$work/out" | grep -qx "sample,id,type,description,time,functions,traces,expected,unexpected,msms,found,control" || fail "info CSV header"
[ "$(wc -l <"$work/out")" -eq 7 ] || fail "info CSV has not one row per sample"
expect 0 "$quillon" metabolites "$example" --sample 4 --format json
python3 -c "import json,sys; rows=json.load(open(sys.argv[1])); assert rows and all(r['sample']==4 for r in rows)" "$work/out" || fail "metabolites JSON"
expect 0 "$quillon" metabolites "$example" --format csv
all_rows=$(wc -l <"$work/out")
expect 0 "$quillon" metabolites "$example" --area 1e12 --format csv
python3 - "$work/out" "$all_rows" <<'PY' || fail "metabolites area filter"
import csv, sys
rows = list(csv.DictReader(open(sys.argv[1])))
# No low-energy peak has an area that large: only rows without a peak area (or the high-energy
# partners, which the area filter exempts) are left.
assert len(rows) + 1 < int(sys.argv[2])
assert all(r["area"] == "" or r["high_energy"] == "yes" for r in rows)
PY
expect 0 "$quillon" summary "$example" --format json
python3 -c "import json,sys; rows=json.load(open(sys.argv[1])); assert rows[0]['metabolite']=='Parent'" "$work/out" || fail "summary JSON"
expect 0 "$quillon" fragments "$example" --sample 4 --format json
python3 -c "import json,sys; d=json.load(open(sys.argv[1])); assert d['fragments'] and d['neutral_loss_lines']" "$work/out" || fail "fragments JSON"
expect 0 "$quillon" stability "$example" --format json --plot "$work/stability.svg"
python3 - "$work/out" <<'PY' || fail "stability half-life"
import json, sys
series = json.load(open(sys.argv[1]))
assert len(series) == 1 and abs(series[0]["half_life_min"] - 55) <= 0.15 * 55
assert series[0]["half_life_low_min"] < series[0]["half_life_min"] < series[0]["half_life_high_min"]
PY
expect 0 "$quillon" plot "$example" --sample 4 --trace 2 -o "$work/trace.svg"
expect 0 "$quillon" plot "$example" --sample 4 --combined all -o "$work/combined.svg"
expect 0 "$quillon" plot "$example" --sample 4 --spectrum 1 -o "$work/spectrum.svg"
for svg in trace combined spectrum stability; do
    xmllint --noout "$work/$svg.svg" 2>/dev/null || fail "$svg.svg is not well-formed"
    grep -q "<text" "$work/$svg.svg" || fail "$svg.svg has no labels"
done
grep -q "<polyline" "$work/trace.svg" || fail "trace.svg has no trace"
expect 0 "$quillon" export "$example" -o "$work/model.json"
python3 -c "import json,sys; d=json.load(open(sys.argv[1])); assert len(d['samples'])==6 and d['trace_points'] and d['metabolites']" "$work/model.json" || fail "export JSON"
expect 0 "$quillon" export "$example" --format csv -o "$work/tables"
head -1 "$work/tables/peaks.csv" | grep -qx "sample,trace,peak_id,cluster,time_min,area,height" || fail "export CSV header"

# An edit saved to a copy: the copy reads back with the edit, and checks clean.
expect 0 "$quillon" edit "$example" -o "$work/edited.txt" --sample 4 --metabolite 0 --unconfirm --label "checked by e2e"
expect 0 "$quillon" check "$work/edited.txt"
expect 0 "$quillon" export "$work/edited.txt" -o "$work/edited.json"
python3 -c "import json,sys; m=[r for r in json.load(open(sys.argv[1]))['metabolites'] if r['sample']==4 and r['index']==0][0]; assert m['confirmed']=='no'" "$work/edited.json" || fail "edit did not land"
# The label is written (the report's readers pass over that column).
grep -q "checked by e2e" "$work/edited.txt" || fail "the label was not written"

# A save that fails leaves the original byte for byte and no temporary file behind: a folder that
# takes no new file (the superuser, whom permissions do not stop, saves as an unprivileged user),
# a folder that does not exist, and a file-size limit that makes the write fail half-way (its
# signal ignored, so that the write fails rather than the program).
cp "$work/edited.txt" "$work/keep.txt" && cp "$work/edited.txt" "$work/before.txt"
unprivileged=()
if [ "$(id -u)" -eq 0 ]; then
    unprivileged=(setpriv --reuid=65534 --regid=65534 --clear-groups)
fi
if [ "$(id -u)" -ne 0 ] || "${unprivileged[@]}" true 2>/dev/null; then
    mkdir -p "$work/locked" && cp "$work/edited.txt" "$work/locked/r.txt" && chmod 555 "$work/locked"
    expect 1 "${unprivileged[@]}" "$quillon" edit "$work/locked/r.txt" --in-place --sample 4 --metabolite 0 --unconfirm
    cmp -s "$work/locked/r.txt" "$work/before.txt" || fail "a failed save changed the original"
    [ "$(ls -A "$work/locked")" = r.txt ] || fail "a failed save left files: $(ls -A "$work/locked")"
    chmod 755 "$work/locked"
fi
expect 1 "$quillon" edit "$work/keep.txt" -o "$work/no/such/folder/out.txt" --sample 4 --metabolite 0 --unconfirm
cmp -s "$work/keep.txt" "$work/before.txt" || fail "a failed save changed the input"
mkdir -p "$work/limited" && cp "$work/edited.txt" "$work/limited/r.txt"
expect 1 bash -c 'trap "" XFSZ; ulimit -f 64; exec "$@"' limited "$quillon" edit "$work/limited/r.txt" --in-place --sample 4 --metabolite 0 --unconfirm
cmp -s "$work/limited/r.txt" "$work/before.txt" || fail "a save cut short changed the original"
[ "$(ls -A "$work/limited")" = r.txt ] || fail "a save cut short left files: $(ls -A "$work/limited")"

# Bad input: one clear line naming the file, and the right exit code.
expect 1 "$quillon" info "$work/missing.txt"
grep -qx "quillon: cannot open '$work/missing.txt': No such file or directory" "$work/err" || fail "missing-file message: $(cat "$work/err")"
expect 1 "$quillon" info "$work"
grep -q "Is a directory" "$work/err" || fail "folder message"
head -c 4000 /dev/urandom >"$work/garbage.txt"
expect 1 "$quillon" info "$work/garbage.txt"
grep -q "not a report" "$work/err" || fail "garbage message"
printf '[SAMPLE]\n{\nSample\t1\n[FUNCTION]\n{\n' >"$work/cut.txt"
expect 1 "$quillon" check "$work/cut.txt"
grep -q "line 1: the block of \[SAMPLE\] is left open" "$work/out" || fail "check does not see the open block"
# What reading passes over is named with its line; the samples around it are still read.
{ printf '[SAMPLE]\n{\nSample\t1\n}\n[NOTES]\n{\nx\n}\nloose\n'; printf '[SAMPLE]\n{\nSample\t1\n}\n'; } >"$work/skipped.txt"
expect 1 "$quillon" check "$work/skipped.txt"
grep -q "line 5: unknown section \[NOTES\]" "$work/out" || fail "check does not name the skipped section"
grep -q "line 9: a line outside any section" "$work/out" || fail "check does not see the stray line"
grep -q "sample 1 appears 2 times" "$work/out" || fail "check does not see the duplicate"
expect 2 "$quillon" info
expect 2 "$quillon" info "$example" --format xml
expect 2 "$quillon" frobnicate
expect 0 "$quillon" --version

if [ "$failures" -ne 0 ]; then
    echo "$failures failure(s)"
    exit 1
fi
echo "all end-to-end checks passed"
