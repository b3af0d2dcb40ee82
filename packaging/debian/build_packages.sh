#!/usr/bin/env bash
# Makes the Debian packages of a build of the preset "linux", without compiling it again:
#
#   packaging/debian/build_packages.sh <build folder> <folder for the packages>
#
# Needs debhelper and dh-python. To compile as Debian does, copy this folder to the top of the sources as "debian" and
# run dpkg-buildpackage there.
set -euo pipefail
build=$(realpath "$1")
mkdir -p "$2"
output=$(realpath "$2")
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
stage=$scratch/mox-xmlapi
mkdir "$stage"
cp -r packaging/debian "$stage/debian"
cp -r CMakeLists.txt ./*.md cmake companions docs examples mox_host mox_xmlApi python schemas tools "$stage"
cd "$stage"
# Files of the package are made with the rights that the usual umask gives, and belong to root.
umask 022
chmod -R u+rwX,go+rX,go-w .
export DEB_RULES_REQUIRES_ROOT=no DEB_BUILD_OPTIONS="noautodbgsym parallel=$(nproc)" MOX_BUILD=$build
debian/rules binary
mv "$scratch"/*.deb "$output"
