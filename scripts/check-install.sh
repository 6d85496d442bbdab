#!/usr/bin/env bash
# Checks the installed package from the outside: installs a built tree into a
# temporary prefix, builds examples/ out of tree against it with CMake
# (find_package) and with pkg-config, runs the example and checks its PNG,
# compiles and links a minimal OpenSG program and a GLUT program written as
# OpenSG's first tutorial with osg-config's flags, runs
# the installed corvane from a moved copy of the prefix, and checks that an
# install into a prefix without write access fails cleanly.
#
#   scripts/check-install.sh [build-dir]     (default: build)
set -euo pipefail
cd "$(dirname "$0")/.."
src=$PWD
build=$(cd "${1:-build}" && pwd)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
fail() { echo "check-install: $*" >&2; exit 1; }
# everything below must work without the build tree's environment
unset CORVANE_DATA_DIR CORVANE_SOURCE_DIR LD_LIBRARY_PATH

echo "== installing into a temporary prefix"
cmake --install "$build" --prefix "$prefix" > "$work/install.log" \
  || { cat "$work/install.log"; fail "cmake --install failed"; }
libdir=
for d in lib lib64 "lib/$(uname -m)-linux-gnu"; do
  [ -e "$prefix/$d/libCorvane.so" ] && libdir=$d
