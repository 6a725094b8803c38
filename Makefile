# The front door. Each target installs what it needs (tools/setup), then uses the presets of
# CMakePresets.json, which work by themselves as well.

FUZZ_SECONDS ?= 60
JOBS ?= $(shell nproc)
PREFIX ?= /usr/local
DESTDIR ?=
SHELL := /bin/bash
.SHELLFLAGS := -euo pipefail -c

MEMCHECKED = unsafe_bytes inside_utf8 memory_block execute results text_in replace

.PHONY: help demo test test-32 sanitize memcheck fuzz bench bench-check coverage pictures docs test-pages package release install uninstall format check clean
.DEFAULT_GOAL := help
.NOTPARALLEL:

plugin = build/package/ZRKRegEx.xojo_plugin

# $(call build,PRESET[,TARGETS]): configures one preset and builds it, or these targets of it.
build = cmake --preset $(1) -Wno-dev --log-level=WARNING && \
        cmake --build --preset $(1) -j $(JOBS) $(addprefix --target ,$(2))

help:  ## list these targets
	@awk -F ':.*## ' '/^[a-z0-9-]+:.*## / {printf "make %-12s %s\n", $$1, $$2}' $(MAKEFILE_LIST)
	@echo; echo "JOBS=N builds and tests with N processes at a time (here $(JOBS) if not said)."

demo:  ## build, then find things in real text (FILE=path for a text of your own)
	@tools/setup build
	@$(call build,dev,ZRKRegEx zrkhost)
	@build/dev/zrkhost examples/demo.lua $(FILE)

test:  ## build and run every test
	@tools/setup build
	$(call build,dev)
	ctest --preset dev -j $(JOBS)

test-32:  ## the same as 32-bit code, the host's own interface
	@tools/setup build m32
	@tools/fetch-i386
	@tools/fetch-engine
	$(call build,m32)
	ctest --preset m32 -j $(JOBS)

sanitize:  ## the tests under address, leak and undefined; the threaded ones under thread
	@tools/setup build
	$(call build,asan-ubsan)
	ctest --preset asan-ubsan -j $(JOBS)
	$(call build,tsan)
	ctest --preset tsan -j $(JOBS)

memcheck:  ## under valgrind: the tests whose subjects end where readable memory ends, and their kin
	@tools/setup build memcheck
	$(call build,dev)
	printf '%s\n' $(MEMCHECKED) | xargs -P $(JOBS) -I{} \
	  valgrind -q --error-exitcode=1 --leak-check=no --suppressions=tests/valgrind.supp build/dev/{}_test --gtest_brief=1

fuzz:  ## run each fuzz target for FUZZ_SECONDS (60)
	@tools/setup build clang
	$(call build,fuzz,$(patsubst fuzz/%.cpp,%,$(wildcard fuzz/*_fuzz.cpp)))
	@tools/run-fuzz $(FUZZ_SECONDS)

bench:  ## measure against the bare engine and write docs/benchmarks.md
	@tools/setup build bench
	$(call build,release,ZRKRegEx zrk_bench)
	@bench/run

bench-check:  ## a quick measurement that fails when a ratio falls behind its target
	@tools/setup build bench
	$(call build,release,ZRKRegEx zrk_bench)
	@bench/run --check

coverage:  ## lines and branches that the tests reach, by room, with an HTML report
	@tools/setup build clang
	$(call build,coverage)
	@tools/report-coverage

pictures:  ## draw the pictures of the help pages anew
	@tools/setup build
	@$(call build,dev,ZRKRegEx zrkhost)
	@build/dev/zrkhost docs/pictures/draw.lua

docs:  ## the documentation as HTML, in build/docs
	@tools/setup build docs
	@tools/build-docs

test-pages: docs  ## look at every page of the documentation in a real browser
	@tools/setup pages
	timeout 300 tests/pages/pages_test.py build/docs

package: docs  ## build/package/ZRKRegEx.xojo_plugin, and a check of it
	@tools/setup build m32 package
	@tools/fetch-i386
	@tools/fetch-i386 bare-root
	@tools/fetch-engine
	$(call build,m32,ZRKRegEx zrkhost)
	@packaging/make-package build/m32/libZRKRegEx.so build/docs/help build/package
	@packaging/check-package $(plugin) build/m32/zrkhost || { rm -f $(plugin); exit 1; }

release: package  ## build/release/ZRKRegEx-VERSION.zip: the package with read-me, licence, changelog
	@packaging/check-rebuild $(plugin)
	@packaging/make-release $(plugin) build/release

# What "make install" puts below PREFIX, and "make uninstall" takes away.
installed = bin/zrkhost lib/zrkhost/libZRKRegEx.so share/man/man1/zrkhost.1 \
            share/bash-completion/completions/zrkhost share/zsh/site-functions/_zrkhost
prefix = $(DESTDIR)$(PREFIX)

install:  ## zrkhost, its man page, completions and examples below PREFIX (/usr/local)
	@tools/setup build docs
	@cmake --preset release -B build/install -D ZRK_BENCH=OFF -Wno-dev --log-level=WARNING
	@cmake --build build/install -j $(JOBS) --target ZRKRegEx zrkhost
	@tools/build-man build/install/zrkhost.1
	install -D -s build/install/zrkhost $(prefix)/bin/zrkhost
	install -D -m 644 build/install/libZRKRegEx.so $(prefix)/lib/zrkhost/libZRKRegEx.so
	install -D -m 644 build/install/zrkhost.1 $(prefix)/share/man/man1/zrkhost.1
	install -D -m 644 standin/zrkhost/completions/zrkhost.bash \
	  $(prefix)/share/bash-completion/completions/zrkhost
	install -D -m 644 standin/zrkhost/completions/_zrkhost $(prefix)/share/zsh/site-functions/_zrkhost
	install -d $(prefix)/share/doc/zrkhost/examples
	install -m 644 examples/*.lua $(prefix)/share/doc/zrkhost/examples

uninstall:  ## takes away what install put below PREFIX
	rm -f $(addprefix $(prefix)/,$(installed))
	rm -rf $(prefix)/share/doc/zrkhost
	rmdir --ignore-fail-on-non-empty $(prefix)/lib/zrkhost

format:  ## rewrite the sources as .clang-format says
	@tools/setup format
	@tools/format

check:  ## formatting, include directions, headers alone, house rules, clang-tidy, shellcheck
	@tools/setup build check
	@tools/check
	@cmake --preset dev -Wno-dev --log-level=WARNING
	@tools/tidy build/dev

clean:  ## remove everything that was built
	rm -rf build
