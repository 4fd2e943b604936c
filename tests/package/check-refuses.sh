#!/usr/bin/env bash
# What a host must not write is refused by the compiler, and its right twin is not: check-refuses.sh INCLUDE-FOLDER COMPILER FLAG...
set -u
folder=$1
shift
status=0
compile() {     # functions, flags...
    local functions=$1
    shift
    printf '#include <memory>\n#include "VekLib.h"\n#include "VekStd.h"\nvoid Use(VEK_VARIANT const &);\n%s\n' "$functions" |
        "$@" -fsyntax-only -I "$folder" - 2>&1
}
function_of() { # its name, which is the name of its file, too; statements
    printf '#line 1 "%s"\nvoid %s([[maybe_unused]] IVekKernel * kernel, [[maybe_unused]] CVekString<wchar_t> & string,
        [[maybe_unused]] CVekRef<IVekTimer> & timer, [[maybe_unused]] unsigned char * bytes) { %s; }\n' "$1" "$1" "$2"
}
wrong=() wrongs= rights=
while IFS='|' read -r bad good; do
    wrong+=("$bad")
    wrongs+=$(function_of "Wrong${#wrong[@]}x" "$bad")$'\n'
    rights+=$(function_of "Right${#wrong[@]}x" "$good")$'\n'
done <<'END'
delete kernel->CreateTimer()|kernel->CreateTimer()->Release()
delete static_cast<IVekObject *>(kernel)|static_cast<IVekObject *>(kernel)->AddRef()
std::unique_ptr<IVekTimer> owner(kernel->CreateTimer())|CVekRef<IVekTimer> owner(kernel->CreateTimer())
std::shared_ptr<IVekXMLElement> owner(kernel->GetXMLManager()->CreateXMLElement())|CVekRef<IVekXMLElement> owner(kernel->GetXMLManager()->CreateXMLElement())
timer = kernel->CreateTimer()|timer.Reset(kernel->CreateTimer())
CVekLibrary library; CVekLibrary other(library)|CVekLibrary library; CVekLibrary other
if (string) return|if (!string.IsEmpty()) return
if (!string) return|if (string != L"") return
while (string && timer) return|while (timer) return
Use(u8"text")|Use("text")
Use(bytes)|Use(VEK_VARIANT(bytes, 4))
Use(kernel)|Use(kernel != nullptr)
Use(nullptr)|Use(false)
END
output=$(compile "$rights" "$@") || { echo "what is right does not compile:"; echo "$output"; status=1; }
# Each has to have its own error: without warnings, only errors name a function's file.
output=$(compile "$wrongs" "$@" -w)
for i in "${!wrong[@]}"; do
    [[ $output == *"Wrong$((i + 1))x"[:\(]* ]] || { echo "is not refused: ${wrong[i]}"; status=1; }
done
exit $status
