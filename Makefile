# The two commands a new machine needs: `make demo` and `make test`.
# Each installs what is missing (Debian packages, as root), configures,
# builds and runs.

BUILD      ?= build
ASAN_BUILD ?= build-asan
BENCH_BUILD?= build-bench
FUZZ_BUILD ?= build-fuzz
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
FUZZ_SECONDS ?= 60
CMAKE      ?= cmake

.PHONY: all deps build demo test sanitize bench fuzz clean

all: build

deps:
	@bash scripts/install-deps.sh

$(BUILD)/CMakeCache.txt: | deps
	$(CMAKE) -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLAYERMGR_WERROR=ON

build: deps $(BUILD)/CMakeCache.txt
	$(CMAKE) --build $(BUILD) -j$(JOBS)

demo: build
	@bash scripts/demo.sh $(BUILD)

test: build
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

sanitize: deps
	$(CMAKE) -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DLAYERMGR_SANITIZE=ON -DLAYERMGR_WERROR=ON
	$(CMAKE) --build $(ASAN_BUILD) -j$(JOBS)
	cd $(ASAN_BUILD) && \
	  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:detect_stack_use_after_return=1 \
	  LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp:print_suppressions=0 \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --output-on-failure -j$(JOBS)

bench: deps
	$(CMAKE) -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=Release -DLAYERMGR_BENCH=ON -DBUILD_TESTING=OFF
	$(CMAKE) --build $(BENCH_BUILD) -j$(JOBS)
	@bash scripts/bench.sh $(BENCH_BUILD)

fuzz: deps
	CC=clang CXX=clang++ $(CMAKE) -S . -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLAYERMGR_FUZZ=ON -DBUILD_TESTING=OFF
	$(CMAKE) --build $(FUZZ_BUILD) -j$(JOBS)
	@bash scripts/fuzz.sh $(FUZZ_BUILD) $(FUZZ_SECONDS)

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(BENCH_BUILD) $(FUZZ_BUILD)
