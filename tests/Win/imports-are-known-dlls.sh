#!/usr/bin/env bash
# Every DLL the programs import by name is one Windows loads from the system directory whatever
# folder the program runs from (a known DLL), or comctl32, which the manifest takes from the side-
# by-side store. Anything else (version.dll, say) is looked for beside a downloaded copy of the
# program first, where a planted one would run before the program restricts its own loads.
#   imports-are-known-dlls.sh OBJDUMP PROGRAM...
set -uo pipefail
objdump=$1
shift
known=" advapi32.dll comctl32.dll comdlg32.dll gdi32.dll kernel32.dll msvcrt.dll ole32.dll oleaut32.dll setupapi.dll shell32.dll shlwapi.dll user32.dll ws2_32.dll "
failed=0
for program in "$@"; do
    for dll in $("$objdump" -p "$program" | sed -n 's/^\tDLL Name: //p' | tr 'A-Z' 'a-z'); do
        case $known in
            *" $dll "*) ;;
            *) echo "$(basename "$program") imports $dll, which is no known DLL"; failed=1 ;;
        esac
    done
done
exit $failed
