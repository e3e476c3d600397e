# Quick start: `make run` opens the program on a fresh sample data folder; `make test` runs every test;
# `make sanitize` runs every test built with the address and undefined-behaviour sanitizers.
BUILD ?= build
JOBS ?= 2

SANITIZE_BUILD ?= build-sanitize

.PHONY: all deps configure build run test bench sanitize clean format

all: build

deps:
	@scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

run: build
	@scripts/run-sample.sh $(BUILD)

test: build
	@scripts/run-tests.sh $(BUILD)

bench: build
	@scripts/run-bench.sh $(BUILD)

# The whole suite built with AddressSanitizer and UndefinedBehaviorSanitizer, in a build folder of its own.
sanitize: deps
	@cmake -S . -B $(SANITIZE_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVIRN_SANITIZE=ON \
		-DVIRN_BENCH=OFF -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g" >/dev/null
	@cmake --build $(SANITIZE_BUILD) -j $(JOBS)
	@scripts/run-tests.sh $(SANITIZE_BUILD)

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	@rm -rf $(BUILD)
