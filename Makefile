# The two commands for a new user are `make demo` and `make check`.
# Everything else here serves them, or the fuzzers (`make fuzz`).

JOBS ?= 2
BUILD ?= build
SAN_BUILD ?= build-sanitize
FUZZ_BUILD ?= build-fuzz
BENCH_BUILD ?= build-bench
FUZZ_SECONDS ?= 60
EXAMPLE ?= all

.PHONY: demo check deps build build-sanitize test test-sanitize fuzz fuzz-build fuzz-smoke format format-check bench bench-light bench-frame bench-mesh bench-cloud

# Builds only the engine and the viewer, renders examples/$(EXAMPLE) (every
# example when not given) into out/<example>/ and writes PNG previews there.
demo: deps
	JOBS=$(JOBS) ./scripts/demo $(BUILD) $(EXAMPLE)

check: deps
	$(MAKE) test
	$(MAKE) test-sanitize

deps:
	./scripts/install-deps

build: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) -j$(JOBS)

test:
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) -j$(JOBS)
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

test-sanitize:
	cmake -S . -B $(SAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DTC_SANITIZE=ON
	cmake --build $(SAN_BUILD) -j$(JOBS)
	cd $(SAN_BUILD) && ctest --output-on-failure -j$(JOBS)

fuzz-build: deps
	CXX=clang++-14 cmake -S . -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTC_FUZZ=ON
	cmake --build $(FUZZ_BUILD) -j$(JOBS)

# Each target for FUZZ_SECONDS, growing a working corpus seeded from fuzz/corpus.
fuzz: fuzz-build
	./scripts/run-fuzzers $(FUZZ_BUILD) $(FUZZ_SECONDS)

# A few seconds per target on its seeds: what CI runs.
fuzz-smoke: fuzz-build
	./scripts/run-fuzzers $(FUZZ_BUILD) 5

# The Fourier transform against FFTW (docs/performance.md); extra Google
# Benchmark options through BENCH_ARGS, e.g. BENCH_ARGS=--benchmark_filter=real2d/1024.
bench: deps
	cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTC_BENCH=ON
	cmake --build $(BENCH_BUILD) -j$(JOBS) --target fourt_benchmark
	$(BENCH_BUILD)/bench/fourt_benchmark $(BENCH_ARGS)

# The sea's light: table fill per level and the cost of a pixel.
bench-light: deps
	cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BENCH_BUILD) -j$(JOBS) --target ocean_light_benchmark
	$(BENCH_BUILD)/bench/ocean_light_benchmark $(BENCH_ARGS)

# A whole sea frame through the engine at several sizes (docs/performance.md).
bench-frame: deps
	cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BENCH_BUILD) -j$(JOBS) --target sea_frame_benchmark
	$(BENCH_BUILD)/bench/sea_frame_benchmark --benchmark_counters_tabular=true $(BENCH_ARGS)

# Imaging a 100 000-triangle polygon object at 1920 x 1080 (docs/performance.md).
bench-mesh: deps
	cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BENCH_BUILD) -j$(JOBS) --target poly_mesh_benchmark
	$(BENCH_BUILD)/bench/poly_mesh_benchmark --benchmark_counters_tabular=true $(BENCH_ARGS)

# A 1920 x 1080 frame through a 128^3 cloud, and smaller ones (docs/performance.md).
bench-cloud: deps
	cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BENCH_BUILD) -j$(JOBS) --target cloud_frame_benchmark
	$(BENCH_BUILD)/bench/cloud_frame_benchmark --benchmark_counters_tabular=true $(BENCH_ARGS)

format:
	clang-format-14 -i $$(git ls-files '*.cpp' '*.h')

format-check:
	clang-format-14 --dry-run --Werror $$(git ls-files '*.cpp' '*.h')
