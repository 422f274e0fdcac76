# Two commands on a fresh Debian machine:
#   make run    installs what is missing, builds and starts Corvane
#   make test   installs what is missing, builds and runs the whole test suite
# Each installs only what it needs (the lists are in tools/install-deps.sh).
.PHONY: run test deb test-asan bench clean build-release build-dev build-asan

# The program alone; make deb and make bench build the rest (manual page, changelog, benchmarks).
build-release:
	@bash tools/install-deps.sh run
	cmake --preset release >/dev/null
	cmake --build --preset release --target corvane

build-dev:
	@bash tools/install-deps.sh test
	cmake --preset dev >/dev/null
	cmake --build --preset dev

build-asan:
	@bash tools/install-deps.sh test
	cmake --preset asan >/dev/null
	cmake --build --preset asan

run: build-release
	@bash tools/run-app.sh build/release/src/app/corvane

# A private session bus and a virtual display, so that no test reaches the user's desktop.
test: build-dev
	dbus-run-session -- xvfb-run -a -s "-screen 0 1280x1024x24" ctest --preset dev

test-asan: build-asan
	dbus-run-session -- xvfb-run -a -s "-screen 0 1280x1024x24" ctest --preset asan

# The Debian package of a release build, named by CPack: build/release/corvane_<v>_<arch>.deb,
# its file times the last commit's. ARCH=arm64: cross-built in a Debian root of its own, which
# needs root (tools/arm64-check.sh): build/arm64/corvane_<v>_arm64.deb
deb: $(if $(filter arm64,$(ARCH)),,build-release)
ifeq ($(ARCH),arm64)
	@bash tools/install-deps.sh ci
	$(if $(filter 0,$(shell id -u)),,sudo) bash tools/arm64-check.sh deb
else
	@bash tools/install-deps.sh deb
	cmake --preset release >/dev/null
	cmake --build --preset release
	cd build/release && SOURCE_DATE_EPOCH=$$(git log -1 --format=%ct) cpack -G DEB
endif

bench: build-release
	@bash tools/install-deps.sh test
	cmake --preset release >/dev/null
	cmake --build --preset release
	@bash bench/run-all.sh build/release

clean:
	rm -rf build
