#!/bin/bash
# installed.sh BUILD SOURCE FOLDER: installs into FOLDER, builds the example with what pkg-config and
# CMake say, runs both away from the build, compares with the program, and uninstalls.
set -euo pipefail
build=$1 source=$2 prefix=$3/prefix
rm -rf "$3" && mkdir -p "$3" && cd "$3"
cmake --install "$build" --prefix "$prefix" >install.log
libdir=$(dirname "$(find "$prefix/lib" -name libcmdtexture.so)")
export PKG_CONFIG_PATH=$libdir/pkgconfig LD_LIBRARY_PATH=$libdir

"${CC:-cc}" -Wall -Wextra -Werror -std=c99 -D_POSIX_C_SOURCE=200809L "$source/examples/c/sandstone.c" \
    $(pkg-config --cflags --libs cmdtexture) -o with-pkg-config
cp -r "$source/examples/c" cmake-example
cmake -S cmake-example -B with-cmake -DCMAKE_PREFIX_PATH="$prefix" >cmake.log
cmake --build with-cmake >>cmake.log

printf 'P6\n31 17\n255\n' >in.ppm
head -c $((31 * 17 * 3)) <(yes 'bytes that can be taken for a picture') >>in.ppm
./with-pkg-config in.ppm one.ppm 30
./with-cmake/sandstone in.ppm two.ppm 30
cmp one.ppm two.ppm
! cmp -s in.ppm one.ppm
status=0 && ./with-pkg-config in.ppm three.ppm 999 2>refusal || status=$?
[ $status -eq 2 ] && grep -q '0 to 359' refusal && [ ! -e three.ppm ]

cmake -P "$source/packaging/Uninstall.cmake" "$build/install_manifest.txt"
if [ -e "$prefix" ]; then
    find "$prefix" && echo "Uninstalling left these behind." && exit 1
fi
