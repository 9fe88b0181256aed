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
head -1 "$work/out" | grep -qx "sample,id,type,description,time,parent,control,functions,traces,expected,unexpected,msms,found" || fail "info CSV header"
[ "$(wc -l <"$work/out")" -eq 7 ] || fail "info CSV has not one row per sample"
expect 0 "$quillon" summary "$example" --format json
python3 -c "import json,sys; rows=json.load(open(sys.argv[1])); assert rows[0]['metabolite']=='Parent'" "$work/out" || fail "summary JSON"
# --settings names the file itself, whatever its name; it need not be writable; a missing one is
# an error naming it.
cp "$(dirname "$example")/Tarnwick.ini" "$work/losses.cfg" && chmod a-w "$work/losses.cfg"
expect 0 "$quillon" fragments "$example" --sample 4 --format csv --settings "$work/losses.cfg"
[ "$(grep -c neutral_loss "$work/out")" -gt 0 ] || fail "--settings FILE: no neutral losses read"
expect 1 "$quillon" fragments "$example" --sample 4 --settings "$work/none.cfg"
grep -q "none.cfg" "$work/err" || fail "missing settings file not named: $(cat "$work/err")"
# JSON by default, with every table (the Python module's tests compare it with the model).
expect 0 "$quillon" export "$example" -o "$work/model.json"
python3 - "$work/model.json" <<'PY' || fail "export JSON"
import json, re, sys
raw = open(sys.argv[1]).read()
assert all("function" in r for r in json.loads(raw)["spectrum_points"])
# Points are stored as floats: each prints in its shortest text (73.1402, never 73.14019775390625).
points = [line for line in raw.splitlines() if '"intensity"' in line]
assert points and not any(re.search(r"\d\.\d{10,}", line) for line in points), "long float text"
PY
expect 0 "$quillon" stability "$example" --format json --plot "$work/stability.svg"
expect 0 "$quillon" plot "$example" --sample 4 --trace 2 -o "$work/trace.svg"
expect 0 "$quillon" plot "$example" --sample 4 --fragments -o "$work/fragments.svg"
# Standard output by default and for -o -; the figures' layout is the browser test's
# (test_figures.py).
expect 0 "$quillon" plot "$example" --sample 4 --spectrum 1 --function 2 -o - --size 640x400
grep -q 'function 2: TOF MSe' "$work/out" && tail -1 "$work/out" | grep -qx "</svg>" || fail "plot -o - did not write the figure"
for svg in trace fragments stability; do
    xmllint --noout "$work/$svg.svg" 2>/dev/null || fail "$svg.svg is not well-formed"
