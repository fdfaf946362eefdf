#!/usr/bin/env bash
# The packages on a fresh Debian of this machine's release: installed by apt with what they depend on, used, built
# against, removed.
#     freshSystemTest.sh DIRECTORY_OF_PACKAGES [ROOT]
# ROOT is an unpacked Debian to use and keep; without it debootstrap makes one for this run, from where this machine's
# apt gets its packages. Says in one line why when it cannot run, and ends with 77.
set -euo pipefail

cannot() {
    echo "the packages were not tried on a fresh system: $*"
    exit 77
}
[ "$(id -u)" -eq 0 ] || cannot "that needs root"
mapfile -t origins < <(apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' \
    'Created-By: Packages' 'Origin: Debian' | sort -u | grep -E '^https?:.* main$' || true)
release=$(. /etc/os-release && echo "${VERSION_CODENAME:-}")
archive=$(printf '%s\n' "${origins[@]}" | awk -v release="$release" '$2 == release { print $1; exit }')
[ -n "$archive" ] || cannot "apt on this machine knows no source of Debian $release (apt-get update reads them)"

packages=$(realpath -e "$1")
source=$(cd "$(dirname "$0")/../.." && pwd)
kept=${2:+$(realpath -e "$2")}
[ -n "$kept" ] || command -v debootstrap >/dev/null || cannot "debootstrap is not installed"
root=${kept:-$(mktemp -d)}
chmod 755 "$root" # apt fetches as a user of its own

finish() {
    mountpoint -q "$root/proc" && umount "$root/proc"
    rm -rf "$root/packages" "$root/project"
    [ -n "$kept" ] || rm -rf --one-file-system "$root"
}
trap finish EXIT
if [ -z "$kept" ]; then
    proxy=
    eval "$(apt-config shell proxy Acquire::http::Proxy)"
    [ -z "$proxy" ] || export http_proxy=${http_proxy:-$proxy}
    debootstrap --variant=minbase --include=ca-certificates "$release" "$root" "$archive" >"$root.log" 2>&1 || {
        tail -n 5 "$root.log" >&2
        rm "$root.log"
        cannot "debootstrap fails"
    }
    rm "$root.log"
fi
mkdir -p "$root/packages" "$root/project"
cp "$packages"/*.deb "$root/packages"
cp -r "$source/tests" "$source/docs" "$root/project"
cp /etc/hosts /etc/resolv.conf "$root/etc"
printf 'deb %s\n' "${origins[@]}" >"$root/etc/apt/sources.list"
apt-config dump | grep -iE '^Acquire::[a-z]+::Proxy' >"$root/etc/apt/apt.conf.d/proxy" || true
echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/unsafe-io" # nobody needs this system after a loss of power
mountpoint -q "$root/proc" || mount -t proc proc "$root/proc" || cannot "proc cannot be mounted"
inside() {
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 \
        ${http_proxy:+"http_proxy=$http_proxy"} ${https_proxy:+"https_proxy=$https_proxy"} "$@"
}

# Without recommended packages: what is needed must be a dependency.
inside apt-get update -q >/dev/null
install() {
    inside sh -c "apt-get install -q -y --no-install-recommends $* >/tmp/install.log 2>&1" || {
        tail -n 20 "$root/tmp/install.log"
        exit 1
    }
}
install '/packages/effectengine_*.deb' '/packages/effectengine-data_*.deb' '/packages/libeffectengine1_*.deb' \
    '/packages/libeffectenginehost1_*.deb'
[ "$(inside effectengine list | wc -l)" -eq "$(inside effectengine list --names | sort -u | wc -l)" ]
inside effectengine doctor
inside sh -ec 'cd /tmp
    effectengine apply hue-shift -p Hue=20 /project/docs/images/photograph.jpg out.png
    effectengine video out.png out.mp4 -e glow
    effectengine gallery g out.png --kind blur
    effectengine transition picture-wipe /project/docs/images/photograph.jpg out.png wiped.png -p WipePicture=clock
    test -s out.png -a -s out.mp4 -a -s g/index.html'

# Another project, with CMake and with pkg-config.
install '/packages/libeffectengine*.deb' '/packages/effectengine-doc_*.deb' cmake g++ ninja-build pkg-config
inside sh -ec '
    cd /tmp
    resources=$(pkg-config --variable=resourcedir effectengine)/
    test -s "$(pkg-config --variable=catalogue effectengine)"
    test -s /usr/share/doc/effectengine/effects/pages/hue-shift.html
    cmake -S /project/tests/abi/consumer -B build -G Ninja \
        "-DHOST_SOURCES=/project/tests/abi/hostInC.c;/project/docs/examples/picture.c;/project/docs/examples/frames.cpp" \
        "-DLOOK_SOURCES=/project/tests/abi/lookInC.c;/project/docs/examples/look.c" >/dev/null
    cmake --build build >/dev/null
    build/hostInC "$resources" /tmp
    build/lookInC "$resources" /tmp
    /project/tests/documents/examplesTest.sh /usr/bin/effectengine "$resources" /tmp/build/picture /tmp/build/frames \
        /tmp/build/look
    cc -std=c11 /project/tests/abi/hostInC.c $(pkg-config --cflags --libs effectengine) -o plain
    ./plain "$resources" /tmp
    cc -std=c11 /project/docs/examples/look.c $(pkg-config --cflags --libs effectengine-host) -o plainLook
    head -c 6912 /dev/zero | ./plainLook am-negative 64 36 25 1 >white
    test "$(wc -c <white)" -eq 6912 -a "$(tr -d "\377" <white | wc -c)" -eq 0'

inside apt-get purge -q -y effectengine effectengine-data libeffectengine1 libeffectenginehost1 libeffectengine-dev effectengine-doc >/dev/null 2>&1
[ -z "$(find "$root/usr" -iname '*effectengine*')" ] || { echo "files stay: $(find "$root/usr" -iname '*effectengine*')"; exit 1; }
echo "the packages work on a fresh system"
