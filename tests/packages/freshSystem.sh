#!/usr/bin/env bash
# The packages on a fresh Debian 12: installed by apt with what they depend on, used, built against, removed.
#     freshSystem.sh DIRECTORY_OF_PACKAGES [ROOT]
# ROOT is an unpacked Debian 12 to use and keep; without it debootstrap makes one for this run. Needs root.
set -euo pipefail
packages=$(realpath "$1")
source=$(cd "$(dirname "$0")/../.." && pwd)
if [ $# -gt 1 ]; then
    root=$(realpath "$2")
else
    root=$(mktemp -d)
    debootstrap --variant=minbase bookworm "$root" http://deb.debian.org/debian >/dev/null
fi

finish() {
    umount "$root/proc"
    rm -rf "$root/packages" "$root/project"
    [ $# -gt 1 ] || rm -rf --one-file-system "$root"
}
mkdir -p "$root/packages" "$root/project"
cp "$packages"/*.deb "$root/packages"
cp -r "$source/tests" "$source/docs" "$root/project"
mount -t proc proc "$root/proc"
trap "finish $*" EXIT
inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 "$@"; }

# Without recommended packages: what is needed must be a dependency.
inside apt-get update -q >/dev/null
install() { inside sh -c "apt-get install -q -y --no-install-recommends $*" >/dev/null; }
install '/packages/effectengine_*.deb' '/packages/effectengine-data_*.deb'
[ "$(inside effectengine list | wc -l)" -eq "$(inside effectengine list --names | sort -u | wc -l)" ]
inside effectengine doctor
inside sh -c 'cd /tmp && effectengine apply hue-shift -p Hue=20 /project/docs/images/photograph.jpg out.png &&
    effectengine video /tmp/out.png /tmp/out.mp4 -e glow && effectengine gallery g out.png --kind blur'
inside test -s /tmp/out.png -a -s /tmp/out.mp4 -a -s /tmp/g/index.html

# Another project, with CMake and with pkg-config.
install '/packages/libeffectengine*.deb' '/packages/effectengine-doc_*.deb' cmake g++ ninja-build pkg-config
inside sh -ec '
    cd /tmp
    resources=$(pkg-config --variable=resourcedir effectengine)/
    test -s "$(pkg-config --variable=catalogue effectengine)"
    test -s /usr/share/doc/effectengine/effects/pages/hue-shift.html
    cmake -S /project/tests/abi/consumer -B build -G Ninja \
        "-DHOST_SOURCES=/project/tests/abi/hostInC.c;/project/docs/examples/picture.c;/project/docs/examples/frames.cpp" >/dev/null
    cmake --build build >/dev/null
    build/hostInC "$resources" /tmp
    /project/tests/documents/examplesTest.sh effectengine "$resources" /tmp/build/picture /tmp/build/frames
    cc -std=c11 /project/tests/abi/hostInC.c $(pkg-config --cflags --libs effectengine) -o plain
    ./plain "$resources" /tmp'

inside apt-get purge -q -y effectengine effectengine-data libeffectengine1 libeffectengine-dev effectengine-doc >/dev/null
[ -z "$(find "$root/usr" -iname '*effectengine*')" ] || { echo "files stay: $(find "$root/usr" -iname '*effectengine*')"; exit 1; }
echo "the packages work on a fresh system"