done
[ -n "$libdir" ] || fail "no libCorvane.so in $prefix"
for lib in OSGBase OSGSystem OSGWindowGLUT OSGWindowX Corvane; do
  so=$prefix/$libdir/lib$lib.so
  [ -L "$so" ] || fail "lib$lib.so is not the development link"
  soname=$(readelf -d "$so" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
  [[ "$soname" == lib$lib.so.* ]] || fail "lib$lib.so has no versioned SONAME ($soname)"
  [ -f "$prefix/$libdir/$soname" ] || fail "$soname is not installed"
done
for f in include/OpenSG/OSGConfig.h include/OpenSG/OSGVolumeNode.h \
         include/OpenSG/OSGVolumeNodeBase.h include/OpenSG/OSGNodeBase.h \
         include/OpenSG/OSGVolumeNodeFields.h bin/corvane bin/osg-config \
         share/corvane/ramp.tf share/corvane/plugins/FlowerPlugin.cpp \
         "$libdir/cmake/Corvane/CorvaneConfig.cmake" "$libdir/pkgconfig/corvane.pc" \
         "$libdir/pkgconfig/OSGBase.pc" "$libdir/pkgconfig/OSGSystem.pc" \
         "$libdir/pkgconfig/OSGWindowGLUT.pc" "$libdir/pkgconfig/OSGWindowX.pc" \
         include/OpenSG/OSGGLUT.h include/OpenSG/OSGGLUTWindowBase.h \
         include/OpenSG/OSGXWindowBase.h include/OpenSG/OSGSimpleSceneManager.h; do
  [ -e "$prefix/$f" ] || fail "$f is not installed"
done
# every header of the sources and every generated one, as a file
while IFS= read -r h; do
  name=$(basename "$h")
  [ -f "$prefix/include/OpenSG/$name" ] && [ ! -L "$prefix/include/OpenSG/$name" ] \
    || fail "header $name is not installed as a file"
done < <(find opensg corvane -name '*.h' -o -name '*.inl')
while IFS= read -r fcd; do
  stem=$(basename "$fcd" .fcd)
  for name in "${stem}Base.h" "${stem}Fields.h"; do
    [ -f "$prefix/include/OpenSG/$name" ] || fail "generated header $name is not installed"
  done
done < <(find opensg corvane -name '*.fcd')

echo "== the example through find_package(Corvane)"
cmake -S examples -B "$work/cmake-build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  > "$work/example-cmake.log" 2>&1 || { cat "$work/example-cmake.log"; fail "configuring the example failed"; }
cmake --build "$work/cmake-build" > "$work/example-build.log" 2>&1 \
  || { cat "$work/example-build.log"; fail "building the example with CMake failed"; }
"$work/cmake-build/volume_scene" "$work/cmake.png" 320 240
python3 scripts/check_png.py "$work/cmake.png" 320 240

echo "== the example through pkg-config"
mkdir -p "$work/pc-build"
PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig make -s -C examples OUT="$work/pc-build" \
  > "$work/example-make.log" 2>&1 || { cat "$work/example-make.log"; fail "building the example with pkg-config failed"; }
"$work/pc-build/volume_scene" "$work/pkgconfig.png" 200 150
python3 scripts/check_png.py "$work/pkgconfig.png" 200 150

echo "== osg-config"
cat > "$work/minimal.cpp" <<'CPP'
#include <OpenSG/OSGConfig.h>
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
OSG_USING_NAMESPACE
int main(int argc, char **argv)
{
    osgInit(argc, argv);
    NodePtr n = Node::create();
    beginEditCP(n);
    n->setCore(Group::create());
    endEditCP(n);
    const bool ok = n->getCore() != NullFC;
    subRefCP(n);
    osgExit();
    return ok ? 0 : 1;
}
CPP
osgconfig=$prefix/bin/osg-config
# shellcheck disable=SC2046
c++ $("$osgconfig" --cflags) -o "$work/minimal" "$work/minimal.cpp" \
  $("$osgconfig" --libs Base System) || fail "osg-config --cflags --libs Base System does not link"
"$work/minimal" || fail "the program linked with osg-config's flags failed"
# --llibs gives the libraries without a path: the caller names the folder
# shellcheck disable=SC2046
c++ $("$osgconfig" --cflags System) -o "$work/minimal-l" "$work/minimal.cpp" \
  -L"$prefix/$libdir" -Wl,-rpath,"$prefix/$libdir" $("$osgconfig" --llibs System) \
  || fail "osg-config --llibs System does not link"
"$work/minimal-l" || fail "the program linked with osg-config --llibs failed"
[ "$("$osgconfig" --version)" = "$(sed -n 's/^Version: //p' "$prefix/$libdir/pkgconfig/corvane.pc")" ] \
  || fail "osg-config --version differs from corvane.pc"
if "$osgconfig" --libs QT > "$work/qt.log" 2>&1; then fail "osg-config accepts an unknown library"; fi
grep -q "unknown library 'QT'" "$work/qt.log" || fail "osg-config: no clear error for an unknown library"

echo "== a GLUT program in the style of OpenSG's first tutorial, through osg-config"
cat > "$work/hello.cpp" <<'CPP'
#include <OpenSG/OSGGLUT.h>
#include <OpenSG/OSGConfig.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGGLUTWindow.h>
#include <OpenSG/OSGSimpleSceneManager.h>
OSG_USING_NAMESPACE
SimpleSceneManager *mgr;
void display(void) { mgr->redraw(); }
void reshape(int w, int h) { mgr->resize(w, h); glutPostRedisplay(); }
void mouse(int button, int state, int x, int y)
{
    if(state) mgr->mouseButtonRelease(button, x, y);
    else      mgr->mouseButtonPress(button, x, y);
    glutPostRedisplay();
}
void motion(int x, int y) { mgr->mouseMove(x, y); glutPostRedisplay(); }
int main(int argc, char **argv)
{
    osgInit(argc, argv);
    glutInit(&argc, argv);
    glutInitDisplayMode(GLUT_RGB | GLUT_DEPTH | GLUT_DOUBLE);
    int winid = glutCreateWindow("OpenSG");
    glutReshapeFunc(reshape);
    glutDisplayFunc(display);
    glutMouseFunc(mouse);
    glutMotionFunc(motion);
    GLUTWindowPtr gwin = GLUTWindow::create();
    gwin->setId(winid);
    gwin->init();
    NodePtr scene = makeTorus(.5, 2, 16, 16);
    mgr = new SimpleSceneManager;
    mgr->setWindow(gwin);
    mgr->setRoot(scene);
    mgr->showAll();
    glutMainLoop();
    return 0;
}
CPP
# shellcheck disable=SC2046
c++ -o "$work/hello" "$work/hello.cpp" $("$osgconfig" --cflags --libs --llibs Base System GLUT) \
  || fail "a GLUT program does not link with osg-config --libs Base System GLUT"
for lib in OSGBase OSGSystem OSGWindowGLUT glut; do
  readelf -d "$work/hello" | grep -q "NEEDED.*lib$lib\.so" || fail "the GLUT program does not link lib$lib"
done
# without a display it says so and ends with an error status, no crash
status=0
env DISPLAY=:4711 "$work/hello" > "$work/hello.log" 2>&1 || status=$?
[ "$status" -ge 1 ] && [ "$status" -lt 128 ] || { cat "$work/hello.log"; fail "the GLUT program without a display ended with status $status"; }
grep -q "failed to open display" "$work/hello.log" || { cat "$work/hello.log"; fail "no clear line without a display"; }

echo "== the installed corvane, moved with its prefix"
mv "$prefix" "$work/moved"
moved=$work/moved
"$moved/bin/corvane" volume --size 96 72 --phantom-size 32 --transfer ramp -o "$work/corvane.png" \
  > "$work/corvane.log" 2>&1 || { cat "$work/corvane.log"; fail "the installed corvane failed"; }
[ -s "$work/corvane.png" ] || fail "the installed corvane wrote no picture"
# the presets come from the installed share/corvane, not from the sources
rm "$moved/share/corvane/ramp.tf"
if "$moved/bin/corvane" volume --size 16 16 --phantom-size 8 --transfer ramp \
     -o "$work/none.png" > "$work/corvane.log" 2>&1; then
  fail "corvane found a preset that the installation lacks"
fi
grep -q "$moved/bin/../share/corvane/ramp.tf" "$work/corvane.log" \
  || { cat "$work/corvane.log"; fail "corvane did not look for its presets in the installed share/corvane"; }
# the moved package files still point into the moved prefix
pcinclude=$(PKG_CONFIG_PATH=$moved/$libdir/pkgconfig pkg-config --variable=includedir corvane)
[ -f "$pcinclude/OpenSG/OSGConfig.h" ] && [[ "$pcinclude" == "$moved"/* ]] \
  || fail "corvane.pc does not follow the moved prefix ($pcinclude)"
"$moved/bin/osg-config" --cflags | grep -q -- "-I$moved/include" || fail "osg-config does not follow the moved prefix"

echo "== an install prefix without write access"
locked=$work/locked
mkdir -p "$locked"
chmod 555 "$locked"
as_user=()
if [ "$(id -u)" -eq 0 ]; then
  # root writes anywhere: run the install as nobody
  as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
  chmod o+x "$work"
fi
status=0
"${as_user[@]}" cmake --install "$build" --prefix "$locked/prefix" > "$work/locked.log" 2>&1 || status=$?
if [ "$status" -eq 0 ]; then fail "installing into a read-only prefix succeeded"; fi
if [ "$status" -ge 128 ]; then cat "$work/locked.log"; fail "the install crashed (status $status)"; fi
grep -qi "permission denied\|cannot" "$work/locked.log" \
  || { cat "$work/locked.log"; fail "no clear error for a read-only prefix"; }
echo "   refused: $(grep -i -m1 "permission denied\|cannot" "$work/locked.log")"

echo "== install checks passed"
