# The front door: "make help" lists what there is.
PREFIX ?= /usr/local
PRESET ?= release
export CMAKE_BUILD_PARALLEL_LEVEL ?= $(shell nproc)

all: ## build the library and the tool
	scripts/install-packages build
	cmake --preset $(PRESET) -D CMAKE_INSTALL_PREFIX=$(PREFIX)
	cmake --build build/$(PRESET)

install: all ## install them below PREFIX (/usr/local); DESTDIR is put before it
	DESTDIR=$(DESTDIR) cmake --install build/$(PRESET)

test: ## run everything a change must pass
	scripts/test

demo: ## make a small PKI and let openssl check it, or show the file CERT=...
	scripts/install-packages build demo
	@test -f build/gcc/build.ninja || cmake --preset gcc -D ZACERT_BUILD_TESTS=OFF
	cmake --build build/gcc --target zacert-tool
	@CERT="$(CERT)" scripts/demo build/gcc/tools/zacert

bench: ## build optimised and run every benchmark; results also in build/bench/results
	scripts/install-packages build bench
	cmake --preset bench
	cmake --build build/bench
	scripts/bench build/bench

format: ## format every file as .clang-format says
	scripts/list-sources | xargs -0 -r clang-format-14 -i

tidy: ## look for more than the compilers warn of
	scripts/install-packages build test tidy
	cmake --preset sanitize
	run-clang-tidy -quiet -p build/sanitize '/(src|companion|tools)/'
	shellcheck scripts/* .ci/run

deps: ## install every package that any of these needs
	scripts/install-packages build demo test bench tidy

clean: ## remove the build tree
	rm -rf build

help: ## list these targets
	@sed -nE 's/^([a-z]+):.*## (.*)/\1\t\2/p' Makefile | expand -t 10

.PHONY: all install test demo bench format tidy deps clean help
