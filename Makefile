# Two commands on a fresh Debian machine:
#   make run    installs what is missing, builds and starts Corvane
#   make test   installs what is missing, builds and runs the whole test suite
.PHONY: run test deb deps build-release build-dev build-asan test-asan bench clean

deps:
	@bash tools/install-deps.sh

build-release: deps
	cmake --preset release >/dev/null
	cmake --build --preset release

build-dev: deps
	cmake --preset dev >/dev/null
	cmake --build --preset dev

build-asan: deps
	cmake --preset asan >/dev/null
	cmake --build --preset asan

run: build-release
	@bash tools/run-app.sh build/release/src/app/corvane

# A private session bus and a virtual display, so that no test reaches the user's desktop.
test: build-dev
	dbus-run-session -- xvfb-run -a -s "-screen 0 1280x1024x24" ctest --preset dev

test-asan: build-asan
	dbus-run-session -- xvfb-run -a -s "-screen 0 1280x1024x24" ctest --preset asan

# The Debian package of a release build, named by CPack: build/release/corvane_<v>_<arch>.deb
deb: build-release
	cd build/release && cpack -G DEB

bench: build-release
	@bash bench/run-all.sh build/release

clean:
	rm -rf build
