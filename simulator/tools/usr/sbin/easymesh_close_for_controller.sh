#!/bin/sh
# Takes the mesh down; a change of its mode alone brings it up again, in the new mode.
uci=/router/tools/uci
if [ "$($uci -q get button_mesh.easymesh.mode_change)" = 1 ]; then
  $uci -q set button_mesh.easymesh.mode_change=0
  $uci -q commit button_mesh
else
  $uci -q batch <<'END'
set button_mesh.easymesh.enable=0
set button_mesh.easymesh.role=none
commit button_mesh
set repacd.repacd.Enable=0
commit repacd
END
fi
exec /router/bin/wifi
