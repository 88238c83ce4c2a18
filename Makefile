# Entry points for people and CI. `make test` does everything from a fresh machine.
BUILD      ?= build
ASAN_BUILD ?= build-asan
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60
TESTDATA   ?= ../shared/testdata
JOBS       ?= 2
CMAKE_ARGS ?=

.PHONY: all setup configure build run adserver test asan fuzz-build fuzz bench format clean

all: build

setup:
	@scripts/setup

configure: setup
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_ARGS)

build: configure
	cmake --build $(BUILD) -j$(JOBS)

# Starts the reference ad server and the soundboard against it (offscreen, leaving a screenshot and a
# recording, where there is no display).
run: build
	@BUILD=$(BUILD) scripts/run

# The reference ad server alone, on the ad client's default port; its dashboard is at "/".
# ADSERVER_ARGS adds options (e.g. ADSERVER_ARGS="--config slots.json").
ADSERVER_ARGS ?=
adserver: configure
	cmake --build $(BUILD) -j$(JOBS) --target vantor-adserver
	$(BUILD)/adserver/vantor-adserver --db $(BUILD)/adserver.db $(ADSERVER_ARGS)

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j$(JOBS)

# Unit tests under AddressSanitizer and UndefinedBehaviorSanitizer.
asan: setup
	cmake -S . -B $(ASAN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQUIBLO_SANITIZE=ON $(CMAKE_ARGS)
	cmake --build $(ASAN_BUILD) -j$(JOBS)
	ctest --test-dir $(ASAN_BUILD) -L unit --output-on-failure -j$(JOBS)

# libFuzzer targets: a separate clang build, instrumented and sanitized throughout.
fuzz-build: setup
	cmake -S . -B $(FUZZ_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
	      -DQUIBLO_FUZZ=ON $(CMAKE_ARGS)
	cmake --build $(FUZZ_BUILD) -j$(JOBS) --target fuzzers

# Runs each fuzz target for FUZZ_SECONDS. New corpus entries stay in $(FUZZ_BUILD)/corpus; crashing
# inputs land in $(FUZZ_BUILD)/artifacts (keep them in tests/ads/ThirdParty/data once fixed).
FUZZ_FLAGS = -max_total_time=$(FUZZ_SECONDS) -max_len=4096 -timeout=10 -print_final_stats=1
fuzz: fuzz-build
	mkdir -p $(FUZZ_BUILD)/corpus/json $(FUZZ_BUILD)/corpus/encoding $(FUZZ_BUILD)/artifacts
	mkdir -p $(FUZZ_BUILD)/corpus/query $(FUZZ_BUILD)/corpus/store $(FUZZ_BUILD)/corpus/adserver
	$(FUZZ_BUILD)/fuzz/zebjson_fuzzer $(FUZZ_FLAGS) -dict=fuzz/json.dict \
	    -artifact_prefix=$(FUZZ_BUILD)/artifacts/json- \
	    $(FUZZ_BUILD)/corpus/json $(TESTDATA)/JSONTestSuite/test_parsing tests/ads/ThirdParty/data
	$(FUZZ_BUILD)/fuzz/kblstringencoding_fuzzer $(FUZZ_FLAGS) \
	    -artifact_prefix=$(FUZZ_BUILD)/artifacts/encoding- \
	    $(FUZZ_BUILD)/corpus/encoding tests/ads/ThirdParty/data
	$(FUZZ_BUILD)/fuzz/querystring_fuzzer $(FUZZ_FLAGS) -artifact_prefix=$(FUZZ_BUILD)/artifacts/query- \
	    $(FUZZ_BUILD)/corpus/query
	$(FUZZ_BUILD)/fuzz/persistedstore_fuzzer $(FUZZ_FLAGS) -artifact_prefix=$(FUZZ_BUILD)/artifacts/store- \
	    $(FUZZ_BUILD)/corpus/store
	$(FUZZ_BUILD)/fuzz/adserver_text_fuzzer $(FUZZ_FLAGS) -artifact_prefix=$(FUZZ_BUILD)/artifacts/adserver- \
	    $(FUZZ_BUILD)/corpus/adserver

# Codec throughput against other libraries (MB/s and ratios); the soundboard's touch-to-sound latency;
# the web view's bridge latency, cold and warm; the reference ad server's requests per second and
# latency under 64 clients.
bench: build
	$(BUILD)/bench/codec_bench
	$(BUILD)/bench/touch_latency_probe
	$(BUILD)/bench/bridge_latency_probe
	$(BUILD)/bench/adserver_load_probe

format:
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD)
