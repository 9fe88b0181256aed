# Entry points for people and CI. Everything goes through the CMake presets.
JOBS ?= $(shell nproc)

.PHONY: all deps build python test sanitize fuzz fuzz-long fuzz-ci format-check bench demo clean

all: build

deps:
	@bash scripts/install-deps.sh

build: deps
	cmake --preset dev
	cmake --build --preset dev -j $(JOBS)

# The Python package alone, in build/dev/python (PYTHONPATH=build/dev/python), with the programs
# its tests compare against; `make build` builds it too.
python: deps
	cmake --preset dev
	cmake --build --preset dev -j $(JOBS) --target _quillon quillon-tool quillon-generate

# Configure, build and run the whole test suite.
test: build
	ctest --preset dev -j $(JOBS)

# The test suite again, under AddressSanitizer and UndefinedBehaviorSanitizer.
sanitize: deps
	cmake --preset sanitize
	cmake --build --preset sanitize -j $(JOBS)
	ctest --preset sanitize -j $(JOBS)

# Every fuzz target for FUZZ_SECONDS (default 60) each, FUZZ_JOBS (default 1) at a time, under
# both sanitizers (Clang, libFuzzer).
FUZZ_SECONDS ?= 60
FUZZ_JOBS ?= 1
FUZZ_RUNS ?= 10000000
fuzz: deps
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)
	FUZZ_SECONDS=$(FUZZ_SECONDS) FUZZ_JOBS=$(FUZZ_JOBS) bash scripts/run-fuzzers.sh

# A long run: every fuzz target of an optimised build with UndefinedBehaviorSanitizer in trap mode
# (no AddressSanitizer) for FUZZ_RUNS inputs
# (default 10 million) each, FUZZ_JOBS at a time; then every input each kept is replayed under
# both sanitizers.
fuzz-long: deps
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)
	cmake --preset fuzz-long
	cmake --build --preset fuzz-long -j $(JOBS)
	FUZZ_LONG=1 FUZZ_RUNS=$(FUZZ_RUNS) FUZZ_JOBS=$(FUZZ_JOBS) bash scripts/run-fuzzers.sh

# Every fuzz target for the fixed number of inputs fuzz/ci-runs gives it (about 20 s each), with a
# fixed seed, from its seeds and regressions only: the same result on every run, for CI.
fuzz-ci: deps
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)
	FUZZ_CI=1 FUZZ_JOBS=$(FUZZ_JOBS) bash scripts/run-fuzzers.sh

# Fails when a source of the project is not formatted with the repository's .clang-format.
format-check: deps
	git ls-files -z -- '*.h' '*.cpp' | xargs -0 -r clang-format --dry-run --Werror

bench: deps
	cmake --preset bench
	cmake --build --preset bench -j $(JOBS)
	@for b in build/bench/bench/quillon_*_bench; do [ -x "$$b" ] && "$$b" --benchmark_enable_random_interleaving=true; done

# The main job on the bundled example batch: every file under build/demo/. Installs and builds
# only what the demo runs (the tool and the generator, optimised, in build/tool), not the tests.
demo:
	@bash scripts/install-deps.sh tool
	cmake --preset tool
	cmake --build --preset tool -j $(JOBS)
	@bash scripts/demo.sh build/tool/tools/quillon/quillon examples/Chlorpromazine_HLM_batch.txt build/demo

clean:
	rm -rf build
