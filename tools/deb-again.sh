#!/usr/bin/env bash
# The package made again, later, from a clean clone of the last commit in another folder must
# equal PACKAGE byte for byte; otherwise diffoscope shows what differs.
#   tools/deb-again.sh PACKAGE [ARCH]     ARCH as for tools/build-deb.sh
set -euo pipefail
again="$(mktemp -d /var/tmp/corvane-again.XXXXXX)"
trap 'rm -rf "$again"' EXIT
git clone -q "$(git -C "$(dirname "$0")" rev-parse --show-toplevel)" "$again/corvane"
other="$(bash "$again/corvane/tools/build-deb.sh" build/again "${2:-}" | tail -n 1)"
if ! cmp "$1" "$other"; then
    if ! command -v diffoscope >/dev/null; then
        DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
            -o DPkg::Lock::Timeout=600 diffoscope-minimal >/dev/null
    fi
    diffoscope "$1" "$other"
    exit 1
fi
echo "$other is $1 byte for byte"
