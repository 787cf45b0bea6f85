# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# The front door: short targets over the presets of CMakePresets.json. A target whose packages are
# not all there names them and the command before it installs them, with sudo unless you are root.
#
#   make run                 search the bundled example with the default settings
#   make run ARGS="-M exact genome.fa report.txt"
#   make build               only build, to build/release/vorlan
#   make deps                install what building and testing need; GROUPS="build test documents ..."
#   make install             PREFIX (default /usr/local) and DESTDIR as usual
#   make uninstall           remove what the last make install put there; the same DESTDIR
#   make test                run every test but the slow ones and those of documents
#   make test-docs           check documents, figures, manual and completions
#   make test-slow           run the tests that take long, also under the sanitizers
#   make test-asan           what make test runs, under the sanitizers of g++
#   make test-asan-clang     the same with those of clang++
#   make test-clang          what make test runs, built with clang++, warnings as errors
#   make test-portable       the same without wider vector instructions
#   make tools               build the companion program vorlan-tools: build/tools/bin/vorlan-tools
#   make test-tools          run its tests
#   make test-tools-asan     run them under the sanitizers of g++, but for those of documents
#   make test-slurm          run the workflow for many genomes on a Slurm of its own with three nodes;
#                            GENOMES=folder runs it over these, too
#   make test-browser        look at the page of vorlan-tools with chromium, and at its numbers with MultiQC
#   make fuzz                search for faults with libFuzzer; SECONDS=60 for each target, TARGET=one of them
#   make fuzz-tools          the same for what vorlan-tools reads: reports, JSON
#   make coverage            which lines and branches of the product the tests reach
#   make mutants             plant small faults, one at a time: which test notices each? Takes long
#   make bench               measure speed and memory; DATA=folder of genomes (gzip FASTA), SECTION=one or several
#                            sections of bench/sections/, QUICK=1 to see only whether everything works
#   make figures             draw the pictures of docs/figures again
#   make lint                check format and run clang-tidy
#   make lint-tools          run clang-tidy over the companion program
#   make deb                 build a Debian package in build/deb/
#   make clean
#   make help                this list

ARGS ?= examples/androgen_receptor.fa
PREFIX ?= /usr/local
DESTDIR ?=
DATA ?=
SECTION ?=
GENOMES ?=
QUICK ?=
BUILD_DIR ?= build/release
INSTALLED ?= build/installed-files
DEB_DIR ?= build/deb
SECONDS ?= 60
TARGET ?=
GROUPS ?= build test documents cookbook figures

need = @tools/install-missing-packages.sh
configure = @cmake --preset $(1) -DVORLAN_TESTS=$(2) >&2
build = @cmake --build --preset $(1) >&2

.PHONY: build tools run deps install uninstall test test-docs test-slow test-asan test-asan-clang test-clang \
  test-portable test-tools test-tools-asan test-browser test-slurm fuzz fuzz-tools coverage mutants bench figures \
  lint lint-tools deb clean help

build:
	$(need) build
	$(call configure,release,OFF)
	$(call build,release)

run: build
	@build/release/vorlan $(ARGS)

deps:
	$(need) $(GROUPS)

# Configures, builds and tests the preset $(1).
define run_tests
	$(call configure,$(1),ON)
	$(call build,$(1))
	@ctest --preset $(1)
endef

test:
	$(need) build test
	$(call run_tests,release)

# Only what these tests need is built.
test-docs:
	$(need) build test documents cookbook figures
	$(call configure,release,ON)
	@cmake --build --preset release --target vorlan >&2
	@ctest --preset release-docs

# Builds only the program with the preset $(1).
define build_program
	$(call configure,$(1),OFF)
	@cmake --build --preset $(1) --target vorlan >&2
endef

test-slow:
	$(need) build tools test test-slow deb clang
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
	$(need) build test
	$(call run_tests,asan)

test-asan-clang:
	$(need) build test clang
	$(call run_tests,asan-clang)

test-clang:
	$(need) build test clang
	$(call run_tests,clang)

test-portable:
	$(need) build test
	$(call run_tests,portable)

# The companion program has a build folder and tests of its own.
tools:
	$(need) build tools
	$(call configure,tools,OFF)
	$(call build,tools)

test-tools:
	$(need) build test tools test-tools cookbook documents
	$(call configure,tools,ON)
	$(call build,tools)
	@ctest --preset tools

test-tools-asan:
	$(need) build test tools test-tools
	$(call configure,tools-asan,ON)
	$(call build,tools-asan)
	@ctest --preset tools-asan

test-browser:
	$(need) build tools test-browser
	$(call configure,tools,ON)
	@cmake --build --preset tools --target vorlan vorlan-tools >&2
	@ctest --preset tools-browser

# Snakemake is that of Debian, and so is its Python.
test-slurm: build tools
	$(need) slurm
	@workflow/tests/run_tests.sh "$(GENOMES)"

fuzz:
	$(need) build test clang
	$(call configure,fuzz,ON)
	$(call build,fuzz)
	@tests/fuzz/run_fuzz.sh build/fuzz $(SECONDS) $(TARGET)

fuzz-tools:
	$(need) build test tools clang
	@cmake --preset fuzz -B build/fuzz-tools -DVORLAN_TOOLS=ON -DVORLAN_TESTS=ON >&2
	@cmake --build build/fuzz-tools --target fuzz_report_reader fuzz_json_readers >&2
	@vorlan-tools/tests/fuzz/run_fuzz.sh build/fuzz-tools $(SECONDS) $(TARGET)

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
	$(need) build tools bench
	$(call configure,bench,OFF)
	$(call build,bench)
	@bench/run_bench.py build/bench $(if $(DATA),--data $(DATA)) $(SECTION:%=--section %) $(if $(QUICK),--quick)

# The pictures are drawn with the Python that Debian's matplotlib is installed for.
figures: build
	$(need) figures
	@/usr/bin/python3 docs/figures/draw_modes.py build/release/vorlan docs/figures/modes.svg
	@/usr/bin/python3 docs/figures/draw_speed.py bench/results/*.md docs/figures/speed.svg

lint:
	$(need) build test lint
	$(call configure,dev,ON)
	@tools/lint.sh build/dev

lint-tools:
	$(need) build tools lint
	@cmake --preset dev -B build/dev-tools -DVORLAN_TESTS=OFF -DVORLAN_TOOLS=ON >&2
	@tools/lint.sh build/dev-tools companion

install: build
	@DESTDIR="$(DESTDIR)" cmake --install "$(BUILD_DIR)" --prefix "$(PREFIX)"
	@cp "$(BUILD_DIR)/install_manifest.txt" "$(INSTALLED)"

uninstall:
	@DESTDIR="$(DESTDIR)" tools/uninstall.sh "$(INSTALLED)"

deb:
	$(need) build tools deb
	@tools/build_deb.sh "$(DEB_DIR)" >&2

clean:
	@rm -rf build

help:
	@sed -n 's/^#   make/make/p' Makefile
