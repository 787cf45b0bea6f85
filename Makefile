# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# The front door: short targets over the presets of CMakePresets.json.
#
#   make run                 search the bundled example with the default settings
#   make run ARGS="-M exact genome.fa report.txt"
#   make test                run every test but the slow ones
#   make test-slow           run the tests that take long, also under the sanitizers
#   make test-asan           the same under the sanitizers, with g++ and with clang++
#   make test-clang          the same, built with clang++, warnings as errors
#   make test-portable       the same without wider vector instructions
#   make tools               build the companion program vorlan-tools: build/tools/bin/vorlan-tools
#   make test-tools          run its tests
#   make fuzz                search for faults with libFuzzer; SECONDS=60 for each target, TARGET=one of them
#   make fuzz-tools          the same for the report reader of vorlan-tools
#   make coverage            which lines and branches of the product the tests reach
#   make mutants             plant small faults, one at a time: which test notices each? Takes long
#   make bench               measure speed and memory; DATA=folder of genomes (gzip FASTA)
#   make figures             draw the pictures of docs/figures again
#   make lint                check format and run clang-tidy
#   make install             PREFIX (default /usr/local) and DESTDIR as usual
#   make deb                 build a Debian package in build/deb/
#   make clean

ARGS ?= examples/androgen_receptor.fa
PREFIX ?= /usr/local
DESTDIR ?=
DATA ?=
BUILD_DIR ?= build/release
DEB_DIR ?= build/deb
SECONDS ?= 60
TARGET ?=

need = @tools/install-missing-packages.sh
configure = @cmake --preset $(1) -DVORLAN_TESTS=$(2) >&2
build = @cmake --build --preset $(1) >&2

.PHONY: build tools test-tools run test test-slow test-asan test-clang test-portable fuzz fuzz-tools coverage mutants bench figures lint install deb clean

build:
	$(need) build
	$(call configure,release,OFF)
	$(call build,release)

run: build
	@build/release/vorlan $(ARGS)

# Configures, builds and tests the preset $(1).
define run_tests
	$(call configure,$(1),ON)
	$(call build,$(1))
	@ctest --preset $(1)
endef

test:
	$(need) build test cookbook figures
	$(call run_tests,release)

# Builds only the program with the preset $(1).
define build_program
	$(call configure,$(1),OFF)
	@cmake --build --preset $(1) --target vorlan >&2
endef

test-slow:
	$(need) build tools test test-slow cookbook figures deb clang
	$(call configure,release,ON)
	$(call build,release)
	@ctest --preset release-slow
	$(call build_program,clang)
	$(call build_program,portable)
	$(call build_program,unoptimised)
	@tests/determinism/compare_builds.py $(foreach preset,release clang portable unoptimised,build/$(preset)/vorlan)
	$(call configure,asan,ON)
	$(call build,asan)
	@ctest --preset asan-slow

test-asan:
	$(need) build test cookbook figures clang
	$(call run_tests,asan)
	$(call run_tests,asan-clang)

test-clang:
	$(need) build test cookbook figures clang
	$(call run_tests,clang)

test-portable:
	$(need) build test cookbook figures
	$(call run_tests,portable)

# The companion program has a build folder and tests of its own.
tools:
	$(need) build tools
	$(call configure,tools,OFF)
	$(call build,tools)

test-tools:
	$(need) build tools test-tools cookbook
	$(call configure,tools,ON)
	$(call build,tools)
	@ctest --preset tools

fuzz:
	$(need) build test clang
	$(call configure,fuzz,ON)
	$(call build,fuzz)
	@tests/fuzz/run_fuzz.sh build/fuzz $(SECONDS) $(TARGET)

fuzz-tools:
	$(need) build test tools clang
	@cmake --preset fuzz -B build/fuzz-tools -DVORLAN_TOOLS=ON -DVORLAN_TESTS=ON >&2
	@cmake --build build/fuzz-tools --target fuzz_report_reader >&2
	@vorlan-tools/tests/fuzz/run_fuzz.sh build/fuzz-tools $(SECONDS)

# Two modules of tests are left out: in them the program may not write files, hence no counters either.
coverage:
	$(need) build test coverage
	$(call configure,coverage,ON)
	$(call build,coverage)
	@find build/coverage -name '*.gcda' -delete
	@ctest --preset coverage
	@tools/coverage.sh build/coverage

mutants:
	$(need) build test
	@tests/mutation/run_mutants.py --write tests/mutation/results.md

bench:
	$(need) build bench
	$(call configure,bench,OFF)
	$(call build,bench)
	@bench/run_bench.py build/bench $(if $(DATA),--data $(DATA))

# The pictures are drawn with the Python that Debian's matplotlib is installed for.
figures: build
	$(need) figures
	@/usr/bin/python3 docs/figures/draw_modes.py build/release/vorlan docs/figures/modes.svg
	@/usr/bin/python3 docs/figures/draw_speed.py bench/results/*.md docs/figures/speed.svg

lint:
	$(need) build test lint
	$(call configure,dev,ON)
	@tools/lint.sh build/dev

install: build
	@DESTDIR="$(DESTDIR)" cmake --install "$(BUILD_DIR)" --prefix "$(PREFIX)"

deb:
	$(need) build tools deb
	@tools/build_deb.sh "$(DEB_DIR)" >&2

clean:
	@rm -rf build