done
# A figure with nothing to draw is an error, not empty axes.
expect 1 "$quillon" plot "$example" --sample 1 --combined unexpected -o "$work/none.svg"
[ ! -e "$work/none.svg" ] && grep -q "sample 1 has no unexpected metabolites" "$work/err" || fail "plot of nothing: $(cat "$work/err")"
# Each donor group fitted alone, with the spread of the half-lives.
awk '/^Sample\t/ { n++ } /^TaskCode\t/ { $0 = "TaskCode\tD0" (n % 3 ? 1 : 2) } { print }' "$example" >"$work/donors.txt"
expect 0 "$quillon" stability "$work/donors.txt" --group-by TaskCode --format json
python3 - "$work/out" <<'PY' || fail "stability --group-by"
import json, sys
rows = json.load(open(sys.argv[1]))
groups, summary = rows[:-1], rows[-1]
assert [g["parent"] for g in groups] == ["Chlorpromazine, TaskCode D01", "Chlorpromazine, TaskCode D02"]
lives = [g["half_life_min"] for g in groups if g["half_life_min"]]
assert summary["groups_with_half_life"] == len(lives) >= 1
assert abs(summary["half_life_mean_min"] - sum(lives) / len(lives)) < 1e-9
PY
# Fragment sticks, and the fragments formed by a neutral loss marked and named after it.
[ "$(grep -c '<line x1=.*stroke="#1f5fa8"' "$work/fragments.svg")" -ge 10 ] || fail "fragments.svg has too few sticks"
grep -q '<path' "$work/fragments.svg" && grep -q "−C2H7N" "$work/fragments.svg" || fail "fragments.svg marks no neutral loss"

# Molfiles: one file per embedded structure, each named in the list, which a second run starts afresh.
for format in csv json; do
    expect 0 "$quillon" molfiles "$example" -d "$work/structures" --format $format
done
python3 - "$work/out" "$work/structures/Molfiles.list" <<'PY' || fail "molfiles"
import json, os, sys
rows = json.load(open(sys.argv[1]))
listed = open(sys.argv[2]).read().splitlines()
assert len(rows) == 6 and [r["file"] for r in rows] == listed
assert all(r["dimensions"] == 2 and r["name"] == "Chlorpromazine" for r in rows)
assert all(os.path.getsize(path) > 100 for path in listed)
PY
# Other subcommands extract nothing, even run in a folder that holds a molfile list.
(cd "$work/structures" && : >Molfiles.list && rm -f ./*.mol && "$quillon" info "$example" >/dev/null) ||
    fail "info in a folder with a molfile list"
[ -s "$work/structures/Molfiles.list" ] || [ -n "$(ls "$work/structures"/*.mol 2>/dev/null)" ] &&
    fail "info extracted molfiles into the current folder"
expect 0 "$quillon" export "$example" --format csv -o "$work/tables"
head -1 "$work/tables/peaks.csv" | grep -qx "sample,function,trace,peak_id,cluster,time_min,area,height,width,area_percent" || fail "export CSV header"

# An edit saved to a copy: the copy reads back with the edit, and checks clean.
expect 0 "$quillon" edit "$example" -o "$work/edited.txt" --sample 4 --metabolite 0 --unconfirm --label "checked by e2e"
expect 0 "$quillon" check "$work/edited.txt"
expect 0 "$quillon" export "$work/edited.txt" -o "$work/edited.json"
python3 -c "import json,sys; m=[r for r in json.load(open(sys.argv[1]))['metabolites'] if r['sample']==4 and r['index']==0][0]; assert m['confirmed'] is False" "$work/edited.json" || fail "edit did not land"
# The label is written (the report's readers pass over that column).
grep -q "checked by e2e" "$work/edited.txt" || fail "the label was not written"

# A save keeps the report's permissions; one that fails half-way (a file-size limit) leaves the
# original byte for byte and no temporary file behind.
mkdir "$work/saves" && cp "$work/edited.txt" "$work/saves/r.txt" && chmod 640 "$work/saves/r.txt"
expect 0 "$quillon" edit "$work/saves/r.txt" --in-place --sample 4 --metabolite 0 --confirm
[ "$(stat -c %a "$work/saves/r.txt")" = 640 ] || fail "--in-place did not keep the permissions"
cp "$work/saves/r.txt" "$work/before.txt"
expect 1 bash -c 'ulimit -f 100 && exec "$@"' limited "$quillon" edit "$work/saves/r.txt" --in-place --sample 4 --metabolite 0 --unconfirm
grep -q "File too large" "$work/err" || fail "a failed save does not say why: $(cat "$work/err")"
cmp -s "$work/saves/r.txt" "$work/before.txt" || fail "a failed save changed the original"
[ "$(ls -A "$work/saves")" = r.txt ] || fail "a failed save left files behind: $(ls -A "$work/saves")"
expect 1 "$quillon" edit "$work/before.txt" -o "$work/before.txt/out.txt" --sample 4 --metabolite 0 --unconfirm
grep -q "Not a directory" "$work/err" || fail "saving below a file: $(cat "$work/err")"

# Ctrl-C cancels the fragment analysis: exit code 130, "cancelled", no output file. Standard error
# is a full pipe, so the tool's first message, the one that announces the running analysis, holds
# it inside the analysis until the signal has arrived.
python3 - "$quillon" "$example" "$work/cancelled.txt" <<'PY' || fail "cancellation"
import os, signal, subprocess, sys, time
quillon, report, out = sys.argv[1:]
probe = subprocess.Popen(["sleep", "5"])
time.sleep(0.2)
if open(f"/proc/{probe.pid}/wchan").read().strip() in ("", "0"):
    probe.kill()
    print("SKIP: no /proc/PID/wchan to see the tool waiting")
    sys.exit(0)
probe.kill()
r, w = os.pipe()
os.set_blocking(w, False)
for size in (4096, 1):
    try:
        while True:
            os.write(w, b"." * size)
    except BlockingIOError:
        pass
os.set_blocking(w, True)
tool = subprocess.Popen([quillon, "fragments", report, "--sample", "4", "-o", out],
                        stdout=subprocess.DEVNULL, stderr=w)
os.close(w)
deadline = time.time() + 60
while tool.poll() is None and "pipe_write" not in open(f"/proc/{tool.pid}/wchan").read():
    assert time.time() < deadline, "the tool never announced the analysis"
    time.sleep(0.01)
tool.send_signal(signal.SIGINT)
err = b"".join(iter(lambda: os.read(r, 65536), b"")).lstrip(b".").decode()
assert tool.wait() == 130, (tool.returncode, err)
assert "running the fragment analysis" in err and err.endswith("quillon: cancelled\n"), err
assert not os.path.exists(out)
PY

# Bad input: one clear line naming the file, and the right exit code.
expect 1 "$quillon" info "$work/missing.txt"
grep -qx "quillon: cannot open '$work/missing.txt': No such file or directory" "$work/err" || fail "missing-file message: $(cat "$work/err")"
expect 1 "$quillon" info "$work"
grep -q "Is a directory" "$work/err" || fail "folder message"
head -c 4000 /dev/urandom >"$work/garbage.txt"
expect 1 "$quillon" info "$work/garbage.txt"
grep -q "not a report" "$work/err" || fail "garbage message"
# Damaged copies of the example: check names each problem with its line; an analysis warns once
# on standard error and goes on; --strict makes it an error before any output.
time_line=$(grep -n "^SubjectTime	[1-9]" "$example" | head -1 | cut -d: -f1)
sed "${time_line}s/	.*/	sixty/" "$example" >"$work/sixty.txt"
points_line=$(grep -n "^\[TRACE\]" "$example" | head -1 | cut -d: -f1)
sed "$((points_line + 2))i garbage line" "$example" >"$work/garbage-line.txt"
cat "$example" "$example" >"$work/twice.txt"
last_sample=$(grep -n "^\[SAMPLE\]" "$example" | tail -1 | cut -d: -f1)
head -n $((last_sample + 40)) "$example" >"$work/cut.txt"
expect 1 "$quillon" check "$work/sixty.txt"
grep -qx "$work/sixty.txt: line $time_line: \"SubjectTime\" holds \"sixty\", not a number: read as 0" "$work/out" || fail "check does not see the time that is no number: $(cat "$work/out")"
expect 1 "$quillon" check "$work/garbage-line.txt"
grep -q "line $((points_line + 2)): a line that is no record of its data block (\"garbage line\")" "$work/out" || fail "check does not see the garbage line: $(cat "$work/out")"
expect 1 "$quillon" check "$work/twice.txt"
[ "$(grep -c "appears again" "$work/out")" -eq 6 ] || fail "check does not see each sample read twice"
grep -q "line $(( $(wc -l <"$example") + 5 )): sample 1 appears again" "$work/out" || fail "the first duplicate's line"
expect 1 "$quillon" check "$work/cut.txt"
grep -q "line $last_sample: the block of \[SAMPLE\] is left open" "$work/out" || fail "check does not see the open block"
expect 0 "$quillon" stability "$work/twice.txt"
grep -qx "quillon: warning: $work/twice.txt has 6 problems (quillon check $work/twice.txt lists them)" "$work/err" || fail "no warning: $(cat "$work/err")"
[ -s "$work/out" ] || fail "the analysis stopped after the warning"
expect 1 "$quillon" stability --strict "$work/sixty.txt"
[ ! -s "$work/out" ] || fail "--strict printed output"
grep -qx "quillon: $work/sixty.txt has 1 problem (quillon check $work/sixty.txt lists them)" "$work/err" || fail "--strict message: $(cat "$work/err")"
# What reading passes over at the top level is named with its line too.
{ printf '[SAMPLE]\n{\nSample\t1\n}\n[NOTES]\n{\nx\n}\nloose\n'; printf '[SAMPLE]\n{\nSample\t2\n}\n'; } >"$work/skipped.txt"
expect 1 "$quillon" check "$work/skipped.txt"
grep -q "line 5: unknown section \[NOTES\]" "$work/out" || fail "check does not name the skipped section"
grep -q "line 9: a line outside any section" "$work/out" || fail "check does not see the stray line"
# Usage errors: exit code 2 and a line that says what is wrong.
while IFS='|' read -r words message; do
    read -ra args <<<"$words"
    expect 2 "$quillon" "${args[@]/EXAMPLE/$example}"
    grep -q -- "$message" "$work/err" || fail "$words: $(head -c 300 "$work/err")"
done <<'EOF'
info|REPORT is required
info EXAMPLE --format xml|xml
infoo EXAMPLE|unknown subcommand 'infoo'; did you mean 'info'?
frobnicate|the subcommands are info, metabolites
plot EXAMPLE --sample 4|plot needs what to draw
plot EXAMPLE --sample 4 --trace 2 --size 10x10|'10x10' is no size
stability EXAMPLE --group-by Nope|not a header field
stability EXAMPLE --series 9|the series are 1 Chlorpromazine
edit - --in-place --sample 4 --metabolite 0 --confirm|edit of standard input needs -o
metabolites EXAMPLE --time 15 5|--time takes a low time not above a high one
metabolites EXAMPLE --time -1 5|both 0 or more
metabolites EXAMPLE --mass-error nan|--mass-error takes a number of 0 or more
metabolites EXAMPLE --mass-defect 0.3 1.5|fractions of a dalton from 0 to below 1
metabolites EXAMPLE --relative-area -3|--relative-area takes a number of 0 or more
metabolites EXAMPLE --area 5 --relative-area 2|exclude each other
metabolites EXAMPLE --area-unexpected-only|needs --area or --relative-area
metabolites EXAMPLE --sample -2|--sample takes a sample number
EOF
expect 1 "$quillon" metabolites "$example" --sample 9
grep -q "has no sample 9; its samples are 1-6" "$work/err" || fail "--sample 9: $(cat "$work/err")"
expect 0 "$quillon" --version

# A report on standard input reads as the file does, and saves to a file; --verbose says what
# was read.
"$quillon" info "$example" >"$work/info-file.txt"
"$quillon" -v info - <"$example" >"$work/out" 2>"$work/err" || fail "info from standard input"
cmp -s "$work/out" "$work/info-file.txt" || fail "standard input reads otherwise"
grep -q "read standard input: 6 samples in" "$work/err" || fail "--verbose: $(cat "$work/err")"
"$quillon" -q edit - -o "$work/from-stdin.txt" --sample 4 --metabolite 0 --unconfirm <"$example" &&
    "$quillon" -q check "$work/from-stdin.txt" >/dev/null || fail "edit from standard input"

if [ "$failures" -ne 0 ]; then
    echo "$failures failure(s)"
    exit 1
fi
echo "all end-to-end checks passed"
