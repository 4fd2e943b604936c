#!/usr/bin/env bash
# The demonstration itself: what vek does with good and with bad files. demo.sh calls it once vek is built.
#     tools/demo-run.sh VEK.EXE
set -u
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
program=$(realpath "$1")
scene=$here/examples/data/scene.xml
mime=/usr/share/mime/packages/freedesktop.org.xml
folder=$(mktemp -d "${TMPDIR:-/tmp}/vek-demo.XXXXXX") || exit 1
trap 'rm -rf "$folder"' EXIT
cp "$scene" "$folder/scene.xml"
[ -r "$mime" ] && cp "$mime" "$folder/mime.xml"
cd "$folder" || exit 1
failures=0

say() {
    printf '\n%s\n' "$*"
}

# run EXPECTED-CODE ARGUMENT...: shows the command and what it says
run() {
    local expected=$1 code word
    shift
    printf '\n$ vek'
    for word in "$@"; do
        case $word in
            *[[:space:]\&\<\>]*) printf " '%s'" "$word" ;;
            *) printf ' %s' "$word" ;;
        esac
    done
    printf '\n'
    "$here/tools/wine-run" "$program" "$@" < /dev/null 2>&1
    code=$?
    [ $expected = 0 ] || echo "(exit code $code)"
    if [ $code != "$expected" ]; then
        echo "demo: exit code $code where $expected was expected"
        failures=$((failures + 1))
    fi
}

# What the info of a file says, without its name and the time.
facts() {
    "$here/tools/wine-run" "$program" xml info "$1" < /dev/null | sed -e 1d -e '/^  read /d'
}

same() {
    if [ -n "$(facts "$1")" ] && [ "$(facts "$1")" = "$(facts "$2")" ]; then
        echo "=> $2 holds the same as $1"
    else
        echo "demo: $2 is not what $1 is"
        failures=$((failures + 1))
    fi
}

say "== A small graphics scene: its counts, its elements, one value"
run 0 xml info scene.xml
run 0 xml tree scene.xml --depth 3
run 0 xml get scene.xml group/group/mesh name

say "== Change a value in place (an escaped one comes back as it went in), add an attribute, write it anew"
run 0 xml set scene.xml group/group/mesh name 'Émile & <Søn>'
run 0 xml get scene.xml group/group/mesh name
run 0 xml set scene.xml / version 2 -o second.xml
run 0 xml get second.xml / version
run 0 xml format scene.xml formatted.xml --indent 2
same scene.xml formatted.xml

if [ -e mime.xml ]; then
    say "== A real file of 2.4 MB with an internal DTD: the MIME database"
    run 0 xml info mime.xml
    run 0 xml tree mime.xml --depth 2 | head -n 8
    run 0 xml set mime.xml mime-type/glob weight 77 -o changed.xml
    run 0 xml get changed.xml mime-type/glob weight
    run 0 xml format changed.xml formatted-mime.xml
    say "A second read finds the same document:"
    run 0 xml info formatted-mime.xml
    same mime.xml formatted-mime.xml
    say "Comments and text stay, and one line differs:"
    run 0 xml set mime.xml mime-type/glob weight 77 --dry-run
    run 1 xml diff mime.xml changed.xml
fi

say "== A folder as a tree of packets in one file, and back; a file that has lost its end is refused"
mkdir -p models/harbour
cp "$scene" models/harbour/scene.xml
printf 'void main()\n{\n}\n' > models/water.glsl
run 0 packets pack models models.vkpf
run 0 packets list models.vkpf
run 0 packets extract models.vkpf harbour -o extracted
if cmp extracted/harbour/scene.xml "$scene"; then
    echo "=> extracted/harbour/scene.xml is what was packed"
else
    failures=$((failures + 1))
fi
head -c 200 models.vkpf > short.vkpf
run 1 packets list short.vkpf

say "== Named values of many types, from XML to a typed data file and back"
cat > settings.xml << 'END'
<TypedData>
   <Entry Name="Width" Type="int32" Value="640"/>
   <Entry Name="Gamma" Type="double" Value="2.2"/>
   <Entry Name="Background" Type="rgba8" Value="0, 0, 64, 255"/>
   <Entry Name="Title" Type="wstring" Value="Émile's boat"/>
</TypedData>
END
run 0 data pack settings.xml settings.bin
run 0 data dump settings.bin
run 0 data unpack settings.bin back.xml
run 0 data pack back.xml back.bin
if cmp -s settings.bin back.bin; then echo "=> back.bin is settings.bin, byte for byte"; else echo "demo: back.bin differs"; failures=$((failures + 1)); fi
head -c 60 settings.bin > cut.bin
run 1 data dump cut.bin
say "== A scene of curves, boxes and triangles, drawn into a PNG file without a window"
cp "$here/examples/data/viewscene.xml" .
printf '\n$ vekview viewscene.xml --snapshot viewscene.png --size 1024x768\n'
if "$here/tools/wine-run" "$(dirname "$program")/vekview.exe" viewscene.xml --snapshot viewscene.png --size 1024x768 < /dev/null; then
    cp viewscene.png "$here/build/" && echo "=> build/viewscene.png, $(stat -c %s viewscene.png) bytes"
else
    echo "demo: no picture"
    failures=$((failures + 1))
fi

say "== Bad input ends with a message and an exit code"
printf '<scene>\n  <camera>\n</scene>\n' > malformed.xml
printf '<scene><camera/>' > short.xml
: > empty.xml
printf '<!DOCTYPE s [<!ENTITY a "0123456789"><!ENTITY b "%s"><!ENTITY c "%s"><!ENTITY d "%s"><!ENTITY e "%s"><!ENTITY f "%s"><!ENTITY g "%s">]><s>&g;</s>\n' \
    '&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;' '&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;' '&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;' \
    '&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;' '&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;' '&f;&f;&f;&f;&f;&f;&f;&f;&f;&f;' > bomb.xml
run 1 xml info missing.xml
run 1 xml info malformed.xml
run 1 xml info short.xml
run 1 xml info empty.xml
run 1 xml info bomb.xml
run 1 xml get scene.xml camera colour
run 1 xml format scene.xml no/such/folder/scene.xml
run 2 xml get scene.xml

say "== Which files of a folder are bad? Worker threads read the machine's files, and those above"
run 1 xml check . --jobs 2
if [ -d /usr/share/mime ]; then
    run 0 xml check 'Z:/usr/share/mime' --bad
fi

say "== The tokens of a shader and of a C header, by a lexer that is set up from an XML file"
cp "$here/examples/data/glow.frag" .
run 0 lex glow.frag | head -n 20
run 0 lex glow.frag --html glow.html
grep -c '<span' glow.html | sed 's/$/ lines with coloured tokens/'
[ -r /usr/include/stdio.h ] && run 0 lex Z:/usr/include/stdio.h --count
printf '<language><operators/></language>\n' > broken.xml
run 1 lex glow.frag --lang broken.xml
run 1 lex missing.c

if [ $failures != 0 ]; then
    say "demo: $failures of these steps did not end as they should"
    exit 1
fi
say "All of it ended as it should."
