# Entry points for people and CI. `make test` does everything from a fresh machine.
BUILD      ?= build
ASAN_BUILD ?= build-asan
JOBS       ?= 2
CMAKE_ARGS ?=

.PHONY: all setup configure build run test asan format clean

all: build

setup:
	@scripts/setup

configure: setup
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_ARGS)

build: configure
	cmake --build $(BUILD) -j$(JOBS)

# Starts the soundboard (offscreen, leaving a screenshot and a recording, where there is no display).
run: build
	@BUILD=$(BUILD) scripts/run

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j$(JOBS)

# Unit tests under AddressSanitizer and UndefinedBehaviorSanitizer.
asan: setup
	cmake -S . -B $(ASAN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQUIBLO_SANITIZE=ON $(CMAKE_ARGS)
	cmake --build $(ASAN_BUILD) -j$(JOBS)
	ctest --test-dir $(ASAN_BUILD) -L unit --output-on-failure -j$(JOBS)

format:
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(ASAN_BUILD)
