#!/usr/bin/env bash
# Pictures of what a person sees, taken from the real agent in a private X session (Xvfb split into
# two monitors, openbox, a trayer tray host), written as PNGs into docs/screenshots/:
#   tray-menu.png   the tray menu, open on its "Zone Editor…" submenu of displays
#   about.png       the about window
#   layout-selector.png  the layout selector over the right monitor, the focus one card on
#   layout-hud.png  the heads-up display naming the next layout
#   restore-preview.png  "Restore Settings?" for a backup with layouts on two displays
#   preferences.png  the preferences window
#   zone-editor.png the zone editor over the left monitor, a line picked up and being dragged
#   quick-start-welcome.png, quick-start-create-layout.png, quick-start-snap.png
#                   the quick start guide's three pages, as a first start shows it
#   permission-coach-linux.png  the coach an X server without XInput 2.1 gets, shown by
#                   paneforge-coach-preview (Xvfb always has XInput 2, so the agent never shows it)
# Usage: scripts/screenshots.sh [BUILD_DIR]   (default build/default; `make screenshots` builds it)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/default}
agent=$build/src/paneforge
out=docs/screenshots
[[ -x $agent ]] || { echo "screenshots: no agent at $agent; build it first" >&2; exit 1; }

# ImageMagick's import grabs the screen.
if ! import -version 2>/dev/null | grep -q ImageMagick; then
  sudo=()
  [[ $(id -u) -eq 0 ]] || sudo=(sudo)
  echo "screenshots: installing imagemagick"
  "${sudo[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends imagemagick
fi

