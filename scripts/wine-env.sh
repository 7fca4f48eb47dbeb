# Sourced by the scripts that run Windows programs: a Wine prefix of their own, one kept-alive
# wine server, and a private Xvfb when a window is needed without a display.

WINE64=$(command -v wine64 || echo /usr/lib/wine/wine64)
WINESERVER=$(command -v wineserver || echo /usr/lib/wine/wineserver64)
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="

# wine_prefix FOLDER [unmanaged]: creates the prefix once and starts its server. "unmanaged"
# keeps windows away from a window manager: Wine draws their frames itself and does not wait
# two seconds for a manager at every map and unmap when there is none (Xvfb).
wine_prefix() {
    export WINEPREFIX="$1"
    mkdir -p "$WINEPREFIX"
    # A server left from an earlier run keeps a desktop on that run's display: start afresh.
    "$WINESERVER" -k 2>/dev/null || true
    "$WINESERVER" -w 2>/dev/null || true
    "$WINESERVER" -p >/dev/null 2>&1 || true
    if [ ! -f "$WINEPREFIX/system.reg" ]; then
        echo "== creating the Wine prefix $WINEPREFIX"
        "$WINE64" wineboot --init >/dev/null 2>&1
    fi
    link_cjk_font
    if [ "${2:-}" = unmanaged ]; then
        "$WINE64" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null 2>&1 || true
    fi
}

# Japanese, Korean and Chinese texts render as boxes in the dialog fonts of a new prefix:
# link the CJK font that scripts/setup installs (fonts-wqy-microhei) behind them, once.
link_cjk_font() {
    [ -f "$WINEPREFIX/.cjk-font-linked" ] && return 0
    local font
    for font in "Tahoma" "MS Shell Dlg" "MS Shell Dlg 2" "Microsoft Sans Serif" "Segoe UI"; do
        "$WINE64" reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink' \
            /v "$font" /t REG_MULTI_SZ /d "wqy-microhei.ttc,WenQuanYi Micro Hei" /f >/dev/null 2>&1 || true
    done
    # The server writes the registry to disk when it ends; the next start reads the links.
    "$WINESERVER" -k 2>/dev/null || true
    "$WINESERVER" -w 2>/dev/null || true
    "$WINESERVER" -p >/dev/null 2>&1 || true
    touch "$WINEPREFIX/.cjk-font-linked"
}

# start_xvfb: a private X display for this run (DISPLAY is set, XVFB_PID names the server).
XVFB_PID=
start_xvfb() {
    local n
    for n in $(seq 90 99); do
        if [ ! -e "/tmp/.X11-unix/X$n" ] && [ ! -e "/tmp/.X$n-lock" ]; then
            Xvfb ":$n" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
            XVFB_PID=$!
            export DISPLAY=":$n"
            for _ in $(seq 1 50); do
                [ -e "/tmp/.X11-unix/X$n" ] && return 0
                sleep 0.1
            done
            return 0
        fi
    done
    echo "no free X display number for Xvfb" >&2
    return 1
}

stop_wine_and_xvfb() {
    "$WINESERVER" -k 2>/dev/null || true
    if [ -n "$XVFB_PID" ]; then
        kill "$XVFB_PID" 2>/dev/null
        XVFB_PID=
    fi
}
