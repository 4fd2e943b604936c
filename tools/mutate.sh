#!/usr/bin/env bash
# Plants faults in the library, one after the other, and tells which of them the tests find.
#   tools/mutate.sh [--seed S] [--guard] [COUNT]      COUNT faults (500), at places that S (1) chooses
#   tools/mutate.sh --list [--seed S] [COUNT]         only lists them
# build/mutate/results-S.txt gets a line for each; a run that was stopped goes on behind the last one. With --guard, what the
# DLL's tests pass by is given to the guarded build, too. Takes a copy of what is committed, and minutes for ten faults.
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
repository=$PWD
seed=1 count=500 guard= list=
while [ $# -gt 0 ]; do
    case $1 in
        --seed) seed=$2 && shift ;;
        --guard) guard=yes ;;
        --list) list=yes ;;
        *) count=$1 ;;
    esac
    shift
done
tree=$repository/build/mutate/tree
results=$repository/build/mutate/results-$seed.txt
places=$repository/build/mutate/places-$seed.txt
mkdir -p build/mutate

# All places where an operator applies, in an order that the seed decides: file, offset, length, operator, what stands there then.
# The kinds of faults take turns, as comparisons would be most of them.
list_places() {
    perl - "$seed" "$count" {base,text,math,thread,xml,io,lexer,core}/*.cpp << 'END'
my ($seed, $count, @files) = @ARGV;
my %turned = ('<' => '<=', '<=' => '<', '>' => '>=', '>=' => '>', '==' => '!=', '!=' => '==', '&&' => '||', '||' => '&&');
my %kinds;
for my $file (@files) {
    open(my $in, '<', $file) or die "$file: $!";
    local $/;
    my $text = <$in>;
    my $blank = sub { my $t = shift; $t =~ s/[^\n]/ /g; $t };
    # Comments and texts are no places; lines of the preprocessor and templates' heads neither.
    $text =~ s{(//[^\n]*|/\*.*?\*/|^\s*#[^\n]*|L?"(?:\\.|[^"\\])*"|L?'(?:\\.|[^'\\])*'|template <[^\n]*|static_assert[^\n]*)}
              {$blank->($1)}gmse;
    my $add = sub { push @{$kinds{$_[0]}}, join("\t", $file, $_[1], $_[2], $_[0], $_[3]) };
    $add->('comparison', $-[1], $+[1] - $-[1], $turned{$1}) while $text =~ / (<=?|>=?|==|!=) (?=\S)/g;
    $add->('condition', $-[1], $+[1] - $-[1], $turned{$1}) while $text =~ / (&&|\|\|) (?=\S)/g;
    $add->('condition', $-[1], $+[1] - $-[1], "!($1)") while $text =~ /\bif \(([^()\n;]*(?:\([^()\n;]*\)[^()\n;]*)*)\)/g;
    $add->('off by one', $-[0], $+[0] - $-[0], '') while $text =~ / [+-] 1\b(?![.\d])/g;
    $add->('off by one', $-[1], 0, ' + 1') while $text =~ / = \w+(?:\.|->)?\w*(?:\(\))?()(?=;)/g;
    $add->('result', $-[1], $+[1] - $-[1], $1 eq 'true' ? 'false' : 'true') while $text =~ /\breturn (true|false)(?=;)/g;
    $add->('release left out', $-[1], $+[1] - $-[1], '')
        while $text =~ /^\s+((?:[\w.:]|->)*(?:Release|Free|Delete|Clear|Detach|Close|Remove)\w*\([^;{}\n]*\);)/gm;
    $add->('lock left out', $-[1], $+[1] - $-[1], '')
        while $text =~ /^\s+((?:CVekSingleLock|std::(?:lock_guard|scoped_lock)\S*) (?:const )?\w+[({][^;\n]*;)/gm;
    $add->('statement left out', $-[1], $+[1] - $-[1], '') while $text =~ /^\s+((?:[\w.\[\]]|->)+ [-+|&]?= [^;{}\n]*;)/gm;
    $add->('statement left out', $-[1], $+[1] - $-[1], '') while $text =~ /^\s+((?:[\w.:]|->)+\([^;{}\n]*\);)/gm;
    $add->('arguments swapped', $-[1], $+[1] - $-[1], "$3, $2") while $text =~ /\w\(((\w+), (\w+))(?=[,)])/g;
}
srand($seed);
my @rows;
for my $kind (sort keys %kinds) {
    my @all = @{$kinds{$kind}};
    for (my $i = @all - 1; $i > 0; --$i) { my $j = int(rand($i + 1)); @all[$i, $j] = @all[$j, $i]; }
    $kinds{$kind} = \@all;
}
while ($count > 0) {
    my $any = 0;
    for my $kind (sort keys %kinds) {
        my $row = shift @{$kinds{$kind}} or next;
        $any = 1;
        print "$row\n";
        last if --$count == 0;
    }
    last unless $any;
}
END
}

list_places > "$places"
show() { # row: file:line, kind, what becomes what
    perl -e 'my ($file, $at, $length, $kind, $new) = split /\t/, $ARGV[0]; open(my $in, "<", $file); local $/; my $t = <$in>;
        my $line = 1 + (substr($t, 0, $at) =~ tr/\n//); my ($from) = substr($t, 0, $at) =~ /([^\n]*)\z/; my ($to) = substr($t, $at + $length) =~ /^([^\n]*)/;
        my $was = $from . substr($t, $at, $length) . $to; $was =~ s/^\s+//; (my $is = $from . $new . $to) =~ s/^\s+//;
        print "$file:$line\t$kind\t$was\t$is\n"' "$1"
}
if [ -n "$list" ]; then
    while IFS= read -r row; do show "$row"; done < "$places"
    exit
fi

# The copy: each file compiled by itself, so that one fault costs one file, and without the warnings that faults bring.
presets=(win32 ${guard:+win32-guard})
if [ ! -d "$tree" ]; then
    git worktree prune && git worktree add -q --detach "$tree" HEAD || exit 1
fi
cd "$tree" || exit 1
git checkout -q --detach "$(git -C "$repository" rev-parse HEAD)" && git checkout -q . || exit 1
for preset in "${presets[@]}"; do
    cmake --preset "$preset" -DCMAKE_UNITY_BUILD=OFF -DVEKLIB_WERROR=OFF > /dev/null && cmake --build --preset "$preset" > build.log 2>&1 ||
        { echo "the library without a fault can't be built: $tree/build.log"; exit 1; }
done

# The first test that fails, or nothing: those of the file's room first, then the others, the quick ones before the slow.
export VEK_TEST_SECONDS=60
rooms="tests_text tests_math tests_thread tests_xml tests_io tests_lexer tests_core"
first_failure() { # preset, room
    local log=build/mutate-test.log tests
    for tests in "tests_$2" tests_inner "$rooms tests_edge tests_oom" "tests_packets tests_fuzz tests_apps vek vekview veklib_life"; do
        [ "$tests" != tests_base ] || continue # inner tests alone
        # shellcheck disable=SC2086 # a list of targets
        cmake --build --preset "$1" --target $tests > build.log 2>&1 || { echo "not linked"; return; }
        tests=${tests/veklib_life/life}
        ctest --preset "$1" -j "$(nproc)" -R "^(${tests// /|})\$" --stop-on-failure --timeout 120 > "$log" 2>&1 ||
            { grep -m1 -oE '\[  FAILED  \] [A-Za-z_0-9./]+|[a-z_]+ \.+ *\*\*\*[A-Za-z ]+' "$log" | head -n 1; return; }
    done
}

plant() { # row
    perl -e 'my ($file, $at, $length, $kind, $new) = split /\t/, $ARGV[0]; open(my $in, "<", $file); local $/; my $t = <$in>; close $in;
        substr($t, $at, $length) = $new; open(my $out, ">", $file); print $out $t' "$1"
}

verdict_of() { # row: one word, and by what
    local file=${1%%$'\t'*} preset object before failure
    for preset in "${presets[@]}"; do
        object=build/$preset/CMakeFiles/VekLib.dir/$file.obj
        before=$(md5sum < "$object")
        cmake --build --preset "$preset" --target VekLib > build.log 2>&1 || { echo "not compiled"; return; }
        [ "$before" != "$(md5sum < "$object")" ] || { echo "changes nothing"; return; }
        failure=$(first_failure "$preset" "${file%%/*}")
        [ -z "$failure" ] || { printf 'caught\t%s, %s\n' "$preset" "$failure"; return; }
    done
    echo "passed by"
}

number=0
[ -e "$results" ] || : > "$results"
while IFS= read -r row; do
    number=$((number + 1))
    [ $number -gt "$(wc -l < "$results")" ] || continue
    file=${row%%$'\t'*}
    what=$(show "$row")
    plant "$row"
    verdict=$(verdict_of "$row" < /dev/null)
    git checkout -q "$file"
    printf '%s\t%s\n' "$what" "$verdict" | tee -a "$results"
done < "$places"

awk -F '\t' '{ n[$5]++; kind[$2]++; if ($5 == "caught") caught[$2]++; if ($5 == "passed by") by[$2]++ }
    END { printf "%d faults: %d caught, %d passed by, %d change nothing, %d do not compile; caught of those that change anything: %.1f %%\n",
              NR, n["caught"], n["passed by"], n["changes nothing"], n["not compiled"], 100 * n["caught"] / (n["caught"] + n["passed by"])
          for (k in kind) printf "  %-20s %d caught, %d passed by\n", k, caught[k], by[k] }' "$results"
