# Quick start: `make run` opens the program on a fresh sample data folder; `make test` runs every test.
BUILD ?= build
JOBS ?= 2

.PHONY: all deps configure build run test bench install clean format

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

# The program, its menu entry, icon and document types; PREFIX defaults to ~/.local.
install: build
	@cmake --install $(BUILD) $(if $(PREFIX),--prefix $(PREFIX))

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	@rm -rf $(BUILD)
