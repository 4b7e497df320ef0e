# The two commands a new user needs: `make run` and `make test`.
# Both install missing packages first (scripts/install-deps.sh).

MAKEFLAGS += --no-print-directory

BUILD_DIR ?= build
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE_FLAGS ?=
# Rebuilds in several checkouts share compiled objects when ccache is there.
ifneq ($(shell command -v ccache 2>/dev/null),)
CMAKE_FLAGS += -DCMAKE_CXX_COMPILER_LAUNCHER=ccache
endif

.PHONY: all deps configure build run test bench install package sanitize fuzz format tidy clean

all: build

deps:
	@bash scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD_DIR) $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build $(BUILD_DIR) -j $(JOBS)

# Without a display (a bare server, CI) the program runs on the offscreen platform.
run: build
	@if [ -z "$$DISPLAY" ] && [ -z "$$WAYLAND_DISPLAY" ]; then \
	  echo "No display found: running on Qt's offscreen platform."; \
	  QT_QPA_PLATFORM=offscreen $(BUILD_DIR)/tarvo; \
	else $(BUILD_DIR)/tarvo; fi

test: build
	@cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

# Installs under PREFIX (default /usr/local); DESTDIR stages it elsewhere.
PREFIX ?= /usr/local
install: build
	@DESTDIR="$(DESTDIR)" cmake --install $(BUILD_DIR) --prefix "$(PREFIX)"

# A Debian package (tarvo_<version>_<arch>.deb) in the build folder.
package: build
	@cd $(BUILD_DIR) && cpack

bench: configure
	@cmake --build $(BUILD_DIR) -j $(JOBS)
	@for b in $(BUILD_DIR)/bench/bench_*; do \
	  [ -x "$$b" ] || continue; echo "== $$b"; "$$b" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true || exit 1; \
	done
	@echo "== agenda against remind"; bash bench/agenda_vs_remind.sh $(BUILD_DIR)/tarvo

# Address and undefined-behaviour sanitizers, in a separate build folder.
sanitize:
	@LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp:print_suppressions=0 $(MAKE) test BUILD_DIR=build-asan CMAKE_FLAGS="-DTARVO_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug -DTARVO_BUILD_BENCH=OFF"

# Every fuzz target of tests/fuzz for FUZZ_SECONDS each (default 60), one
# after the other on one core, built with clang in build-fuzz/.
FUZZ_SECONDS ?= 60
fuzz:
	@FUZZ_SECONDS=$(FUZZ_SECONDS) bash scripts/fuzz.sh

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

tidy: configure
	@git ls-files 'src/*.cpp' | xargs clang-tidy -p $(BUILD_DIR) --quiet

clean:
	@rm -rf $(BUILD_DIR) build-asan build-fuzz
