#!/usr/bin/env bash
# What a host must not write is refused by the compiler, and its right twin is not: check-refuses.sh INCLUDE-FOLDER COMPILER FLAG...
set -u
folder=$1
shift
compile=("$@")
status=0
compiles() {    # statements
    printf '#include <memory>\n#include "VekLib.h"\n#include "VekStd.h"\nvoid Use(VEK_VARIANT const &);\n%s\n' \
        "void Try(IVekKernel * kernel, CVekString<wchar_t> & string, CVekRef<IVekTimer> & timer, unsigned char * bytes) { $1; }
        void Silence() { (void)&Try; }" |
        "${compile[@]}" -fsyntax-only -I "$folder" - > /dev/null 2>&1
}
while IFS='|' read -r wrong right; do
    [ -n "$wrong" ] || continue
    compiles "$wrong" && { echo "is not refused: $wrong"; status=1; }
    compiles "$right" || { echo "does not compile: $right"; status=1; }
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
exit $status
