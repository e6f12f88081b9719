# Front door for people and CI. Each target installs missing dependencies first.
#   make run                 build and start Paneforge
#   make test                build and run every test
#   make test PRESET=asan    the same under AddressSanitizer and UndefinedBehaviorSanitizer
#   make bench               build and run the benchmarks
#   make package             build the package: paneforge_<version>_<arch>.deb on Debian/Ubuntu,
#                            Paneforge-<version>.dmg on macOS (in build/<preset>/)
#   make screenshots         build and take the README's pictures of the real agent (docs/screenshots)
# WERROR=ON turns compiler warnings into errors (CI sets it).

PRESET ?= default
WERROR ?= OFF
BUILD_DIR := build/$(PRESET)
# On macOS the agent is built as Paneforge.app.
ifeq ($(shell uname -s),Darwin)
AGENT := $(BUILD_DIR)/src/Paneforge.app/Contents/MacOS/Paneforge
else
AGENT := $(BUILD_DIR)/src/paneforge
endif

.PHONY: deps configure build test run bench package screenshots format clean

deps:
	@scripts/install-deps.sh

configure: deps
	cmake --preset $(PRESET) -DPANEFORGE_WERROR=$(WERROR)

build: configure
	cmake --build --preset $(PRESET)

test: build
	ctest --preset $(PRESET)

run: build
	$(AGENT)

bench: build
	scripts/run-benchmarks.sh $(BUILD_DIR)

package: build
	cd $(BUILD_DIR) && rm -f paneforge_*.deb Paneforge-*.dmg && cpack

screenshots: build
	scripts/screenshots.sh $(BUILD_DIR)

format:
	git ls-files '*.cpp' '*.h' '*.mm' | xargs clang-format -i

clean:
	rm -rf build