work=$(mktemp -d)
pids=()
cleanup() {
  local i
  for ((i = ${#pids[@]} - 1; i >= 0; i--)); do kill "${pids[i]}" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

# Polls a shell condition for up to ten seconds.
wait_for() {
  local i
  for ((i = 0; i < 200; i++)); do
    if eval "$1" >/dev/null 2>&1; then return 0; fi
    sleep 0.05
  done
  echo "screenshots: timed out waiting for: $1" >&2
  exit 1
}

number=400
while [[ -e /tmp/.X$number-lock || -e /tmp/.X11-unix/X$number ]]; do number=$((number + 1)); done
export DISPLAY=:$number
unset QT_QPA_PLATFORM
Xvfb "$DISPLAY" -screen 0 1920x1080x24 -nolisten tcp -noreset >"$work/xvfb.log" 2>&1 &
pids+=($!)
wait_for xdpyinfo
xrandr --setmonitor LEFT 960/254x1080/286+0+0 screen
xrandr --setmonitor RIGHT 960/254x1080/286+960+0 none
xsetroot -solid '#5e6b7d'
openbox --sm-disable >"$work/openbox.log" 2>&1 &
pids+=($!)
wait_for 'xprop -root _NET_WORKAREA | grep -q ='
trayer --edge bottom --align right --widthtype request --height 26 \
  --transparent true --alpha 0 --tint 0xe8e8e8 >"$work/trayer.log" 2>&1 &
pids+=($!)

XDG_CONFIG_HOME=$work/config XDG_STATE_HOME=$work/state "$agent" 2>"$work/agent.log" &
pids+=($!)
wait_for 'grep -q "ready in" "$work/agent.log"'

agent_windows() { xdotool search --onlyvisible --classname paneforge 2>/dev/null | wc -l; }
# Prints "x y width height" of a window.
geometry() {
  xdotool getwindowgeometry --shell "$1" | awk -F= '/^(X|Y|WIDTH|HEIGHT)=/ { printf "%s ", $2 } END { print "" }'
}
open_menu() {
  local icon x y w h
  icon=$(xdotool search --onlyvisible --classname paneforge | head -n 1)
  read -r x y w h < <(geometry "$icon")
  xdotool mousemove $((x + w / 2)) $((y + h / 2)) click 1
  wait_for '(($(agent_windows) >= 2))'
  sleep 0.3 # the menu is mapped before it grabs the keyboard; keys sent sooner are lost
}
mkdir -p "$out"

# A first start (no configuration yet) shows the quick start guide; Return goes to the next page.
wait_for "xdotool search --onlyvisible --name '^Quick Start\$'"
guide=$(xdotool search --onlyvisible --name '^Quick Start$' | head -n 1)
for page in welcome create-layout snap; do
  sleep 0.5 # let the page paint
  import -frame -window "$guide" "$out/quick-start-$page.png"
  xdotool key Return
done
wait_for '(($(agent_windows) == 1))'

# The menu with its submenu: the picture covers both, the tray icon and a margin of desktop.
open_menu
xdotool key Down Down Down Down Down Right
wait_for '(($(agent_windows) >= 3))'
sleep 0.5 # let both menus paint
left=99999 top=99999 right=0 bottom=0
for window in $(xdotool search --onlyvisible --classname paneforge); do
  read -r x y w h < <(geometry "$window")
  ((x < left)) && left=$x
  ((y < top)) && top=$y
  ((x + w > right)) && right=$((x + w))
  ((y + h > bottom)) && bottom=$((y + h))
done
margin=24
left=$((left - margin > 0 ? left - margin : 0))
top=$((top - margin > 0 ? top - margin : 0))
right=$((right + margin < 1920 ? right + margin : 1920))
bottom=$((bottom + margin < 1080 ? bottom + margin : 1080))
import -window root -crop "$((right - left))x$((bottom - top))+$left+$top" +repage "$out/tray-menu.png"
xdotool key Escape Escape

# The about window, with its title bar.
wait_for '(($(agent_windows) == 1))'
open_menu
xdotool key Up Up Return
wait_for "xdotool search --onlyvisible --name '^About Paneforge\$'"
sleep 0.5
about=$(xdotool search --onlyvisible --name '^About Paneforge$' | head -n 1)
import -frame -window "$about" "$out/about.png"
xdotool key Escape

xdotool key Escape

# The layout selector. Opened once on the tray's monitor to learn that monitor's id from the log,
# then given four layouts there (the agent reads its settings afresh every time).
wait_for '(($(agent_windows) == 1))'
selector_shown() { xdotool search --onlyvisible --name '^Switch Layout$'; }
open_menu
xdotool key Down Return
wait_for selector_shown
xdotool key Escape
wait_for '! selector_shown'
display=$(grep -o 'LayoutSelectorController.show display=[^ ]*' "$work/state/Paneforge/Paneforge.log" |
  head -n 1 | cut -d= -f2)
layout() { printf '{"id":"%s","name":"%s","horizontalSplits":[%s],"verticalSplits":[%s]}' "$@"; }
cat >"$work/config/Paneforge/config.json" <<JSON
{"displays":{"$display":{"activeLayoutId":"columns","layouts":[
$(layout halves Halves "" 0.5),
$(layout columns "Three Columns" "" "0.3333,0.6667"),
$(layout wide "Wide Left" "" 0.65),
$(layout quarters Quarters 0.5 0.5)]}},
"defaultLayout":$(layout default Default "" 0.5),"cellMarginPoints":8}
JSON
open_menu
xdotool key Down Return
wait_for selector_shown
xdotool key Right
sleep 0.5
panel=$(selector_shown | head -n 1)
read -r x y w h < <(geometry "$panel")
margin=40
import -window root -crop "$((w + 2 * margin))x$((h + 2 * margin))+$((x - margin))+$((y - margin))" +repage \
  "$out/layout-selector.png"
xdotool key Escape
wait_for '! selector_shown'

# The heads-up display after "Next Layout".
open_menu
xdotool key Down Down Return
wait_for "xdotool search --onlyvisible --name '^Paneforge Layout\$'"
hud=$(xdotool search --onlyvisible --name '^Paneforge Layout$' | head -n 1)
read -r x y w h < <(geometry "$hud")
import -window root -crop "$((w + 2 * margin))x$((h + 2 * margin))+$((x - margin))+$((y - margin))" +repage \
  "$out/layout-hud.png"

# The restore preview of a backup with layouts on two displays, opened from the menu: the file's
# name typed into the dialog, then the preview in its own frame.
xdotool key Escape
wait_for '(($(agent_windows) == 1))'
cat >"$work/config/Paneforge/config.json" <<JSON
{"displays":{
"v4268-p41234-s1":{"activeLayoutId":"halves","layouts":[
$(layout halves Halves "" 0.5),
$(layout columns "Three Columns" "" "0.3333,0.6667"),
$(layout wide "Wide Left" "" 0.65),
$(layout quarters Quarters 0.5 0.5),
$(layout rows "Two Rows" 0.5 ""),
$(layout focus "Focus" "" "0.25,0.75"),
$(layout sidebar "   " "" 0.25)]},
"v4268-p41234-s2":{"activeLayoutId":"code","layouts":[
$(layout code Code "" 0.6),
$(layout grid "Grid" "0.5" "0.3333,0.6667")]}},
"defaultLayout":$(layout default Default "" 0.5),"cellMarginPoints":8}
JSON
XDG_CONFIG_HOME=$work/config "$agent" backup export "$work/backup.json" >/dev/null
open_menu
xdotool key Up Up Up Up Up Up Return
wait_for "xdotool search --onlyvisible --name '^Restore Settings\$'"
sleep 0.3
xdotool type "$work/backup.json"
xdotool key Return
wait_for "xdotool search --onlyvisible --name '^Restore Settings\\?\$'"
sleep 0.5
preview=$(xdotool search --onlyvisible --name '^Restore Settings\?$' | head -n 1)
import -frame -window "$preview" "$out/restore-preview.png"
xdotool key Escape

# The preferences window, opened from its row (the sixth), with its title bar.
wait_for '(($(agent_windows) == 1))'
open_menu
xdotool key Down Down Down Down Down Down Return
wait_for "xdotool search --onlyvisible --name '^Preferences\$'"
sleep 0.5
preferences=$(xdotool search --onlyvisible --name '^Preferences$' | head -n 1)
import -frame -window "$preferences" "$out/preferences.png"
xdotool key Escape

# The zone editor over the left monitor. Opened once from the menu to learn that monitor's id, then
# given a layout there; its vertical line hovered, pressed and dragged to the right: the band shows
# where the line was, the blue line where it goes, the zones their sizes with it in place.
wait_for '(($(agent_windows) == 1))'
editor_shown() { xdotool search --onlyvisible --name '^Paneforge Zone Editor$'; }
open_menu
xdotool key Down Down Down Down Down Right Return
wait_for editor_shown
xdotool key Escape
wait_for '! editor_shown'
left_display=$(grep -o 'GridEditorController.showEditor displayId=[0-9]* display=[^ ]*' \
  "$work/state/Paneforge/Paneforge.log" | tail -n 1 | sed 's/.* display=//')
cat >"$work/config/Paneforge/config.json" <<JSON
{"displays":{"$left_display":{"activeLayoutId":"coding","layouts":[
$(layout coding Coding 0.5 0.62),
$(layout halves Halves "" 0.5)]}},
"defaultLayout":$(layout default Default "" 0.5),"cellMarginPoints":8}
JSON
wait_for '(($(agent_windows) == 1))'
open_menu
xdotool key Down Down Down Down Down Right Return
wait_for editor_shown
xdotool mousemove 590 760
sleep 0.2
xdotool mousemove 595 760 mousedown 1
sleep 0.2
xdotool mousemove 640 760
sleep 0.2
xdotool mousemove 650 760
sleep 0.5
import -window root -crop 960x1080+0+0 +repage "$out/zone-editor.png"
xdotool key Escape mouseup 1
wait_for '! editor_shown'

# The permission coach with its Linux text.
"$build/tools/coach_preview/paneforge-coach-preview" &
pids+=($!)
wait_for "xdotool search --onlyvisible --name '^Paneforge\$'"
sleep 0.5
coach=$(xdotool search --onlyvisible --name '^Paneforge$' | head -n 1)
import -frame -window "$coach" "$out/permission-coach-linux.png"
xdotool key Escape

echo "screenshots: wrote $out/tray-menu.png, about.png, layout-selector.png, layout-hud.png," \
  "restore-preview.png, preferences.png, zone-editor.png, quick-start-*.png and permission-coach-linux.png"
