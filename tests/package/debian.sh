#!/bin/sh
# SPDX-License-Identifier: MIT
# Makes the Debian packages of a built tree and looks into them:
#     debian.sh <build folder> <folder to work in>
# Nothing is installed on this machine: the maintainer scripts run under DPKG_ROOT.
set -eu
build=$1
work=$2
fail() {
    echo "$*" >&2
    exit 1
}

rm -rf "$work"
mkdir -p "$work/root"
cpack --config "$build/CPackConfig.cmake" -D CPACK_DEBIAN_COMPRESSION_TYPE=none -B "$work/packages" > "$work/log" 2>&1 ||
    fail "$(cat "$work/log")"

# Together the packages hold what an install without packages puts there, each file once, with a licence each.
DESTDIR="$work/whole" cmake --install "$build" --prefix /usr > /dev/null
(cd "$work/whole" && find . ! -type d | sort) > "$work/expected"
for package in libork libork-dev libork-blas ork-tools; do
    file=$(ls "$work/packages/${package}_"*.deb)
    dpkg-deb -x "$file" "$work/$package"
    [ -s "$work/$package/usr/share/doc/$package/copyright" ] || fail "$package has no licence"
    (cd "$work/$package" && find . ! -type d ! -path "./usr/share/doc/*")
    cp -a "$work/$package/." "$work/root"
done > "$work/packed"
sort -o "$work/packed" "$work/packed"
diff "$work/expected" "$work/packed" || fail "the packages differ from the install"

# No package comes without the one of the same version that it runs on, nor without the system's libraries.
version=$(dpkg-deb -f "$work/packages/libork_"*.deb Version)
depends() {
    for name in "$@"; do
        dpkg-deb -f "$file" Depends | tr , '\n' | grep -q "^ *$name" || fail "$(basename "$file") doesn't depend on $name"
    done
}
for package in libork:libc6 "libork-dev:libork (= $version):libork-blas (= $version)" "libork-blas:libork (= $version)" \
    "ork-tools:libork (= $version):libc6:libstdc++6:libfmt"; do
    file=$(ls "$work/packages/${package%%:*}_"*.deb)
    IFS=:
    # shellcheck disable=SC2086 # a list of names
    depends ${package#*:}
    unset IFS
done

# The drop-ins are offered to the system when they come, stay through an upgrade, and are taken back when they go.
dpkg-deb -e "$(ls "$work/packages/libork-blas_"*.deb)" "$work/scripts"
export DPKG_ROOT="$work/root" DPKG_MAINTSCRIPT_PACKAGE=libork-blas
folder=$work/root/usr/lib/x86_64-linux-gnu
mkdir -p "$work/root/etc/alternatives" "$work/root/var/lib/dpkg/alternatives" "$work/root/var/log" "$folder"
"$work/scripts/postinst" configure "" > "$work/log" 2>&1 || fail "$(cat "$work/log")"
"$work/scripts/prerm" upgrade "$version"
for library in libblas.so.3 libblas64.so.3; do
    [ "$(readlink "$folder/$library")" = "/etc/alternatives/$library-x86_64-linux-gnu" ] || fail "$library is not offered"
    target=$(readlink "$work/root/etc/alternatives/$library-x86_64-linux-gnu")
    [ -f "$work/libork-blas$target" ] || fail "$library is offered as $target, which isn't in the package"
done
"$work/scripts/prerm" remove > "$work/log" 2>&1 || fail "$(cat "$work/log")"
for library in libblas.so.3 libblas64.so.3; do
    [ ! -L "$folder/$library" ] || fail "$library is offered after the package went"
done
rm -rf "$work"
